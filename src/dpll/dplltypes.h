// The atoms of the CDCL engine: variables, literals and three-valued truth.
//
// A variable is an index from 0. A literal packs a variable and a sign into
// one 32-bit integer, `2 * var + sign`, sign 1 meaning negated, so that
// negation is `lit ^ 1` and a literal indexes per-literal tables directly.
//
// lbool stores the truth value of a variable in one byte: 0 true, 1 false,
// 2 undefined. The value of a literal is the stored value of its variable
// with its low bit flipped by the literal's sign, so evaluating a literal is
// one load and one xor; an undefined value stays undefined (2 or 3) under
// the flip, which is why equality with l_Undef looks at bit 1 only.
#ifndef ZENLO_DPLL_DPLLTYPES_H
#define ZENLO_DPLL_DPLLTYPES_H

#include <cstdint>

namespace zenlo {

class lbool {
 public:
  constexpr lbool() : d_value(2) {}

  constexpr explicit lbool(uint8_t v) : d_value(v) {}

  constexpr static lbool from_bool(bool b) { return lbool(b ? 0 : 1); }

  // Undefined values compare equal whatever their low bit.
  constexpr bool operator==(lbool o) const {
    return (d_value & 2) ? (o.d_value & 2) != 0 : d_value == o.d_value;
  }

  constexpr bool operator!=(lbool o) const { return !(*this == o); }

  // Flips a defined value when `b` holds.
  constexpr lbool operator^(bool b) const {
    return lbool(static_cast<uint8_t>(d_value ^ static_cast<uint8_t>(b)));
  }

  constexpr bool is_undef() const { return (d_value & 2) != 0; }

  constexpr uint8_t raw() const { return d_value; }

 private:
  uint8_t d_value;
};

constexpr lbool l_True{0};
constexpr lbool l_False{1};
constexpr lbool l_Undef{2};

namespace dpll {

using Var = int32_t;
using Lit = int32_t;

constexpr Var var_Undef = -1;
constexpr Lit lit_Undef = -2;
constexpr Lit lit_Error = -1;

inline constexpr Lit mk_lit(Var v, bool negated = false) {
  return 2 * v + static_cast<int>(negated);
}

inline constexpr Var var(Lit p) {
  return p >> 1;
}

inline constexpr bool sign(Lit p) {
  return (p & 1) != 0;
}

// Raw byte values of the per-variable tables.
constexpr uint8_t kValTrue = 0;
constexpr uint8_t kValFalse = 1;
constexpr uint8_t kValUndef = 2;
// A cached phase that a random decision invalidated.
constexpr uint8_t kPhaseInvalid = 4;

}  // namespace dpll
}  // namespace zenlo

#endif
