/* Enumerated sorts through the C interface: terms of such a sort can run
 * out of values, which congruence alone does not see, and models give
 * every term one of the sort's own values. Uses nothing but zenlo.h. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "apicheck.h"
#include "zenlo.h"

static zenlo_env env;
static zenlo_type color;
static zenlo_decl values[3];

static zenlo_term constant(const char* name, zenlo_type t) {
  zenlo_decl d = zenlo_declare_function(env, name, t);
  CHECK(!ZENLO_ERROR_DECL(d));
  return zenlo_make_constant(env, d);
}

static void assert_distinct(zenlo_term* t, int n) {
  int i, j;
  for (i = 0; i < n; ++i) {
    for (j = i + 1; j < n; ++j) {
      CHECK(zenlo_assert_formula(
                env, zenlo_make_not(env, zenlo_make_equal(env, t[i], t[j])))
            == 0);
    }
  }
}

/* The model value of t: one of the three values. */
static int value_index(zenlo_term t) {
  zenlo_term v = zenlo_get_model_value(env, t);
  int i;
  if (ZENLO_ERROR_TERM(v)) {
    return -1;
  }
  for (i = 0; i < 3; ++i) {
    if (zenlo_term_id(v)
        == zenlo_term_id(zenlo_make_constant(env, values[i]))) {
      return i;
    }
  }
  return -1;
}

static void test_pigeons(void) {
  zenlo_term c[4];
  int i, seen = 0;
  c[0] = constant("c0", color);
  c[1] = constant("c1", color);
  c[2] = constant("c2", color);
  c[3] = constant("c3", color);

  /* Three distinct constants take the three values, each one. */
  CHECK(zenlo_push_backtrack_point(env) == 0);
  assert_distinct(c, 3);
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  for (i = 0; i < 3; ++i) {
    int k = value_index(c[i]);
    CHECK(k >= 0);
    if (k >= 0) {
      seen |= 1 << k;
    }
  }
  CHECK(seen == 7);
  /* A fourth does not fit. */
  assert_distinct(c, 4);
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  CHECK(zenlo_pop_backtrack_point(env) == 0);

  /* After the pop the four may share values again. */
  CHECK(zenlo_solve(env) == ZENLO_SAT);
}

/* Two classes kept apart only by a function: f(x) != f(y) needs x != y,
 * and with x, y both unequal to red and to green, they must both be blue. */
static void test_function_over_enum(void) {
  zenlo_type args[1];
  zenlo_decl f;
  zenlo_term x, y, fx, fy, red, green;
  args[0] = color;
  f = zenlo_declare_function(
      env, "f", zenlo_get_function_type(env, args, 1, color));
  x = constant("x", color);
  y = constant("y", color);
  fx = zenlo_make_uf(env, f, &x);
  fy = zenlo_make_uf(env, f, &y);
  red = zenlo_make_constant(env, values[0]);
  green = zenlo_make_constant(env, values[1]);
  CHECK(zenlo_push_backtrack_point(env) == 0);
  CHECK(zenlo_assert_formula(env,
                             zenlo_make_not(env, zenlo_make_equal(env, fx, fy)))
        == 0);
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  CHECK(value_index(x) >= 0 && value_index(y) >= 0);
  CHECK(value_index(x) != value_index(y));
  CHECK(value_index(fx) >= 0 && value_index(fx) != value_index(fy));
  CHECK(zenlo_assert_formula(env,
                             zenlo_make_not(env, zenlo_make_equal(env, x, red)))
        == 0);
  CHECK(zenlo_assert_formula(env,
                             zenlo_make_not(env, zenlo_make_equal(env, y, red)))
        == 0);
  CHECK(zenlo_assert_formula(
            env, zenlo_make_not(env, zenlo_make_equal(env, x, green)))
        == 0);
  CHECK(zenlo_assert_formula(
            env, zenlo_make_not(env, zenlo_make_equal(env, y, green)))
        == 0);
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  CHECK(zenlo_pop_backtrack_point(env) == 0);
}

int main(void) {
  const char* names[3] = {"red", "green", "blue"};
  zenlo_config cfg = zenlo_create_config();
  CHECK(zenlo_set_option(cfg, "model_generation", "true") == 0);
  CHECK(zenlo_set_option(cfg, "check.theory_facts", "true") == 0);
  CHECK(zenlo_set_option(cfg, "check.models", "true") == 0);
  env = zenlo_create_env(cfg);
  zenlo_destroy_config(cfg);
  color = zenlo_get_enum_type(env, "Color", 3, names, values);
  test_pigeons();
  test_function_over_enum();
  zenlo_destroy_env(env);
  if (failures > 0) {
    fprintf(stderr, "%d failures\n", failures);
    return 1;
  }
  return 0;
}
