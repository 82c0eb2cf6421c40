// Rounding rationals to floats, checked against the host's float and double
// arithmetic, whose division of exact operands is correctly rounded in all
// four modes.
#include <gmp.h>
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "terms/ieeefloat.h"

namespace zenlo {
namespace {

const IEEEFloat::Format kSingle{8, 23};
const IEEEFloat::Format kDouble{11, 52};

const RoundingMode kModes[] = {RoundingMode::NearestEven,
                               RoundingMode::Zero,
                               RoundingMode::PlusInf,
                               RoundingMode::MinusInf};
const int kHostModes[] = {FE_TONEAREST, FE_TOWARDZERO, FE_UPWARD, FE_DOWNWARD};

// The exact value a * 2^ka / (b * 2^kb).
QNumber exact(int64_t a, int ka, int64_t b, int kb) {
  mpq_t q;
  mpq_init(q);
  mpq_set_si(q, a, 1);
  if (ka >= 0) {
    mpq_mul_2exp(q, q, ka);
  } else {
    mpq_div_2exp(q, q, -ka);
  }
  mpq_t d;
  mpq_init(d);
  mpq_set_si(d, b, 1);
  if (kb >= 0) {
    mpq_mul_2exp(d, d, kb);
  } else {
    mpq_div_2exp(d, d, -kb);
  }
  mpq_div(q, q, d);
  QNumber n(q);
  mpq_clear(q);
  mpq_clear(d);
  return n;
}

uint64_t bits_of(double d) {
  uint64_t u;
  std::memcpy(&u, &d, sizeof u);
  return u;
}

uint32_t bits_of(float f) {
  uint32_t u;
  std::memcpy(&u, &f, sizeof u);
  return u;
}

QNumber qbits(uint64_t u) {
  mpz_t z, one;
  mpz_init(z);
  mpz_import(z, 1, 1, sizeof u, 0, 0, &u);
  mpz_init_set_ui(one, 1);
  QNumber n(z, one);
  mpz_clear(z);
  mpz_clear(one);
  return n;
}

// Host quotient of exactly representable operands under a rounding mode;
// volatile keeps the division at run time, after the mode switch.
template <class F>
F host_divide(F a, F b, int mode) {
  volatile F x = a;
  volatile F y = b;
  std::fesetround(mode);
  volatile F q = x / y;
  std::fesetround(FE_TONEAREST);
  return q;
}

template <class F, class Bits>
void check_random(IEEEFloat::Format format,
                  int significand_bits,
                  int max_scale,
                  unsigned seed) {
  std::mt19937_64 rng(seed);
  const int64_t limit = int64_t(1) << significand_bits;
  std::uniform_int_distribution<int64_t> sig(1, limit - 1);
  std::uniform_int_distribution<int> scale(-max_scale, max_scale);
  int infinite = 0, subnormal = 0, zero = 0;
  for (int n = 0; n < 3000; ++n) {
    int64_t a = sig(rng) * (rng() % 2 ? 1 : -1);
    int64_t b = sig(rng);
    int ka = scale(rng);
    int kb = scale(rng);
    F fa = std::ldexp(static_cast<F>(a), ka);
    F fb = std::ldexp(static_cast<F>(b), kb);
    QNumber value = exact(a, ka, b, kb);
    for (int m = 0; m < 4; ++m) {
      Bits expected = bits_of(host_divide(fa, fb, kHostModes[m]));
      IEEEFloat f(format, value, kModes[m]);
      ASSERT_EQ(f.get_bits(), qbits(expected)) << value << " in mode " << m;
      infinite += f.is_inf() ? 1 : 0;
      subnormal += f.is_subnormal() ? 1 : 0;
      zero += f.is_zero() ? 1 : 0;
    }
  }
  // The ranges above must reach the edges of the format.
  EXPECT_GT(infinite, 100);
  EXPECT_GT(subnormal, 100);
  EXPECT_GT(zero, 100);
}

TEST(IEEEFloat, RoundsLikeTheHostInSinglePrecision) {
  // Operands stay finite and normal; their quotients still reach overflow
  // and the subnormals.
  check_random<float, uint32_t>(kSingle, 24, 100, 1);
}

TEST(IEEEFloat, RoundsLikeTheHostInDoublePrecision) {
  check_random<double, uint64_t>(kDouble, 53, 960, 2);
}

TEST(IEEEFloat, HonoursEachModeOnTiesAndOverflow) {
  // 1 + 2^-24 lies halfway between 1 and the next single float.
  QNumber tie = exact((1 << 24) + 1, 0, 1 << 24, 0);
  EXPECT_EQ(IEEEFloat(kSingle, tie, RoundingMode::NearestEven).get_bits(),
            qbits(0x3f800000));
  EXPECT_EQ(IEEEFloat(kSingle, tie, RoundingMode::PlusInf).get_bits(),
            qbits(0x3f800001));
  QNumber huge = exact(1, 200, 1, 0);
  EXPECT_TRUE(IEEEFloat(kSingle, huge, RoundingMode::NearestEven).is_inf());
  EXPECT_EQ(IEEEFloat(kSingle, huge, RoundingMode::Zero).get_bits(),
            qbits(0x7f7fffff));
  EXPECT_EQ(IEEEFloat(kSingle, huge.neg(), RoundingMode::PlusInf).get_bits(),
            qbits(0xff7fffff));
  EXPECT_EQ(IEEEFloat(kSingle, huge.neg(), RoundingMode::MinusInf).get_bits(),
            qbits(0xff800000));
  // Far below the smallest subnormal: zero, or the smallest subnormal when
  // rounding away from zero, with the sign kept.
  QNumber tiny = exact(1, -400, 3, 0);
  EXPECT_TRUE(IEEEFloat(kSingle, tiny, RoundingMode::NearestEven).is_zero());
  EXPECT_EQ(IEEEFloat(kSingle, tiny, RoundingMode::PlusInf).get_bits(),
            qbits(1));
  EXPECT_EQ(IEEEFloat(kSingle, tiny.neg(), RoundingMode::Zero).get_bits(),
            qbits(0x80000000));
  IEEEFloat sub(kSingle, exact(3, -149, 1, 0), RoundingMode::Zero);
  EXPECT_TRUE(sub.is_subnormal());
  EXPECT_EQ(sub.to_rational(), exact(3, -149, 1, 0));
}

TEST(IEEEFloat, SpecialValuesAndSmallFormats) {
  EXPECT_EQ(IEEEFloat::plus_inf(kDouble).get_bits(),
            qbits(0x7ff0000000000000ull));
  EXPECT_EQ(IEEEFloat::minus_inf(kSingle).get_bits(), qbits(0xff800000));
  IEEEFloat nan = IEEEFloat::nan(kSingle);
  EXPECT_TRUE(nan.is_nan());
  EXPECT_EQ(nan.get_bits(), qbits(0x7fc00000));
  EXPECT_EQ(IEEEFloat(kSingle, 0, RoundingMode::MinusInf).get_bits(), qbits(0));
  EXPECT_EQ(IEEEFloat::zero(kSingle, true).get_bits(), qbits(0x80000000));
  IEEEFloat back = IEEEFloat::from_bits(kDouble, qbits(bits_of(-0.375)));
  EXPECT_TRUE(back.is_normal());
  EXPECT_EQ(back.to_rational(), exact(-3, 0, 8, 0));
  // Format (2, 2): values 0, 0.25, 0.5, 0.75 subnormal; 1 .. 3.5 normal.
  IEEEFloat::Format tiny{2, 2};
  EXPECT_EQ(IEEEFloat(tiny, exact(7, 0, 2, 0), RoundingMode::Zero).get_bits(),
            qbits(0b01011));
  EXPECT_TRUE(IEEEFloat(tiny, 4, RoundingMode::NearestEven).is_inf());
  EXPECT_EQ(
      IEEEFloat(tiny, exact(1, 0, 8, 0), RoundingMode::NearestEven).get_bits(),
      qbits(0));  // a tie between 0 and 0.25 goes to even
  EXPECT_THROW(IEEEFloat(IEEEFloat::Format{1, 3}, 1, RoundingMode::Zero),
               IEEEFloat::error);
}

}  // namespace
}  // namespace zenlo
