// Floating-point constant folding, through the term store's simplifier,
// against the host's float and double arithmetic under the four rounding
// modes; and square roots of a narrow format, where roots may be
// subnormal, against their definition.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "terms/fpeval.h"
#include "terms/stdtermsimplifier.h"
#include "terms/termmanager.h"

namespace zenlo {
namespace {

struct Mode {
  RoundingMode ours;
  int host;
};

const Mode kModes[] = {{RoundingMode::NearestEven, FE_TONEAREST},
                       {RoundingMode::Zero, FE_TOWARDZERO},
                       {RoundingMode::PlusInf, FE_UPWARD},
                       {RoundingMode::MinusInf, FE_DOWNWARD}};

// The host type of a format, its bits, and its arithmetic under a mode.
template <class F>
struct Host;

template <>
struct Host<float> {
  using Bits = uint32_t;
  static constexpr size_t e = 8, m = 23;
};

template <>
struct Host<double> {
  using Bits = uint64_t;
  static constexpr size_t e = 11, m = 52;
};

template <class F>
typename Host<F>::Bits bits_of(F x) {
  typename Host<F>::Bits b;
  std::memcpy(&b, &x, sizeof b);
  return b;
}

template <class F>
F from_bits(typename Host<F>::Bits b) {
  F x;
  std::memcpy(&x, &b, sizeof b);
  return x;
}

// Runs f with the host's rounding mode set; volatile operands keep the
// operation from being folded by the compiler under the default mode.
template <class R, class Fn>
R under(int mode, Fn fn) {
  std::fesetround(mode);
  volatile R r = fn();
  std::fesetround(FE_TONEAREST);
  return r;
}

template <class F>
class FpFoldTest : public ::testing::Test {
 protected:
  using H = Host<F>;

  FpFoldTest() : simp(&tm) {
    tm.set_simplifier(&simp);
    tm.enable_simplifications(true);
  }

  const Term_* num(F x) {
    return tm.make_fp_bits_number(
        QNumber(static_cast<long>(bits_of(x) >> 1)) * QNumber(2L)
            + QNumber(static_cast<long>(bits_of(x) & 1)),
        H::e,
        H::m);
  }

  const Term_* rm(const Mode& mode) {
    return tm.make_fp_rounding_mode(mode.ours);
  }

  // Expects `t` to be the number of x (any NaN for a NaN).
  void expect_value(const Term_* t, F x, const std::string& what) {
    QNumber v;
    ASSERT_TRUE(tm.is_number(t->get_symbol(), &v))
        << what << ": " << t->to_str();
    IEEEFloat f = IEEEFloat::from_bits(IEEEFloat::Format{H::e, H::m}, v);
    if (std::isnan(x)) {
      EXPECT_TRUE(f.is_nan()) << what;
      return;
    }
    EXPECT_EQ(v,
              QNumber(static_cast<long>(bits_of(x) >> 1)) * QNumber(2L)
                  + QNumber(static_cast<long>(bits_of(x) & 1)))
        << what << ": got " << v << " for " << x;
  }

  void expect_bool(const Term_* t, bool b, const std::string& what) {
    EXPECT_EQ(t, b ? tm.make_true() : tm.make_false()) << what;
  }

  std::vector<F> values() {
    const F inf = INFINITY;
    const F mx = std::numeric_limits<F>::max();
    const F mn = std::numeric_limits<F>::min();
    const F den = std::numeric_limits<F>::denorm_min();
    std::vector<F> v = {0.0f,     -0.0f,    1,     -1,       0.5, 1.5,  2.5,
                        -2.5,     3,        0.1f,  -7.75f,   inf, -inf, F(NAN),
                        mx,       -mx,      mn,    -mn,      den, -den, 3 * den,
                        mn - den, F(1) / 3, 1e10f, -65536.5f};
    std::mt19937_64 rng(42);
    for (int k = 0; k < 40; ++k) {
      F x = from_bits<F>(static_cast<typename H::Bits>(rng()));
      v.push_back(k % 2 ? x : F(int64_t(rng() % 2001) - 1000) / F(8));
    }
    return v;
  }

  TermManager tm;
  StdTermSimplifier simp;
};

using Formats = ::testing::Types<float, double>;
TYPED_TEST_SUITE(FpFoldTest, Formats);

TYPED_TEST(FpFoldTest, RoundedArithmeticAgreesWithTheHost) {
  using F = TypeParam;
  TermManager& tm = this->tm;
  std::vector<F> vs = this->values();
  for (const Mode& mode : kModes) {
    const Term_* r = this->rm(mode);
    for (F a : vs) {
      const Term_* ta = this->num(a);
      volatile F va = a;
      for (F b : vs) {
        const Term_* tb = this->num(b);
        volatile F vb = b;
        std::string what = std::to_string(a) + " , " + std::to_string(b);
        this->expect_value(tm.make_fp_add(r, ta, tb),
                           under<F>(mode.host, [&] { return va + vb; }),
                           "add " + what);
        this->expect_value(tm.make_fp_sub(r, ta, tb),
                           under<F>(mode.host, [&] { return va - vb; }),
                           "sub " + what);
        this->expect_value(tm.make_fp_mul(r, ta, tb),
                           under<F>(mode.host, [&] { return va * vb; }),
                           "mul " + what);
        this->expect_value(tm.make_fp_div(r, ta, tb),
                           under<F>(mode.host, [&] { return va / vb; }),
                           "div " + what);
      }
      this->expect_value(tm.make_fp_sqrt(r, ta),
                         under<F>(mode.host, [&] { return std::sqrt(va); }),
                         "sqrt " + std::to_string(a));
      this->expect_value(
          tm.make_fp_round_to_int(r, ta),
          under<F>(mode.host, [&] { return std::nearbyint(va); }),
          "rint " + std::to_string(a));
    }
  }
}

TYPED_TEST(FpFoldTest, ComparisonsClassesAndSigns) {
  using F = TypeParam;
  TermManager& tm = this->tm;
  std::vector<F> vs = this->values();
  for (F a : vs) {
    const Term_* ta = this->num(a);
    std::string sa = std::to_string(a);
    for (F b : vs) {
      const Term_* tb = this->num(b);
      std::string what = sa + " , " + std::to_string(b);
      this->expect_bool(tm.make_fp_equal(ta, tb), a == b, "eq " + what);
      this->expect_bool(tm.make_fp_lt(ta, tb), a < b, "lt " + what);
      this->expect_bool(tm.make_fp_le(ta, tb), a <= b, "le " + what);
      bool open = a == 0 && b == 0 && std::signbit(a) != std::signbit(b);
      const Term_* mn = tm.make_fp_min(ta, tb);
      const Term_* mx = tm.make_fp_max(ta, tb);
      if (open) {
        EXPECT_EQ(tm.get_tag(mn->get_symbol()), SymbolTag::FP_MIN) << what;
        EXPECT_EQ(tm.get_tag(mx->get_symbol()), SymbolTag::FP_MAX) << what;
      } else {
        this->expect_value(mn, std::fmin(a, b), "min " + what);
        this->expect_value(mx, std::fmax(a, b), "max " + what);
      }
    }
    bool nan = std::isnan(a);
    this->expect_bool(tm.make_fp_isnan(ta), nan, "isnan " + sa);
    this->expect_bool(tm.make_fp_isinf(ta), std::isinf(a), "isinf " + sa);
    this->expect_bool(tm.make_fp_iszero(ta), a == 0, "iszero " + sa);
    this->expect_bool(tm.make_fp_issubnormal(ta),
                      std::fpclassify(a) == FP_SUBNORMAL,
                      "issubnormal " + sa);
    this->expect_bool(
        tm.make_fp_isnormal(ta), std::isnormal(a), "isnormal " + sa);
    this->expect_bool(
        tm.make_fp_isneg(ta), !nan && std::signbit(a), "isneg " + sa);
    this->expect_bool(
        tm.make_fp_ispos(ta), !nan && !std::signbit(a), "ispos " + sa);
    this->expect_value(tm.make_fp_neg(ta), -a, "neg " + sa);
    this->expect_value(tm.make_fp_abs(ta), std::fabs(a), "abs " + sa);
    const Term_* bits = tm.make_fp_as_ieeebv(ta);
    EXPECT_EQ(tm.make_fp_from_ieeebv(Host<F>::e, Host<F>::m, bits), ta);
  }
}

TYPED_TEST(FpFoldTest, ConversionsAgreeWithTheHost) {
  using F = TypeParam;
  TermManager& tm = this->tm;
  for (const Mode& mode : kModes) {
    const Term_* r = this->rm(mode);
    for (F a : this->values()) {
      const Term_* ta = this->num(a);
      volatile F va = a;
      std::string sa = std::to_string(a);
      F rounded = under<F>(mode.host, [&] { return std::nearbyint(va); });
      const Term_* s = tm.make_fp_to_sbv(32, r, ta);
      const Term_* u = tm.make_fp_to_ubv(32, r, ta);
      QNumber v;
      if (std::isfinite(rounded) && rounded >= F(-2147483648.0)
          && rounded < F(2147483648.0)) {
        ASSERT_TRUE(tm.is_number(s->get_symbol(), &v)) << "to_sbv " << sa;
        EXPECT_EQ(BVNumber::to_signed(v, 32),
                  QNumber(static_cast<long>(rounded)));
      } else {
        EXPECT_FALSE(tm.is_number(s->get_symbol())) << "to_sbv " << sa;
      }
      if (std::isfinite(rounded) && rounded >= 0 && rounded < F(4294967296.0)) {
        ASSERT_TRUE(tm.is_number(u->get_symbol(), &v)) << "to_ubv " << sa;
        EXPECT_EQ(v, QNumber(static_cast<long>(rounded)));
      } else {
        EXPECT_FALSE(tm.is_number(u->get_symbol())) << "to_ubv " << sa;
      }
      // Widening is exact; narrowing rounds.
      const Term_* wide = tm.make_fp_cast(11, 52, r, ta);
      const Term_* back = tm.make_fp_cast(8, 23, r, wide);
      volatile double wd = static_cast<double>(a);
      float narrow =
          under<float>(mode.host, [&] { return static_cast<float>(wd); });
      QNumber bits;
      ASSERT_TRUE(tm.is_number(back->get_symbol(), &bits));
      if (std::isnan(narrow)) {
        EXPECT_TRUE(
            IEEEFloat::from_bits(IEEEFloat::Format{8, 23}, bits).is_nan());
      } else {
        EXPECT_EQ(bits, QNumber(static_cast<long>(bits_of(narrow))))
            << "cast " << sa;
      }
    }
    for (long k :
         {0L, 1L, -1L, 16777217L, -16777219L, 2147483647L, -2147483648L}) {
      const Term_* bv =
          tm.make_bv_number(BVNumber::twos_complement(QNumber(k), 32), 32);
      volatile int32_t vk = static_cast<int32_t>(k);
      volatile uint32_t uk = static_cast<uint32_t>(k);
      this->expect_value(
          tm.make_fp_from_sbv(Host<F>::e, Host<F>::m, r, bv),
          under<F>(mode.host, [&] { return static_cast<F>(vk); }),
          "from_sbv " + std::to_string(k));
      this->expect_value(
          tm.make_fp_from_ubv(Host<F>::e, Host<F>::m, r, bv),
          under<F>(mode.host, [&] { return static_cast<F>(uk); }),
          "from_ubv " + std::to_string(k));
    }
  }
}

// Every positive float of the format (3, 4), where roots of subnormals
// are subnormal themselves: the folded root is the float its rounding
// mode picks among the two neighbours of the exact root, told apart by
// squaring (the root of a float is never a tie between two floats).
TEST(FpSqrtTest, NarrowFormatRootsAreCorrectlyRounded) {
  const IEEEFloat::Format f{3, 4};
  std::vector<QNumber> finite;  // all non-negative finite values, ascending
  for (long b = 0; b < (1L << 7) - (1L << 4); ++b) {
    finite.push_back(IEEEFloat::from_bits(f, QNumber(b)).to_rational());
  }
  for (long b = 1; b < (1L << 7) - (1L << 4); ++b) {
    IEEEFloat x = IEEEFloat::from_bits(f, QNumber(b));
    QNumber v = x.to_rational();
    size_t lo = 0;  // largest value whose square is at most v
    while (lo + 1 < finite.size() && finite[lo + 1] * finite[lo + 1] <= v) {
      ++lo;
    }
    bool exact = finite[lo] * finite[lo] == v;
    size_t hi = exact ? lo : lo + 1;
    QNumber mid = (finite[lo] + finite[hi]) / QNumber(2L);
    size_t nearest = exact || v < mid * mid ? lo : hi;
    size_t expected[] = {nearest, lo, hi, lo};
    for (int mode = 0; mode < 4; ++mode) {
      IEEEFloat r = termsimpl::fp_eval_sqrt(static_cast<RoundingMode>(mode), x);
      EXPECT_EQ(r.to_rational(), finite[expected[mode]])
          << "sqrt of " << v << " in mode " << mode;
    }
  }
}

}  // namespace
}  // namespace zenlo
