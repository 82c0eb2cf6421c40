// A linear equation sum a_i x_i + c = 0 over rational coefficients, its
// monomials sorted by variable with no zero coefficient. Variables are
// plain integers; callers give negative ones a meaning of their own (the
// Diophantine system tags its input equations with them).
#ifndef ZENLO_THEORY_LA_EQUATION_H
#define ZENLO_THEORY_LA_EQUATION_H

#include <string>
#include <utility>
#include <vector>

#include "terms/numbers.h"

namespace zenlo {
namespace la {

class Equation {
 public:
  using Monomial = std::pair<int, QNumber>;

  Equation() = default;

  const std::vector<Monomial>& monomials() const { return d_monos; }

  const QNumber& constant() const { return d_const; }

  void set_constant(const QNumber& c) { d_const = c; }

  // The coefficient of `var`, 0 when absent.
  QNumber coeff(int var) const;

  // Adds `c` to the coefficient of `var`.
  void add(int var, const QNumber& c);

  // this := this * k.
  void scale(const QNumber& k);

  // this := this + k * other.
  void add_multiple(const Equation& other, const QNumber& k);

  bool operator==(const Equation& o) const {
    return d_const == o.d_const && d_monos == o.d_monos;
  }

  // "3*x1 + -1*x-2 + 5 = 0"; for messages and dumps.
  std::string to_str() const;

 protected:
  std::vector<Monomial> d_monos;
  QNumber d_const;
};

}  // namespace la
}  // namespace zenlo

#endif
