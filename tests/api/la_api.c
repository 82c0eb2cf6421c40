/* Linear real arithmetic through zenlo.h: exact rational models checked
 * against the constraints, strict bounds and disequalities, numbers past
 * 64 bits, refused input that leaves the environment usable, and 10^4
 * incremental rounds that answer like fresh solvers in flat memory. */
#include <gmp.h>
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

static zenlo_term real_var(zenlo_env env, const char* name) {
  zenlo_decl d =
      zenlo_declare_function(env, name, zenlo_get_rational_type(env));
  return zenlo_make_constant(env, d);
}

static zenlo_term num(zenlo_env env, const char* text) {
  zenlo_term t = zenlo_make_number(env, text);
  CHECK(!ZENLO_ERROR_TERM(t));
  return t;
}

/* a < b, as not (b <= a) */
static zenlo_term lt(zenlo_env env, zenlo_term a, zenlo_term b) {
  return zenlo_make_not(env, zenlo_make_leq(env, b, a));
}

/* The model value of t, as an exact rational. */
static void value(zenlo_env env, zenlo_term t, mpq_t out) {
  zenlo_term v = zenlo_get_model_value(env, t);
  CHECK(!ZENLO_ERROR_TERM(v));
  CHECK(zenlo_term_to_number(env, v, out) == 0);
}

static void test_model_satisfies_constraints(void) {
  zenlo_env env = new_env();
  zenlo_term x = real_var(env, "x");
  zenlo_term y = real_var(env, "y");
  /* x + 2y <= 3, x > 1, 3y > 1/2 */
  zenlo_term sum =
      zenlo_make_plus(env, x, zenlo_make_times(env, num(env, "2"), y));
  CHECK(zenlo_assert_formula(env, zenlo_make_leq(env, sum, num(env, "3")))
        == 0);
  CHECK(zenlo_assert_formula(env, lt(env, num(env, "1"), x)) == 0);
  CHECK(zenlo_assert_formula(
            env,
            lt(env, num(env, "1/2"), zenlo_make_times(env, num(env, "3"), y)))
        == 0);
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  mpq_t vx, vy, t, k;
  mpq_inits(vx, vy, t, k, NULL);
  value(env, x, vx);
  value(env, y, vy);
  mpq_add(t, vx, vy);
  mpq_add(t, t, vy);
  mpq_set_ui(k, 3, 1);
  CHECK(mpq_cmp(t, k) <= 0);
  CHECK(mpq_cmp_ui(vx, 1, 1) > 0);
  mpq_set_ui(k, 3, 1);
  mpq_mul(t, vy, k);
  CHECK(mpq_cmp_ui(t, 1, 2) > 0);
  /* The sum's own value agrees with its parts. */
  value(env, sum, k);
  mpq_add(t, vx, vy);
  mpq_add(t, t, vy);
  CHECK(mpq_equal(t, k));
  mpq_clears(vx, vy, t, k, NULL);
  zenlo_destroy_env(env);
}

static void test_strict_bounds_and_disequalities(void) {
  zenlo_env env = new_env();
  zenlo_term x = real_var(env, "x");
  zenlo_term y = real_var(env, "y");

  CHECK(zenlo_push_backtrack_point(env) == 0);
  zenlo_assert_formula(env, lt(env, x, y));
  zenlo_assert_formula(env, lt(env, y, x));
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  CHECK(zenlo_pop_backtrack_point(env) == 0);

  CHECK(zenlo_push_backtrack_point(env) == 0);
  zenlo_assert_formula(env, zenlo_make_not(env, zenlo_make_equal(env, x, y)));
  zenlo_assert_formula(env, zenlo_make_leq(env, x, y));
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  zenlo_assert_formula(env, zenlo_make_leq(env, y, x));
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  CHECK(zenlo_pop_backtrack_point(env) == 0);

  /* 0 < x < 1: a value strictly between. */
  zenlo_assert_formula(env, lt(env, x, num(env, "1")));
  zenlo_assert_formula(env, lt(env, num(env, "0"), x));
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  mpq_t v;
  mpq_init(v);
  value(env, x, v);
  CHECK(mpq_sgn(v) > 0 && mpq_cmp_ui(v, 1, 1) < 0);
  mpq_clear(v);
  zenlo_destroy_env(env);
}

static void test_numbers_past_a_machine_word(void) {
  zenlo_env env = new_env();
  zenlo_term x = real_var(env, "x");
  zenlo_term y = real_var(env, "y");
  const char* big = "340282366920938463463374607431768211507"; /* > 2^128 */
  /* big * x = 1 + y, y >= 2^70, x <= 1/big: unsat; x >= 0: sat. */
  zenlo_term bx = zenlo_make_times(env, num(env, big), x);
  zenlo_assert_formula(
      env, zenlo_make_equal(env, bx, zenlo_make_plus(env, num(env, "1"), y)));
  zenlo_assert_formula(
      env, zenlo_make_leq(env, num(env, "1180591620717411303424"), y));
  CHECK(zenlo_push_backtrack_point(env) == 0);
  char inv[64];
  snprintf(inv, sizeof inv, "1/%s", big);
  zenlo_assert_formula(env, zenlo_make_leq(env, x, num(env, inv)));
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  CHECK(zenlo_pop_backtrack_point(env) == 0);
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  mpq_t vx, vy, t;
  mpq_inits(vx, vy, t, NULL);
  value(env, x, vx);
  value(env, y, vy);
  mpq_set_str(t, big, 10);
  mpq_mul(t, t, vx);
  mpq_sub(t, t, vy);
  CHECK(mpq_cmp_ui(t, 1, 1) == 0);
  mpq_clears(vx, vy, t, NULL);
  zenlo_destroy_env(env);
}

/* A product of two variables is outside linear arithmetic: the check
 * answers unknown with a reason, and after a pop the environment works. */
static void test_refused_input(void) {
  zenlo_env env = new_env();
  zenlo_term x = real_var(env, "x");
  zenlo_term y = real_var(env, "y");
  zenlo_assert_formula(env, lt(env, num(env, "0"), x));
  CHECK(zenlo_push_backtrack_point(env) == 0);
  zenlo_assert_formula(
      env, zenlo_make_leq(env, zenlo_make_times(env, x, y), num(env, "1")));
  CHECK(zenlo_solve(env) == -1);
  CHECK(strlen(zenlo_last_error_message(env)) > 0);
  CHECK(zenlo_pop_backtrack_point(env) == 0);
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  /* Null handles get an error term, not a crash. */
  zenlo_term none = {NULL};
  CHECK(ZENLO_ERROR_TERM(zenlo_make_leq(env, none, x)));
  CHECK(ZENLO_ERROR_TERM(zenlo_make_plus(env, x, none)));
  CHECK(ZENLO_ERROR_TERM(zenlo_make_number(env, "not a number")));
  zenlo_destroy_env(env);
}

/* Over x >= 0, y >= 0, x + y <= 10: push, x >= k - y/2 (k in 0..14),
 * check, pop. The answer is sat exactly when k <= 10 (take y = 0 when
 * k <= 10; otherwise x >= k - y/2 > 10 - y >= x). */
static void test_incremental_rounds(void) {
  zenlo_env env = new_env();
  zenlo_term x = real_var(env, "x");
  zenlo_term y = real_var(env, "y");
  zenlo_term zero = num(env, "0");
  zenlo_assert_formula(env, zenlo_make_leq(env, zero, x));
  zenlo_assert_formula(env, zenlo_make_leq(env, zero, y));
  zenlo_assert_formula(
      env, zenlo_make_leq(env, zenlo_make_plus(env, x, y), num(env, "10")));
  zenlo_term half_y = zenlo_make_times(env, num(env, "1/2"), y);
  long pages_at_1000 = 0;
  int wrong = 0;
  for (int round = 0; round < 10000; ++round) {
    int k = round % 15;
    char text[16];
    snprintf(text, sizeof text, "%d", k);
    CHECK(zenlo_push_backtrack_point(env) == 0);
    zenlo_assert_formula(
        env,
        zenlo_make_leq(env, num(env, text), zenlo_make_plus(env, x, half_y)));
    int expected = k <= 10 ? ZENLO_SAT : ZENLO_UNSAT;
    if (zenlo_solve(env) != expected) {
      ++wrong;
    }
    CHECK(zenlo_pop_backtrack_point(env) == 0);
    if (round == 999) {
      pages_at_1000 = resident_pages();
    }
  }
  CHECK(wrong == 0);
  /* Flat: at most 2 MB more after 9000 further rounds. */
  long growth_kb = (resident_pages() - pages_at_1000) * 4;
  if (growth_kb > 2048) {
    fprintf(stderr, "memory grew by %ld kB over 9000 rounds\n", growth_kb);
    ++failures;
  }
  zenlo_destroy_env(env);
}

int main(void) {
  test_model_satisfies_constraints();
  test_strict_bounds_and_disequalities();
  test_numbers_past_a_machine_word();
  test_refused_input();
  test_incremental_rounds();
  if (failures != 0) {
    fprintf(stderr, "%d failure(s)\n", failures);
    return 1;
  }
  return 0;
}
