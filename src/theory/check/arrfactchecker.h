// Checks facts of the arrays theory by a closure of its own: the terms of
// the fact's literals, a read of every array term at every index term
// (and at one index apart from all of them, over an infinite index sort),
// and the array axioms instantiated over those reads until nothing more
// follows: a write's cell, read over write where the indices are known to
// differ, a constant array's cells. Equality is a plain union-find with
// congruence by recomputed signatures. Where a read over write instance
// hangs on two indices it cannot tell equal or apart, it splits on them,
// a few times at most.
//
// An extensionality instance, a = b or a[k] != b[k], is no consequence
// of the axioms: k is a fresh witness. The checker accepts exactly that
// shape when k bears the name the solver gives the witness of a = b.
#ifndef ZENLO_THEORY_CHECK_ARRFACTCHECKER_H
#define ZENLO_THEORY_CHECK_ARRFACTCHECKER_H

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "theory/check/termclosure.h"
#include "theory/check/theoryfact.h"

namespace zenlo {

class TermManager;
class Term_;
class Type;

class ArrFactChecker : public TheoryFactChecker, TermClosure {
 public:
  // Requires: `tm` outlives the checker.
  explicit ArrFactChecker(TermManager& tm) : TermClosure(tm), d_tm(tm) {}

  std::string check(const TheoryFact& fact) override;

 private:
  // A split on whether two index terms are equal.
  struct Split {
    const Term_* a;
    const Term_* b;
    bool equal;
  };

  bool is_witness_instance(const TheoryFact& fact) const;
  // Returns: whether the literals with the splits are contradictory;
  //   `budget` counts the splits left.
  bool refute(const TheoryFact& fact, std::vector<Split>& splits, int& budget);

  void clear();
  bool close();
  bool instantiate(std::pair<const Term_*, const Term_*>& undecided);
  bool disequal(int a, int b);
  bool contradiction();

  TermManager& d_tm;
  std::vector<std::pair<int, int>> d_diseqs;
  // The index terms by sort, with the one apart from all (null when the
  // sort is finite).
  std::unordered_map<const Type*, std::vector<const Term_*>> d_indices;
  std::unordered_map<const Type*, const Term_*> d_apart;
};

}  // namespace zenlo

#endif
