#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/terminationtest.h"
#include "dpll/dpllsolver.h"
#include "support/dimacs_loader.h"

namespace zenlo {
namespace {

using dpll::Lit;
using dpll::mk_lit;
using dpll::Var;
using zenlo_test::Cnf;

Lit to_lit(int d) {
  return mk_lit(std::abs(d) - 1, d < 0);
}

std::vector<Lit> to_lits(const std::vector<int>& clause) {
  std::vector<Lit> lits;
  for (int d : clause) {
    lits.push_back(to_lit(d));
  }
  return lits;
}

// Adds the clauses of `cnf`. Returns: false if the engine found unsat.
bool load(DpllSolver& s, const Cnf& cnf) {
  while (s.num_vars() < cnf.num_vars) {
    s.new_var();
  }
  bool ok = true;
  for (const auto& cl : cnf.clauses) {
    std::vector<Lit> lits = to_lits(cl);
    ok = s.add_clause_inplace(lits) && ok;
  }
  return ok;
}

bool lit_true_in_model(const DpllSolver& s, int d) {
  return s.get_model_value(std::abs(d) - 1) == lbool::from_bool(d > 0);
}

::testing::AssertionResult satisfies(
    const DpllSolver& s, const std::vector<std::vector<int>>& clauses) {
  for (size_t i = 0; i < clauses.size(); ++i) {
    const auto& cl = clauses[i];
    if (std::none_of(cl.begin(), cl.end(), [&s](int d) {
          return lit_true_in_model(s, d);
        })) {
      return ::testing::AssertionFailure() << "clause " << i << " violated";
    }
  }
  return ::testing::AssertionSuccess();
}

std::string data_dir() {
  return std::string(ZENLO_TEST_DATA_DIR) + "/cnf/";
}

std::vector<std::string> files_in(const std::string& sub) {
  std::vector<std::string> out;
  for (const auto& e : std::filesystem::directory_iterator(data_dir() + sub)) {
    out.push_back(e.path().string());
  }
  std::sort(out.begin(), out.end());
  return out;
}

Cnf load_file(const std::string& name) {
  return zenlo_test::load_dimacs(data_dir() + name);
}

// ---------------------------------------------------------------------------
// Building blocks
// ---------------------------------------------------------------------------

TEST(DpllClause, LayoutAndLimits) {
  std::vector<Lit> lits{mk_lit(3), mk_lit(40, true), mk_lit(7)};
  dpll::Clause* c = dpll::Clause_new(true, 17, lits, false, true);
  EXPECT_EQ(c->size(), 3u);
  EXPECT_EQ(c->id(), 17);
  EXPECT_TRUE(c->extended());
  EXPECT_TRUE(c->theory());
  EXPECT_FALSE(c->learnt());
  EXPECT_EQ(c->refcount(), 1u);
  EXPECT_EQ(c->abstraction(), (1u << 3) | (1u << (40 & 31)) | (1u << 7));
  EXPECT_EQ(c->guard(), dpll::var_Undef);
  c->set_lbd(300);
  EXPECT_EQ(c->lbd(), 255u);
  EXPECT_EQ((*c)[1], mk_lit(40, true));
  c->retain();
  dpll::Clause::release(c);
  EXPECT_EQ(c->refcount(), 1u);
  dpll::Clause::release(c);

  dpll::Clause* p = dpll::Clause::create_placeholder();
  EXPECT_EQ(p->id(), -1);
  EXPECT_EQ(p->size(), 0u);
  dpll::Clause::release(p);

  try {
    dpll::Clause::create(false, 0, nullptr, 0x1000000, false, false);
    FAIL() << "no exception";
  } catch (const Exception& e) {
    EXPECT_EQ(e.message(),
              "max clause size exceeded (size: 16777216, max: 16777215)");
  }
}

TEST(DpllReallocVector, KeepsElementsAcrossGrowthAndShrinks) {
  ReallocVector<int> v;
  for (int i = 0; i < 1000; ++i) {
    v.push_back(i);
    ASSERT_GE(v.capacity(), v.size());
  }
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(v[i], i);
  }
  v.shrink(5);
  EXPECT_EQ(v.size(), 995u);
  EXPECT_EQ(v[994], 994);
}

TEST(DpllHeap, OrderAndTies) {
  std::vector<double> act{1.0, 3.0, 3.0, 0.5, 2.0};
  Heap h(&act);
  for (Var v : {4, 3, 2, 1, 0}) {
    h.insert(v);
  }
  act[3] = 5.0;
  h.increase(3);
  h.remove(0);
  std::vector<Var> order;
  while (!h.empty()) {
    order.push_back(h.remove_max());
  }
  EXPECT_EQ(order, (std::vector<Var>{3, 1, 2, 4}));
}

// ---------------------------------------------------------------------------
// Answers on CNF files, under each search strategy
// ---------------------------------------------------------------------------

struct Variant {
  const char* name;
  std::function<void(Configuration::Dpll&)> tweak;
};

const std::vector<Variant>& variants() {
  static const std::vector<Variant> all{
      {"Default", [](Configuration::Dpll&) {}},
      {"Luby", [](Configuration::Dpll& c) { c.restart_strategy = 1; }},
      {"AgilityLuby",
       [](Configuration::Dpll& c) {
         c.restart_strategy = 2;
         c.restart_initial = 20;
       }},
      {"GlucoseStyle",
       [](Configuration::Dpll& c) {
         c.restart_strategy = 3;
         c.glucose_var_activity = true;
         c.glucose_learnt_minimization = true;
         c.branching_cache_phase = 1;
       }},
      {"NoPhaseCacheTrueFirst",
       [](Configuration::Dpll& c) {
         c.branching_cache_phase = 0;
         c.branching_initial_phase = 1;
       }},
      {"RandomHeavy",
       [](Configuration::Dpll& c) {
         c.branching_random_frequency = 0.3;
         c.branching_random_ignore_polarity = true;
       }},
      {"PlainLearning",
       [](Configuration::Dpll& c) {
         c.learnt_minimization = false;
         c.store_tlemmas = true;
         c.remove_satisfied = false;
       }},
  };
  return all;
}

class DpllFiles : public ::testing::TestWithParam<size_t> {};

TEST_P(DpllFiles, AnswersAndModels) {
  const Variant& variant = variants()[GetParam()];
  for (const char* sub : {"sat", "unsat"}) {
    for (const std::string& path : files_in(sub)) {
      SCOPED_TRACE(path);
      Cnf cnf = zenlo_test::load_dimacs(path);
      Configuration::Dpll config;
      variant.tweak(config);
      DpllSolver s(&config);
      load(s, cnf);
      bool sat = s.solve();
      EXPECT_EQ(sat, std::string(sub) == "sat");
      if (sat) {
        EXPECT_TRUE(satisfies(s, cnf.clauses));
      }
      // A second check on the same clauses gives the same answer.
      EXPECT_EQ(s.solve(), sat);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Strategies,
                         DpllFiles,
                         ::testing::Range<size_t>(0, variants().size()),
                         [](const auto& info) {
                           return std::string(variants()[info.param].name);
                         });

// ---------------------------------------------------------------------------
// Incremental use
// ---------------------------------------------------------------------------

TEST(DpllIncremental, ClausesBetweenChecksMatchFreshSolver) {
  Cnf cnf = load_file("unsat/satlib-uuf50-218__uuf50-01.cnf");
  Configuration::Dpll config;
  DpllSolver inc(&config);
  while (inc.num_vars() < cnf.num_vars) {
    inc.new_var();
  }
  Cnf prefix{cnf.num_vars, {}};
  for (size_t i = 0; i < cnf.clauses.size(); ++i) {
    std::vector<Lit> lits = to_lits(cnf.clauses[i]);
    inc.add_clause_inplace(lits);
    prefix.clauses.push_back(cnf.clauses[i]);
    if (i % 15 != 14 && i + 1 != cnf.clauses.size()) {
      continue;
    }
    DpllSolver fresh(&config);
    load(fresh, prefix);
    bool sat = inc.solve();
    ASSERT_EQ(sat, fresh.solve()) << "after " << i + 1 << " clauses";
    if (sat) {
      EXPECT_TRUE(satisfies(inc, prefix.clauses));
    }
  }
  EXPECT_FALSE(inc.solve());
}

// With the trail kept after a check, new clauses arrive above the
// backtrack levels: unit and conflicting ones wait as pending units.
TEST(DpllIncremental, ClausesOnAKeptTrail) {
  Cnf cnf = load_file("sat/satlib-uf50-218__uf50-0109.cnf");
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, cnf);
  for (int round = 0; round < 40; ++round) {
    if (!s.solve(true)) {
      break;
    }
    ASSERT_GT(s.decision_level(), 0);
    // Block the current assignment of the first 12 variables.
    std::vector<int> block;
    for (Var v = 0; v < 12; ++v) {
      block.push_back(s.value(v) == l_True ? -(v + 1) : v + 1);
    }
    cnf.clauses.push_back(block);
    std::vector<Lit> lits = to_lits(block);
    s.add_clause_inplace(lits);
    if (round % 3 == 0) {
      std::vector<Lit> unit{to_lit(round % 2 ? 13 : -13)};
      cnf.clauses.push_back({round % 2 ? 13 : -13});
      s.add_clause_inplace(unit);
    }
  }
  DpllSolver fresh(&config);
  load(fresh, cnf);
  bool sat = s.solve();
  EXPECT_EQ(sat, fresh.solve());
  if (sat) {
    EXPECT_TRUE(satisfies(s, cnf.clauses));
  }
}

// Random sequences of pushes, pops, clauses and checks under assumptions;
// every answer is compared with a fresh engine on the clauses in force.
TEST(DpllIncremental, RandomSequencesMatchFreshSolver) {
  uint64_t x = 88172645463325252ULL;
  auto next = [&x](uint64_t n) {
    x ^= x << 13;
    x ^= x >> 7;
    x ^= x << 17;
    return x % n;
  };
  for (int run = 0; run < 400; ++run) {
    Configuration::Dpll config;
    variants()[run % variants().size()].tweak(config);
    const int vars = 25 + run % 20;
    DpllSolver s(&config);
    for (int v = 0; v < vars; ++v) {
      s.new_var();
    }
    std::vector<std::vector<std::vector<int>>> scopes(1);
    for (int step = 0; step < 120; ++step) {
      uint64_t op = next(10);
      if (op == 0 && scopes.size() < 5) {
        s.push_backtrack_point();
        scopes.emplace_back();
      } else if (op == 1 && scopes.size() > 1) {
        s.pop_backtrack_point();
        scopes.pop_back();
      } else if (op < 8) {
        std::vector<int> cl;
        for (int k = 0; k < 3; ++k) {
          int v = static_cast<int>(next(vars)) + 1;
          cl.push_back(next(2) ? v : -v);
        }
        scopes.back().push_back(cl);
        std::vector<Lit> lits = to_lits(cl);
        s.add_clause_inplace(lits);
      } else {
        Cnf all{vars, {}};
        for (const auto& sc : scopes) {
          all.clauses.insert(all.clauses.end(), sc.begin(), sc.end());
        }
        std::vector<Lit> assumptions;
        for (uint64_t k = next(4); k > 0; --k) {
          assumptions.push_back(mk_lit(next(vars), next(2)));
          all.clauses.push_back({dpll::sign(assumptions.back())
                                     ? -(dpll::var(assumptions.back()) + 1)
                                     : dpll::var(assumptions.back()) + 1});
        }
        DpllSolver fresh(&config);
        load(fresh, all);
        // A kept trail makes the next clauses arrive above the
        // backtrack levels.
        bool keep = next(3) == 0;
        bool sat = s.solve(assumptions, keep);
        ASSERT_EQ(sat, fresh.solve()) << "run " << run << " step " << step;
        if (sat && keep) {
          s.build_model();  // the kept trail is the model
        }
        if (sat) {
          ASSERT_TRUE(satisfies(s, all.clauses));
        }
      }
    }
  }
}

TEST(DpllAssumptions, ModelsAndFinalConflicts) {
  Cnf cnf = load_file("sat/satlib-uf50-218__uf50-0119.cnf");
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, cnf);
  uint64_t x = 12345;
  int unsat_seen = 0;
  for (int trial = 0; trial < 40; ++trial) {
    std::vector<Lit> assumptions;
    for (int k = 0; k < 6; ++k) {
      x = x * 6364136223846793005ULL + 1442695040888963407ULL;
      assumptions.push_back(mk_lit((x >> 33) % 50, (x >> 20) & 1));
    }
    if (s.solve(assumptions)) {
      EXPECT_TRUE(satisfies(s, cnf.clauses));
      for (Lit a : assumptions) {
        EXPECT_EQ(s.get_model_value(dpll::var(a)),
                  lbool::from_bool(!dpll::sign(a)));
      }
      continue;
    }
    ++unsat_seen;
    // The conflict holds negated assumptions, and they alone are unsat.
    std::vector<Lit> core;
    for (Lit p : s.get_conflict()) {
      EXPECT_NE(std::find(assumptions.begin(), assumptions.end(), p ^ 1),
                assumptions.end());
      core.push_back(p ^ 1);
    }
    EXPECT_FALSE(core.empty());
    EXPECT_FALSE(s.solve(core));
    DpllSolver check(&config);
    load(check, cnf);
    for (Lit a : core) {
      std::vector<Lit> unit{a};
      check.add_clause_inplace(unit);
    }
    EXPECT_FALSE(check.solve());
    EXPECT_TRUE(s.okay());
  }
  EXPECT_GT(unsat_seen, 0);
  EXPECT_TRUE(s.solve());
}

TEST(DpllAssumptions, UnsatWithoutAssumptionsGivesEmptyConflict) {
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, load_file("unsat/cadical__ph4.cnf"));
  std::vector<Lit> assumptions{mk_lit(0), mk_lit(3, true)};
  EXPECT_FALSE(s.solve(assumptions));
  for (Lit p : s.get_conflict()) {
    EXPECT_TRUE(p == (assumptions[0] ^ 1) || p == (assumptions[1] ^ 1));
  }
  EXPECT_FALSE(s.solve());
  EXPECT_EQ(s.ok_state(), 0);
  EXPECT_FALSE(s.solve(assumptions));
  EXPECT_TRUE(s.get_conflict().empty());
}

// ---------------------------------------------------------------------------
// Backtrack points
// ---------------------------------------------------------------------------

TEST(DpllBacktrackPoints, PopRestoresEarlierAnswer) {
  Cnf base = load_file("sat/satlib-uf50-218__uf50-0134.cnf");
  Cnf extra = load_file("unsat/satlib-uuf50-218__uuf50-0119.cnf");
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, base);
  ASSERT_TRUE(s.solve());
  for (int round = 0; round < 3; ++round) {
    Var guard = s.push_backtrack_point();
    EXPECT_EQ(guard, 50);
    EXPECT_EQ(s.num_backtrack_points(), 1);
    for (const auto& cl : extra.clauses) {
      std::vector<Lit> lits = to_lits(cl);
      s.add_clause_inplace(lits);
    }
    EXPECT_FALSE(s.solve());
    s.pop_backtrack_point();
    EXPECT_EQ(s.num_vars(), 50);
    // Learnt clauses that rest on the point went with its guard.
    for (const dpll::Clause* c : s.learnts()) {
      for (Lit p : *c) {
        EXPECT_LT(dpll::var(p), 50);
      }
    }
    ASSERT_TRUE(s.solve());
    EXPECT_TRUE(satisfies(s, base.clauses));
  }
}

TEST(DpllBacktrackPoints, NestedPointsAndYoungVariables) {
  Cnf base = load_file("sat/satlib-uf50-218__uf50-0152.cnf");
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, base);
  s.push_backtrack_point();
  // Inside the first point: x1 and a fresh variable y with y -> -x2.
  Var y = s.new_var();
  std::vector<Lit> c1{mk_lit(0)};
  std::vector<Lit> c2{mk_lit(y, true), mk_lit(1, true)};
  std::vector<Lit> c3{mk_lit(y)};
  s.add_clause_inplace(c1);
  s.add_clause_inplace(c2);
  s.add_clause_inplace(c3);
  bool sat1 = s.solve();
  if (sat1) {
    EXPECT_EQ(s.get_model_value(0), l_True);
    EXPECT_EQ(s.get_model_value(1), l_False);
  }
  s.push_backtrack_point();
  std::vector<Lit> c4{mk_lit(0, true)};
  s.add_clause_inplace(c4);
  EXPECT_FALSE(s.solve());
  EXPECT_GE(s.ok_state(), 0);
  s.pop_backtrack_point();
  EXPECT_EQ(s.solve(), sat1);
  s.pop_backtrack_point();
  EXPECT_EQ(s.num_vars(), 50);
  ASSERT_TRUE(s.solve());
  EXPECT_TRUE(satisfies(s, base.clauses));
}

TEST(DpllBacktrackPoints, EmptyClauseInsidePoint) {
  Configuration::Dpll config;
  DpllSolver s(&config);
  s.new_var();
  s.push_backtrack_point();
  s.push_backtrack_point();
  std::vector<Lit> empty;
  EXPECT_FALSE(s.add_clause_inplace(empty));
  // The guard literal is false at its own level: unsat with two points.
  EXPECT_EQ(s.ok_state(), 2);
  EXPECT_FALSE(s.solve());
  s.pop_backtrack_point();
  EXPECT_EQ(s.ok_state(), -1);
  EXPECT_TRUE(s.solve());
  s.pop_backtrack_point();
  EXPECT_TRUE(s.solve());
}

TEST(DpllBacktrackPoints, ProxiesOfPoppedAtomsGo) {
  Configuration::Dpll config;
  DpllSolver s(&config);
  int storage[3];
  auto term = [&storage](int i) {
    return reinterpret_cast<const Term_*>(&storage[i]);
  };
  Var a = dpll::var_Undef;
  EXPECT_TRUE(s.make_proxy(term(0), a));
  Var again = dpll::var_Undef;
  EXPECT_FALSE(s.make_proxy(term(0), again));
  EXPECT_EQ(again, a);
  s.push_backtrack_point();
  Var b = dpll::var_Undef;
  EXPECT_TRUE(s.make_proxy(term(1), b));
  EXPECT_EQ(s.term_of(b), term(1));
  s.pop_backtrack_point();
  EXPECT_EQ(s.proxy_for_term(term(1)), dpll::var_Undef);
  EXPECT_EQ(s.proxy_for_term(term(0)), a);
  EXPECT_TRUE(s.make_proxy(term(1), b));
  EXPECT_EQ(b, 1);
}

// The pigeonhole clauses inside a point are refuted through learning,
// which ends with the guard literal false at level 0; the pop repairs the
// trail and the older clauses keep their answer.
TEST(DpllBacktrackPoints, GuardRefutedAtLevelZero) {
  Cnf base = load_file("sat/satlib-uf20-91__uf20-0132.cnf");
  Cnf php = load_file("unsat/cadical__ph5.cnf");
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, base);
  std::vector<Lit> unit{mk_lit(0, base.clauses[0][0] < 0)};
  for (int round = 0; round < 2; ++round) {
    s.push_backtrack_point();
    Var offset = s.num_vars();
    for (int v = 0; v < php.num_vars; ++v) {
      s.new_var();
    }
    for (const auto& cl : php.clauses) {
      std::vector<Lit> lits;
      for (int d : cl) {
        lits.push_back(mk_lit(offset + std::abs(d) - 1, d < 0));
      }
      s.add_clause_inplace(lits);
    }
    EXPECT_FALSE(s.solve());
    EXPECT_EQ(s.ok_state(), 1);
    s.pop_backtrack_point();
    EXPECT_EQ(s.num_vars(), 20);
    ASSERT_TRUE(s.solve());
    EXPECT_TRUE(satisfies(s, base.clauses));
  }
}

// ---------------------------------------------------------------------------
// Limits and the termination test
// ---------------------------------------------------------------------------

TEST(DpllLimits, SolveLimited) {
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, load_file("unsat/satch__add16.cnf"));
  EXPECT_EQ(s.solve_limited({}, 5, 0, 0), l_Undef);
  EXPECT_GE(s.stats().check_conflicts, 5u);
  EXPECT_LE(s.stats().check_conflicts, 6u);
  EXPECT_EQ(s.solve_limited({}, 0, 0, 3), l_Undef);
  EXPECT_EQ(s.stats().check_decisions, 3u);
  EXPECT_EQ(s.solve_limited({}, 0, 100, 0), l_Undef);
  EXPECT_EQ(s.solve_limited({}, 0, 0, 0), l_False);
  EXPECT_TRUE(s.okay() == false);
}

// Restarts happen exactly when the conflicts of a restart reach the
// budget, so the restart count under a conflict limit shows the schedule.
TEST(DpllLimits, RestartSchedules) {
  auto restarts_after = [](int strategy, uint64_t conflicts) {
    Configuration::Dpll config;
    config.restart_strategy = strategy;
    config.restart_initial = 10;
    DpllSolver s(&config);
    load(s, load_file("unsat/cadical__ph5.cnf"));
    EXPECT_EQ(s.solve_limited({}, conflicts, 0, 0), l_Undef);
    return s.stats().restarts;
  };
  // Luby: budgets 10 10 20 10 10 20 40 end at 10 20 40 50 60 80 120.
  EXPECT_EQ(restarts_after(1, 120), 7u);
  EXPECT_EQ(restarts_after(1, 121), 8u);
  EXPECT_EQ(restarts_after(1, 80), 6u);
  // Geometric: budgets 10 15 22.5 33.75 end at 10 25 48 82.
  EXPECT_EQ(restarts_after(0, 82), 4u);
  EXPECT_EQ(restarts_after(0, 83), 5u);
  // LBD averages need 100 conflicts of a restart first.
  EXPECT_EQ(restarts_after(3, 100), 1u);
}

class CountingTest : public TerminationTest {
 public:
  explicit CountingTest(int fire_at) : d_fire_at(fire_at) {}

  bool should_terminate() override { return ++d_calls >= d_fire_at; }

  int d_calls = 0;

 private:
  int d_fire_at;
};

TEST(DpllLimits, TerminationTestStopsTheSearch) {
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, load_file("unsat/cadical__ph5.cnf"));
  CountingTest quiet(1 << 30);
  s.set_termination_test(&quiet);
  EXPECT_FALSE(s.solve());
  // Polled at every step before the first conflict of each restart.
  EXPECT_GT(quiet.d_calls, static_cast<int>(s.stats().restarts));

  DpllSolver t(&config);
  load(t, load_file("unsat/cadical__ph5.cnf"));
  CountingTest fire(3);
  t.set_termination_test(&fire);
  EXPECT_THROW(t.solve(), TerminationTest::terminated);
  EXPECT_EQ(fire.d_calls, 3);
}

// ---------------------------------------------------------------------------
// Branching
// ---------------------------------------------------------------------------

TEST(DpllBranching, PreferredPolarityAndDecisionFlags) {
  Configuration::Dpll config;
  DpllSolver s(&config);
  for (int i = 0; i < 4; ++i) {
    s.new_var();
  }
  s.add_preferred_for_branching(mk_lit(2));
  s.add_preferred_for_branching(mk_lit(1, true));
  s.set_decision_var(3, false);
  ASSERT_TRUE(s.solve());
  EXPECT_EQ(s.get_model_value(2), l_True);
  EXPECT_EQ(s.get_model_value(1), l_False);
  EXPECT_EQ(s.get_model_value(0), l_False);  // initial phase false
  EXPECT_EQ(s.get_model_value(3), l_Undef);  // never decided
  // A dependent variable follows its master's decision flag.
  s.set_decision_var_dep(0, 3);
  EXPECT_FALSE(s.is_decision_var(0));
  s.set_decision_var(3, true);
  EXPECT_TRUE(s.is_decision_var(0));
}

// ---------------------------------------------------------------------------
// The theory road, driven by a theory that knows clauses the engine does
// not: they reach the search as conflicts, implications or lemmas.
// ---------------------------------------------------------------------------

enum class TheoryMode {
  LazyReasons,    // conflicts and implications, explained on demand
  EagerReasons,   // implications explained at once
  LateConflicts,  // conflicts only on a full assignment
  Lemmas,         // lemmas, also unasked and satisfied ones
  LateLemmas,     // lemmas only on a full assignment
};

class ClauseTheorySolver : public DpllSolver {
 public:
  ClauseTheorySolver(Configuration::Dpll* config, TheoryMode mode)
      : DpllSolver(config), d_mode(mode) {
    enable_theory_hooks(true);
  }

  // A clause the theory knows, scoped by the current backtrack point.
  void hide(std::vector<Lit> clause) {
    d_hidden.push_back({std::move(clause), num_backtrack_points()});
  }

  int explanations = 0;
  int lemmas_given = 0;
  int retracted = 0;

 protected:
  struct Hidden {
    std::vector<Lit> lits;
    int depth;
  };

  bool lemma_mode() const {
    return d_mode == TheoryMode::Lemmas || d_mode == TheoryMode::LateLemmas;
  }

  void theory_cancel_until(int) override {
    d_conflict = -1;
    d_implied.clear();
  }

  void theory_pop_backtrack_point() override {
    while (!d_hidden.empty()
           && d_hidden.back().depth > num_backtrack_points()) {
      d_given.erase(d_hidden.size() - 1);
      d_hidden.pop_back();
    }
    d_pending.clear();
  }

  void theory_check(bool approx) override {
    d_conflict = -1;
    ++d_checks;
    bool late =
        d_mode == TheoryMode::LateConflicts || d_mode == TheoryMode::LateLemmas;
    if (late && approx) {
      return;
    }
    // Learnt lemmas are retracted now and then, as the clause database
    // shrinks; like the engine's own schedule, only after conflicts, since
    // a theory that takes back and gives again without progress could keep
    // the search busy forever.
    if (d_mode == TheoryMode::Lemmas && d_checks % 20 == 0
        && stats().conflicts > d_conflicts_at_reduce) {
      d_conflicts_at_reduce = stats().conflicts;
      reduce_db();
    }
    for (size_t i = 0; i < d_hidden.size(); ++i) {
      if (lemma_mode() && d_given.count(i)) {
        continue;
      }
      int open = 0;
      Lit last = dpll::lit_Undef;
      bool sat = false;
      for (Lit p : d_hidden[i].lits) {
        sat = sat || value_lit(p) == l_True;
        if (value_lit(p).is_undef()) {
          ++open;
          last = p;
        }
      }
      bool unasked = d_mode == TheoryMode::Lemmas && (d_checks + i) % 7 == 0;
      if (!unasked && (sat || open > 1)) {
        continue;
      }
      if (lemma_mode()) {
        if (std::find(d_pending.begin(), d_pending.end(), i)
            == d_pending.end()) {
          d_pending.push_back(i);
        }
      } else if (open == 0) {
        d_conflict = static_cast<int>(i);
        return;
      } else if (!late) {
        d_reason[last] = i;
        d_implied.push_back(last);
      }
    }
  }

  bool theory_in_conflict() override { return d_conflict >= 0; }

  void theory_conflict_lits(std::vector<Lit>& out) override {
    for (Lit p : d_hidden[d_conflict].lits) {
      out.push_back(p ^ 1);
    }
  }

  Lit theory_next_implied() override {
    while (!d_implied.empty()) {
      Lit p = d_implied.back();
      d_implied.pop_back();
      if (value_lit(p).is_undef()) {
        return p;
      }
    }
    return dpll::lit_Undef;
  }

  bool theory_explanation(Lit p, bool force, std::vector<Lit>& out) override {
    if (!force && d_mode == TheoryMode::LazyReasons) {
      return false;
    }
    ++explanations;
    for (Lit q : d_hidden[d_reason.at(p)].lits) {
      if (q != p) {
        out.push_back(q ^ 1);
      }
    }
    return true;
  }

  bool theory_has_lemmas() override { return !d_pending.empty(); }

  int theory_next_lemma(std::vector<Lit>& lits,
                        bool& first,
                        bool& second) override {
    size_t i = d_pending.back();
    d_pending.pop_back();
    lits = d_hidden[i].lits;
    d_given[i] = ++lemmas_given;
    first = true;
    second = i % 2 == 0;  // odd ones are learnt and may be retracted
    d_lemma_of[d_given[i]] = i;
    return d_given[i];
  }

  // Theory combination on a full assignment: once it brings a new atom,
  // once it sends the search back to level 0.
  int theory_boolean_model_found() override {
    if (d_mode != TheoryMode::LateLemmas || d_combinations >= 2) {
      return -1;
    }
    if (d_combinations++ == 0) {
      new_var();
      return -1;
    }
    return 0;
  }

  void theory_retract_lemma(int id) override {
    ++retracted;
    auto it = d_given.find(d_lemma_of.at(id));
    if (it != d_given.end() && it->second == id) {
      d_given.erase(it);
    }
  }

 private:
  TheoryMode d_mode;
  std::vector<Hidden> d_hidden;
  int d_conflict = -1;
  uint64_t d_checks = 0;
  uint64_t d_conflicts_at_reduce = 0;
  int d_combinations = 0;
  std::vector<Lit> d_implied;
  std::map<Lit, size_t> d_reason;
  std::vector<size_t> d_pending;
  std::map<size_t, int> d_given;
  std::map<int, size_t> d_lemma_of;
};

class DpllTheoryRoad : public ::testing::TestWithParam<TheoryMode> {};

// Every third clause, and a unit clause that a model allows, is known only
// to the theory; the answers and models must be those of the whole set.
TEST_P(DpllTheoryRoad, HiddenClausesGiveTheSameAnswers) {
  std::vector<std::string> files = files_in("sat");
  for (const std::string& f : files_in("unsat")) {
    files.push_back(f);
  }
  int explanations = 0;
  for (const std::string& path : files) {
    if (path.find("satlib") == std::string::npos) {
      continue;
    }
    SCOPED_TRACE(path);
    Cnf cnf = zenlo_test::load_dimacs(path);
    Configuration::Dpll config;
    config.store_tlemmas = GetParam() == TheoryMode::Lemmas;
    bool expected = path.find("/sat/") != std::string::npos;
    {
      DpllSolver plain(&config);
      load(plain, cnf);
      ASSERT_EQ(plain.solve(), expected);
      cnf.clauses.push_back({lit_true_in_model(plain, 1) ? 1 : -1});
    }
    Cnf visible{cnf.num_vars, {}};
    ClauseTheorySolver s(&config, GetParam());
    for (size_t i = 0; i < cnf.clauses.size(); ++i) {
      if (i % 3 == 1 || i + 1 == cnf.clauses.size()) {
        s.hide(to_lits(cnf.clauses[i]));
      } else {
        visible.clauses.push_back(cnf.clauses[i]);
      }
    }
    load(s, visible);
    ASSERT_EQ(s.solve(), expected);
    if (expected) {
      EXPECT_TRUE(satisfies(s, cnf.clauses));
    }
    const int vars = s.num_vars();
    // Inside a backtrack point the theory learns facts over a new atom y
    // that contradict each other; its clauses carry the point's guard and
    // go with the point and with y.
    s.push_backtrack_point();
    Var y = s.new_var();
    s.hide({mk_lit(y)});
    s.hide({mk_lit(y, true), mk_lit(0)});
    s.hide({mk_lit(y, true), mk_lit(0, true), mk_lit(2)});
    s.hide({mk_lit(y, true), mk_lit(0, true), mk_lit(2, true)});
    EXPECT_FALSE(s.solve());
    s.pop_backtrack_point();
    EXPECT_EQ(s.num_vars(), vars);
    ASSERT_EQ(s.solve(), expected);
    if (expected) {
      EXPECT_TRUE(satisfies(s, cnf.clauses));
    }
    explanations += s.explanations;
    if (GetParam() == TheoryMode::Lemmas) {
      EXPECT_GT(s.lemmas_given, 0);
    }
  }
  if (GetParam() == TheoryMode::LazyReasons
      || GetParam() == TheoryMode::EagerReasons) {
    EXPECT_GT(explanations, 0);
  }
}

// Random pushes, pops and clauses over old and new atoms, part of them
// known only to the theory; compared with a fresh engine that sees all.
TEST_P(DpllTheoryRoad, RandomSequencesMatchFreshSolver) {
  uint64_t x = 0x9E3779B97F4A7C15ULL + static_cast<int>(GetParam());
  auto next = [&x](uint64_t n) {
    x ^= x << 13;
    x ^= x >> 7;
    x ^= x << 17;
    return x % n;
  };
  for (int run = 0; run < 200; ++run) {
    Configuration::Dpll config;
    ClauseTheorySolver s(&config, GetParam());
    std::vector<std::pair<Var, int>> atoms;  // variable, depth
    for (int v = 0; v < 20; ++v) {
      atoms.emplace_back(s.new_var(), 0);
    }
    std::vector<std::pair<std::vector<Lit>, int>> clauses;  // lits, depth
    for (int step = 0; step < 80; ++step) {
      int depth = s.num_backtrack_points();
      uint64_t op = next(12);
      if (op == 0 && depth < 4) {
        s.push_backtrack_point();
      } else if (op == 1 && depth > 0) {
        s.pop_backtrack_point();
        auto gone = [depth](const auto& e) { return e.second >= depth; };
        atoms.erase(std::remove_if(atoms.begin(), atoms.end(), gone),
                    atoms.end());
        clauses.erase(std::remove_if(clauses.begin(), clauses.end(), gone),
                      clauses.end());
      } else if (op == 2) {
        atoms.emplace_back(s.new_var(), depth);
      } else if (op < 10) {
        std::vector<Lit> cl;
        for (uint64_t k = 1 + next(3); k > 0; --k) {
          cl.push_back(mk_lit(atoms[next(atoms.size())].first, next(2)));
        }
        // Theory knowledge is valid for as long as its atoms exist, so a
        // fact learnt inside a point mentions an atom of that point.
        bool hide = next(2) != 0;
        if (hide && depth > 0) {
          Var young = s.new_var();
          atoms.emplace_back(young, depth);
          cl.push_back(mk_lit(young, next(2)));
        }
        clauses.emplace_back(cl, depth);
        if (hide) {
          s.hide(cl);
        } else {
          s.add_clause_inplace(cl);
        }
      } else {
        DpllSolver fresh(&config);
        while (fresh.num_vars() < s.num_vars()) {
          fresh.new_var();
        }
        for (auto cl : clauses) {
          fresh.add_clause_inplace(cl.first);
        }
        bool sat = s.solve();
        ASSERT_EQ(sat, fresh.solve()) << "run " << run << " step " << step;
        for (const auto& cl : clauses) {
          if (sat) {
            ASSERT_TRUE(
                std::any_of(cl.first.begin(), cl.first.end(), [&s](Lit p) {
                  return s.get_model_value(dpll::var(p))
                         == lbool::from_bool(!dpll::sign(p));
                }));
          }
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Modes,
                         DpllTheoryRoad,
                         ::testing::Values(TheoryMode::LazyReasons,
                                           TheoryMode::EagerReasons,
                                           TheoryMode::LateConflicts,
                                           TheoryMode::Lemmas,
                                           TheoryMode::LateLemmas));

TEST(DpllClauseDb, RemovingClauses) {
  Cnf cnf = load_file("unsat/satlib-uuf50-218__uuf50-0122.cnf");
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, cnf);
  EXPECT_EQ(s.solve_limited({}, 50, 0, 0), l_Undef);
  EXPECT_GT(s.num_learnts(), 0u);
  s.remove_learnt_clauses();
  EXPECT_EQ(s.num_learnts(), 0u);
  EXPECT_FALSE(s.solve());

  // Removing problem clauses before any check leaves exactly the rest.
  DpllSolver r(&config);
  load(r, cnf);
  std::vector<dpll::Clause*> all = r.problem_clauses();
  ASSERT_EQ(all.size(), cnf.clauses.size());
  for (size_t i = 0; i < 40; ++i) {
    EXPECT_TRUE(r.remove_clause(all[i], false));
  }
  EXPECT_EQ(r.num_clauses(), cnf.clauses.size() - 40);
  Cnf rest{cnf.num_vars, {cnf.clauses.begin() + 40, cnf.clauses.end()}};
  DpllSolver fresh(&config);
  load(fresh, rest);
  bool sat = r.solve();
  EXPECT_EQ(sat, fresh.solve());
  if (sat) {
    EXPECT_TRUE(satisfies(r, rest.clauses));
  }
}

TEST(DpllStats, ReportTheSearchDone) {
  Configuration::Dpll config;
  DpllSolver s(&config);
  load(s, load_file("unsat/cadical__ph4.cnf"));
  s.solve();
  std::map<std::string, std::string> stats;
  for (const auto& [name, value] : s.get_stats()) {
    EXPECT_TRUE(stats.emplace(name, value).second) << "twice: " << name;
  }
  EXPECT_EQ(stats[":sat-checks"], "1");
  EXPECT_GT(s.stats().conflicts, 0u);
  EXPECT_EQ(stats[":sat-conflicts"], std::to_string(s.stats().conflicts));
}

}  // namespace
}  // namespace zenlo
