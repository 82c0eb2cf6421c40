// A theory fact as its checker sees it: literals that the theory claims
// cannot all hold, and optional evidence from the solver that found them.
// Checkers re-derive the contradiction on their own; they know no solver.
#ifndef ZENLO_THEORY_CHECK_THEORYFACT_H
#define ZENLO_THEORY_CHECK_THEORYFACT_H

#include <string>
#include <vector>

#include "theory/theorylit.h"

namespace zenlo {

enum class TheoryFactKind { Conflict, Explanation, Lemma };

// Evidence that a solver may attach to a fact when the literals alone make
// checking hard (say, the coefficients that combine an arithmetic conflict
// into 0 < 0). Each theory derives its own; its checker downcasts.
class FactCertificate {
 public:
  virtual ~FactCertificate() = default;
};

struct TheoryFact {
  TheoryFactKind kind;
  // A conflict's literals; an explanation's reasons with the implied
  // literal negated; a lemma's literals negated. Together unsatisfiable.
  const std::vector<TheoryLit>& lits;
  // Null when the solver offers none.
  const FactCertificate* certificate;
};

// The checker of one theory's facts.
class TheoryFactChecker {
 public:
  virtual ~TheoryFactChecker() = default;

  // Returns: empty when `fact` is refuted; otherwise why it is not.
  virtual std::string check(const TheoryFact& fact) = 0;
};

}  // namespace zenlo

#endif
