// The bit-vector fact checker: it refutes what the bits refute, with
// uninterpreted applications tied by functional consistency, and gives a
// reason for facts that have a model or that it cannot read.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "terms/termmanager.h"
#include "theory/check/bvfactchecker.h"
#include "theory/check/theoryfactchecks.h"

namespace zenlo {
namespace {

using Lits = std::vector<TheoryLit>;

class BvFactCheckerTest : public ::testing::Test {
 protected:
  BvFactCheckerTest() : bv8(tm.get_bv_type(8)), checker(tm) {
    x = constant("x", bv8);
    y = constant("y", bv8);
    f = tm.make_symbol("f", tm.get_function_type({bv8}, bv8));
    p = tm.make_symbol("p", tm.get_function_type({bv8}, tm.get_bool_type()));
  }

  const Term_* constant(const std::string& name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  const Term_* num(int v) { return tm.make_bv_number(QNumber(v), 8); }

  const Term_* app(const Symbol* s, const Term_* a) {
    return tm.make_uninterpreted_function(s, {a});
  }

  TheoryLit eq(const Term_* a, const Term_* b) {
    SimplificationScope raw(tm, false);
    return TheoryLit(tm.make_equal(a, b));
  }

  std::string check(const Lits& lits) {
    TheoryFact fact{TheoryFactKind::Lemma, lits, nullptr};
    return checker.check(fact);
  }

  TermManager tm;
  const Type* bv8;
  BvFactChecker checker;
  const Term_* x;
  const Term_* y;
  const Symbol* f;
  const Symbol* p;
};

TEST_F(BvFactCheckerTest, BitLawsThatCongruenceLacks) {
  // ~x = 5 and x != 250: bvnot is injective, congruence does not know.
  const Term_* nx = tm.make_bv_not(x);
  EXPECT_EQ(check({eq(nx, num(5)), ~eq(x, num(250))}), "");
  EXPECT_NE(check({eq(nx, num(5)), ~eq(x, num(251))}), "");
  // x + 1 = y + 1 forces x = y.
  const Term_* one = num(1);
  EXPECT_EQ(
      check({eq(tm.make_bv_add(x, one), tm.make_bv_add(y, one)), ~eq(x, y)}),
      "");
}

TEST_F(BvFactCheckerTest, ApplicationsAreFunctional) {
  const Term_* fx = app(f, x);
  const Term_* fy = app(f, y);
  EXPECT_EQ(check({eq(x, y), ~eq(fx, fy)}), "");
  // Through bits: x xor y = 0 makes the arguments equal.
  EXPECT_EQ(check({eq(tm.make_bv_xor(x, y), num(0)),
                   TheoryLit(app(p, x)),
                   ~TheoryLit(app(p, y))}),
            "");
  // Different arguments leave the images free.
  EXPECT_NE(check({~eq(x, y), ~eq(fx, fy)}), "");
}

TEST_F(BvFactCheckerTest, OtherSortsAreNotRead) {
  const Term_* i = constant("i", tm.get_integer_type());
  const Term_* j = constant("j", tm.get_integer_type());
  std::string why = check({eq(i, j), ~eq(i, j)});
  EXPECT_NE(why.find("not a bit-vector term"), std::string::npos) << why;
}

}  // namespace
}  // namespace zenlo
