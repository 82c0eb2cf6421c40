// Term construction of the C interface: Booleans, arithmetic, numbers,
// uninterpreted functions, arrays, conversions and quantifiers. The
// bit-vector and floating-point constructors are in zenlo_terms_bvfp.cpp.
#include "api/capi_make.h"

using namespace zenlo;
using capi::make;
using capi::make1;
using capi::make2;
using capi::term_of;

extern "C" {

// ----------------------------------------------------------------------
// Booleans and arithmetic
// ----------------------------------------------------------------------

zenlo_term zenlo_make_true(zenlo_env e) {
  return make(e, [](TermManager& tm) { return tm.make_true(); });
}

zenlo_term zenlo_make_false(zenlo_env e) {
  return make(e, [](TermManager& tm) { return tm.make_false(); });
}

zenlo_term zenlo_make_iff(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_iff);
}

zenlo_term zenlo_make_or(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_or);
}

zenlo_term zenlo_make_and(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_and);
}

zenlo_term zenlo_make_not(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_not);
}

zenlo_term zenlo_make_eq(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_eq);
}

zenlo_term zenlo_make_equal(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_equal);
}

zenlo_term zenlo_make_leq(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_leq);
}

zenlo_term zenlo_make_plus(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_plus);
}

zenlo_term zenlo_make_times(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_times);
}

zenlo_term zenlo_make_divide(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_divide);
}

zenlo_term zenlo_make_floor(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_floor);
}

zenlo_term zenlo_make_pi(zenlo_env e) {
  return capi::make0(e, &TermManager::make_pi);
}

zenlo_term zenlo_make_exp(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_exp);
}

zenlo_term zenlo_make_sin(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_sin);
}

zenlo_term zenlo_make_log(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_log);
}

zenlo_term zenlo_make_asin(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_asin);
}

zenlo_term zenlo_make_pow(zenlo_env e, zenlo_term t1, zenlo_term t2) {
  return make2(e, t1, t2, &TermManager::make_pow);
}

zenlo_term zenlo_make_term_ite(zenlo_env e,
                               zenlo_term c,
                               zenlo_term tt,
                               zenlo_term te) {
  return capi::make3(e, c, tt, te, &TermManager::make_term_ite);
}

// ----------------------------------------------------------------------
// Numbers
// ----------------------------------------------------------------------

zenlo_term zenlo_make_number(zenlo_env e, const char* num_rep) {
  return make(e, [&](TermManager& tm) {
    return tm.make_number(capi::number_of(num_rep));
  });
}

zenlo_term zenlo_make_int_number(zenlo_env e, int value) {
  return make(e, [&](TermManager& tm) {
    return tm.make_number(static_cast<long>(value));
  });
}

zenlo_term zenlo_make_mpq_number(zenlo_env e, mpq_t value) {
  return make(e, [&](TermManager& tm) {
    return tm.make_number(capi::number_of(value));
  });
}

// ----------------------------------------------------------------------
// Declarations applied
// ----------------------------------------------------------------------

zenlo_term zenlo_make_constant(zenlo_env e, zenlo_decl var) {
  return make(
      e, [&](TermManager& tm) { return tm.make_constant(capi::decl_of(var)); });
}

zenlo_term zenlo_make_uf(zenlo_env e, zenlo_decl func, zenlo_term args[]) {
  return make(e, [&](TermManager& tm) {
    const Symbol* s = capi::decl_of(func);
    return tm.make_uninterpreted_function(
        s, capi::terms_of(args, s->get_arity(), "args"));
  });
}

zenlo_term zenlo_make_term(zenlo_env e, zenlo_decl d, zenlo_term args[]) {
  return make(e, [&](TermManager& tm) {
    const Symbol* s = capi::decl_of(d);
    return tm.make_term(s, capi::terms_of(args, s->get_arity(), "args"));
  });
}

// ----------------------------------------------------------------------
// Arrays
// ----------------------------------------------------------------------

zenlo_term zenlo_make_array_read(zenlo_env e, zenlo_term arr, zenlo_term idx) {
  return make2(e, arr, idx, &TermManager::make_array_read);
}

zenlo_term zenlo_make_array_write(zenlo_env e,
                                  zenlo_term arr,
                                  zenlo_term idx,
                                  zenlo_term elem) {
  return capi::make3(e, arr, idx, elem, &TermManager::make_array_write);
}

zenlo_term zenlo_make_array_const(zenlo_env e,
                                  zenlo_type arrtp,
                                  zenlo_term elem) {
  return make(e, [&](TermManager& tm) {
    return tm.make_array_const(capi::type_of(arrtp), term_of(elem));
  });
}

// ----------------------------------------------------------------------
// Integers and bit-vectors
// ----------------------------------------------------------------------

zenlo_term zenlo_make_int_modular_congruence(zenlo_env e,
                                             mpz_t modulus,
                                             zenlo_term t1,
                                             zenlo_term t2) {
  return make(e, [&](TermManager& tm) {
    return tm.make_int_modular_congruence(
        capi::number_of(modulus), term_of(t1), term_of(t2));
  });
}

zenlo_term zenlo_make_int_to_bv(zenlo_env e, size_t out_width, zenlo_term t) {
  return capi::make_indexed(e, out_width, t, &TermManager::make_int_to_bv);
}

zenlo_term zenlo_make_int_from_ubv(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_int_from_ubv);
}

zenlo_term zenlo_make_int_from_sbv(zenlo_env e, zenlo_term t) {
  return make1(e, t, &TermManager::make_int_from_sbv);
}

// ----------------------------------------------------------------------
// Quantifiers
// ----------------------------------------------------------------------

zenlo_term zenlo_make_variable(zenlo_env e, const char* name, zenlo_type t) {
  return make(e, [&](TermManager& tm) {
    return tm.make_named_variable(capi::string_of(name), capi::type_of(t));
  });
}

zenlo_term zenlo_make_forall(zenlo_env e, zenlo_term var, zenlo_term body) {
  return make2(e, var, body, &TermManager::make_forall);
}

zenlo_term zenlo_make_exists(zenlo_env e, zenlo_term var, zenlo_term body) {
  return make2(e, var, body, &TermManager::make_exists);
}

zenlo_term zenlo_existentially_quantify(zenlo_env e,
                                        zenlo_term formula,
                                        zenlo_term vars[],
                                        size_t n) {
  return make(e, [&](TermManager& tm) {
    return tm.existentially_quantify(term_of(formula),
                                     capi::terms_of(vars, n, "vars"));
  });
}

// ----------------------------------------------------------------------
// Copying
// ----------------------------------------------------------------------

zenlo_term zenlo_make_copy_from(zenlo_env dest, zenlo_term t, zenlo_env src) {
  return make(dest, [&](TermManager& tm) {
    return tm.copy_term(capi::env_of(src).get_term_manager(), term_of(t));
  });
}

}  // extern "C"
