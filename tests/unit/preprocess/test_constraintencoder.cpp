#include <gtest/gtest.h>

#include <string>

#include "preprocess/constraintencoder.h"
#include "terms/termmanager.h"

namespace zenlo {
namespace {

class ConstraintEncoderTest : public ::testing::Test {
 protected:
  ConstraintEncoderTest() : enc(&tm, ConstraintEncoder::Options(), nullptr) {
    const Type* u = tm.get_simple_type("U");
    for (const char* n : {"x", "y", "z", "w"}) {
      v.push_back(tm.make_constant(tm.make_symbol(n, u)));
    }
    for (const char* n : {"c", "d"}) {
      b.push_back(tm.make_constant(tm.make_symbol(n, tm.get_bool_type())));
    }
  }

  // Returns: whether some subterm of `t` has tag ITE.
  bool has_ite(const Term_* t) {
    std::vector<const Term_*> stack{t};
    while (!stack.empty()) {
      const Term_* s = stack.back();
      stack.pop_back();
      if (tm.get_tag(s->get_symbol()) == SymbolTag::ITE) {
        return true;
      }
      stack.insert(stack.end(), s->begin(), s->end());
    }
    return false;
  }

  TermManager tm;
  ConstraintEncoder enc;
  std::vector<const Term_*> v;
  std::vector<const Term_*> b;
};

TEST_F(ConstraintEncoderTest, TermWithoutIteIsReturnedUnchanged) {
  const Term_* f = tm.make_or(b[0], tm.make_equal(v[0], v[1]));
  EXPECT_EQ(enc(f), f);
  EXPECT_TRUE(enc.get_added_constants().empty());
}

TEST_F(ConstraintEncoderTest, IteBecomesConstantWithTwoDefinitions) {
  const Term_* ite = tm.make_term_ite(b[0], v[0], v[1]);
  TermList side;
  const Term_* r = enc.encode(tm.make_equal(ite, v[2]), side);
  ASSERT_EQ(enc.get_added_constants().size(), 1u);
  const Term_* k = enc.get_added_constants()[0];
  EXPECT_EQ(r, tm.make_equal(k, v[2]));
  ASSERT_EQ(side.size(), 2u);
  EXPECT_EQ(side[0], tm.make_or(tm.make_not(b[0]), tm.make_equal(k, v[0])));
  EXPECT_EQ(side[1], tm.make_or(b[0], tm.make_equal(k, v[1])));
}

TEST_F(ConstraintEncoderTest, NestedItesAreAllEliminated) {
  // ite(c, ite(d, x, y), z) inside an atom, and an ite in a condition.
  const Term_* inner = tm.make_term_ite(b[1], v[0], v[1]);
  const Term_* outer = tm.make_term_ite(b[0], inner, v[2]);
  const Term_* cond = tm.make_equal(inner, v[3]);
  const Term_* f =
      tm.make_and(tm.make_equal(outer, v[3]),
                  tm.make_equal(tm.make_term_ite(cond, v[0], v[1]), v[2]));
  const Term_* r = enc(f);
  EXPECT_FALSE(has_ite(r));
  EXPECT_EQ(enc.get_added_constants().size(), 3u);
}

TEST_F(ConstraintEncoderTest, EncodingIsReusedUntilReset) {
  const Term_* ite = tm.make_term_ite(b[0], v[0], v[1]);
  const Term_* f = tm.make_equal(ite, v[2]);
  const Term_* g = tm.make_equal(ite, v[3]);
  enc(f);
  const Term_* k = enc.get_added_constants()[0];
  TermList side;
  EXPECT_EQ(enc.encode(g, side), tm.make_equal(k, v[3]));
  EXPECT_TRUE(side.empty());  // the definition came with `f`
  enc.reset();
  const Term_* again = enc.encode(g, side);
  EXPECT_EQ(side.size(), 2u);
  ASSERT_EQ(enc.get_added_constants().size(), 1u);
  EXPECT_NE(enc.get_added_constants()[0], k);
  EXPECT_EQ(again, tm.make_equal(enc.get_added_constants()[0], v[3]));
}

}  // namespace
}  // namespace zenlo
