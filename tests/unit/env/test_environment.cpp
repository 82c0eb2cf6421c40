#include <gtest/gtest.h>

#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "api/capi.h"
#include "base/terminationtest.h"
#include "dpll/dpllsolver.h"
#include "env/environment.h"
#include "support/bool_formulas.h"
#include "zenlo.h"

namespace zenlo {
namespace {

using zenlo_test::evaluate;

// Stops at the n-th poll, once.
class StopAt : public TerminationTest {
 public:
  explicit StopAt(int n) : d_left(n) {}

  bool should_terminate() override { return --d_left == 0; }

  int polls_left() const { return d_left; }

 private:
  int d_left;
};

// An environment made through the C interface, with options.
using Options = std::vector<std::pair<const char*, const char*>>;

class EnvFixture {
 public:
  explicit EnvFixture(
      const std::vector<std::pair<const char*, const char*>>& options = {}) {
    zenlo_config cfg = zenlo_create_config();
    for (const auto& [name, value] : options) {
      EXPECT_EQ(zenlo_set_option(cfg, name, value), 0) << name;
    }
    e = zenlo_create_env(cfg);
    zenlo_destroy_config(cfg);
    EXPECT_FALSE(ZENLO_ERROR_ENV(e));
  }

  ~EnvFixture() { zenlo_destroy_env(e); }

  Environment& env() { return *capi::record(e)->env; }

  zenlo_term atom(const std::string& name) {
    zenlo_decl d =
        zenlo_declare_function(e, name.c_str(), zenlo_get_bool_type(e));
    return zenlo_make_constant(e, d);
  }

  std::string stat(const std::string& key) {
    for (const auto& [k, v] : env().get_stats()) {
      if (k == key) {
        return v;
      }
    }
    return "missing";
  }

  // Returns: whether the engine's last model satisfies `f`; an atom with
  // no engine variable is irrelevant to the clauses and counts as false.
  bool model_satisfies(const Term_* f, const std::vector<const Term_*>& atoms) {
    DpllSolver* dpll = env().get_dpll_solver();
    std::unordered_map<const Term_*, bool> val;
    for (const Term_* a : atoms) {
      dpll::Var v = dpll->proxy_for_term(a);
      val[a] = v != dpll::var_Undef && dpll->get_model_value(v) == l_True;
    }
    return evaluate(env().get_term_manager(), f, val);
  }

  zenlo_env e;
};

const Term_* T(zenlo_term t) {
  return static_cast<const Term_*>(t.repr);
}

// Pigeons into fewer holes, as a conjunction of terms: unsatisfiable, and
// hard enough that the engine polls its termination test.
zenlo_term pigeons(EnvFixture& f, int n) {
  zenlo_env e = f.e;
  auto at = [&](int p, int h) {
    return f.atom("p" + std::to_string(p) + "h" + std::to_string(h));
  };
  // Built without `true`: constants inside a formula are for the
  // construction-time simplifier to fold, not for the CNF conversion.
  zenlo_term all{nullptr};
  auto conjoin = [&](zenlo_term c) {
    all = all.repr == nullptr ? c : zenlo_make_and(e, all, c);
  };
  for (int p = 0; p < n; ++p) {
    zenlo_term some = at(p, 0);
    for (int h = 1; h < n - 1; ++h) {
      some = zenlo_make_or(e, some, at(p, h));
    }
    conjoin(some);
  }
  for (int h = 0; h < n - 1; ++h) {
    for (int p = 0; p < n; ++p) {
      for (int q = p + 1; q < n; ++q) {
        conjoin(zenlo_make_not(e, zenlo_make_and(e, at(p, h), at(q, h))));
      }
    }
  }
  return all;
}

// ---------------------------------------------------------------------------
// Answers without search
// ---------------------------------------------------------------------------

TEST(Environment, EmptyStackIsSat) {
  EnvFixture f;
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_SAT);
  EXPECT_EQ(f.env().last_result(), 1);
}

TEST(Environment, FalseIsUnsatWithoutSearchAndStaysSo) {
  EnvFixture f;
  zenlo_term a = f.atom("a");
  ASSERT_EQ(zenlo_assert_formula(f.e, a), 0);
  ASSERT_EQ(zenlo_assert_formula(f.e, zenlo_make_false(f.e)), 0);
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_UNSAT);
  ASSERT_EQ(zenlo_assert_formula(f.e, zenlo_make_or(f.e, a, f.atom("b"))), 0);
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_UNSAT);
  EXPECT_EQ(f.stat(":sat-checks"), "0");
  EXPECT_EQ(f.stat(":cnf-clauses"), "0");
}

TEST(Environment, UnsatFoundBySearchIsRemembered) {
  EnvFixture f;
  ASSERT_EQ(zenlo_assert_formula(f.e, pigeons(f, 5)), 0);
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_UNSAT);
  std::string checks = f.stat(":sat-checks");
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_UNSAT);
  EXPECT_EQ(f.stat(":sat-checks"), checks);
}

TEST(Environment, TrueAddsNoClause) {
  EnvFixture f;
  ASSERT_EQ(zenlo_assert_formula(f.e, zenlo_make_true(f.e)), 0);
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_SAT);
  EXPECT_EQ(f.stat(":cnf-variables"), "0");
  EXPECT_EQ(f.stat(":cnf-clauses"), "0");
  EXPECT_EQ(f.stat(":sat-checks"), "1");
}

TEST(Environment, ResetForgetsAssertionsAndKeepsTerms) {
  EnvFixture f;
  zenlo_term a = f.atom("a");
  zenlo_assert_formula(f.e, a);
  zenlo_assert_formula(f.e, zenlo_make_not(f.e, a));
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_UNSAT);
  ASSERT_EQ(zenlo_reset_env(f.e), 0);
  EXPECT_TRUE(f.env().assertion_stack().empty());
  zenlo_assert_formula(f.e, zenlo_make_not(f.e, a));
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_SAT);
}

// ---------------------------------------------------------------------------
// Interruption
// ---------------------------------------------------------------------------

TEST(Environment, InterruptedCheckIsRebuiltByTheNext) {
  // Stops once in the CNF conversion (first poll) and once in the search.
  for (int stop_at : {1, 3}) {
    EnvFixture f;
    ASSERT_EQ(zenlo_assert_formula(f.e, pigeons(f, 8)), 0);
    StopAt test(stop_at);
    f.env().set_termination_test(&test);
    EXPECT_THROW(f.env().check(), TerminationTest::terminated);
    EXPECT_TRUE(f.env().interrupted());
    EXPECT_EQ(f.env().last_result(), -1);
    f.env().set_termination_test(nullptr);
    EXPECT_EQ(zenlo_solve(f.e), ZENLO_UNSAT);
    EXPECT_FALSE(f.env().interrupted());
    EXPECT_EQ(f.env().num_processed(), 1u);
  }
}

TEST(Environment, CallbackTerminationGivesMinusOneAndMessage) {
  EnvFixture f;
  ASSERT_EQ(zenlo_assert_formula(f.e, pigeons(f, 8)), 0);
  int calls = 0;
  auto stop = [](void* data) -> int { return ++*static_cast<int*>(data) >= 2; };
  ASSERT_EQ(zenlo_set_termination_test(f.e, stop, &calls), 0);
  EXPECT_EQ(zenlo_solve(f.e), -1);
  EXPECT_STREQ(zenlo_last_error_message(f.e), "user-requested termination");
  ASSERT_EQ(zenlo_set_termination_test(f.e, nullptr, nullptr), 0);
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_UNSAT);
  // A later success leaves the old text.
  EXPECT_STREQ(zenlo_last_error_message(f.e), "user-requested termination");
}

// ---------------------------------------------------------------------------
// Refusals
// ---------------------------------------------------------------------------

TEST(Environment, NonBooleanAssertionAndDisabledSolver) {
  EnvFixture f;
  zenlo_decl x = zenlo_declare_function(f.e, "x", zenlo_get_rational_type(f.e));
  EXPECT_EQ(zenlo_assert_formula(f.e, zenlo_make_constant(f.e, x)), -1);
  EXPECT_TRUE(f.env().assertion_stack().empty());

  EnvFixture off(Options{{"debug.solver_enabled", "false"}});
  zenlo_assert_formula(off.e, zenlo_make_false(off.e));
  EXPECT_EQ(zenlo_solve(off.e), -1);
  EXPECT_STREQ(zenlo_last_error_message(off.e), "");
}

TEST(Environment, EqualityAtomsReachTheEufSolver) {
  EnvFixture f;
  zenlo_type u = zenlo_get_simple_type(f.e, "U");
  zenlo_term x = zenlo_make_constant(f.e, zenlo_declare_function(f.e, "x", u));
  zenlo_term y = zenlo_make_constant(f.e, zenlo_declare_function(f.e, "y", u));
  zenlo_term z = zenlo_make_constant(f.e, zenlo_declare_function(f.e, "z", u));
  zenlo_assert_formula(f.e, zenlo_make_equal(f.e, x, y));
  zenlo_assert_formula(f.e, zenlo_make_equal(f.e, y, z));
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_SAT);
  zenlo_assert_formula(f.e, zenlo_make_not(f.e, zenlo_make_equal(f.e, x, z)));
  EXPECT_EQ(zenlo_solve(f.e), ZENLO_UNSAT);
}

// Until a solver for floating point exists its atoms are refused, not
// answered as if their symbols were uninterpreted.
TEST(Environment, AtomsOfMissingTheoriesAreRefused) {
  EnvFixture f;
  zenlo_type i = zenlo_get_fp_type(f.e, 8, 24);
  zenlo_term x = zenlo_make_constant(f.e, zenlo_declare_function(f.e, "x", i));
  zenlo_term y = zenlo_make_constant(f.e, zenlo_declare_function(f.e, "y", i));
  zenlo_assert_formula(f.e, zenlo_make_fp_lt(f.e, x, y));
  EXPECT_EQ(zenlo_solve(f.e), -1);
  EXPECT_NE(std::string(zenlo_last_error_message(f.e))
                .find("no enabled theory solver handles"),
            std::string::npos);
  EXPECT_EQ(zenlo_solve(f.e), -1);
}

// ---------------------------------------------------------------------------
// Random formulas against enumeration
// ---------------------------------------------------------------------------

// Builds a random formula through the C interface.
zenlo_term random_formula(zenlo_env e,
                          const std::vector<zenlo_term>& atoms,
                          std::mt19937& rng,
                          int depth) {
  auto pick = [&](int n) {
    return std::uniform_int_distribution<int>(0, n - 1)(rng);
  };
  if (depth == 0 || pick(6) == 0) {
    zenlo_term a = atoms[pick(static_cast<int>(atoms.size()))];
    return pick(2) == 0 ? a : zenlo_make_not(e, a);
  }
  zenlo_term l = random_formula(e, atoms, rng, depth - 1);
  switch (pick(4)) {
    case 0: return zenlo_make_not(e, l);
    case 1:
      return zenlo_make_and(e, l, random_formula(e, atoms, rng, depth - 1));
    case 2:
      return zenlo_make_or(e, l, random_formula(e, atoms, rng, depth - 1));
    default:
      return zenlo_make_iff(e, l, random_formula(e, atoms, rng, depth - 1));
  }
}

class RandomFormulas : public ::testing::TestWithParam<
                           std::vector<std::pair<const char*, const char*>>> {};

TEST_P(RandomFormulas, AgreeWithEnumerationAndModelsHold) {
  constexpr int kAtoms = 6;
  std::mt19937 rng(12345);
  for (int round = 0; round < 150; ++round) {
    EnvFixture f(GetParam());
    std::vector<zenlo_term> atoms;
    std::vector<const Term_*> atom_terms;
    for (int i = 0; i < kAtoms; ++i) {
      atoms.push_back(f.atom("a" + std::to_string(i)));
      atom_terms.push_back(T(atoms.back()));
    }
    // Checks after batches of one to three assertions, so that both a
    // single formula and several at once go through the pipeline.
    const Term_* conj = nullptr;
    for (int batch = 0; batch < 2; ++batch) {
      for (int k = 0; k <= (round + batch) % 3; ++k) {
        zenlo_term g = random_formula(f.e, atoms, rng, 5);
        ASSERT_EQ(zenlo_assert_formula(f.e, g), 0);
        conj = conj == nullptr
                   ? T(g)
                   : f.env().get_term_manager().make_and(conj, T(g));
      }
      bool expected = false;
      for (int m = 0; m < (1 << kAtoms) && !expected; ++m) {
        std::unordered_map<const Term_*, bool> val;
        for (int i = 0; i < kAtoms; ++i) {
          val[atom_terms[i]] = ((m >> i) & 1) != 0;
        }
        expected = evaluate(f.env().get_term_manager(), conj, val);
      }
      int r = zenlo_solve(f.e);
      ASSERT_EQ(r, expected ? ZENLO_SAT : ZENLO_UNSAT)
          << "round " << round << ": " << conj->to_str();
      if (r == ZENLO_SAT) {
        ASSERT_TRUE(f.model_satisfies(conj, atom_terms))
            << "round " << round << ": " << conj->to_str();
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Configurations,
    RandomFormulas,
    ::testing::Values(
        std::vector<std::pair<const char*, const char*>>{},
        std::vector<std::pair<const char*, const char*>>{
            {"preprocessor.full_cnf_conversion", "true"}},
        std::vector<std::pair<const char*, const char*>>{
            {"dpll.branching_initial_phase", "2"}},
        // No batch mode: each formula goes through the pipeline alone.
        std::vector<std::pair<const char*, const char*>>{
            {"unsat_core_generation", "1"}}));

}  // namespace
}  // namespace zenlo
