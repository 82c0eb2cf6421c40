/* Random sequences of push, assert, pop, check and check under assumptions
 * through zenlo.h only. At every check the answer is compared with a fresh
 * environment (sharing the term store) that holds only the live
 * assertions, and, over Boolean atoms, with brute force; every model must
 * satisfy the live assertions under zenlo_model_eval, also after the next
 * check; every set of unsat assumptions must be unsat with the
 * assertions. Every other run draws its atoms from equalities
 * over uninterpreted functions, some of whose arguments are formulas: a
 * term first met above a backtrack point must leave the congruence closure
 * whole when the point goes. */
#include <stdio.h>
#include <stdlib.h>

#include "zenlo.h"

static int failures = 0;

#define CHECK(cond)                                     \
  do {                                                  \
    if (!(cond)) {                                      \
      fprintf(stderr,                                   \
              "%s:%d: failed: %s (seed %u, step %d)\n", \
              __FILE__,                                 \
              __LINE__,                                 \
              #cond,                                    \
              seed,                                     \
              step);                                    \
      ++failures;                                       \
    }                                                   \
  } while (0)

#define NATOMS 7
#define MAXLIVE 256

static unsigned seed;
static int theory;    /* atoms over functions rather than Boolean constants */
static int counts[4]; /* sat, unsat, sat assuming, unsat assuming */
static int step;
static unsigned rng;

static unsigned next_rand(void) {
  rng = rng * 1103515245u + 12345u;
  return (rng >> 16) & 0x7fff;
}

static int pick(int n) {
  return (int)(next_rand() % (unsigned)n);
}

static zenlo_env make_env(zenlo_env share_with) {
  zenlo_config cfg = zenlo_create_config();
  zenlo_set_option(cfg, "model_generation", "true");
  if (theory) {
    zenlo_set_option(cfg, "allow_bool_function_args", "true");
  }
  zenlo_env e = ZENLO_ERROR_ENV(share_with)
                    ? zenlo_create_env(cfg)
                    : zenlo_create_shared_env(cfg, share_with);
  zenlo_destroy_config(cfg);
  return e;
}

static zenlo_term atoms[NATOMS + 1];

static zenlo_term literal(zenlo_env e) {
  zenlo_term a = atoms[pick(NATOMS)];
  return pick(2) ? a : zenlo_make_not(e, a);
}

/* A small random formula: a clause, a conjunction or an equivalence. */
static zenlo_term random_formula(zenlo_env e) {
  int kind = pick(10);
  zenlo_term f = literal(e);
  if (kind < 6) {
    int n = 1 + pick(3);
    for (int i = 0; i < n; ++i) {
      f = zenlo_make_or(e, f, literal(e));
    }
  } else if (kind < 8) {
    f = zenlo_make_iff(e, f, zenlo_make_or(e, literal(e), literal(e)));
  } else if (kind < 9) {
    f = zenlo_make_and(e, f, literal(e));
  } else {
    f = zenlo_make_not(e, zenlo_make_and(e, f, literal(e)));
  }
  return f;
}

/* Brute force: is the conjunction of `fs` satisfiable? Each assignment of
 * the atoms is substituted and folded by the construction-time
 * simplifier. */
static int brute_sat(zenlo_env e, zenlo_term* fs, int n) {
  zenlo_term all = zenlo_make_true(e);
  for (int i = 0; i < n; ++i) {
    all = zenlo_make_and(e, all, fs[i]);
  }
  for (int bits = 0; bits < (1 << (NATOMS + 1)); ++bits) {
    zenlo_term values[NATOMS + 1];
    for (int k = 0; k <= NATOMS; ++k) {
      values[k] = (bits >> k) & 1 ? zenlo_make_true(e) : zenlo_make_false(e);
    }
    zenlo_term r = zenlo_apply_substitution(e, all, NATOMS + 1, atoms, values);
    if (zenlo_term_is_true(e, r)) {
      return 1;
    }
  }
  return 0;
}

/* The answer of a fresh environment on `fs`. */
static int fresh_answer(zenlo_env e, zenlo_term* fs, int n) {
  zenlo_env f = make_env(e);
  for (int i = 0; i < n; ++i) {
    zenlo_assert_formula(f, fs[i]);
  }
  int r = zenlo_solve(f);
  zenlo_destroy_env(f);
  return r;
}

/* The answer the conjunction of `fs` must get: by brute force over
 * Boolean atoms, from a fresh environment over theory atoms. */
static int expected(zenlo_env e, zenlo_term* fs, int n) {
  if (theory) {
    return fresh_answer(e, fs, n);
  }
  return brute_sat(e, fs, n) ? ZENLO_SAT : ZENLO_UNSAT;
}

static int model_satisfies(zenlo_model m, zenlo_env e, zenlo_term* fs, int n) {
  for (int i = 0; i < n; ++i) {
    zenlo_term v = zenlo_model_eval(m, fs[i]);
    if (ZENLO_ERROR_TERM(v) || !zenlo_term_is_true(e, v)) {
      return 0;
    }
  }
  return 1;
}

static zenlo_term live[MAXLIVE];
static int nlive;
static int level_start[64];
static int depth;

/* The previous model and the formulas it must satisfy. */
static zenlo_model old_model;
static zenlo_term old_live[MAXLIVE + NATOMS];
static int old_n;

static void remember_model(zenlo_env e, zenlo_term* fs, int n) {
  zenlo_destroy_model(old_model);
  old_model = zenlo_get_model(e);
  CHECK(!ZENLO_ERROR_MODEL(old_model));
  for (int i = 0; i < n; ++i) {
    old_live[i] = fs[i];
  }
  old_n = n;
}

static void do_check(zenlo_env e) {
  int r = zenlo_solve(e);
  int expect = expected(e, live, nlive);
  CHECK(r == expect);
  if (!theory) {
    CHECK(fresh_answer(e, live, nlive) == expect);
  }
  ++counts[r == ZENLO_SAT ? 0 : 1];
  if (old_model.repr != NULL) {
    /* A handle of an earlier answer still answers as it did. */
    CHECK(model_satisfies(old_model, e, old_live, old_n));
  }
  if (r == ZENLO_SAT) {
    remember_model(e, live, nlive);
    CHECK(model_satisfies(old_model, e, live, nlive));
  }
}

static void do_check_assuming(zenlo_env e) {
  zenlo_term as[4];
  int n = 1 + pick(4);
  for (int i = 0; i < n; ++i) {
    /* atoms[NATOMS] is asserted nowhere: an atom the solver never saw. */
    zenlo_term a = atoms[pick(NATOMS + 1)];
    as[i] = pick(2) ? a : zenlo_make_not(e, a);
  }
  int r = zenlo_solve_with_assumptions(e, as, (size_t)n);
  zenlo_term all[MAXLIVE + 4];
  for (int i = 0; i < nlive; ++i) {
    all[i] = live[i];
  }
  for (int i = 0; i < n; ++i) {
    all[nlive + i] = as[i];
  }
  int expect = expected(e, all, nlive + n);
  CHECK(r == expect);
  ++counts[r == ZENLO_SAT ? 2 : 3];
  if (r == ZENLO_SAT) {
    remember_model(e, all, nlive + n);
    CHECK(model_satisfies(old_model, e, all, nlive + n));
    return;
  }
  size_t k = 0;
  zenlo_term* core = zenlo_get_unsat_assumptions(e, &k);
  CHECK(core != NULL);
  for (size_t i = 0; i < k; ++i) {
    int found = 0;
    for (int j = 0; j < n; ++j) {
      found |= core[i].repr == as[j].repr;
    }
    CHECK(found);
    all[nlive + (int)i] = core[i];
  }
  CHECK(expected(e, all, nlive + (int)k) == ZENLO_UNSAT);
  zenlo_free(core);
}

static zenlo_term constant(zenlo_env e, const char* name, zenlo_type t) {
  return zenlo_make_constant(e, zenlo_declare_function(e, name, t));
}

/* Two Boolean constants and equalities between terms over a sort U:
 * constants, f(x), and g(p, x) with a Boolean argument p that may be a
 * constant, an equality or a compound formula. */
static void make_theory_atoms(zenlo_env e) {
  zenlo_type b = zenlo_get_bool_type(e);
  zenlo_type u = zenlo_get_simple_type(e, "U");
  zenlo_type bu[2] = {b, u};
  zenlo_decl f =
      zenlo_declare_function(e, "f", zenlo_get_function_type(e, &u, 1, u));
  zenlo_decl g =
      zenlo_declare_function(e, "g", zenlo_get_function_type(e, bu, 2, u));
  zenlo_term p0 = constant(e, "p0", b);
  zenlo_term p1 = constant(e, "p1", b);
  zenlo_term x[3] = {
      constant(e, "a", u), constant(e, "b", u), constant(e, "c", u)};
  zenlo_term pool[10];
  int n = 0;
  for (int i = 0; i < 3; ++i) {
    pool[n++] = x[i];
  }
  pool[n++] = zenlo_make_uf(e, f, &x[0]);
  pool[n++] = zenlo_make_uf(e, f, &x[1]);
  zenlo_term fa = pool[3];
  pool[n++] = zenlo_make_uf(e, f, &fa);
  zenlo_term args[4][2] = {
      {p0, x[0]},
      {zenlo_make_equal(e, x[0], x[1]), x[2]},
      {zenlo_make_and(e, p1, zenlo_make_equal(e, x[1], x[2])), x[0]},
      {zenlo_make_not(e, zenlo_make_equal(e, fa, x[2])), x[1]}};
  for (int i = 0; i < 4; ++i) {
    pool[n++] = zenlo_make_uf(e, g, args[i]);
  }
  atoms[0] = p0;
  atoms[1] = p1;
  for (int k = 2; k <= NATOMS; ++k) {
    int i = pick(n);
    int j = (i + 1 + pick(n - 1)) % n;
    atoms[k] = zenlo_make_equal(e, pool[i], pool[j]);
  }
}

static void run(unsigned s, int steps) {
  seed = rng = s;
  zenlo_env e = make_env((zenlo_env){NULL});
  if (theory) {
    make_theory_atoms(e);
  } else {
    for (int i = 0; i <= NATOMS; ++i) {
      char name[16];
      snprintf(name, sizeof name, "p%d", i);
      atoms[i] = constant(e, name, zenlo_get_bool_type(e));
    }
  }
  nlive = depth = 0;
  old_model.repr = NULL;
  for (step = 0; step < steps; ++step) {
    int op = pick(100);
    if (op < 18 && depth < 60) {
      CHECK(zenlo_push_backtrack_point(e) == 0);
      level_start[depth++] = nlive;
    } else if (op < 32 && depth > 0) {
      CHECK(zenlo_pop_backtrack_point(e) == 0);
      nlive = level_start[--depth];
    } else if (op < 70 && nlive < MAXLIVE) {
      zenlo_term f = random_formula(e);
      CHECK(zenlo_assert_formula(e, f) == 0);
      live[nlive++] = f;
    } else if (op < 88) {
      do_check(e);
    } else {
      do_check_assuming(e);
    }
    CHECK(zenlo_num_backtrack_points(e) == depth);
  }
  /* Popping past the bottom is refused, and the environment stays good. */
  while (depth > 0) {
    CHECK(zenlo_pop_backtrack_point(e) == 0);
    nlive = level_start[--depth];
  }
  CHECK(zenlo_pop_backtrack_point(e) == -1);
  do_check(e);
  zenlo_destroy_model(old_model);
  zenlo_destroy_env(e);
}

int main(void) {
  for (unsigned s = 1; s <= 400; ++s) {
    theory = s % 2;
    run(s, 80);
  }
  printf("checks: %d sat, %d unsat; under assumptions: %d sat, %d unsat\n",
         counts[0],
         counts[1],
         counts[2],
         counts[3]);
  if (failures != 0) {
    fprintf(stderr, "%d failures\n", failures);
    return 1;
  }
  return 0;
}
