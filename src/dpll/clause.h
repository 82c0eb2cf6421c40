// The clause of the CDCL engine: one malloc'd block of 32-bit words, so that
// the header, the literals and the activity share cache lines.
//
//   word 0          bits 0-23 size, bits 24-31 LBD (saturated at 255)
//   1 .. size       the literals; the first two are the watched ones
//   size + 1        bit 0 extended flag, bits 1-31 clause id
//   size + 2        bits 0-29 reference count, bit 30 learnt, bit 31 theory
//   size + 3        learnt: activity (float); otherwise: abstraction, the OR
//                   of 1 << (var & 31) over the literals
//   size + 4        extended only: preprocessor state word
//   size + 5        extended only: guard variable of a backtrack point, or -1
//
// The reference count starts at 1, the reference of the clause database.
// Whoever keeps a clause alive beyond its removal (conflict analysis holding
// the conflict, a proof holding a hypothesis) takes a hold with retain() and
// gives it back with release(), which frees the block at zero.
#ifndef ZENLO_DPLL_CLAUSE_H
#define ZENLO_DPLL_CLAUSE_H

#include <cstdint>
#include <cstring>
#include <vector>

#include "dpll/dplltypes.h"

namespace zenlo {
namespace dpll {

class Clause {
 public:
  static constexpr uint32_t kMaxSize = 0xffffff;

  // Returns: a new clause holding one reference.
  // Throws zenlo::Exception when `size` exceeds kMaxSize.
  static Clause* create(bool extended,
                        int id,
                        const Lit* lits,
                        uint32_t size,
                        bool learnt,
                        bool theory);

  uint32_t size() const { return d_words[0] & kMaxSize; }

  unsigned lbd() const { return d_words[0] >> 24; }

  void set_lbd(unsigned lbd) {
    d_words[0] = (d_words[0] & kMaxSize) | ((lbd > 255 ? 255u : lbd) << 24);
  }

  Lit* lits() { return reinterpret_cast<Lit*>(d_words + 1); }

  const Lit* lits() const { return reinterpret_cast<const Lit*>(d_words + 1); }

  Lit& operator[](uint32_t i) { return lits()[i]; }

  Lit operator[](uint32_t i) const { return lits()[i]; }

  Lit* begin() { return lits(); }

  Lit* end() { return lits() + size(); }

  const Lit* begin() const { return lits(); }

  const Lit* end() const { return lits() + size(); }

  bool extended() const { return (d_words[size() + 1] & 1) != 0; }

  // Arithmetic shift, so that the placeholder's id reads as -1.
  int id() const { return static_cast<int32_t>(d_words[size() + 1]) >> 1; }

  uint32_t refcount() const { return d_words[size() + 2] & kRefMask; }

  void retain() { ++d_words[size() + 2]; }

  // Drops one reference; frees the clause when none is left.
  static void release(Clause* c) {
    if ((--c->d_words[c->size() + 2] & kRefMask) == 0) {
      destroy(c);
    }
  }

  bool learnt() const { return (d_words[size() + 2] & kLearntBit) != 0; }

  void set_learnt(bool b) { set_bit(kLearntBit, b); }

  bool theory() const { return (d_words[size() + 2] & kTheoryBit) != 0; }

  void set_theory(bool b) { set_bit(kTheoryBit, b); }

  float activity() const {
    float f;
    std::memcpy(&f, &d_words[size() + 3], sizeof f);
    return f;
  }

  void set_activity(float f) { std::memcpy(&d_words[size() + 3], &f, 4); }

  uint32_t abstraction() const { return d_words[size() + 3]; }

  void compute_abstraction(Var skip = var_Undef);

  uint32_t& preprocessor_state() { return d_words[size() + 4]; }

  Var guard() const {
    return extended() ? static_cast<Var>(d_words[size() + 5]) : var_Undef;
  }

  // Requires: extended().
  void set_guard(Var v) { d_words[size() + 5] = static_cast<uint32_t>(v); }

  bool contains(Lit p) const;

  // The placeholder of lazy theory reasons: no literals, id -1 in its 31 bits.
  static Clause* create_placeholder();

 private:
  static constexpr uint32_t kRefMask = (1u << 30) - 1;
  static constexpr uint32_t kLearntBit = 1u << 30;
  static constexpr uint32_t kTheoryBit = 1u << 31;

  static void destroy(Clause* c);

  void set_bit(uint32_t bit, bool b) {
    if (b) {
      d_words[size() + 2] |= bit;
    } else {
      d_words[size() + 2] &= ~bit;
    }
  }

  Clause() = default;

  uint32_t d_words[1];
};

inline Clause* Clause_new(bool extended,
                          int id,
                          const std::vector<Lit>& lits,
                          bool learnt,
                          bool theory) {
  return Clause::create(extended,
                        id,
                        lits.data(),
                        static_cast<uint32_t>(lits.size()),
                        learnt,
                        theory);
}

}  // namespace dpll
}  // namespace zenlo

#endif
