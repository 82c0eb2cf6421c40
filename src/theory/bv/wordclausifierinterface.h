// The bit-blaster as the bit-vector solvers see it: terms in, words of
// BvLit out, clauses to a ClauseSink that the caller gives with each call.
// A word is a vector of literals, bit 0 the least significant; a Boolean
// term is a word of one bit.
//
// The clausifier caches one word per term and keeps the terms in caching
// order, so that a solver can take back what it blasted for an atom
// (retract_upto) or for a backtrack point (push/pop_backtrack_point). It
// knows nothing of the search: whoever owns the sink decides what the
// clauses mean.
#ifndef ZENLO_THEORY_BV_WORDCLAUSIFIERINTERFACE_H
#define ZENLO_THEORY_BV_WORDCLAUSIFIERINTERFACE_H

#include "base/exception.h"
#include "theory/bv/clausesink.h"

namespace zenlo {

class Logger;
class Term_;
class TerminationTest;

namespace bv {

class WordClausifierInterface {
 public:
  ZENLO_DECLARE_ERROR;

  virtual ~WordClausifierInterface();

  virtual void set_logger(Logger* logger) = 0;

  virtual void set_termination_test(TerminationTest* test) = 0;

  virtual bool is_cached(const Term_* term) const = 0;

  // Returns: false when `term` has no word; else true with a copy of it
  //   in `bits`.
  virtual bool get_bits(const Term_* term, BvLitList& bits) const = 0;

  // Requires: `term` is Boolean (a word of one bit).
  // Returns: the literal of its bit, after every clause it needs went to
  //   `sink`.
  // Throws: error "not supported! ..." for a term it cannot represent.
  virtual BvLit bit_blast(const Term_* term, ClauseSink& sink) = 0;

  // Requires: `bits` has the width of `term`.
  // After: the term's bits are `bits` (taken as its word if it had none,
  //   tied by clauses to its word otherwise).
  virtual void set_bits(const Term_* term,
                        ClauseSink& sink,
                        const BvLitList& bits) = 0;

  // Requires: `term` is cached.
  // After: `bits` holds one fresh literal per bit, each tied to the word.
  virtual void make_bits(const Term_* term,
                         BvLitList& bits,
                         ClauseSink& sink) = 0;

  // Pops the caching order down to and including `term`, forgetting the
  // words of the popped terms.
  virtual void retract_upto(const Term_* term) = 0;

  // After: `lit` is true exactly when the words of `lhs` and `rhs` (blasted
  //   here if needed) are equal.
  // Returns: false, having added no clause for the equality, when the
  //   words differ in a bit pair that is complementary.
  virtual bool bit_blast_theory_eq(BvLit lit,
                                   const Term_* lhs,
                                   const Term_* rhs,
                                   ClauseSink& sink) = 0;

  // After: `term` has a word.
  virtual void notify_interface_term(const Term_* term, ClauseSink& sink) = 0;

  // Returns: whether `term` is a leaf of the clausifier that another
  //   theory may also know: a constant, an `ite`, an array operation or
  //   an application of an uninterpreted function.
  virtual bool is_terminal(const Term_* term) const = 0;

  virtual void push_backtrack_point() = 0;

  // After: the words cached since the matching push are forgotten.
  virtual void pop_backtrack_point() = 0;
};

}  // namespace bv
}  // namespace zenlo

#endif
