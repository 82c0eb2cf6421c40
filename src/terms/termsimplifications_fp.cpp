// Floating-point operations on numbers under a constant rounding mode fold
// through IEEEFloat (fpeval.h); every other application is built as it is.
// What IEEE 754 leaves open stays a term, for the theory and the model
// layer to decide by their options: the conversions to bit-vectors of a
// value out of range (or NaN, or infinite), and min and max of two zeros
// of different signs.
#include <optional>

#include "terms/fpeval.h"
#include "terms/termsimplifications_impl.h"

namespace zenlo {
namespace termsimpl {

namespace {

using Fp = std::optional<IEEEFloat>;

// - Returns: the value of a floating-point number term, when its format
//   may be computed with (`arith`: by rationals, which bounds the
//   exponent width; else by bit patterns only).
Fp fp_get_number(const TermManager& tm, const Term_* t, bool arith = true) {
  size_t e = 0, m = 0;
  QNumber bits;
  if (!tm.is_fp_type(t->get_type(), &e, &m) || !num_value(tm, t, bits)) {
    return std::nullopt;
  }
  bool ok = arith ? fp_foldable_format(e, m)
                  : e >= 2 && e <= IEEEFloat::kMaxExpWidth && m >= 1;
  if (!ok) {
    return std::nullopt;
  }
  return IEEEFloat::from_bits(IEEEFloat::Format{e, m}, bits);
}

bool rounding_of(const TermManager& tm, const Term_* t, RoundingMode& mode) {
  for (int k = 0; k < 4; ++k) {
    if (t->get_symbol()
        == tm.get_rounding_symbol(static_cast<RoundingMode>(k))) {
      mode = static_cast<RoundingMode>(k);
      return true;
    }
  }
  return false;
}

const Term_* fp_term(TermManager& tm, const IEEEFloat& f) {
  return tm.make_fp_bits_number(
      f.get_bits(), f.format().exp_w, f.format().mant_w);
}

// A folding: the arguments in, the folded term out, or null to keep the
// application.
using FpFold = const Term_* (*)(TermManager& tm,
                                const Symbol* s,
                                const TermList& args);

class FpFoldSimpl : public SimplFun {
 public:
  explicit FpFoldSimpl(FpFold fold) : d_fold(fold) {}

  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    if (const Term_* r = d_fold(tm, s, args)) {
      return r;
    }
    return tm.do_make_term(s, args);
  }

 private:
  FpFold d_fold;
};

// ---- Rounded arithmetic -----------------------------------------------

const Term_* fold_bin_op(TermManager& tm,
                         const Symbol* s,
                         const TermList& args) {
  RoundingMode mode;
  Fp a = fp_get_number(tm, args[1]);
  Fp b = a ? fp_get_number(tm, args[2]) : std::nullopt;
  if (!b || !rounding_of(tm, args[0], mode)) {
    return nullptr;
  }
  return fp_term(tm, fp_eval_bin_op(tm.get_tag(s), mode, *a, *b));
}

const Term_* fold_sqrt(TermManager& tm,
                       const Symbol* /*s*/,
                       const TermList& args) {
  RoundingMode mode;
  Fp a = fp_get_number(tm, args[1]);
  if (!a || !rounding_of(tm, args[0], mode)) {
    return nullptr;
  }
  return fp_term(tm, fp_eval_sqrt(mode, *a));
}

const Term_* fold_round_to_int(TermManager& tm,
                               const Symbol* /*s*/,
                               const TermList& args) {
  RoundingMode mode;
  Fp a = fp_get_number(tm, args[1]);
  if (!a || !rounding_of(tm, args[0], mode)) {
    return nullptr;
  }
  return fp_term(tm, fp_eval_round_to_int(mode, *a));
}

const Term_* fold_cast(TermManager& tm, const Symbol* s, const TermList& args) {
  RoundingMode mode;
  const FamilyKey* k = tm.get_family_key(s);
  Fp a = fp_get_number(tm, args[1]);
  if (!a || !rounding_of(tm, args[0], mode)
      || !fp_foldable_format(k->n[2], k->n[3])) {
    return nullptr;
  }
  IEEEFloat::Format to{k->n[2], k->n[3]};
  return fp_term(tm, fp_eval_cast(to, mode, *a));
}

// ---- Sign, min and max -------------------------------------------------

// The negation of a NaN is a NaN: the argument itself serves.
const Term_* fold_neg(TermManager& tm,
                      const Symbol* /*s*/,
                      const TermList& args) {
  Fp a = fp_get_number(tm, args[0], false);
  if (!a) {
    return nullptr;
  }
  return a->is_nan() ? args[0] : fp_term(tm, fp_negate(*a));
}

const Term_* fold_abs(TermManager& tm,
                      const Symbol* /*s*/,
                      const TermList& args) {
  Fp a = fp_get_number(tm, args[0], false);
  if (!a) {
    return nullptr;
  }
  return a->is_nan() ? args[0] : fp_term(tm, fp_absolute(*a));
}

// min and max return the other operand for a NaN, whatever it is; two
// zeros of different signs are left open.
const Term_* fold_min_max(TermManager& tm,
                          const Symbol* s,
                          const TermList& args) {
  if (is_fp_nan_number(tm, args[0]) || is_fp_nan_number(tm, args[1])) {
    return is_fp_nan_number(tm, args[0]) ? args[1] : args[0];
  }
  Fp a = fp_get_number(tm, args[0], false);
  Fp b = a ? fp_get_number(tm, args[1], false) : std::nullopt;
  if (!b
      || (a->is_zero() && b->is_zero()
          && a->is_negative() != b->is_negative())) {
    return nullptr;
  }
  bool a_less = fp_compare(*a, *b) == FpOrder::Less;
  bool is_min = tm.get_tag(s) == SymbolTag::FP_MIN;
  return a_less == is_min ? args[0] : args[1];
}

// ---- Comparison and classification -------------------------------------

const Term_* fold_compare(TermManager& tm,
                          const Symbol* s,
                          const TermList& args) {
  Fp a = fp_get_number(tm, args[0], false);
  Fp b = a ? fp_get_number(tm, args[1], false) : std::nullopt;
  if (!b) {
    return nullptr;
  }
  FpOrder o = fp_compare(*a, *b);
  switch (tm.get_tag(s)) {
    case SymbolTag::FP_EQ: return bool_term(tm, o == FpOrder::Equal);
    case SymbolTag::FP_LT: return bool_term(tm, o == FpOrder::Less);
    default: return bool_term(tm, o == FpOrder::Less || o == FpOrder::Equal);
  }
}

const Term_* fold_classify(TermManager& tm,
                           const Symbol* s,
                           const TermList& args) {
  Fp a = fp_get_number(tm, args[0], false);
  if (!a) {
    return nullptr;
  }
  switch (tm.get_tag(s)) {
    case SymbolTag::FP_ISNAN: return bool_term(tm, a->is_nan());
    case SymbolTag::FP_ISINF: return bool_term(tm, a->is_inf());
    case SymbolTag::FP_ISZERO: return bool_term(tm, a->is_zero());
    case SymbolTag::FP_ISSUBNORMAL: return bool_term(tm, a->is_subnormal());
    case SymbolTag::FP_ISNORMAL: return bool_term(tm, a->is_normal());
    case SymbolTag::FP_ISNEG:
      return bool_term(tm, !a->is_nan() && a->is_negative());
    default: return bool_term(tm, !a->is_nan() && !a->is_negative());
  }
}

// ---- Conversions -------------------------------------------------------

// Rounds to an integer first, then checks the range: a value that rounds
// into range converts, everything else is left open.
const Term_* fold_to_bv(TermManager& tm,
                        const Symbol* s,
                        const TermList& args) {
  RoundingMode mode;
  Fp a = fp_get_number(tm, args[1]);
  if (!a || a->is_nan() || a->is_inf() || !rounding_of(tm, args[0], mode)) {
    return nullptr;
  }
  size_t w = tm.get_family_key(s)->n[2];
  QNumber r =
      a->is_zero() ? QNumber(0L) : round_rational(a->to_rational(), mode);
  bool is_signed = tm.get_tag(s) == SymbolTag::FP_TO_SBV;
  QNumber lo = is_signed ? BVNumber::pow2(w - 1).neg() : QNumber(0L);
  QNumber hi = is_signed ? BVNumber::pow2(w - 1) : BVNumber::pow2(w);
  if (r < lo || r >= hi) {
    return nullptr;
  }
  return tm.make_bv_number(BVNumber::twos_complement(r, w), w);
}

const Term_* fold_from_bv(TermManager& tm,
                          const Symbol* s,
                          const TermList& args) {
  RoundingMode mode;
  QNumber v;
  const FamilyKey* k = tm.get_family_key(s);
  if (!num_value(tm, args[1], v) || !rounding_of(tm, args[0], mode)
      || !fp_foldable_format(k->n[1], k->n[2])) {
    return nullptr;
  }
  if (tm.get_tag(s) == SymbolTag::FP_FROM_SBV) {
    v = BVNumber::to_signed(v, k->n[0]);
  }
  return fp_term(tm, IEEEFloat(IEEEFloat::Format{k->n[1], k->n[2]}, v, mode));
}

const Term_* fold_as_ieeebv(TermManager& tm,
                            const Symbol* /*s*/,
                            const TermList& args) {
  size_t e = 0, m = 0;
  QNumber bits;
  if (!num_value(tm, args[0], bits)
      || !tm.is_fp_type(args[0]->get_type(), &e, &m)) {
    return nullptr;
  }
  return tm.make_bv_number(bits, e + m + 1);
}

const Term_* fold_from_ieeebv(TermManager& tm,
                              const Symbol* s,
                              const TermList& args) {
  QNumber bits;
  const FamilyKey* k = tm.get_family_key(s);
  if (!num_value(tm, args[0], bits)) {
    return nullptr;
  }
  return tm.make_fp_bits_number(bits, k->n[0], k->n[1]);
}

#define ZENLO_FP_SIMPL(Name, fold) \
  struct Name : FpFoldSimpl {      \
    Name() : FpFoldSimpl(fold) {}  \
  };

ZENLO_FP_SIMPL(FpAddSimpl, fold_bin_op)
ZENLO_FP_SIMPL(FpSubSimpl, fold_bin_op)
ZENLO_FP_SIMPL(FpMulSimpl, fold_bin_op)
ZENLO_FP_SIMPL(FpDivSimpl, fold_bin_op)
ZENLO_FP_SIMPL(FpSqrtSimpl, fold_sqrt)
ZENLO_FP_SIMPL(FpRoundToIntSimpl, fold_round_to_int)
ZENLO_FP_SIMPL(FpNegSimpl, fold_neg)
ZENLO_FP_SIMPL(FpAbsSimpl, fold_abs)
ZENLO_FP_SIMPL(FpMinSimpl, fold_min_max)
ZENLO_FP_SIMPL(FpMaxSimpl, fold_min_max)
ZENLO_FP_SIMPL(FpCastSimpl, fold_cast)
ZENLO_FP_SIMPL(FpEqSimpl, fold_compare)
ZENLO_FP_SIMPL(FpLtSimpl, fold_compare)
ZENLO_FP_SIMPL(FpLeSimpl, fold_compare)
ZENLO_FP_SIMPL(FpToSBvSimpl, fold_to_bv)
ZENLO_FP_SIMPL(FpToUBvSimpl, fold_to_bv)
ZENLO_FP_SIMPL(FpFromSBvSimpl, fold_from_bv)
ZENLO_FP_SIMPL(FpFromUBvSimpl, fold_from_bv)
ZENLO_FP_SIMPL(FpAsIEEEBvSimpl, fold_as_ieeebv)
ZENLO_FP_SIMPL(FpFromIEEEBvSimpl, fold_from_ieeebv)
ZENLO_FP_SIMPL(FpIsNaNSimpl, fold_classify)
ZENLO_FP_SIMPL(FpIsInfSimpl, fold_classify)
ZENLO_FP_SIMPL(FpIsZeroSimpl, fold_classify)
ZENLO_FP_SIMPL(FpIsSubnormalSimpl, fold_classify)
ZENLO_FP_SIMPL(FpIsNormalSimpl, fold_classify)
ZENLO_FP_SIMPL(FpIsNegSimpl, fold_classify)
ZENLO_FP_SIMPL(FpIsPosSimpl, fold_classify)

#undef ZENLO_FP_SIMPL

}  // namespace

void register_fp_simplifications(StdTermSimplifier& s) {
  using T = SymbolTag;
  s.register_simplification(T::FP_ADD, new FpAddSimpl());
  s.register_simplification(T::FP_SUB, new FpSubSimpl());
  s.register_simplification(T::FP_MUL, new FpMulSimpl());
  s.register_simplification(T::FP_DIV, new FpDivSimpl());
  s.register_simplification(T::FP_SQRT, new FpSqrtSimpl());
  s.register_simplification(T::FP_ROUND_TO_INT, new FpRoundToIntSimpl());
  s.register_simplification(T::FP_NEG, new FpNegSimpl());
  s.register_simplification(T::FP_ABS, new FpAbsSimpl());
  s.register_simplification(T::FP_MIN, new FpMinSimpl());
  s.register_simplification(T::FP_MAX, new FpMaxSimpl());
  s.register_simplification(T::FP_CAST, new FpCastSimpl());
  s.register_simplification(T::FP_EQ, new FpEqSimpl());
  s.register_simplification(T::FP_LT, new FpLtSimpl());
  s.register_simplification(T::FP_LE, new FpLeSimpl());
  s.register_simplification(T::FP_TO_SBV, new FpToSBvSimpl());
  s.register_simplification(T::FP_TO_UBV, new FpToUBvSimpl());
  s.register_simplification(T::FP_FROM_SBV, new FpFromSBvSimpl());
  s.register_simplification(T::FP_FROM_UBV, new FpFromUBvSimpl());
  s.register_simplification(T::FP_AS_IEEEBV, new FpAsIEEEBvSimpl());
  s.register_simplification(T::FP_FROM_IEEEBV, new FpFromIEEEBvSimpl());
  s.register_simplification(T::FP_ISNAN, new FpIsNaNSimpl());
  s.register_simplification(T::FP_ISINF, new FpIsInfSimpl());
  s.register_simplification(T::FP_ISZERO, new FpIsZeroSimpl());
  s.register_simplification(T::FP_ISSUBNORMAL, new FpIsSubnormalSimpl());
  s.register_simplification(T::FP_ISNORMAL, new FpIsNormalSimpl());
  s.register_simplification(T::FP_ISNEG, new FpIsNegSimpl());
  s.register_simplification(T::FP_ISPOS, new FpIsPosSimpl());
}

}  // namespace termsimpl
}  // namespace zenlo
