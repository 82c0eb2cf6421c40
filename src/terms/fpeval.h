// IEEE 754 operations on IEEEFloat values, correctly rounded, for folding
// floating-point constants at construction time and for evaluating them
// in models. Finite operands are computed exactly as rationals and then
// rounded once by IEEEFloat, so results are exact by construction; the
// special cases (NaN, infinities, signed zeros) are decided before.
//
// The rational path costs memory in the exponent range: a float of
// exponent width e may stand for a number of about 2^(e-1) bits. Callers
// fold only formats up to kMaxFoldExpWidth, which covers every format in
// common use (binary16 to binary128) with room to spare.
#ifndef ZENLO_TERMS_FPEVAL_H
#define ZENLO_TERMS_FPEVAL_H

#include "terms/ieeefloat.h"
#include "terms/numbers.h"
#include "terms/symboltag.h"

namespace zenlo {
namespace termsimpl {

constexpr size_t kMaxFoldExpWidth = 20;

// Returns: whether values of this format may be computed with here.
bool fp_foldable_format(size_t exp_w, size_t mant_w);

// The result of a comparison: below, equal, above, or unordered (a NaN).
enum class FpOrder { Less, Equal, Greater, Unordered };

// - Returns: the order of a and b; +0 and -0 are equal.
// - Requires: a and b of one format.
FpOrder fp_compare(const IEEEFloat& a, const IEEEFloat& b);

IEEEFloat fp_negate(const IEEEFloat& a);
IEEEFloat fp_absolute(const IEEEFloat& a);

// - Requires: op one of FP_ADD, FP_SUB, FP_MUL, FP_DIV; a and b of one
//   foldable format.
// - Returns: a op b rounded by `mode`.
IEEEFloat fp_eval_bin_op(SymbolTag::tag op,
                         RoundingMode mode,
                         const IEEEFloat& a,
                         const IEEEFloat& b);

IEEEFloat fp_eval_sqrt(RoundingMode mode, const IEEEFloat& a);

// The integral value nearest to a by `mode`, in a's format.
IEEEFloat fp_eval_round_to_int(RoundingMode mode, const IEEEFloat& a);

// The value of a in another format, rounded by `mode`.
IEEEFloat fp_eval_cast(IEEEFloat::Format to,
                       RoundingMode mode,
                       const IEEEFloat& a);

// Rounds the rational x to an integer by `mode`.
QNumber round_rational(const QNumber& x, RoundingMode mode);

}  // namespace termsimpl
}  // namespace zenlo

#endif
