// LaSolverInterface: Gomory cuts over the tableau. A cut replaces a
// branch now and then; it is a lemma over the bounds of the row it came
// from, valid over the integers, with the split that justifies it kept
// for the fact checks.
#include <algorithm>

#include "terms/termmanager.h"
#include "theory/la/lasolverinterface.h"

namespace zenlo {

// Original integer variables, and slacks of sums of them with integer
// coefficients, take integer values in every integer solution.
bool LaSolverInterface::is_integral(int var) const {
  if (d_mapper.term(var) != nullptr) {
    return d_mapper.is_int_var(var);
  }
  const la::LinearSum* sum = d_cmapper.sum_of(var);
  if (sum == nullptr) {
    return false;
  }
  for (const auto& [v, a] : *sum) {
    if (!d_mapper.is_int_var(v) || !a.is_integer()) {
      return false;
    }
  }
  return true;
}

// Rewrites a sum over solver variables into one over variables with terms
// (slacks replaced by their sums). Returns: false when some variable is
// neither, or when a variable is not an integer one: cuts are only made
// over integers, so that their atoms are integer atoms.
bool LaSolverInterface::expand(const std::vector<std::pair<int, QNumber>>& sum,
                               std::vector<std::pair<int, QNumber>>& out) {
  out.clear();
  auto add = [&out](int v, const QNumber& a) {
    for (auto& [w, b] : out) {
      if (w == v) {
        b += a;
        return;
      }
    }
    out.emplace_back(v, a);
  };
  for (const auto& [v, a] : sum) {
    if (d_mapper.term(v) != nullptr) {
      if (!d_mapper.is_int_var(v)) {
        return false;
      }
      add(v, a);
      continue;
    }
    const la::LinearSum* def = d_cmapper.sum_of(v);
    if (def == nullptr) {
      return false;
    }
    for (const auto& [w, b] : *def) {
      if (!d_mapper.is_int_var(w)) {
        return false;
      }
      add(w, a * b);
    }
  }
  out.erase(std::remove_if(out.begin(),
                           out.end(),
                           [](const auto& m) { return m.second.is_zero(); }),
            out.end());
  return !out.empty();
}

// Requires: integer coefficients, variables with terms.
const Term_* LaSolverInterface::make_sum_term(
    const std::vector<std::pair<int, QNumber>>& sum) {
  const Term_* total = nullptr;
  for (const auto& [v, a] : sum) {
    const Term_* t = d_mapper.term(v);
    if (a != 1L) {
      t = d_tm->make_times(d_tm->make_number(a), t);
    }
    total = total == nullptr ? t : d_tm->make_plus(total, t);
  }
  return total;
}

// Returns: true with d_cut set when x is basic, every other variable of
// its row sits on a bound told by a constraint, and the values carry no
// infinitesimal.
bool LaSolverInterface::make_cut(int x) {
  const la::Tableau& tab = d_solver.tableau();
  if (!tab.is_basic(x)) {
    return false;
  }
  const la::DNumber& value = d_solver.get_abstract_value(x);
  if (!value.delta().is_zero() || value.real().is_integer()) {
    return false;
  }
  Cut cut;
  d_gomory_row.clear();
  const QNumber& den = tab.denominator(x);
  for (const la::Tableau::Entry& e : tab.row(x)) {
    const la::DNumber& v = d_solver.get_abstract_value(e.var);
    if (!v.delta().is_zero()) {
      return false;
    }
    int lc = d_solver.lower_constraint(e.var);
    int uc = d_solver.upper_constraint(e.var);
    la::DNumber b;
    bool at_upper;
    if (lc >= 0 && d_solver.get_lower_bound(e.var, b) && b == v) {
      at_upper = false;
      cut.reason.push_back(lc);
    } else if (uc >= 0 && d_solver.get_upper_bound(e.var, b) && b == v) {
      at_upper = true;
      cut.reason.push_back(uc);
    } else {
      return false;
    }
    bool integral = is_integral(e.var) && v.real().is_integer();
    d_gomory_row.push_back(la::GomoryCut::Column{
        e.var, e.coeff / den, v.real(), at_upper, integral});
  }
  if (!d_gomory.compute(x, value.real(), d_gomory_row)) {
    return false;
  }
  // The cut over integer variables with integer coefficients: the sum is
  // integral, so its bound rounds up.
  if (!expand(d_gomory.cut_coeffs(), d_expanded)) {
    return false;
  }
  QNumber scale(1L);
  for (const auto& m : d_expanded) {
    if (!m.second.is_integer()) {
      QNumber d = m.second.get_den();
      scale *= d / gcd(scale, d);
    }
  }
  for (auto& m : d_expanded) {
    m.second *= scale;
  }
  QNumber bound = (d_gomory.cut_bound() * scale).ceil();
  SimplificationScope raw(*d_tm, false);
  const Term_* lhs = make_sum_term(d_expanded);
  cut.atom = d_tm->make_leq(d_tm->make_number(bound), lhs);
  std::vector<std::pair<int, QNumber>> split(d_gomory.split_coeffs());
  split.emplace_back(x, QNumber::one());
  if (!expand(split, d_expanded)) {
    return false;
  }
  const Term_* z = make_sum_term(d_expanded);
  const QNumber& k = d_gomory.split_floor();
  cut.below = d_tm->make_leq(z, d_tm->make_number(k));
  cut.above = d_tm->make_leq(d_tm->make_number(k + QNumber::one()), z);
  d_cut = std::move(cut);
  return true;
}

TheoryLemma LaSolverInterface::cut_lemma(std::vector<TheoryLit>& clause) {
  Cut cut = std::move(*d_cut);
  d_cut.reset();
  for (int c : cut.reason) {
    clause.push_back(~d_lit_of[c]);
  }
  clause.push_back(TheoryLit(cut.atom, false));
  d_certificate.below = cut.below;
  d_certificate.above = cut.above;
  d_certificate_fresh = true;
  ++d_num_cuts;
  uint32_t flags = LemmaFlag::Kept | LemmaFlag::LemmaAtoms;
  return TheoryLemma{nullptr, flags, nullptr};
}

const FactCertificate* LaSolverInterface::fact_certificate() const {
  if (!d_certificate_fresh) {
    return nullptr;
  }
  d_certificate_fresh = false;
  return &d_certificate;
}

}  // namespace zenlo
