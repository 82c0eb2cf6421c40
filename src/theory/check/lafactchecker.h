// Checks linear arithmetic facts by deciding the fact's literals over the
// rationals on its own: each literal is read from its terms into a sum with
// exact GMP rationals, equalities are solved away by substitution and the
// inequalities by Fourier-Motzkin elimination, strictness carried along. A
// negated equality t != 0 is refuted when the rest refutes both t < 0 and
// t > 0 (a convex set is never covered by finitely many hyperplanes unless
// it lies in one of them).
//
// It shares nothing with the simplex, its tableau or its number fast paths:
// slow and plain on purpose. Any subterm that is not a sum, a product by a
// number, a division by a number or a number is an opaque variable; that
// only weakens the literals, so a refutation is sound.
//
// Variables of sort Int are integers: rows over them alone are rounded
// (x > 2 is x >= 3, 2x + 2y = 1 has no solution) and equalities over
// them are solved within the integers, so facts that only hold over the
// integers, such as a branch  x <= 2 or x >= 3, are refuted too. Facts
// over reals are decided exactly; over integers the check is sound but not
// complete (elimination of inequalities still reasons as over reals, with
// rounding on each derived row). A split certificate extends it to cuts,
// whose derivation needs one case split on an integer term.
#ifndef ZENLO_THEORY_CHECK_LAFACTCHECKER_H
#define ZENLO_THEORY_CHECK_LAFACTCHECKER_H

#include <cstddef>
#include <string>
#include <vector>

#include "theory/check/theoryfact.h"

namespace zenlo {

class TermManager;
class Term_;

// Evidence for a fact that needs one integer split: `below` and `above`
// are atoms t <= k and k + 1 <= t over an integer term t. The checker
// refutes the split's failure (neither holds) and then the fact under
// each side in turn, so the evidence is checked, not trusted.
class LaSplitCertificate : public FactCertificate {
 public:
  const Term_* below = nullptr;
  const Term_* above = nullptr;
};

class LaFactChecker : public TheoryFactChecker {
 public:
  // max_rows bounds the constraints that elimination may hold at once; a
  // fact that needs more is reported as not refuted, naming the bound.
  explicit LaFactChecker(const TermManager& tm, size_t max_rows = 200000)
      : d_tm(tm), d_max_rows(max_rows) {}

  // Returns: empty when the literals have no rational solution; otherwise
  //   why they were not refuted.
  std::string check(const TheoryFact& fact) override;

 private:
  std::string decide(const std::vector<TheoryLit>& lits);

  const TermManager& d_tm;
  size_t d_max_rows;
};

}  // namespace zenlo

#endif
