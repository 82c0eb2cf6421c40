#include <algorithm>
#include <utility>

#include "terms/numbers.h"
#include "terms/numbers_gmp.h"

namespace zenlo {

using namespace numbers_detail;

// Bit-vector values on QNumbers: word operations while the value is a
// non-negative small number below 2^63, GMP otherwise.

namespace {

constexpr size_t kWordBits = 63;  // value bits of a non-negative small number

// Requires: w <= 63.
int64_t low_mask(size_t w) {
  return static_cast<int64_t>((uint64_t(1) << w) - 1);
}

int64_t and_word(int64_t a, int64_t b) {
  return a & b;
}

int64_t or_word(int64_t a, int64_t b) {
  return a | b;
}

int64_t xor_word(int64_t a, int64_t b) {
  return a ^ b;
}

}  // namespace

void BVNumber::pow2(size_t k, QNumber& out) {
  if (k < kWordBits) {
    out = int64_t(1) << k;
    return;
  }
  Mpz z;
  mpz_setbit(z, k);
  out.set_mpz(z);
}

QNumber BVNumber::pow2(size_t k) {
  QNumber r;
  pow2(k, r);
  return r;
}

bool BVNumber::test_bit(const QNumber& x, size_t i) {
  if (!x.is_big()) {
    return i <= kWordBits && ((static_cast<uint64_t>(x.d_num) >> i) & 1) != 0;
  }
  return mpz_tstbit(mpq_numref(x.big()), i) != 0;
}

void BVNumber::set_bit(QNumber& x, size_t i, bool value) {
  if (!x.is_big()) {
    if (i < kWordBits) {
      int64_t bit = int64_t(1) << i;
      x = value ? (x.d_num | bit) : (x.d_num & ~bit);  // INT64_MIN goes big
      return;
    }
    if (!value && x.d_num >= 0) {
      return;
    }
    x.make_big();
  }
  mpz_ptr z = mpq_numref(x.big());
  if (value) {
    mpz_setbit(z, i);
  } else {
    mpz_clrbit(z, i);
  }
}

void BVNumber::bit_left_shift(const QNumber& x, size_t k, QNumber& out) {
  if (!x.is_big() && x.d_num >= 0) {
    if (x.d_num == 0) {
      out = 0L;
      return;
    }
    if (k < kWordBits && (x.d_num >> (kWordBits - k)) == 0) {
      out = x.d_num << k;
      return;
    }
  }
  Mpz z;
  mpz_mul_2exp(z, MpqView(x).num(), k);
  out.set_mpz(z);
}

void BVNumber::bit_right_shift(const QNumber& x, size_t k, QNumber& out) {
  if (!x.is_big()) {
    // The arithmetic shift is the floored division.
    out = k > kWordBits ? (x.d_num < 0 ? -1 : 0) : x.d_num >> k;
    return;
  }
  Mpz z;
  mpz_fdiv_q_2exp(z, mpq_numref(x.big()), k);
  out.set_mpz(z);
}

long BVNumber::scan_bit_1(const QNumber& x, size_t i) {
  if (!x.is_big() && x.d_num >= 0) {
    if (i >= kWordBits) {
      return -1;
    }
    uint64_t rest = static_cast<uint64_t>(x.d_num) >> i;
    return rest == 0 ? -1 : static_cast<long>(i + __builtin_ctzll(rest));
  }
  mp_bitcnt_t r = mpz_scan1(MpqView(x).num(), i);
  return r == ~mp_bitcnt_t(0) ? -1 : static_cast<long>(r);
}

size_t BVNumber::count_leading_zeros(const QNumber& x, size_t w) {
  if (x.is_zero()) {
    return w;
  }
  size_t len = x.is_big()
                   ? mpz_sizeinbase(mpq_numref(x.big()), 2)
                   : 64 - __builtin_clzll(static_cast<uint64_t>(x.d_num));
  return len > w ? 0 : w - len;
}

QNumber BVNumber::trim(const QNumber& x, size_t w) {
  if (!x.is_big() && x.d_num >= 0) {
    return w >= kWordBits ? x : QNumber(x.d_num & low_mask(w));
  }
  Mpz z;
  mpz_fdiv_r_2exp(z, MpqView(x).num(), w);
  QNumber r;
  r.set_mpz(z);
  return r;
}

QNumber BVNumber::neg(size_t w, const QNumber& x) {
  QNumber r;
  neg(w, x, r);
  return r;
}

void BVNumber::neg(size_t w, const QNumber& x, QNumber& out) {
  if (x.sign() <= 0) {
    out = x;
  } else if (!x.is_big() && w < kWordBits) {
    out = (int64_t(1) << w) - x.d_num;
  } else {
    Mpz z;
    mpz_setbit(z, w);
    mpz_sub(z, z, MpqView(x).num());
    out.set_mpz(z);
  }
}

QNumber BVNumber::twos_complement(const QNumber& x, size_t w) {
  if (x.sign() >= 0) {
    return x;
  }
  if (!x.is_big() && w < kWordBits) {
    return QNumber(x.d_num + (int64_t(1) << w));
  }
  Mpz z;
  mpz_setbit(z, w);
  mpz_add(z, z, MpqView(x).num());
  QNumber r;
  r.set_mpz(z);
  return r;
}

QNumber BVNumber::to_signed(const QNumber& x, size_t w) {
  if (w == 0 || !test_bit(x, w - 1)) {
    return x;
  }
  if (!x.is_big() && w < kWordBits) {
    return QNumber(x.d_num - (int64_t(1) << w));
  }
  Mpz z;
  mpz_setbit(z, w);
  mpz_sub(z, MpqView(x).num(), z);
  QNumber r;
  r.set_mpz(z);
  return r;
}

void BVNumber::sdiv(size_t w,
                    const QNumber& a,
                    const QNumber& b,
                    QNumber& out) {
  bool a_neg = test_bit(a, w - 1);
  bool b_neg = test_bit(b, w - 1);
  QNumber ua = a_neg ? neg(w, a) : a;
  QNumber ub = b_neg ? neg(w, b) : b;
  QNumber q, r;
  ua.divmod(ub, q, r);
  if (a_neg != b_neg) {
    neg(w, q, out);
  } else {
    out = std::move(q);
  }
}

void BVNumber::lshl(size_t w,
                    const QNumber& x,
                    const QNumber& n,
                    QNumber& out) {
  if (n.is_zero()) {
    out = x;
    return;
  }
  if (n >= static_cast<long>(w)) {
    out = 0L;
    return;
  }
  size_t k = static_cast<size_t>(n.to_long());
  if (!x.is_big() && x.d_num >= 0 && w <= kWordBits) {
    out = static_cast<int64_t>((static_cast<uint64_t>(x.d_num) << k)
                               & static_cast<uint64_t>(low_mask(w)));
    return;
  }
  QNumber shifted;
  bit_left_shift(x, k, shifted);
  out = trim(shifted, w);
}

void BVNumber::lshr(size_t w,
                    const QNumber& x,
                    const QNumber& n,
                    QNumber& out) {
  if (n.is_zero()) {
    out = x;
    return;
  }
  if (n >= static_cast<long>(w)) {
    out = 0L;
    return;
  }
  bit_right_shift(x, static_cast<size_t>(n.to_long()), out);
}

template <int64_t (*word_op)(int64_t, int64_t),
          void (*mpz_op)(mpz_ptr, mpz_srcptr, mpz_srcptr)>
void BVNumber::bit_op(const QNumber& a, const QNumber& b, QNumber& out) {
  if (!a.is_big() && !b.is_big()) {
    out = word_op(a.d_num, b.d_num);  // INT64_MIN goes big
    return;
  }
  Mpz z;
  {
    MpqView va(a), vb(b);
    mpz_op(z, va.num(), vb.num());
  }
  out.set_mpz(z);
}

void BVNumber::bit_and_l(const QNumber& a, const QNumber& b, QNumber& out) {
  bit_op<and_word, mpz_and>(a, b, out);
}

void BVNumber::bit_or_l(const QNumber& a, const QNumber& b, QNumber& out) {
  bit_op<or_word, mpz_ior>(a, b, out);
}

void BVNumber::bit_xor_l(const QNumber& a, const QNumber& b, QNumber& out) {
  bit_op<xor_word, mpz_xor>(a, b, out);
}

std::string BVNumber::to_binary(const QNumber& x, size_t w) {
  std::string s(w, '0');
  for (size_t i = 0; i < w; ++i) {
    if (test_bit(x, i)) {
      s[w - 1 - i] = '1';
    }
  }
  return s;
}

std::string BVNumber::to_hex(const QNumber& x, size_t w) {
  static const char kDigits[] = "0123456789abcdef";
  size_t n = w / 4;
  std::string s(n, '0');
  if (!x.is_big()) {
    uint64_t v = static_cast<uint64_t>(x.d_num);
    for (size_t i = 0; i < n && v != 0; ++i, v >>= 4) {
      s[n - 1 - i] = kDigits[v & 15];
    }
    return s;
  }
  mpz_srcptr z = mpq_numref(x.big());
  std::string digits(mpz_sizeinbase(z, 16) + 2, '\0');
  mpz_get_str(&digits[0], 16, z);
  digits.resize(std::strlen(digits.c_str()));
  size_t keep = std::min(n, digits.size());
  s.replace(n - keep, keep, digits, digits.size() - keep, keep);
  return s;
}

QNumber BVNumber::from_str(const std::string& digits, int base) {
  bool ok = (base == 2 || base == 10 || base == 16) && !digits.empty();
  uint64_t acc = 0;
  bool small = true;
  for (size_t i = 0; ok && i < digits.size(); ++i) {
    char c = digits[i];
    int d = c >= '0' && c <= '9'   ? c - '0'
            : c >= 'a' && c <= 'f' ? c - 'a' + 10
            : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                   : base;
    ok = d < base;
    small = small && acc <= (static_cast<uint64_t>(INT64_MAX) - d) / base;
    acc = acc * base + d;
  }
  if (!ok) {
    throw from_str_error(digits);
  }
  if (small) {
    return QNumber(static_cast<int64_t>(acc));
  }
  Mpz z;
  mpz_set_str(z, digits.c_str(), base);
  QNumber r;
  r.set_mpz(z);
  return r;
}

}  // namespace zenlo
