// Checks learnt clauses by reverse unit propagation on a separate copy of
// the clause set: a clause C is implied when assigning the negation of C
// and propagating the copy's clauses reaches a conflict. The copy holds the
// problem clauses, the theory clauses (checked on their own by the theory
// checkers) and the learnt clauses that passed. It shares nothing with the
// search's propagation, so a fault in analysis or minimisation that learns
// a clause the others do not imply is caught at once.
//
// For tests only (-check.learnt_clauses): every check propagates from the
// top-level assignment.
#ifndef ZENLO_DPLL_RUPCHECKER_H
#define ZENLO_DPLL_RUPCHECKER_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dpll/dplltypes.h"

namespace zenlo {
namespace dpll {

class RupChecker {
 public:
  // After: the clause is part of the copy; it is trusted, not checked.
  void add_axiom(const Lit* lits, size_t n);

  void add_axiom(const std::vector<Lit>& lits) {
    add_axiom(lits.data(), lits.size());
  }

  // Returns: whether the copy implies the clause by unit propagation.
  bool implied(const Lit* lits, size_t n);

  // After: the clauses over a variable from `v` up are gone; variable
  //   numbers from `v` up may name new variables from now on.
  void forget_vars_from(Var v);

  size_t num_clauses() const { return d_clauses.size(); }

 private:
  int8_t value(Lit p) const;  // 1 true, -1 false, 0 unassigned
  void grow(Var v);
  void assign(Lit p);
  void attach(uint32_t index);
  void rebuild();
  bool propagate();
  void undo_to(size_t mark);

  std::vector<std::vector<Lit>> d_clauses;
  std::vector<std::vector<uint32_t>> d_watches;  // by literal
  std::vector<int8_t> d_assign;                  // by variable: 1, -1, 0
  std::vector<Lit> d_trail;
  size_t d_qhead = 0;
  bool d_dirty = false;         // the top-level assignment needs a rebuild
  bool d_inconsistent = false;  // the copy is unsatisfiable at top level
  std::vector<Lit> d_scratch;
};

}  // namespace dpll
}  // namespace zenlo

#endif
