// The cardinality checker over EUF's classes: a class of an enumerated
// sort without a value gets one domain lemma, through its representative,
// once per backtrack point; classes holding a value and other sorts get
// none.
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "terms/termmanager.h"
#include "theory/cardinalitychecker.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace {

class CardinalityCheckerTest : public ::testing::Test {
 protected:
  CardinalityCheckerTest()
      : color(tm.get_enum_type("Color", {"red", "green", "blue"})),
        euf(&tm),
        card(&tm, &euf) {
    x = c("x", color);
    y = c("y", color);
    red = tm.make_constant((*tm.get_enum_values(color))[0]);
  }

  const Term_* c(const char* name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  TermManager tm;
  const Type* color;
  euf::Solver euf;
  CardinalityChecker card;
  const Term_* x;
  const Term_* y;
  const Term_* red;
};

TEST_F(CardinalityCheckerTest, ClassWithoutValueGetsTheDomainLemma) {
  euf.add_term(x);
  euf.add_term(c("n", tm.get_integer_type()));
  ASSERT_TRUE(card.check());
  std::vector<TheoryLit> lits;
  TheoryLemma lemma = card.get_lemma(lits);
  EXPECT_FALSE(card.has_lemmas());
  EXPECT_TRUE(has_flag(lemma.flags, LemmaFlag::Kept));
  std::set<const Term_*> atoms;
  for (TheoryLit l : lits) {
    EXPECT_FALSE(l.negated());
    atoms.insert(l.atom());
  }
  std::set<const Term_*> expected;
  for (const Symbol* v : *tm.get_enum_values(color)) {
    expected.insert(tm.make_equal(x, tm.make_constant(v)));
  }
  EXPECT_EQ(atoms, expected);
  // Once per term.
  EXPECT_FALSE(card.check());
}

TEST_F(CardinalityCheckerTest, ClassWithValueNeedsNone) {
  euf.add_term(x);
  euf.add_term(red);
  ASSERT_TRUE(euf.assert_equal(x, red, TheoryLit(tm.make_equal(x, red))));
  EXPECT_FALSE(card.check());
}

TEST_F(CardinalityCheckerTest, PopForgetsTheLemmasOfThePoint) {
  card.push_backtrack_point();
  euf.add_term(y);
  ASSERT_TRUE(card.check());
  std::vector<TheoryLit> lits;
  card.get_lemma(lits);
  EXPECT_FALSE(card.check());
  card.pop_backtrack_point();
  // The lemma went with the point's clauses: it is due again.
  EXPECT_TRUE(card.check());
}

}  // namespace
}  // namespace zenlo
