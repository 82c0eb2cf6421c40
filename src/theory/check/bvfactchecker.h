// Checks facts over bit-vectors by bit-blasting their literals into a
// search engine of its own and asking for a model: the fact holds when
// there is none. Applications of uninterpreted functions get fresh bits,
// tied pair by pair by functional consistency (equal arguments, equal
// results), so a fact that mixes congruence with bit-vector laws (an EUF
// lemma whose atoms the simplifier rewrote, say ~a = c into a = ~c) is
// read in both theories at once. It shares the circuits with the solver,
// but neither the main search nor theory combination.
#ifndef ZENLO_THEORY_CHECK_BVFACTCHECKER_H
#define ZENLO_THEORY_CHECK_BVFACTCHECKER_H

#include <string>
#include <vector>

#include "theory/check/theoryfact.h"

namespace zenlo {

class TermManager;
class Term_;

class BvFactChecker : public TheoryFactChecker {
 public:
  // Requires: `tm` outlives the checker.
  explicit BvFactChecker(TermManager& tm) : d_tm(tm) {}

  // Returns: empty when the literals have no model in bits; otherwise why
  //   the fact is not refuted (a model, or a term it cannot blast).
  std::string check(const TheoryFact& fact) override;

 private:
  // The applications below the literals; false with `why` set when a
  // term is beyond bits.
  bool collect(const TheoryFact& fact,
               std::vector<const Term_*>& apps,
               std::string& why) const;

  TermManager& d_tm;
};

}  // namespace zenlo

#endif
