// The one answer to "which theory decides this term", and what the manager
// and EUF make of it.
#include <gtest/gtest.h>

#include "terms/termmanager.h"
#include "theory/theoryowner.h"

namespace zenlo {
namespace {

class TheoryOwnerTest : public ::testing::Test {
 protected:
  TheoryOwnerTest() {
    u = tm.get_simple_type("U");
    i = tm.get_integer_type();
    r = tm.get_real_type();
    bv8 = tm.get_bv_type(8);
  }

  const Term_* c(const char* name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  TheoryId of(const Term_* t) { return theory_of(tm, t); }

  TermManager tm;
  const Type* u;
  const Type* i;
  const Type* r;
  const Type* bv8;
};

TEST_F(TheoryOwnerTest, BooleanStructureIsTheSearchs) {
  const Term_* p = c("p", tm.get_bool_type());
  const Term_* q = c("q", tm.get_bool_type());
  EXPECT_EQ(of(p), TheoryId::Search);
  EXPECT_EQ(of(tm.make_and(p, q)), TheoryId::Search);
  EXPECT_EQ(of(tm.make_not(p)), TheoryId::Search);
  EXPECT_EQ(of(tm.make_true()), TheoryId::Search);
}

TEST_F(TheoryOwnerTest, OperatorsBelongToTheirTheories) {
  const Term_* x = c("x", i);
  const Term_* y = c("y", r);
  EXPECT_EQ(of(tm.make_plus(x, tm.make_number(1))), TheoryId::La);
  EXPECT_EQ(of(tm.make_leq(x, tm.make_number(3))), TheoryId::La);
  // Division and the transcendental functions are arithmetic for every
  // caller, never uninterpreted for one and interpreted for another.
  EXPECT_EQ(of(tm.make_divide(y, c("z", r))), TheoryId::La);
  const Term_* bx = c("bx", bv8);
  EXPECT_EQ(of(tm.make_bv_add(bx, bx)), TheoryId::Bv);
  EXPECT_EQ(of(tm.make_bv_ult(bx, c("by", bv8))), TheoryId::Bv);
}

TEST_F(TheoryOwnerTest, EqualitiesAndSymbolsFollowTheirSort) {
  const Term_* a = c("a", u);
  const Term_* b = c("b", u);
  EXPECT_EQ(of(a), TheoryId::Euf);
  EXPECT_EQ(of(tm.make_equal(a, b)), TheoryId::Euf);
  const Term_* x = c("x", i);
  EXPECT_EQ(of(x), TheoryId::Euf);
  EXPECT_EQ(of(tm.make_number(5)), TheoryId::Euf);
  const Term_* bx = c("bx", bv8);
  EXPECT_EQ(of(bx), TheoryId::Bv);
  EXPECT_EQ(of(tm.make_equal(bx, c("by", bv8))), TheoryId::Bv);
  const Symbol* f = tm.make_symbol("f", tm.get_function_type({u}, bv8));
  EXPECT_EQ(of(tm.make_uninterpreted_function(f, {a})), TheoryId::Bv);
  const Symbol* g = tm.make_symbol("g", tm.get_function_type({u}, i));
  EXPECT_EQ(of(tm.make_uninterpreted_function(g, {a})), TheoryId::Euf);
}

// Enumerated sorts are EUF's, which counts their values beside
// congruence; finite arrays have no one to count them.
TEST_F(TheoryOwnerTest, FiniteSortsBelongToWhoeverCountsThem) {
  const Type* e = tm.get_enum_type("Color", {"red", "green"});
  EXPECT_EQ(of(c("col", e)), TheoryId::Euf);
  EXPECT_TRUE(is_euf_term(tm, c("col2", e)));
  // Arrays are the arrays solver's over any sorts: its extensionality
  // instances tie an array to its cells.
  const Type* small = tm.get_array_type(tm.get_bv_type(1), tm.get_bv_type(1));
  EXPECT_EQ(of(c("arr", small)), TheoryId::Arr);
  const Type* big = tm.get_array_type(i, i);
  EXPECT_EQ(of(c("ints", big)), TheoryId::Arr);
  EXPECT_FALSE(is_euf_term(tm, c("arr2", small)));
}

}  // namespace
}  // namespace zenlo
