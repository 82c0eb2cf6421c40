// The memory of all terms: one hash table of nodes plus a pool per small
// arity. Making a term probes the table with a scratch node; only a miss
// allocates, so finding an existing term costs one hash probe and no
// allocation at all.
//
// The bank sorts nothing and checks nothing: the TermManager in front of it
// checks types and arity and applies the simplifier; the bank only shares.
#ifndef ZENLO_TERMS_TERMBANK_H
#define ZENLO_TERMS_TERMBANK_H

#include <cstdint>
#include <vector>

#include "terms/bitset.h"
#include "terms/hashtable.h"
#include "terms/memorypool.h"
#include "terms/term.h"

namespace zenlo {

class TermBank {
 public:
  TermBank();
  ~TermBank();
  TermBank(const TermBank&) = delete;
  TermBank& operator=(const TermBank&) = delete;

  // Requires: n is the arity of `symbol` and each child is a term of this
  // bank.
  // Returns: the unique term symbol(children); a new one gets the next id.
  const Term_* make_term(const Symbol* symbol,
                         const Term_* const* children,
                         size_t n);

  size_t size() const { return d_table.size(); }

  // Returns: the id the next new term will get.
  uint64_t next_id() const { return d_next_id; }

  // After: every term whose id is not set in `marked` is freed, in
  // descending id order, and the id counter is one past the largest
  // surviving id.
  void remove_unseen(const BitSet& marked);

  // Returns: the term with that id, or null. A scan: for diagnostics only.
  const Term_* find_by_id(uint64_t id) const;

 private:
  struct NodeHash {
    size_t operator()(const Term_* t) const;
  };

  struct NodeEq {
    bool operator()(const Term_* a, const Term_* b) const;
  };

  Term_* allocate(size_t arity);
  void release(Term_* t);

  static constexpr size_t kPooledArities = 4;

  MemoryPool d_pools[kPooledArities];
  hsh::Hashtable<Term_*, Term_*, hsh::Identity, NodeHash, NodeEq> d_table;
  // The probe node of make_term; grows with the largest arity seen.
  std::vector<uintptr_t> d_probe;
  uint64_t d_next_id = 1;
};

}  // namespace zenlo

#endif
