// CardinalityChecker: congruence alone is complete only over sorts with
// infinitely many values. Over an enumerated sort, distinct terms can run
// out of values (four pairwise distinct constants of a sort of three), and
// a model must give every term one of the sort's own values.
//
// On each full assignment the checker looks at EUF's classes of
// enumerated sorts; a class that holds no value of its sort gets, through
// its representative, the domain lemma t = v1 or ... or t = vn. Once every
// class is tied to a value, EUF's own rule that values are distinct
// finishes the count, and the model reads each class's value from its
// members. A term gets its lemma once per backtrack point; the lemma goes
// at the point's pop, and so does the record.
#ifndef ZENLO_THEORY_CARDINALITYCHECKER_H
#define ZENLO_THEORY_CARDINALITYCHECKER_H

#include <cstdint>
#include <vector>

#include "terms/hashtable.h"
#include "theory/theorysolver.h"

namespace zenlo {

class TermManager;
class Term_;

namespace euf {
class Solver;
}

class CardinalityChecker {
 public:
  // Requires: both outlive the checker.
  CardinalityChecker(TermManager* tm, const euf::Solver* euf);

  // Returns: whether domain lemmas wait for terms whose classes hold no
  //   value.
  bool check();

  bool has_lemmas() const { return d_next < d_pending.size(); }

  // Requires: has_lemmas(). After: `out` holds the lemma's literals.
  TheoryLemma get_lemma(std::vector<TheoryLit>& out);

  void push_backtrack_point();
  void pop_backtrack_point();

  uint64_t num_lemmas() const { return d_lemmas; }

 private:
  TermManager* d_tm;
  const euf::Solver* d_euf;
  std::vector<const Term_*> d_pending;
  size_t d_next = 0;
  // Terms with a lemma, in order, and the count at each backtrack point.
  hsh::HashSet<const Term_*> d_done;
  std::vector<const Term_*> d_done_order;
  std::vector<size_t> d_frames;
  // Scratch.
  std::vector<const Term_*> d_reps;
  std::vector<const Term_*> d_members;
  uint64_t d_lemmas = 0;
};

}  // namespace zenlo

#endif
