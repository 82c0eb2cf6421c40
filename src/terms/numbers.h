// Exact numbers. QNumber is the rational of the whole system: simplex
// tableaux, number terms, bit-vector constants and model values are all
// QNumbers. Almost every value met in practice is small, so a QNumber stays
// in two machine words and falls back on GMP only when a result does not
// fit; the word path allocates nothing and calls no GMP function.
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

#include "api/exception.h"

namespace zenlo {

class QNumber {
 public:
  ZENLO_DECLARE_ERROR;

  // Small form: den != 0 and the value is num / den.
  // Big form: den == 0 and num holds a pointer to two mpz_t (numerator,
  // denominator). Normalised numbers are in lowest terms with a positive
  // denominator; zero is 0/1. Neither field of the small form is ever
  // INT64_MIN, which has no negation.
  QNumber() : d_num(0), d_den(1) {}

  QNumber(long n);  // NOLINT: numbers convert implicitly from integers
  QNumber(long n, long d);
  // Copies the two GMP integers; normalises when `normalize` is true.
  QNumber(const mpz_t n, const mpz_t d, bool normalize = true);
  explicit QNumber(const mpq_t q);
  QNumber(const QNumber& other);
  QNumber(QNumber&& other) noexcept;
  ~QNumber();

  QNumber& operator=(const QNumber& other);
  QNumber& operator=(QNumber&& other) noexcept;
  QNumber& operator=(long n);

  static const QNumber& zero();
  static const QNumber& one();

  // Text. from_str accepts an optional "-", decimal digits, a fraction
  // "n/d", a decimal point and an exponent "e"/"E"; it throws error
  // "invalid argument to Number::from_str: " + text otherwise.
  static QNumber from_str(const std::string& text);
  std::string to_str() const;
  std::string to_float_str(int digits) const;

  // Arithmetic.
  QNumber& operator+=(const QNumber& o);
  QNumber& operator-=(const QNumber& o);
  QNumber& operator*=(const QNumber& o);
  QNumber& operator/=(const QNumber& o);
  QNumber& operator+=(long o);
  QNumber& operator-=(long o);
  QNumber& operator*=(long o);
  QNumber& operator/=(long o);
  QNumber operator+(const QNumber& o) const;
  QNumber operator-(const QNumber& o) const;
  QNumber operator*(const QNumber& o) const;
  QNumber operator/(const QNumber& o) const;

  QNumber operator-() const { return neg(); }

  QNumber neg() const;
  QNumber& self_neg();
  QNumber inv() const;
  friend QNumber abs(const QNumber& x);
  // this += a * b
  QNumber& self_addmul(const QNumber& a, const QNumber& b);

  // Integers.
  QNumber floor() const;
  QNumber ceil() const;
  // Integer division of this by d: truncating on small operands, floored
  // on big ones; both agree on non-negative operands.
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
  bool is_integer() const;

  bool is_zero() const { return d_den != 0 && d_num == 0; }

  int sign() const;
  // Returns: the value as a machine integer; requires fits(64) and an
  // integral value.
  long to_long() const;
  double to_double() const;
  friend QNumber gcd(const QNumber& a, const QNumber& b);  // integers only

  // Comparison, across small and big forms.
  bool operator==(const QNumber& o) const;

  bool operator!=(const QNumber& o) const { return !(*this == o); }

  bool operator<(const QNumber& o) const;

  bool operator<=(const QNumber& o) const { return !(o < *this); }

  bool operator>(const QNumber& o) const { return o < *this; }

  bool operator>=(const QNumber& o) const { return !(*this < o); }

  bool operator==(long o) const;

  bool operator!=(long o) const { return !(*this == o); }

  bool operator<(long o) const;
  bool operator>(long o) const;

  bool operator<=(long o) const { return !(*this > o); }

  bool operator>=(long o) const { return !(*this < o); }

  int compare(const QNumber& o) const;

  // Interface. Equal values hash equally in both forms.
  size_t hash() const;
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
  struct Big {
    mpz_t num;
    mpz_t den;
  };

  Big* big() const { return reinterpret_cast<Big*>(d_num); }

  void fix_int_min();
  void free_big();

  int64_t d_num;
  int64_t d_den;

  friend class BVNumber;
};

std::ostream& operator<<(std::ostream& out, const QNumber& n);

struct QNumberHash {
  size_t operator()(const QNumber& n) const { return n.hash(); }
};

// Bit-vector arithmetic on non-negative integral QNumbers. A value of width
// w is an integer in [0, 2^w).
class BVNumber {
 public:
  static void pow2(size_t k, QNumber& out);
  static QNumber pow2(size_t k);
  static bool test_bit(const QNumber& x, size_t i);
  static void set_bit(QNumber& x, size_t i, bool value);
  static void bit_left_shift(const QNumber& x, size_t k, QNumber& out);
  static void bit_right_shift(const QNumber& x, size_t k, QNumber& out);
  // Index of the lowest 1 bit at or above i, or -1.
  static long scan_bit_1(const QNumber& x, size_t i);
  static size_t count_leading_zeros(const QNumber& x, size_t w);
  // Drops every bit at or above w.
  static QNumber trim(const QNumber& x, size_t w);
  // 2^w - x, and x itself for x <= 0.
  static QNumber neg(size_t w, const QNumber& x);
  static void neg(size_t w, const QNumber& x, QNumber& out);
  static QNumber twos_complement(const QNumber& x, size_t w);
  // Reads x as a signed w-bit value.
  static QNumber to_signed(const QNumber& x, size_t w);
  static void sdiv(size_t w, const QNumber& a, const QNumber& b, QNumber& out);
  static void lshl(size_t w, const QNumber& x, const QNumber& n, QNumber& out);
  static void lshr(size_t w, const QNumber& x, const QNumber& n, QNumber& out);
  static void bit_and_l(const QNumber& a, const QNumber& b, QNumber& out);
  static void bit_or_l(const QNumber& a, const QNumber& b, QNumber& out);
  static void bit_xor_l(const QNumber& a, const QNumber& b, QNumber& out);

  // Text forms of bit-vector values, as in SMT-LIB literals.
  static std::string to_binary(const QNumber& x, size_t w);
  static std::string to_hex(const QNumber& x, size_t w);  // requires w % 4 == 0
  // Parses digits in base 2, 10 or 16; throws QNumber::error on bad text.
  static QNumber from_str(const std::string& digits, int base);
};

}  // namespace zenlo

#endif
