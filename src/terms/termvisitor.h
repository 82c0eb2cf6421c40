// The term walk. Every pass over terms in the system instantiates
// TermVisitor: it walks a term depth first with an explicit stack, so
// terms of any depth are walked without touching the call stack, and it
// calls the callback before (preorder) and after (postorder) the children
// of each subterm.
//
// Two bits per term id record "entered" and "finished". With caching on, a
// shared subterm is walked once per walk; with caching off, every
// occurrence is walked. The bits live in scratch state leased from the
// TermManager and are cleared bit by bit at the end of the walk (only those
// this walk set), so a walk over a small term costs nothing in proportion
// to the store.
//
//   struct Count : TermVisitorCallback {
//     VisitResult visit(const Term_* t, bool preorder) override { ... }
//   };
//   Count cb;
//   TermVisitor<Count> v(tm, cb);
//   v.visit(term);
#ifndef ZENLO_TERMS_TERMVISITOR_H
#define ZENLO_TERMS_TERMVISITOR_H

#include <cstdint>
#include <vector>

#include "terms/bitset.h"
#include "terms/term.h"
#include "terms/termmanager.h"

namespace zenlo {

// What the preorder call asks of the walk. The postorder result counts
// only when it is Abort.
enum class VisitResult {
  Abort = 0,    // stop the whole walk
  Skip = 1,     // treat the term as a leaf: children are not walked
  Process = 2,  // walk the children
};

class TermVisitorCallback {
 public:
  virtual ~TermVisitorCallback() = default;

  virtual VisitResult visit(const Term_* /*term*/, bool /*preorder*/) {
    return VisitResult::Process;
  }
};

// Scratch of one walk: the entered/finished bits by id (bit 2*id finished,
// bit 2*id+1 entered), the stack, and the ids whose bits were set.
struct VisitScratch {
  BitSet bits;
  std::vector<const Term_*> stack;
  std::vector<uint64_t> touched;
};

template <class Callback>
class TermVisitor {
 public:
  // Requires: `cb` outlives the visitor.
  TermVisitor(TermManager& tm, Callback& cb, bool caching = true)
      : d_tm(tm),
        d_cb(cb),
        d_caching(caching),
        d_s(tm.acquire_visit_scratch()) {}

  ~TermVisitor() {
    clear_bits();
    d_tm.release_visit_scratch(d_s);
  }

  TermVisitor(const TermVisitor&) = delete;
  TermVisitor& operator=(const TermVisitor&) = delete;

  // Walks `term`. Without `clear_cache`, terms finished by this walk stay
  // finished for the next visit() of this visitor (with caching on), so
  // several roots can share one walk.
  // Returns: false when the callback aborted the walk.
  bool visit(const Term_* term, bool clear_cache = true) {
    bool done;
    try {
      done = walk(term);
    } catch (...) {
      clear_bits();
      throw;
    }
    if (clear_cache || !done) {
      clear_bits();
    }
    return done;
  }

 private:
  bool finished(uint64_t id) const { return d_s->bits.get(2 * id); }

  bool entered(uint64_t id) const { return d_s->bits.get(2 * id + 1); }

  void mark(size_t bit) {
    if (bit >= d_s->bits.capacity()) {
      d_s->bits.ensure(bit + 1);
    }
    d_s->bits.set(bit);
  }

  bool walk(const Term_* root) {
    std::vector<const Term_*>& stack = d_s->stack;
    stack.clear();
    stack.push_back(root);
    while (!stack.empty()) {
      const Term_* t = stack.back();
      uint64_t id = t->get_id();
      if (d_caching && finished(id)) {
        stack.pop_back();
        continue;
      }
      if (!entered(id)) {
        if (!finished(id)) {
          d_s->touched.push_back(id);
        }
        mark(2 * id + 1);
        VisitResult r = d_cb.visit(t, true);
        if (r == VisitResult::Abort) {
          return false;
        }
        if (r == VisitResult::Process && push_children(t)) {
          continue;
        }
      }
      stack.pop_back();
      mark(2 * id);
      if (!d_caching) {
        d_s->bits.clear(2 * id + 1);
      }
      if (d_cb.visit(t, false) == VisitResult::Abort) {
        return false;
      }
    }
    return true;
  }

  // Pushes the children in argument order, so the last is walked first.
  // Returns: whether any was pushed.
  bool push_children(const Term_* t) {
    bool pushed = false;
    for (const Term_* c : *t) {
      if (!d_caching || !finished(c->get_id())) {
        d_s->stack.push_back(c);
        pushed = true;
      }
    }
    return pushed;
  }

  // Clears exactly the bits this visitor set, leaving the shared scratch
  // all zero for the next walk.
  void clear_bits() {
    for (uint64_t id : d_s->touched) {
      d_s->bits.clear(2 * id);
      d_s->bits.clear(2 * id + 1);
    }
    d_s->touched.clear();
    d_s->stack.clear();
  }

  TermManager& d_tm;
  Callback& d_cb;
  bool d_caching;
  VisitScratch* d_s;
};

}  // namespace zenlo

#endif
