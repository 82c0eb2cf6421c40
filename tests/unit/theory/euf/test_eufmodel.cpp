// The EUF model on its own: classes and their standing terms, function
// tables over standing terms, and what a model built after a backtrack
// keeps of an earlier one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "terms/termmanager.h"
#include "theory/euf/eufmodel.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace {

class EufModelTest : public ::testing::Test {
 protected:
  EufModelTest() : u(tm.get_simple_type("U")) {}

  const Term_* constant(const std::string& name, const Type* t = nullptr) {
    return tm.make_constant(tm.make_symbol(name, t ? t : u));
  }

  const Symbol* function(const std::string& name, const Type* r) {
    return tm.make_symbol(name, tm.get_function_type({u}, r));
  }

  const Term_* app(const Symbol* f, const Term_* a) {
    return tm.make_uninterpreted_function(f, {a});
  }

  bool assume(const Term_* atom, bool value = true) {
    s.tell_atom(atom);
    return s.push_constraint(TheoryLit(atom, !value));
  }

  TermManager tm;
  const Type* u;
  euf::Solver s{&tm};
  euf::Model m;
};

TEST_F(EufModelTest, EqualTermsShareOneValueAndDistinctOnesDiffer) {
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  const Term_* c = constant("c");
  const Symbol* f = function("f", u);
  const Term_* fa = app(f, a);
  ASSERT_TRUE(assume(tm.make_equal(a, b)));
  ASSERT_TRUE(assume(tm.make_equal(fa, c)));
  ASSERT_TRUE(assume(tm.make_equal(a, c), false));
  m.build(s, tm, nullptr);
  EXPECT_EQ(m.value_of(a), m.value_of(b));
  EXPECT_EQ(m.value_of(fa), m.value_of(c));
  EXPECT_EQ(m.value_of(app(f, b)), nullptr) << "never met by the solver";
  EXPECT_NE(m.value_of(a), m.value_of(c));
  // The standing term is a member of its class, and the members listed
  // under it are exactly the class.
  const Term_* va = m.value_of(a);
  const TermList* members = m.members_of(va);
  ASSERT_NE(members, nullptr);
  EXPECT_NE(std::find(members->begin(), members->end(), va), members->end());
  for (const Term_* t : *members) {
    EXPECT_EQ(m.value_of(t), va);
  }
  EXPECT_GE(m.classes().size(), 2u);
}

TEST_F(EufModelTest, FunctionTablesMapStandingArgumentsToStandingValues) {
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  const Symbol* f = function("f", u);
  const Term_* fa = app(f, a);
  const Term_* fb = app(f, b);
  ASSERT_TRUE(assume(tm.make_equal(fa, b)));
  ASSERT_TRUE(assume(tm.make_equal(fb, a)));
  ASSERT_TRUE(assume(tm.make_equal(a, b), false));
  m.build(s, tm, nullptr);
  const auto* table = m.function_table(f);
  ASSERT_NE(table, nullptr);
  ASSERT_EQ(table->size(), 2u);
  for (const euf::Model::FunctionEntry& e : *table) {
    ASSERT_EQ(e.args.size(), 1u);
    // f(a) = b and f(b) = a: the table swaps the two classes.
    const Term_* arg = e.args[0];
    EXPECT_EQ(e.value, m.value_of(arg == m.value_of(a) ? b : a));
  }
  EXPECT_EQ(m.function_table(function("g", u)), nullptr);
}

TEST_F(EufModelTest, ValuesStandForTheirClassesAndPreferredTermsComeNext) {
  const Type* i = tm.get_integer_type();
  const Term_* x = constant("x", i);
  const Term_* y = constant("y", i);
  const Term_* z = constant("z", i);
  const Term_* w = constant("w", i);
  const Term_* seven = tm.make_number(7);
  ASSERT_TRUE(assume(tm.make_equal(x, seven)));
  ASSERT_TRUE(assume(tm.make_equal(y, x)));
  ASSERT_TRUE(assume(tm.make_equal(z, w)));
  TermSet preferred;
  preferred.insert(w);
  m.build(s, tm, &preferred);
  EXPECT_EQ(m.value_of(y), seven);
  EXPECT_EQ(m.value_of(z), w);
}

TEST_F(EufModelTest, RebuiltAfterBacktrackForgetsUndoneMerges) {
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  ASSERT_TRUE(assume(tm.make_equal(a, b), false));
  m.build(s, tm, nullptr);
  EXPECT_NE(m.value_of(a), m.value_of(b));
  s.push_checkpoint();
  const Term_* c = constant("c");
  ASSERT_TRUE(assume(tm.make_equal(a, c)));
  m.build(s, tm, nullptr);
  EXPECT_EQ(m.value_of(a), m.value_of(c));
  s.backtrack(1);
  m.clear();
  m.build(s, tm, nullptr);
  EXPECT_NE(m.value_of(a), m.value_of(b));
  // The atom stays told (keep-told) but its merge is gone.
  EXPECT_NE(m.value_of(c), m.value_of(a));
}

}  // namespace
}  // namespace zenlo
