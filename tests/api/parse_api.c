/* SMT-LIB 2 text through the C interface: reading scripts, single terms,
 * named and annotated lists, from strings and files; printing and reading
 * back to the same term; error values and messages. Uses only zenlo.h. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "apicheck.h"
#include "zenlo.h"

#define CHECK_MSG(env, text)                                  \
  do {                                                        \
    if (strcmp(zenlo_last_error_message(env), (text)) != 0) { \
      fprintf(stderr,                                         \
              "%s:%d: message: %s\n",                         \
              __FILE__,                                       \
              __LINE__,                                       \
              zenlo_last_error_message(env));                 \
      ++failures;                                             \
    }                                                         \
  } while (0)

static zenlo_env env;

static const char* script =
    "(declare-fun x () Int) (declare-fun p () Bool)\n"
    "(define-fun big () Bool (> x 10))\n"
    "(assert (! (or p big) :named first))\n"
    "(assert (! (and (< x 20) (=> p (= x 3))) :named second :weight 2))\n"
    "(check-sat)\n";

/* Prints `t` as a script and reads it back: it must be the same term. */
static void check_round_trip(zenlo_term t) {
  char* text = zenlo_to_smtlib2(env, t);
  CHECK(text != NULL);
  if (text != NULL) {
    zenlo_term back = zenlo_from_smtlib2(env, text);
    CHECK(!ZENLO_ERROR_TERM(back));
    CHECK(back.repr == t.repr);
    zenlo_free(text);
  }
}

static void test_read_and_print(void) {
  zenlo_term f = zenlo_from_smtlib2(env, script);
  CHECK(!ZENLO_ERROR_TERM(f));
  CHECK(zenlo_term_is_and(env, f));
  check_round_trip(f);

  /* A single term over the symbols the script declared. */
  zenlo_term t = zenlo_from_string(env, "(and p (< x 3))");
  CHECK(!ZENLO_ERROR_TERM(t));
  CHECK(zenlo_term_is_and(env, t));
  check_round_trip(t);
  char* one = zenlo_to_smtlib2_term(env, t);
  CHECK(one != NULL && strchr(one, '\n') == NULL);
  CHECK(zenlo_from_string(env, one).repr == t.repr);
  zenlo_free(one);

  /* zenlo_from_string also takes scripts. */
  zenlo_term s = zenlo_from_string(env, "(assert p) (assert (> x 0))");
  CHECK(!ZENLO_ERROR_TERM(s) && zenlo_term_is_and(env, s));

  char* ext = zenlo_to_smtlib2_ext(env, t, "my formula", "QF_LIA", 1);
  CHECK(ext != NULL);
  CHECK(strstr(ext, "(set-logic QF_LIA)") != NULL);
  CHECK(strstr(ext, ":named |my formula|") != NULL);
  CHECK(strstr(ext, "(define-fun ") != NULL);
  CHECK(zenlo_from_smtlib2(env, ext).repr == t.repr);
  zenlo_free(ext);
}

static void test_named_and_annotated(void) {
  size_t n = 0, i;
  char** names = NULL;
  zenlo_term* terms = NULL;
  CHECK(zenlo_named_list_from_smtlib2(env, script, &n, &names, &terms) == 0);
  CHECK(n == 2);
  if (n == 2) {
    CHECK(strcmp(names[0], "first") == 0 && strcmp(names[1], "second") == 0);
    CHECK(zenlo_term_is_or(env, terms[0]));
    char* text = zenlo_named_list_to_smtlib2(env, n, names, terms);
    CHECK(text != NULL);
    size_t n2 = 0;
    char** names2 = NULL;
    zenlo_term* terms2 = NULL;
    CHECK(zenlo_named_list_from_smtlib2(env, text, &n2, &names2, &terms2) == 0);
    CHECK(n2 == 2);
    for (i = 0; i < n2 && i < 2; ++i) {
      CHECK(strcmp(names2[i], names[i]) == 0);
      CHECK(terms2[i].repr == terms[i].repr);
    }
    zenlo_free(names2);
    zenlo_free(terms2);
    zenlo_free(text);
  }
  zenlo_free(names);
  zenlo_free(terms);

  size_t* counts = NULL;
  char** annots = NULL;
  CHECK(zenlo_annotated_list_from_smtlib2(
            env, script, &n, &terms, &counts, &annots)
        == 0);
  CHECK(n == 2);
  if (n == 2) {
    CHECK(counts[0] == 1 && counts[1] == 2);
    CHECK(strcmp(annots[0], ":named") == 0 && strcmp(annots[1], "first") == 0);
    CHECK(strcmp(annots[4], ":weight") == 0 && strcmp(annots[5], "2") == 0);
    char* text = zenlo_annotated_list_to_smtlib2(env, n, terms, counts, annots);
    CHECK(text != NULL && strstr(text, ":weight 2") != NULL);
    zenlo_free(text);
  }
  zenlo_free(terms);
  zenlo_free(counts);
  zenlo_free(annots);
}

static void test_files(void) {
  FILE* f = tmpfile();
  zenlo_term t = zenlo_from_string(env, "(or p (distinct x 7))");
  CHECK(f != NULL && !ZENLO_ERROR_TERM(t));
  if (f == NULL) {
    return;
  }
  CHECK(zenlo_to_smtlib2_file(env, t, f) == 0);
  rewind(f);
  CHECK(zenlo_from_smtlib2_file(env, f).repr == t.repr);
  rewind(f);
  size_t n = 7;
  char** names = NULL;
  zenlo_term* terms = NULL;
  CHECK(zenlo_named_list_from_smtlib2_file(env, f, &n, &names, &terms) == 0);
  CHECK(n == 0);
  zenlo_free(names);
  zenlo_free(terms);
  fclose(f);
}

static void test_errors(void) {
  CHECK(ZENLO_ERROR_TERM(zenlo_from_smtlib2(env, "(assert\n(and p q))")));
  CHECK_MSG(env, "unknown symbol: q (line: 2)");
  CHECK(ZENLO_ERROR_TERM(zenlo_from_smtlib2(env, "(assert (and p")));
  CHECK_MSG(env,
            "syntax error, unexpected end of input, expecting a term "
            "(line: 1)");
  CHECK(ZENLO_ERROR_TERM(zenlo_from_smtlib2(env, "(push 1)")));
  CHECK_MSG(env, "unsupported command: push (line: 1)");
  CHECK(ZENLO_ERROR_TERM(zenlo_from_string(env, "(and p) p")));
  CHECK(ZENLO_ERROR_TERM(zenlo_from_smtlib2(env, NULL)));
  CHECK_MSG(env, "invalid string argument");
  CHECK(ZENLO_ERROR_TERM(zenlo_from_smtlib1(env, "(benchmark b)")));
  CHECK_MSG(env, "SMT-LIB 1 is not supported yet");
  CHECK(zenlo_to_smtlib1(env, zenlo_make_true(env)) == NULL);
  CHECK_MSG(env, "SMT-LIB 1 is not supported yet");
  size_t n = 5;
  char** names = NULL;
  zenlo_term* terms = NULL;
  CHECK(zenlo_named_list_from_smtlib2(env, "(assert", &n, &names, &terms)
        == -1);
  CHECK(n == 5 && names == NULL && terms == NULL);
  CHECK(zenlo_to_smtlib2(env, zenlo_from_string(env, "x")) == NULL);
  CHECK(zenlo_to_smtlib2_term(env, (zenlo_term){NULL}) == NULL);
  CHECK_MSG(env, "invalid term argument");
  zenlo_env none = {NULL};
  CHECK(ZENLO_ERROR_TERM(zenlo_from_smtlib2(none, "(assert true)")));
}

int main(void) {
  zenlo_config cfg = zenlo_create_config();
  env = zenlo_create_env(cfg);
  zenlo_destroy_config(cfg);
  if (ZENLO_ERROR_ENV(env)) {
    fprintf(stderr, "no environment\n");
    return 1;
  }
  test_read_and_print();
  test_named_and_annotated();
  test_files();
  test_errors();
  zenlo_destroy_env(env);
  if (failures > 0) {
    fprintf(stderr, "%d failures\n", failures);
    return 1;
  }
  return 0;
}
