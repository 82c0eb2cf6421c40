// Backtrack points with the theory layer: what a pop leaves in the engine,
// EUF atoms and lemmas of popped levels, the unsat mark, and models over
// uninterpreted sorts checked against the assertions in force.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "api/capi.h"
#include "dpll/dpllsolver.h"
#include "env/environment.h"
#include "zenlo.h"

namespace zenlo {
namespace {

class Incremental : public ::testing::Test {
 protected:
  Incremental() {
    zenlo_config cfg = zenlo_create_config();
    zenlo_set_option(cfg, "model_generation", "true");
    zenlo_set_option(cfg, "dpll.store_tlemmas", "true");
    d_env = zenlo_create_env(cfg);
    zenlo_destroy_config(cfg);
    d_u = zenlo_get_simple_type(d_env, "U");
    zenlo_type args[] = {d_u};
    d_f = zenlo_declare_function(
        d_env, "f", zenlo_get_function_type(d_env, args, 1, d_u));
  }

  ~Incremental() override { zenlo_destroy_env(d_env); }

  Environment& env() { return *capi::record(d_env)->env; }

  DpllSolver& engine() { return *env().get_dpll_solver(); }

  zenlo_term c(const std::string& name) {
    zenlo_decl d = zenlo_declare_function(d_env, name.c_str(), d_u);
    return zenlo_make_constant(d_env, d);
  }

  zenlo_term f(zenlo_term x) { return zenlo_make_uf(d_env, d_f, &x); }

  zenlo_term eq(zenlo_term a, zenlo_term b) {
    return zenlo_make_equal(d_env, a, b);
  }

  zenlo_term neq(zenlo_term a, zenlo_term b) {
    return zenlo_make_not(d_env, eq(a, b));
  }

  void assert_(zenlo_term t) {
    ASSERT_EQ(zenlo_assert_formula(d_env, t), 0);
    d_levels.back().push_back(t);
  }

  void push() {
    ASSERT_EQ(zenlo_push_backtrack_point(d_env), 0);
    d_levels.emplace_back();
  }

  void pop() {
    ASSERT_EQ(zenlo_pop_backtrack_point(d_env), 0);
    d_levels.pop_back();
  }

  // Solves, and on sat checks that every assertion in force is true in the
  // model, through a handle evaluated after the environment moved on.
  int solve() {
    int r = zenlo_solve(d_env);
    if (r == ZENLO_SAT) {
      zenlo_model m = zenlo_get_model(d_env);
      EXPECT_FALSE(ZENLO_ERROR_MODEL(m));
      for (const auto& level : d_levels) {
        for (zenlo_term t : level) {
          EXPECT_EQ(zenlo_term_is_true(d_env, zenlo_get_model_value(d_env, t)),
                    1);
          d_checks.emplace_back(m, t);
        }
      }
    }
    return r;
  }

  // The handles of earlier answers still evaluate their own assertions.
  void check_old_models() {
    for (auto& [m, t] : d_checks) {
      EXPECT_EQ(zenlo_term_is_true(d_env, zenlo_model_eval(m, t)), 1);
    }
    std::vector<zenlo_model> seen;
    for (auto& [m, t] : d_checks) {
      bool fresh = true;
      for (zenlo_model s : seen) {
        fresh = fresh && s.repr != m.repr;
      }
      if (fresh) {
        seen.push_back(m);
        zenlo_destroy_model(m);
      }
    }
    d_checks.clear();
  }

  zenlo_env d_env;
  zenlo_type d_u;
  zenlo_decl d_f;
  std::vector<std::vector<zenlo_term>> d_levels{1};
  std::vector<std::pair<zenlo_model, zenlo_term>> d_checks;
};

TEST_F(Incremental, PushPopWithoutCheckLeavesTheEngineUntouched) {
  zenlo_term a = c("a"), b = c("b");
  assert_(neq(f(a), f(b)));
  ASSERT_EQ(solve(), ZENLO_SAT);
  const int vars = engine().num_vars();
  const size_t clauses = engine().num_clauses();
  const uint64_t solves = engine().stats().checks;
  for (int i = 0; i < 200; ++i) {
    push();
    zenlo_term x = c("x" + std::to_string(i));
    assert_(eq(x, f(x)));
    assert_(eq(a, b));  // unsat, but no check ever sees it
    push();
    pop();
    pop();
  }
  EXPECT_EQ(engine().num_backtrack_points(), 0);
  EXPECT_EQ(engine().num_vars(), vars);
  EXPECT_EQ(engine().num_clauses(), clauses);
  EXPECT_EQ(engine().stats().checks, solves);
  EXPECT_EQ(solve(), ZENLO_SAT);
  check_old_models();
}

TEST_F(Incremental, PopTakesTheoryAtomsAndTheUnsatMarkAway) {
  zenlo_term a = c("a"), b = c("b"), d = c("d");
  assert_(neq(f(a), f(d)));
  push();
  assert_(eq(a, b));
  assert_(eq(b, d));
  EXPECT_EQ(solve(), ZENLO_UNSAT);
  EXPECT_EQ(engine().num_backtrack_points(), 1);
  push();  // above the mark a check stays unsat
  EXPECT_EQ(solve(), ZENLO_UNSAT);
  pop();
  pop();
  // The atoms (= a b) and (= b d) of the popped level are gone: asserting
  // their negations anew must be honoured, not read from stale variables.
  const int vars = engine().num_vars();
  push();
  assert_(neq(a, b));
  assert_(eq(b, d));
  EXPECT_EQ(solve(), ZENLO_SAT);
  EXPECT_GT(engine().num_vars(), vars);
  pop();
  EXPECT_EQ(engine().num_vars(), vars);
  EXPECT_EQ(solve(), ZENLO_SAT);
  check_old_models();
}

TEST_F(Incremental, FactsBelowAPoppedLevelStayWithTheTheory) {
  // The level-0 disequality reaches EUF after the backtrack level opened.
  zenlo_term a = c("a"), b = c("b");
  assert_(neq(f(a), f(b)));
  push();
  EXPECT_EQ(solve(), ZENLO_SAT);
  pop();
  push();
  assert_(eq(a, b));
  EXPECT_EQ(solve(), ZENLO_UNSAT);
  pop();
  EXPECT_EQ(solve(), ZENLO_SAT);
  check_old_models();
}

TEST_F(Incremental, ModelsFollowTheLevelsOfAChainOfFunctionApplications) {
  // f^k(a) = a at level k, with a != f(a) below and f(f(a)) != a beside
  // it: unsat for k 1 and 2, sat from 3 on with a cycle of k points.
  zenlo_term a = c("a");
  assert_(neq(a, f(a)));
  zenlo_term t = a;
  for (int k = 1; k <= 6; ++k) {
    t = f(t);
    push();
    assert_(eq(t, a));
    assert_(neq(f(f(a)), a));
    EXPECT_EQ(solve(), k == 1 || k == 2 ? ZENLO_UNSAT : ZENLO_SAT) << k;
    pop();
  }
  EXPECT_EQ(solve(), ZENLO_SAT);
  check_old_models();
}

TEST_F(Incremental, AssumptionsOverTheoryAtomsAndTheirCore) {
  zenlo_term a = c("a"), b = c("b"), d = c("d");
  assert_(neq(f(a), f(d)));
  zenlo_term lits[] = {eq(a, b), eq(c("e"), a), eq(b, d)};
  EXPECT_EQ(zenlo_solve_with_assumptions(d_env, lits, 3), ZENLO_UNSAT);
  size_t n = 0;
  zenlo_term* core = zenlo_get_unsat_assumptions(d_env, &n);
  ASSERT_NE(core, nullptr);
  std::vector<zenlo_term> got(core, core + n);
  zenlo_free(core);
  EXPECT_EQ(got.size(), 2u);
  for (zenlo_term t : got) {
    EXPECT_NE(t.repr, lits[1].repr);
  }
  // The stack alone is still satisfiable.
  EXPECT_EQ(solve(), ZENLO_SAT);
  check_old_models();
}

int count_models(zenlo_model_iterator it, void* count) {
  EXPECT_TRUE(zenlo_model_iterator_has_next(it));
  ++*static_cast<int*>(count);
  return 1;
}

TEST_F(Incremental, LemmasFormulasCollectionAndDiversification) {
  zenlo_term a = c("a"), b = c("b"), d = c("d");
  assert_(neq(f(a), f(d)));
  push();
  assert_(eq(a, b));
  assert_(zenlo_make_or(d_env, eq(b, d), eq(f(b), b)));
  EXPECT_EQ(solve(), ZENLO_SAT);
  size_t n = 0;
  zenlo_term* lemmas = zenlo_get_theory_lemmas(d_env, &n);
  ASSERT_NE(lemmas, nullptr);
  EXPECT_GT(n, 0u);  // (b = d) fails by congruence with a = b
  zenlo_free(lemmas);
  pop();
  EXPECT_EQ(solve(), ZENLO_SAT);
  lemmas = zenlo_get_theory_lemmas(d_env, &n);
  zenlo_free(lemmas);
  EXPECT_EQ(n, 0u) << "lemmas of the popped level are gone";

  // Formulas come back as asserted, across a collection that rebuilds
  // the solver from them.
  push();
  assert_(eq(f(a), b));
  check_old_models();  // a collection may take their values away
  ASSERT_EQ(zenlo_gc_env(d_env, nullptr, 0), 0);
  zenlo_term* formulas = zenlo_get_asserted_formulas(d_env, &n);
  ASSERT_EQ(n, 2u);
  EXPECT_EQ(formulas[1].repr, d_levels[1][0].repr);
  zenlo_free(formulas);
  EXPECT_EQ(solve(), ZENLO_SAT);
  char* stats = zenlo_get_search_stats(d_env);
  ASSERT_NE(stats, nullptr);
  EXPECT_NE(std::string(stats).find(":sat-checks"), std::string::npos);
  zenlo_free(stats);

  // Three Boolean atoms over the classes of a, b, d: a = d is excluded, so
  // the diversified models number the partitions with a, d apart.
  zenlo_term div[] = {eq(a, b), eq(b, d), eq(a, d)};
  int count = 0;
  EXPECT_EQ(zenlo_solve_diversify(d_env, div, 3, count_models, &count), 3);
  EXPECT_EQ(count, 3);
  pop();
  check_old_models();
}

}  // namespace
}  // namespace zenlo
