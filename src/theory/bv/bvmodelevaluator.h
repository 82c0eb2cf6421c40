// Values of bit-vector terms in a model of the bits. A term with a word
// reads its bits; a term without one (asked about after the check, or
// never an atom's) is evaluated bottom-up over its arguments' values with
// the term store's simplifications, which fold operators over numbers. A
// bit-vector constant that no atom mentions is unconstrained and takes 0.
// Shared by the eager solver (bits in the main engine's model) and the
// lazy one (bits in its inner engine's model).
#ifndef ZENLO_THEORY_BV_BVMODELEVALUATOR_H
#define ZENLO_THEORY_BV_BVMODELEVALUATOR_H

#include <functional>
#include <vector>

#include "terms/hashtable.h"
#include "terms/term.h"
#include "theory/bv/wordclausifierinterface.h"

namespace zenlo {

class TermManager;

namespace bv {

class ModelEvaluator {
 public:
  using BitValue = std::function<bool(BvLit)>;

  // Requires: the arguments outlive the evaluator.
  ModelEvaluator(TermManager* tm,
                 const WordClausifierInterface* clausifier,
                 BitValue value)
      : d_tm(tm), d_clausifier(clausifier), d_value(std::move(value)) {}

  // Returns: a number term of `t`'s width, or null when `t` is no
  //   bit-vector term or depends on a term of another theory.
  const Term_* value_of(const Term_* t);

 private:
  const Term_* from_bits(const Term_* t);
  const Term_* evaluate(const Term_* t);

  TermManager* d_tm;
  const WordClausifierInterface* d_clausifier;
  BitValue d_value;
  BvLitList d_bits;
};

}  // namespace bv
}  // namespace zenlo

#endif
