/* Asserting and solving Boolean formulas through zenlo.h only. */
#include <stdio.h>
#include <string.h>

#include "apicheck.h"
#include "zenlo.h"

static zenlo_env new_env(void) {
  zenlo_config cfg = zenlo_create_config();
  zenlo_env env = zenlo_create_env(cfg);
  zenlo_destroy_config(cfg);
  CHECK(!ZENLO_ERROR_ENV(env));
  return env;
}

static zenlo_term atom(zenlo_env env, const char* name) {
  zenlo_decl d = zenlo_declare_function(env, name, zenlo_get_bool_type(env));
  return zenlo_make_constant(env, d);
}

/* (a | b) & (!a | c) & (!b | c) implies c; with !c it is unsatisfiable. */
static void test_boolean_formulas(void) {
  zenlo_env env = new_env();
  zenlo_term a = atom(env, "a");
  zenlo_term b = atom(env, "b");
  zenlo_term c = atom(env, "c");
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  CHECK(zenlo_assert_formula(env, zenlo_make_or(env, a, b)) == 0);
  CHECK(zenlo_assert_formula(env, zenlo_make_or(env, zenlo_make_not(env, a), c))
        == 0);
  CHECK(zenlo_assert_formula(env, zenlo_make_or(env, zenlo_make_not(env, b), c))
        == 0);
  CHECK(zenlo_solve(env) == ZENLO_SAT);
  CHECK(zenlo_assert_formula(env, zenlo_make_not(env, c)) == 0);
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);

  /* After a reset the same terms are still good. */
  CHECK(zenlo_reset_env(env) == 0);
  CHECK(
      zenlo_assert_formula(env, zenlo_make_iff(env, a, zenlo_make_not(env, b)))
      == 0);
  CHECK(zenlo_assert_formula(env, zenlo_make_iff(env, a, b)) == 0);
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  CHECK(zenlo_reset_env(env) == 0);
  CHECK(zenlo_assert_formula(env, zenlo_make_false(env)) == 0);
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  zenlo_destroy_env(env);
}

static void test_bad_calls(void) {
  zenlo_env none;
  zenlo_term no_term;
  zenlo_env env = new_env();
  zenlo_decl x;
  none.repr = NULL;
  no_term.repr = NULL;
  CHECK(zenlo_assert_formula(none, zenlo_make_true(env)) == -1);
  CHECK(zenlo_solve(none) == -1);
  CHECK(zenlo_reset_env(none) == -1);
  CHECK(zenlo_set_termination_test(none, NULL, NULL) == -1);

  CHECK(zenlo_assert_formula(env, no_term) == -1);
  CHECK(strcmp(zenlo_last_error_message(env), "invalid term argument") == 0);
  x = zenlo_declare_function(env, "x", zenlo_get_integer_type(env));
  CHECK(zenlo_assert_formula(env, zenlo_make_constant(env, x)) == -1);
  CHECK(strlen(zenlo_last_error_message(env)) > 0);
  /* A quantifier cannot be turned into clauses. */
  {
    zenlo_term v = zenlo_make_variable(env, "v", zenlo_get_bool_type(env));
    CHECK(zenlo_assert_formula(env, zenlo_make_forall(env, v, v)) == 0);
    CHECK(zenlo_solve(env) == -1);
    CHECK(strcmp(zenlo_last_error_message(env),
                 "The CNF conversion does not support quantifiers")
          == 0);
  }
  zenlo_destroy_env(env);
  zenlo_destroy_env(none);
}

static int stop_after(void* data) {
  int* left = (int*)data;
  return --*left <= 0;
}

/* n pigeons into n - 1 holes, clause by clause. */
static void assert_pigeons(zenlo_env env, int n) {
  char name[32];
  zenlo_term at[10][10];
  int p, q, h;
  for (p = 0; p < n; ++p) {
    for (h = 0; h < n - 1; ++h) {
      snprintf(name, sizeof name, "p%dh%d", p, h);
      at[p][h] = atom(env, name);
    }
  }
  for (p = 0; p < n; ++p) {
    zenlo_term some = at[p][0];
    for (h = 1; h < n - 1; ++h) {
      some = zenlo_make_or(env, some, at[p][h]);
    }
    CHECK(zenlo_assert_formula(env, some) == 0);
  }
  for (h = 0; h < n - 1; ++h) {
    for (p = 0; p < n; ++p) {
      for (q = p + 1; q < n; ++q) {
        zenlo_term both = zenlo_make_and(env, at[p][h], at[q][h]);
        CHECK(zenlo_assert_formula(env, zenlo_make_not(env, both)) == 0);
      }
    }
  }
}

static void test_termination_callback(void) {
  zenlo_env env = new_env();
  int left = 2;
  assert_pigeons(env, 8);
  CHECK(zenlo_set_termination_test(env, stop_after, &left) == 0);
  CHECK(zenlo_solve(env) == -1);
  CHECK(strcmp(zenlo_last_error_message(env), "user-requested termination")
        == 0);
  /* Without the callback the next check starts over and finishes. */
  CHECK(zenlo_set_termination_test(env, NULL, NULL) == 0);
  CHECK(zenlo_solve(env) == ZENLO_UNSAT);
  zenlo_destroy_env(env);
}

int main(void) {
  test_boolean_formulas();
  test_bad_calls();
  test_termination_callback();
  if (failures != 0) {
    fprintf(stderr, "%d check(s) failed\n", failures);
    return 1;
  }
  return 0;
}
