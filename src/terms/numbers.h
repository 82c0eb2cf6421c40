// Exact numbers. QNumber is the rational of the whole system: simplex
// tableaux, number terms, bit-vector constants and model values are all
// QNumbers. Almost every value met in practice is small, so a QNumber stays
// in two machine words and falls back on GMP only when a result does not
// fit; the word path allocates nothing and calls no GMP function.
//
// The word path is kept exact by explicit overflow tests (the compiler's
// checked-arithmetic builtins) on every product and sum, never by wider
// arithmetic. The common cases (integers, equal denominators) are inlined
// below; fractions with different denominators and everything that touches
// GMP are out of line.
//
// One value may exist in both forms: arithmetic results that went big stay
// big, while constructors, parsing and the integer operations store the small
// form whenever it fits. Equality, ordering and hashing therefore work
// across the forms.
//
// BVNumber reads a non-negative integral QNumber as the bit pattern of a
// bit-vector of a given width; widths are passed, never stored.
#ifndef ZENLO_TERMS_NUMBERS_H
#define ZENLO_TERMS_NUMBERS_H

#include <gmp.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <type_traits>

#include "base/exception.h"

namespace zenlo {

namespace numbers_detail {

// Returns: true on overflow, or on a result of INT64_MIN, which the small
// form never holds.
inline bool add_ovf(int64_t a, int64_t b, int64_t* r) {
  return __builtin_add_overflow(a, b, r) || *r == INT64_MIN;
}

inline bool sub_ovf(int64_t a, int64_t b, int64_t* r) {
  return __builtin_sub_overflow(a, b, r) || *r == INT64_MIN;
}

inline bool mul_ovf(int64_t a, int64_t b, int64_t* r) {
  return __builtin_mul_overflow(a, b, r) || *r == INT64_MIN;
}

}  // namespace numbers_detail

class QNumber {
 public:
  ZENLO_DECLARE_ERROR;

  // Small form: den != 0 and the value is num / den.
  // Big form: den == 0 and num holds a pointer to two mpz_t (numerator,
  // denominator). Normalised numbers are in lowest terms with a positive
  // denominator; zero is 0/1. Neither field of the small form is ever
  // INT64_MIN, which has no negation.
  constexpr QNumber() : d_num(0), d_den(1) {}

  QNumber(long n)  // NOLINT: numbers convert implicitly from integers
      : d_num(n), d_den(1) {
    if (n == INT64_MIN) {
      fix_int_min();
    }
  }

  // Requires: d != 0. The fraction is normalised.
  QNumber(long n, long d);
  // Copies the two GMP integers; normalises when `normalize` is true (else
  // they must already be in lowest terms with a positive denominator).
  QNumber(const mpz_t n, const mpz_t d, bool normalize = true);

  // Requires: q is canonical. A template only so that a literal 0, a null
  // pointer constant, still means the integer.
  template <typename Q,
            typename = std::enable_if_t<
                std::is_same_v<Q, mpq_srcptr> || std::is_same_v<Q, mpq_ptr>>>
  explicit QNumber(Q q) : d_num(0), d_den(1) {
    set_mpq(q);
  }

  QNumber(const QNumber& other) : d_num(other.d_num), d_den(other.d_den) {
    if (other.is_big()) {
      copy_big(other);
    }
  }

  QNumber(QNumber&& other) noexcept : d_num(other.d_num), d_den(other.d_den) {
    other.d_num = 0;
    other.d_den = 1;
  }

  ~QNumber() {
    if (is_big()) {
      free_big();
    }
  }

  QNumber& operator=(const QNumber& other) {
    if (!is_big() && !other.is_big()) {
      d_num = other.d_num;
      d_den = other.d_den;
      return *this;
    }
    return assign_slow(other);
  }

  QNumber& operator=(QNumber&& other) noexcept {
    if (this != &other) {
      if (is_big()) {
        free_big();
      }
      d_num = other.d_num;
      d_den = other.d_den;
      other.d_num = 0;
      other.d_den = 1;
    }
    return *this;
  }

  QNumber& operator=(long n) {
    if (is_big()) {
      free_big();
    }
    d_num = n;
    d_den = 1;
    if (n == INT64_MIN) {
      fix_int_min();
    }
    return *this;
  }

  static const QNumber& zero() { return s_zero; }

  static const QNumber& one() { return s_one; }

  // Text. from_str accepts an optional "-", decimal digits, a fraction
  // "n/d", a decimal point and an exponent "e"/"E"; it throws error
  // "invalid argument to Number::from_str: " + text otherwise.
  static QNumber from_str(const std::string& text);
  // Returns: "n" for an integer, "n/d" for a fraction, "-" leading.
  std::string to_str() const;
  // Returns: the value with `digits` decimals (GMP float, default precision).
  std::string to_float_str(int digits) const;

  // Arithmetic. A result that went to the big form stays there.
  QNumber& operator+=(const QNumber& o) {
    int64_t r;
    if (d_den == 1 && o.d_den == 1
        && !numbers_detail::add_ovf(d_num, o.d_num, &r)) {
      d_num = r;
      return *this;
    }
    return add_slow(o, false);
  }

  QNumber& operator-=(const QNumber& o) {
    int64_t r;
    if (d_den == 1 && o.d_den == 1
        && !numbers_detail::sub_ovf(d_num, o.d_num, &r)) {
      d_num = r;
      return *this;
    }
    return add_slow(o, true);
  }

  QNumber& operator*=(const QNumber& o) {
    int64_t r;
    if (d_den == 1 && o.d_den == 1
        && !numbers_detail::mul_ovf(d_num, o.d_num, &r)) {
      d_num = r;
      return *this;
    }
    return mul_slow(o);
  }

  QNumber& operator/=(const QNumber& o);

  QNumber& operator+=(long o) { return *this += QNumber(o); }

  QNumber& operator-=(long o) { return *this -= QNumber(o); }

  QNumber& operator*=(long o) { return *this *= QNumber(o); }

  QNumber& operator/=(long o);

  QNumber operator+(const QNumber& o) const {
    QNumber r(*this);
    r += o;
    return r;
  }

  QNumber operator-(const QNumber& o) const {
    QNumber r(*this);
    r -= o;
    return r;
  }

  QNumber operator*(const QNumber& o) const {
    QNumber r(*this);
    r *= o;
    return r;
  }

  QNumber operator/(const QNumber& o) const {
    QNumber r(*this);
    r /= o;
    return r;
  }

  QNumber operator-() const { return neg(); }

  QNumber neg() const {
    QNumber r(*this);
    r.self_neg();
    return r;
  }

  QNumber& self_neg() {
    if (is_big()) {
      return self_neg_big();
    }
    d_num = -d_num;
    return *this;
  }

  // Requires: this != 0.
  QNumber inv() const;
  friend QNumber abs(const QNumber& x);
  // this += a * b
  QNumber& self_addmul(const QNumber& a, const QNumber& b);
  // Requires: this and d integers, d != 0 dividing this.
  // After: this is this / d, without the gcds of a rational division.
  QNumber& self_divexact(const QNumber& d);

  // Integers.
  QNumber floor() const;
  QNumber ceil() const;
  // Integer division of this by d: truncating on small operands, floored
  // on big ones; both agree on non-negative operands.
  // Requires: this and d integers, d != 0. quotient and remainder may alias
  // this or d.
  void divmod(const QNumber& d, QNumber& quotient, QNumber& remainder) const;
  // Returns: true when this (an integer) divides x (an integer).
  bool divides(const QNumber& x) const;
  QNumber get_num() const;
  QNumber get_den() const;
  // Keeps the floor in this and returns the fractional rest, in [0, 1).
  QNumber self_decompose();
  // Returns: true when numerator and denominator fit in `bits`-bit signed
  // integers.
  bool fits(int bits) const;

  bool is_integer() const { return d_den == 1 || (is_big() && big_is_int()); }

  bool is_zero() const { return d_den != 0 ? d_num == 0 : mpq_sgn(big()) == 0; }

  // Returns: -1, 0 or 1.
  int sign() const {
    if (is_big()) {
      return mpq_sgn(big());
    }
    return (d_num > 0) - (d_num < 0);
  }

  // Returns: the value as a machine integer; requires fits(64) and an
  // integral value.
  long to_long() const;
  double to_double() const;
  // Returns: the non-negative gcd of two integers; gcd(0, 0) = 0.
  friend QNumber gcd(const QNumber& a, const QNumber& b);

  // Comparison, across small and big forms.
  bool operator==(const QNumber& o) const {
    if (!is_big() && !o.is_big()) {
      return d_num == o.d_num && d_den == o.d_den;
    }
    return eq_slow(o);
  }

  bool operator!=(const QNumber& o) const { return !(*this == o); }

  bool operator<(const QNumber& o) const { return compare(o) < 0; }

  bool operator<=(const QNumber& o) const { return compare(o) <= 0; }

  bool operator>(const QNumber& o) const { return compare(o) > 0; }

  bool operator>=(const QNumber& o) const { return compare(o) >= 0; }

  bool operator==(long o) const {
    if (!is_big()) {
      return d_den == 1 && d_num == o;
    }
    return compare_slow(o) == 0;
  }

  bool operator!=(long o) const { return !(*this == o); }

  bool operator<(long o) const { return compare(o) < 0; }

  bool operator>(long o) const { return compare(o) > 0; }

  bool operator<=(long o) const { return compare(o) <= 0; }

  bool operator>=(long o) const { return compare(o) >= 0; }

  // Returns: -1, 0 or 1 as this is below, equal to or above o.
  int compare(const QNumber& o) const {
    if (!is_big() && !o.is_big()) {
      if (d_den == o.d_den) {
        return (d_num > o.d_num) - (d_num < o.d_num);
      }
      // A product that fits is exact even when it is INT64_MIN, so plain
      // overflow detection suffices for ordering.
      int64_t a, b;
      if (!__builtin_mul_overflow(d_num, o.d_den, &a)
          && !__builtin_mul_overflow(o.d_num, d_den, &b)) {
        return (a > b) - (a < b);
      }
    }
    return compare_slow(o);
  }

  int compare(long o) const {
    if (!is_big()) {
      int64_t b;
      if (d_den == 1) {
        return (d_num > o) - (d_num < o);
      }
      // num/den against o is num against o*den; when that product does not
      // fit, its magnitude exceeds |num| and o's sign decides.
      if (__builtin_mul_overflow(o, d_den, &b)) {
        return o > 0 ? -1 : 1;
      }
      return (d_num > b) - (d_num < b);
    }
    return compare_slow(o);
  }

  // Interface. Equal values hash equally in both forms.
  size_t hash() const {
    if (!is_big()) {
      return small_hash(d_num, d_den);
    }
    return hash_big();
  }

  // Stores the value in an initialised mpq_t.
  void to_mpq(mpq_t out) const;
  // Stores the numerator (or the value, for integers) in an mpz_t.
  void num_to_mpz(mpz_t out) const;

  bool is_big() const { return d_den == 0; }

  // Moves a small number to the big form; no-op on big numbers.
  void make_big();
  // Restores the invariants after a raw change of the fields.
  void normalize();

 private:
  // The heap block of the big form: an mpq_t is exactly the numerator and
  // the denominator as two GMP integers, so the mpq functions apply as is.
  using Big = __mpq_struct;

  static const QNumber s_zero;
  static const QNumber s_one;

  struct Raw {};

  constexpr QNumber(int64_t n, int64_t d, Raw) : d_num(n), d_den(d) {}

  Big* big() const { return reinterpret_cast<Big*>(d_num); }

  bool big_is_int() const;

  static size_t small_hash(int64_t num, int64_t den) {
    uint64_t n = static_cast<uint64_t>(num);
    return ((n >> 32) | (n << 32)) + 2 * static_cast<uint64_t>(den);
  }

  QNumber& assign_slow(const QNumber& other);
  QNumber& add_slow(const QNumber& o, bool subtract);
  QNumber& mul_slow(const QNumber& o);
  QNumber& addmul_slow(const QNumber& a, const QNumber& b);
  QNumber& self_neg_big();
  bool eq_slow(const QNumber& o) const;
  int compare_slow(const QNumber& o) const;
  int compare_slow(long o) const;
  size_t hash_big() const;
  void copy_big(const QNumber& other);
  // Stores the value of q, in the small form when it fits.
  void set_mpq(mpq_srcptr q);
  // Stores the integer z, in the small form when it fits.
  void set_mpz(mpz_srcptr z);
  void fix_int_min();
  void free_big();

  int64_t d_num;
  int64_t d_den;

  friend class BVNumber;
  friend class MpqView;
};

// Constant-initialised through the constexpr constructor, so they are usable
// from any static initialiser.
inline const QNumber QNumber::s_zero{0, 1, QNumber::Raw{}};
inline const QNumber QNumber::s_one{1, 1, QNumber::Raw{}};

std::ostream& operator<<(std::ostream& out, const QNumber& n);

struct QNumberHash {
  size_t operator()(const QNumber& n) const { return n.hash(); }
};

// Bit-vector arithmetic on non-negative integral QNumbers. A value of width
// w is an integer in [0, 2^w). Results are stored in the small form
// whenever they fit. Division by zero is the caller's to exclude.
class BVNumber {
 public:
  static void pow2(size_t k, QNumber& out);
  static QNumber pow2(size_t k);
  static bool test_bit(const QNumber& x, size_t i);
  static void set_bit(QNumber& x, size_t i, bool value);
  // Multiplies or floor-divides by 2^k.
  static void bit_left_shift(const QNumber& x, size_t k, QNumber& out);
  static void bit_right_shift(const QNumber& x, size_t k, QNumber& out);
  // Index of the lowest 1 bit at or above i, or -1.
  static long scan_bit_1(const QNumber& x, size_t i);
  // Returns: w for 0, 0 when x needs more than w bits.
  static size_t count_leading_zeros(const QNumber& x, size_t w);
  // Drops every bit at or above w.
  static QNumber trim(const QNumber& x, size_t w);
  // 2^w - x, and x itself for x <= 0.
  static QNumber neg(size_t w, const QNumber& x);
  static void neg(size_t w, const QNumber& x, QNumber& out);
  // x for x >= 0, else x + 2^w.
  static QNumber twos_complement(const QNumber& x, size_t w);
  // Reads x as a signed w-bit value.
  static QNumber to_signed(const QNumber& x, size_t w);
  // Signed quotient, truncating; requires b != 0.
  static void sdiv(size_t w, const QNumber& a, const QNumber& b, QNumber& out);
  // Logical shifts by n; a count of at least w gives 0.
  static void lshl(size_t w, const QNumber& x, const QNumber& n, QNumber& out);
  static void lshr(size_t w, const QNumber& x, const QNumber& n, QNumber& out);
  static void bit_and_l(const QNumber& a, const QNumber& b, QNumber& out);
  static void bit_or_l(const QNumber& a, const QNumber& b, QNumber& out);
  static void bit_xor_l(const QNumber& a, const QNumber& b, QNumber& out);

  // Text forms of bit-vector values, as in SMT-LIB literals: exactly w
  // binary digits, or w / 4 lower-case hexadecimal digits, leading zeros
  // kept and no prefix.
  static std::string to_binary(const QNumber& x, size_t w);
  static std::string to_hex(const QNumber& x, size_t w);  // requires w % 4 == 0
  // Parses digits in base 2, 10 or 16; throws QNumber::error on bad text.
  static QNumber from_str(const std::string& digits, int base);

 private:
  template <int64_t (*word_op)(int64_t, int64_t),
            void (*mpz_op)(mpz_ptr, mpz_srcptr, mpz_srcptr)>
  static void bit_op(const QNumber& a, const QNumber& b, QNumber& out);
};

}  // namespace zenlo

#endif
