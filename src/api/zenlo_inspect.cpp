// Term inspection of the C interface. The tests have no error value: a
// null environment or term answers 0, like a term of another kind.
#include "api/capi.h"
#include "api/capi_terms.h"

using namespace zenlo;
using capi::EnvRecord;

namespace {

template <class Pred>
int test_term(zenlo_env e, zenlo_term t, Pred pred) {
  EnvRecord* r = capi::record(e);
  if (r == nullptr || t.repr == nullptr) {
    return 0;
  }
  const Term_* term = static_cast<const Term_*>(t.repr);
  return pred(r->tm(), term, term->get_symbol()) ? 1 : 0;
}

int test_tag(zenlo_env e, zenlo_term t, SymbolTag::tag tag) {
  return test_term(e, t, [tag](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.get_tag(s) == tag;
  });
}

int test_rounding(zenlo_env e, zenlo_term t, RoundingMode mode) {
  return test_term(
      e, t, [mode](TermManager& tm, const Term_*, const Symbol* s) {
        return s == tm.get_rounding_symbol(mode);
      });
}

using SymbolTest = bool (TermManager::*)(const Symbol*, size_t*, size_t*) const;

// A test with up to two numeric parameters of interest, stored when the
// caller's pointers are not null.
int test_params(
    zenlo_env e, zenlo_term t, SymbolTest test, size_t* out1, size_t* out2) {
  return test_term(e, t, [&](TermManager& tm, const Term_*, const Symbol* s) {
    return (tm.*test)(s, out1, out2);
  });
}

}  // namespace

extern "C" {

// ----------------------------------------------------------------------
// Structure
// ----------------------------------------------------------------------

size_t zenlo_term_id(zenlo_term t) {
  return t.repr == nullptr ? 0 : capi::term_of(t)->get_id();
}

size_t zenlo_term_arity(zenlo_term t) {
  return t.repr == nullptr ? 0 : capi::term_of(t)->get_arity();
}

zenlo_term zenlo_term_get_arg(zenlo_term t, size_t n) {
  if (t.repr == nullptr || n >= capi::term_of(t)->get_arity()) {
    return capi::error_term();
  }
  return capi::wrap(capi::term_of(t)->get_child(n));
}

zenlo_type zenlo_term_get_type(zenlo_term t) {
  if (t.repr == nullptr) {
    return capi::error_type();
  }
  return capi::wrap(capi::term_of(t)->get_type());
}

zenlo_decl zenlo_term_get_decl(zenlo_term t) {
  if (t.repr == nullptr) {
    return capi::error_decl();
  }
  return capi::wrap(capi::term_of(t)->get_symbol());
}

char* zenlo_term_repr(zenlo_term t) {
  return capi::guarded_noenv<char*>(
      nullptr, [&] { return capi::alloc_string(capi::term_of(t)->to_str()); });
}

int zenlo_term_to_number(zenlo_env e, zenlo_term t, mpq_t out) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    const QNumber& v = r.tm().get_number_value(capi::term_of(t));
    if (out == nullptr) {
      throw capi::invalid_handle("number");
    }
    v.to_mpq(out);
    return 0;
  });
}

// ----------------------------------------------------------------------
// Booleans, arithmetic and uninterpreted terms
// ----------------------------------------------------------------------

int zenlo_term_is_true(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::TRUE);
}

int zenlo_term_is_false(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FALSE);
}

int zenlo_term_is_boolean_constant(zenlo_env e, zenlo_term t) {
  return test_term(e, t, [](TermManager& tm, const Term_* u, const Symbol* s) {
    return tm.is_bool_type(u->get_type()) && tm.is_constant(s);
  });
}

int zenlo_term_is_atom(zenlo_env e, zenlo_term t) {
  return test_term(e, t, [](TermManager& tm, const Term_* u, const Symbol* s) {
    SymbolTag::tag tag = tm.get_tag(s);
    return tm.is_bool_type(u->get_type()) && tag != SymbolTag::AND
           && tag != SymbolTag::OR && tag != SymbolTag::NOT
           && tag != SymbolTag::IFF && tag != SymbolTag::TRUE
           && tag != SymbolTag::FALSE;
  });
}

int zenlo_term_is_number(zenlo_env e, zenlo_term t) {
  return test_term(e, t, [](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_number(s);
  });
}

int zenlo_term_is_constant(zenlo_env e, zenlo_term t) {
  return test_term(e, t, [](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_constant(s);
  });
}

int zenlo_term_is_uf(zenlo_env e, zenlo_term t) {
  return test_term(e, t, [](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_uninterpreted_function(s);
  });
}

int zenlo_term_is_enum_value(zenlo_env e, zenlo_term t) {
  return test_term(e, t, [](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_enum_value(s);
  });
}

int zenlo_term_is_variable(zenlo_env e, zenlo_term t) {
  return test_term(e, t, [](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_variable(s);
  });
}

int zenlo_term_is_quantifier(zenlo_env e, zenlo_term t) {
  return test_term(e, t, [](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_quantifier(s);
  });
}

int zenlo_term_is_and(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::AND);
}

int zenlo_term_is_or(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::OR);
}

int zenlo_term_is_not(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::NOT);
}

int zenlo_term_is_iff(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::IFF);
}

int zenlo_term_is_term_ite(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::ITE);
}

int zenlo_term_is_equal(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::EQ);
}

int zenlo_term_is_leq(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::LEQ);
}

int zenlo_term_is_plus(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::PLUS);
}

int zenlo_term_is_times(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::TIMES);
}

int zenlo_term_is_divide(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::DIVIDE);
}

int zenlo_term_is_floor(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FLOOR);
}

int zenlo_term_is_pi(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::PI);
}

int zenlo_term_is_exp(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::EXP);
}

int zenlo_term_is_sin(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::SIN);
}

int zenlo_term_is_log(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::LOG);
}

int zenlo_term_is_pow(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::POW);
}

int zenlo_term_is_asin(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::ASIN);
}

int zenlo_term_is_forall(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FORALL);
}

int zenlo_term_is_exists(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::EXISTS);
}

// ----------------------------------------------------------------------
// Arrays and conversions
// ----------------------------------------------------------------------

int zenlo_term_is_array_read(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::ARRAY_READ);
}

int zenlo_term_is_array_write(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::ARRAY_WRITE);
}

int zenlo_term_is_array_const(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::ARRAY_CONST);
}

int zenlo_term_is_int_modular_congruence(zenlo_env e,
                                         zenlo_term t,
                                         mpz_t out_mod) {
  return test_term(e, t, [&](TermManager& tm, const Term_*, const Symbol* s) {
    QNumber modulus;
    if (!tm.is_int_mod_congr(s, &modulus)) {
      return false;
    }
    if (out_mod != nullptr) {
      modulus.num_to_mpz(out_mod);
    }
    return true;
  });
}

int zenlo_term_is_int_to_bv(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::INT_TO_BV);
}

int zenlo_term_is_int_from_ubv(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::INT_FROM_UBV);
}

int zenlo_term_is_int_from_sbv(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::INT_FROM_SBV);
}

// ----------------------------------------------------------------------
// Bit-vectors
// ----------------------------------------------------------------------

int zenlo_term_is_bv_concat(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_CONCAT);
}

int zenlo_term_is_bv_extract(zenlo_env e,
                             zenlo_term t,
                             size_t* out_msb,
                             size_t* out_lsb) {
  return test_term(e, t, [&](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_bv_extract(s, out_msb, out_lsb);
  });
}

int zenlo_term_is_bv_not(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_NOT);
}

int zenlo_term_is_bv_and(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_AND);
}

int zenlo_term_is_bv_or(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_OR);
}

int zenlo_term_is_bv_xor(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_XOR);
}

int zenlo_term_is_bv_ult(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_ULT);
}

int zenlo_term_is_bv_uleq(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_ULE);
}

int zenlo_term_is_bv_slt(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_SLT);
}

int zenlo_term_is_bv_sleq(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_SLE);
}

int zenlo_term_is_bv_comp(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_COMP);
}

int zenlo_term_is_bv_neg(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_NEG);
}

int zenlo_term_is_bv_plus(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_ADD);
}

int zenlo_term_is_bv_minus(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_SUB);
}

int zenlo_term_is_bv_times(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_MUL);
}

int zenlo_term_is_bv_udiv(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_UDIV);
}

int zenlo_term_is_bv_urem(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_UREM);
}

int zenlo_term_is_bv_sdiv(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_SDIV);
}

int zenlo_term_is_bv_srem(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_SREM);
}

int zenlo_term_is_bv_lshl(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_LSHL);
}

int zenlo_term_is_bv_lshr(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_LSHR);
}

int zenlo_term_is_bv_ashr(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::BV_ASHR);
}

int zenlo_term_is_bv_rol(zenlo_env e, zenlo_term t, size_t* out_amount) {
  return test_params(e, t, &TermManager::is_bv_rol, out_amount, nullptr);
}

int zenlo_term_is_bv_ror(zenlo_env e, zenlo_term t, size_t* out_amount) {
  return test_params(e, t, &TermManager::is_bv_ror, out_amount, nullptr);
}

int zenlo_term_is_bv_zext(zenlo_env e, zenlo_term t, size_t* out_amount) {
  return test_params(e, t, &TermManager::is_bv_zext, out_amount, nullptr);
}

int zenlo_term_is_bv_sext(zenlo_env e, zenlo_term t, size_t* out_amount) {
  return test_params(e, t, &TermManager::is_bv_sext, out_amount, nullptr);
}

// ----------------------------------------------------------------------
// Floating point
// ----------------------------------------------------------------------

int zenlo_term_is_fp_roundingmode_nearest_even(zenlo_env e, zenlo_term t) {
  return test_rounding(e, t, RoundingMode::NearestEven);
}

int zenlo_term_is_fp_roundingmode_zero(zenlo_env e, zenlo_term t) {
  return test_rounding(e, t, RoundingMode::Zero);
}

int zenlo_term_is_fp_roundingmode_plus_inf(zenlo_env e, zenlo_term t) {
  return test_rounding(e, t, RoundingMode::PlusInf);
}

int zenlo_term_is_fp_roundingmode_minus_inf(zenlo_env e, zenlo_term t) {
  return test_rounding(e, t, RoundingMode::MinusInf);
}

int zenlo_term_is_fp_equal(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_EQ);
}

int zenlo_term_is_fp_lt(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_LT);
}

int zenlo_term_is_fp_leq(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_LE);
}

int zenlo_term_is_fp_neg(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_NEG);
}

int zenlo_term_is_fp_abs(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ABS);
}

int zenlo_term_is_fp_plus(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ADD);
}

int zenlo_term_is_fp_minus(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_SUB);
}

int zenlo_term_is_fp_times(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_MUL);
}

int zenlo_term_is_fp_div(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_DIV);
}

int zenlo_term_is_fp_sqrt(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_SQRT);
}

int zenlo_term_is_fp_min(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_MIN);
}

int zenlo_term_is_fp_max(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_MAX);
}

int zenlo_term_is_fp_round_to_int(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ROUND_TO_INT);
}

// The format asked for is the target format of the conversion.
int zenlo_term_is_fp_cast(zenlo_env e,
                          zenlo_term t,
                          size_t* out_exp_w,
                          size_t* out_mant_w) {
  return test_term(e, t, [&](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_fp_cast(s, nullptr, nullptr, out_exp_w, out_mant_w);
  });
}

int zenlo_term_is_fp_from_sbv(zenlo_env e,
                              zenlo_term t,
                              size_t* out_exp_w,
                              size_t* out_mant_w) {
  return test_term(e, t, [&](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_fp_from_sbv(s, nullptr, out_exp_w, out_mant_w);
  });
}

int zenlo_term_is_fp_from_ubv(zenlo_env e,
                              zenlo_term t,
                              size_t* out_exp_w,
                              size_t* out_mant_w) {
  return test_term(e, t, [&](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_fp_from_ubv(s, nullptr, out_exp_w, out_mant_w);
  });
}

int zenlo_term_is_fp_to_bv(zenlo_env e, zenlo_term t, size_t* out_width) {
  return zenlo_term_is_fp_to_sbv(e, t, out_width);
}

int zenlo_term_is_fp_to_sbv(zenlo_env e, zenlo_term t, size_t* out_width) {
  return test_term(e, t, [&](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_fp_to_sbv(s, nullptr, nullptr, out_width);
  });
}

int zenlo_term_is_fp_to_ubv(zenlo_env e, zenlo_term t, size_t* out_width) {
  return test_term(e, t, [&](TermManager& tm, const Term_*, const Symbol* s) {
    return tm.is_fp_to_ubv(s, nullptr, nullptr, out_width);
  });
}

int zenlo_term_is_fp_as_ieeebv(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_AS_IEEEBV);
}

int zenlo_term_is_fp_from_ieeebv(zenlo_env e,
                                 zenlo_term t,
                                 size_t* out_exp_w,
                                 size_t* out_mant_w) {
  return test_params(
      e, t, &TermManager::is_fp_from_ieeebv, out_exp_w, out_mant_w);
}

int zenlo_term_is_fp_isnan(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ISNAN);
}

int zenlo_term_is_fp_isinf(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ISINF);
}

int zenlo_term_is_fp_iszero(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ISZERO);
}

int zenlo_term_is_fp_issubnormal(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ISSUBNORMAL);
}

int zenlo_term_is_fp_isnormal(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ISNORMAL);
}

int zenlo_term_is_fp_isneg(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ISNEG);
}

int zenlo_term_is_fp_ispos(zenlo_env e, zenlo_term t) {
  return test_tag(e, t, SymbolTag::FP_ISPOS);
}

}  // extern "C"
