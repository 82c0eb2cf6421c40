// Encoders of the arithmetic operators that the linear solvers do not take
// as they stand: floor (kept, but bounded), congruences, products with a
// case split over numbers, division by a term, powers, logarithms and arc
// sines. Each defines its term by constraints over fresh constants that a
// linear (or, for the nonlinear ones, a nonlinear) solver decides.
#ifndef ZENLO_PREPROCESS_ARITHENCODERS_H
#define ZENLO_PREPROCESS_ARITHENCODERS_H

#include "preprocess/constraintencoder.h"

namespace zenlo {

// (floor a) stays, as an integer the solver knows nothing else of, with
// k <= a < k + 1.
class FloorEncoder : public ConstraintEncoder::enc_fun {
 public:
  SymbolTag::tag get_tag() const override { return SymbolTag::FLOOR; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;
};

// a = b (mod m) becomes a Boolean constant k with, for fresh integers x
// and y: k -> a - b = m x, and !k -> a - b = m x + y, 1 <= y <= m - 1.
class IntModCongrEncoder : public ConstraintEncoder::enc_fun {
 public:
  SymbolTag::tag get_tag() const override { return SymbolTag::INT_MOD_CONGR; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;
};

// A product with a factor that is a case split over numbers, such as
// (* (ite c 2 3) x): linear in each case, so a fresh constant k with
// c -> k = 2x and !c -> k = 3x.
class TimesIteEncoder : public ConstraintEncoder::enc_fun {
 public:
  SymbolTag::tag get_tag() const override { return SymbolTag::TIMES; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;
};

// The sign of a product of two terms: k = 0 iff a factor is 0, k > 0 iff
// the factors have the same sign, k < 0 iff they differ. Lemmas only: the
// product stays for a nonlinear solver.
class TimesZeroLineEncoder : public ConstraintEncoder::enc_fun {
 public:
  SymbolTag::tag get_tag() const override { return SymbolTag::TIMES; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;
};

// (/ a b) with b not a number: a fresh quotient c with b = 0 or c b = a;
// for b = 0, c is 0, or with `uf_by_zero` the value of an uninterpreted
// function of a, as the standard leaves division by zero open.
class DivideEncoder : public ConstraintEncoder::enc_fun {
 public:
  explicit DivideEncoder(bool uf_by_zero) : d_uf_by_zero(uf_by_zero) {}

  SymbolTag::tag get_tag() const override { return SymbolTag::DIVIDE; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;

 private:
  bool d_uf_by_zero;
};

// (pow a n) for a natural number n: the product of n factors a; a square
// is not negative, and a power 0 is 1. Other exponents stay.
class PowEncoder : public ConstraintEncoder::enc_fun {
 public:
  SymbolTag::tag get_tag() const override { return SymbolTag::POW; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;
};

// (log a) as the inverse of exp: a fresh c with exp(c) = a and 0 < a.
class LogEncoder : public ConstraintEncoder::enc_fun {
 public:
  SymbolTag::tag get_tag() const override { return SymbolTag::LOG; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;
};

// (asin a) as the inverse of sin on [-pi/2, pi/2]: a fresh c with
// sin(c) = a, -1 <= a <= 1 and c within those bounds.
class ASinEncoder : public ConstraintEncoder::enc_fun {
 public:
  SymbolTag::tag get_tag() const override { return SymbolTag::ASIN; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;
};

}  // namespace zenlo

#endif
