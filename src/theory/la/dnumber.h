// DNumber: a rational plus a multiple of a positive infinitesimal delta,
// r + k * delta. The simplex keeps strict bounds exact this way: x < c is
// the bound x <= c - delta, and a concrete delta is chosen only when a
// model is built. Comparison is lexicographic (r first, then k), which is
// the order for every small enough positive delta.
//
// Both parts are QNumbers, so small values stay in machine words and a
// DNumber is copied without allocation on the word path.
#ifndef ZENLO_THEORY_LA_DNUMBER_H
#define ZENLO_THEORY_LA_DNUMBER_H

#include <ostream>
#include <string>

#include "terms/numbers.h"

namespace zenlo {
namespace la {

class DNumber {
 public:
  DNumber() = default;

  DNumber(const QNumber& r, const QNumber& k = QNumber::zero())  // NOLINT
      : d_r(r), d_k(k) {}

  DNumber(long r, long k = 0) : d_r(r), d_k(k) {}  // NOLINT

  const QNumber& real() const { return d_r; }

  const QNumber& delta() const { return d_k; }

  bool is_zero() const { return d_r.is_zero() && d_k.is_zero(); }

  // Returns: -1, 0 or 1.
  friend int cmp(const DNumber& a, const DNumber& b) {
    int c = a.d_r.compare(b.d_r);
    return c != 0 ? c : a.d_k.compare(b.d_k);
  }

  bool operator==(const DNumber& o) const {
    return d_r == o.d_r && d_k == o.d_k;
  }

  bool operator!=(const DNumber& o) const { return !(*this == o); }

  bool operator<(const DNumber& o) const { return cmp(*this, o) < 0; }

  bool operator<=(const DNumber& o) const { return cmp(*this, o) <= 0; }

  bool operator>(const DNumber& o) const { return cmp(*this, o) > 0; }

  bool operator>=(const DNumber& o) const { return cmp(*this, o) >= 0; }

  DNumber& operator+=(const DNumber& o) {
    d_r += o.d_r;
    d_k += o.d_k;
    return *this;
  }

  DNumber& operator-=(const DNumber& o) {
    d_r -= o.d_r;
    d_k -= o.d_k;
    return *this;
  }

  DNumber& operator*=(const QNumber& c) {
    d_r *= c;
    d_k *= c;
    return *this;
  }

  DNumber& operator/=(const QNumber& c) {
    d_r /= c;
    d_k /= c;
    return *this;
  }

  // this += a * c, without a temporary DNumber.
  DNumber& addmul(const DNumber& a, const QNumber& c) {
    d_r.self_addmul(a.d_r, c);
    d_k.self_addmul(a.d_k, c);
    return *this;
  }

  DNumber operator+(const DNumber& o) const {
    DNumber r(*this);
    r += o;
    return r;
  }

  DNumber operator-(const DNumber& o) const {
    DNumber r(*this);
    r -= o;
    return r;
  }

  DNumber operator*(const QNumber& c) const {
    DNumber r(*this);
    r *= c;
    return r;
  }

  DNumber operator-() const { return DNumber(d_r.neg(), d_k.neg()); }

  // The floor of the real part, one lower when the real part is integral
  // and the delta part negative: floor(3 - delta) is 2.
  QNumber floor() const {
    QNumber f = d_r.floor();
    if (d_r.is_integer() && d_k.sign() < 0) {
      f -= 1L;
    }
    return f;
  }

  // Returns: r + k * delta for a concrete delta.
  QNumber value_at(const QNumber& delta) const {
    QNumber v(d_r);
    if (!d_k.is_zero()) {
      v.self_addmul(d_k, delta);
    }
    return v;
  }

  std::string to_str() const {
    return d_k.is_zero() ? d_r.to_str()
                         : "(" + d_r.to_str() + ", " + d_k.to_str() + ")";
  }

 private:
  QNumber d_r;
  QNumber d_k;
};

inline std::ostream& operator<<(std::ostream& out, const DNumber& d) {
  return out << d.to_str();
}

}  // namespace la
}  // namespace zenlo

#endif
