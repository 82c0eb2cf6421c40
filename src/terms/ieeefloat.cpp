#include "terms/ieeefloat.h"

#include <gmp.h>

#include <string>

namespace zenlo {

namespace {

// Scoped GMP integer; the rounding works on exact integers only.
struct Mpz {
  Mpz() { mpz_init(v); }

  ~Mpz() { mpz_clear(v); }

  Mpz(const Mpz&) = delete;
  Mpz& operator=(const Mpz&) = delete;

  mpz_t v;
};

QNumber to_qnumber(const mpz_t z) {
  Mpz one;
  mpz_set_ui(one.v, 1);
  return QNumber(z, one.v);
}

// Returns: sign of p - d * 2^k, for p, d > 0.
int compare_scaled(const mpz_t p, const mpz_t d, long k) {
  Mpz a, b;
  if (k >= 0) {
    mpz_set(a.v, p);
    mpz_mul_2exp(b.v, d, static_cast<mp_bitcnt_t>(k));
  } else {
    mpz_mul_2exp(a.v, p, static_cast<mp_bitcnt_t>(-k));
    mpz_set(b.v, d);
  }
  return mpz_cmp(a.v, b.v);
}

// Where the discarded part of a rounded significand lies relative to half
// a unit in the last place.
enum class Rest { Exact, BelowHalf, Half, AboveHalf };

bool rounds_up(RoundingMode mode, Rest rest, bool odd, bool negative) {
  switch (mode) {
    case RoundingMode::NearestEven:
      return rest == Rest::AboveHalf || (rest == Rest::Half && odd);
    case RoundingMode::Zero: return false;
    case RoundingMode::PlusInf: return rest != Rest::Exact && !negative;
    case RoundingMode::MinusInf: return rest != Rest::Exact && negative;
  }
  return false;
}

// Returns: floor(log2(p / d)) for p, d > 0, from the bit lengths and one
// comparison.
long floor_log2(const mpz_t p, const mpz_t d) {
  long e = static_cast<long>(mpz_sizeinbase(p, 2))
           - static_cast<long>(mpz_sizeinbase(d, 2));
  return compare_scaled(p, d, e) < 0 ? e - 1 : e;
}

// n = floor(p * 2^shift / d); returns where the remainder lies.
Rest divide_scaled(const mpz_t p, const mpz_t d, long shift, mpz_t n) {
  Mpz num, den, r;
  mpz_set(num.v, p);
  mpz_set(den.v, d);
  if (shift >= 0) {
    mpz_mul_2exp(num.v, num.v, static_cast<mp_bitcnt_t>(shift));
  } else {
    mpz_mul_2exp(den.v, den.v, static_cast<mp_bitcnt_t>(-shift));
  }
  mpz_tdiv_qr(n, r.v, num.v, den.v);
  if (mpz_sgn(r.v) == 0) {
    return Rest::Exact;
  }
  mpz_mul_2exp(r.v, r.v, 1);
  int c = mpz_cmp(r.v, den.v);
  return c < 0 ? Rest::BelowHalf : (c == 0 ? Rest::Half : Rest::AboveHalf);
}

}  // namespace

void IEEEFloat::check_format(Format f) {
  if (f.exp_w < 2 || f.exp_w > kMaxExpWidth || f.mant_w < 1) {
    throw error("unsupported floating-point format: " + std::to_string(f.exp_w)
                + ", " + std::to_string(f.mant_w));
  }
}

uint64_t IEEEFloat::max_exp_field() const {
  return (uint64_t(1) << d_format.exp_w) - 1;
}

// The magnitude p / d is scaled to an integer significand n with mant_w
// bits after the point at exponent es (es clamped to the subnormal
// exponent), rounded by the remainder, and renormalised once if rounding
// carried into a new bit.
IEEEFloat::IEEEFloat(Format format, const QNumber& value, RoundingMode mode)
    : d_format(format) {
  check_format(format);
  if (value.is_zero()) {
    return;  // +0, whatever the mode
  }
  d_sign = value.sign() < 0;
  mpq_t q;
  mpq_init(q);
  value.to_mpq(q);
  Mpz p, d, n;
  mpz_abs(p.v, mpq_numref(q));
  mpz_set(d.v, mpq_denref(q));
  mpq_clear(q);

  const long m = static_cast<long>(format.mant_w);
  const long bias = (1L << (format.exp_w - 1)) - 1;
  const long emin = 1 - bias;
  const long e = floor_log2(p.v, d.v);
  if (e > bias) {
    set_overflow(mode);
    return;
  }
  long es = e < emin ? emin : e;
  // Below half the smallest subnormal n is 0 and the rest under one half;
  // scaling there could take astronomic memory for wide exponents.
  Rest rest =
      e < emin - m - 1 ? Rest::BelowHalf : divide_scaled(p.v, d.v, m - es, n.v);
  if (rounds_up(mode, rest, mpz_odd_p(n.v) != 0, d_sign)) {
    mpz_add_ui(n.v, n.v, 1);
    if (mpz_sizeinbase(n.v, 2) > static_cast<size_t>(m + 1)) {
      mpz_fdiv_q_2exp(n.v, n.v, 1);
      ++es;
    }
  }
  if (es > bias) {
    set_overflow(mode);
    return;
  }
  // A significand of m + 1 bits is normal; a shorter one is subnormal (or
  // zero) and es is the subnormal exponent.
  bool normal = mpz_sizeinbase(n.v, 2) == static_cast<size_t>(m + 1);
  if (normal) {
    mpz_clrbit(n.v, static_cast<mp_bitcnt_t>(m));
  }
  d_exp = normal ? static_cast<uint64_t>(es + bias) : 0;
  d_frac = to_qnumber(n.v);
}

// Infinity unless the mode rounds toward zero on this side: then the
// largest finite value.
void IEEEFloat::set_overflow(RoundingMode mode) {
  bool to_inf = mode == RoundingMode::NearestEven
                || (mode == RoundingMode::PlusInf && !d_sign)
                || (mode == RoundingMode::MinusInf && d_sign);
  d_exp = to_inf ? max_exp_field() : max_exp_field() - 1;
  Mpz frac;
  if (!to_inf) {
    mpz_setbit(frac.v, static_cast<mp_bitcnt_t>(d_format.mant_w));
    mpz_sub_ui(frac.v, frac.v, 1);
  }
  d_frac = to_qnumber(frac.v);
}

IEEEFloat IEEEFloat::from_bits(Format format, const QNumber& bits) {
  check_format(format);
  Mpz b, frac, exp;
  bits.num_to_mpz(b.v);
  mpz_fdiv_r_2exp(frac.v, b.v, format.mant_w);
  mpz_fdiv_q_2exp(b.v, b.v, format.mant_w);
  mpz_fdiv_r_2exp(exp.v, b.v, format.exp_w);
  mpz_fdiv_q_2exp(b.v, b.v, format.exp_w);
  bool sign = mpz_odd_p(b.v) != 0;
  return IEEEFloat(format, sign, mpz_get_ui(exp.v), to_qnumber(frac.v));
}

IEEEFloat IEEEFloat::plus_inf(Format format) {
  check_format(format);
  return IEEEFloat(format, false, (uint64_t(1) << format.exp_w) - 1, 0);
}

IEEEFloat IEEEFloat::minus_inf(Format format) {
  check_format(format);
  return IEEEFloat(format, true, (uint64_t(1) << format.exp_w) - 1, 0);
}

IEEEFloat IEEEFloat::nan(Format format) {
  check_format(format);
  Mpz frac;
  mpz_setbit(frac.v, format.mant_w - 1);
  return IEEEFloat(
      format, false, (uint64_t(1) << format.exp_w) - 1, to_qnumber(frac.v));
}

IEEEFloat IEEEFloat::zero(Format format, bool negative) {
  check_format(format);
  return IEEEFloat(format, negative, 0, 0);
}

QNumber IEEEFloat::get_bits() const {
  Mpz b, frac;
  mpz_set_ui(b.v, d_sign ? 1 : 0);
  mpz_mul_2exp(b.v, b.v, d_format.exp_w);
  mpz_add_ui(b.v, b.v, d_exp);
  mpz_mul_2exp(b.v, b.v, d_format.mant_w);
  d_frac.num_to_mpz(frac.v);
  mpz_add(b.v, b.v, frac.v);
  return to_qnumber(b.v);
}

bool IEEEFloat::is_nan() const {
  return d_exp == max_exp_field() && !d_frac.is_zero();
}

bool IEEEFloat::is_inf() const {
  return d_exp == max_exp_field() && d_frac.is_zero();
}

bool IEEEFloat::is_zero() const {
  return d_exp == 0 && d_frac.is_zero();
}

bool IEEEFloat::is_subnormal() const {
  return d_exp == 0 && !d_frac.is_zero();
}

bool IEEEFloat::is_normal() const {
  return d_exp != 0 && d_exp != max_exp_field();
}

QNumber IEEEFloat::to_rational() const {
  if (d_exp == max_exp_field()) {
    throw error("not a finite floating-point value");
  }
  const long m = static_cast<long>(d_format.mant_w);
  const long bias = (1L << (d_format.exp_w - 1)) - 1;
  Mpz sig, one;
  d_frac.num_to_mpz(sig.v);
  long e = 1 - bias - m;
  if (d_exp != 0) {
    mpz_setbit(sig.v, static_cast<mp_bitcnt_t>(m));
    e = static_cast<long>(d_exp) - bias - m;
  }
  if (d_sign) {
    mpz_neg(sig.v, sig.v);
  }
  mpz_set_ui(one.v, 1);
  if (e >= 0) {
    mpz_mul_2exp(sig.v, sig.v, static_cast<mp_bitcnt_t>(e));
  } else {
    mpz_mul_2exp(one.v, one.v, static_cast<mp_bitcnt_t>(-e));
  }
  return QNumber(sig.v, one.v, true);
}

}  // namespace zenlo
