// The model side of a rewrite step that preprocessing cannot state as
// "src stands for dst": the free-input stage replaces a term by a fresh
// input, and when the model has given that input a value, the symbols
// below the original term must be chosen so that the term takes it.
// A calculator, registered per head tag with the ModelStore, does that
// choice for one operator; the ModelStore knows nothing of operators.
#ifndef ZENLO_PREPROCESS_ADHOCCALCULATOR_H
#define ZENLO_PREPROCESS_ADHOCCALCULATOR_H

#include <utility>
#include <vector>

#include "terms/term.h"

namespace zenlo {
namespace adhoccalculator {

class AdHocCalculator {
 public:
  using Assignment = std::pair<const Term_*, const Term_*>;

  virtual ~AdHocCalculator() = default;

  // - Requires: `term`'s head has the tag this calculator was registered
  //   for; `value` is a value of its type.
  // - Returns: false when no choice makes `term` equal `value`.
  // - After: `out` holds pairs (subterm, value) that, held together, make
  //   `term` evaluate to `value`.
  virtual bool operator()(const Term_* term,
                          const Term_* value,
                          std::vector<Assignment>& out) = 0;
};

}  // namespace adhoccalculator
}  // namespace zenlo

#endif
