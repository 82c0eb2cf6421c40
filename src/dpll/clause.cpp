#include "dpll/clause.h"

#include <cstdlib>
#include <new>
#include <string>

#include "base/exception.h"

namespace zenlo {
namespace dpll {

Clause* Clause::create(bool extended,
                       int id,
                       const Lit* lits,
                       uint32_t size,
                       bool learnt,
                       bool theory) {
  if (size > kMaxSize) {
    throw Exception("max clause size exceeded (size: " + std::to_string(size)
                    + ", max: " + std::to_string(kMaxSize) + ")");
  }
  size_t words = size + 4 + (extended ? 2 : 0);
  void* mem = std::malloc(words * sizeof(uint32_t));
  if (mem == nullptr) {
    throw std::bad_alloc();
  }
  Clause* c = static_cast<Clause*>(mem);
  uint32_t* w = c->d_words;
  w[0] = size;
  if (size > 0) {
    std::memcpy(w + 1, lits, size * sizeof(Lit));
  }
  w[size + 1] = (static_cast<uint32_t>(id) << 1) | (extended ? 1u : 0u);
  w[size + 2] = 1u | (learnt ? kLearntBit : 0u) | (theory ? kTheoryBit : 0u);
  if (learnt) {
    c->set_activity(0.0f);
  } else {
    c->compute_abstraction();
  }
  if (extended) {
    w[size + 4] = 0;
    w[size + 5] = static_cast<uint32_t>(var_Undef);
  }
  return c;
}

Clause* Clause::create_placeholder() {
  return create(false, -1, nullptr, 0, false, false);
}

void Clause::destroy(Clause* c) {
  std::free(c);
}

void Clause::compute_abstraction(Var skip) {
  uint32_t abs = 0;
  for (Lit p : *this) {
    if (var(p) != skip) {
      abs |= 1u << (var(p) & 31);
    }
  }
  d_words[size() + 3] = abs;
}

bool Clause::contains(Lit p) const {
  for (Lit q : *this) {
    if (q == p) {
      return true;
    }
  }
  return false;
}

}  // namespace dpll
}  // namespace zenlo
