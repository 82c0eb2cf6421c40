// arr::ArraySolverLOD: arrays by lemmas on demand (mode 1). Where the walk
// engine looks, for each read, for the reads its weak equivalence meets,
// this one propagates every read through the arrays of the current model
// at once: a read a[i] enters a table under (array, value of i) at a, and
// spreads from there across writes at other index values (down to the
// base, up to writes on it) and across EUF's classes of arrays. Two reads
// that meet under one (array, index value) with different values, or a
// read that reaches a constant array of another value, are a conflict in
// the model; the lemma that refines it holds the two reads' equality (or
// the read's and the constant's), their index equality, and the chain of
// each: the index disjuncts of the writes it crossed and EUF's reasons for
// the array equalities.
//
// Each told equality between arrays that the model makes false gets its
// extensionality instance, over a witness index of its own; the witness
// reads then spread like any other, but only while the model keeps the
// arrays apart (when it does not, their values are free, and the model
// leaves them out).
//
// The rest (bookkeeping, write and constant-array instances, the
// extensionality instances for arrays EUF keeps apart without an atom,
// models) is the walk engine's.
#ifndef ZENLO_THEORY_ARR_ARRSOLVERLOD_H
#define ZENLO_THEORY_ARR_ARRSOLVERLOD_H

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "theory/arr/arrsolver.h"

namespace zenlo {
namespace arr {

class ArraySolverLOD : public Solver {
 public:
  // Requires: every argument outlives the solver.
  ArraySolverLOD(TermManager* tm,
                 euf::Solver* euf,
                 const Configuration::Theory::Arr* config);

  bool tell_atom(const Term_* atom) override;
  void retract_atom(const Term_* atom) override;

 protected:
  bool generate_row_lemmas() override;

  bool read_in_model(const Term_* r) const override {
    return witness_needed(r);
  }

 private:
  // How a read reached an array: from its own array (Init), from a write
  // to its base (Down), from a base to a write on it (Up), or across an
  // equality of arrays (Eq). `from` is the item it came from.
  enum class Step : uint8_t { Init, Down, Up, Eq };

  struct Item {
    const Term_* read;
    const Term_* array;
    int32_t from;
    Step step;
  };

  struct PairHash {
    size_t operator()(const std::pair<const Term_*, const Term_*>& k) const {
      return std::hash<uint64_t>()((k.first->get_id() << 32)
                                   ^ k.second->get_id());
    }
  };

  // Spreads read `r` from its array; returns false when it met a conflict
  // (and queued its lemma).
  bool propagate(const Term_* r);
  void add_chain(int32_t item, Lemma& lemma);
  void queue_ext(const Term_* eq);
  bool witness_needed(const Term_* r) const;

  // The told equalities between arrays; the equality each witness read
  // belongs to, and each equality's two witness reads.
  std::vector<const Term_*> d_array_eqs;
  TermMap d_witness_of;
  hsh::HashMap<const Term_*, std::pair<const Term_*, const Term_*>>
      d_witness_reads;

  // Per check.
  std::vector<Item> d_items;
  std::unordered_map<std::pair<const Term_*, const Term_*>, int32_t, PairHash>
      d_table;
  std::vector<int32_t> d_queue;
  std::unordered_set<ExtKey, ExtKeyHash> d_ext_pairs;
};

}  // namespace arr
}  // namespace zenlo

#endif
