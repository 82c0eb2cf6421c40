// The construction-time simplifier: its normal forms and edge cases, its
// soundness (random terms built with and without it agree under every
// assignment tried, by a reference evaluator), constant folding against
// independent arithmetic, and terms of a million levels.
#include <gmp.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "base/configuration.h"
#include "base/logger.h"
#include "env/environment.h"
#include "support/simpl_eval.h"
#include "terms/stdtermsimplifier.h"
#include "terms/termmanager.h"
#include "terms/termsimplifications.h"

namespace zenlo {
namespace {

using zenlo_test::RefEval;
using Assignment = std::map<std::string, QNumber>;

// A term store with the standard simplifier on.
struct Simplifying {
  Simplifying() : simp(&tm) {
    tm.set_simplifier(&simp);
    tm.enable_simplifications(true);
  }

  TermManager tm;
  StdTermSimplifier simp;
};

const Term_* var(TermManager& tm, const std::string& name, const Type* t) {
  const Symbol* s = tm.find_symbol(name);
  return tm.make_constant(s != nullptr ? s : tm.make_symbol(name, t));
}

class SimplifierTest : public ::testing::Test {
 protected:
  const Term_* v(const char* name, const Type* t) { return var(tm, name, t); }

  const Term_* num(long n, long d = 1) { return tm.make_number(QNumber(n, d)); }

  const Term_* bvn(long n, size_t w) {
    return tm.make_bv_number(QNumber(n), w);
  }

  Simplifying s;
  TermManager& tm = s.tm;
  const Type* b = tm.get_bool_type();
  const Type* r = tm.get_real_type();
  const Type* i = tm.get_integer_type();
};

// ----------------------------------------------------------------------
// Normal forms and edge cases
// ----------------------------------------------------------------------

TEST_F(SimplifierTest, BooleanConnectivesFoldAndOrderTheirArguments) {
  const Term_* a = v("a", b);
  const Term_* c = v("c", b);
  const Term_* na = tm.make_not(a);
  EXPECT_EQ(tm.make_and(a, na), tm.make_false());
  EXPECT_EQ(tm.make_and(na, a), tm.make_false());
  EXPECT_EQ(tm.make_or(na, a), tm.make_true());
  EXPECT_EQ(tm.make_and(a, c), tm.make_and(c, a));
  EXPECT_EQ(tm.make_or(a, c), tm.make_or(c, a));
  EXPECT_EQ(tm.make_iff(a, c), tm.make_iff(c, a));
  EXPECT_EQ(tm.make_and(tm.make_true(), a), a);
  EXPECT_EQ(tm.make_or(a, tm.make_false()), a);
  EXPECT_EQ(tm.make_and(a, a), a);
  EXPECT_EQ(tm.make_not(na), a);
  EXPECT_EQ(tm.make_iff(a, a), tm.make_true());
  EXPECT_EQ(tm.make_iff(a, tm.make_false()), na);
  EXPECT_EQ(tm.make_iff(tm.make_true(), a), a);
  EXPECT_EQ(tm.make_iff(na, a), tm.make_false());
  const Term_* x = v("x", r);
  const Term_* y = v("y", r);
  EXPECT_EQ(tm.make_term_ite(tm.make_true(), x, y), x);
  EXPECT_EQ(tm.make_term_ite(a, y, y), y);
}

TEST_F(SimplifierTest, ArithmeticIdentitiesAndDivision) {
  const Term_* x = v("x", r);
  EXPECT_EQ(tm.make_plus(x, num(0)), x);
  EXPECT_EQ(tm.make_times(num(1), x), x);
  EXPECT_EQ(tm.make_times(x, num(0)), num(0));
  EXPECT_EQ(tm.make_plus(num(1, 2), num(1, 2)), num(1));
  EXPECT_EQ(tm.make_divide(x, num(2)), tm.make_times(num(1, 2), x));
  EXPECT_EQ(tm.make_times(x, num(3))->get_child(0), num(3));
  const Term_* by_zero = tm.make_divide(x, num(0));
  EXPECT_EQ(tm.get_tag(by_zero->get_symbol()), SymbolTag::DIVIDE);
  EXPECT_EQ(tm.get_tag(tm.make_divide(num(1), num(0))->get_symbol()),
            SymbolTag::DIVIDE);
  EXPECT_EQ(tm.make_floor(num(-3, 2)), num(-2));
  const Term_* n = v("n", i);
  EXPECT_EQ(tm.make_floor(n), n);
  // Int + Int stays Int even through the Real symbol.
  EXPECT_EQ(tm.make_term(tm.get_plus_symbol(false), {n, n})->get_type(), i);
  EXPECT_EQ(tm.make_pow(num(2), num(10)), num(1024));
  EXPECT_EQ(tm.make_pow(num(2), num(-2)), num(1, 4));
  EXPECT_EQ(tm.get_tag(tm.make_pow(num(0), num(-1))->get_symbol()),
            SymbolTag::POW);
  EXPECT_EQ(tm.get_tag(tm.make_pow(num(3), num(1000000000))->get_symbol()),
            SymbolTag::POW);
}

TEST_F(SimplifierTest, LinearAtomsHaveOneNormalForm) {
  const Term_* x = v("x", r);
  const Term_* y = v("y", r);
  const Term_* n = v("n", i);
  EXPECT_EQ(tm.make_leq(tm.make_times(num(2), x), num(4)),
            tm.make_leq(x, num(2)));
  EXPECT_EQ(tm.make_leq(tm.make_times(num(2), n), num(3)),
            tm.make_leq(n, num(1)));
  EXPECT_EQ(tm.make_leq(num(3), tm.make_times(num(2), n)),
            tm.make_leq(num(2), n));
  EXPECT_EQ(tm.make_equal(tm.make_times(num(2), n), num(1)), tm.make_false());
  EXPECT_EQ(tm.make_equal(x, y), tm.make_equal(y, x));
  EXPECT_EQ(tm.make_equal(num(3), x), tm.make_equal(x, num(3)));
  EXPECT_EQ(tm.make_equal(n, num(1, 2)), tm.make_false());
  EXPECT_EQ(tm.make_equal(num(1), num(2)), tm.make_false());
  EXPECT_EQ(tm.make_leq(num(1), num(2)), tm.make_true());
  EXPECT_EQ(tm.make_leq(x, x), tm.make_true());
  // Addends in any order and any grouping, scaled by a positive factor.
  const Term_* p = tm.make_plus(x, tm.make_plus(y, num(1)));
  const Term_* q = tm.make_plus(tm.make_plus(num(1), y), x);
  EXPECT_EQ(tm.make_leq(p, num(5)), tm.make_leq(q, num(5)));
  EXPECT_EQ(tm.make_leq(tm.make_times(num(3), p), num(15)),
            tm.make_leq(p, num(5)));
  EXPECT_EQ(tm.make_leq(tm.make_plus(x, num(1)), tm.make_plus(x, num(2))),
            tm.make_true());
  const Term_* atom = tm.make_leq(p, num(5));
  EXPECT_EQ(tm.get_tag(atom->get_symbol()), SymbolTag::LEQ);
  EXPECT_EQ(atom->get_child(1), num(4));
}

TEST_F(SimplifierTest, FunctionAndArrayArgumentsAreNormalPolynomials) {
  const Term_* x = v("x", i);
  const Term_* y = v("y", i);
  const Symbol* f = tm.make_symbol("f", tm.get_function_type({i}, i));
  const Term_* a = tm.make_uninterpreted_function(
      f, {tm.make_plus(x, tm.make_plus(y, num(1)))});
  const Term_* c = tm.make_uninterpreted_function(
      f, {tm.make_plus(tm.make_plus(num(1), y), x)});
  EXPECT_EQ(a, c);
  const Term_* arr = v("arr", tm.get_array_type(i, i));
  EXPECT_EQ(tm.make_array_read(arr, tm.make_plus(x, tm.make_plus(y, num(1)))),
            tm.make_array_read(arr, tm.make_plus(tm.make_plus(y, x), num(1))));
}

TEST_F(SimplifierTest, GenericEqualities) {
  const Type* color = tm.get_enum_type("Color", {"red", "green"});
  const Term_* red = tm.make_constant(tm.find_symbol("red"));
  const Term_* green = tm.make_constant(tm.find_symbol("green"));
  EXPECT_EQ(tm.make_equal(red, green), tm.make_false());
  const Term_* c = v("c", color);
  EXPECT_EQ(tm.make_equal(red, c), tm.make_equal(c, red));
  const Term_* x = v("x", tm.get_bv_type(4));
  EXPECT_EQ(tm.make_equal(bvn(3, 4), x)->get_child(1), bvn(3, 4));
  EXPECT_EQ(tm.make_equal(bvn(3, 4), bvn(4, 4)), tm.make_false());
  // Floats: +0 and -0 differ under =, two NaN patterns do not.
  EXPECT_EQ(tm.make_equal(tm.make_fp_bits_number(QNumber(0L), 3, 4),
                          tm.make_fp_bits_number(QNumber(128L), 3, 4)),
            tm.make_false());
  EXPECT_EQ(tm.make_equal(tm.make_fp_bits_number(QNumber(0x78L), 3, 4),
                          tm.make_fp_bits_number(QNumber(0xfcL), 3, 4)),
            tm.make_true());
  EXPECT_EQ(tm.make_equal(tm.make_fp_rounding_mode(RoundingMode::Zero),
                          tm.make_fp_rounding_mode(RoundingMode::PlusInf)),
            tm.make_false());
}

TEST_F(SimplifierTest, ArrayValuesCompareByContents) {
  const Type* arr = tm.get_array_type(i, i);
  auto write = [&](const Term_* a, long k, long e) {
    return tm.make_array_write(a, num(k), num(e));
  };
  const Term_* zero = tm.make_array_const(arr, num(0));
  EXPECT_EQ(tm.make_equal(zero, tm.make_array_const(arr, num(1))),
            tm.make_false());
  const Term_* a1 = write(write(zero, 1, 5), 2, 6);
  const Term_* a2 = write(write(zero, 2, 6), 1, 5);
  EXPECT_EQ(tm.make_equal(a1, a2), tm.make_true());
  EXPECT_EQ(tm.make_equal(a1, write(a2, 2, 7)), tm.make_false());
  EXPECT_EQ(tm.make_equal(write(zero, 3, 0), zero), tm.make_true());
  EXPECT_TRUE(termsimpl::is_value(&tm, a1, false));
  // Two writes cover Bool-like index type BV(1): defaults do not matter.
  const Type* small = tm.get_array_type(tm.get_bv_type(1), i);
  const Term_* s0 = tm.make_array_write(
      tm.make_array_write(
          tm.make_array_const(small, num(0)), bvn(0, 1), num(4)),
      bvn(1, 1),
      num(4));
  EXPECT_EQ(tm.make_equal(s0, tm.make_array_const(small, num(4))),
            tm.make_true());
  const Term_* x = v("x", i);
  EXPECT_FALSE(
      termsimpl::is_value(&tm, tm.make_array_write(zero, x, num(1)), false));
}

TEST_F(SimplifierTest, ValuesOfEveryKind) {
  EXPECT_TRUE(termsimpl::is_value(&tm, tm.make_true(), false));
  EXPECT_FALSE(termsimpl::is_value(&tm, v("p", b), false));
  EXPECT_TRUE(termsimpl::is_value(&tm, num(-7, 3), false));
  EXPECT_TRUE(termsimpl::is_value(&tm, bvn(5, 3), false));
  EXPECT_TRUE(termsimpl::is_value(
      &tm, tm.make_fp_rounding_mode(RoundingMode::MinusInf), false));
  const Type* u = tm.get_simple_type("U");
  EXPECT_FALSE(termsimpl::is_value(&tm, v("@u1", u), false));
  EXPECT_TRUE(termsimpl::is_value(&tm, v("@u1", u), true));
  EXPECT_FALSE(termsimpl::is_value(&tm, v("u1", u), true));
}

TEST_F(SimplifierTest, BitVectorIdentities) {
  const Type* bv4 = tm.get_bv_type(4);
  const Term_* x = v("x", bv4);
  const Term_* y = v("y", bv4);
  EXPECT_EQ(tm.make_bv_add(x, bvn(0, 4)), x);
  EXPECT_EQ(tm.make_bv_add(bvn(1, 2), bvn(2, 2)), bvn(3, 2));
  EXPECT_EQ(tm.make_bv_sub(x, x), bvn(0, 4));
  EXPECT_EQ(tm.make_bv_udiv(x, bvn(1, 4)), x);
  EXPECT_EQ(tm.make_bv_not(tm.make_bv_not(x)), x);
  EXPECT_EQ(tm.make_bv_mul(x, bvn(4, 4)), tm.make_bv_lshl(x, bvn(2, 4)));
  EXPECT_EQ(tm.make_bv_ule(x, y), tm.make_not(tm.make_bv_ult(y, x)));
  EXPECT_EQ(tm.make_bv_rol(9, x), tm.make_bv_rol(1, x));
  EXPECT_EQ(tm.make_bv_rol(2, tm.make_bv_rol(2, x)), x);
  EXPECT_EQ(tm.make_bv_zext(2, tm.make_bv_zext(3, x)), tm.make_bv_zext(5, x));
  EXPECT_EQ(tm.make_bv_extract(3, 0, x), x);
  EXPECT_EQ(tm.make_equal(tm.make_bv_not(x), x), tm.make_false());
  // Division by zero is the theory's to decide.
  EXPECT_EQ(tm.get_tag(tm.make_bv_udiv(bvn(5, 4), bvn(0, 4))->get_symbol()),
            SymbolTag::BV_UDIV);
  EXPECT_EQ(tm.get_tag(tm.make_bv_srem(bvn(5, 4), bvn(0, 4))->get_symbol()),
            SymbolTag::BV_SREM);
  using Op = std::function<const Term_*(const Term_*, const Term_*)>;
  const Op ops[] = {
      [&](const Term_* a, const Term_* c) { return tm.make_bv_and(a, c); },
      [&](const Term_* a, const Term_* c) { return tm.make_bv_or(a, c); },
      [&](const Term_* a, const Term_* c) { return tm.make_bv_xor(a, c); },
      [&](const Term_* a, const Term_* c) { return tm.make_bv_add(a, c); },
      [&](const Term_* a, const Term_* c) { return tm.make_bv_mul(a, c); }};
  for (const Op& op : ops) {
    EXPECT_EQ(op(x, y), op(y, x));
    EXPECT_EQ(op(x, bvn(3, 4)), op(bvn(3, 4), x));
  }
}

// A zero-extension by 0 bits is its argument, so its equality with all
// ones is satisfiable; such a term survives from a time when
// simplifications were off.
TEST_F(SimplifierTest, ZeroWideExtensionMayEqualAllOnes) {
  const Term_* x = v("x", tm.get_bv_type(3));
  tm.enable_simplifications(false);
  const Term_* z = tm.make_bv_zext(0, x);
  tm.enable_simplifications(true);
  EXPECT_NE(tm.make_equal(z, bvn(7, 3)), tm.make_false());
  EXPECT_EQ(tm.make_equal(tm.make_bv_zext(1, x), bvn(15, 4)), tm.make_false());
}

// Dead terms' pointers and ids are reused after a collection, so the
// normalizer's memo must not survive it.
TEST_F(SimplifierTest, CollectionClearsTheMemo) {
  const Term_* x = v("x", tm.get_bv_type(4));
  const Term_* t = tm.make_bv_and(x, bvn(3, 4));
  EXPECT_EQ(t->get_child(0), bvn(3, 4));
  EXPECT_GT(s.simp.get_normalizer().cache_size(), 0u);
  tm.gc({t}, {}, {});
  EXPECT_EQ(s.simp.get_normalizer().cache_size(), 0u);
  EXPECT_EQ(tm.make_bv_and(x, bvn(3, 4)), t);
}

TEST_F(SimplifierTest, RefusesASecondFunctionForATag) {
  try {
    s.simp.register_simplification(SymbolTag::AND, nullptr);
    ADD_FAILURE() << "no error";
  } catch (const Exception& e) {
    EXPECT_NE(e.message().find("SymbolTag::AND"), std::string::npos);
  }
}

// ----------------------------------------------------------------------
// Every rewrite rule, applied to an instance of its pattern
// ----------------------------------------------------------------------

// Each instance is built with simplifications off, so that it has exactly
// the shape of its rule's pattern (the left-hand orientations of the
// equality rules included, which construction never produces), then
// rewritten once by the rules of its head; both must agree on every value
// of x and y.
class RuleTest : public SimplifierTest {
 protected:
  using Build = std::function<const Term_*()>;

  const Term_* n3(long k) { return bvn(k, 3); }

  std::vector<Build> instances() {
    TermManager* const m = &tm;
    const Term_* x = v("x", tm.get_bv_type(3));
    const Term_* y = v("y", tm.get_bv_type(3));
    const Term_* x1 = v("x1", tm.get_bv_type(1));
    const Term_* y1 = v("y1", tm.get_bv_type(1));
    auto eq = [m](const Term_* a, const Term_* c) {
      return m->make_equal(a, c);
    };
    std::vector<Build> out = {
        // Equalities, each shape in both orientations.
        [=] { return eq(m->make_bv_add(x, y), n3(0)); },
        [=] { return eq(n3(0), m->make_bv_add(x, y)); },
        [=] { return eq(m->make_bv_mul(n3(7), x), n3(0)); },
        [=] { return eq(n3(0), m->make_bv_mul(n3(7), x)); },
        [=] { return eq(m->make_bv_or(n3(5), x), n3(3)); },
        [=] { return eq(n3(3), m->make_bv_or(n3(5), x)); },
        [=] { return eq(m->make_bv_neg(x), m->make_bv_neg(y)); },
        [=] { return eq(m->make_bv_neg(x1), x1); },
        [=] { return eq(x1, m->make_bv_neg(x1)); },
        [=] { return eq(m->make_bv_neg(x), n3(3)); },
        [=] { return eq(n3(3), m->make_bv_neg(x)); },
        [=] { return eq(m->make_bv_not(x), n3(3)); },
        [=] { return eq(n3(3), m->make_bv_not(x)); },
        [=] { return eq(m->make_bv_not(x), m->make_bv_not(y)); },
        [=] { return eq(m->make_bv_not(x), x); },
        [=] { return eq(x, m->make_bv_not(x)); },
        [=] { return eq(m->make_bv_xor(x, y), n3(0)); },
        [=] { return eq(n3(0), m->make_bv_xor(x, y)); },
        [=] { return eq(m->make_bv_xor(x, y), n3(7)); },
        [=] { return eq(n3(7), m->make_bv_xor(x, y)); },
        [=] { return eq(m->make_bv_zext(2, x), bvn(0, 5)); },
        [=] { return eq(bvn(0, 5), m->make_bv_zext(2, x)); },
        [=] { return eq(m->make_bv_zext(2, x), bvn(31, 5)); },
        [=] { return eq(bvn(31, 5), m->make_bv_zext(2, x)); },
        [=] { return eq(m->make_bv_sext(2, x), bvn(0, 5)); },
        [=] { return eq(bvn(0, 5), m->make_bv_sext(2, x)); },
        [=] { return eq(m->make_bv_sext(2, x), bvn(31, 5)); },
        [=] { return eq(bvn(31, 5), m->make_bv_sext(2, x)); },
        // Extraction and negation.
        [=] { return m->make_bv_extract(2, 0, x); },
        [=] { return m->make_bv_extract(1, 0, m->make_bv_zext(2, x)); },
        [=] { return m->make_bv_extract(3, 0, m->make_bv_zext(2, x)); },
        [=] { return m->make_bv_extract(2, 1, m->make_bv_sext(2, x)); },
        [=] { return m->make_bv_extract(3, 0, m->make_bv_sext(2, x)); },
        [=] { return m->make_bv_not(m->make_bv_not(x)); },
    };
    // The bitwise families share their shapes.
    using TM = TermManager;
    const decltype(&TM::make_bv_and) bitwise[] = {
        &TM::make_bv_and, &TM::make_bv_or, &TM::make_bv_xor};
    for (auto op : bitwise) {
      for (Build b :
           std::vector<Build>{[=] { return (m->*op)(x, n3(3)); },
                              [=] { return (m->*op)(y, x); },
                              [=] { return (m->*op)(n3(0), x); },
                              [=] { return (m->*op)(n3(7), x); },
                              [=] { return (m->*op)(x, x); },
                              [=] { return (m->*op)(x, m->make_bv_not(x)); },
                              [=] { return (m->*op)(m->make_bv_not(x), x); }}) {
        out.push_back(b);
      }
    }
    std::vector<Build> rest = {
        [=] { return m->make_bv_ult(x, n3(0)); },
        [=] { return m->make_bv_ult(n3(0), x); },
        [=] { return m->make_bv_ult(x, n3(1)); },
        [=] { return m->make_bv_ult(n3(7), x); },
        [=] { return m->make_bv_ult(x, n3(7)); },
        [=] { return m->make_bv_ult(x, x); },
        [=] { return m->make_bv_slt(x, x); },
        [=] { return m->make_bv_slt(x, n3(0)); },
        [=] { return m->make_bv_ule(x, x); },
        [=] { return m->make_bv_ule(x, y); },
        [=] { return m->make_bv_sle(x, x); },
        [=] { return m->make_bv_sle(x, y); },
        [=] { return m->make_bv_neg(m->make_bv_neg(x)); },
        [=] { return m->make_bv_add(x, n3(3)); },
        [=] { return m->make_bv_add(y, x); },
        [=] { return m->make_bv_add(n3(0), x); },
        [=] { return m->make_bv_add(m->make_bv_neg(x), x); },
        [=] { return m->make_bv_add(x, m->make_bv_neg(x)); },
        [=] { return m->make_bv_add(x, x); },
        [=] { return m->make_bv_add(x1, y1); },
        [=] { return m->make_bv_sub(x, x); },
        [=] { return m->make_bv_sub(x, y); },
        [=] { return m->make_bv_mul(x, n3(3)); },
        [=] { return m->make_bv_mul(y, x); },
        [=] { return m->make_bv_mul(n3(0), x); },
        [=] { return m->make_bv_mul(n3(1), x); },
        [=] { return m->make_bv_mul(n3(4), x); },
        [=] { return m->make_bv_mul(n3(3), n3(4)); },
        [=] { return m->make_bv_udiv(x, n3(1)); },
        [=] { return m->make_bv_udiv(x, n3(4)); },
        [=] { return m->make_bv_sdiv(x, n3(1)); },
        [=] { return m->make_bv_urem(x, n3(1)); },
        [=] { return m->make_bv_srem(x, n3(1)); },
        [=] { return m->make_bv_lshl(n3(0), x); },
        [=] { return m->make_bv_lshl(x, n3(0)); },
        [=] { return m->make_bv_lshl(x, n3(5)); },
        [=] { return m->make_bv_lshr(n3(0), x); },
        [=] { return m->make_bv_lshr(x, n3(0)); },
        [=] { return m->make_bv_lshr(x, n3(5)); },
        [=] { return m->make_bv_ashr(n3(0), x); },
        [=] { return m->make_bv_ashr(n3(7), x); },
        [=] { return m->make_bv_ashr(x, n3(0)); },
        [=] { return m->make_bv_rol(0, x); },
        [=] { return m->make_bv_rol(3, x); },
        [=] { return m->make_bv_rol(5, x); },
        [=] { return m->make_bv_rol(1, m->make_bv_rol(1, x)); },
        [=] { return m->make_bv_ror(0, x); },
        [=] { return m->make_bv_ror(3, x); },
        [=] { return m->make_bv_ror(5, x); },
        [=] { return m->make_bv_ror(1, m->make_bv_ror(1, x)); },
        [=] { return m->make_bv_zext(0, x); },
        [=] { return m->make_bv_zext(1, m->make_bv_zext(2, x)); },
        [=] { return m->make_bv_zext(1, m->make_bv_concat(bvn(0, 2), x)); },
        [=] { return m->make_bv_sext(0, x); },
        [=] { return m->make_bv_sext(1, m->make_bv_sext(2, x)); },
        [=] { return m->make_bv_sext(1, m->make_bv_concat(bvn(0, 2), x)); },
    };
    out.insert(out.end(), rest.begin(), rest.end());
    return out;
  }
};

TEST_F(RuleTest, EveryRuleFiresAndKeepsTheMeaning) {
  std::ostringstream log;
  Logger logger(&log);
  logger.set_verbosity(5);
  s.simp.set_logger(&logger);
  std::vector<Build> builds = instances();
  ASSERT_EQ(builds.size(), 111u);
  for (const Build& build : builds) {
    tm.enable_simplifications(false);
    const Term_* t = build();
    tm.enable_simplifications(true);
    const Term_* r = s.simp.get_normalizer().normalize(t);
    EXPECT_NE(r, t) << t->to_str();
    for (long a = 0; a < 8; ++a) {
      for (long c = 0; c < 8; ++c) {
        Assignment env{{"x", QNumber(a)},
                       {"y", QNumber(c)},
                       {"x1", QNumber(a % 2)},
                       {"y1", QNumber(c % 2)}};
        ASSERT_EQ(RefEval(tm, env)(t), RefEval(tm, env)(r))
            << t->to_str() << " became " << r->to_str();
      }
    }
  }
  std::set<std::string> fired;
  std::istringstream lines(log.str());
  for (std::string line; std::getline(lines, line);) {
    size_t at = line.find("rewriting with ");
    if (at != std::string::npos) {
      fired.insert(line.substr(at + 15));
    }
  }
  // Four rules, op(c(t), t) for bvand, bvor, bvxor and bvadd, are always
  // preceded by the one that orders the arguments: c(t) is younger than t.
  EXPECT_EQ(fired.size(), 107u);
}

// ----------------------------------------------------------------------
// Soundness: random terms with and without the simplifier
// ----------------------------------------------------------------------

// Builds random terms from a seed; the same seed makes the same term in
// any store, so a store with the simplifier and one without get the same
// recipe. Subterms are reused at random, so that patterns like
// (bvand t (bvnot t)) occur.
class RandomTerms {
 public:
  RandomTerms(TermManager& tm, uint32_t seed) : d_tm(tm), d_rng(seed) {}

  const Term_* boolean(int depth) {
    if (d_theory != 0 && pick(2) == 0) {
      return atom(depth);
    }
    switch (pick(depth > 0 ? 6 : 1)) {
      case 0: return bool_leaf();
      case 1: return d_tm.make_not(boolean(depth - 1));
      case 2: return d_tm.make_and(boolean(depth - 1), boolean(depth - 1));
      case 3: return d_tm.make_or(boolean(depth - 1), boolean(depth - 1));
      case 4: return d_tm.make_iff(boolean(depth - 1), boolean(depth - 1));
      default: return atom(depth - 1);
    }
  }

  void set_theory(int theory) { d_theory = theory; }

  // Bit-vectors of width w.
  const Term_* bv(size_t w, int depth) {
    std::vector<const Term_*>& pool = d_bv_pool[w];
    if (!pool.empty() && pick(4) == 0) {
      return pool[pick(pool.size())];
    }
    const Term_* t = depth <= 0 || pick(5) == 0 ? bv_leaf(w) : bv_op(w, depth);
    pool.push_back(t);
    return t;
  }

  // Real (or Int) terms.
  const Term_* arith(bool integer, int depth) {
    std::vector<const Term_*>& pool = d_ar_pool[integer];
    if (!pool.empty() && pick(4) == 0) {
      return pool[pick(pool.size())];
    }
    const Term_* t = depth <= 0 || pick(4) == 0 ? arith_leaf(integer)
                                                : arith_op(integer, depth);
    pool.push_back(t);
    return t;
  }

 private:
  size_t pick(size_t n) {
    return std::uniform_int_distribution<size_t>(0, n - 1)(d_rng);
  }

  const Term_* bool_leaf() {
    if (pick(8) == 0) {
      return pick(2) ? d_tm.make_true() : d_tm.make_false();
    }
    return var(d_tm, "p" + std::to_string(pick(4)), d_tm.get_bool_type());
  }

  const Term_* atom(int depth) {
    if (d_theory == 0) {
      return bool_leaf();
    }
    if (d_theory == 1) {
      size_t w = 1 + pick(8);
      const Term_* a = bv(w, depth);
      const Term_* c = bv(w, depth);
      switch (pick(5)) {
        case 0: return d_tm.make_bv_ult(a, c);
        case 1: return d_tm.make_bv_ule(a, c);
        case 2: return d_tm.make_bv_slt(a, c);
        case 3: return d_tm.make_bv_sle(a, c);
        default: return d_tm.make_equal(a, c);
      }
    }
    bool integer = pick(2) == 0;
    const Term_* a = arith(integer, depth);
    const Term_* c = arith(integer || pick(2) == 0, depth);
    switch (pick(4)) {
      case 0: return d_tm.make_leq(a, c);
      case 1:
        if (integer) {
          return d_tm.make_int_modular_congruence(
              QNumber(static_cast<long>(1 + pick(4))), a, arith(true, depth));
        }
        return d_tm.make_equal(a, c);
      default: return d_tm.make_equal(a, c);
    }
  }

  const Term_* bv_leaf(size_t w) {
    QNumber top = BVNumber::pow2(w);
    switch (pick(8)) {
      case 0: return d_tm.make_bv_number(QNumber(0L), w);
      case 1: return d_tm.make_bv_number(top - QNumber(1L), w);
      case 2: return d_tm.make_bv_number(BVNumber::pow2(pick(w)), w);
      case 3:
        return d_tm.make_bv_number(QNumber(static_cast<long>(pick(1u << w))),
                                   w);
      default:
        return var(d_tm,
                   "x" + std::to_string(pick(3)) + "_" + std::to_string(w),
                   d_tm.get_bv_type(w));
    }
  }

  const Term_* bv_op(size_t w, int depth) {
    using TM = TermManager;
    static const decltype(&TM::make_bv_add) binary[] = {&TM::make_bv_and,
                                                        &TM::make_bv_or,
                                                        &TM::make_bv_xor,
                                                        &TM::make_bv_add,
                                                        &TM::make_bv_sub,
                                                        &TM::make_bv_mul,
                                                        &TM::make_bv_udiv,
                                                        &TM::make_bv_sdiv,
                                                        &TM::make_bv_urem,
                                                        &TM::make_bv_srem,
                                                        &TM::make_bv_lshl,
                                                        &TM::make_bv_lshr,
                                                        &TM::make_bv_ashr};
    int d = depth - 1;
    switch (pick(10)) {
      case 0: return d_tm.make_bv_not(bv(w, d));
      case 1: return d_tm.make_bv_neg(bv(w, d));
      case 2:
        return pick(2) ? d_tm.make_bv_rol(pick(2 * w + 1), bv(w, d))
                       : d_tm.make_bv_ror(pick(2 * w + 1), bv(w, d));
      case 3: {
        size_t k = pick(w);  // extend a narrower term by k bits
        return pick(2) ? d_tm.make_bv_zext(k, bv(w - k, d))
                       : d_tm.make_bv_sext(k, bv(w - k, d));
      }
      case 4: {
        size_t wide = w + pick(3), lsb = pick(wide - w + 1);
        return d_tm.make_bv_extract(lsb + w - 1, lsb, bv(wide, d));
      }
      case 5:
        if (w > 1) {
          size_t hi = 1 + pick(w - 1);
          return d_tm.make_bv_concat(bv(hi, d), bv(w - hi, d));
        }
        return d_tm.make_bv_comp(bv(3, d), bv(3, d));
      case 6:
        return d_tm.make_term_ite(boolean(d > 1 ? 1 : 0), bv(w, d), bv(w, d));
      default: {
        auto op = binary[pick(sizeof binary / sizeof binary[0])];
        return (d_tm.*op)(bv(w, d), bv(w, d));
      }
    }
  }

  const Term_* arith_leaf(bool integer) {
    static const long nums[][2] = {
        {0, 1}, {1, 1}, {-1, 1}, {2, 1}, {3, 1}, {1, 2}, {-3, 2}, {2, 3}};
    if (pick(2) == 0) {
      const long* n = nums[pick(integer ? 5 : 8)];
      return d_tm.make_number(QNumber(n[0], n[1]));
    }
    const Type* t = integer ? d_tm.get_integer_type() : d_tm.get_real_type();
    return var(
        d_tm, std::string(integer ? "i" : "r") + std::to_string(pick(3)), t);
  }

  const Term_* arith_op(bool integer, int depth) {
    int d = depth - 1;
    switch (pick(integer ? 4 : 6)) {
      case 0: return d_tm.make_plus(arith(integer, d), arith(integer, d));
      case 1: return d_tm.make_times(arith_leaf(integer), arith(integer, d));
      case 2:
        return d_tm.make_term_ite(
            boolean(d > 1 ? 1 : 0), arith(integer, d), arith(integer, d));
      case 3:
        return integer ? d_tm.make_floor(arith(false, d))
                       : d_tm.make_times(arith(false, d), arith(false, d));
      case 4:
        return d_tm.make_divide(arith(false, d), arith_leaf(pick(2) == 0));
      default: return d_tm.make_divide(arith(false, d), arith(false, d));
    }
  }

  TermManager& d_tm;
  std::mt19937 d_rng;
  int d_theory = 0;
  std::map<size_t, std::vector<const Term_*>> d_bv_pool;
  std::map<bool, std::vector<const Term_*>> d_ar_pool;
};

// Builds the same random formula in a plain store and a simplifying one,
// and compares their values under `assignments` random assignments.
class SoundnessTest : public ::testing::Test {
 protected:
  void check(int theory, int formulas, int depth, int assignments) {
    std::mt19937 rng(12345 + theory);
    for (int n = 0; n < formulas; ++n) {
      TermManager plain;
      Simplifying simp;
      RandomTerms gp(plain, 1000 * theory + n), gs(simp.tm, 1000 * theory + n);
      gp.set_theory(theory);
      gs.set_theory(theory);
      const Term_* fp = gp.boolean(depth);
      const Term_* fs = gs.boolean(depth);
      if (getenv("SIMPL_DEBUG"))
        fprintf(stderr,
                "%zu %zu | %s\n  => %s\n",
                fp->to_str().size(),
                fs->to_str().size(),
                fp->to_str().c_str(),
                fs->to_str().c_str());
      for (int k = 0; k < assignments; ++k) {
        Assignment a = random_assignment(plain, fp, rng);
        QNumber vp = RefEval(plain, a)(fp);
        QNumber vs = RefEval(simp.tm, a)(fs);
        ASSERT_EQ(vp, vs) << "unsimplified: " << fp->to_str()
                          << "\nsimplified: " << fs->to_str();
      }
      ++d_checked;
    }
  }

  // Values for every constant of t: bit-vectors biased towards 0, 1, all
  // ones and the sign bit, numbers small.
  static Assignment random_assignment(const TermManager& tm,
                                      const Term_* t,
                                      std::mt19937& rng) {
    Assignment a;
    std::vector<const Term_*> stack{t};
    auto pick = [&](long n) {
      return std::uniform_int_distribution<long>(0, n - 1)(rng);
    };
    while (!stack.empty()) {
      const Term_* u = stack.back();
      stack.pop_back();
      for (const Term_* c : *u) {
        stack.push_back(c);
      }
      if (u->get_arity() != 0 || tm.is_number(u->get_symbol())
          || u == tm.make_true() || u == tm.make_false()) {
        continue;
      }
      size_t w = 0;
      QNumber value;
      if (tm.is_bv_type(u->get_type(), &w)) {
        long top = 1L << w;
        long special[] = {0, 1, top - 1, top / 2, pick(top)};
        value = special[pick(5)];
      } else if (tm.is_bool_type(u->get_type())) {
        value = pick(2);
      } else if (tm.is_integer_type(u->get_type())) {
        value = pick(9) - 4;
      } else {
        value = QNumber(pick(13) - 6, 1 + pick(3));
      }
      a.emplace(u->get_symbol()->get_name(), value);
    }
    return a;
  }

  int d_checked = 0;
};

TEST_F(SoundnessTest, BooleanFormulasOverFourAtoms) {
  check(0, 300, 5, 16);
}

TEST_F(SoundnessTest, BitVectorFormulasOfWidthsOneToEight) {
  check(1, 1500, 4, 24);
}

TEST_F(SoundnessTest, LinearAndNonlinearArithmetic) {
  check(2, 1500, 4, 24);
}

// ----------------------------------------------------------------------
// Constant folding against independent arithmetic
// ----------------------------------------------------------------------

// Every binary and unary operator of narrow widths, on all operand pairs,
// against the host's integers (the reference evaluator).
TEST(FoldingTest, BitVectorOperatorsOnAllSmallOperands) {
  Simplifying s;
  TermManager& tm = s.tm;
  using TM = TermManager;
  const decltype(&TM::make_bv_add) binary[] = {&TM::make_bv_and,
                                               &TM::make_bv_or,
                                               &TM::make_bv_xor,
                                               &TM::make_bv_add,
                                               &TM::make_bv_sub,
                                               &TM::make_bv_mul,
                                               &TM::make_bv_udiv,
                                               &TM::make_bv_sdiv,
                                               &TM::make_bv_urem,
                                               &TM::make_bv_srem,
                                               &TM::make_bv_lshl,
                                               &TM::make_bv_lshr,
                                               &TM::make_bv_ashr,
                                               &TM::make_bv_ult,
                                               &TM::make_bv_ule,
                                               &TM::make_bv_slt,
                                               &TM::make_bv_sle,
                                               &TM::make_bv_comp,
                                               &TM::make_bv_concat};
  Assignment none;
  TM plain;
  for (size_t w = 1; w <= 4; ++w) {
    for (long a = 0; a < (1L << w); ++a) {
      for (long c = 0; c < (1L << w); ++c) {
        const Term_* ta = tm.make_bv_number(QNumber(a), w);
        const Term_* tc = tm.make_bv_number(QNumber(c), w);
        for (auto op : binary) {
          const Term_* folded = (tm.*op)(ta, tc);
          const Term_* raw = (plain.*op)(plain.make_bv_number(QNumber(a), w),
                                         plain.make_bv_number(QNumber(c), w));
          SymbolTag::tag tag = plain.get_tag(raw->get_symbol());
          bool by_zero =
              c == 0 && tag >= SymbolTag::BV_UDIV && tag <= SymbolTag::BV_SREM;
          EXPECT_EQ(by_zero, !termsimpl::is_value(&tm, folded, false))
              << raw->to_str();
          if (!by_zero) {
            EXPECT_EQ(RefEval(tm, none)(folded), RefEval(plain, none)(raw))
                << raw->to_str();
          }
        }
      }
    }
  }
}

// Operators of wide words, against GMP.
TEST(FoldingTest, WideBitVectorArithmeticAgreesWithGmp) {
  Simplifying s;
  TermManager& tm = s.tm;
  gmp_randstate_t st;
  gmp_randinit_default(st);
  mpz_t a, c, m, r, one;
  mpz_inits(a, c, m, r, one, nullptr);
  mpz_set_ui(one, 1);
  const size_t w = 100;
  mpz_setbit(m, w);  // 2^w
  auto value = [&](const Term_* x) {
    QNumber v;
    EXPECT_TRUE(tm.is_number(x->get_symbol(), &v));
    mpz_t z;
    mpz_init(z);
    v.num_to_mpz(z);
    bool same = mpz_cmp(z, r) == 0;
    mpz_clear(z);
    return same;
  };
  for (int k = 0; k < 200; ++k) {
    mpz_urandomb(a, st, w);
    mpz_urandomb(c, st, k % 2 ? w : 20);
    const Term_* ta = tm.make_bv_number(QNumber(a, one), w);
    const Term_* tc = tm.make_bv_number(QNumber(c, one), w);
    mpz_add(r, a, c);
    mpz_mod(r, r, m);
    EXPECT_TRUE(value(tm.make_bv_add(ta, tc)));
    mpz_mul(r, a, c);
    mpz_mod(r, r, m);
    EXPECT_TRUE(value(tm.make_bv_mul(ta, tc)));
    mpz_sub(r, a, c);
    mpz_mod(r, r, m);
    EXPECT_TRUE(value(tm.make_bv_sub(ta, tc)));
    if (mpz_sgn(c) != 0) {
      mpz_fdiv_q(r, a, c);
      EXPECT_TRUE(value(tm.make_bv_udiv(ta, tc)));
      mpz_fdiv_r(r, a, c);
      EXPECT_TRUE(value(tm.make_bv_urem(ta, tc)));
    }
    mpz_mul_2exp(r, a, k % w);
    mpz_mod(r, r, m);
    EXPECT_TRUE(
        value(tm.make_bv_lshl(ta, tm.make_bv_number(QNumber(long(k % w)), w))));
  }
  mpz_clears(a, c, m, r, one, nullptr);
  gmp_randclear(st);
}

TEST(FoldingTest, RationalArithmeticAgreesWithGmp) {
  Simplifying s;
  TermManager& tm = s.tm;
  std::mt19937 rng(7);
  std::uniform_int_distribution<long> d(-1000000, 1000000);
  mpq_t x, y, z;
  mpq_inits(x, y, z, nullptr);
  for (int k = 0; k < 500; ++k) {
    mpq_set_si(x, d(rng), 1 + d(rng) % 1000 + 1000);
    mpq_set_si(y, d(rng), 1 + d(rng) % 1000 + 1000);
    mpq_canonicalize(x);
    mpq_canonicalize(y);
    const Term_* tx = tm.make_number(QNumber(static_cast<mpq_srcptr>(x)));
    const Term_* ty = tm.make_number(QNumber(static_cast<mpq_srcptr>(y)));
    mpq_add(z, x, y);
    EXPECT_EQ(tm.make_plus(tx, ty),
              tm.make_number(QNumber(static_cast<mpq_srcptr>(z))));
    mpq_mul(z, x, y);
    EXPECT_EQ(tm.make_times(tx, ty),
              tm.make_number(QNumber(static_cast<mpq_srcptr>(z))));
    if (mpq_sgn(y) != 0) {
      mpq_div(z, x, y);
      EXPECT_EQ(tm.make_divide(tx, ty),
                tm.make_number(QNumber(static_cast<mpq_srcptr>(z))));
    }
    EXPECT_EQ(tm.make_leq(tx, ty),
              mpq_cmp(x, y) <= 0 ? tm.make_true() : tm.make_false());
    mpz_t f;
    mpz_init(f);
    mpz_fdiv_q(f, mpq_numref(x), mpq_denref(x));
    mpq_set_z(z, f);
    mpz_clear(f);
    EXPECT_EQ(tm.make_floor(tx),
              tm.make_number(QNumber(static_cast<mpq_srcptr>(z))));
  }
  mpq_clears(x, y, z, nullptr);
}

// ----------------------------------------------------------------------
// Deep terms
// ----------------------------------------------------------------------

constexpr int kDeep = 1000000;

TEST(DeepTermTest, MillionLevelTermsSimplifyWithoutRecursion) {
  Simplifying s;
  TermManager& tm = s.tm;
  const Type* bv8 = tm.get_bv_type(8);
  const Term_* x = var(tm, "x", bv8);
  // Built plain, then rebuilt with the simplifier by a substitution:
  // every level folds a number, and the zeros vanish.
  tm.enable_simplifications(false);
  const Term_* zero = tm.make_bv_number(QNumber(0L), 8);
  const Term_* t = x;
  for (int k = 0; k < kDeep; ++k) {
    t = tm.make_bv_add(tm.make_bv_add(zero, zero), t);
  }
  tm.enable_simplifications(true);
  const Term_* y = var(tm, "y", bv8);
  TermMap m;
  m.insert(x, y);
  EXPECT_EQ(tm.substitute(t, m), y);
  // A million nested negations and connectives, built simplifying.
  const Term_* p = var(tm, "p", tm.get_bool_type());
  const Term_* q = var(tm, "q", tm.get_bool_type());
  const Term_* f = p;
  for (int k = 0; k < kDeep; ++k) {
    f = tm.make_not(k % 3 == 0 ? tm.make_and(q, f) : f);
  }
  EXPECT_EQ(tm.get_tag(f->get_symbol()), SymbolTag::NOT);
}

TEST(DeepTermTest, LongSumsNormaliseWithoutRecursion) {
  Simplifying s;
  TermManager& tm = s.tm;
  const int n = 200000;
  std::vector<const Term_*> xs;
  for (int k = 0; k < n; ++k) {
    xs.push_back(var(tm, "x" + std::to_string(k), tm.get_real_type()));
  }
  const Term_* up = tm.make_number(0L);
  const Term_* down = tm.make_number(0L);
  for (int k = 0; k < n; ++k) {
    up = tm.make_plus(xs[k], up);
    down = tm.make_plus(down, xs[n - 1 - k]);
  }
  const Term_* a = tm.make_leq(up, tm.make_number(1L));
  EXPECT_EQ(a, tm.make_leq(down, tm.make_number(1L)));
  EXPECT_EQ(tm.get_tag(a->get_symbol()), SymbolTag::LEQ);
  // A value array of many writes compares without recursion too.
  const Type* arr =
      tm.get_array_type(tm.get_integer_type(), tm.get_integer_type());
  const Term_* w1 = tm.make_array_const(arr, tm.make_number(0L));
  const Term_* w2 = w1;
  for (int k = 0; k < n; ++k) {
    w1 = tm.make_array_write(w1, tm.make_number(k), tm.make_number(k % 7));
    w2 = tm.make_array_write(
        w2, tm.make_number(n - 1 - k), tm.make_number((n - 1 - k) % 7));
  }
  EXPECT_EQ(tm.make_equal(w1, w2), tm.make_true());
}

// ----------------------------------------------------------------------
// The environment installs it
// ----------------------------------------------------------------------

TEST(EnvironmentSimplifierTest, InstalledUnlessSwitchedOff) {
  Configuration cfg;
  Environment env(cfg);
  TermManager& tm = env.get_term_manager();
  EXPECT_TRUE(tm.simplifications_enabled());
  EXPECT_EQ(tm.get_simplifier(), env.get_simplifier());
  const Term_* a = var(tm, "a", tm.get_bool_type());
  env.assert_formula(tm.make_and(tm.make_true(), a));
  EXPECT_EQ(env.check(), 1);
  env.assert_formula(tm.make_or(tm.make_false(), tm.make_not(a)));
  EXPECT_EQ(env.check(), 0);
  env.reset_assertions();
  env.renew_simplifier();
  EXPECT_EQ(tm.get_simplifier(), env.get_simplifier());
  EXPECT_EQ(tm.make_and(a, tm.make_not(a)), tm.make_false());

  Environment shared(cfg, &tm);
  EXPECT_EQ(shared.get_simplifier(), nullptr);
  EXPECT_EQ(tm.get_simplifier(), env.get_simplifier());

  cfg.term_simplifications = false;
  Environment off(cfg);
  EXPECT_FALSE(off.get_term_manager().simplifications_enabled());
  EXPECT_NE(off.get_simplifier(), nullptr);
}

}  // namespace
}  // namespace zenlo
