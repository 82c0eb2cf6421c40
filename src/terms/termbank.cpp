#include "terms/termbank.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace zenlo {

namespace {

constexpr size_t kWord = sizeof(void*);
constexpr size_t kFirstBlock = 1024;

size_t node_bytes(size_t arity) {
  return (2 + arity) * kWord;
}

}  // namespace

// The fold h ^= (h >> 2) + (h << 6) + id, started from the symbol's id.
// Ids are small and dense, and folded as they are they collide massively:
// the applications of one binary symbol to the first 4096 x 245 pairs of
// ids share about 20,000 hash values, so chains of equal hashes formed and
// every probe dereferenced dozens of nodes. Spreading each child id over
// the word by a multiplication with an odd constant first makes the hashes
// of such pairs all distinct.
size_t TermBank::NodeHash::operator()(const Term_* t) const {
  constexpr size_t kSpread = 0x9e3779b97f4a7c15ull;
  size_t h = t->get_symbol()->get_id();
  for (const Term_* c : *t) {
    h ^= (h >> 2) + (h << 6) + c->get_id() * kSpread;
  }
  return h;
}

bool TermBank::NodeEq::operator()(const Term_* a, const Term_* b) const {
  if (a->get_symbol() != b->get_symbol()) {
    return false;
  }
  // Children are hash-consed, so equal ids mean equal pointers.
  size_t n = a->get_arity();
  for (size_t i = 0; i < n; ++i) {
    if (a->get_child(i) != b->get_child(i)) {
      return false;
    }
  }
  return true;
}

TermBank::TermBank()
    : d_pools{MemoryPool(node_bytes(0), kFirstBlock, 1.0, 0),
              MemoryPool(node_bytes(1), kFirstBlock, 1.0, 0),
              MemoryPool(node_bytes(2), kFirstBlock, 1.0, 0),
              MemoryPool(node_bytes(3), kFirstBlock, 1.0, 0)},
      d_probe(2 + 8, 0) {}

TermBank::~TermBank() {
  // Pooled nodes go with their pools; only the wide ones were allocated
  // one by one.
  for (Term_* t : d_table) {
    if (t->get_arity() >= kPooledArities) {
      std::free(t);
    }
  }
}

Term_* TermBank::allocate(size_t arity) {
  if (arity < kPooledArities) {
    return static_cast<Term_*>(d_pools[arity].allocate());
  }
  void* p = std::malloc(node_bytes(arity));
  if (p == nullptr) {
    throw std::bad_alloc();
  }
  return static_cast<Term_*>(p);
}

void TermBank::release(Term_* t) {
  size_t arity = t->get_arity();
  if (arity < kPooledArities) {
    d_pools[arity].deallocate(t);
  } else {
    std::free(t);
  }
}

const Term_* TermBank::make_term(const Symbol* symbol,
                                 const Term_* const* children,
                                 size_t n) {
  if (d_probe.size() < 2 + n) {
    d_probe.resize(2 + n);
  }
  Term_* probe = new (d_probe.data()) Term_(0, symbol);
  if (n > 0) {
    std::memcpy(probe->children(), children, n * kWord);
  }
  size_t h = NodeHash()(probe);
  auto it = d_table.find_hashed(probe, h);
  if (it != d_table.end()) {
    return *it;
  }
  Term_* t = allocate(n);
  std::memcpy(static_cast<void*>(t), probe, node_bytes(n));
  t->d_id = d_next_id++;
  d_table.insert_new(t, h);
  return t;
}

void TermBank::remove_unseen(const BitSet& marked) {
  std::vector<Term_*> dead;
  uint64_t max_id = 0;
  d_table.erase_if([&](Term_* t) {
    if (marked.get(t->get_id())) {
      max_id = std::max(max_id, t->get_id());
      return false;
    }
    dead.push_back(t);
    return true;
  });
  std::sort(dead.begin(), dead.end(), [](const Term_* a, const Term_* b) {
    return a->get_id() > b->get_id();
  });
  for (Term_* t : dead) {
    release(t);
  }
  d_next_id = max_id + 1;
}

const Term_* TermBank::find_by_id(uint64_t id) const {
  for (const Term_* t : d_table) {
    if (t->get_id() == id) {
      return t;
    }
  }
  return nullptr;
}

}  // namespace zenlo
