#include "terms/polynomial.h"

#include <algorithm>

#include "terms/termmanager.h"

namespace zenlo {
namespace termsimpl {

PolyPool::Lease::Lease(PolyPool& pool) : d_pool(pool) {
  if (pool.d_depth == pool.d_polys.size()) {
    pool.d_polys.push_back(std::make_unique<Polynomial>());
  }
  d_poly = pool.d_polys[pool.d_depth++].get();
  d_poly->clear();
}

void Polynomial::add(const TermManager& tm,
                     const Term_* t,
                     const QNumber& coeff) {
  d_stack.clear();
  d_stack.emplace_back(t, coeff);
  QNumber v;
  while (!d_stack.empty()) {
    const Term_* cur = d_stack.back().first;
    QNumber k = std::move(d_stack.back().second);
    d_stack.pop_back();
    if (k.is_zero()) {
      continue;
    }
    if (tm.is_number(cur->get_symbol(), &v)) {
      d_constant.self_addmul(k, v);
      continue;
    }
    switch (tm.get_tag(cur->get_symbol())) {
      case SymbolTag::PLUS:
        d_stack.emplace_back(cur->get_child(0), k);
        d_stack.emplace_back(cur->get_child(1), std::move(k));
        continue;
      case SymbolTag::TIMES:
        if (tm.is_number(cur->get_child(0)->get_symbol(), &v)) {
          d_stack.emplace_back(cur->get_child(1), k * v);
          continue;
        }
        if (tm.is_number(cur->get_child(1)->get_symbol(), &v)) {
          d_stack.emplace_back(cur->get_child(0), k * v);
          continue;
        }
        break;
      case SymbolTag::DIVIDE:
        // Only a division by a non-zero number is linear; x / 0 is a term
        // of its own, whatever the divisor's meaning.
        if (tm.is_number(cur->get_child(1)->get_symbol(), &v) && !v.is_zero()) {
          d_stack.emplace_back(cur->get_child(0), k / v);
          continue;
        }
        break;
      default: break;
    }
    d_monomials.push_back(Monomial{cur, std::move(k)});
  }
}

void Polynomial::canonicalize() {
  std::sort(d_monomials.begin(),
            d_monomials.end(),
            [](const Monomial& a, const Monomial& b) {
              return a.term->get_id() < b.term->get_id();
            });
  size_t out = 0;
  for (size_t i = 0; i < d_monomials.size();) {
    Monomial& m = d_monomials[i];
    size_t j = i + 1;
    for (; j < d_monomials.size() && d_monomials[j].term == m.term; ++j) {
      m.coeff += d_monomials[j].coeff;
    }
    if (!m.coeff.is_zero()) {
      if (out != i) {
        d_monomials[out] = std::move(m);
      }
      ++out;
    }
    i = j;
  }
  d_monomials.resize(out);
}

void Polynomial::scale(const QNumber& k) {
  for (Monomial& m : d_monomials) {
    m.coeff *= k;
  }
  d_constant *= k;
}

// The lcm of the denominators makes the coefficients integers; dividing by
// the gcd of those integers makes them coprime.
QNumber Polynomial::primitive_factor() const {
  if (d_monomials.empty()) {
    return QNumber(1L);
  }
  QNumber lcm(1L);
  for (const Monomial& m : d_monomials) {
    QNumber d = m.coeff.get_den();
    lcm = lcm / gcd(lcm, d) * d;
  }
  QNumber g(0L);
  for (const Monomial& m : d_monomials) {
    g = gcd(g, abs(m.coeff * lcm));
  }
  return lcm / g;
}

bool Polynomial::all_int(const TermManager& tm) const {
  for (const Monomial& m : d_monomials) {
    if (!tm.is_integer_type(m.term->get_type())) {
      return false;
    }
  }
  return true;
}

void poly_norm(const TermManager& tm, const Term_* t, Polynomial& p) {
  p.clear();
  p.add(tm, t, QNumber(1L));
  p.canonicalize();
}

const Term_* poly_to_term(TermManager& tm,
                          const Polynomial& p,
                          bool with_constant) {
  const std::vector<Monomial>& ms = p.monomials();
  const Term_* acc = nullptr;
  if (with_constant && !p.constant().is_zero()) {
    acc = tm.make_number(p.constant());
  }
  // Built from the innermost addend outward, so each sum exists before
  // the one that contains it.
  for (size_t i = ms.size(); i-- > 0;) {
    const Term_* addend =
        ms[i].coeff == 1L
            ? ms[i].term
            : tm.make_times(tm.make_number(ms[i].coeff), ms[i].term);
    acc = acc == nullptr ? addend : tm.make_plus(addend, acc);
  }
  return acc != nullptr ? acc : tm.make_number(0L);
}

}  // namespace termsimpl
}  // namespace zenlo
