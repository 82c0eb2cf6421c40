// la::Solver: the simplex loop, conflicts and disequalities.
#include <algorithm>

#include "base/terminationtest.h"
#include "theory/la/lasolver.h"

namespace zenlo {
namespace la {

// ---------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------

void Solver::set_beta(int x, const DNumber& v) {
  d_beta[x] = v;
  if (!d_is_changed[x]) {
    d_is_changed[x] = 1;
    d_changed.push_back(x);
  }
}

// beta[x] += d * n / den, and x becomes a candidate when it now violates.
void Solver::add_to_beta(int x,
                         const DNumber& d,
                         const QNumber& n,
                         const QNumber& den) {
  d_step = d;
  d_step *= n;
  if (!(den == 1L)) {
    d_step /= den;
  }
  d_beta[x] += d_step;
  if (!d_is_changed[x]) {
    d_is_changed[x] = 1;
    d_changed.push_back(x);
  }
  if (!d_is_candidate[x] && violates(x)) {
    d_is_candidate[x] = 1;
    d_candidates.push_back(x);
  }
}

bool Solver::violates(int x) const {
  return (d_lower[x].present && d_beta[x] < d_lower[x].value)
         || (d_upper[x].present && d_beta[x] > d_upper[x].value);
}

// Nonbasic x moves to v; the rows of x's column follow.
void Solver::update(int x, const DNumber& v) {
  d_tmp = v;
  d_tmp -= d_beta[x];
  for (const Tableau::ColEntry& ce : d_tab.column(x)) {
    int b = d_tab.basic_of_row(ce.row);
    add_to_beta(b, d_tmp, d_tab.row(b)[ce.row_pos].coeff, d_tab.denominator(b));
  }
  set_beta(x, v);
}

// Basic x goes to v by moving nonbasic y, then they swap roles. With
// x = a*y + rest, y moves by theta = (v - beta[x]) / a.
void Solver::pivot_and_update(int x, int y, const DNumber& v) {
  d_tmp = v;
  d_tmp -= d_beta[x];
  d_tmp /= d_tab.coeff(x, y);
  set_beta(x, v);
  for (const Tableau::ColEntry& ce : d_tab.column(y)) {
    int b = d_tab.basic_of_row(ce.row);
    if (b != x) {
      add_to_beta(
          b, d_tmp, d_tab.row(b)[ce.row_pos].coeff, d_tab.denominator(b));
    }
  }
  d_beta[y] += d_tmp;
  if (!d_is_changed[y]) {
    d_is_changed[y] = 1;
    d_changed.push_back(y);
  }
  d_tab.pivot(x, y);
  ++d_stats.pivots;
  if (!d_is_candidate[y] && violates(y)) {
    d_is_candidate[y] = 1;
    d_candidates.push_back(y);
  }
}

// Bounds pushed since the last check (and values put back by a failed
// one): a nonbasic variable outside its bounds is moved onto the nearest
// bound, a basic one becomes a candidate.
void Solver::repair_touched() {
  for (int x : d_touched) {
    d_is_touched[x] = 0;
    if (d_tab.is_basic(x)) {
      if (!d_is_candidate[x] && violates(x)) {
        d_is_candidate[x] = 1;
        d_candidates.push_back(x);
      }
    } else if (d_lower[x].present && d_beta[x] < d_lower[x].value) {
      update(x, d_lower[x].value);
    } else if (d_upper[x].present && d_beta[x] > d_upper[x].value) {
      update(x, d_upper[x].value);
    }
  }
  d_touched.clear();
}

// ---------------------------------------------------------------------------
// Pivot selection
// ---------------------------------------------------------------------------

// Greedy: the violating basic variable with the shortest row, ties to the
// smaller index; Bland: the smallest index. Variables that are fine (or
// no longer basic) leave the list.
int Solver::select_basic(bool greedy) {
  int best = -1;
  size_t best_len = 0;
  size_t j = 0;
  for (size_t i = 0; i < d_candidates.size(); ++i) {
    int x = d_candidates[i];
    if (!d_tab.is_basic(x) || !violates(x)) {
      d_is_candidate[x] = 0;
      continue;
    }
    d_candidates[j++] = x;
    size_t len = greedy ? d_tab.row(x).size() : 0;
    if (best < 0 || len < best_len || (len == best_len && x < best)) {
      best = x;
      best_len = len;
    }
  }
  d_candidates.resize(j);
  return best;
}

// A variable of x's row that can move in the direction that repairs x:
// for x below its lower bound, one with a > 0 below its upper bound or
// with a < 0 above its lower bound; the mirror for x above its upper.
int Solver::select_nonbasic(int x, bool below, bool greedy) const {
  int best = -1;
  size_t best_len = 0;
  for (const Tableau::Entry& e : d_tab.row(x)) {
    int y = e.var;
    bool increase = (e.coeff.sign() > 0) == below;
    bool ok = increase ? !d_upper[y].present || d_beta[y] < d_upper[y].value
                       : !d_lower[y].present || d_beta[y] > d_lower[y].value;
    if (!ok) {
      continue;
    }
    size_t len = greedy ? d_tab.column(y).size() : 0;
    if (best < 0 || len < best_len || (len == best_len && y < best)) {
      best = y;
      best_len = len;
    }
  }
  return best;
}

// ---------------------------------------------------------------------------
// The loop
// ---------------------------------------------------------------------------

bool Solver::do_check() {
  if (d_inconsistent) {
    return false;
  }
  repair_touched();
  const long threshold = d_greedy_threshold > 0
                             ? d_greedy_threshold
                             : std::max<long>(20, d_tab.num_vars());
  for (long round = 1;; ++round) {
    if (d_termination != nullptr) {
      (*d_termination)();
    }
    const bool greedy = round < threshold;
    int x = select_basic(greedy);
    if (x < 0) {
      return true;
    }
    bool below = d_lower[x].present && d_beta[x] < d_lower[x].value;
    int y = select_nonbasic(x, below, greedy);
    if (y < 0) {
      build_conflict(x, below);
      d_inconsistent = true;
      d_inconsistent_depth = d_stack.size();
      ++d_stats.conflicts;
      return false;
    }
    pivot_and_update(x, y, below ? d_lower[x].value : d_upper[x].value);
  }
}

// x's row cannot move x into its bounds: every variable of the row sits at
// the bound that blocks it. For x below its lower bound l,
//   x = sum a*y <= sum_{a>0} a*upper(y) + sum_{a<0} a*lower(y) < l,
// so lower(x) and the blocking bounds, weighted by the row's integers, are
// contradictory; the mirror for the upper bound.
void Solver::build_conflict(int x, bool below) {
  d_conflict.clear();
  d_conflict_coeffs.clear();
  // The row scaled by its den: den*x = sum n*y, integer multipliers.
  add_conflict(below ? d_lower[x].constraint : d_upper[x].constraint,
               d_tab.denominator(x));
  for (const Tableau::Entry& e : d_tab.row(x)) {
    bool use_upper = (e.coeff.sign() > 0) == below;
    const Bound& b = use_upper ? d_upper[e.var] : d_lower[e.var];
    add_conflict(b.constraint, abs(e.coeff));
  }
}

// After a successful check the assignment is saved; after a failed one the
// saved assignment comes back.
void Solver::save_or_restore(bool ok) {
  for (int x : d_changed) {
    d_is_changed[x] = 0;
    if (ok) {
      d_saved[x] = d_beta[x];
    } else {
      d_beta[x] = d_saved[x];
      touch(x);
    }
  }
  d_changed.clear();
}

bool Solver::check(bool approx) {
  ++d_stats.checks;
  d_unresolved = -1;
  bool ok = do_check();
  if (ok && d_deduction > 1) {
    propagate_rows();
  }
  if (ok && !approx && !d_diseqs.empty()) {
    ok = check_disequalities();
  }
  save_or_restore(ok);
  return ok;
}

// ---------------------------------------------------------------------------
// Disequalities
// ---------------------------------------------------------------------------

// Moving one variable off a value may put another on its forbidden value,
// so the passes repeat; what is still violated after a few of them is left
// to the caller (unresolved_diseq), which can split it in the search.
bool Solver::check_disequalities() {
  for (int pass = 0; pass < 4; ++pass) {
    bool all_hold = true;
    for (size_t i = d_diseqs.size(); i-- > 0;) {
      int c = d_diseqs[i];
      if (d_beta[d_cons[c].var] != d_cons[c].bound) {
        continue;
      }
      all_hold = false;
      if (!fix_disequality(c)) {
        return false;
      }
    }
    if (all_hold) {
      return true;
    }
  }
  for (int c : d_diseqs) {
    if (d_beta[d_cons[c].var] == d_cons[c].bound) {
      d_unresolved = c;
      break;
    }
  }
  return true;
}

// x != k with beta[x] = k: try x <= k - delta, then x >= k + delta, each
// as a temporary bound. When both fail, the two conflicts imply x = k:
// their union with the disequality is the conflict.
bool Solver::fix_disequality(int c) {
  ++d_stats.diseq_splits;
  const int x = d_cons[c].var;
  const DNumber below(d_cons[c].bound.real(), d_cons[c].bound.delta() - 1L);
  const DNumber above(d_cons[c].bound.real(), d_cons[c].bound.delta() + 1L);
  size_t mark = d_undo.size();
  bool ok = assert_upper(x, below, -1) && do_check();
  undo_bounds(mark);
  d_inconsistent = false;
  if (ok) {
    return true;
  }
  std::vector<int> first(d_conflict);
  std::vector<QNumber> first_coeffs(d_conflict_coeffs);
  ok = assert_lower(x, above, -1) && do_check();
  undo_bounds(mark);
  d_inconsistent = false;
  if (ok) {
    return true;
  }
  for (size_t i = 0; i < first.size(); ++i) {
    add_conflict(first[i], first_coeffs[i]);
  }
  add_conflict(c, QNumber::one());
  d_inconsistent = true;
  d_inconsistent_depth = d_stack.size();
  ++d_stats.conflicts;
  return false;
}

}  // namespace la
}  // namespace zenlo
