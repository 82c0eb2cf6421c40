#include <gtest/gtest.h>

#include "preprocess/polaritychecker.h"
#include "support/bool_formulas.h"

namespace zenlo {
namespace {

using zenlo_test::make_atoms;

class PolarityCheckerTest : public ::testing::Test {
 protected:
  PolarityCheckerTest() : a(make_atoms(tm, "p", 4)), pc(&tm) {}

  TermManager tm;
  std::vector<const Term_*> a;
  PolarityChecker pc;
};

TEST_F(PolarityCheckerTest, RecordsPolarityThroughConnectives) {
  // p0 & !(p1 | !p2) & (p3 <-> p0)
  const Term_* neg_or = tm.make_not(tm.make_or(a[1], tm.make_not(a[2])));
  pc.add_formula(
      tm.make_and(tm.make_and(a[0], neg_or), tm.make_iff(a[3], a[0])));
  EXPECT_EQ(pc(a[0]), PolarityChecker::kBoth);
  EXPECT_EQ(pc(a[1]), PolarityChecker::kNegative);
  EXPECT_EQ(pc(a[2]), PolarityChecker::kPositive);
  EXPECT_EQ(pc(a[3]), PolarityChecker::kBoth);
  EXPECT_EQ(pc(neg_or->get_child(0)), PolarityChecker::kNegative);
}

TEST_F(PolarityCheckerTest, SharedNodeGetsBothPolaritiesFromTwoParents) {
  const Term_* s = tm.make_or(a[0], a[1]);
  pc.add_formula(s);
  EXPECT_EQ(pc(a[0]), PolarityChecker::kPositive);
  // Already covered positively: the walk below `s` must still carry the
  // new negative polarity down.
  pc.add_formula(tm.make_or(tm.make_not(s), a[2]));
  EXPECT_EQ(pc(s), PolarityChecker::kBoth);
  EXPECT_EQ(pc(a[1]), PolarityChecker::kBoth);
}

TEST_F(PolarityCheckerTest, PopUndoesAndDisabledAnswersZero) {
  pc.add_literal(a[0], false);
  pc.push_backtrack_point();
  pc.add_formula(tm.make_and(tm.make_not(a[0]), a[1]));
  EXPECT_EQ(pc(a[0]), PolarityChecker::kBoth);
  pc.pop_backtrack_point();
  EXPECT_EQ(pc(a[0]), PolarityChecker::kPositive);
  EXPECT_EQ(pc(a[1]), 0);
  pc.set_enabled(false);
  EXPECT_EQ(pc(a[0]), 0);
}

TEST_F(PolarityCheckerTest, NonBooleanTermIsAnError) {
  const Term_* x = tm.make_constant(tm.make_symbol("x", tm.get_real_type()));
  EXPECT_THROW(pc(x), PolarityChecker::error);
}

}  // namespace
}  // namespace zenlo
