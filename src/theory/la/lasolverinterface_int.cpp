// LaSolverInterface: integer reasoning on top of the rational relaxation.
// A complete check that leaves an integer variable at a fractional value
// first asks whether the pushed equalities over integers have an integer
// solution at all, and otherwise leaves a branch lemma for the search.
#include <algorithm>

#include "terms/termmanager.h"
#include "theory/la/lasolverinterface.h"

namespace zenlo {

// Equalities over integers only (rounded by the mapper, so with integer
// coefficients) are what the Diophantine test reads. The simplex sees the
// same equality as a bound on a slack, so the equation is kept from the
// linear term while it is at hand.
void LaSolverInterface::note_int_equation(int c, const la::LinearTerm& lin) {
  d_is_int_eq[c] = 0;
  if (lin.op != la::LinearTerm::kEqual || lin.monomials.empty()) {
    return;
  }
  for (const auto& [x, a] : lin.monomials) {
    if (!d_mapper.is_int_var(x) || !a.is_integer()) {
      return;
    }
  }
  // sum = k  is  sum - k = 0; variable x is x + 1 there, as 0 is no
  // problem variable for the system.
  la::Equation& eq = d_int_eq[c];
  eq = la::Equation();
  for (const auto& [x, a] : lin.monomials) {
    eq.add(x + 1, a);
  }
  eq.set_constant(lin.k.neg());
  d_is_int_eq[c] = 1;
}

// Returns: false with d_conflict set when the pushed equalities have no
//   integer solution. Otherwise d_branch or d_cut holds a lemma exactly
//   when some integer variable is not integral.
bool LaSolverInterface::check_integers() {
  d_branch.reset();
  d_cut.reset();
  int x = pick_branch_var();
  if (x < 0) {
    return true;
  }
  if (!check_diophantine()) {
    return false;
  }
  // Every other round tries a cut first: branching alone can follow a
  // thin sliver of the relaxation without end, cuts alone stall.
  if (++d_int_rounds % 2 == 0 && make_cut(x)) {
    return true;
  }
  QNumber f;
  branch_floor(x, f);
  d_branch = Branch{d_mapper.term(x), f};
  return true;
}

// The first fractional variable at or after the cursor, round the list:
// always taking the first one would let a single unbounded variable
// absorb every branch while the others never get their turn.
int LaSolverInterface::pick_branch_var() {
  const std::vector<int>& vars = d_mapper.int_vars();
  size_t n = vars.size();
  for (size_t i = 0; i < n; ++i) {
    size_t pos = (d_branch_cursor + i) % n;
    const la::DNumber& v = d_solver.get_abstract_value(vars[pos]);
    if (!v.real().is_integer() || !v.delta().is_zero()) {
      d_branch_cursor = pos + 1;
      return vars[pos];
    }
  }
  return -1;
}

// The value is r + k*delta for an infinitesimal delta > 0: its floor is
// floor(r), except for an integral r, where it is r just above and r - 1
// just below.
void LaSolverInterface::branch_floor(int x, QNumber& out) const {
  const la::DNumber& v = d_solver.get_abstract_value(x);
  if (!v.real().is_integer()) {
    out = v.real().floor();
  } else if (v.delta().sign() > 0) {
    out = v.real();
  } else {
    out = v.real() - QNumber::one();
  }
}

// The relaxation satisfies each equality but may not have an integer
// solution to them together (2x + 4y = 3z + 1 and the like), which no
// amount of branching on bounds would show quickly. The refutation's
// equalities are a conflict on their own.
bool LaSolverInterface::check_diophantine() {
  bool any = false;
  for (size_t i = 0; i < d_solver.num_pushed() && !any; ++i) {
    any = d_is_int_eq[d_solver.pushed_at(i)] != 0;
  }
  if (!any) {
    return true;
  }
  d_dio.reset();
  d_fresh.restart(d_solver.num_vars() + 1);
  for (size_t i = 0; i < d_solver.num_pushed(); ++i) {
    int c = d_solver.pushed_at(i);
    if (d_is_int_eq[c]) {
      d_dio.add_equation(c + 1, d_int_eq[c]);
    }
  }
  if (d_dio.check()) {
    return true;
  }
  // The refutation is appended to what the vectors hold.
  d_dio_ids.clear();
  d_dio_coeffs.clear();
  d_dio.get_unsat_proof(&d_dio_ids, &d_dio_coeffs);
  d_conflict.clear();
  for (int id : d_dio_ids) {
    d_conflict.push_back(d_lit_of[id - 1]);
  }
  ++d_num_dio_conflicts;
  return false;
}

// Over the integers one side always holds, so the lemma is valid; the
// fractional value violates both. The atoms are made without
// simplification so that f + 1 <= x does not come back as not x <= f,
// which would make the clause a tautology of the search.
TheoryLemma LaSolverInterface::branch_lemma(std::vector<TheoryLit>& clause) {
  Branch b = std::move(*d_branch);
  d_branch.reset();
  const Term_* below = nullptr;
  const Term_* above = nullptr;
  {
    SimplificationScope raw(*d_tm, false);
    below = d_tm->make_leq(b.term, d_tm->make_number(b.floor));
    above = d_tm->make_leq(d_tm->make_number(b.floor + QNumber::one()), b.term);
  }
  clause.push_back(TheoryLit(below, false));
  clause.push_back(TheoryLit(above, false));
  ++d_num_branches;
  uint32_t flags = LemmaFlag::Kept | LemmaFlag::LemmaAtoms;
  return TheoryLemma{nullptr, flags, nullptr};
}

}  // namespace zenlo
