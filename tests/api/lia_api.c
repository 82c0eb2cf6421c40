/* Linear integer arithmetic through zenlo.h: 10^4 incremental rounds over
 * a fixed integer base, each answer compared with an enumeration of the
 * integer points and each model checked, in flat memory. */
#include <gmp.h>
#include <stdio.h>

#include "apicheck.h"
#include "zenlo.h"

static zenlo_term int_var(zenlo_env env, const char* name) {
  zenlo_decl d = zenlo_declare_function(env, name, zenlo_get_integer_type(env));
  return zenlo_make_constant(env, d);
}

static zenlo_term num(zenlo_env env, long n) {
  char text[32];
  snprintf(text, sizeof text, "%ld", n);
  zenlo_term t = zenlo_make_number(env, text);
  CHECK(!ZENLO_ERROR_TERM(t));
  return t;
}

static zenlo_term times(zenlo_env env, long k, zenlo_term t) {
  return zenlo_make_times(env, num(env, k), t);
}

/* The model value of t; it must be an integer that fits a long. */
static long int_value(zenlo_env env, zenlo_term t) {
  zenlo_term v = zenlo_get_model_value(env, t);
  CHECK(!ZENLO_ERROR_TERM(v));
  mpq_t q;
  mpq_init(q);
  CHECK(zenlo_term_to_number(env, v, q) == 0);
  CHECK(mpz_cmp_ui(mpq_denref(q), 1) == 0);
  long n = mpz_get_si(mpq_numref(q));
  mpq_clear(q);
  return n;
}

/* Whether 3x + 5y = k has a solution with x, y >= 0, x + y <= 10. */
static int reachable(long k) {
  for (long x = 0; x <= 10; ++x) {
    for (long y = 0; x + y <= 10; ++y) {
      if (3 * x + 5 * y == k) {
        return 1;
      }
    }
  }
  return 0;
}

/* Over x >= 0, y >= 0, 2x + 2y <= 21 (so x + y <= 10): push, 3x + 5y = k
 * with k in 0..52, check, pop. The relaxation is feasible for every k up
 * to 50; the integers miss some (1, 2, 4, 7, ...), which only integer
 * reasoning sees. */
static void test_incremental_rounds(void) {
  zenlo_config cfg = zenlo_create_config();
  CHECK(zenlo_set_option(cfg, "model_generation", "true") == 0);
  zenlo_env env = zenlo_create_env(cfg);
  zenlo_destroy_config(cfg);
  zenlo_term x = int_var(env, "x");
  zenlo_term y = int_var(env, "y");
  zenlo_assert_formula(env, zenlo_make_leq(env, num(env, 0), x));
  zenlo_assert_formula(env, zenlo_make_leq(env, num(env, 0), y));
  zenlo_assert_formula(
      env,
      zenlo_make_leq(env,
                     zenlo_make_plus(env, times(env, 2, x), times(env, 2, y)),
                     num(env, 21)));
  zenlo_term sum = zenlo_make_plus(env, times(env, 3, x), times(env, 5, y));
  long pages_at_1000 = 0;
  int wrong = 0, bad_models = 0;
  for (int round = 0; round < 10000; ++round) {
    long k = round % 53;
    CHECK(zenlo_push_backtrack_point(env) == 0);
    zenlo_assert_formula(env, zenlo_make_equal(env, sum, num(env, k)));
    int expected = reachable(k) ? ZENLO_SAT : ZENLO_UNSAT;
    int answer = zenlo_solve(env);
    if (answer != expected) {
      if (wrong++ < 5) {
        fprintf(stderr, "round %d, k = %ld: answer %d\n", round, k, answer);
      }
    } else if (answer == ZENLO_SAT && round % 50 == 0) {
      long vx = int_value(env, x), vy = int_value(env, y);
      if (vx < 0 || vy < 0 || vx + vy > 10 || 3 * vx + 5 * vy != k) {
        ++bad_models;
      }
    }
    CHECK(zenlo_pop_backtrack_point(env) == 0);
    if (round == 999) {
      pages_at_1000 = resident_pages();
    }
  }
  CHECK(wrong == 0);
  CHECK(bad_models == 0);
  /* Flat: at most 2 MB more after 9000 further rounds. */
  long growth_kb = (resident_pages() - pages_at_1000) * 4;
  if (growth_kb > 2048) {
    fprintf(stderr, "memory grew by %ld kB over 9000 rounds\n", growth_kb);
    ++failures;
  }
  zenlo_destroy_env(env);
}

int main(void) {
  test_incremental_rounds();
  if (failures != 0) {
    fprintf(stderr, "%d failure(s)\n", failures);
    return 1;
  }
  return 0;
}
