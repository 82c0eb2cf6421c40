/* Builds terms of every theory through the C interface, reads them back
 * through the inspection functions, and checks the error values and
 * messages of bad calls. Uses nothing but zenlo.h. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "apicheck.h"
#include "zenlo.h"

#define CHECK_MSG(env, text) \
  CHECK(strcmp(zenlo_last_error_message(env), (text)) == 0)

static zenlo_env env;
static zenlo_type tbool, tint, treal;

static zenlo_term constant(const char* name, zenlo_type t) {
  zenlo_decl d = zenlo_declare_function(env, name, t);
  CHECK(!ZENLO_ERROR_DECL(d));
  return zenlo_make_constant(env, d);
}

static int repr_is(zenlo_term t, const char* text) {
  char* s = zenlo_term_repr(t);
  int same = s != NULL && strcmp(s, text) == 0;
  if (!same) {
    fprintf(stderr, "repr: got %s, expected %s\n", s ? s : "(null)", text);
  }
  zenlo_free(s);
  return same;
}

static void test_types_and_declarations(void) {
  zenlo_type bv8 = zenlo_get_bv_type(env, 8);
  zenlo_type f32 = zenlo_get_fp_type(env, 8, 23);
  zenlo_type arr = zenlo_get_array_type(env, tint, treal);
  zenlo_type args[2];
  size_t w = 0, ew = 0, mw = 0;
  zenlo_type it, et;
  zenlo_decl f, values[3];
  const char* names[3] = {"red", "green", "blue"};
  zenlo_type color;
  char* s;

  CHECK(zenlo_is_bool_type(env, tbool) && !zenlo_is_bool_type(env, tint));
  CHECK(zenlo_is_integer_type(env, tint) && zenlo_is_rational_type(env, treal));
  CHECK(zenlo_is_bv_type(env, bv8, &w) && w == 8);
  CHECK(zenlo_is_fp_type(env, f32, &ew, &mw) && ew == 8 && mw == 23);
  CHECK(zenlo_is_array_type(env, arr, &it, &et));
  CHECK(zenlo_type_equals(it, tint) && zenlo_type_equals(et, treal));
  CHECK(
      zenlo_is_fp_roundingmode_type(env, zenlo_get_fp_roundingmode_type(env)));
  CHECK(zenlo_type_equals(zenlo_get_bv_type(env, 8), bv8));
  CHECK(zenlo_type_id(bv8) > 0);
  s = zenlo_type_repr(bv8);
  CHECK(s != NULL && strcmp(s, "<BitVec, 8, >") == 0);
  zenlo_free(s);

  color = zenlo_get_enum_type(env, "Color", 3, names, values);
  CHECK(zenlo_is_enum_type(env, color));
  CHECK(zenlo_term_is_enum_value(env, zenlo_make_constant(env, values[1])));

  args[0] = tint;
  args[1] = treal;
  f = zenlo_declare_function(
      env, "f", zenlo_get_function_type(env, args, 2, treal));
  CHECK(zenlo_decl_get_arity(f) == 2);
  CHECK(zenlo_type_equals(zenlo_decl_get_arg_type(f, 1), treal));
  CHECK(ZENLO_ERROR_TYPE(zenlo_decl_get_arg_type(f, 2)));
  CHECK(zenlo_type_equals(zenlo_decl_get_return_type(f), treal));
  CHECK(zenlo_decl_get_tag(env, f) == 0);
  CHECK(zenlo_find_decl(env, "f").repr == f.repr);
  CHECK(ZENLO_ERROR_DECL(zenlo_find_decl(env, "nowhere")));
  s = zenlo_decl_get_name(f);
  CHECK(s != NULL && strcmp(s, "f") == 0);
  zenlo_free(s);
  s = zenlo_decl_repr(f);
  CHECK(s != NULL && strcmp(s, "f:<T(1), Int, Real, Real, >") == 0);
  zenlo_free(s);
}

static void test_boolean_and_arithmetic(void) {
  zenlo_term p = constant("p", tbool);
  zenlo_term x = constant("x", tint);
  zenlo_term y = constant("y", treal);
  zenlo_term sum = zenlo_make_plus(env, x, y);
  zenlo_term three = zenlo_make_number(env, "3");
  zenlo_term half = zenlo_make_number(env, "1/2");
  zenlo_term args[2];
  zenlo_term app, conj, ite;
  mpq_t q;

  CHECK(zenlo_term_is_plus(env, sum) && zenlo_term_arity(sum) == 2);
  CHECK(zenlo_term_get_arg(sum, 0).repr == x.repr);
  CHECK(ZENLO_ERROR_TERM(zenlo_term_get_arg(sum, 2)));
  CHECK(zenlo_is_rational_type(env, zenlo_term_get_type(sum)));
  CHECK(repr_is(sum, "(`+_rat` x y)"));
  CHECK(zenlo_make_int_number(env, 3).repr == three.repr);
  CHECK(zenlo_term_is_number(env, three));
  CHECK(zenlo_is_integer_type(env, zenlo_term_get_type(three)));
  mpq_init(q);
  CHECK(zenlo_term_to_number(env, half, q) == 0);
  CHECK(mpq_cmp_si(q, 1, 2) == 0);
  CHECK(zenlo_term_to_number(env, x, q) == -1);
  CHECK_MSG(env, "term x is not a number");
  mpq_set_si(q, 6, 4);
  CHECK(zenlo_term_is_number(env, zenlo_make_mpq_number(env, q)));
  mpq_clear(q);

  conj = zenlo_make_and(env, p, zenlo_make_leq(env, x, three));
  CHECK(zenlo_term_is_and(env, conj) && !zenlo_term_is_atom(env, conj));
  CHECK(zenlo_term_is_atom(env, zenlo_term_get_arg(conj, 1)));
  CHECK(zenlo_term_is_boolean_constant(env, p));
  CHECK(zenlo_term_is_true(env, zenlo_make_true(env)));
  CHECK(zenlo_term_is_iff(env,
                          zenlo_make_eq(env, p, zenlo_term_get_arg(conj, 1))));
  CHECK(zenlo_term_is_equal(env, zenlo_make_eq(env, x, y)));
  CHECK(zenlo_term_is_not(env, zenlo_make_not(env, p)));
  CHECK(zenlo_term_is_or(env,
                         zenlo_make_or(env, p, zenlo_term_get_arg(conj, 1))));
  ite = zenlo_make_term_ite(env, p, x, y);
  CHECK(zenlo_term_is_term_ite(env, ite));
  CHECK(zenlo_term_is_times(env, zenlo_make_times(env, x, x)));
  CHECK(zenlo_term_is_divide(env, zenlo_make_divide(env, y, x)));
  /* A division by a number is a product once built. */
  CHECK(zenlo_term_is_times(env, zenlo_make_divide(env, y, half)));
  CHECK(zenlo_term_is_floor(env, zenlo_make_floor(env, y)));
  CHECK(zenlo_term_is_pi(env, zenlo_make_pi(env)));
  CHECK(zenlo_term_is_exp(env, zenlo_make_exp(env, y)));
  CHECK(zenlo_term_is_sin(env, zenlo_make_sin(env, y)));
  CHECK(zenlo_term_is_log(env, zenlo_make_log(env, y)));
  CHECK(zenlo_term_is_asin(env, zenlo_make_asin(env, y)));
  CHECK(zenlo_term_is_pow(env, zenlo_make_pow(env, y, three)));

  args[0] = x;
  args[1] = half;
  app = zenlo_make_uf(env, zenlo_find_decl(env, "f"), args);
  CHECK(zenlo_term_is_uf(env, app) && !zenlo_term_is_constant(env, app));
  CHECK(zenlo_term_get_decl(app).repr == zenlo_find_decl(env, "f").repr);
  CHECK(zenlo_make_term(env, zenlo_term_get_decl(app), args).repr == app.repr);
  CHECK(zenlo_term_is_constant(env, x));
}

static void test_bit_vectors_and_arrays(void) {
  zenlo_type bv8 = zenlo_get_bv_type(env, 8);
  zenlo_term u = constant("u", bv8);
  zenlo_term five = zenlo_make_bv_number(env, "101", 8, 2);
  zenlo_term ext, rol, arr, wr;
  size_t msb = 0, lsb = 0, amount = 0;
  mpz_t m;

  CHECK(zenlo_make_bv_number(env, "5", 8, 10).repr == five.repr);
  CHECK(zenlo_make_bv_int_number(env, 5, 8).repr == five.repr);
  CHECK(zenlo_make_bv_number(env, "ff", 8, 16).repr
        == zenlo_make_bv_int_number(env, 255, 8).repr);
  CHECK(zenlo_term_is_bv_plus(env, zenlo_make_bv_plus(env, u, five)));
  /* Subtraction is built as the addition of the negation. */
  CHECK(zenlo_term_is_bv_plus(env, zenlo_make_bv_minus(env, u, five)));
  CHECK(zenlo_term_is_bv_times(env, zenlo_make_bv_times(env, u, five)));
  CHECK(zenlo_term_is_bv_udiv(env, zenlo_make_bv_udiv(env, u, five)));
  CHECK(zenlo_term_is_bv_srem(env, zenlo_make_bv_srem(env, u, five)));
  CHECK(zenlo_term_is_bv_and(env, zenlo_make_bv_and(env, u, five)));
  CHECK(zenlo_term_is_bv_xor(env, zenlo_make_bv_xor(env, u, five)));
  CHECK(zenlo_term_is_bv_lshl(env, zenlo_make_bv_lshl(env, u, five)));
  CHECK(zenlo_term_is_bv_ashr(env, zenlo_make_bv_ashr(env, u, five)));
  CHECK(zenlo_term_is_bv_ult(env, zenlo_make_bv_ult(env, u, five)));
  /* (bvsle a b) is built as (not (bvslt b a)). */
  CHECK(zenlo_term_is_not(env, zenlo_make_bv_sleq(env, u, five)));
  CHECK(zenlo_term_is_bv_comp(env, zenlo_make_bv_comp(env, u, five)));
  CHECK(zenlo_term_is_bv_not(env, zenlo_make_bv_not(env, u)));
  CHECK(zenlo_term_is_bv_neg(env, zenlo_make_bv_neg(env, u)));
  CHECK(zenlo_term_is_bv_concat(env, zenlo_make_bv_concat(env, u, u)));
  ext = zenlo_make_bv_extract(env, 6, 2, u);
  CHECK(zenlo_term_is_bv_extract(env, ext, &msb, &lsb) && msb == 6 && lsb == 2);
  rol = zenlo_make_bv_rol(env, 3, u);
  CHECK(zenlo_term_is_bv_rol(env, rol, &amount) && amount == 3);
  CHECK(zenlo_term_is_bv_sext(env, zenlo_make_bv_sext(env, 8, u), &amount));
  CHECK(zenlo_term_is_int_from_ubv(env, zenlo_make_int_from_ubv(env, u)));
  CHECK(zenlo_term_is_int_to_bv(
      env, zenlo_make_int_to_bv(env, 8, constant("j", tint))));
  CHECK(zenlo_make_int_to_bv(env, 8, zenlo_make_int_number(env, 7)).repr
        == zenlo_make_bv_int_number(env, 7, 8).repr);

  mpz_init_set_ui(m, 12);
  CHECK(zenlo_term_is_int_modular_congruence(
      env,
      zenlo_make_int_modular_congruence(
          env, m, constant("i", tint), zenlo_make_int_number(env, 1)),
      m));
  CHECK(mpz_cmp_ui(m, 12) == 0);
  mpz_clear(m);

  arr = constant("a", zenlo_get_array_type(env, tint, tint));
  wr = zenlo_make_array_write(
      env, arr, zenlo_make_int_number(env, 0), zenlo_make_int_number(env, 1));
  CHECK(zenlo_term_is_array_write(env, wr));
  CHECK(zenlo_term_is_array_read(
      env, zenlo_make_array_read(env, wr, constant("j", tint))));
  CHECK(zenlo_term_is_array_const(
      env,
      zenlo_make_array_const(env,
                             zenlo_get_array_type(env, tint, tint),
                             zenlo_make_int_number(env, 0))));
}

static void test_floats(void) {
  zenlo_term rne = zenlo_make_fp_roundingmode_nearest_even(env);
  zenlo_term rtz = zenlo_make_fp_roundingmode_zero(env);
  zenlo_term a = constant("fa", zenlo_get_fp_type(env, 8, 23));
  zenlo_term one = zenlo_make_fp_rat_number(env, "1", 8, 23, rne);
  zenlo_term bits = constant("fb", zenlo_get_bv_type(env, 8));
  size_t ew = 0, mw = 0, w = 0;

  CHECK(zenlo_term_is_fp_roundingmode_nearest_even(env, rne));
  CHECK(zenlo_term_is_fp_roundingmode_zero(env, rtz));
  CHECK(zenlo_term_is_fp_roundingmode_plus_inf(
      env, zenlo_make_fp_roundingmode_plus_inf(env)));
  CHECK(zenlo_term_is_fp_roundingmode_minus_inf(
      env, zenlo_make_fp_roundingmode_minus_inf(env)));
  CHECK(zenlo_make_fp_bits_number(env, "1065353216", 8, 23).repr == one.repr);
  CHECK(zenlo_term_is_number(env, zenlo_make_fp_nan(env, 8, 23)));
  CHECK(zenlo_make_fp_plus_inf(env, 8, 23).repr
        != zenlo_make_fp_minus_inf(env, 8, 23).repr);
  CHECK(zenlo_term_is_fp_plus(env, zenlo_make_fp_plus(env, rne, a, one)));
  CHECK(zenlo_term_is_fp_minus(env, zenlo_make_fp_minus(env, rne, a, one)));
  CHECK(zenlo_term_is_fp_times(env, zenlo_make_fp_times(env, rne, a, one)));
  CHECK(zenlo_term_is_fp_div(env, zenlo_make_fp_div(env, rne, a, one)));
  CHECK(zenlo_term_is_fp_sqrt(env, zenlo_make_fp_sqrt(env, rne, a)));
  CHECK(zenlo_term_is_fp_round_to_int(env,
                                      zenlo_make_fp_round_to_int(env, rtz, a)));
  CHECK(zenlo_term_is_fp_min(env, zenlo_make_fp_min(env, a, one)));
  CHECK(zenlo_term_is_fp_max(env, zenlo_make_fp_max(env, a, one)));
  CHECK(zenlo_term_is_fp_neg(env, zenlo_make_fp_neg(env, a)));
  CHECK(zenlo_term_is_fp_abs(env, zenlo_make_fp_abs(env, a)));
  CHECK(zenlo_term_is_fp_equal(env, zenlo_make_fp_equal(env, a, one)));
  CHECK(zenlo_term_is_fp_lt(env, zenlo_make_fp_lt(env, a, one)));
  CHECK(zenlo_term_is_fp_leq(env, zenlo_make_fp_leq(env, a, one)));
  CHECK(zenlo_term_is_fp_isnan(env, zenlo_make_fp_isnan(env, a)));
  CHECK(zenlo_term_is_fp_isinf(env, zenlo_make_fp_isinf(env, a)));
  CHECK(zenlo_term_is_fp_iszero(env, zenlo_make_fp_iszero(env, a)));
  CHECK(zenlo_term_is_fp_issubnormal(env, zenlo_make_fp_issubnormal(env, a)));
  CHECK(zenlo_term_is_fp_isnormal(env, zenlo_make_fp_isnormal(env, a)));
  CHECK(zenlo_term_is_fp_isneg(env, zenlo_make_fp_isneg(env, a)));
  CHECK(zenlo_term_is_fp_ispos(env, zenlo_make_fp_ispos(env, a)));
  CHECK(zenlo_term_is_fp_cast(
            env, zenlo_make_fp_cast(env, 11, 52, rne, a), &ew, &mw)
        && ew == 11 && mw == 52);
  CHECK(zenlo_term_is_fp_to_sbv(env, zenlo_make_fp_to_sbv(env, 16, rtz, a), &w)
        && w == 16);
  CHECK(zenlo_term_is_fp_to_bv(env, zenlo_make_fp_to_bv(env, 16, rtz, a), &w));
  CHECK(zenlo_term_is_fp_to_ubv(env, zenlo_make_fp_to_ubv(env, 4, rtz, a), &w)
        && w == 4);
  CHECK(zenlo_term_is_fp_as_ieeebv(env, zenlo_make_fp_as_ieeebv(env, a)));
  CHECK(zenlo_term_is_fp_from_ieeebv(
      env,
      zenlo_make_fp_from_ieeebv(env, 8, 23, zenlo_make_fp_as_ieeebv(env, a)),
      &ew,
      &mw));
  CHECK(zenlo_term_is_fp_from_sbv(
            env, zenlo_make_fp_from_sbv(env, 5, 10, rne, bits), &ew, &mw)
        && ew == 5 && mw == 10);
  CHECK(zenlo_term_is_fp_from_ubv(
      env, zenlo_make_fp_from_ubv(env, 5, 10, rne, bits), NULL, NULL));
}

static int count_and_abort(zenlo_env e,
                           zenlo_term t,
                           int preorder,
                           void* data) {
  int* count = (int*)data;
  (void)e;
  (void)t;
  if (preorder) {
    ++*count;
  }
  return *count >= 3 ? ZENLO_VISIT_ABORT : ZENLO_VISIT_PROCESS;
}

static int count_all(zenlo_env e, zenlo_term t, int preorder, void* data) {
  (void)e;
  (void)t;
  if (preorder) {
    ++*(int*)data;
  }
  return ZENLO_VISIT_PROCESS;
}

static void test_services(zenlo_config cfg) {
  zenlo_term x = constant("vx", tint);
  zenlo_term y = constant("vy", tint);
  zenlo_term body =
      zenlo_make_or(env,
                    zenlo_make_eq(env, x, y),
                    zenlo_make_eq(env, x, zenlo_make_int_number(env, 5)));
  zenlo_term from[1], to[1], vars[2];
  zenlo_term subst, q, v, copy, back;
  zenlo_env other, shared;
  int count = 0;

  CHECK(zenlo_visit_term(env, body, count_and_abort, &count) == 0);
  CHECK(count == 3);
  count = 0;
  CHECK(zenlo_visit_term(env, body, count_all, &count) == 0);
  CHECK(count == 6); /* or, =, vx, vy, =, 5: vx once */

  from[0] = x;
  to[0] = zenlo_make_int_number(env, 2);
  subst = zenlo_apply_substitution(env, body, 1, from, to);
  /* (or (= 2 vy) (= 2 5)) simplifies as it is built. */
  CHECK(repr_is(subst, "(`=_int` vy 2)"));
  to[0] = constant("vr", treal);
  CHECK(ZENLO_ERROR_TERM(zenlo_apply_substitution(env, body, 1, from, to)));
  CHECK_MSG(env, "substitution between terms of incompatible types");

  v = zenlo_make_variable(env, "b", tint);
  CHECK(zenlo_term_is_variable(env, v));
  q = zenlo_make_forall(env, v, zenlo_make_leq(env, v, x));
  CHECK(zenlo_term_is_forall(env, q) && zenlo_term_is_quantifier(env, q));
  CHECK(zenlo_term_is_exists(env, zenlo_make_exists(env, v, body)));
  vars[0] = x;
  vars[1] = y;
  q = zenlo_existentially_quantify(env, body, vars, 2);
  CHECK(zenlo_term_is_exists(env, q));
  CHECK(zenlo_existentially_quantify(env, body, vars, 0).repr == body.repr);

  other = zenlo_create_env(cfg);
  copy = zenlo_make_copy_from(other, subst, env);
  CHECK(!ZENLO_ERROR_TERM(copy) && copy.repr != subst.repr);
  CHECK(repr_is(copy, "(`=_int` vy 2)"));
  back = zenlo_make_copy_from(env, copy, other);
  CHECK(back.repr == subst.repr);
  shared = zenlo_create_shared_env(cfg, env);
  CHECK(zenlo_make_copy_from(shared, subst, env).repr == subst.repr);
  CHECK(zenlo_make_int_number(shared, 2).repr
        == zenlo_make_int_number(env, 2).repr);
  zenlo_destroy_env(shared);
  zenlo_destroy_env(other);
}

static void test_errors(zenlo_config cfg) {
  zenlo_term p = zenlo_make_constant(env, zenlo_find_decl(env, "p"));
  zenlo_term x = zenlo_make_constant(env, zenlo_find_decl(env, "x"));
  zenlo_term u = zenlo_make_constant(env, zenlo_find_decl(env, "u"));
  zenlo_term none = {NULL};
  zenlo_env noenv = {NULL};
  zenlo_term args[2];

  CHECK(ZENLO_ERROR_TERM(zenlo_make_plus(env, p, x)));
  CHECK_MSG(env,
            "type error. term p has type Bool, but Real was expected. "
            "(make_plus)");
  /* A later success keeps the text. */
  CHECK(!ZENLO_ERROR_TERM(zenlo_make_not(env, p)));
  CHECK_MSG(env,
            "type error. term p has type Bool, but Real was expected. "
            "(make_plus)");
  args[0] = p;
  args[1] = p;
  CHECK(ZENLO_ERROR_TERM(zenlo_make_term(
      env,
      zenlo_term_get_decl(zenlo_make_and(
          env, p, zenlo_make_leq(env, x, zenlo_make_number(env, "3")))),
      NULL)));
  CHECK_MSG(env, "invalid array argument `args': null, with 2 elements");
  CHECK(ZENLO_ERROR_TERM(zenlo_make_bv_plus(env, u, x)));
  CHECK_MSG(env, "type error. term x is not a bit vector");
  CHECK(ZENLO_ERROR_TERM(zenlo_make_bv_extract(env, 9, 0, u)));
  CHECK_MSG(env,
            "range too large in bv extraction. arg has width 8, but range is "
            "[9:0]");
  CHECK(ZENLO_ERROR_TERM(zenlo_make_bv_number(env, "300", 8, 10)));
  CHECK_MSG(env, "the number 300 doesn't fit in 8 bits");
  CHECK(ZENLO_ERROR_TERM(zenlo_make_bv_number(env, "12", 8, 7)));
  CHECK(ZENLO_ERROR_TERM(zenlo_make_number(env, "abc")));
  CHECK(ZENLO_ERROR_TERM(zenlo_make_equal(env, p, p)));
  CHECK_MSG(env, "Equality arguments can't be Boolean");
  CHECK(ZENLO_ERROR_TYPE(zenlo_get_fp_type(env, 1, 4)));
  CHECK(ZENLO_ERROR_DECL(zenlo_declare_function(env, "x", treal)));
  CHECK_MSG(env, "A symbol with name `x' already exists, with type: Int");
  CHECK(ZENLO_ERROR_TERM(zenlo_make_uf(env, zenlo_find_decl(env, "f"), args)));
  CHECK_MSG(env,
            "type error. term p has type Bool, but Int was expected. "
            "(make_uninterpreted_function)");

  /* Null handles and a null environment: error values, never a crash. */
  CHECK(ZENLO_ERROR_TERM(zenlo_make_not(env, none)));
  CHECK_MSG(env, "invalid term argument");
  CHECK(ZENLO_ERROR_TERM(zenlo_make_number(env, NULL)));
  CHECK(ZENLO_ERROR_TERM(zenlo_make_true(noenv)));
  CHECK(ZENLO_ERROR_TERM(zenlo_make_and(noenv, p, p)));
  CHECK(ZENLO_ERROR_TYPE(zenlo_get_bool_type(noenv)));
  CHECK(ZENLO_ERROR_DECL(zenlo_declare_function(env, NULL, tint)));
  CHECK(ZENLO_ERROR_DECL(zenlo_declare_function(env, "g", (zenlo_type){NULL})));
  CHECK(ZENLO_ERROR_TERM(zenlo_make_copy_from(env, p, noenv)));
  CHECK(zenlo_visit_term(noenv, p, count_all, NULL) == -1);
  CHECK(zenlo_visit_term(env, p, NULL, NULL) == -1);
  CHECK(zenlo_term_is_and(noenv, p) == 0 && zenlo_term_is_and(env, none) == 0);
  CHECK(zenlo_term_arity(none) == 0 && zenlo_term_id(none) == 0);
  CHECK(ZENLO_ERROR_TERM(zenlo_term_get_arg(none, 0)));
  CHECK(ZENLO_ERROR_TYPE(zenlo_term_get_type(none)));
  CHECK(ZENLO_ERROR_DECL(zenlo_term_get_decl(none)));
  CHECK(zenlo_term_repr(none) == NULL);
  CHECK(zenlo_decl_get_name((zenlo_decl){NULL}) == NULL);
  CHECK(zenlo_decl_get_tag(noenv, zenlo_term_get_decl(p)) == -1);
  CHECK(zenlo_is_bv_type(noenv, tint, NULL) == 0);
  CHECK(zenlo_type_repr((zenlo_type){NULL}) == NULL);
  CHECK(strcmp(zenlo_last_error_message(noenv), "invalid environment") == 0);
  CHECK(ZENLO_ERROR_ENV(zenlo_create_env((zenlo_config){NULL})));
  CHECK(ZENLO_ERROR_ENV(zenlo_create_shared_env(cfg, noenv)));
  zenlo_destroy_env(noenv);
}

int main(void) {
  zenlo_config cfg = zenlo_create_config();
  env = zenlo_create_env(cfg);
  CHECK(!ZENLO_ERROR_ENV(env));
  tbool = zenlo_get_bool_type(env);
  tint = zenlo_get_integer_type(env);
  treal = zenlo_get_rational_type(env);

  test_types_and_declarations();
  test_boolean_and_arithmetic();
  test_bit_vectors_and_arrays();
  test_floats();
  test_services(cfg);
  test_errors(cfg);

  zenlo_destroy_env(env);
  zenlo_destroy_config(cfg);
  if (failures > 0) {
    fprintf(stderr, "%d checks failed\n", failures);
    return 1;
  }
  return 0;
}
