// An equality between two terms that one theory solver offers to another
// inside the TheoryManager, during theory combination. The receiving
// solver may hold on to it only through new_copy(); the sender's object
// lives on the sender's stack or in the propagator's queue. A solver that
// later has to justify a fact built on the equality asks the object itself
// to explain it, in literals of the search, so that a reason never names an
// equality that the search has not seen.
#ifndef ZENLO_THEORY_THEORYEQ_H
#define ZENLO_THEORY_THEORYEQ_H

#include <string>
#include <vector>

#include "terms/term.h"
#include "theory/theorylit.h"

namespace zenlo {

class TheoryEq {
 public:
  // Requires: a and b are different terms of compatible types.
  // After: the term with the lower id is on the right.
  TheoryEq(const Term_* a, const Term_* b);
  virtual ~TheoryEq() = default;

  const Term_* left() const { return d_left; }

  const Term_* right() const { return d_right; }

  // Appends literals, true on the search's trail, that imply the equality.
  // The base class knows no reason and appends nothing.
  virtual void explain(std::vector<TheoryLit>& reasons) const;

  // Returns: a heap copy that the caller releases with destroy().
  virtual TheoryEq* new_copy() const;

  // Releases an object made by new_copy().
  virtual void destroy();

  // "Teq(= left right)".
  std::string to_str() const;

 private:
  const Term_* d_left;
  const Term_* d_right;
};

}  // namespace zenlo

#endif
