// EUF through the whole road: the engine, the theory manager and the EUF
// adapter on clause sets over equality and predicate atoms. Every answer is
// checked: sat by evaluating each atom under the model that the EUF solver
// reports (classes and function tables), unsat and sat alike against a
// brute-force enumeration of the atoms' truth values with a naive
// congruence closure.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "dpll/dpllsolver.h"
#include "terms/termmanager.h"
#include "theory/euf/eufsolverinterface.h"
#include "theory/theorymanager.h"

namespace zenlo {
namespace {

using dpll::Lit;
using dpll::mk_lit;
using Clause = std::vector<std::pair<const Term_*, bool>>;  // (atom, sign)

// ---------------------------------------------------------------------------
// The oracle: naive closure over all subterms, for one assignment.
// ---------------------------------------------------------------------------

class NaiveClosure {
 public:
  NaiveClosure(TermManager& tm, const TermList& atoms) : d_tm(tm) {
    for (const Term_* a : atoms) {
      collect(a);
    }
  }

  // Whether the literals (atom, value) are consistent in EUF.
  bool consistent(const std::map<const Term_*, bool>& values) {
    d_parent.clear();
    for (const Term_* t : d_terms) {
      d_parent[t] = t;
    }
    for (auto [atom, v] : values) {
      if (is_eq(atom)) {
        if (v) {
          join(atom->get_child(0), atom->get_child(1));
        }
      }
      join(atom, v ? d_tm.make_true() : d_tm.make_false());
    }
    for (bool changed = true; changed;) {
      changed = false;
      for (const Term_* s : d_terms) {
        for (const Term_* t : d_terms) {
          if (find(s) != find(t) && congruent(s, t)) {
            join(s, t);
            changed = true;
          }
        }
      }
    }
    if (find(d_tm.make_true()) == find(d_tm.make_false())) {
      return false;
    }
    for (auto [atom, v] : values) {
      if (is_eq(atom) && !v
          && find(atom->get_child(0)) == find(atom->get_child(1))) {
        return false;
      }
    }
    return true;
  }

 private:
  bool is_eq(const Term_* t) const {
    return d_tm.get_tag(t->get_symbol()) == SymbolTag::EQ;
  }

  void collect(const Term_* t) {
    if (std::find(d_terms.begin(), d_terms.end(), t) != d_terms.end()) {
      return;
    }
    d_terms.push_back(t);
    for (const Term_* c : *t) {
      collect(c);
    }
    collect_bool();
  }

  void collect_bool() {
    for (const Term_* b : {d_tm.make_true(), d_tm.make_false()}) {
      if (std::find(d_terms.begin(), d_terms.end(), b) == d_terms.end()) {
        d_terms.push_back(b);
      }
    }
  }

  bool congruent(const Term_* s, const Term_* t) {
    if (s->get_symbol() != t->get_symbol() || s->get_arity() == 0 || is_eq(s)) {
      return false;
    }
    for (size_t i = 0; i < s->get_arity(); ++i) {
      if (find(s->get_child(i)) != find(t->get_child(i))) {
        return false;
      }
    }
    return true;
  }

  const Term_* find(const Term_* t) {
    while (d_parent[t] != t) {
      t = d_parent[t];
    }
    return t;
  }

  void join(const Term_* a, const Term_* b) { d_parent[find(a)] = find(b); }

  TermManager& d_tm;
  TermList d_terms;
  std::map<const Term_*, const Term_*> d_parent;
};

// Is there an assignment of the atoms that satisfies the clauses and is
// consistent in EUF?
bool brute_force_sat(TermManager& tm,
                     const TermList& atoms,
                     const std::vector<Clause>& clauses) {
  NaiveClosure closure(tm, atoms);
  for (uint64_t bits = 0; bits < (uint64_t(1) << atoms.size()); ++bits) {
    std::map<const Term_*, bool> values;
    for (size_t i = 0; i < atoms.size(); ++i) {
      values[atoms[i]] = (bits >> i) & 1;
    }
    bool all = true;
    for (const Clause& c : clauses) {
      bool sat = false;
      for (auto [atom, neg] : c) {
        sat = sat || values[atom] != neg;
      }
      all = all && sat;
    }
    if (all && closure.consistent(values)) {
      return true;
    }
  }
  return false;
}

// ---------------------------------------------------------------------------
// The road under test.
// ---------------------------------------------------------------------------

struct Road {
  explicit Road(TermManager& tm,
                int dyn_ack = 0,
                bool low_priority = false,
                bool bv = true)
      : tm(tm) {
    config.model_generation = true;
    config.theory.bv.enabled = bv;
    config.theory.euf.dyn_ack = dyn_ack;
    config.theory.euf.dyn_ack_threshold = 1;
    config.theory.euf.low_priority = low_priority;
    engine = std::make_unique<DpllSolver>(&config.dpll, &config);
    manager =
        std::make_unique<TheoryManager>(&config, &tm, engine.get(), nullptr);
    engine->set_theory_manager(manager.get());
  }

  Lit lit(const Term_* atom, bool neg) {
    DpllSolver::Var v;
    engine->make_proxy(atom, v);
    return mk_lit(v, neg);
  }

  // Gives every atom a variable, also those no clause mentions.
  void name(const TermList& atoms) {
    for (const Term_* a : atoms) {
      lit(a, false);
    }
  }

  bool add(const Clause& c) {
    std::vector<Lit> lits;
    for (auto [atom, neg] : c) {
      lits.push_back(lit(atom, neg));
    }
    return engine->add_clause_inplace(lits);
  }

  // Evaluates a term under the EUF model: constants by their class, each
  // application through its function's table on the values of its
  // arguments. Returns null when the table has no such point.
  const Term_* eval(const Term_* t) {
    const euf::Model& m = manager->euf()->model();
    if (t->get_arity() == 0) {
      return m.value_of(t);
    }
    TermList args;
    for (const Term_* c : *t) {
      args.push_back(eval(c));
    }
    const auto* table = m.function_table(t->get_symbol());
    if (table == nullptr) {
      return nullptr;
    }
    for (const euf::Model::FunctionEntry& e : *table) {
      if (e.args == args) {
        return e.value;
      }
    }
    return nullptr;
  }

  // Every atom's value in the engine's model agrees with the EUF model,
  // and every clause holds.
  void check_model(const TermList& atoms, const std::vector<Clause>& cs) {
    std::map<const Term_*, bool> value;
    for (const Term_* a : atoms) {
      lbool v = engine->get_model_value(engine->proxy_for_term(a));
      ASSERT_FALSE(v.is_undef());
      value[a] = v == l_True;
      bool in_model;
      if (tm.get_tag(a->get_symbol()) == SymbolTag::EQ) {
        const Term_* x = eval(a->get_child(0));
        const Term_* y = eval(a->get_child(1));
        ASSERT_NE(x, nullptr);
        ASSERT_NE(y, nullptr);
        in_model = x == y;
      } else {
        const Term_* x = eval(a);
        ASSERT_TRUE(x == tm.make_true() || x == tm.make_false()) << a->to_str();
        in_model = x == tm.make_true();
      }
      EXPECT_EQ(in_model, value[a]) << "atom " << a->to_str();
    }
    for (const Clause& c : cs) {
      bool sat = false;
      for (auto [atom, neg] : c) {
        sat = sat || value[atom] != neg;
      }
      EXPECT_TRUE(sat);
    }
  }

  TermManager& tm;
  Configuration config;
  std::unique_ptr<DpllSolver> engine;
  std::unique_ptr<TheoryManager> manager;
};

// Random clause sets over few constants, two functions and a predicate.
class RandomEuf {
 public:
  explicit RandomEuf(TermManager& tm, uint32_t seed) : d_tm(tm), d_rng(seed) {
    const Type* u = tm.get_simple_type("U");
    for (const char* n : {"a", "b", "c", "d"}) {
      d_consts.push_back(tm.make_constant(tm.make_symbol(n, u)));
    }
    d_f = tm.make_symbol("f", tm.get_function_type({u}, u));
    d_g = tm.make_symbol("g", tm.get_function_type({u, u}, u));
    d_p = tm.make_symbol("p", tm.get_function_type({u}, tm.get_bool_type()));
  }

  const Term_* term(int depth) {
    int k = static_cast<int>(d_rng() % 6);
    if (depth == 0 || k < 3) {
      return d_consts[d_rng() % d_consts.size()];
    }
    if (k < 5) {
      return d_tm.make_uninterpreted_function(d_f, {term(depth - 1)});
    }
    return d_tm.make_uninterpreted_function(d_g,
                                            {term(depth - 1), term(depth - 1)});
  }

  const Term_* atom() {
    if (d_rng() % 4 == 0) {
      return d_tm.make_uninterpreted_function(d_p, {term(2)});
    }
    const Term_* x = term(2);
    const Term_* y = term(2);
    while (y == x) {
      y = term(2);
    }
    return d_tm.make_equal(x, y);
  }

  void make(size_t natoms,
            size_t nclauses,
            TermList& atoms,
            std::vector<Clause>& clauses) {
    while (atoms.size() < natoms) {
      const Term_* a = atom();
      if (std::find(atoms.begin(), atoms.end(), a) == atoms.end()) {
        atoms.push_back(a);
      }
    }
    for (size_t i = 0; i < nclauses; ++i) {
      Clause c;
      size_t len = 1 + d_rng() % 3;
      for (size_t k = 0; k < len; ++k) {
        c.emplace_back(atoms[d_rng() % atoms.size()], d_rng() % 2 == 0);
      }
      clauses.push_back(c);
    }
  }

 private:
  TermManager& d_tm;
  std::mt19937 d_rng;
  TermList d_consts;
  const Symbol* d_f;
  const Symbol* d_g;
  const Symbol* d_p;
};

struct Setting {
  int dyn_ack;
  bool low_priority;
};

class EufRoad : public ::testing::TestWithParam<Setting> {};

TEST_P(EufRoad, RandomFormulasAgreeWithBruteForce) {
  int answers[2] = {0, 0};
  for (uint32_t seed = 1; seed <= 150; ++seed) {
    TermManager tm;
    RandomEuf gen(tm, seed);
    TermList atoms;
    std::vector<Clause> clauses;
    gen.make(9, 6 + seed % 9, atoms, clauses);
    Road road(tm, GetParam().dyn_ack, GetParam().low_priority);
    road.name(atoms);
    for (const Clause& c : clauses) {
      road.add(c);
    }
    bool sat = road.engine->solve();
    ASSERT_EQ(sat, brute_force_sat(tm, atoms, clauses)) << "seed " << seed;
    ++answers[sat];
    if (sat) {
      road.check_model(atoms, clauses);
    }
  }
  // The generator must exercise both answers.
  EXPECT_GT(answers[0], 20);
  EXPECT_GT(answers[1], 20);
}

// Backtrack points: clauses and atoms of a point go with it, and the
// answer after the pop is the answer before the push.
TEST_P(EufRoad, BacktrackPointsScopeClausesAndAtoms) {
  for (uint32_t seed = 1; seed <= 60; ++seed) {
    TermManager tm;
    RandomEuf gen(tm, seed * 7919);
    TermList base_atoms;
    std::vector<Clause> base;
    gen.make(6, 3 + seed % 4, base_atoms, base);
    Road road(tm, GetParam().dyn_ack, GetParam().low_priority);
    road.name(base_atoms);
    for (const Clause& c : base) {
      road.add(c);
    }
    bool sat0 = road.engine->solve();
    ASSERT_EQ(sat0, brute_force_sat(tm, base_atoms, base)) << seed;
    road.engine->push_backtrack_point();
    TermList atoms = base_atoms;
    std::vector<Clause> clauses = base;
    std::vector<Clause> more;
    gen.make(atoms.size() + 3, 4, atoms, more);
    road.name(atoms);
    for (const Clause& c : more) {
      road.add(c);
      clauses.push_back(c);
    }
    bool sat1 = road.engine->solve();
    ASSERT_EQ(sat1, brute_force_sat(tm, atoms, clauses)) << seed;
    if (sat1) {
      road.check_model(atoms, clauses);
    }
    road.engine->pop_backtrack_point();
    EXPECT_EQ(road.engine->solve(), sat0) << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(Settings,
                         EufRoad,
                         ::testing::Values(Setting{0, false},
                                           Setting{1, false},
                                           Setting{2, false},
                                           Setting{0, true}));

// ---------------------------------------------------------------------------
// Boolean arguments of functions
// ---------------------------------------------------------------------------

class EufBoolArgs : public ::testing::Test {
 protected:
  EufBoolArgs() : u(tm.get_simple_type("U")), bt(tm.get_bool_type()) {
    tm.set_forbid_bool_args(false);
    f = tm.make_symbol("f", tm.get_function_type({bt}, u));
  }

  const Term_* b(const char* name) {
    return tm.make_constant(tm.make_symbol(name, bt));
  }

  const Term_* fa(const Term_* x) {
    return tm.make_uninterpreted_function(f, {x});
  }

  TermManager tm;
  const Type* u;
  const Type* bt;
  const Symbol* f;
};

// Three pairwise different values of f over Bool arguments cannot exist,
// although no clause mentions the arguments themselves.
TEST_F(EufBoolArgs, ArgumentsHaveOnlyTwoValues) {
  Road road(tm);
  const Term_* p = b("p");
  const Term_* q = b("q");
  const Term_* r = b("r");
  road.add({{tm.make_equal(fa(p), fa(q)), true}});
  road.add({{tm.make_equal(fa(q), fa(r)), true}});
  EXPECT_TRUE(road.engine->solve());
  road.add({{tm.make_equal(fa(p), fa(r)), true}});
  EXPECT_FALSE(road.engine->solve());
}

// A compound argument that no clause names gets its meaning from EUF's
// definitions: (not (and (or c d) ... )) is valid, so f of it is f(true).
TEST_F(EufBoolArgs, CompoundArgumentsAreDefined) {
  const Term_* c = b("c");
  const Term_* d = b("d");
  auto n = [&](const Term_* x) { return tm.make_not(x); };
  const Term_* contradiction =
      tm.make_and(tm.make_and(tm.make_or(c, d), tm.make_or(c, n(d))),
                  tm.make_and(tm.make_or(n(c), d), tm.make_or(n(c), n(d))));
  const Term_* valid = n(contradiction);
  Road road(tm);
  road.add({{tm.make_equal(fa(valid), fa(tm.make_true())), true}});
  EXPECT_FALSE(road.engine->solve());

  Road sat_road(tm);
  const Term_* pq = tm.make_and(c, d);
  sat_road.add({{tm.make_equal(fa(pq), fa(tm.make_true())), true}});
  ASSERT_TRUE(sat_road.engine->solve());
  // The model has (and c d) false.
  DpllSolver& e = *sat_road.engine;
  bool cv = e.get_model_value(e.proxy_for_term(c)) == l_True;
  bool dv = e.get_model_value(e.proxy_for_term(d)) == l_True;
  EXPECT_FALSE(cv && dv);
}

// An argument that the search named before EUF saw it as an argument, and
// whose value is fixed at level 0, still reaches EUF.
TEST_F(EufBoolArgs, ArgumentsNamedEarlierReachEuf) {
  Road road(tm);
  const Term_* p = b("p");
  road.add({{p, false}});
  EXPECT_TRUE(road.engine->solve());
  road.add({{tm.make_equal(fa(p), fa(tm.make_true())), true}});
  EXPECT_FALSE(road.engine->solve());
}

// ---------------------------------------------------------------------------
// Chains of equalities
// ---------------------------------------------------------------------------

// The diamond x0 .. x40, each step through y_i or z_i, with x0 != x40.
// Without atoms for the steps x_i = x_i+1 every combination of paths is a
// conflict of its own; transitivity lemmas bring those atoms in, and the
// refutation needs few conflicts.
TEST(EufChains, DiamondsNeedFewConflicts) {
  const int n = 40;
  TermManager tm;
  const Type* u = tm.get_simple_type("U");
  auto k = [&](const std::string& s) {
    return tm.make_constant(tm.make_symbol(s, u));
  };
  Road road(tm);
  TermList x;
  for (int i = 0; i <= n; ++i) {
    x.push_back(k("x" + std::to_string(i)));
  }
  // (y_i or z_i), y_i -> x_i = y_i & y_i = x_i+1, the same for z_i.
  const Type* bt = tm.get_bool_type();
  for (int i = 0; i < n; ++i) {
    const Term_* by =
        tm.make_constant(tm.make_symbol("by" + std::to_string(i), bt));
    const Term_* bz =
        tm.make_constant(tm.make_symbol("bz" + std::to_string(i), bt));
    const Term_* y = k("y" + std::to_string(i));
    const Term_* z = k("z" + std::to_string(i));
    road.add({{by, false}, {bz, false}});
    road.add({{by, true}, {tm.make_equal(x[i], y), false}});
    road.add({{by, true}, {tm.make_equal(y, x[i + 1]), false}});
    road.add({{bz, true}, {tm.make_equal(x[i], z), false}});
    road.add({{bz, true}, {tm.make_equal(z, x[i + 1]), false}});
  }
  road.add({{tm.make_equal(x[0], x[n]), true}});
  EXPECT_FALSE(road.engine->solve());
  EXPECT_LT(road.engine->stats().conflicts, 5000u);
}

// ---------------------------------------------------------------------------
// Terms of theories without a solver
// ---------------------------------------------------------------------------

// Congruence alone would call x + 1 = x satisfiable, and two different
// values of a one-bit vector x impossible to avoid: such terms are refused
// while no solver of their theory exists, and stay refused.
TEST(EufForeign, TermsOfMissingTheoriesAreRefused) {
  TermManager tm;
  const Term_* x = tm.make_constant(tm.make_symbol("x", tm.get_integer_type()));
  Road road(tm);
  // Arithmetic has its solver: x + 1 = x is refuted, not refused.
  const Term_* eq = tm.make_equal(tm.make_plus(x, tm.make_number(1)), x);
  road.add({{eq, false}});
  EXPECT_FALSE(road.engine->solve());

  TermManager tm2;
  const Term_* y = tm2.make_constant(tm2.make_symbol("y", tm2.get_bv_type(1)));
  Road road2(tm2, 0, false, /*bv=*/false);
  EXPECT_THROW(road2.add({{tm2.make_equal(y, tm2.make_bv_number(0, 1)), true}}),
               TheoryManager::error);
  // With the bit-vector solver the same atoms are decided.
  Road road2bv(tm2);
  road2bv.add({{tm2.make_equal(y, tm2.make_bv_number(0, 1)), true}});
  road2bv.add({{tm2.make_equal(y, tm2.make_bv_number(1, 1)), true}});
  EXPECT_FALSE(road2bv.engine->solve());

  // Numbers of infinite types are values EUF knows.
  TermManager tm3;
  const Term_* z =
      tm3.make_constant(tm3.make_symbol("z", tm3.get_integer_type()));
  Road road3(tm3);
  road3.add({{tm3.make_equal(z, tm3.make_number(1)), false}});
  road3.add({{tm3.make_equal(z, tm3.make_number(2)), false}});
  EXPECT_FALSE(road3.engine->solve());
}

}  // namespace
}  // namespace zenlo
