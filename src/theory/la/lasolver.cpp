// la::Solver: variables, constraints, the stack of pushed constraints and
// implications. The simplex loop is in lasolver_check.cpp, models in
// lasolver_model.cpp.
#include "theory/la/lasolver.h"

#include <algorithm>

namespace zenlo {
namespace la {

Solver::Solver(int deduction_level, int greedy_threshold)
    : d_deduction(deduction_level), d_greedy_threshold(greedy_threshold) {}

// ---------------------------------------------------------------------------
// Variables and equations
// ---------------------------------------------------------------------------

int Solver::new_var() {
  int x = d_tab.add_var();
  d_beta.emplace_back();
  d_saved.emplace_back();
  d_lower.emplace_back();
  d_upper.emplace_back();
  d_var_cons.emplace_back();
  d_is_changed.push_back(0);
  d_is_touched.push_back(0);
  d_is_candidate.push_back(0);
  d_is_bound_changed.push_back(0);
  d_row_marked.push_back(0);
  d_model.emplace_back();
  return x;
}

// Both the current and the saved assignment get the slack's value, so that
// a later restore keeps every equation true.
void Solver::tell_equation(int slack, const LinearSum& sum) {
  DNumber v, s;
  for (const auto& [x, a] : sum) {
    v.addmul(d_beta[x], a);
    s.addmul(d_saved[x], a);
  }
  d_tab.add_row(slack, sum);
  d_beta[slack] = v;
  d_saved[slack] = s;
}

void Solver::remove_last_var() {
  int x = num_vars() - 1;
  if (!d_var_cons[x].empty() || d_lower[x].present || d_upper[x].present) {
    throw error("la::Solver: removing a variable that has constraints");
  }
  d_tab.remove_last_var();
  d_beta.pop_back();
  d_saved.pop_back();
  d_lower.pop_back();
  d_upper.pop_back();
  d_var_cons.pop_back();
  d_model.pop_back();
  // The lists refer to variables by index; drop the ones that go.
  auto drop = [x](std::vector<int>& list, std::vector<uint8_t>& flags) {
    if (flags[x]) {
      list.erase(std::remove(list.begin(), list.end(), x), list.end());
    }
    flags.pop_back();
  };
  drop(d_changed, d_is_changed);
  drop(d_touched, d_is_touched);
  drop(d_candidates, d_is_candidate);
  drop(d_bound_changed, d_is_bound_changed);
  drop(d_rows_to_scan, d_row_marked);
}

// ---------------------------------------------------------------------------
// Constraints
// ---------------------------------------------------------------------------

void Solver::tell_bound(int c, int var, BoundKind kind, const DNumber& bound) {
  if (c >= static_cast<int>(d_cons.size())) {
    d_cons.resize(std::max<size_t>(c + 1, d_cons.size() * 2));
    d_impl_index.resize(d_cons.size(), -1);
  }
  RangeConstraint& rc = d_cons[c];
  if (rc.var >= 0) {
    throw error("la::Solver: constraint told twice");
  }
  rc.var = var;
  rc.kind = kind;
  rc.bound = bound;
  rc.on_stack = false;
  rc.implied = false;
  d_var_cons[var].push_back(c);
}

void Solver::retract_bound(int c) {
  RangeConstraint& rc = d_cons[c];
  if (rc.var < 0 || rc.on_stack) {
    throw error("la::Solver: retracting a constraint that is not free");
  }
  std::vector<int>& list = d_var_cons[rc.var];
  list.erase(std::find(list.begin(), list.end(), c));
  rc.var = -1;
  rc.implied = false;
  // Its implication may outlive it (the reasons stay pushed), and the
  // number c may be told again for another bound: the entry stays in
  // place, dead, until the reasons go.
  if (d_impl_index[c] >= 0) {
    d_implications[d_impl_index[c]].constraint = -1;
    d_impl_index[c] = -1;
  }
}

// ---------------------------------------------------------------------------
// Asserting
// ---------------------------------------------------------------------------

bool Solver::push_constraint(int c) {
  RangeConstraint& rc = d_cons[c];
  d_stack.push_back(Pushed{c, d_undo.size(), d_diseqs.size()});
  rc.on_stack = true;
  if (d_inconsistent) {
    return false;
  }
  // An implied bound is asserted all the same: it follows from the others
  // for every small enough delta, but the model's delta is chosen from the
  // asserted bounds alone.
  bool ok = true;
  switch (rc.kind) {
    case BoundKind::Lower: ok = assert_lower(rc.var, rc.bound, c); break;
    case BoundKind::Upper: ok = assert_upper(rc.var, rc.bound, c); break;
    case BoundKind::Equal:
      ok = assert_lower(rc.var, rc.bound, c)
           && assert_upper(rc.var, rc.bound, c);
      break;
    case BoundKind::Diseq: d_diseqs.push_back(c); break;
  }
  if (!ok) {
    d_inconsistent = true;
    d_inconsistent_depth = d_stack.size();
    ++d_stats.conflicts;
    return false;
  }
  if (d_deduction > 0) {
    try_trivial_implications(c);
  }
  return true;
}

// A bound that does not tighten is not recorded; one that crosses the
// opposite bound is a conflict of the two constraints.
bool Solver::assert_lower(int x, const DNumber& b, int c) {
  Bound& lo = d_lower[x];
  if (lo.present && b <= lo.value) {
    return true;
  }
  const Bound& up = d_upper[x];
  if (up.present && b > up.value) {
    d_conflict.clear();
    d_conflict_coeffs.clear();
    add_conflict(c, QNumber::one());
    add_conflict(up.constraint, QNumber::one());
    return false;
  }
  d_undo.push_back(BoundUndo{x, false, lo});
  lo.value = b;
  lo.constraint = c;
  lo.present = true;
  touch(x);
  note_bound_change(x);
  return true;
}

bool Solver::assert_upper(int x, const DNumber& b, int c) {
  Bound& up = d_upper[x];
  if (up.present && b >= up.value) {
    return true;
  }
  const Bound& lo = d_lower[x];
  if (lo.present && b < lo.value) {
    d_conflict.clear();
    d_conflict_coeffs.clear();
    add_conflict(c, QNumber::one());
    add_conflict(lo.constraint, QNumber::one());
    return false;
  }
  d_undo.push_back(BoundUndo{x, true, up});
  up.value = b;
  up.constraint = c;
  up.present = true;
  touch(x);
  note_bound_change(x);
  return true;
}

// A temporary bound (-1) only serves a disequality split, which adds its
// own reason.
void Solver::add_conflict(int c, const QNumber& a) {
  if (c < 0) {
    return;
  }
  for (size_t i = 0; i < d_conflict.size(); ++i) {
    if (d_conflict[i] == c) {
      d_conflict_coeffs[i] += a;
      return;
    }
  }
  d_conflict.push_back(c);
  d_conflict_coeffs.push_back(a);
}

void Solver::touch(int x) {
  if (!d_is_touched[x]) {
    d_is_touched[x] = 1;
    d_touched.push_back(x);
  }
}

bool Solver::get_lower_bound(int x, DNumber& out) const {
  if (d_lower[x].present) {
    out = d_lower[x].value;
  }
  return d_lower[x].present;
}

bool Solver::get_upper_bound(int x, DNumber& out) const {
  if (d_upper[x].present) {
    out = d_upper[x].value;
  }
  return d_upper[x].present;
}

// ---------------------------------------------------------------------------
// Backtracking
// ---------------------------------------------------------------------------

void Solver::undo_bounds(size_t size) {
  while (d_undo.size() > size) {
    BoundUndo& u = d_undo.back();
    (u.upper ? d_upper : d_lower)[u.var] = std::move(u.old);
    d_undo.pop_back();
  }
}

// Values stay: looser bounds never make a nonbasic value wrong.
int Solver::pop_constraint() {
  Pushed p = d_stack.back();
  d_stack.pop_back();
  undo_bounds(p.undo_size);
  d_diseqs.resize(p.diseq_size);
  d_cons[p.constraint].on_stack = false;
  if (d_stack.size() < d_inconsistent_depth) {
    d_inconsistent = false;
  }
  while (d_num_implications > 0
         && d_implications[d_num_implications - 1].stack_size
                > d_stack.size()) {
    Implication& imp = d_implications[--d_num_implications];
    if (imp.constraint >= 0) {
      d_cons[imp.constraint].implied = false;
      d_impl_index[imp.constraint] = -1;
    }
  }
  d_impl_cursor = std::min(d_impl_cursor, d_num_implications);
  return p.constraint;
}

// ---------------------------------------------------------------------------
// Implications
// ---------------------------------------------------------------------------

// Another constraint on the same variable that is off the stack is decided
// by the new bound b when b lies on its side:
//   lower b implies lower k when b >= k, and x != k when b > k;
//   upper b implies upper k when b <= k, and x != k when b < k;
//   equal b implies lower k (b >= k), upper k (b <= k), equal k (b = k)
//   and x != k (b != k).
void Solver::try_trivial_implications(int c) {
  const RangeConstraint& rc = d_cons[c];
  if (rc.kind == BoundKind::Diseq) {
    return;
  }
  const DNumber& b = rc.bound;
  const bool lower = rc.kind != BoundKind::Upper;
  const bool upper = rc.kind != BoundKind::Lower;
  for (int o : d_var_cons[rc.var]) {
    const RangeConstraint& oc = d_cons[o];
    if (o == c || oc.on_stack || oc.implied) {
      continue;
    }
    bool hit = false;
    int s = cmp(b, oc.bound);
    switch (oc.kind) {
      case BoundKind::Lower: hit = lower && s >= 0; break;
      case BoundKind::Upper: hit = upper && s <= 0; break;
      case BoundKind::Equal: hit = lower && upper && s == 0; break;
      case BoundKind::Diseq:
        hit = (lower && upper) ? s != 0 : (lower ? s > 0 : s < 0);
        break;
    }
    if (hit) {
      push_implication(o, c);
    }
  }
}

void Solver::push_implication(int c, int reason) {
  if (d_num_implications == d_implications.size()) {
    d_implications.emplace_back();
  }
  Implication& imp = d_implications[d_num_implications];
  imp.constraint = c;
  imp.stack_size = d_stack.size();
  imp.reason.clear();
  imp.reason.push_back(reason);
  d_impl_index[c] = static_cast<int>(d_num_implications);
  ++d_num_implications;
  d_cons[c].implied = true;
  ++d_stats.implications;
}

void Solver::push_implication(int c, const std::vector<int>& reason) {
  push_implication(c, reason.empty() ? -1 : reason[0]);
  Implication& imp = d_implications[d_num_implications - 1];
  imp.reason.assign(reason.begin(), reason.end());
}

// ---------------------------------------------------------------------------
// Bounds implied along rows
// ---------------------------------------------------------------------------

void Solver::note_bound_change(int x) {
  if (d_deduction > 1 && !d_is_bound_changed[x]) {
    d_is_bound_changed[x] = 1;
    d_bound_changed.push_back(x);
  }
}

bool Solver::has_open_constraints(int x) const {
  for (int c : d_var_cons[x]) {
    if (!d_cons[c].on_stack && !d_cons[c].implied) {
      return true;
    }
  }
  return false;
}

// Each row whose variables got tighter bounds is read as an equation
//   0 = -basic + sum a_j * v_j
// that bounds every one of its variables by the bounds of the others.
// Long rows are left alone: their explanations would be as long as the
// row, and few of them pay.
void Solver::propagate_rows() {
  for (int x : d_bound_changed) {
    d_is_bound_changed[x] = 0;
    auto mark = [this](int b) {
      if (!d_row_marked[b]) {
        d_row_marked[b] = 1;
        d_rows_to_scan.push_back(b);
      }
    };
    if (d_tab.is_basic(x)) {
      mark(x);
    } else {
      for (const Tableau::ColEntry& ce : d_tab.column(x)) {
        mark(d_tab.basic_of_row(ce.row));
      }
    }
  }
  d_bound_changed.clear();
  for (int b : d_rows_to_scan) {
    d_row_marked[b] = 0;
    if (!d_inconsistent && d_tab.is_basic(b)
        && d_tab.row(b).size() < kMaxPropagationRow) {
      propagate_row(b);
    }
  }
  d_rows_to_scan.clear();
}

void Solver::propagate_row(int basic) {
  const Tableau::Row& row = d_tab.row(basic);
  for (int i = -1; i < static_cast<int>(row.size()); ++i) {
    int x = i < 0 ? basic : row[i].var;
    if (!has_open_constraints(x)) {
      continue;
    }
    bool has_lo = row_bound(row, basic, i, false, d_lo_bound, d_lo_reason);
    bool has_up = row_bound(row, basic, i, true, d_up_bound, d_up_reason);
    if (has_lo || has_up) {
      imply_from_bounds(x,
                        has_lo ? &d_lo_bound : nullptr,
                        d_lo_reason,
                        has_up ? &d_up_bound : nullptr,
                        d_up_reason);
    }
  }
}

// The bound of the i-th variable of the row (-1: the basic one) that the
// bounds of the other variables give, with their constraints in reason.
// The row reads 0 = -den*basic + sum n_j*v_j; with c_i y_i = -sum_{k != i}
// c_k y_k, where c = -den for the basic variable and n_j for the others,
// y_i is at most (for c_i > 0) the largest value of the right-hand side
// over c_i.
bool Solver::row_bound(const Tableau::Row& row,
                       int basic,
                       int i,
                       bool upper,
                       DNumber& out,
                       std::vector<int>& reason) {
  reason.clear();
  out = DNumber();
  const QNumber& den = d_tab.denominator(basic);
  // c_i is negative for the basic variable; dividing by it flips.
  const bool ci_neg = i < 0 ? true : row[i].coeff.sign() < 0;
  const bool want_max = upper != ci_neg;
  for (int k = -1; k < static_cast<int>(row.size()); ++k) {
    if (k == i) {
      continue;
    }
    int y = k < 0 ? basic : row[k].var;
    // term = -c_k y_k: +den*y for the basic one, -n_k y_k for the others.
    const bool positive = k < 0 ? true : row[k].coeff.sign() < 0;
    const Bound& b = (positive == want_max) ? d_upper[y] : d_lower[y];
    if (!b.present || b.constraint < 0) {
      return false;
    }
    if (k < 0) {
      out.addmul(b.value, den);
    } else {
      d_neg_coeff = row[k].coeff;
      d_neg_coeff.self_neg();
      out.addmul(b.value, d_neg_coeff);
    }
    reason.push_back(b.constraint);
  }
  if (i < 0) {
    out = -out;
    out /= den;
  } else {
    out /= row[i].coeff;
  }
  return true;
}

void Solver::imply_from_bounds(int x,
                               const DNumber* lo,
                               const std::vector<int>& lo_reason,
                               const DNumber* up,
                               const std::vector<int>& up_reason) {
  for (int o : d_var_cons[x]) {
    const RangeConstraint& oc = d_cons[o];
    if (oc.on_stack || oc.implied) {
      continue;
    }
    const std::vector<int>* reason = nullptr;
    switch (oc.kind) {
      case BoundKind::Lower:
        if (lo != nullptr && *lo >= oc.bound) {
          reason = &lo_reason;
        }
        break;
      case BoundKind::Upper:
        if (up != nullptr && *up <= oc.bound) {
          reason = &up_reason;
        }
        break;
      case BoundKind::Equal:
        if (lo != nullptr && up != nullptr && *lo >= oc.bound
            && *up <= oc.bound) {
          d_both_reason.assign(lo_reason.begin(), lo_reason.end());
          d_both_reason.insert(
              d_both_reason.end(), up_reason.begin(), up_reason.end());
          std::sort(d_both_reason.begin(), d_both_reason.end());
          d_both_reason.erase(
              std::unique(d_both_reason.begin(), d_both_reason.end()),
              d_both_reason.end());
          reason = &d_both_reason;
        }
        break;
      case BoundKind::Diseq:
        if (lo != nullptr && *lo > oc.bound) {
          reason = &lo_reason;
        } else if (up != nullptr && *up < oc.bound) {
          reason = &up_reason;
        }
        break;
    }
    if (reason != nullptr) {
      push_implication(o, *reason);
    }
  }
}

bool Solver::next_implied(int& c) {
  while (d_impl_cursor < d_num_implications) {
    c = d_implications[d_impl_cursor++].constraint;
    if (c >= 0) {
      return true;
    }
  }
  return false;
}

const std::vector<int>& Solver::implication_reason(int c) const {
  int i = d_impl_index[c];
  if (i < 0) {
    throw error("la::Solver: no implication for constraint "
                + std::to_string(c));
  }
  return d_implications[i].reason;
}

}  // namespace la
}  // namespace zenlo
