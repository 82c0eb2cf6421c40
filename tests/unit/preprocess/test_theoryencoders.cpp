// The encoders of arithmetic and of bit-vector conversions, each checked
// against a reference evaluator: under every assignment of a small range,
// the side constraints hold for the intended values of the fresh
// constants, and for no other values that would change the answer.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "preprocess/arithencoders.h"
#include "preprocess/bvfpencoders.h"
#include "preprocess/constraintencoder.h"
#include "support/simpl_eval.h"
#include "terms/termmanager.h"

namespace zenlo {
namespace {

using Env = std::map<std::string, QNumber>;

class TheoryEncoderTest : public ::testing::Test {
 protected:
  const Term_* c(const char* name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  bool all_hold(const TermList& side, const Env& env) {
    zenlo_test::RefEval eval(tm, env);
    for (const Term_* s : side) {
      if (eval(s) != QNumber(1)) {
        return false;
      }
    }
    return true;
  }

  static std::string name(const Term_* t) {
    return t->get_symbol()->get_name();
  }

  TermManager tm;
  const Term_* replacement = nullptr;
  TermList side;
  TermList added;
};

TEST_F(TheoryEncoderTest, CongruenceIsDecidedByTheDefinitionAlone) {
  const Type* i = tm.get_integer_type();
  const Term_* a = c("a", i);
  const Term_* b = c("b", i);
  for (long m : {2, 3, 5}) {
    const Term_* t = tm.make_int_modular_congruence(QNumber(m), a, b);
    side.clear();
    added.clear();
    IntModCongrEncoder enc;
    ASSERT_TRUE(enc(tm, t, replacement, side, added));
    ASSERT_EQ(added.size(), 3u);
    EXPECT_EQ(name(added[0]).rfind("int_mod_x_", 0), 0u);
    EXPECT_EQ(name(added[1]).rfind("int_mod_y_", 0), 0u);
    for (long va = -7; va <= 7; ++va) {
      for (long vb = -3; vb <= 3; ++vb) {
        bool congruent = (va - vb) % m == 0;
        bool found_true = false, found_false = false;
        for (long x = -6; x <= 6; ++x) {
          for (long y = -1; y <= m; ++y) {
            for (long k = 0; k <= 1; ++k) {
              Env env{{"a", va},
                      {"b", vb},
                      {name(added[0]), x},
                      {name(added[1]), y},
                      {name(added[2]), k}};
              if (all_hold(side, env)) {
                (k == 1 ? found_true : found_false) = true;
              }
            }
          }
        }
        ASSERT_EQ(found_true, congruent) << va << " " << vb << " mod " << m;
        ASSERT_EQ(found_false, !congruent) << va << " " << vb << " mod " << m;
      }
    }
  }
}

TEST_F(TheoryEncoderTest, FloorIsBoundedByItsArgument) {
  const Term_* x = c("x", tm.get_real_type());
  const Term_* f = tm.make_floor(x);
  FloorEncoder enc;
  ASSERT_TRUE(enc(tm, f, replacement, side, added));
  EXPECT_EQ(replacement, f);
  EXPECT_TRUE(added.empty());
  ASSERT_EQ(side.size(), 2u);
  // Where the floor is replaced by another integer, a bound fails: the two
  // constraints pin it down.
  const Term_* k = c("k", tm.get_integer_type());
  TermMap to_k;
  to_k.insert(f, k);
  TermList pinned;
  for (const Term_* s : side) {
    pinned.push_back(tm.substitute(s, to_k));
  }
  for (QNumber vx : {QNumber(-5, 2),
                     QNumber(-1),
                     QNumber(0),
                     QNumber(1, 3),
                     QNumber(7, 2)}) {
    for (long vk = -4; vk <= 4; ++vk) {
      EXPECT_EQ(all_hold(pinned, {{"x", vx}, {"k", vk}}),
                QNumber(vk) == vx.floor())
          << vx.to_str() << " " << vk;
    }
  }
}

TEST_F(TheoryEncoderTest, ProductWithACaseSplitOverNumbersIsLinearPerCase) {
  const Term_* x = c("x", tm.get_real_type());
  const Term_* p = c("p", tm.get_bool_type());
  const Term_* q = c("q", tm.get_bool_type());
  const Term_* split = tm.make_term_ite(
      p,
      tm.make_number(2),
      tm.make_term_ite(q, tm.make_number(-3), tm.make_number(5)));
  const Term_* t = tm.make_times(split, x);
  ASSERT_EQ(tm.get_tag(t->get_symbol()), SymbolTag::TIMES);
  TimesIteEncoder enc;
  ASSERT_TRUE(enc(tm, t, replacement, side, added));
  ASSERT_EQ(added.size(), 1u);
  std::string k = name(added[0]);
  for (long vp = 0; vp <= 1; ++vp) {
    for (long vq = 0; vq <= 1; ++vq) {
      for (QNumber vx : {QNumber(-2), QNumber(1, 2), QNumber(3)}) {
        QNumber factor = vp ? QNumber(2) : vq ? QNumber(-3) : QNumber(5);
        Env env{{"x", vx}, {"p", vp}, {"q", vq}, {k, factor * vx}};
        EXPECT_TRUE(all_hold(side, env));
        env[k] = factor * vx + QNumber(1);
        EXPECT_FALSE(all_hold(side, env));
      }
    }
  }
  // A product of two plain terms is no case split.
  side.clear();
  EXPECT_FALSE(enc(tm,
                   tm.make_times(x, c("y", tm.get_real_type())),
                   replacement,
                   side,
                   added));
}

TEST_F(TheoryEncoderTest, BitsOfAWordSumToItsUnsignedAndSignedValues) {
  const Term_* w = c("w", tm.get_bv_type(4));
  for (SymbolTag::tag tag :
       {SymbolTag::INT_FROM_UBV, SymbolTag::INT_FROM_SBV}) {
    const Term_* t = tag == SymbolTag::INT_FROM_UBV ? tm.make_int_from_ubv(w)
                                                    : tm.make_int_from_sbv(w);
    side.clear();
    added.clear();
    IntFromBvEncoder enc(tag);
    ASSERT_TRUE(enc(tm, t, replacement, side, added));
    ASSERT_EQ(added.size(), 1u);
    for (long v = 0; v < 16; ++v) {
      long expected = tag == SymbolTag::INT_FROM_SBV && v >= 8 ? v - 16 : v;
      EXPECT_TRUE(all_hold(side, {{"w", v}, {name(added[0]), expected}}));
      EXPECT_FALSE(all_hold(side, {{"w", v}, {name(added[0]), expected + 16}}));
    }
  }
}

TEST_F(TheoryEncoderTest, IntegersToWordsWrapAroundForEverySign) {
  const Term_* a = c("a", tm.get_integer_type());
  const Term_* t = tm.make_int_to_bv(3, a);
  IntToBvEncoder enc;
  ASSERT_TRUE(enc(tm, t, replacement, side, added));
  ASSERT_EQ(added.size(), 2u);
  EXPECT_EQ(replacement, added[0]);
  EXPECT_EQ(name(added[1]).rfind("int2bv_y_", 0), 0u);
  for (long va = -20; va <= 20; ++va) {
    long low = ((va % 8) + 8) % 8;
    long high = (va - low) / 8;
    EXPECT_TRUE(all_hold(
        side, {{"a", va}, {name(added[0]), low}, {name(added[1]), high}}))
        << va;
    for (long other = 0; other < 8; ++other) {
      if (other == low) {
        continue;
      }
      for (long y = high - 2; y <= high + 2; ++y) {
        EXPECT_FALSE(all_hold(
            side, {{"a", va}, {name(added[0]), other}, {name(added[1]), y}}));
      }
    }
  }
}

// Through the whole encoder: sharing, resets, and guarded definitions that
// keep their own term.
class EncoderTableTest : public ::testing::Test {
 protected:
  static ConstraintEncoder::Options with_bv_uf() {
    ConstraintEncoder::Options o;
    o.bv_div_by_zero_uf = true;
    return o;
  }

  TermManager tm;
};

TEST_F(EncoderTableTest, ARepeatedQuotientHasOneConstantUntilAReset) {
  ConstraintEncoder enc(&tm, ConstraintEncoder::Options(), nullptr);
  const Type* r = tm.get_real_type();
  const Term_* x = tm.make_constant(tm.make_symbol("x", r));
  const Term_* y = tm.make_constant(tm.make_symbol("y", r));
  const Term_* q = tm.make_divide(x, y);
  ASSERT_EQ(tm.get_tag(q->get_symbol()), SymbolTag::DIVIDE);
  const Term_* f1 = enc(tm.make_leq(q, tm.make_number(1)));
  const Term_* f2 = enc(tm.make_leq(tm.make_number(0), q));
  EXPECT_NE(f1, f2);
  EXPECT_EQ(enc.get_added_constants().size(), 1u);
  enc.reset();
  enc(tm.make_leq(q, tm.make_number(1)));
  EXPECT_EQ(enc.get_added_constants().size(), 1u) << "a new constant";
}

TEST_F(EncoderTableTest, GuardedDivisionKeepsItsTermWhereTheDivisorIsNotZero) {
  ConstraintEncoder enc(&tm, with_bv_uf(), nullptr);
  const Type* bv = tm.get_bv_type(4);
  const Term_* a = tm.make_constant(tm.make_symbol("a", bv));
  const Term_* b = tm.make_constant(tm.make_symbol("b", bv));
  const Term_* d = tm.make_bv_udiv(a, b);
  TermList side;
  const Term_* r = enc.encode(tm.make_equal(d, a), side);
  ASSERT_EQ(enc.get_added_constants().size(), 1u);
  const Term_* k = enc.get_added_constants()[0];
  EXPECT_EQ(r, tm.make_equal(k, a));
  ASSERT_EQ(side.size(), 2u);
  // The definition still speaks of the division itself, not of k = k.
  const Term_* zero = tm.make_bv_number(QNumber(0), 4);
  EXPECT_EQ(side[0],
            tm.make_or(tm.make_not(tm.make_not(tm.make_equal(b, zero))),
                       tm.make_equal(k, d)));
}

}  // namespace
}  // namespace zenlo
