// The simplex on its own: strict bounds, conflicts at push time and from
// rows (checked as Farkas combinations), disequalities, implications and
// their retraction, values kept across backtracking, exact models, big
// numbers, and a random cross-check of every answer.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "theory/la/lasolver.h"

namespace zenlo {
namespace la {
namespace {

// A problem over original variables 0..n-1 and slacks defined by sums.
struct Problem {
  Solver s{2, 0};
  std::vector<LinearSum> def;  // per variable: empty for an original one

  struct Con {
    int var;
    BoundKind kind;
    DNumber bound;
  };

  std::vector<Con> cons;

  int var() {
    def.emplace_back();
    return s.new_var();
  }

  int slack(const LinearSum& sum) {
    int x = s.new_var();
    def.push_back(sum);
    s.tell_equation(x, sum);
    return x;
  }

  int bound(int x, BoundKind k, const DNumber& b) {
    int c = static_cast<int>(cons.size());
    cons.push_back({x, k, b});
    s.tell_bound(c, x, k, b);
    return c;
  }

  // The value of x in the model through its definition.
  QNumber value(int x) const {
    if (def[x].empty()) {
      return s.get_value(x);
    }
    QNumber v;
    for (const auto& [y, a] : def[x]) {
      v.self_addmul(value(y), a);
    }
    return v;
  }

  // Every pushed constraint holds in the built model, strictly where its
  // bound carries a delta.
  void expect_model() {
    s.build_model();
    for (size_t i = 0; i < s.num_pushed(); ++i) {
      const Con& c = cons[s.pushed_at(i)];
      QNumber v = value(c.var);
      EXPECT_EQ(v, s.get_value(c.var));
      // Strict bounds carry their delta: x < 1 is x <= 1 - delta.
      QNumber r = c.bound.value_at(s.model_delta());
      EXPECT_GT(s.model_delta().sign(), 0);
      switch (c.kind) {
        case BoundKind::Lower: EXPECT_GE(v, r); break;
        case BoundKind::Upper: EXPECT_LE(v, r); break;
        case BoundKind::Equal: EXPECT_EQ(v, r); break;
        case BoundKind::Diseq: EXPECT_NE(v, r); break;
      }
    }
  }

  // The conflict, over lower and upper bounds, weighted by its
  // coefficients, sums to 0 <= negative: the linear parts cancel.
  void expect_farkas() {
    const auto& cs = s.get_conflict();
    const auto& ws = s.get_conflict_coeffs();
    ASSERT_FALSE(cs.empty());
    std::vector<QNumber> lin(def.size());
    DNumber constant;  // sum of w * (expr - bound) <= 0 after signs
    for (size_t i = 0; i < cs.size(); ++i) {
      const Con& c = cons[cs[i]];
      ASSERT_TRUE(c.kind == BoundKind::Lower || c.kind == BoundKind::Upper);
      ASSERT_GT(ws[i].sign(), 0);
      QNumber w = c.kind == BoundKind::Upper ? ws[i] : ws[i].neg();
      add_expr(c.var, w, lin);
      constant.addmul(c.bound, w.neg());
    }
    for (const QNumber& q : lin) {
      EXPECT_TRUE(q.is_zero());
    }
    EXPECT_GT(constant, DNumber(0L)) << "not a contradiction";
  }

  void add_expr(int x, const QNumber& w, std::vector<QNumber>& lin) {
    if (def[x].empty()) {
      lin[x] += w;
      return;
    }
    for (const auto& [y, a] : def[x]) {
      add_expr(y, w * a, lin);
    }
  }
};

const DNumber kStrictBelow1(1L, -1L);
const DNumber kStrictAbove0(0L, 1L);

TEST(LaSolver, StrictBoundsGiveAValueStrictlyBetween) {
  Problem p;
  int x = p.var();
  p.s.push_constraint(p.bound(x, BoundKind::Upper, kStrictBelow1));
  p.s.push_constraint(p.bound(x, BoundKind::Lower, kStrictAbove0));
  ASSERT_TRUE(p.s.check(false));
  p.expect_model();
  EXPECT_EQ(p.s.get_value(x), QNumber(1L, 2L));
}

TEST(LaSolver, CrossingBoundsConflictAtPush) {
  Problem p;
  int x = p.var();
  int a = p.bound(x, BoundKind::Upper, kStrictBelow1);
  int b = p.bound(x, BoundKind::Lower, DNumber(1L));
  EXPECT_TRUE(p.s.push_constraint(a));
  EXPECT_FALSE(p.s.push_constraint(b));
  EXPECT_EQ(p.s.get_conflict().size(), 2u);
  p.expect_farkas();
  // Inconsistent until popped: further pushes only mark the stack.
  EXPECT_FALSE(p.s.push_constraint(p.bound(x, BoundKind::Lower, 5L)));
  p.s.pop_constraint();
  p.s.pop_constraint();
  EXPECT_TRUE(p.s.check(false));
}

TEST(LaSolver, StrictCycleIsUnsat) {
  // x - y < 0 and y - x < 0: the second sum is the first negated.
  Problem p;
  int x = p.var(), y = p.var();
  int d = p.slack({{x, 1L}, {y, -1L}});
  p.s.push_constraint(p.bound(d, BoundKind::Upper, DNumber(0L, -1L)));
  p.s.push_constraint(p.bound(d, BoundKind::Lower, DNumber(0L, 1L)));
  EXPECT_FALSE(p.s.check(true));
  p.expect_farkas();
}

TEST(LaSolver, RowConflictHasOneBoundPerRowVariable) {
  // x + y >= 3, x <= 1, y <= 1.
  Problem p;
  int x = p.var(), y = p.var();
  int s = p.slack({{x, 1L}, {y, 1L}});
  p.s.push_constraint(p.bound(x, BoundKind::Upper, 1L));
  p.s.push_constraint(p.bound(y, BoundKind::Upper, 1L));
  ASSERT_TRUE(p.s.check(true));
  p.s.push_constraint(p.bound(s, BoundKind::Lower, 3L));
  EXPECT_FALSE(p.s.check(true));
  EXPECT_EQ(p.s.get_conflict().size(), 3u);
  p.expect_farkas();
  p.s.pop_constraint();
  EXPECT_TRUE(p.s.check(false));
  p.expect_model();
}

TEST(LaSolver, DisequalityWithOnlyValueInRangeFails) {
  // x != y, x <= y, y <= x: with d = x - y, d != 0, d <= 0, d >= 0.
  Problem p;
  int x = p.var(), y = p.var();
  int d = p.slack({{x, 1L}, {y, -1L}});
  int ne = p.bound(d, BoundKind::Diseq, 0L);
  p.s.push_constraint(ne);
  p.s.push_constraint(p.bound(d, BoundKind::Upper, 0L));
  ASSERT_TRUE(p.s.check(true));  // disequalities wait for complete checks
  p.s.push_constraint(p.bound(d, BoundKind::Lower, 0L));
  EXPECT_FALSE(p.s.check(false));
  const auto& c = p.s.get_conflict();
  EXPECT_NE(std::find(c.begin(), c.end(), ne), c.end());
  p.s.pop_constraint();
  ASSERT_TRUE(p.s.check(false));
  p.expect_model();
}

TEST(LaSolver, DisequalitiesMoveValues) {
  Problem p;
  int x = p.var();
  p.s.push_constraint(p.bound(x, BoundKind::Lower, 0L));
  p.s.push_constraint(p.bound(x, BoundKind::Upper, 2L));
  for (long k = 0; k <= 2; ++k) {
    if (k != 1) {
      p.s.push_constraint(p.bound(x, BoundKind::Diseq, k));
    }
  }
  ASSERT_TRUE(p.s.check(false));
  EXPECT_EQ(p.s.unresolved_diseq(), -1);
  p.expect_model();
}

TEST(LaSolver, FailedCheckRestoresSavedValues) {
  Problem p;
  int x = p.var(), y = p.var();
  int s = p.slack({{x, 1L}, {y, 1L}});
  p.s.push_constraint(p.bound(s, BoundKind::Lower, 4L));
  ASSERT_TRUE(p.s.check(true));
  std::vector<DNumber> before;
  for (int v : {x, y, s}) {
    before.push_back(p.s.get_abstract_value(v));
  }
  p.s.push_constraint(p.bound(x, BoundKind::Upper, 1L));
  p.s.push_constraint(p.bound(y, BoundKind::Upper, 1L));
  ASSERT_FALSE(p.s.check(true));
  int i = 0;
  for (int v : {x, y, s}) {
    EXPECT_EQ(p.s.get_abstract_value(v), before[i++]);
  }
  p.s.pop_constraint();
  ASSERT_TRUE(p.s.check(false));
  p.expect_model();
}

TEST(LaSolver, ImplicationsFollowTheStack) {
  Problem p;
  int x = p.var();
  int le5 = p.bound(x, BoundKind::Upper, 5L);
  int gt5 = p.bound(x, BoundKind::Lower, DNumber(5L, 1L));
  int ne7 = p.bound(x, BoundKind::Diseq, 7L);
  int le2 = p.bound(x, BoundKind::Upper, 2L);
  p.s.push_constraint(le2);
  std::vector<int> implied;
  int c;
  while (p.s.next_implied(c)) {
    implied.push_back(c);
    EXPECT_EQ(p.s.implication_reason(c), std::vector<int>{le2});
  }
  std::sort(implied.begin(), implied.end());
  EXPECT_EQ(implied, (std::vector<int>{le5, ne7}));
  EXPECT_FALSE(p.s.is_implied(gt5));
  p.s.pop_constraint();
  EXPECT_FALSE(p.s.is_implied(le5));
  EXPECT_FALSE(p.s.next_implied(c));
}

// s = x + y: bounds on x and y bound s, and bounds on s and y bound x.
TEST(LaSolver, RowsImplyBoundsOfEachOfTheirVariables) {
  Problem p;
  int x = p.var(), y = p.var();
  int s = p.slack({{x, 1L}, {y, 1L}});
  int x_ge1 = p.bound(x, BoundKind::Lower, 1L);
  int y_ge2 = p.bound(y, BoundKind::Lower, 2L);
  int s_ge3 = p.bound(s, BoundKind::Lower, 3L);
  int s_gt3 = p.bound(s, BoundKind::Lower, DNumber(3L, 1L));
  int s_le3 = p.bound(s, BoundKind::Upper, 3L);
  int x_le1 = p.bound(x, BoundKind::Upper, 1L);
  int x_lt1 = p.bound(x, BoundKind::Upper, DNumber(1L, -1L));
  p.s.push_constraint(x_ge1);
  p.s.push_constraint(y_ge2);
  ASSERT_TRUE(p.s.check(true));
  EXPECT_TRUE(p.s.is_implied(s_ge3));
  std::vector<int> reason = p.s.implication_reason(s_ge3);
  std::sort(reason.begin(), reason.end());
  EXPECT_EQ(reason, (std::vector<int>{x_ge1, y_ge2}));
  EXPECT_FALSE(p.s.is_implied(s_gt3));
  // x + y <= 3 and y >= 2 give x <= 1, not x < 1.
  p.s.push_constraint(s_le3);
  ASSERT_TRUE(p.s.check(true));
  EXPECT_TRUE(p.s.is_implied(x_le1));
  EXPECT_FALSE(p.s.is_implied(x_lt1));
  reason = p.s.implication_reason(x_le1);
  std::sort(reason.begin(), reason.end());
  EXPECT_EQ(reason, (std::vector<int>{y_ge2, s_le3}));
  p.s.pop_constraint();
  EXPECT_FALSE(p.s.is_implied(x_le1));
  EXPECT_TRUE(p.s.is_implied(s_ge3));
}

// An implied constraint may be retracted while its reason stays pushed,
// and its number told again for another bound: the old implication must
// neither be reported for it nor clear a new one when the reason goes.
TEST(LaSolver, RetractedImpliedConstraintsLeaveNoImplication) {
  Solver s(2, 0);
  int x = s.new_var(), y = s.new_var();
  s.tell_bound(0, x, BoundKind::Upper, 5L);
  s.tell_bound(1, x, BoundKind::Upper, 2L);
  ASSERT_TRUE(s.push_constraint(1));
  ASSERT_TRUE(s.is_implied(0));
  s.retract_bound(0);
  s.tell_bound(0, y, BoundKind::Lower, 1L);
  EXPECT_FALSE(s.is_implied(0));
  int c;
  EXPECT_FALSE(s.next_implied(c));
  EXPECT_THROW(s.implication_reason(0), Solver::error);
  // Now implied for real, by a bound on y.
  s.tell_bound(2, y, BoundKind::Lower, 3L);
  ASSERT_TRUE(s.push_constraint(2));
  ASSERT_TRUE(s.next_implied(c));
  EXPECT_EQ(c, 0);
  EXPECT_EQ(s.implication_reason(0), std::vector<int>{2});
  s.pop_constraint();
  s.pop_constraint();
  EXPECT_FALSE(s.is_implied(0));
}

TEST(LaSolver, NoImplicationsWithoutDeduction) {
  Solver s(0, 0);
  int x = s.new_var();
  s.tell_bound(0, x, BoundKind::Upper, 5L);
  s.tell_bound(1, x, BoundKind::Upper, 2L);
  s.push_constraint(1);
  int c;
  EXPECT_FALSE(s.next_implied(c));
}

TEST(LaSolver, OverflowInTheMiddleOfPivots) {
  // Coefficients near 2^31 and 2^62: products in the pivots leave the
  // machine words and come back.
  Problem p;
  const QNumber a(3037000499L), b(4611686018427387903L);
  const QNumber big =
      QNumber::from_str("170141183460469231731687303715884105727");
  int x = p.var(), y = p.var(), z = p.var();
  int s1 = p.slack({{x, a}, {y, b}, {z, 1L}});
  int s2 = p.slack({{x, b}, {y, a}, {z, -1L}});
  int s3 = p.slack({{x, 1L}, {y, 1L}, {z, big}});
  p.s.push_constraint(p.bound(s1, BoundKind::Lower, big));
  p.s.push_constraint(p.bound(s2, BoundKind::Upper, DNumber(big.neg(), -1L)));
  p.s.push_constraint(p.bound(s3, BoundKind::Equal, QNumber(1L, 3L)));
  ASSERT_TRUE(p.s.check(false));
  p.expect_model();
  // x + y >= big and x + y <= big - 1 through the rows is unsat.
  int s4 = p.slack({{x, b}, {y, b}});
  int s5 = p.slack({{x, a}, {y, a}});
  p.s.push_constraint(p.bound(s4, BoundKind::Lower, b * big));
  p.s.push_constraint(p.bound(s5, BoundKind::Upper, a * big - a));
  EXPECT_FALSE(p.s.check(true));
  p.expect_farkas();
}

// Random bounds over random rows, pushed and popped in stack order. Every
// sat answer is checked by its model, every conflict as a Farkas
// combination; the answers at each depth must not depend on the history.
TEST(LaSolver, RandomCrossCheck) {
  std::mt19937 rng(12345);
  for (int round = 0; round < 300; ++round) {
    Problem p;
    const int n = 2 + rng() % 4;
    std::vector<int> vars;
    for (int i = 0; i < n; ++i) {
      vars.push_back(p.var());
    }
    for (int i = 0; i < 1 + static_cast<int>(rng() % 4); ++i) {
      LinearSum sum;
      for (int v = 0; v < n; ++v) {
        if (rng() % 2) {
          sum.emplace_back(v, QNumber(static_cast<long>(rng() % 7) - 3));
          if (sum.back().second.is_zero()) {
            sum.pop_back();
          }
        }
      }
      if (!sum.empty()) {
        vars.push_back(p.slack(sum));
      }
    }
    for (int step = 0; step < 12; ++step) {
      if (p.s.num_pushed() > 0 && rng() % 3 == 0) {
        p.s.pop_constraint();
        continue;
      }
      int x = vars[rng() % vars.size()];
      BoundKind k = rng() % 2 ? BoundKind::Lower : BoundKind::Upper;
      DNumber b(static_cast<long>(rng() % 11) - 5,
                static_cast<long>(rng() % 3) - 1);
      int c = p.bound(x, k, b);
      // Now and then an older constraint instead, often an implied one:
      // its bound must hold in the model as much as a fresh one's.
      if (rng() % 3 == 0) {
        int old = static_cast<int>(rng() % p.cons.size());
        if (!p.s.is_on_stack(old)) {
          c = old;
        }
      }
      bool ok = p.s.push_constraint(c) && p.s.check(rng() % 2);
      if (ok) {
        p.expect_model();
        // What the pushed bounds imply holds in their abstract solution
        // (a concrete delta is chosen for the pushed bounds alone).
        for (size_t k = 0; k < p.cons.size(); ++k) {
          if (!p.s.is_implied(static_cast<int>(k))) {
            continue;
          }
          const Problem::Con& ic = p.cons[k];
          const DNumber& v = p.s.get_abstract_value(ic.var);
          switch (ic.kind) {
            case BoundKind::Lower: EXPECT_GE(v, ic.bound); break;
            case BoundKind::Upper: EXPECT_LE(v, ic.bound); break;
            case BoundKind::Equal: EXPECT_EQ(v, ic.bound); break;
            case BoundKind::Diseq: EXPECT_NE(v, ic.bound); break;
          }
        }
      } else {
        p.expect_farkas();
      }
    }
  }
}

TEST(LaSolver, RemovingVariablesAfterPivots) {
  Problem p;
  int x = p.var(), y = p.var();
  int s = p.slack({{x, 1L}, {y, 2L}});
  int c = p.bound(s, BoundKind::Lower, 10L);
  p.s.push_constraint(c);
  ASSERT_TRUE(p.s.check(true));
  p.s.pop_constraint();
  p.s.retract_bound(c);
  p.s.remove_last_var();
  EXPECT_EQ(p.s.tableau().num_rows(), 0);
  p.def.pop_back();
  int t = p.slack({{x, 1L}, {y, -1L}});
  p.s.push_constraint(p.bound(t, BoundKind::Equal, 3L));
  ASSERT_TRUE(p.s.check(false));
  p.expect_model();
}

}  // namespace
}  // namespace la
}  // namespace zenlo
