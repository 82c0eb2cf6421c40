// Reverse unit propagation on its own: implied clauses pass, others fail,
// units and top-level conflicts are followed, and forgetting variables
// drops exactly the clauses over them.
#include <gtest/gtest.h>

#include <vector>

#include "dpll/rupchecker.h"

namespace zenlo {
namespace dpll {
namespace {

// DIMACS-style literals: 1 is variable 0, -1 its negation.
std::vector<Lit> cl(std::initializer_list<int> ds) {
  std::vector<Lit> out;
  for (int d : ds) {
    out.push_back(mk_lit(std::abs(d) - 1, d < 0));
  }
  return out;
}

bool implied(RupChecker& r, std::initializer_list<int> ds) {
  std::vector<Lit> c = cl(ds);
  return r.implied(c.data(), c.size());
}

TEST(RupCheckerTest, ResolventsPassAndGuessesFail) {
  RupChecker r;
  r.add_axiom(cl({1, 2}));
  r.add_axiom(cl({-1, 3}));
  r.add_axiom(cl({-2, 3}));
  EXPECT_TRUE(implied(r, {3}));
  EXPECT_TRUE(implied(r, {2, 3}));
  EXPECT_FALSE(implied(r, {1}));
  EXPECT_FALSE(implied(r, {-3}));
  EXPECT_FALSE(implied(r, {4}));
  // A check leaves no trace: the same question gets the same answer.
  EXPECT_TRUE(implied(r, {3}));
  EXPECT_FALSE(implied(r, {1, -3}));
}

TEST(RupCheckerTest, UnitsAndConflictsAtTopLevel) {
  RupChecker r;
  r.add_axiom(cl({1}));
  r.add_axiom(cl({-1, 2}));
  EXPECT_TRUE(implied(r, {2}));
  EXPECT_TRUE(implied(r, {2, 5}));
  EXPECT_FALSE(implied(r, {-2}));
  // Clauses whose watches are false at top level once added.
  r.add_axiom(cl({-2, -1, 3}));
  EXPECT_TRUE(implied(r, {3}));
  r.add_axiom(cl({-3}));
  EXPECT_TRUE(implied(r, {-7}));  // inconsistent copy implies everything
}

TEST(RupCheckerTest, TautologiesAndRepeatsAreHarmless) {
  RupChecker r;
  r.add_axiom(cl({1, -1}));
  r.add_axiom(cl({2, 2, 3}));
  r.add_axiom(cl({-3}));
  EXPECT_FALSE(implied(r, {1}));
  EXPECT_TRUE(implied(r, {2}));
}

TEST(RupCheckerTest, ForgottenVariablesTakeTheirClauses) {
  RupChecker r;
  r.add_axiom(cl({1, 2}));
  r.add_axiom(cl({-2, 5}));
  r.add_axiom(cl({-1, 5}));
  EXPECT_TRUE(implied(r, {5}));
  r.forget_vars_from(1);  // variables 2 and up (1-based) go
  EXPECT_EQ(r.num_clauses(), 0u);
  r.add_axiom(cl({-1, 2}));
  EXPECT_FALSE(implied(r, {5}));
  EXPECT_TRUE(implied(r, {-1, 2}));
}

TEST(RupCheckerTest, LongChainsPropagate) {
  RupChecker r;
  const int n = 2000;
  for (int i = 1; i < n; ++i) {
    r.add_axiom(cl({-i, i + 1}));
  }
  EXPECT_TRUE(implied(r, {-1, n}));
  EXPECT_FALSE(implied(r, {-2, 1}));
}

}  // namespace
}  // namespace dpll
}  // namespace zenlo
