// The literal of the theory layer: an atom term with a sign, packed into
// one machine word. Terms are at least word-aligned, so the lowest bit of
// the pointer is free for the sign (set means negated). Theory solvers see
// only these; the TheoryManager translates them to and from the search's
// dpll::Lit.
#ifndef ZENLO_THEORY_THEORYLIT_H
#define ZENLO_THEORY_THEORYLIT_H

#include <cstdint>
#include <functional>

#include "terms/hashtable.h"
#include "terms/term.h"

namespace zenlo {

class TheoryLit {
 public:
  constexpr TheoryLit() : d_bits(0) {}

  explicit TheoryLit(const Term_* atom, bool negated = false)
      : d_bits(reinterpret_cast<uintptr_t>(atom)
               | static_cast<uintptr_t>(negated)) {}

  const Term_* atom() const {
    return reinterpret_cast<const Term_*>(d_bits & ~uintptr_t(1));
  }

  bool negated() const { return (d_bits & 1) != 0; }

  bool is_undef() const { return d_bits == 0; }

  TheoryLit operator~() const { return from_bits(d_bits ^ 1); }

  // Same atom with the given sign.
  TheoryLit with_sign(bool negated) const { return TheoryLit(atom(), negated); }

  uintptr_t bits() const { return d_bits; }

  static TheoryLit from_bits(uintptr_t bits) {
    TheoryLit l;
    l.d_bits = bits;
    return l;
  }

  bool operator==(TheoryLit o) const { return d_bits == o.d_bits; }

  bool operator!=(TheoryLit o) const { return d_bits != o.d_bits; }

  // An order that groups the two signs of an atom and is stable from run
  // to run (by term id, never by address).
  bool operator<(TheoryLit o) const {
    uint64_t a = atom() ? atom()->get_id() : 0;
    uint64_t b = o.atom() ? o.atom()->get_id() : 0;
    return a != b ? a < b : negated() < o.negated();
  }

 private:
  uintptr_t d_bits;
};

// The undefined literal: no atom.
constexpr TheoryLit tlit_Undef{};

namespace hsh {
template <>
struct Hash<TheoryLit> {
  size_t operator()(TheoryLit l) const {
    return l.is_undef() ? 0 : (l.atom()->get_id() << 1) | l.negated();
  }
};
}  // namespace hsh

}  // namespace zenlo

#endif
