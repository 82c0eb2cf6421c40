// la::Solver: a general simplex over rational variables with bounds, for
// conjunctions of constraints that come and go in stack order.
//
// The front end numbers variables and constraints. Each constraint is told
// once (a bound of some kind on one variable) and then pushed and popped
// any number of times; slack variables are defined by equations told once
// (tell_equation). The solver keeps an assignment beta that satisfies
// every equation at all times and every bound after a successful check.
// Strict bounds use DNumber; a concrete delta is chosen only by
// build_model.
//
// Pivoting follows a greedy rule (shortest row, shortest column) for a
// number of rounds and then Bland's rule (smallest index), which cannot
// cycle. A failed check leaves a conflict: constraints with Farkas
// coefficients whose weighted sum is contradictory. After a check the
// assignment is saved; a failed check puts the saved one back, which
// satisfies a superset of the bounds that remain after popping, so
// backtracking never recomputes values.
//
// Pushes deduce the other constraints of the same variable that the new
// bound decides; these implications are read with next_implied and stay
// valid until a reason is popped.
//
// The solver knows nothing of terms or literals.
#ifndef ZENLO_THEORY_LA_LASOLVER_H
#define ZENLO_THEORY_LA_LASOLVER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/exception.h"
#include "theory/la/dnumber.h"
#include "theory/la/tableau.h"

namespace zenlo {

class TerminationTest;

namespace la {

enum class BoundKind : uint8_t { Lower = 1, Equal = 2, Upper = 3, Diseq = 4 };

class Solver {
 public:
  ZENLO_DECLARE_ERROR;

  struct Stats {
    uint64_t pivots = 0;
    uint64_t checks = 0;
    uint64_t conflicts = 0;
    uint64_t implications = 0;
    uint64_t diseq_splits = 0;
  };

  // deduction_level: 0 none, otherwise implications between constraints
  // on one variable. greedy_threshold: rounds of greedy pivoting per check
  // before Bland's rule; 0 means the larger of 20 and the number of
  // variables.
  Solver(int deduction_level, int greedy_threshold);

  void set_termination_test(TerminationTest* t) { d_termination = t; }

  // ---- Variables and equations ---------------------------------------------

  // Returns: a new variable with value 0 and no bounds.
  int new_var();

  int num_vars() const { return d_tab.num_vars(); }

  // Requires: slack is new (no equation, no constraint); the variables of
  //   sum exist.
  // After: slack = sum holds for good, slack's value follows.
  void tell_equation(int slack, const LinearSum& sum);

  // Requires: the youngest variable has no told constraint.
  // After: it is gone with its equation.
  void remove_last_var();

  // ---- Constraints ---------------------------------------------------------

  // Requires: c >= 0 not told yet (or retracted); var exists.
  void tell_bound(int c, int var, BoundKind kind, const DNumber& bound);

  // Requires: c told and not on the stack. After: c is forgotten.
  void retract_bound(int c);

  bool is_told(int c) const {
    return c < static_cast<int>(d_cons.size()) && d_cons[c].var >= 0;
  }

  // Returns: false when the solver is inconsistent after the push (at once
  //   or from before); then get_conflict answers.
  bool push_constraint(int c);

  // Returns: the constraint popped. After: the solver is consistent.
  int pop_constraint();

  size_t num_pushed() const { return d_stack.size(); }

  int pushed_at(size_t i) const { return d_stack[i].constraint; }

  bool is_on_stack(int c) const { return d_cons[c].on_stack; }

  // ---- Checking ------------------------------------------------------------

  // Returns: false on a conflict. Without approx, disequalities are
  //   checked too.
  bool check(bool approx);

  bool is_inconsistent() const { return d_inconsistent; }

  // Requires: is_inconsistent(). Constraints, each once, and their
  // positive Farkas coefficients, in parallel.
  const std::vector<int>& get_conflict() const { return d_conflict; }

  const std::vector<QNumber>& get_conflict_coeffs() const {
    return d_conflict_coeffs;
  }

  // Returns: a disequality that the last complete check could not make
  //   true by moving values (it may need a split), or -1.
  int unresolved_diseq() const { return d_unresolved; }

  // ---- Implications --------------------------------------------------------

  // Returns: true with the next implied constraint in c, or false.
  bool next_implied(int& c);

  // Requires: c is implied now. Returns: the constraints that imply it.
  const std::vector<int>& implication_reason(int c) const;

  bool is_implied(int c) const { return d_cons[c].implied; }

  // ---- Model ---------------------------------------------------------------

  // Requires: the last check(false) succeeded.
  // After: get_value gives exact rationals for a delta that satisfies every
  //   pushed bound strictly where it must, and every active disequality.
  void build_model();

  const QNumber& get_value(int x) const { return d_model[x]; }

  const DNumber& get_abstract_value(int x) const { return d_beta[x]; }

  const QNumber& model_delta() const { return d_delta; }

  // Returns: whether x has a lower (upper) bound now, stored in `out`.
  bool get_lower_bound(int x, DNumber& out) const;
  bool get_upper_bound(int x, DNumber& out) const;

  // Returns: the constraint behind x's lower (upper) bound; -1 without
  //   one, or for the temporary bound of a disequality split.
  int lower_constraint(int x) const {
    return d_lower[x].present ? d_lower[x].constraint : -1;
  }

  int upper_constraint(int x) const {
    return d_upper[x].present ? d_upper[x].constraint : -1;
  }

  const Tableau& tableau() const { return d_tab; }

  const Stats& stats() const { return d_stats; }

 private:
  // Rows with this many nonbasic entries or more give no implied bounds.
  static constexpr size_t kMaxPropagationRow = 10;

  struct Bound {
    DNumber value;
    int constraint = -1;  // -1: a temporary bound of a disequality split
    bool present = false;
  };

  struct RangeConstraint {
    int var = -1;  // -1: not told
    BoundKind kind = BoundKind::Lower;
    bool on_stack = false;
    bool implied = false;
    DNumber bound;
  };

  struct BoundUndo {
    int var;
    bool upper;
    Bound old;
  };

  struct Pushed {
    int constraint;
    size_t undo_size;
    size_t diseq_size;
  };

  struct Implication {
    int constraint;     // -1 once retracted
    size_t stack_size;  // valid while at least this many are pushed
    std::vector<int> reason;
  };

  // ---- Asserting -----------------------------------------------------------
  bool assert_lower(int x, const DNumber& b, int c);
  bool assert_upper(int x, const DNumber& b, int c);
  void undo_bounds(size_t size);
  void touch(int x);
  void try_trivial_implications(int c);
  void push_implication(int c, int reason);
  void push_implication(int c, const std::vector<int>& reason);
  void note_bound_change(int x);
  void propagate_rows();
  void propagate_row(int basic);
  bool has_open_constraints(int x) const;
  bool row_bound(const Tableau::Row& row,
                 int basic,
                 int i,
                 bool upper,
                 DNumber& out,
                 std::vector<int>& reason);
  void imply_from_bounds(int x,
                         const DNumber* lo,
                         const std::vector<int>& lo_reason,
                         const DNumber* up,
                         const std::vector<int>& up_reason);

  // ---- Checking ------------------------------------------------------------
  bool do_check();
  void repair_touched();
  bool violates(int x) const;
  int select_basic(bool greedy);
  int select_nonbasic(int x, bool below, bool greedy) const;
  void set_beta(int x, const DNumber& v);
  // beta[x] += d * n / den
  void add_to_beta(int x,
                   const DNumber& d,
                   const QNumber& n,
                   const QNumber& den);
  void update(int x, const DNumber& v);
  void pivot_and_update(int x, int y, const DNumber& v);
  void build_conflict(int x, bool below);
  void add_conflict(int c, const QNumber& a);
  bool check_disequalities();
  bool fix_disequality(int c);
  void save_or_restore(bool ok);

  // ---- Model ---------------------------------------------------------------
  void bound_delta(const DNumber& lo, const DNumber& hi, QNumber& delta) const;
  bool diseqs_hold(const QNumber& delta) const;

  Tableau d_tab;
  std::vector<DNumber> d_beta;
  std::vector<DNumber> d_saved;
  std::vector<Bound> d_lower;
  std::vector<Bound> d_upper;
  std::vector<std::vector<int>> d_var_cons;  // told constraints per var

  std::vector<int> d_changed;
  std::vector<uint8_t> d_is_changed;
  std::vector<int> d_touched;
  std::vector<uint8_t> d_is_touched;
  std::vector<int> d_candidates;
  std::vector<uint8_t> d_is_candidate;

  std::vector<RangeConstraint> d_cons;
  std::vector<BoundUndo> d_undo;
  std::vector<Pushed> d_stack;
  std::vector<int> d_diseqs;

  std::vector<Implication> d_implications;
  size_t d_num_implications = 0;  // live prefix; the rest is for reuse
  size_t d_impl_cursor = 0;
  std::vector<int> d_impl_index;  // constraint -> implication, -1

  // Variables whose bounds tightened since the rows were last scanned.
  std::vector<int> d_bound_changed;
  std::vector<uint8_t> d_is_bound_changed;
  std::vector<int> d_rows_to_scan;  // by basic variable
  std::vector<uint8_t> d_row_marked;
  std::vector<int> d_lo_reason;
  std::vector<int> d_up_reason;
  std::vector<int> d_both_reason;
  DNumber d_lo_bound;
  DNumber d_up_bound;

  std::vector<int> d_conflict;
  std::vector<QNumber> d_conflict_coeffs;
  bool d_inconsistent = false;
  // The solver stays inconsistent until the stack is below this size: a
  // failed push left its bound out, later pushes only marked the stack.
  size_t d_inconsistent_depth = 0;
  int d_unresolved = -1;

  int d_deduction;
  int d_greedy_threshold;
  TerminationTest* d_termination = nullptr;

  std::vector<QNumber> d_model;
  QNumber d_delta;

  // Scratch.
  DNumber d_tmp;
  DNumber d_step;
  QNumber d_neg_coeff;
  QNumber d_qtmp;

  Stats d_stats;
};

}  // namespace la
}  // namespace zenlo

#endif
