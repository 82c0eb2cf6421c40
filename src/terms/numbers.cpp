#include "terms/numbers.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <ostream>
#include <sstream>
#include <utility>

#include "terms/numbers_gmp.h"

namespace zenlo {

using namespace numbers_detail;

static_assert(GMP_LIMB_BITS == 64, "a small field must fit one GMP limb");
static_assert(sizeof(long) == sizeof(int64_t), "long must be 64 bits");

namespace {

// Beyond this decimal exponent a literal would take megabytes; such text is
// rejected rather than left to exhaust memory inside GMP.
constexpr long kMaxDecimalExponent = 1000000;

// Binary gcd: no division, which matters on the word path where most
// operands are tiny. gcd(0, b) = b.
uint64_t gcd_u64(uint64_t a, uint64_t b) {
  if (a == 1 || b == 1) {
    return 1;
  }
  if (a == 0 || b == 0) {
    return a | b;
  }
  int shift = __builtin_ctzll(a | b);
  a >>= __builtin_ctzll(a);
  do {
    b >>= __builtin_ctzll(b);
    if (a > b) {
      std::swap(a, b);
    }
    b -= a;
  } while (b != 0);
  return a << shift;
}

// n1/d1 + n2/d2 on words. With g = gcd(d1, d2), the numerator
// n1*(d2/g) + n2*(d1/g) shares with the denominator at most factors of g, so
// one gcd with g leaves the result in lowest terms.
// Returns: false when an intermediate does not fit.
bool small_add(
    int64_t n1, int64_t d1, int64_t n2, int64_t d2, int64_t* rn, int64_t* rd) {
  int64_t a, b, t;
  if (d1 == 1 && d2 == 1) {
    *rd = 1;
    return !add_ovf(n1, n2, rn);
  }
  int64_t g = d1 == d2 ? d1 : static_cast<int64_t>(gcd_u64(d1, d2));
  int64_t d1p = d1 / g;
  int64_t d2p = d2 / g;
  if (mul_ovf(n1, d2p, &a) || mul_ovf(n2, d1p, &b) || add_ovf(a, b, &t)) {
    return false;
  }
  int64_t g2 = g == 1 ? 1 : static_cast<int64_t>(gcd_u64(uabs(t), g));
  if (mul_ovf(d1p, d2 / g2, rd)) {
    return false;
  }
  *rn = t / g2;
  return true;
}

// (n1/d1) * (n2/d2) on words, cancelling crosswise first so that the
// products are already in lowest terms and overflow as late as possible.
bool small_mul(
    int64_t n1, int64_t d1, int64_t n2, int64_t d2, int64_t* rn, int64_t* rd) {
  if (n1 == 0 || n2 == 0) {
    *rn = 0;
    *rd = 1;
    return true;
  }
  int64_t g1 = static_cast<int64_t>(gcd_u64(uabs(n1), d2));
  int64_t g2 = static_cast<int64_t>(gcd_u64(uabs(n2), d1));
  return !mul_ovf(n1 / g1, n2 / g2, rn) && !mul_ovf(d1 / g2, d2 / g1, rd);
}

// Returns: true with the value in *out when z fits the small form.
bool mpz_to_small(mpz_srcptr z, int64_t* out) {
  size_t n = mpz_size(z);
  if (n == 0) {
    *out = 0;
    return true;
  }
  mp_limb_t l = mpz_getlimbn(z, 0);
  if (n > 1 || l > static_cast<mp_limb_t>(INT64_MAX)) {
    return false;
  }
  *out = mpz_sgn(z) < 0 ? -static_cast<int64_t>(l) : static_cast<int64_t>(l);
  return true;
}

bool fits_bits(int64_t v, int bits) {
  if (bits >= 64) {
    return true;
  }
  if (bits <= 0) {
    return false;
  }
  int64_t lim = int64_t(1) << (bits - 1);
  return v >= -lim && v < lim;
}

bool fits_bits(mpz_srcptr z, int bits) {
  if (bits <= 0) {
    return false;
  }
  if (mpz_sgn(z) == 0) {
    return true;
  }
  size_t len = mpz_sizeinbase(z, 2);
  if (len < static_cast<size_t>(bits)) {
    return true;
  }
  // The one value of bit length `bits` that fits is -2^(bits-1).
  return mpz_sgn(z) < 0 && len == static_cast<size_t>(bits)
         && mpz_scan1(z, 0) == static_cast<mp_bitcnt_t>(bits - 1);
}

}  // namespace

// ---------------------------------------------------------------------------
// Construction and storage

QNumber::QNumber(long n, long d) : d_num(n), d_den(d) {
  if (n == INT64_MIN || d == INT64_MIN) {
    Mpq q;
    mpz_set_si(mpq_numref(q.q), n);
    mpz_set_si(mpq_denref(q.q), d);
    mpq_canonicalize(q);
    d_num = 0;
    d_den = 1;
    set_mpq(q);
    return;
  }
  normalize();
}

QNumber::QNumber(const mpz_t n, const mpz_t d, bool normalize)
    : d_num(0), d_den(1) {
  int64_t sn, sd;
  if (mpz_to_small(n, &sn) && mpz_to_small(d, &sd)) {
    d_num = sn;
    d_den = sd;
    if (normalize) {
      this->normalize();
    }
    return;
  }
  Mpq q;
  mpz_set(mpq_numref(q.q), n);
  mpz_set(mpq_denref(q.q), d);
  if (normalize) {
    mpq_canonicalize(q);
  }
  set_mpq(q);
}

void QNumber::copy_big(const QNumber& other) {
  Big* b = new Big;
  mpq_init(b);
  mpq_set(b, other.big());
  d_num = reinterpret_cast<intptr_t>(b);
  d_den = 0;
}

void QNumber::free_big() {
  Big* b = big();
  mpq_clear(b);
  delete b;
  d_num = 0;
  d_den = 1;
}

QNumber& QNumber::assign_slow(const QNumber& other) {
  if (this == &other) {
    return *this;
  }
  if (!other.is_big()) {
    free_big();
    d_num = other.d_num;
    d_den = other.d_den;
  } else if (is_big()) {
    mpq_set(big(), other.big());
  } else {
    copy_big(other);
  }
  return *this;
}

void QNumber::make_big() {
  if (is_big()) {
    return;
  }
  Big* b = new Big;
  mpq_init(b);
  mpz_set_si(mpq_numref(b), d_num);
  mpz_set_si(mpq_denref(b), d_den);
  d_num = reinterpret_cast<intptr_t>(b);
  d_den = 0;
}

void QNumber::set_mpq(mpq_srcptr q) {
  int64_t n, d;
  if (mpz_to_small(mpq_numref(q), &n) && mpz_to_small(mpq_denref(q), &d)) {
    if (is_big()) {
      free_big();
    }
    d_num = n;
    d_den = d;
  } else if (is_big()) {
    mpq_set(big(), q);
  } else {
    Big* b = new Big;
    mpq_init(b);
    mpq_set(b, q);
    d_num = reinterpret_cast<intptr_t>(b);
    d_den = 0;
  }
}

void QNumber::set_mpz(mpz_srcptr z) {
  int64_t n;
  if (mpz_to_small(z, &n)) {
    if (is_big()) {
      free_big();
    }
    d_num = n;
    d_den = 1;
    return;
  }
  make_big();
  mpz_set(mpq_numref(big()), z);
  mpz_set_ui(mpq_denref(big()), 1);
}

void QNumber::fix_int_min() {
  if (!is_big() && (d_num == INT64_MIN || d_den == INT64_MIN)) {
    make_big();
    mpq_canonicalize(big());
  }
}

void QNumber::normalize() {
  if (is_big()) {
    mpq_canonicalize(big());
    return;
  }
  if (d_num == INT64_MIN || d_den == INT64_MIN) {
    fix_int_min();
    return;
  }
  if (d_den < 0) {
    d_num = -d_num;
    d_den = -d_den;
  }
  int64_t g = static_cast<int64_t>(gcd_u64(uabs(d_num), d_den));
  if (g > 1) {
    d_num /= g;
    d_den /= g;
  }
}

bool QNumber::big_is_int() const {
  return mpz_cmp_ui(mpq_denref(big()), 1) == 0;
}

// ---------------------------------------------------------------------------
// Arithmetic

QNumber& QNumber::add_slow(const QNumber& o, bool subtract) {
  if (!is_big() && !o.is_big()) {
    // o's numerator is never INT64_MIN, so negating it is safe.
    int64_t n2 = subtract ? -o.d_num : o.d_num;
    int64_t rn, rd;
    if (small_add(d_num, d_den, n2, o.d_den, &rn, &rd)) {
      d_num = rn;
      d_den = rd;
      return *this;
    }
  }
  MpqView v(o);  // taken before make_big, in case o is this
  make_big();
  Big* b = big();
  if (big_is_int() && mpz_cmp_ui(v.den(), 1) == 0) {
    if (subtract) {
      mpz_sub(mpq_numref(b), mpq_numref(b), v.num());
    } else {
      mpz_add(mpq_numref(b), mpq_numref(b), v.num());
    }
  } else if (subtract) {
    mpq_sub(b, b, v);
  } else {
    mpq_add(b, b, v);
  }
  return *this;
}

QNumber& QNumber::mul_slow(const QNumber& o) {
  if (!is_big() && !o.is_big()) {
    int64_t rn, rd;
    if (small_mul(d_num, d_den, o.d_num, o.d_den, &rn, &rd)) {
      d_num = rn;
      d_den = rd;
      return *this;
    }
  } else if (is_zero() || o.is_zero()) {
    // A product with small zero is small zero again.
    if (is_big()) {
      free_big();
    }
    d_num = 0;
    d_den = 1;
    return *this;
  }
  MpqView v(o);
  make_big();
  if (big_is_int() && mpz_cmp_ui(v.den(), 1) == 0) {
    mpz_mul(mpq_numref(big()), mpq_numref(big()), v.num());
  } else {
    mpq_mul(big(), big(), v);
  }
  return *this;
}

QNumber& QNumber::operator/=(const QNumber& o) {
  if (!is_big() && !o.is_big()) {
    // Times the inverse, which is small too: swap, sign to the numerator.
    int64_t s = o.d_num < 0 ? -1 : 1;
    int64_t rn, rd;
    if (small_mul(d_num, d_den, s * o.d_den, s * o.d_num, &rn, &rd)) {
      d_num = rn;
      d_den = rd;
      return *this;
    }
  } else if (is_zero()) {
    return *this;
  }
  MpqView v(o);
  make_big();
  mpq_div(big(), big(), v);
  return *this;
}

QNumber& QNumber::operator/=(long o) {
  if (!is_big() && o != INT64_MIN) {
    // n/d / o = (n/g) / (d * o/g) with g = gcd(n, o); d and o/g are coprime
    // to n/g, so this is in lowest terms.
    int64_t g = static_cast<int64_t>(gcd_u64(uabs(d_num), uabs(o)));
    int64_t n = d_num / g;
    int64_t q = o / g;
    if (q < 0) {
      n = -n;
      q = -q;
    }
    int64_t rd;
    if (!mul_ovf(d_den, q, &rd)) {
      d_num = n;
      d_den = rd;
      return *this;
    }
  }
  return *this /= QNumber(o);
}

QNumber& QNumber::self_neg_big() {
  mpq_neg(big(), big());
  return *this;
}

QNumber QNumber::inv() const {
  if (!is_big()) {
    int64_t s = d_num < 0 ? -1 : 1;
    return QNumber(s * d_den, s * d_num, Raw{});
  }
  QNumber r(*this);
  mpq_inv(r.big(), r.big());
  return r;
}

QNumber abs(const QNumber& x) {
  return x.sign() < 0 ? x.neg() : x;
}

QNumber& QNumber::self_addmul(const QNumber& a, const QNumber& b) {
  int64_t p, r;
  if (d_den == 1 && a.d_den == 1 && b.d_den == 1
      && !mul_ovf(a.d_num, b.d_num, &p) && !add_ovf(d_num, p, &r)) {
    d_num = r;
    return *this;
  }
  return addmul_slow(a, b);
}

// Integers (the tableau's rows) take one mpz_addmul; fractions go through
// a scratch product that keeps its limbs between calls, so neither path
// allocates once the numbers stop growing.
QNumber& QNumber::addmul_slow(const QNumber& a, const QNumber& b) {
  if (is_integer() && a.is_integer() && b.is_integer()) {
    // Views taken before make_big, in case a or b is this; GMP allows the
    // aliasing that remains.
    MpqView va(a), vb(b);
    make_big();
    mpz_addmul(mpq_numref(big()), va.num(), vb.num());
    return *this;
  }
  static thread_local Mpq prod;
  {
    MpqView va(a), vb(b);
    mpq_mul(prod, va, vb);
  }
  make_big();
  mpq_add(big(), big(), prod);
  return *this;
}

QNumber& QNumber::self_divexact(const QNumber& d) {
  if (!is_big() && !d.is_big()) {
    // d == -1 on INT64_MAX is the only negation; the small form holds it.
    d_num /= d.d_num;
    return *this;
  }
  MpqView vd(d);
  make_big();
  mpz_divexact(mpq_numref(big()), mpq_numref(big()), vd.num());
  // Quotients are usually small again (a row's common factor taken out),
  // and the word path is much faster.
  int64_t n;
  if (mpz_to_small(mpq_numref(big()), &n)) {
    free_big();
    d_num = n;
    d_den = 1;
  }
  return *this;
}

// ---------------------------------------------------------------------------
// Integers

QNumber QNumber::floor() const {
  if (d_den == 1) {
    return *this;
  }
  if (!is_big()) {
    return QNumber(d_num / d_den - (d_num < 0 ? 1 : 0));
  }
  if (big_is_int()) {
    return get_num();
  }
  Mpz q;
  mpz_fdiv_q(q, mpq_numref(big()), mpq_denref(big()));
  QNumber r;
  r.set_mpz(q);
  return r;
}

QNumber QNumber::ceil() const {
  if (d_den == 1) {
    return *this;
  }
  if (!is_big()) {
    return QNumber(d_num / d_den + (d_num > 0 ? 1 : 0));
  }
  if (big_is_int()) {
    return get_num();
  }
  Mpz q;
  mpz_cdiv_q(q, mpq_numref(big()), mpq_denref(big()));
  QNumber r;
  r.set_mpz(q);
  return r;
}

void QNumber::divmod(const QNumber& d, QNumber& quotient, QNumber& rem) const {
  if (!is_big() && !d.is_big()) {
    // Neither field is INT64_MIN, so the division cannot trap.
    int64_t q = d_num / d.d_num;
    int64_t r = d_num % d.d_num;
    quotient = q;
    rem = r;
    return;
  }
  Mpz q, r;
  {
    MpqView a(*this), b(d);
    mpz_fdiv_qr(q, r, a.num(), b.num());
  }
  quotient.set_mpz(q);
  rem.set_mpz(r);
}

bool QNumber::divides(const QNumber& x) const {
  if (!is_big() && !x.is_big()) {
    return d_num == 0 ? x.d_num == 0 : x.d_num % d_num == 0;
  }
  MpqView a(*this), b(x);
  return mpz_divisible_p(b.num(), a.num()) != 0;
}

QNumber QNumber::get_num() const {
  if (!is_big()) {
    return QNumber(d_num, 1, Raw{});
  }
  QNumber r;
  r.set_mpz(mpq_numref(big()));
  return r;
}

QNumber QNumber::get_den() const {
  if (!is_big()) {
    return QNumber(d_den, 1, Raw{});
  }
  QNumber r;
  r.set_mpz(mpq_denref(big()));
  return r;
}

QNumber QNumber::self_decompose() {
  if (is_integer()) {
    return QNumber();
  }
  if (!is_big()) {
    // Floored division; n and d coprime makes (n mod d)/d lowest terms.
    int64_t q = d_num / d_den;
    int64_t r = d_num % d_den;
    if (r < 0) {
      r += d_den;
      --q;
    }
    QNumber rest(r, d_den, Raw{});
    d_num = q;
    d_den = 1;
    return rest;
  }
  Mpz q;
  Mpq rest;
  mpz_fdiv_qr(q, mpq_numref(rest.q), mpq_numref(big()), mpq_denref(big()));
  mpz_set(mpq_denref(rest.q), mpq_denref(big()));
  set_mpz(q);
  QNumber r;
  r.set_mpq(rest);
  return r;
}

bool QNumber::fits(int bits) const {
  if (!is_big()) {
    return fits_bits(d_num, bits) && fits_bits(d_den, bits);
  }
  return fits_bits(mpq_numref(big()), bits)
         && fits_bits(mpq_denref(big()), bits);
}

long QNumber::to_long() const {
  return is_big() ? mpz_get_si(mpq_numref(big())) : d_num;
}

double QNumber::to_double() const {
  constexpr uint64_t kExact = uint64_t(1) << 53;
  if (!is_big() && uabs(d_num) <= kExact && uabs(d_den) <= kExact) {
    // Both exact as doubles: one correctly rounded division.
    return static_cast<double>(d_num) / static_cast<double>(d_den);
  }
  return mpq_get_d(MpqView(*this));
}

QNumber gcd(const QNumber& a, const QNumber& b) {
  if (!a.is_big() && !b.is_big()) {
    return QNumber(static_cast<int64_t>(gcd_u64(uabs(a.d_num), uabs(b.d_num))),
                   1,
                   QNumber::Raw{});
  }
  Mpz g;
  {
    MpqView va(a), vb(b);
    mpz_gcd(g, va.num(), vb.num());
  }
  QNumber r;
  r.set_mpz(g);
  return r;
}

// ---------------------------------------------------------------------------
// Comparison and hashing

bool QNumber::eq_slow(const QNumber& o) const {
  return mpq_equal(MpqView(*this), MpqView(o)) != 0;
}

int QNumber::compare_slow(const QNumber& o) const {
  int s1 = sign();
  int s2 = o.sign();
  if (s1 != s2) {
    return s1 < s2 ? -1 : 1;
  }
  int c = mpq_cmp(MpqView(*this), MpqView(o));
  return (c > 0) - (c < 0);
}

int QNumber::compare_slow(long o) const {
  int c = mpq_cmp_si(big(), o, 1);
  return (c > 0) - (c < 0);
}

size_t QNumber::hash_big() const {
  mpz_srcptr num = mpq_numref(big());
  mpz_srcptr den = mpq_denref(big());
  int64_t n, d;
  // A big number with a small value hashes like its small twin.
  if (mpz_to_small(num, &n) && mpz_to_small(den, &d)) {
    return small_hash(n, d);
  }
  size_t h = 0;
  for (mpz_srcptr z : {num, den}) {
    const mp_limb_t* limbs = mpz_limbs_read(z);
    for (size_t i = 0, n_limbs = mpz_size(z); i < n_limbs; ++i) {
      h ^= (h >> 2) + h * 64 + limbs[i];
    }
  }
  return h;
}

void QNumber::to_mpq(mpq_t out) const {
  if (is_big()) {
    mpq_set(out, big());
  } else {
    mpq_set_si(out, d_num, static_cast<unsigned long>(d_den));
  }
}

void QNumber::num_to_mpz(mpz_t out) const {
  if (is_big()) {
    mpz_set(out, mpq_numref(big()));
  } else {
    mpz_set_si(out, d_num);
  }
}

// ---------------------------------------------------------------------------
// Text

namespace {

// Optional "-" then decimal digits that fit 64 bits; "" and "-" read as 0.
// Returns: false when the text needs the general reader.
bool parse_small_decimal(const std::string& text, int64_t* out) {
  size_t i = 0;
  bool negative = !text.empty() && text[0] == '-';
  if (negative) {
    i = 1;
  }
  const uint64_t limit = INT64_MAX / 10;
  const int last_digit = negative ? 8 : 7;
  uint64_t acc = 0;
  for (; i < text.size(); ++i) {
    char c = text[i];
    if (c < '0' || c > '9') {
      return false;
    }
    int digit = c - '0';
    if (acc > limit || (acc == limit && digit > last_digit)) {
      return false;
    }
    acc = acc * 10 + digit;
  }
  // 2^63 after a minus sign wraps to INT64_MIN, which the caller stores big.
  *out = static_cast<int64_t>(negative ? 0 - acc : acc);
  return true;
}

// Decimal point and exponent: "12.34e-5" becomes "1234/100" times 10^-5.
bool parse_decimal_text(const std::string& text,
                        size_t dot,
                        size_t exp_at,
                        mpq_ptr q) {
  long exponent = 0;
  std::string mantissa = text;
  if (exp_at != std::string::npos) {
    std::istringstream in(text.substr(exp_at + 1));
    if (!(in >> exponent) || exponent > kMaxDecimalExponent
        || exponent < -kMaxDecimalExponent) {
      return false;
    }
    mantissa = text.substr(0, exp_at);
  }
  std::string fraction;
  if (dot == std::string::npos) {
    fraction = mantissa + "/1";
  } else {
    size_t decimals = mantissa.size() - dot - 1;
    fraction = mantissa.substr(0, dot) + mantissa.substr(dot + 1) + "/1"
               + std::string(decimals, '0');
  }
  if (mpq_set_str(q, fraction.c_str(), 10) != 0) {
    return false;
  }
  mpq_canonicalize(q);
  if (exponent != 0) {
    Mpz power;
    mpz_ui_pow_ui(power, 10, static_cast<unsigned long>(std::labs(exponent)));
    mpz_ptr side = exponent > 0 ? mpq_numref(q) : mpq_denref(q);
    mpz_mul(side, side, power);
    mpq_canonicalize(q);
  }
  return true;
}

bool parse_rational_text(const std::string& text, mpq_ptr q) {
  size_t dot = text.find('.');
  size_t exp_at = text.find_first_of("eE", dot == std::string::npos ? 0 : dot);
  if (dot != std::string::npos || exp_at != std::string::npos) {
    return parse_decimal_text(text, dot, exp_at, q);
  }
  if (mpq_set_str(q, text.c_str(), 10) != 0 || mpz_sgn(mpq_denref(q)) == 0) {
    return false;
  }
  mpq_canonicalize(q);
  return true;
}

}  // namespace

QNumber QNumber::from_str(const std::string& text) {
  int64_t v;
  if (parse_small_decimal(text, &v)) {
    return QNumber(v);
  }
  bool ok = false;
  QNumber r;
  try {
    Mpq q;
    ok = parse_rational_text(text, q);
    if (ok) {
      r.set_mpq(q);
    }
  } catch (const std::exception&) {
    ok = false;
  }
  if (!ok) {
    throw from_str_error(text);
  }
  return r;
}

std::string QNumber::to_str() const {
  if (!is_big()) {
    std::string s = std::to_string(d_num);
    return d_den == 1 ? s : s + "/" + std::to_string(d_den);
  }
  std::string s = mpz_to_string(mpq_numref(big()));
  return big_is_int() ? s : s + "/" + mpz_to_string(mpq_denref(big()));
}

std::string QNumber::to_float_str(int digits) const {
  mpf_t f;
  mpf_init(f);
  mpf_set_q(f, MpqView(*this));
  int len = gmp_snprintf(nullptr, 0, "%.*Ff", digits, f);
  std::string s(static_cast<size_t>(len) + 1, '\0');
  gmp_snprintf(&s[0], s.size(), "%.*Ff", digits, f);
  s.resize(static_cast<size_t>(len));
  mpf_clear(f);
  return s;
}

std::ostream& operator<<(std::ostream& out, const QNumber& n) {
  return out << n.to_str();
}

}  // namespace zenlo
