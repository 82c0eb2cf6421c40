// Bit-vector and floating-point term construction of the C interface.
#include "api/capi_make.h"

using namespace zenlo;
using capi::make;
using capi::make1;
using capi::make2;
using capi::make_indexed;
using capi::term_of;

namespace {

using RoundedBinary = const Term_* (TermManager::*)(const Term_*,
                                                    const Term_*,
                                                    const Term_*);
using RoundedUnary = const Term_* (TermManager::*)(const Term_*, const Term_*);
using Converted = const Term_* (TermManager::*)(size_t,
                                                size_t,
                                                const Term_*,
                                                const Term_*);
using ToBv = const Term_* (TermManager::*)(size_t, const Term_*, const Term_*);
using Special = const Term_* (TermManager::*)(size_t, size_t);

zenlo_term make_converted(zenlo_env e,
                          size_t exp_w,
                          size_t mant_w,
                          zenlo_term r,
                          zenlo_term t,
                          Converted op) {
  return make(e, [&](TermManager& tm) {
    return (tm.*op)(exp_w, mant_w, term_of(r), term_of(t));
  });
}

zenlo_term make_to_bv(
    zenlo_env e, size_t width, zenlo_term r, zenlo_term t, ToBv op) {
  return make(e, [&](TermManager& tm) {
    return (tm.*op)(width, term_of(r), term_of(t));
  });
}

zenlo_term make_special(zenlo_env e, size_t exp_w, size_t mant_w, Special op) {
  return make(e, [&](TermManager& tm) { return (tm.*op)(exp_w, mant_w); });
}

zenlo_term make_rounding(zenlo_env e, RoundingMode mode) {
  return make(e,
              [&](TermManager& tm) { return tm.make_fp_rounding_mode(mode); });
}

}  // namespace

extern "C" {

// ----------------------------------------------------------------------
// Bit-vector numbers
// ----------------------------------------------------------------------

zenlo_term zenlo_make_bv_number(zenlo_env e,
                                const char* num_rep,
                                size_t width,
                                size_t base) {
  return make(e, [&](TermManager& tm) {
    return tm.make_bv_number(
        capi::string_of(num_rep), width, static_cast<int>(base));
  });
}

zenlo_term zenlo_make_bv_int_number(zenlo_env e, int value, size_t width) {
  return make(e, [&](TermManager& tm) {
    return tm.make_bv_number(QNumber(static_cast<long>(value)), width);
  });
}

zenlo_term zenlo_make_bv_mpz_number(zenlo_env e, mpz_t value, size_t width) {
  return make(e, [&](TermManager& tm) {
    return tm.make_bv_number(capi::number_of(value), width);
  });
}

// ----------------------------------------------------------------------
// Bit-vector operations
// ----------------------------------------------------------------------

zenlo_term zenlo_make_bv_concat(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_concat);
}

zenlo_term zenlo_make_bv_extract(zenlo_env e,
                                 size_t msb,
                                 size_t lsb,
                                 zenlo_term t) {
  return make(e, [&](TermManager& tm) {
    return tm.make_bv_extract(msb, lsb, term_of(t));
  });
}

zenlo_term zenlo_make_bv_not(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_bv_not);
}

zenlo_term zenlo_make_bv_neg(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_bv_neg);
}

zenlo_term zenlo_make_bv_and(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_and);
}

zenlo_term zenlo_make_bv_or(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_or);
}

zenlo_term zenlo_make_bv_xor(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_xor);
}

zenlo_term zenlo_make_bv_ult(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_ult);
}

zenlo_term zenlo_make_bv_uleq(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_ule);
}

zenlo_term zenlo_make_bv_slt(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_slt);
}

zenlo_term zenlo_make_bv_sleq(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_sle);
}

zenlo_term zenlo_make_bv_comp(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_comp);
}

zenlo_term zenlo_make_bv_plus(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_add);
}

zenlo_term zenlo_make_bv_minus(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_sub);
}

zenlo_term zenlo_make_bv_times(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_mul);
}

zenlo_term zenlo_make_bv_udiv(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_udiv);
}

zenlo_term zenlo_make_bv_urem(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_urem);
}

zenlo_term zenlo_make_bv_sdiv(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_sdiv);
}

zenlo_term zenlo_make_bv_srem(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_srem);
}

zenlo_term zenlo_make_bv_lshl(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_lshl);
}

zenlo_term zenlo_make_bv_lshr(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_lshr);
}

zenlo_term zenlo_make_bv_ashr(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_bv_ashr);
}

zenlo_term zenlo_make_bv_rol(zenlo_env e, size_t amount, zenlo_term t) {
  return make_indexed(e, amount, t, &TermManager::make_bv_rol);
}

zenlo_term zenlo_make_bv_ror(zenlo_env e, size_t amount, zenlo_term t) {
  return make_indexed(e, amount, t, &TermManager::make_bv_ror);
}

zenlo_term zenlo_make_bv_zext(zenlo_env e, size_t amount, zenlo_term t) {
  return make_indexed(e, amount, t, &TermManager::make_bv_zext);
}

zenlo_term zenlo_make_bv_sext(zenlo_env e, size_t amount, zenlo_term t) {
  return make_indexed(e, amount, t, &TermManager::make_bv_sext);
}

// ----------------------------------------------------------------------
// Floating-point constants
// ----------------------------------------------------------------------

zenlo_term zenlo_make_fp_roundingmode_nearest_even(zenlo_env e) {
  return make_rounding(e, RoundingMode::NearestEven);
}

zenlo_term zenlo_make_fp_roundingmode_zero(zenlo_env e) {
  return make_rounding(e, RoundingMode::Zero);
}

zenlo_term zenlo_make_fp_roundingmode_plus_inf(zenlo_env e) {
  return make_rounding(e, RoundingMode::PlusInf);
}

zenlo_term zenlo_make_fp_roundingmode_minus_inf(zenlo_env e) {
  return make_rounding(e, RoundingMode::MinusInf);
}

zenlo_term zenlo_make_fp_rat_number(zenlo_env e,
                                    const char* num_rep,
                                    size_t exp_w,
                                    size_t mant_w,
                                    zenlo_term rounding) {
  return make(e, [&](TermManager& tm) {
    return tm.make_fp_rat_number(
        capi::number_of(num_rep), exp_w, mant_w, term_of(rounding));
  });
}

zenlo_term zenlo_make_fp_bits_number(zenlo_env e,
                                     const char* bits_rep,
                                     size_t exp_w,
                                     size_t mant_w) {
  return make(e, [&](TermManager& tm) {
    return tm.make_fp_bits_number(capi::number_of(bits_rep), exp_w, mant_w);
  });
}

zenlo_term zenlo_make_fp_plus_inf(zenlo_env e, size_t exp_w, size_t mant_w) {
  return make_special(e, exp_w, mant_w, &TermManager::make_fp_plus_inf);
}

zenlo_term zenlo_make_fp_minus_inf(zenlo_env e, size_t exp_w, size_t mant_w) {
  return make_special(e, exp_w, mant_w, &TermManager::make_fp_minus_inf);
}

zenlo_term zenlo_make_fp_nan(zenlo_env e, size_t exp_w, size_t mant_w) {
  return make_special(e, exp_w, mant_w, &TermManager::make_fp_nan);
}

// ----------------------------------------------------------------------
// Floating-point operations
// ----------------------------------------------------------------------

zenlo_term zenlo_make_fp_equal(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_fp_equal);
}

zenlo_term zenlo_make_fp_lt(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_fp_lt);
}

zenlo_term zenlo_make_fp_leq(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_fp_le);
}

zenlo_term zenlo_make_fp_neg(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_neg);
}

zenlo_term zenlo_make_fp_abs(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_abs);
}

zenlo_term zenlo_make_fp_plus(zenlo_env e,
                              zenlo_term rounding,
                              zenlo_term t1,
                              zenlo_term t2) {
  return capi::make3(e, rounding, t1, t2, &TermManager::make_fp_add);
}

zenlo_term zenlo_make_fp_minus(zenlo_env e,
                               zenlo_term rounding,
                               zenlo_term t1,
                               zenlo_term t2) {
  return capi::make3(e, rounding, t1, t2, &TermManager::make_fp_sub);
}

zenlo_term zenlo_make_fp_times(zenlo_env e,
                               zenlo_term rounding,
                               zenlo_term t1,
                               zenlo_term t2) {
  return capi::make3(e, rounding, t1, t2, &TermManager::make_fp_mul);
}

zenlo_term zenlo_make_fp_div(zenlo_env e,
                             zenlo_term rounding,
                             zenlo_term t1,
                             zenlo_term t2) {
  return capi::make3(e, rounding, t1, t2, &TermManager::make_fp_div);
}

zenlo_term zenlo_make_fp_sqrt(zenlo_env e, zenlo_term rounding, zenlo_term t) {
  return make2(e, rounding, t, &TermManager::make_fp_sqrt);
}

zenlo_term zenlo_make_fp_min(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_fp_min);
}

zenlo_term zenlo_make_fp_max(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_fp_max);
}

zenlo_term zenlo_make_fp_round_to_int(zenlo_env e,
                                      zenlo_term rounding,
                                      zenlo_term t) {
  return make2(e, rounding, t, &TermManager::make_fp_round_to_int);
}

zenlo_term zenlo_make_fp_cast(zenlo_env e,
                              size_t exp_w,
                              size_t mant_w,
                              zenlo_term rounding,
                              zenlo_term t) {
  return make_converted(
      e, exp_w, mant_w, rounding, t, &TermManager::make_fp_cast);
}

zenlo_term zenlo_make_fp_from_sbv(zenlo_env e,
                                  size_t exp_w,
                                  size_t mant_w,
                                  zenlo_term rounding,
                                  zenlo_term t) {
  return make_converted(
      e, exp_w, mant_w, rounding, t, &TermManager::make_fp_from_sbv);
}

zenlo_term zenlo_make_fp_from_ubv(zenlo_env e,
                                  size_t exp_w,
                                  size_t mant_w,
                                  zenlo_term rounding,
                                  zenlo_term t) {
  return make_converted(
      e, exp_w, mant_w, rounding, t, &TermManager::make_fp_from_ubv);
}

zenlo_term zenlo_make_fp_to_bv(zenlo_env e,
                               size_t width,
                               zenlo_term rounding,
                               zenlo_term t) {
  return make_to_bv(e, width, rounding, t, &TermManager::make_fp_to_sbv);
}

zenlo_term zenlo_make_fp_to_sbv(zenlo_env e,
                                size_t width,
                                zenlo_term rounding,
                                zenlo_term t) {
  return make_to_bv(e, width, rounding, t, &TermManager::make_fp_to_sbv);
}

zenlo_term zenlo_make_fp_to_ubv(zenlo_env e,
                                size_t width,
                                zenlo_term rounding,
                                zenlo_term t) {
  return make_to_bv(e, width, rounding, t, &TermManager::make_fp_to_ubv);
}

zenlo_term zenlo_make_fp_as_ieeebv(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_as_ieeebv);
}

zenlo_term zenlo_make_fp_from_ieeebv(zenlo_env e,
                                     size_t exp_w,
                                     size_t mant_w,
                                     zenlo_term t) {
  return make(e, [&](TermManager& tm) {
    return tm.make_fp_from_ieeebv(exp_w, mant_w, term_of(t));
  });
}

zenlo_term zenlo_make_fp_isnan(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_isnan);
}

zenlo_term zenlo_make_fp_isinf(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_isinf);
}

zenlo_term zenlo_make_fp_iszero(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_iszero);
}

zenlo_term zenlo_make_fp_issubnormal(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_issubnormal);
}

zenlo_term zenlo_make_fp_isnormal(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_isnormal);
}

zenlo_term zenlo_make_fp_isneg(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_isneg);
}

zenlo_term zenlo_make_fp_ispos(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_fp_ispos);
}

}  // extern "C"
