// The independent EUF checker: it must refute every fact that equality and
// congruence refute, through Boolean connectives and term-ifs, and must
// refuse a fact that lacks one of the literals it needs.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "terms/termmanager.h"
#include "theory/check/eufclosurechecker.h"
#include "theory/check/theoryfactchecks.h"

namespace zenlo {
namespace {

using Lits = std::vector<TheoryLit>;

class EufClosureCheckerTest : public ::testing::Test {
 protected:
  EufClosureCheckerTest() : u(tm.get_simple_type("U")), checker(tm) {
    tm.set_forbid_bool_args(false);
    a = constant("a");
    b = constant("b");
    c = constant("c");
    f = tm.make_symbol("f", tm.get_function_type({u}, u));
    p = tm.make_symbol("p", tm.get_function_type({u}, tm.get_bool_type()));
  }

  const Term_* constant(const std::string& name, const Type* t = nullptr) {
    return tm.make_constant(tm.make_symbol(name, t ? t : u));
  }

  const Term_* app(const Symbol* s, const Term_* x) {
    return tm.make_uninterpreted_function(s, {x});
  }

  TheoryLit eq(const Term_* x, const Term_* y) {
    return TheoryLit(tm.make_equal(x, y));
  }

  bool refuted(const Lits& lits) {
    TheoryFact fact{TheoryFactKind::Conflict, lits, nullptr};
    return checker.check(fact).empty();
  }

  TermManager tm;
  const Type* u;
  EufClosureChecker checker;
  const Term_* a;
  const Term_* b;
  const Term_* c;
  const Symbol* f;
  const Symbol* p;
};

TEST_F(EufClosureCheckerTest, TransitivityAndCongruenceRefute) {
  EXPECT_TRUE(refuted({eq(a, b), eq(b, c), ~eq(a, c)}));
  EXPECT_TRUE(refuted({eq(a, b), ~eq(app(f, a), app(f, b))}));
  // f(f(a)) = a, f(f(f(a))) = a  imply  f(a) = a.
  const Term_* fa = app(f, a);
  const Term_* ffa = app(f, fa);
  const Term_* fffa = app(f, ffa);
  EXPECT_TRUE(refuted({eq(ffa, a), eq(fffa, a), ~eq(fa, a)}));
  EXPECT_TRUE(refuted({eq(a, b), TheoryLit(app(p, a)), ~TheoryLit(app(p, b))}));
}

TEST_F(EufClosureCheckerTest, MissingLiteralIsRefused) {
  EXPECT_FALSE(refuted({eq(a, b), ~eq(a, c)}));
  EXPECT_FALSE(refuted({eq(b, c), ~eq(app(f, a), app(f, c))}));
  EXPECT_FALSE(refuted({TheoryLit(app(p, a)), ~TheoryLit(app(p, b))}));
  EXPECT_FALSE(refuted({}));
}

TEST_F(EufClosureCheckerTest, ConnectivesAndBooleanArgumentsAreEvaluated) {
  const Term_* x = constant("x", tm.get_bool_type());
  const Term_* y = constant("y", tm.get_bool_type());
  const Symbol* g =
      tm.make_symbol("g", tm.get_function_type({tm.get_bool_type()}, u));
  const Term_* both = tm.make_and(x, y);
  // A definition lemma (-both x) negated: both and not x.
  EXPECT_TRUE(refuted({TheoryLit(both), ~TheoryLit(x)}));
  EXPECT_TRUE(refuted({TheoryLit(x), TheoryLit(y), ~TheoryLit(both)}));
  EXPECT_FALSE(refuted({TheoryLit(x), ~TheoryLit(both)}));
  // Equal truth values make equal arguments.
  EXPECT_TRUE(refuted({TheoryLit(x), TheoryLit(y), ~eq(app(g, x), app(g, y))}));
  EXPECT_FALSE(refuted({TheoryLit(x), ~eq(app(g, x), app(g, y))}));
}

TEST_F(EufClosureCheckerTest, TermIfFollowsItsCondition) {
  const Term_* x = constant("x", tm.get_bool_type());
  const Term_* t = tm.make_term_ite(x, a, b);
  EXPECT_TRUE(refuted({TheoryLit(x), ~eq(t, a)}));
  EXPECT_FALSE(refuted({~eq(t, a)}));
}

TEST_F(EufClosureCheckerTest, DeepChainsNeedNoRecursion) {
  const Term_* s = a;
  const Term_* t = b;
  for (int i = 0; i < 100000; ++i) {
    s = app(f, s);
    t = app(f, t);
  }
  EXPECT_TRUE(refuted({eq(a, b), ~eq(s, t)}));
  EXPECT_FALSE(refuted({eq(a, c), ~eq(s, t)}));
}

TEST(TheoryFactChecksTest, FailuresAreInternalErrorsNamingTheFact) {
  TermManager tm;
  const Type* u = tm.get_simple_type("U");
  const Term_* a = tm.make_constant(tm.make_symbol("a", u));
  const Term_* b = tm.make_constant(tm.make_symbol("b", u));
  TheoryFactChecks checks(tm, 6);
  Lits ok{TheoryLit(tm.make_equal(a, b)), ~TheoryLit(tm.make_equal(b, a))};
  Lits bad{TheoryLit(tm.make_equal(a, b))};
  checks.check(0, "EUF", TheoryFact{TheoryFactKind::Conflict, ok, nullptr});
  try {
    checks.check(
        0, "EUF", TheoryFact{TheoryFactKind::Explanation, bad, nullptr});
    FAIL() << "no error";
  } catch (const TheoryFactChecks::error& e) {
    EXPECT_NE(e.message().find("internal error"), std::string::npos);
    EXPECT_NE(e.message().find("EUF explanation"), std::string::npos);
  }
  // A theory without a checker has its facts refused.
  EXPECT_THROW(
      checks.check(3, "FP", TheoryFact{TheoryFactKind::Lemma, ok, nullptr}),
      TheoryFactChecks::error);
}

// A term of an enumerated sort unequal to every value has none left;
// unequal to all but one, it is consistent.
TEST_F(EufClosureCheckerTest, EnumDomainsAreExhausted) {
  const Type* e = tm.get_enum_type("Color", {"red", "green"});
  const Term_* x = constant("x", e);
  const Term_* y = constant("y", e);
  const Term_* red = tm.make_constant((*tm.get_enum_values(e))[0]);
  const Term_* green = tm.make_constant((*tm.get_enum_values(e))[1]);
  EXPECT_TRUE(refuted({~eq(x, red), ~eq(x, green)}));
  EXPECT_TRUE(refuted({eq(x, y), ~eq(x, red), ~eq(y, green)}));
  EXPECT_FALSE(refuted({~eq(x, red), ~eq(y, green)}));
  // Values are distinct.
  EXPECT_TRUE(refuted({eq(x, red), eq(x, green)}));
}

}  // namespace
}  // namespace zenlo
