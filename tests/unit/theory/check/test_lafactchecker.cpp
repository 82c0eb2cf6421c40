// The independent arithmetic checker: it must refute what is contradictory
// over the rationals (strictness, equalities, disequalities, numbers past a
// machine word) and nothing that has a solution; over variables of sort
// Int, what is contradictory over the integers by rounding and by integer
// equality solving, and still nothing with an integer solution.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "terms/termmanager.h"
#include "theory/check/lafactchecker.h"
#include "theory/check/theoryfactchecks.h"
#include "theory/theoryowner.h"

namespace zenlo {
namespace {

using Lits = std::vector<TheoryLit>;

class LaFactCheckerTest : public ::testing::Test {
 protected:
  LaFactCheckerTest() : real(tm.get_real_type()), checker(tm) {
    x = constant("x");
    y = constant("y");
    z = constant("z");
    i = int_constant("i");
    j = int_constant("j");
    k = int_constant("k");
  }

  const Term_* int_constant(const std::string& name) {
    return tm.make_constant(tm.make_symbol(name, tm.get_integer_type()));
  }

  const Term_* constant(const std::string& name) {
    return tm.make_constant(tm.make_symbol(name, real));
  }

  const Term_* num(const std::string& text) {
    return tm.make_number(QNumber::from_str(text));
  }

  const Term_* num(long n) { return tm.make_number(n); }

  const Term_* times(long k, const Term_* t) {
    return tm.make_times(num(k), t);
  }

  const Term_* plus(const Term_* a, const Term_* b) {
    return tm.make_plus(a, b);
  }

  const Term_* minus(const Term_* a, const Term_* b) {
    return plus(a, times(-1, b));
  }

  TheoryLit leq(const Term_* a, const Term_* b) {
    return TheoryLit(tm.make_leq(a, b));
  }

  // a < b, as the negation of b <= a
  TheoryLit lt(const Term_* a, const Term_* b) { return ~leq(b, a); }

  TheoryLit eq(const Term_* a, const Term_* b) {
    return TheoryLit(tm.make_equal(a, b));
  }

  std::string why(const Lits& lits, LaFactChecker* c = nullptr) {
    TheoryFact fact{TheoryFactKind::Conflict, lits, nullptr};
    return (c != nullptr ? c : &checker)->check(fact);
  }

  bool refuted(const Lits& lits) { return why(lits).empty(); }

  TermManager tm;
  const Type* real;
  LaFactChecker checker;
  const Term_* x;
  const Term_* y;
  const Term_* z;
  const Term_* i;
  const Term_* j;
  const Term_* k;
};

TEST_F(LaFactCheckerTest, StrictnessDecidesCycles) {
  EXPECT_TRUE(refuted({lt(x, y), lt(y, x)}));
  EXPECT_TRUE(refuted({leq(x, y), leq(y, z), lt(z, x)}));
  EXPECT_FALSE(refuted({leq(x, y), leq(y, z), leq(z, x)}));
  EXPECT_TRUE(
      refuted({lt(x, num(1)), lt(num(0), x), leq(times(2, x), num(0))}));
  EXPECT_EQ(why({lt(x, num(1)), lt(num(0), x)}),
            "the literals have a solution over the rationals");
}

TEST_F(LaFactCheckerTest, EqualitiesAreSubstituted) {
  // x = y + 1, y = 2, x > 3
  EXPECT_TRUE(refuted({eq(x, plus(y, num(1))), eq(y, num(2)), lt(num(3), x)}));
  EXPECT_FALSE(
      refuted({eq(x, plus(y, num(1))), eq(y, num(2)), leq(num(3), x)}));
  // Equalities between constants alone.
  EXPECT_TRUE(refuted({eq(plus(x, y), num(1)), eq(plus(x, y), num(2))}));
}

TEST_F(LaFactCheckerTest, DisequalitiesNeedBothSides) {
  EXPECT_TRUE(refuted({~eq(x, y), leq(x, y), leq(y, x)}));
  EXPECT_FALSE(refuted({~eq(x, y), leq(x, y)}));
  // Only the second of two disequalities is forced.
  EXPECT_TRUE(refuted(
      {~eq(x, num(5)), ~eq(y, z), leq(minus(y, z), num(0)), leq(z, y)}));
  EXPECT_FALSE(refuted(
      {~eq(x, num(5)), ~eq(x, num(6)), leq(x, num(6)), leq(num(5), x)}));
}

TEST_F(LaFactCheckerTest, NumbersPastAMachineWordStayExact) {
  // 2^70 x <= 1 and x > 2^-70 contradict; x >= 2^-70 does not.
  const Term_* big = num("1180591620717411303424");
  const Term_* tiny = num("1/1180591620717411303424");
  EXPECT_TRUE(refuted({leq(tm.make_times(big, x), num(1)), lt(tiny, x)}));
  EXPECT_FALSE(refuted({leq(tm.make_times(big, x), num(1)), leq(tiny, x)}));
  // Products that overflow 64 bits during elimination.
  const Term_* c = num("18446744073709551557");  // a prime near 2^64
  EXPECT_TRUE(refuted({leq(tm.make_times(c, x), y),
                       leq(tm.make_times(c, y), z),
                       lt(z, tm.make_times(tm.make_times(c, c), x))}));
}

TEST_F(LaFactCheckerTest, DivisionByNumbersAndOpaqueTerms) {
  EXPECT_TRUE(refuted({leq(tm.make_divide(x, num(2)), num(1)), lt(num(2), x)}));
  // A product of variables is a variable of its own: sound, if weaker.
  const Term_* xy = tm.make_times(x, y);
  EXPECT_TRUE(refuted({leq(xy, num(0)), lt(num(1), xy)}));
  EXPECT_FALSE(refuted({leq(xy, num(0)), leq(x, num(0)), leq(num(1), y)}));
}

TEST_F(LaFactCheckerTest, RefusesWhatItCannotRead) {
  const Term_* p = tm.make_constant(tm.make_symbol("p", tm.get_bool_type()));
  EXPECT_EQ(why({TheoryLit(p), lt(x, y)}),
            "`p' is not an arithmetic comparison");
}

TEST_F(LaFactCheckerTest, EliminationStopsAtItsBound) {
  // Each of x, y, z sits between four bounds: eliminating needs more than
  // three rows.
  Lits lits;
  for (const Term_* v : {x, y, z}) {
    for (long k = 0; k < 4; ++k) {
      lits.push_back(leq(num(k), v));
      lits.push_back(leq(v, num(k + 10)));
    }
  }
  lits.push_back(lt(plus(x, plus(y, z)), num(0)));
  LaFactChecker small(tm, 3);
  EXPECT_EQ(why(lits, &small), "elimination needs more than 3 constraints");
  EXPECT_TRUE(refuted(lits));
}

// EUF derives a = b from a = 0 and b = 0; the normalizer writes a = b of
// two sums as a - b = 0, which only arithmetic can read.
TEST_F(LaFactCheckerTest, EufFactsOverSumsAreReadAsArithmetic) {
  TheoryFactChecks checks(tm, 6);
  const int euf = static_cast<int>(TheoryId::Euf);
  const Term_* a = plus(x, y);
  const Term_* b = plus(x, z);
  Lits valid{eq(a, num(0)), eq(b, num(0)), ~eq(minus(y, z), num(0))};
  TheoryFact fact{TheoryFactKind::Lemma, valid, nullptr};
  EXPECT_NO_THROW(checks.check(euf, "EUF", fact));
  Lits wrong{eq(a, num(0)), eq(b, num(1)), ~eq(minus(y, z), num(0))};
  TheoryFact bad{TheoryFactKind::Lemma, wrong, nullptr};
  EXPECT_THROW(checks.check(euf, "EUF", bad), TheoryFactChecks::error);
}

TEST_F(LaFactCheckerTest, IntegerBoundsAreRounded) {
  // 0 < i < 1 has no integer between; the same over reals has a solution.
  EXPECT_TRUE(refuted({lt(num(0), i), lt(i, num(1))}));
  EXPECT_FALSE(refuted({lt(num(0), x), lt(x, num(1))}));
  // 1/2 <= i <= 3/2 holds at i = 1.
  EXPECT_FALSE(refuted({leq(num("1/2"), i), leq(i, num("3/2"))}));
  // 1 <= 3i <= 2.
  EXPECT_TRUE(refuted({leq(num(1), times(3, i)), leq(times(3, i), num(2))}));
  // Sums with even coefficients: 2i + 2j in (0, 2) is impossible, and
  // 2i - 2j <= 1 with 2i - 2j >= 1 rounds to i - j <= 0 with i - j >= 1.
  EXPECT_TRUE(refuted({lt(num(0), plus(times(2, i), times(2, j))),
                       lt(plus(times(2, i), times(2, j)), num(2))}));
  EXPECT_TRUE(refuted({leq(minus(times(2, i), times(2, j)), num(1)),
                       leq(num(1), minus(times(2, i), times(2, j))),
                       leq(num(0), k)}));
  // An integer next to a real variable is not rounded: 0 < i + x < 1
  // holds at i = 0, x = 1/2.
  EXPECT_FALSE(refuted({lt(num(0), plus(i, x)), lt(plus(i, x), num(1))}));
}

TEST_F(LaFactCheckerTest, BranchLemmasAreValidOverIntegersOnly) {
  // The lemma  i <= 2 or 3 <= i  negated.
  EXPECT_TRUE(refuted({~leq(i, num(2)), ~leq(num(3), i)}));
  EXPECT_FALSE(refuted({~leq(x, num(2)), ~leq(num(3), x)}));
  // Over a sum of integers with a big floor.
  const Term_* f = num("36893488147419103232");  // 2^65
  const Term_* f1 = num("36893488147419103233");
  EXPECT_TRUE(refuted({~leq(plus(i, j), f), ~leq(f1, plus(i, j))}));
  // A gap of two leaves room.
  EXPECT_FALSE(refuted({~leq(i, num(2)), ~leq(num(4), i)}));
}

// A cut comes with the split that justifies it; the checker re-derives
// the split and the fact under each side, and trusts neither.
TEST_F(LaFactCheckerTest, SplitCertificatesAreCheckedNotTrusted) {
  auto with_split =
      [this](const Lits& lits, const Term_* below, const Term_* above) {
        LaSplitCertificate cert;
        cert.below = below;
        cert.above = above;
        TheoryFact fact{TheoryFactKind::Lemma, lits, &cert};
        return checker.check(fact);
      };
  // Over i + y >= 1/2, i - y <= 1/2, y >= 0 every integer i forces
  // y >= 1/2; the fact negates that.
  const Term_* half = num("1/2");
  Lits fact{leq(half, plus(i, y)),
            leq(minus(i, y), half),
            leq(num(0), y),
            lt(y, half)};
  const Term_* below = tm.make_leq(i, num(0));
  const Term_* above = tm.make_leq(num(1), i);
  EXPECT_EQ(with_split(fact, below, above), "");
  // A split with a gap, or over a real term, covers nothing.
  EXPECT_NE(with_split(fact, below, tm.make_leq(num(2), i)).find("gap"),
            std::string::npos);
  EXPECT_NE(with_split(fact, tm.make_leq(y, num(0)), tm.make_leq(num(1), y))
                .find("gap"),
            std::string::npos);
  // A fact that one side does not refute stays unrefuted: y < 1 is no
  // contradiction under either side.
  Lits weaker{leq(half, plus(i, y)),
              leq(minus(i, y), half),
              leq(num(0), y),
              lt(y, num(2))};
  EXPECT_NE(with_split(weaker, below, above).find("under"), std::string::npos);
}

TEST_F(LaFactCheckerTest, IntegerEqualitiesWithoutSolutions) {
  EXPECT_TRUE(refuted({eq(plus(times(2, i), times(2, j)), num(1))}));
  EXPECT_TRUE(
      refuted({eq(plus(times(3, i), plus(times(6, j), times(9, k))), num(5))}));
  EXPECT_FALSE(refuted({eq(plus(times(2, x), times(2, y)), num(1))}));
  // Each alone is solvable (gcd 1), together 6k = 3 is not; no unit
  // coefficient anywhere, so solving needs fresh variables.
  const Term_* s = plus(times(3, i), times(5, j));
  EXPECT_FALSE(refuted({eq(s, num(1))}));
  EXPECT_TRUE(refuted({eq(s, num(1)), eq(plus(s, times(6, k)), num(4))}));
  EXPECT_FALSE(refuted({eq(s, num(1)), eq(plus(s, times(6, k)), num(7))}));
  // Integer solutions of 3i + 5j = 1 are i = 2 + 5t, j = -1 - 3t: i is 2
  // modulo 5, so 3 <= i <= 6 forces i = 2 + 5 = 7, outside.
  EXPECT_TRUE(refuted({eq(s, num(1)), leq(num(3), i), leq(i, num(6))}));
  EXPECT_FALSE(refuted({eq(s, num(1)), leq(num(3), i), leq(i, num(7))}));
  // Coefficients past 64 bits: 2^65 i + 2^65 j = 2^64 has no solution.
  const Term_* two65 = num("36893488147419103232");
  EXPECT_TRUE(
      refuted({eq(plus(tm.make_times(two65, i), tm.make_times(two65, j)),
                  num("18446744073709551616"))}));
}

TEST_F(LaFactCheckerTest, IntegerDisequalitiesSplitAroundTheValue) {
  // i != 3 within [3, 4) over the integers.
  EXPECT_TRUE(refuted({~eq(i, num(3)), leq(num(3), i), lt(i, num(4))}));
  EXPECT_FALSE(refuted({~eq(x, num(3)), leq(num(3), x), lt(x, num(4))}));
}

}  // namespace
}  // namespace zenlo
