// Linear normal forms of arithmetic terms, for the construction-time
// simplifier (atoms, arguments of functions and arrays) and for anyone who
// needs to compare sums up to reordering.
//
// A Polynomial is a list of monomials, each a term that is no sum, no
// number and no product with a number, with its rational coefficient,
// plus a constant. poly_norm reads a term into it: sums are flattened,
// numeric factors multiplied out, numbers collected into the constant.
// Everything else (products of two non-numbers, if-then-else terms,
// uninterpreted applications) is a monomial of its own. After
// canonicalize() the monomials are sorted by ascending term id, merged,
// and none has coefficient 0, so two equal polynomials have equal lists.
//
// The walk is iterative: a sum of any depth is read without recursion.
// A Polynomial keeps its storage between uses; PolyPool lends them, one
// per nesting level, so that the simplifier allocates nothing per term
// once warm.
#ifndef ZENLO_TERMS_POLYNOMIAL_H
#define ZENLO_TERMS_POLYNOMIAL_H

#include <memory>
#include <utility>
#include <vector>

#include "terms/numbers.h"
#include "terms/term.h"

namespace zenlo {

class TermManager;

namespace termsimpl {

struct Monomial {
  const Term_* term;
  QNumber coeff;
};

class Polynomial {
 public:
  void clear() {
    d_monomials.clear();
    d_constant = 0L;
  }

  // Adds coeff * t, read as a polynomial. Requires: t of type Real or Int.
  void add(const TermManager& tm, const Term_* t, const QNumber& coeff);

  // Sorts by ascending id, merges equal monomials, drops zero ones.
  void canonicalize();

  // Multiplies coefficients and constant by k. Requires: k != 0.
  void scale(const QNumber& k);

  // Returns: the positive factor that makes the coefficients coprime
  //   integers (1 for no monomials).
  QNumber primitive_factor() const;

  // Returns: whether every monomial term is of type Int.
  bool all_int(const TermManager& tm) const;

  const std::vector<Monomial>& monomials() const { return d_monomials; }

  std::vector<Monomial>& monomials() { return d_monomials; }

  const QNumber& constant() const { return d_constant; }

  QNumber& constant() { return d_constant; }

 private:
  std::vector<Monomial> d_monomials;
  QNumber d_constant;
  // The walk of add(), kept for its capacity.
  std::vector<std::pair<const Term_*, QNumber>> d_stack;
};

// Lends Polynomials by nesting depth; a Lease returns its one at scope end,
// also when an exception passes.
class PolyPool {
 public:
  class Lease {
   public:
    explicit Lease(PolyPool& pool);

    ~Lease() { --d_pool.d_depth; }

    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;

    Polynomial& operator*() { return *d_poly; }

    Polynomial* operator->() { return d_poly; }

   private:
    PolyPool& d_pool;
    Polynomial* d_poly;
  };

 private:
  std::vector<std::unique_ptr<Polynomial>> d_polys;
  size_t d_depth = 0;
};

// Reads t into p (cleared first) and canonicalises it.
void poly_norm(const TermManager& tm, const Term_* t, Polynomial& p);

// Builds the polynomial as a term: the monomials in list order as a
// right-nested sum, each as (* coeff term) unless its coefficient is 1,
// and the constant as the last addend when `with_constant` and not zero.
// A polynomial with nothing to add gives the number 0.
const Term_* poly_to_term(TermManager& tm,
                          const Polynomial& p,
                          bool with_constant);

}  // namespace termsimpl
}  // namespace zenlo

#endif
