// la::Solver: a concrete model from the delta-rational assignment.
#include "theory/la/lasolver.h"

namespace zenlo {
namespace la {

// The value (r, d) must stay on the right side of bound (c, k) for the
// concrete delta: lo <= hi as delta-rationals, and r + d*delta <= c +
// k*delta holds for every delta up to (c - r) / (d - k) when r < c and
// d > k.
void Solver::bound_delta(const DNumber& lo,
                         const DNumber& hi,
                         QNumber& delta) const {
  if (lo.real() < hi.real() && lo.delta() > hi.delta()) {
    QNumber cand = hi.real() - lo.real();
    cand /= lo.delta() - hi.delta();
    if (cand < delta) {
      delta = cand;
    }
  }
}

bool Solver::diseqs_hold(const QNumber& delta) const {
  for (int c : d_diseqs) {
    const RangeConstraint& rc = d_cons[c];
    if (d_beta[rc.var].value_at(delta) == rc.bound.value_at(delta)) {
      return false;
    }
  }
  return true;
}

// Every pushed constraint, implied ones included, bounds delta: implied
// bounds hold as delta-rationals but, unlike pushed bounds, are not
// limits of a variable that the loop below would see otherwise.
void Solver::build_model() {
  QNumber delta(1L);
  for (const Pushed& p : d_stack) {
    const RangeConstraint& rc = d_cons[p.constraint];
    const DNumber& v = d_beta[rc.var];
    if (rc.kind == BoundKind::Lower || rc.kind == BoundKind::Equal) {
      bound_delta(rc.bound, v, delta);
    }
    if (rc.kind == BoundKind::Upper || rc.kind == BoundKind::Equal) {
      bound_delta(v, rc.bound, delta);
    }
  }
  // A disequality true as delta-rationals is false for at most one delta.
  for (int i = 0; i < 100 && !diseqs_hold(delta); ++i) {
    delta /= 2L;
  }
  d_delta = delta;
  for (int x = 0; x < num_vars(); ++x) {
    d_model[x] = d_beta[x].value_at(delta);
  }
}

}  // namespace la
}  // namespace zenlo
