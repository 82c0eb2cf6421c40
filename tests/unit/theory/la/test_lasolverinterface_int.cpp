// Integers through the LA adapter, without a search: atoms over integers
// are rounded as they are read, equalities without integer solutions are
// conflicts over exactly those equalities, and a fractional relaxation
// passes the check with a branch lemma whose two sides are exactly the
// integers around the value. Each test plays the search by hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "base/configuration.h"
#include "terms/termmanager.h"
#include "theory/la/lasolverinterface.h"

namespace zenlo {
namespace {

class LaIntTest : public ::testing::Test {
 protected:
  LaIntTest() : la(&config, &tm) {
    x = var("x", tm.get_integer_type());
    y = var("y", tm.get_integer_type());
    z = var("z", tm.get_integer_type());
    r = var("r", tm.get_real_type());
  }

  const Term_* var(const std::string& name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  const Term_* num(long n) { return tm.make_number(n); }

  const Term_* num(const std::string& s) {
    return tm.make_number(QNumber::from_str(s));
  }

  const Term_* times(long k, const Term_* t) {
    return tm.make_times(num(k), t);
  }

  const Term_* plus(const Term_* a, const Term_* b) {
    return tm.make_plus(a, b);
  }

  // Tells the atom and assumes the literal, as the search would.
  TheoryLit assert_lit(const Term_* atom, bool negated = false) {
    if (told.insert(atom).second) {
      la.tell_atom(atom);
    }
    TheoryLit l(atom, negated);
    EXPECT_TRUE(la.assume(l));
    return l;
  }

  // The value of a term in the model after a passing check without lemma.
  QNumber value(const Term_* t) {
    la.build_model();
    const Term_* v = la.get_model_value(t);
    EXPECT_NE(v, nullptr);
    QNumber q;
    EXPECT_TRUE(v != nullptr && tm.is_number(v->get_symbol(), &q));
    return q;
  }

  // Plays the search: a depth-first walk over the branch lemmas, each
  // side at a decision level of its own, undone when it fails.
  // Returns: whether some branch ends in a check that passes without a
  //   lemma; the solver then holds that state.
  bool search(int depth = 0) {
    if (depth > 40) {
      ADD_FAILURE() << "branching deeper than 40";
      return false;
    }
    if (!la.check(false)) {
      return false;
    }
    if (!la.has_lemmas()) {
      return true;
    }
    std::vector<TheoryLit> clause;
    la.get_lemma(clause);
    for (TheoryLit side : clause) {
      int level = levels++;
      la.new_decision_level();
      if (told.insert(side.atom()).second) {
        la.tell_atom(side.atom());
      }
      EXPECT_TRUE(la.assume(side));
      if (search(depth + 1)) {
        return true;
      }
      la.cancel_until(level);
      levels = level;
    }
    return false;
  }

  Configuration::Theory config;
  TermManager tm;
  LaSolverInterface la;
  const Term_* x;
  const Term_* y;
  const Term_* z;
  const Term_* r;
  int levels = 0;
  std::set<const Term_*> told;
};

TEST_F(LaIntTest, StrictBoundsOnIntegersAreRounded) {
  // 0 < x < 1 over the integers: the simplex alone refutes it, with both
  // literals in the conflict.
  TheoryLit a = assert_lit(tm.make_leq(x, num(0)), true);
  TheoryLit b = assert_lit(tm.make_leq(num(1), x), true);
  EXPECT_FALSE(la.check(true));
  std::vector<TheoryLit> conflict;
  la.get_conflict(conflict);
  EXPECT_EQ(conflict.size(), 2u);
  EXPECT_NE(std::find(conflict.begin(), conflict.end(), a), conflict.end());
  EXPECT_NE(std::find(conflict.begin(), conflict.end(), b), conflict.end());
}

TEST_F(LaIntTest, OverRealsTheSameBoundsHaveRoom) {
  assert_lit(tm.make_leq(r, num(0)), true);
  assert_lit(tm.make_leq(num(1), r), true);
  EXPECT_TRUE(la.check(false));
  EXPECT_FALSE(la.has_lemmas());
}

TEST_F(LaIntTest, EvenSumIsNeverOdd) {
  // 2x + 2y = 1 is false as it is read: a unit lemma, no constraint.
  const Term_* atom = tm.make_equal(plus(times(2, x), times(2, y)), num(1));
  la.tell_atom(atom);
  ASSERT_TRUE(la.has_lemmas());
  std::vector<TheoryLit> clause;
  la.get_lemma(clause);
  ASSERT_EQ(clause.size(), 1u);
  EXPECT_EQ(clause[0], TheoryLit(atom, true));
}

TEST_F(LaIntTest, EqualitiesWithoutIntegerSolutionConflictAlone) {
  // 3x + 5y = 1 and 3x + 5y + 6z = 4 each have integer solutions, not
  // both (6z = 3). The bound on z is not part of the conflict.
  TheoryLit e1 =
      assert_lit(tm.make_equal(plus(times(3, x), times(5, y)), num(1)));
  assert_lit(tm.make_leq(z, num(100)));
  TheoryLit e2 = assert_lit(
      tm.make_equal(plus(plus(times(3, x), times(5, y)), times(6, z)), num(4)));
  EXPECT_TRUE(la.check(true));
  EXPECT_FALSE(la.check(false));
  std::vector<TheoryLit> conflict;
  la.get_conflict(conflict);
  ASSERT_EQ(conflict.size(), 2u);
  EXPECT_NE(std::find(conflict.begin(), conflict.end(), e1), conflict.end());
  EXPECT_NE(std::find(conflict.begin(), conflict.end(), e2), conflict.end());
}

TEST_F(LaIntTest, ThirdsAreRoundedApart) {
  // 1 <= 3x <= 2 reads as x >= 1 and x <= 0: no branch needed.
  assert_lit(tm.make_leq(num(1), times(3, x)));
  assert_lit(tm.make_leq(times(3, x), num(2)));
  EXPECT_FALSE(la.check(false));
}

TEST_F(LaIntTest, FractionalValueGivesBranchOnAdjacentIntegers) {
  // 3x + 2y = 7 with x, y >= 0: every vertex of the relaxation is
  // fractional (7/3 or 7/2), so a lemma must come.
  assert_lit(tm.make_equal(plus(times(3, x), times(2, y)), num(7)));
  assert_lit(tm.make_leq(num(0), x));
  assert_lit(tm.make_leq(num(0), y));
  ASSERT_TRUE(la.check(false));
  ASSERT_TRUE(la.has_lemmas());
  std::vector<TheoryLit> clause;
  la.get_lemma(clause);
  ASSERT_EQ(clause.size(), 2u);
  // t <= f  and  f + 1 <= t, over the same term, both positive.
  const Term_* lo = clause[0].atom();
  const Term_* hi = clause[1].atom();
  EXPECT_FALSE(clause[0].negated());
  EXPECT_FALSE(clause[1].negated());
  ASSERT_EQ(lo->get_child(0), hi->get_child(1));
  const Term_* t = lo->get_child(0);
  EXPECT_TRUE(t == x || t == y);
  QNumber f, f1;
  ASSERT_TRUE(tm.is_number(lo->get_child(1)->get_symbol(), &f));
  ASSERT_TRUE(tm.is_number(hi->get_child(0)->get_symbol(), &f1));
  EXPECT_EQ(f, t == x ? QNumber(2) : QNumber(3));
  EXPECT_EQ(f + QNumber(1), f1);
  // The relaxed values are no model.
  la.build_model();
  EXPECT_EQ(la.get_model_value(x), nullptr);
}

TEST_F(LaIntTest, SmallKnapsackFindsTheIntegerPoint) {
  // 3x + 2y = 7, x, y >= 0 has the one integer solution (1, 2).
  assert_lit(tm.make_equal(plus(times(3, x), times(2, y)), num(7)));
  assert_lit(tm.make_leq(num(0), x));
  assert_lit(tm.make_leq(num(0), y));
  ASSERT_TRUE(search());
  EXPECT_EQ(value(x), QNumber(1));
  EXPECT_EQ(value(y), QNumber(2));
}

TEST_F(LaIntTest, BoundedProblemWithoutIntegerPointIsExhausted) {
  // 3x + 5y = 4 has integer solutions, none with x, y >= 0; only branching
  // shows it.
  assert_lit(tm.make_equal(plus(times(3, x), times(5, y)), num(4)));
  assert_lit(tm.make_leq(num(0), x));
  assert_lit(tm.make_leq(num(0), y));
  EXPECT_FALSE(search());
}

TEST_F(LaIntTest, DisequalityOnIntegersBranches) {
  // 3 <= x <= 4, x != 3 over the integers: the model must be x = 4. The
  // disequality goes to the simplex, which may move x into (3, 4).
  config.la.split_rat_eq = false;
  assert_lit(tm.make_leq(num(3), x));
  assert_lit(tm.make_leq(x, num(4)));
  assert_lit(tm.make_equal(x, num(3)), true);
  ASSERT_TRUE(search());
  EXPECT_EQ(value(x), QNumber(4));
}

TEST_F(LaIntTest, CoefficientsBeyondSixtyFourBits) {
  // 2^64 x + 2^64 y = 2^65 + 2^63 is x + y = 5/2 over integers: false.
  const Term_* atom =
      tm.make_equal(plus(tm.make_times(num("18446744073709551616"), x),
                         tm.make_times(num("18446744073709551616"), y)),
                    num("46116860184273879040"));
  la.tell_atom(atom);
  ASSERT_TRUE(la.has_lemmas());
  std::vector<TheoryLit> clause;
  la.get_lemma(clause);
  ASSERT_EQ(clause.size(), 1u);
  EXPECT_EQ(clause[0], TheoryLit(atom, true));
  // 2^65 + 1 <= 2^64 z <= 2^65 + 2^63 rounds to 3 <= z <= 2.
  const Term_* sz = tm.make_times(num("18446744073709551616"), z);
  assert_lit(tm.make_leq(num("36893488147419103233"), sz));
  assert_lit(tm.make_leq(sz, num("46116860184273879040")));
  EXPECT_FALSE(la.check(true));
}

}  // namespace
}  // namespace zenlo
