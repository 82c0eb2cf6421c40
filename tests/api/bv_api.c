/* Bit-vector terms built through zenlo.h and solved: a model whose
 * values satisfy the constraints, unsat under a contradiction, and
 * division by zero with SMT-LIB's result. */
#include <stdio.h>
#include <string.h>

#include "apicheck.h"
#include "zenlo.h"

static zenlo_env new_env(void) {
  zenlo_config cfg = zenlo_create_config();
  CHECK(zenlo_set_option(cfg, "model_generation", "true") == 0);
  zenlo_env env = zenlo_create_env(cfg);
  zenlo_destroy_config(cfg);
  CHECK(!ZENLO_ERROR_ENV(env));
  return env;
}

static zenlo_term bv_var(zenlo_env env, const char* name, size_t w) {
  zenlo_decl d = zenlo_declare_function(env, name, zenlo_get_bv_type(env, w));
  return zenlo_make_constant(env, d);
}

/* The value of `t` in the model equals the number `value`. */
static int has_value(zenlo_env env, zenlo_term t, int value, size_t w) {
  zenlo_term v = zenlo_get_model_value(env, t);
  /* Terms are hash-consed: equal numbers are one term. */
  return !ZENLO_ERROR_TERM(v)
         && v.repr == zenlo_make_bv_int_number(env, value, w).repr;
}

static void test_model(void) {
  zenlo_env env = new_env();
  zenlo_term x = bv_var(env, "x", 8);
  zenlo_term y = bv_var(env, "y", 8);
  zenlo_term k3 = zenlo_make_bv_int_number(env, 3, 8);
  /* x * 3 = 15, x + y = 0x10, x < y */
  CHECK(zenlo_assert_formula(
            env,
            zenlo_make_equal(env,
                             zenlo_make_bv_times(env, x, k3),
                             zenlo_make_bv_int_number(env, 15, 8)))
        == 0);
  CHECK(zenlo_assert_formula(
            env,
            zenlo_make_equal(env,
                             zenlo_make_bv_plus(env, x, y),
                             zenlo_make_bv_int_number(env, 16, 8)))
        == 0);
  CHECK(zenlo_assert_formula(env, zenlo_make_bv_ult(env, x, y)) == 0);
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  CHECK(has_value(env, x, 5, 8));
  CHECK(has_value(env, y, 11, 8));
  CHECK(has_value(env, zenlo_make_bv_minus(env, y, x), 6, 8));

  CHECK(zenlo_push_backtrack_point(env) == 0);
  CHECK(zenlo_assert_formula(env, zenlo_make_bv_ult(env, y, x)) == 0);
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  CHECK(zenlo_pop_backtrack_point(env) == 0);
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  zenlo_destroy_env(env);
}

static void test_division_by_zero(void) {
  zenlo_env env = new_env();
  zenlo_term x = bv_var(env, "x", 4);
  zenlo_term z = bv_var(env, "z", 4);
  CHECK(zenlo_assert_formula(
            env, zenlo_make_equal(env, z, zenlo_make_bv_int_number(env, 0, 4)))
        == 0);
  CHECK(zenlo_assert_formula(
            env, zenlo_make_equal(env, x, zenlo_make_bv_int_number(env, 9, 4)))
        == 0);
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  CHECK(has_value(env, zenlo_make_bv_udiv(env, x, z), 15, 4));
  CHECK(has_value(env, zenlo_make_bv_urem(env, x, z), 9, 4));
  zenlo_destroy_env(env);
}

int main(void) {
  test_model();
  test_division_by_zero();
  if (failures != 0) {
    fprintf(stderr, "%d failures\n", failures);
    return 1;
  }
  return 0;
}
