// Records with which polarity each Boolean subformula occurs in the
// asserted formulas: 1 negative occurrences only, 2 positive only, 3 both,
// 0 not seen. The clause sink uses it to pick the initial phase of a new
// variable, and theory solvers may use it to skip the half of an atom's
// meaning that no formula can need.
//
// The walk passes through and/or/not/iff only (an iff gives its arguments
// both polarities) and stops at atoms. Values only grow, so a term whose
// value already covers the incoming polarity is not walked again; every
// change is undone at the pop of its backtrack point.
#ifndef ZENLO_PREPROCESS_POLARITYCHECKER_H
#define ZENLO_PREPROCESS_POLARITYCHECKER_H

#include <cstdint>
#include <utility>
#include <vector>

#include "base/exception.h"

namespace zenlo {

class Term_;
class TermManager;

class PolarityChecker {
 public:
  ZENLO_DECLARE_ERROR;

  static constexpr int kNegative = 1;
  static constexpr int kPositive = 2;
  static constexpr int kBoth = 3;

  // - Requires: `tm` outlives the checker.
  explicit PolarityChecker(TermManager* tm) : d_tm(tm) {}

  // Records the occurrences of the subformulas of `f`, asserted as true.
  void add_formula(const Term_* f);

  // Records one occurrence of `t`, negative with `negated`.
  void add_literal(const Term_* t, bool negated);

  // - Returns: the value recorded for `t`; 0 when disabled or not seen.
  // - Throws: error for a term that is not of type Bool.
  int operator()(const Term_* t) const;

  void set_enabled(bool on) { d_enabled = on; }

  bool enabled() const { return d_enabled; }

  void push_backtrack_point() { d_marks.push_back(d_undo.size()); }

  // - Requires: a point is open.
  // - After: the values are those of the matching push.
  void pop_backtrack_point();

 private:
  void record(const Term_* t, uint8_t value);

  TermManager* d_tm;
  bool d_enabled = true;
  std::vector<uint8_t> d_value;  // by term id
  // (term id, old value) of every change made inside a backtrack point.
  std::vector<std::pair<uint64_t, uint8_t>> d_undo;
  std::vector<size_t> d_marks;
  std::vector<std::pair<const Term_*, uint8_t>> d_stack;
};

}  // namespace zenlo

#endif
