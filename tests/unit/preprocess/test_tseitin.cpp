#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dpll/dpllsolver.h"
#include "preprocess/dpllclausesink.h"
#include "preprocess/tseitincnfgenerator_impl.h"
#include "support/bool_formulas.h"

namespace zenlo {
namespace {

using zenlo_test::evaluate;
using zenlo_test::make_atoms;
using zenlo_test::RandomFormulas;

// Records the clauses over terms, with the same folding of `not` chains
// as the engine's sink.
struct RecordingSink {
  struct Clause {
    bool definition;
    std::vector<std::pair<const Term_*, bool>> lits;
  };

  explicit RecordingSink(TermManager& tm) : tm(tm) {}

  void begin_clause(bool definition) { clauses.push_back({definition, {}}); }

  void add_literal(const Term_* t, bool negated) {
    while (tm.get_tag(t->get_symbol()) == SymbolTag::NOT) {
      negated = !negated;
      t = t->get_child(0);
    }
    clauses.back().lits.emplace_back(t, negated);
  }

  void end_clause() {}

  int create_label(const Term_* t) {
    labels.push_back(t);
    return static_cast<int>(labels.size());
  }

  size_t count_labels(const Term_* t) const {
    return static_cast<size_t>(std::count(labels.begin(), labels.end(), t));
  }

  TermManager& tm;
  std::vector<Clause> clauses;
  std::vector<const Term_*> labels;
};

using Generator = TseitinCNFGenerator<RecordingSink>;

class TseitinTest : public ::testing::Test {
 protected:
  TseitinTest() : atoms(make_atoms(tm, "a", 6)), sink(tm) {}

  const Term_* a(int i) { return atoms[i]; }

  // Brute force: for every assignment of the first `n` atoms (those `f`
  // uses), the formula's value must equal whether some assignment of the
  // labels satisfies every clause.
  ::testing::AssertionResult equisatisfiable(const Term_* f, size_t n = 6) {
    size_t nl = sink.labels.size();
    if (n + nl > 20) {
      return ::testing::AssertionFailure() << "too many labels: " << nl;
    }
    for (uint32_t am = 0; am < (1u << n); ++am) {
      std::unordered_map<const Term_*, bool> val;
      for (size_t i = 0; i < n; ++i) {
        val[atoms[i]] = ((am >> i) & 1) != 0;
      }
      bool expected = evaluate(tm, f, val);
      bool found = false;
      for (uint32_t lm = 0; lm < (1u << nl) && !found; ++lm) {
        for (size_t i = 0; i < nl; ++i) {
          val[sink.labels[i]] = ((lm >> i) & 1) != 0;
        }
        found = all_clauses_true(val);
      }
      if (found != expected) {
        return ::testing::AssertionFailure()
               << "assignment " << am << ": formula " << expected
               << ", clauses " << found << " for " << f->to_str();
      }
    }
    return ::testing::AssertionSuccess();
  }

  bool all_clauses_true(const std::unordered_map<const Term_*, bool>& val) {
    for (const auto& c : sink.clauses) {
      bool sat = false;
      for (const auto& [t, neg] : c.lits) {
        sat = sat || val.at(t) != neg;
      }
      if (!sat) {
        return false;
      }
    }
    return true;
  }

  TermManager tm;
  std::vector<const Term_*> atoms;
  RecordingSink sink;
};

// ---------------------------------------------------------------------------
// The shape of the clauses
// ---------------------------------------------------------------------------

TEST_F(TseitinTest, ConjunctionOfLiteralsGivesUnitsAndNoLabel) {
  Generator gen(&tm, &sink, false);
  gen(tm.make_and(a(0), tm.make_and(tm.make_not(a(1)), a(2))));
  ASSERT_EQ(sink.clauses.size(), 3u);
  EXPECT_TRUE(sink.labels.empty());
  for (const auto& c : sink.clauses) {
    EXPECT_EQ(c.lits.size(), 1u);
  }
  EXPECT_TRUE(sink.clauses[1].lits[0].second);
}

TEST_F(TseitinTest, SharedAndIsDefinedOnce) {
  const Term_* s = tm.make_and(a(0), a(1));
  const Term_* f = tm.make_and(tm.make_or(s, a(2)), tm.make_or(s, a(3)));
  Generator gen(&tm, &sink, false);
  gen(f);
  EXPECT_EQ(sink.count_labels(s), 1u);
  EXPECT_EQ(sink.labels.size(), 3u);
  EXPECT_TRUE(equisatisfiable(f));
}

TEST_F(TseitinTest, TopLevelIffIsTwoClausesWithoutLabel) {
  Generator gen(&tm, &sink, false);
  gen(tm.make_iff(a(0), tm.make_not(a(1))));
  EXPECT_EQ(sink.clauses.size(), 2u);
  EXPECT_TRUE(sink.labels.empty());
  gen(tm.make_not(tm.make_iff(a(2), a(3))));
  EXPECT_EQ(sink.clauses.size(), 4u);
  EXPECT_TRUE(sink.labels.empty());
}

TEST_F(TseitinTest, IffUnderOrGetsDefinitionOfFourClauses) {
  const Term_* iff = tm.make_iff(a(0), a(1));
  const Term_* f = tm.make_or(iff, a(2));
  Generator gen(&tm, &sink, false);
  gen(f);
  EXPECT_EQ(sink.count_labels(iff), 1u);
  size_t iff_defs = std::count_if(
      sink.clauses.begin(), sink.clauses.end(), [&](const auto& c) {
        return c.definition && c.lits.size() == 3 && c.lits[0].first == iff;
      });
  EXPECT_EQ(iff_defs, 4u);
  EXPECT_TRUE(equisatisfiable(f));
}

TEST_F(TseitinTest, UnsharedChainsShareOneDefinition) {
  // (a0 & a1 & a2) | a3 with the `and` nested: one label for the chain.
  const Term_* chain = tm.make_and(tm.make_and(a(0), a(1)), a(2));
  const Term_* f = tm.make_or(chain, tm.make_not(a(3)));
  Generator gen(&tm, &sink, false);
  gen(f);
  EXPECT_EQ(sink.count_labels(chain), 1u);
  EXPECT_EQ(sink.count_labels(chain->get_child(0)), 0u);
  EXPECT_TRUE(equisatisfiable(f));
}

TEST_F(TseitinTest, ConvertingTwiceAddsNothingUntilPopped) {
  const Term_* f = tm.make_or(tm.make_and(a(0), a(1)), a(2));
  const Term_* g = tm.make_or(tm.make_iff(a(3), a(4)), a(5));
  Generator gen(&tm, &sink, false);
  gen(f);
  size_t clauses = sink.clauses.size();
  gen(f);
  EXPECT_EQ(sink.clauses.size(), clauses);
  gen.push_backtrack_point();
  gen(g);
  size_t labels = sink.labels.size();
  gen(g);
  EXPECT_EQ(sink.labels.size(), labels);
  gen.pop_backtrack_point();
  EXPECT_FALSE(gen.is_defined(g));
  EXPECT_TRUE(gen.is_defined(f));
  gen(g);
  EXPECT_EQ(sink.count_labels(g), 2u);
}

TEST_F(TseitinTest, FullConversionDefinesEvenClauses) {
  const Term_* f = tm.make_or(a(0), tm.make_not(a(1)));
  Generator gen(&tm, &sink, true);
  gen(f);
  EXPECT_EQ(sink.count_labels(f), 1u);
  EXPECT_EQ(sink.clauses.size(), 4u);  // three for the label, one unit
  EXPECT_TRUE(equisatisfiable(f));
}

TEST_F(TseitinTest, UnsupportedTermsRaiseTheirMessages) {
  Generator gen(&tm, &sink, false);
  auto message = [&](const Term_* f) {
    try {
      gen(f);
    } catch (const CNFGenerator::error& e) {
      return e.message();
    }
    return std::string("no error");
  };
  EXPECT_EQ(message(tm.make_or(a(0), tm.make_true())),
            "The CNF conversion does not support `true' and `false'");
  EXPECT_EQ(message(tm.make_and(a(0), tm.make_false())),
            "The CNF conversion does not support `true' and `false'");
  const Term_* v = tm.make_fresh_variable(tm.get_bool_type());
  EXPECT_EQ(message(tm.make_forall(v, v)),
            "The CNF conversion does not support quantifiers");
  EXPECT_EQ(message(tm.make_or(a(0), tm.make_not(tm.make_exists(v, v)))),
            "The CNF conversion does not support quantifiers");
  const Term_* x = tm.make_constant(tm.make_symbol("x", tm.get_real_type()));
  EXPECT_EQ(message(x), "Unexpected symbol: x");
}

// ---------------------------------------------------------------------------
// Soundness on random formulas
// ---------------------------------------------------------------------------

TEST_F(TseitinTest, RandomFormulasAreEquisatisfiable) {
  for (bool full : {false, true}) {
    for (uint32_t seed = 1; seed <= 150; ++seed) {
      sink.clauses.clear();
      sink.labels.clear();
      Generator gen(&tm, &sink, full);
      RandomFormulas rf(tm, {a(0), a(1), a(2), a(3)}, seed);
      // Two assertions sharing subformulas, the second after a push.
      const Term_* f = rf.make(3);
      const Term_* g = rf.make(3);
      gen(f);
      gen.push_backtrack_point();
      gen(g);
      ASSERT_TRUE(equisatisfiable(tm.make_and(f, g), 4))
          << "seed " << seed << " full " << full;
    }
  }
}

// ---------------------------------------------------------------------------
// Deep formulas through the engine
// ---------------------------------------------------------------------------

class DeepTseitinTest : public ::testing::Test {
 protected:
  static constexpr int kDepth = 1000000;

  DeepTseitinTest()
      : dpll(&config.dpll, &config),
        sink(&tm, &dpll, nullptr, false),
        gen(&tm, &sink, false) {}

  Configuration config;
  TermManager tm;
  DpllSolver dpll;
  DpllClauseSink sink;
  TseitinCNFGenerator<DpllClauseSink> gen;
};

TEST_F(DeepTseitinTest, AlternatingChainIsDefinedAndSolved) {
  // x0 | (x1 & (x2 | (x3 & ...))) over a cycle of atoms: no chain of one
  // connective to flatten, so every level gets its own definition.
  constexpr int kAtoms = 1000;
  std::vector<const Term_*> x = make_atoms(tm, "x", kAtoms);
  const Term_* f = x[kDepth % kAtoms];
  for (int i = kDepth - 1; i >= 0; --i) {
    const Term_* xi = x[i % kAtoms];
    f = i % 2 == 0 ? tm.make_or(xi, f) : tm.make_and(xi, f);
  }
  gen(f);
  gen(tm.make_not(x[0]));
  gen(tm.make_not(x[2]));
  ASSERT_TRUE(dpll.solve());
  std::unordered_map<const Term_*, bool> val;
  for (const Term_* a : x) {
    val[a] = dpll.get_model_value(dpll.proxy_for_term(a)) == l_True;
  }
  EXPECT_TRUE(evaluate(tm, f, val));
  EXPECT_FALSE(val[x[0]] || val[x[2]]);
  EXPECT_EQ(sink.num_variables(), static_cast<uint32_t>(kDepth + kAtoms));
}

TEST_F(DeepTseitinTest, DeepNegationsAndClausesNeedNoLabels) {
  std::vector<const Term_*> x = make_atoms(tm, "x", kDepth);
  const Term_* neg = x[0];
  for (int i = 0; i < kDepth; ++i) {
    neg = tm.make_not(neg);
  }
  gen(neg);  // an even number of negations: x0 itself
  const Term_* clause = x[kDepth - 1];
  for (int i = kDepth - 2; i >= 1; --i) {
    clause = tm.make_or(tm.make_not(x[i]), clause);
  }
  gen(clause);
  EXPECT_EQ(sink.num_clauses(), 2u);
  EXPECT_EQ(sink.num_variables(), static_cast<uint32_t>(kDepth));
  ASSERT_TRUE(dpll.solve());
  EXPECT_EQ(dpll.get_model_value(dpll.proxy_for_term(x[0])), l_True);
}

}  // namespace
}  // namespace zenlo
