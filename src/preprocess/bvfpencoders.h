// Encoders where bit-vectors and floats meet integers or leave a result
// open: conversions between integers and words become sums of weighted
// bits, and the operations whose result the standard leaves open at some
// arguments (division by zero, the minimum of two zeros of opposite
// sign) take there the value of an uninterpreted function, when the
// options ask for that reading.
#ifndef ZENLO_PREPROCESS_BVFPENCODERS_H
#define ZENLO_PREPROCESS_BVFPENCODERS_H

#include "preprocess/constraintencoder.h"

namespace zenlo {

// ((_ int2bv w) a): a fresh word c and a fresh integer y with
// 2^w y + bits(c) = a, so that c is a modulo 2^w for every integer a.
class IntToBvEncoder : public ConstraintEncoder::enc_fun {
 public:
  SymbolTag::tag get_tag() const override { return SymbolTag::INT_TO_BV; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;
};

// bv2nat and its signed twin: a fresh integer equal to the sum of the
// bits weighted by powers of two, the top bit negative for the signed one.
class IntFromBvEncoder : public ConstraintEncoder::enc_fun {
 public:
  explicit IntFromBvEncoder(SymbolTag::tag tag) : d_tag(tag) {}

  SymbolTag::tag get_tag() const override { return d_tag; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;

 private:
  SymbolTag::tag d_tag;
};

// Division and remainder of words, with division by zero read as an
// uninterpreted function of the two words, one per operator and width.
class BvDivEncoder : public ConstraintEncoder::enc_fun {
 public:
  explicit BvDivEncoder(SymbolTag::tag tag) : d_tag(tag) {}

  SymbolTag::tag get_tag() const override { return d_tag; }

  bool defines_by_original() const override { return true; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;

 private:
  SymbolTag::tag d_tag;
};

// fp.min and fp.max of two zeros of opposite sign, read as an
// uninterpreted function, one per operator and format.
class FpMinMaxEncoder : public ConstraintEncoder::enc_fun {
 public:
  explicit FpMinMaxEncoder(SymbolTag::tag tag) : d_tag(tag) {}

  SymbolTag::tag get_tag() const override { return d_tag; }

  bool defines_by_original() const override { return true; }

  bool operator()(TermManager& tm,
                  const Term_* t,
                  const Term_*& replacement,
                  TermList& side,
                  TermList& added) override;

 private:
  SymbolTag::tag d_tag;
};

}  // namespace zenlo

#endif
