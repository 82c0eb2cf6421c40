/* Every function that takes an array with its length refuses a null array
 * of positive length: it returns its error value, names the argument in
 * the error message, and leaves the environment usable. */
#include <stdio.h>
#include <string.h>

#include "apicheck.h"
#include "zenlo.h"

/* The last error names `arg`. */
static void expect_named(zenlo_env env, const char* arg, int line) {
  const char* msg = zenlo_last_error_message(env);
  char quoted[64];
  snprintf(quoted, sizeof quoted, "`%s'", arg);
  if (strstr(msg, quoted) == NULL) {
    fprintf(stderr,
            "%s:%d: message \"%s\" does not name %s\n",
            __FILE__,
            line,
            msg,
            quoted);
    ++failures;
  }
}

static int on_model(zenlo_model_iterator it, void* data) {
  (void)it;
  (void)data;
  return 1;
}

int main(void) {
  zenlo_config cfg = zenlo_create_config();
  zenlo_env env = zenlo_create_env(cfg);
  zenlo_destroy_config(cfg);
  CHECK(!ZENLO_ERROR_ENV(env));
  zenlo_type b = zenlo_get_bool_type(env);
  zenlo_decl pd = zenlo_declare_function(env, "p", b);
  zenlo_term p = zenlo_make_constant(env, pd);
  zenlo_type i = zenlo_get_integer_type(env);
  zenlo_type fb = zenlo_get_function_type(env, &i, 1, b);
  zenlo_decl f = zenlo_declare_function(env, "f", fb);

  CHECK(zenlo_solve_with_assumptions(env, NULL, 2) == -1);
  expect_named(env, "assumptions", __LINE__);
  CHECK(zenlo_gc_env(env, NULL, 1) == -1);
  expect_named(env, "tokeep", __LINE__);
  CHECK(zenlo_solve_diversify(env, NULL, 3, on_model, NULL) == -1);
  expect_named(env, "diversifiers", __LINE__);
  CHECK(ZENLO_ERROR_TYPE(zenlo_get_function_type(env, NULL, 2, b)));
  expect_named(env, "param_types", __LINE__);
  CHECK(ZENLO_ERROR_TYPE(zenlo_get_enum_type(env, "E", 2, NULL, NULL)));
  expect_named(env, "values", __LINE__);
  CHECK(ZENLO_ERROR_TERM(zenlo_existentially_quantify(env, p, NULL, 1)));
  expect_named(env, "vars", __LINE__);
  CHECK(ZENLO_ERROR_TERM(zenlo_apply_substitution(env, p, 1, NULL, &p)));
  expect_named(env, "to_subst", __LINE__);
  CHECK(ZENLO_ERROR_TERM(zenlo_apply_substitution(env, p, 1, &p, NULL)));
  expect_named(env, "values", __LINE__);
  CHECK(zenlo_named_list_to_smtlib2(env, 1, NULL, &p) == NULL);
  expect_named(env, "names", __LINE__);
  CHECK(zenlo_named_list_to_smtlib2(env, 2, NULL, NULL) == NULL);
  CHECK(zenlo_named_list_to_smtlib2_file(env, 1, NULL, &p, stdout) == -1);
  expect_named(env, "names", __LINE__);
  CHECK(zenlo_annotated_list_to_smtlib2(env, 1, &p, NULL, NULL) == NULL);
  expect_named(env, "counts", __LINE__);
  CHECK(zenlo_annotated_list_to_smtlib2_file(env, 1, &p, NULL, NULL, stdout)
        == -1);
  expect_named(env, "counts", __LINE__);
  CHECK(ZENLO_ERROR_TERM(zenlo_make_uf(env, f, NULL)));
  expect_named(env, "args", __LINE__);
  CHECK(ZENLO_ERROR_TERM(zenlo_make_term(env, f, NULL)));
  expect_named(env, "args", __LINE__);

  /* Empty arrays may be null, and the environment still works. */
  CHECK(zenlo_solve_with_assumptions(env, NULL, 0) == ZENLO_SAT);
  CHECK(zenlo_gc_env(env, NULL, 0) == 0);
  CHECK(zenlo_assert_formula(env, p) == 0);
  CHECK(zenlo_solve(env) == ZENLO_SAT);

  zenlo_destroy_env(env);
  if (failures != 0) {
    fprintf(stderr, "%d check(s) failed\n", failures);
    return 1;
  }
  printf("null arrays: all checks passed\n");
  return 0;
}
