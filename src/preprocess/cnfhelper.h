// The term-level questions of the CNF conversion, kept apart from the
// conversion itself so that every clause sink's generator shares them:
// what kind of Boolean node a term is, how many parents each subformula
// has among the formulas converted so far, and whether a formula already
// has the shape of a clause (so it needs no definition variable).
//
// Both tables are indexed by term id: ids are dense, so a vector is the
// smallest and the fastest memo. All walks use explicit stacks and visit a
// shared node once, so formulas of any depth and any amount of sharing cost
// time linear in their DAG.
#ifndef ZENLO_PREPROCESS_CNFHELPER_H
#define ZENLO_PREPROCESS_CNFHELPER_H

#include <cstdint>
#include <utility>
#include <vector>

#include "terms/bitset.h"
#include "terms/term.h"

namespace zenlo {

class TermManager;

// Marks of one walk, by small integer (a term id, or twice the id plus a
// polarity bit). Clearing touches only what the walk set, so a short walk
// after a long one costs nothing in proportion to the long one.
class WalkMarks {
 public:
  // Returns: true if `bit` was not set yet; sets it.
  bool test_and_set(size_t bit) {
    if (d_bits.get(bit)) {
      return false;
    }
    d_bits.set(bit);
    d_touched.push_back(bit);
    return true;
  }

  bool get(size_t bit) const { return d_bits.get(bit); }

  void clear() {
    for (size_t bit : d_touched) {
      d_bits.clear(bit);
    }
    d_touched.clear();
  }

 private:
  BitSet d_bits;
  std::vector<size_t> d_touched;
};

class CnfHelper {
 public:
  // What the conversion sees of a term: a connective, a constant, or an
  // atom (any other Boolean term, theory atoms included).
  enum class Kind { Atom, True, False, And, Or, Not, Iff, Quantifier, NonBool };

  // Parent counts by term id: how many distinct connective nodes of the
  // converted formulas have the term as an argument.
  class Parents {
   public:
    uint32_t get(const Term_* t) const {
      uint64_t id = t->get_id();
      return id < d_count.size() ? d_count[id] : 0;
    }

    void add(const Term_* t, int delta);

   private:
    std::vector<uint32_t> d_count;
  };

  // Whether a term as a root has the polarity-walk clause shape; filled by
  // check_clause. A term's shape never changes, so the memo needs no undo.
  class ShapeMemo {
   public:
    enum class Value : uint8_t { Unknown = 0, No = 1, Yes = 2 };

    Value get(const Term_* t) const {
      uint64_t id = t->get_id();
      return id < d_value.size() ? d_value[id] : Value::Unknown;
    }

    void set(const Term_* t, Value v);

   private:
    std::vector<Value> d_value;
  };

  explicit CnfHelper(TermManager& tm) : d_tm(tm) {}

  Kind kind(const Term_* t) const;

  bool is_atom(const Term_* t) const { return kind(t) == Kind::Atom; }

  // Returns: `t` below its chain of `not`, flipping `negated` once for each.
  const Term_* strip_not(const Term_* t, bool& negated) const;

  // Adds 1 (with `add`) or subtracts 1 from the parent count of every
  // argument of every distinct and/or/not/iff node of `f`.
  void find_parents(const Term_* f, Parents& parents, bool add);

  // Returns: whether `t` can be emitted as clauses with no definition: an
  // iff of two literals, the negation of one, or a term that a walk from
  // positive polarity sees as one disjunction of literals.
  bool check_clause(const Term_* t, ShapeMemo& memo);

 private:
  bool is_literal_iff(const Term_* t) const;
  bool disjunction_shape(const Term_* t, ShapeMemo& memo);

  // Returns: true the first time (t, negative) is met in this walk.
  bool first_visit(const Term_* t, bool negative) {
    return d_seen.test_and_set(2 * t->get_id() + (negative ? 1 : 0));
  }

  TermManager& d_tm;
  // Scratch of the walks, kept to avoid allocating per call.
  std::vector<std::pair<const Term_*, bool>> d_stack;
  std::vector<const Term_*> d_positive;
  WalkMarks d_seen;
};

}  // namespace zenlo

#endif
