#include "theory/la/constraintmapper.h"

#include <algorithm>

namespace zenlo {
namespace la {

int ConstraintMapper::slack_for(const LinearSum& sum, bool& negated) {
  negated = false;
  auto it = d_equations.find(sum);
  if (it != d_equations.end()) {
    return it->second;
  }
  d_scratch = sum;
  for (auto& m : d_scratch) {
    m.second.self_neg();
  }
  it = d_equations.find(d_scratch);
  if (it != d_equations.end()) {
    negated = true;
    return it->second;
  }
  int s = d_solver->new_var();
  d_solver->tell_equation(s, sum);
  d_equations.emplace(sum, s);
  d_order.emplace_back(s, sum);
  return s;
}

// x < k is x <= k - delta and x > k is x >= k + delta.
ConstraintMapper::Bound ConstraintMapper::map_constraint(
    const LinearTerm& lin) {
  int op = lin.op;
  QNumber k = lin.k;
  int var;
  if (lin.monomials.size() == 1) {
    const QNumber& a = lin.monomials[0].second;
    var = lin.monomials[0].first;
    k /= a;
    if (a.sign() < 0) {
      op = LinearTerm::flip_op(op);
    }
  } else {
    bool negated;
    var = slack_for(lin.monomials, negated);
    if (negated) {
      k.self_neg();
      op = LinearTerm::flip_op(op);
    }
  }
  switch (op) {
    case LinearTerm::kBelow:
      return {var, BoundKind::Upper, DNumber(k, QNumber(-1L))};
    case LinearTerm::kAtMost: return {var, BoundKind::Upper, DNumber(k)};
    case LinearTerm::kAtLeast: return {var, BoundKind::Lower, DNumber(k)};
    case LinearTerm::kAbove:
      return {var, BoundKind::Lower, DNumber(k, QNumber::one())};
    case LinearTerm::kEqual: return {var, BoundKind::Equal, DNumber(k)};
    default: return {var, BoundKind::Diseq, DNumber(k)};
  }
}

void ConstraintMapper::remove_vars_upto(int var) {
  while (!d_order.empty() && d_order.back().first >= var) {
    d_equations.erase(d_order.back().second);
    d_order.pop_back();
  }
}

const LinearSum* ConstraintMapper::sum_of(int slack) const {
  auto it = std::lower_bound(
      d_order.begin(),
      d_order.end(),
      slack,
      [](const std::pair<int, LinearSum>& e, int v) { return e.first < v; });
  return it != d_order.end() && it->first == slack ? &it->second : nullptr;
}

}  // namespace la
}  // namespace zenlo
