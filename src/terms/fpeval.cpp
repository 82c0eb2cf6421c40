#include "terms/fpeval.h"

#include <algorithm>

#include "terms/numbers_gmp.h"

namespace zenlo {
namespace termsimpl {

using numbers_detail::Mpz;

bool fp_foldable_format(size_t exp_w, size_t mant_w) {
  return exp_w >= 2 && exp_w <= kMaxFoldExpWidth && mant_w >= 1;
}

// ----------------------------------------------------------------------
// Sign and order, on the bit patterns
// ----------------------------------------------------------------------

namespace {

QNumber sign_bit(const IEEEFloat::Format& f) {
  return BVNumber::pow2(f.width() - 1);
}

IEEEFloat signed_inf(const IEEEFloat::Format& f, bool negative) {
  return negative ? IEEEFloat::minus_inf(f) : IEEEFloat::plus_inf(f);
}

// The magnitude bits order the non-negative floats as their values do, so
// a signed magnitude orders all non-NaN floats; both zeros map to 0.
QNumber order_key(const IEEEFloat& a) {
  QNumber key = BVNumber::trim(a.get_bits(), a.format().width() - 1);
  return a.is_negative() ? key.neg() : key;
}

}  // namespace

FpOrder fp_compare(const IEEEFloat& a, const IEEEFloat& b) {
  if (a.is_nan() || b.is_nan()) {
    return FpOrder::Unordered;
  }
  int c = order_key(a).compare(order_key(b));
  return c < 0 ? FpOrder::Less : c == 0 ? FpOrder::Equal : FpOrder::Greater;
}

IEEEFloat fp_negate(const IEEEFloat& a) {
  QNumber bits = a.get_bits();
  const QNumber s = sign_bit(a.format());
  return IEEEFloat::from_bits(a.format(),
                              a.is_negative() ? bits - s : bits + s);
}

IEEEFloat fp_absolute(const IEEEFloat& a) {
  return a.is_negative() ? fp_negate(a) : a;
}

// ----------------------------------------------------------------------
// Arithmetic
// ----------------------------------------------------------------------

namespace {

IEEEFloat fp_add(RoundingMode mode, const IEEEFloat& a, const IEEEFloat& b) {
  const IEEEFloat::Format& f = a.format();
  if (a.is_nan() || b.is_nan()) {
    return IEEEFloat::nan(f);
  }
  if (a.is_inf() || b.is_inf()) {
    if (a.is_inf() && b.is_inf() && a.is_negative() != b.is_negative()) {
      return IEEEFloat::nan(f);
    }
    return a.is_inf() ? a : b;
  }
  QNumber sum = a.to_rational() + b.to_rational();
  if (sum.is_zero()) {
    // An exact zero sum is +0, but -0 when rounding down, and keeps the
    // sign both zeros share.
    if (a.is_zero() && b.is_zero() && a.is_negative() == b.is_negative()) {
      return a;
    }
    return IEEEFloat::zero(f, mode == RoundingMode::MinusInf);
  }
  return IEEEFloat(f, sum, mode);
}

IEEEFloat fp_mul(RoundingMode mode, const IEEEFloat& a, const IEEEFloat& b) {
  const IEEEFloat::Format& f = a.format();
  bool neg = a.is_negative() != b.is_negative();
  if (a.is_nan() || b.is_nan()) {
    return IEEEFloat::nan(f);
  }
  if (a.is_inf() || b.is_inf()) {
    return a.is_zero() || b.is_zero() ? IEEEFloat::nan(f) : signed_inf(f, neg);
  }
  if (a.is_zero() || b.is_zero()) {
    return IEEEFloat::zero(f, neg);
  }
  return IEEEFloat(f, a.to_rational() * b.to_rational(), mode);
}

IEEEFloat fp_div(RoundingMode mode, const IEEEFloat& a, const IEEEFloat& b) {
  const IEEEFloat::Format& f = a.format();
  bool neg = a.is_negative() != b.is_negative();
  if (a.is_nan() || b.is_nan() || (a.is_inf() && b.is_inf())
      || (a.is_zero() && b.is_zero())) {
    return IEEEFloat::nan(f);
  }
  if (a.is_inf() || b.is_zero()) {
    return signed_inf(f, neg);
  }
  if (b.is_inf() || a.is_zero()) {
    return IEEEFloat::zero(f, neg);
  }
  return IEEEFloat(f, a.to_rational() / b.to_rational(), mode);
}

// floor(a / 2^-2k) for a rational p / q: p * 4^k / q, k of either sign;
// returns whether the division was exact.
bool scaled_floor(mpz_srcptr p, mpz_srcptr q, long k, mpz_ptr out) {
  Mpz num, den, rem;
  mpz_set(num, p);
  mpz_set(den, q);
  if (k >= 0) {
    mpz_mul_2exp(num, num, static_cast<mp_bitcnt_t>(2 * k));
  } else {
    mpz_mul_2exp(den, den, static_cast<mp_bitcnt_t>(-2 * k));
  }
  mpz_fdiv_qr(out, rem, num, den);
  return mpz_sgn(rem.z) == 0;
}

// The square root of a positive finite float. With k chosen so that
// s = isqrt(x * 4^k) has a few bits more than the significand (and, where
// the root may be subnormal, the grid 2^-k is finer than half a unit of
// the smallest subnormal), no rounding
// boundary lies strictly between s / 2^k and (s + 1) / 2^k. So when the
// root is not exact, the midpoint (2s + 1) / 2^(k+1) rounds as the root
// does.
IEEEFloat fp_sqrt_positive(RoundingMode mode, const IEEEFloat& a) {
  const IEEEFloat::Format& f = a.format();
  QNumber x = a.to_rational();
  MpqView v(x);
  const long m = static_cast<long>(f.mant_w);
  const long emin = 2 - (1L << (f.exp_w - 1));
  long ex = static_cast<long>(mpz_sizeinbase(v.num(), 2))
            - static_cast<long>(mpz_sizeinbase(v.den(), 2));
  long half = ex >= 0 ? ex / 2 : -((1 - ex) / 2);
  long k = m + 5 - half;
  if (m > -emin) {
    // Only in such narrow-exponent formats can a root be subnormal.
    k = std::max(k, m + 2 - emin);
  }
  Mpz n, s, rem, one;
  bool exact = scaled_floor(v.num(), v.den(), k, n);
  mpz_sqrtrem(s, rem, n);
  exact = exact && mpz_sgn(rem.z) == 0;
  if (!exact) {
    mpz_mul_2exp(s, s, 1);
    mpz_add_ui(s, s, 1);
    ++k;
  }
  // The root is s / 2^k, with k of either sign.
  mpz_set_ui(one, 1);
  if (k >= 0) {
    mpz_mul_2exp(one, one, static_cast<mp_bitcnt_t>(k));
  } else {
    mpz_mul_2exp(s, s, static_cast<mp_bitcnt_t>(-k));
  }
  return IEEEFloat(f, QNumber(s, one), mode);
}

}  // namespace

IEEEFloat fp_eval_bin_op(SymbolTag::tag op,
                         RoundingMode mode,
                         const IEEEFloat& a,
                         const IEEEFloat& b) {
  switch (op) {
    case SymbolTag::FP_ADD: return fp_add(mode, a, b);
    case SymbolTag::FP_SUB: return fp_add(mode, a, fp_negate(b));
    case SymbolTag::FP_MUL: return fp_mul(mode, a, b);
    default: return fp_div(mode, a, b);
  }
}

IEEEFloat fp_eval_sqrt(RoundingMode mode, const IEEEFloat& a) {
  if (a.is_nan() || (a.is_negative() && !a.is_zero())) {
    return IEEEFloat::nan(a.format());
  }
  if (a.is_zero() || a.is_inf()) {
    return a;
  }
  return fp_sqrt_positive(mode, a);
}

QNumber round_rational(const QNumber& x, RoundingMode mode) {
  QNumber fl = x.floor();
  if (fl == x) {
    return fl;
  }
  switch (mode) {
    case RoundingMode::MinusInf: return fl;
    case RoundingMode::PlusInf: return fl + QNumber(1L);
    case RoundingMode::Zero: return x.sign() < 0 ? fl + QNumber(1L) : fl;
    case RoundingMode::NearestEven: break;
  }
  int c = (x - fl).compare(QNumber(1L, 2L));
  bool up = c > 0 || (c == 0 && !QNumber(2L).divides(fl));
  return up ? fl + QNumber(1L) : fl;
}

IEEEFloat fp_eval_round_to_int(RoundingMode mode, const IEEEFloat& a) {
  if (a.is_nan() || a.is_inf() || a.is_zero()) {
    return a;
  }
  QNumber r = round_rational(a.to_rational(), mode);
  if (r.is_zero()) {
    return IEEEFloat::zero(a.format(), a.is_negative());
  }
  return IEEEFloat(a.format(), r, mode);  // exact: an integer this small
}

IEEEFloat fp_eval_cast(IEEEFloat::Format to,
                       RoundingMode mode,
                       const IEEEFloat& a) {
  if (a.is_nan()) {
    return IEEEFloat::nan(to);
  }
  if (a.is_inf()) {
    return signed_inf(to, a.is_negative());
  }
  if (a.is_zero()) {
    return IEEEFloat::zero(to, a.is_negative());
  }
  return IEEEFloat(to, a.to_rational(), mode);
}

}  // namespace termsimpl
}  // namespace zenlo
