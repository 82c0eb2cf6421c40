// Which theory decides a term. This is the one place that answers it, from
// the term store's tags and sorts: the manager asks it which atoms are the
// search's own and which terms need an enabled solver, and each solver asks
// it what is its own and what is alien. Two answers that disagree would
// mean a term that one side hands over and the other never takes.
#ifndef ZENLO_THEORY_THEORYOWNER_H
#define ZENLO_THEORY_THEORYOWNER_H

namespace zenlo {

class TermManager;
class Term_;

// The deciding theory. The solver ones are the manager's slot indices.
enum class TheoryId : int {
  // Boolean structure and Boolean constants: the search's own.
  Search = -2,
  // No solver decides it: quantifiers, and sorts with finitely many values
  // that only counting would decide.
  None = -1,
  Euf = 0,
  La = 1,
  Bv = 2,
  Fp = 3,
  Arr = 4,
  Na = 5,
};

// The theory of `t`'s head symbol. Arithmetic, bit-vector, floating-point,
// array and transcendental operators belong to their theories; equalities,
// `ite`, uninterpreted symbols and numbers belong to the theory of their
// sort (of the sides, for an equality), which is EUF for Bool, Int, Real,
// declared and enumerated sorts, and the arrays solver's for arrays.
TheoryId theory_of(const TermManager& tm, const Term_* t);

// Whether EUF decides `t` on its own (or it is the search's).
inline bool is_euf_term(const TermManager& tm, const Term_* t) {
  TheoryId id = theory_of(tm, t);
  return id == TheoryId::Euf || id == TheoryId::Search;
}

const char* theory_name(TheoryId id);

}  // namespace zenlo

#endif
