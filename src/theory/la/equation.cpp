#include "theory/la/equation.h"

#include <algorithm>
#include <sstream>

namespace zenlo {
namespace la {

namespace {

bool var_less(const Equation::Monomial& m, int var) {
  return m.first < var;
}

}  // namespace

QNumber Equation::coeff(int var) const {
  auto it = std::lower_bound(d_monos.begin(), d_monos.end(), var, var_less);
  return it != d_monos.end() && it->first == var ? it->second : QNumber(0);
}

void Equation::add(int var, const QNumber& c) {
  if (c.is_zero()) {
    return;
  }
  auto it = std::lower_bound(d_monos.begin(), d_monos.end(), var, var_less);
  if (it != d_monos.end() && it->first == var) {
    it->second += c;
    if (it->second.is_zero()) {
      d_monos.erase(it);
    }
  } else {
    d_monos.insert(it, Monomial(var, c));
  }
}

void Equation::scale(const QNumber& k) {
  if (k.is_zero()) {
    d_monos.clear();
    d_const = 0;
    return;
  }
  for (Monomial& m : d_monos) {
    m.second *= k;
  }
  d_const *= k;
}

// A merge of the two sorted lists, so that a long equation costs one pass.
void Equation::add_multiple(const Equation& other, const QNumber& k) {
  if (k.is_zero()) {
    return;
  }
  std::vector<Monomial> out;
  out.reserve(d_monos.size() + other.d_monos.size());
  auto a = d_monos.begin();
  auto b = other.d_monos.begin();
  while (a != d_monos.end() || b != other.d_monos.end()) {
    if (b == other.d_monos.end()
        || (a != d_monos.end() && a->first < b->first)) {
      out.push_back(std::move(*a++));
    } else if (a == d_monos.end() || b->first < a->first) {
      out.emplace_back(b->first, b->second * k);
      ++b;
    } else {
      QNumber c = a->second + b->second * k;
      if (!c.is_zero()) {
        out.emplace_back(a->first, std::move(c));
      }
      ++a;
      ++b;
    }
  }
  d_monos = std::move(out);
  d_const += other.d_const * k;
}

std::string Equation::to_str() const {
  std::ostringstream out;
  for (const Monomial& m : d_monos) {
    out << m.second.to_str() << "*x" << m.first << " + ";
  }
  out << d_const.to_str() << " = 0";
  return out.str();
}

}  // namespace la
}  // namespace zenlo
