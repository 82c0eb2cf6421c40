// The congruence closure on its own: merges and congruences through curried
// applications, conflicts and their explanations, deductions, exact
// backtracking, and terms nested far deeper than the call stack.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "terms/termmanager.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace {

using Lits = std::vector<TheoryLit>;

class EufTest : public ::testing::Test {
 protected:
  EufTest() : u(tm.get_simple_type("U")) { tm.set_forbid_bool_args(false); }

  const Term_* constant(const std::string& name, const Type* t = nullptr) {
    return tm.make_constant(tm.make_symbol(name, t ? t : u));
  }

  const Symbol* function(const std::string& name, size_t arity, const Type* r) {
    return tm.make_symbol(
        name, tm.get_function_type(std::vector<const Type*>(arity, u), r));
  }

  const Term_* app(const Symbol* f, TermList args) {
    return tm.make_uninterpreted_function(f, args);
  }

  TheoryLit eq(const Term_* a, const Term_* b) {
    return TheoryLit(tm.make_equal(a, b));
  }

  // Asserts literals in order; returns whether the solver stayed consistent.
  bool assert_all(euf::Solver& s, const Lits& lits) {
    for (TheoryLit l : lits) {
      s.tell_atom(l.atom());
      if (!s.push_constraint(l)) {
        return false;
      }
    }
    return true;
  }

  static Lits sorted(Lits v) {
    std::sort(v.begin(), v.end());
    return v;
  }

  // Every known term's class, as sorted term ids; a canonical picture of
  // the partition for comparisons across backtracking.
  static std::vector<std::vector<uint64_t>> partition(const euf::Solver& s,
                                                      const TermList& terms) {
    std::vector<std::vector<uint64_t>> out;
    for (const Term_* t : terms) {
      TermList cls;
      s.get_congruence_class(t, cls);
      std::vector<uint64_t> ids;
      for (const Term_* m : cls) {
        ids.push_back(m->get_id());
      }
      std::sort(ids.begin(), ids.end());
      out.push_back(ids);
    }
    return out;
  }

  TermManager tm;
  const Type* u;
};

// ---------------------------------------------------------------------------
// Merges and congruences
// ---------------------------------------------------------------------------

TEST_F(EufTest, MergesTransitivelyAndThroughCurriedApplications) {
  euf::Solver s(&tm);
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  const Term_* c = constant("c");
  const Symbol* f = function("f", 1, u);
  const Symbol* g = function("g", 2, u);
  const Symbol* h = function("h", 3, u);
  const Term_* gac = app(g, {a, c});
  const Term_* gbc = app(g, {b, c});
  const Term_* gca = app(g, {c, a});
  const Term_* habc = app(h, {a, b, c});
  const Term_* hbbc = app(h, {b, b, c});
  const Term_* ffa = app(f, {app(f, {a})});
  const Term_* ffb = app(f, {app(f, {b})});
  for (const Term_* t : {gac, gbc, gca, habc, hbbc, ffa, ffb}) {
    s.add_term(t);
  }
  EXPECT_FALSE(s.are_equal(gac, gbc));
  ASSERT_TRUE(assert_all(s, {eq(a, b)}));
  EXPECT_TRUE(s.are_equal(gac, gbc));
  EXPECT_TRUE(s.are_equal(habc, hbbc));
  EXPECT_TRUE(s.are_equal(ffa, ffb));
  EXPECT_FALSE(s.are_equal(gac, gca));  // argument order matters
  EXPECT_FALSE(s.are_equal(a, c));
  ASSERT_TRUE(assert_all(s, {eq(b, c)}));
  EXPECT_TRUE(s.are_equal(gac, gca));
  // Terms made after the merge join their classes at once.
  const Term_* gcb = app(g, {c, b});
  s.add_term(gcb);
  EXPECT_TRUE(s.are_equal(gcb, gac));
  Lits why;
  s.get_congruence_reason(gcb, gac, why);
  EXPECT_EQ(sorted(why), sorted({eq(a, b), eq(b, c)}));
}

TEST_F(EufTest, DisequalityConflictNamesTheHypotheses) {
  euf::Solver s(&tm);
  const Term_* x = constant("x");
  const Term_* y = constant("y");
  const Term_* z = constant("z");
  const Symbol* f = function("f", 1, u);
  TheoryLit neq = ~eq(app(f, {x}), app(f, {z}));
  ASSERT_TRUE(assert_all(s, {eq(x, y), neq}));
  EXPECT_FALSE(assert_all(s, {eq(y, z)}));
  Lits conflict;
  s.get_conflict(conflict);
  EXPECT_EQ(sorted(conflict), sorted({eq(x, y), eq(y, z), neq}));
  // Asserting into the same class directly conflicts too.
  euf::Solver t(&tm);
  EXPECT_FALSE(assert_all(t, {eq(x, y), eq(y, z), ~eq(x, z)}));
  conflict.clear();
  t.get_conflict(conflict);
  EXPECT_EQ(sorted(conflict), sorted({eq(x, y), eq(y, z), ~eq(x, z)}));
}

TEST_F(EufTest, ValuesAndPredicatesConflictWithoutDisequalityAtoms) {
  euf::Solver s(&tm);
  const Term_* x = constant("xi", tm.get_integer_type());
  const Term_* y = constant("yi", tm.get_integer_type());
  const Term_* one = tm.make_number(1);
  const Term_* two = tm.make_number(2);
  ASSERT_TRUE(assert_all(s, {eq(x, one), eq(y, two)}));
  EXPECT_TRUE(s.are_disequal(x, y));
  EXPECT_EQ(s.get_representative(x), one);  // a value stands for its class
  EXPECT_FALSE(assert_all(s, {eq(x, y)}));
  Lits conflict;
  s.get_conflict(conflict);
  EXPECT_EQ(sorted(conflict), sorted({eq(x, one), eq(y, two), eq(x, y)}));

  euf::Solver t(&tm);
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  const Symbol* p = function("p", 1, tm.get_bool_type());
  TheoryLit pa(app(p, {a}));
  TheoryLit not_pb(app(p, {b}), true);
  ASSERT_TRUE(assert_all(t, {pa, not_pb}));
  EXPECT_FALSE(assert_all(t, {eq(a, b)}));
  conflict.clear();
  t.get_conflict(conflict);
  EXPECT_EQ(sorted(conflict), sorted({pa, not_pb, eq(a, b)}));
}

// A long chain between the two ends of a disequality, with distractor
// equalities hanging off it and among other constants: only the chain and
// the disequality may appear in the conflict.
TEST_F(EufTest, ChainConflictNamesOnlyTheChain) {
  std::mt19937 rng(7);
  const int n = 60;
  TermList chain;
  TermList others;
  for (int i = 0; i < n; ++i) {
    chain.push_back(constant("c" + std::to_string(i)));
    others.push_back(constant("d" + std::to_string(i)));
  }
  Lits on_chain;
  Lits distractors;
  for (int i = 0; i + 1 < n; ++i) {
    on_chain.push_back(eq(chain[i], chain[i + 1]));
  }
  // The lower half of the others hangs off the chain, one link each; the
  // upper half is linked among itself.
  for (int i = 0; i < n / 2; ++i) {
    distractors.push_back(eq(others[i], chain[rng() % n]));
    const Term_* d = others[n / 2 + rng() % (n / 2)];
    const Term_* e = others[n / 2 + rng() % (n / 2)];
    if (d != e) {
      distractors.push_back(eq(d, e));
    }
  }
  // Interleave: chain links and distractors in random order.
  Lits all = on_chain;
  all.insert(all.end(), distractors.begin(), distractors.end());
  std::shuffle(all.begin(), all.end(), rng);
  euf::Solver s(&tm);
  ASSERT_TRUE(assert_all(s, all));
  TheoryLit neq = ~eq(chain.front(), chain.back());
  ASSERT_FALSE(assert_all(s, {neq}));
  Lits conflict;
  s.get_conflict(conflict);
  Lits expected = on_chain;
  expected.push_back(neq);
  for (TheoryLit l : conflict) {
    EXPECT_NE(std::find(expected.begin(), expected.end(), l), expected.end())
        << "distractor in conflict: " << l.atom()->to_str();
  }
  EXPECT_EQ(conflict.size(), expected.size());
}

// ---------------------------------------------------------------------------
// Deductions
// ---------------------------------------------------------------------------

TEST_F(EufTest, DeducesAtomsAndExplainsThemAsOfTheirDeduction) {
  euf::Solver s(&tm);
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  const Term_* c = constant("c");
  const Term_* d = constant("d");
  const Symbol* f = function("f", 1, u);
  const Symbol* p = function("p", 1, tm.get_bool_type());
  const Term_* fa = app(f, {a});
  const Term_* fb = app(f, {b});
  TheoryLit fab = eq(fa, fb);
  TheoryLit cd = eq(c, d);
  TheoryLit pb(app(p, {b}));
  s.tell_atom(fab.atom());
  s.tell_atom(cd.atom());
  s.tell_atom(pb.atom());
  ASSERT_TRUE(assert_all(s, {TheoryLit(app(p, {a})), eq(a, b)}));
  Lits implied;
  for (TheoryLit l; s.get_next_implied(l);) {
    implied.push_back(l);
  }
  EXPECT_NE(std::find(implied.begin(), implied.end(), fab), implied.end());
  EXPECT_NE(std::find(implied.begin(), implied.end(), pb), implied.end());
  // Later facts make another route to f(a) = f(b); the reason still is the
  // one that held when it was deduced.
  ASSERT_TRUE(assert_all(s, {eq(fa, c), eq(c, fb), eq(c, a), eq(d, b)}));
  std::string before = s.debug_dump();
  Lits why;
  s.get_implied_reason(fab, why);
  EXPECT_EQ(why, Lits{eq(a, b)});
  EXPECT_EQ(s.debug_dump(), before);
  // c = d held by merges; separating the classes of c and d is a conflict
  // and c = d is deduced from the merges.
  implied.clear();
  for (TheoryLit l; s.get_next_implied(l);) {
    implied.push_back(l);
  }
  EXPECT_NE(std::find(implied.begin(), implied.end(), cd), implied.end());
}

TEST_F(EufTest, DeducesFalseEqualitiesFromDisequalities) {
  euf::Solver s(&tm);
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  const Term_* c = constant("c");
  const Term_* d = constant("d");
  TheoryLit cd = eq(c, d);
  s.tell_atom(cd.atom());
  ASSERT_TRUE(assert_all(s, {eq(c, a), eq(d, b), ~eq(a, b)}));
  TheoryLit l;
  bool found = false;
  while (s.get_next_implied(l)) {
    found = found || l == ~cd;
  }
  ASSERT_TRUE(found);
  Lits why;
  s.get_implied_reason(~cd, why);
  EXPECT_EQ(sorted(why), sorted({eq(c, a), eq(d, b), ~eq(a, b)}));

  // The same when the disequality comes first and merges follow, and when
  // two values separate the classes.
  auto implied_reason = [&](euf::Solver& t, TheoryLit l) {
    TheoryLit m;
    bool seen = false;
    while (t.get_next_implied(m)) {
      seen = seen || m == l;
    }
    Lits r;
    if (seen) {
      t.get_implied_reason(l, r);
    }
    return sorted(r);
  };
  euf::Solver t(&tm);
  t.tell_atom(cd.atom());
  ASSERT_TRUE(assert_all(t, {~eq(a, b), eq(c, a)}));
  t.push_checkpoint();
  ASSERT_TRUE(assert_all(t, {eq(d, b)}));
  EXPECT_EQ(implied_reason(t, ~cd), sorted({eq(c, a), eq(d, b), ~eq(a, b)}));
  euf::Solver v(&tm);
  const Term_* x = constant("xi", tm.get_integer_type());
  const Term_* y = constant("yi", tm.get_integer_type());
  TheoryLit xy = eq(x, y);
  v.tell_atom(xy.atom());
  ASSERT_TRUE(assert_all(v, {eq(x, tm.make_number(1))}));
  v.push_checkpoint();
  ASSERT_TRUE(assert_all(v, {eq(y, tm.make_number(2))}));
  EXPECT_EQ(implied_reason(v, ~xy),
            sorted({eq(x, tm.make_number(1)), eq(y, tm.make_number(2))}));
}

// Watches of atoms that have a value leave the class lists when a merge
// walks them; backtracking below the value must bring them back, or the
// atom would never be deduced again. Several atoms share the classes so
// that the dropped watches include list heads and inner cells.
TEST_F(EufTest, AtomsWithValuesAreDeducedAgainAfterBacktracking) {
  euf::Solver s(&tm);
  const Term_* a = constant("a");
  const Term_* d = constant("d");
  TermList bs;
  Lits atoms;
  for (int i = 0; i < 5; ++i) {
    bs.push_back(constant("b" + std::to_string(i)));
    atoms.push_back(eq(bs.back(), d));
    s.tell_atom(atoms.back().atom());
  }
  auto implied = [&s]() {
    Lits out;
    TheoryLit l;
    while (s.get_next_implied(l)) {
      out.push_back(l);
    }
    return sorted(out);
  };
  ASSERT_TRUE(assert_all(s, {~eq(a, d)}));
  for (int round = 0; round < 2; ++round) {
    s.push_checkpoint();
    // The atoms get values first, then the merges walk their watches.
    if (round == 0) {
      ASSERT_TRUE(assert_all(s, {~atoms[0], ~atoms[2], ~atoms[4]}));
      implied();
    }
    for (const Term_* b : bs) {
      ASSERT_TRUE(assert_all(s, {eq(b, a)}));
    }
    Lits got = implied();
    Lits want;
    for (size_t i = round == 0 ? 1 : 0; i < atoms.size();
         i += round == 0 ? 2 : 1) {
      want.push_back(~atoms[i]);
    }
    for (TheoryLit l : want) {
      EXPECT_NE(std::find(got.begin(), got.end(), l), got.end())
          << "round " << round << ": " << l.atom()->to_str();
    }
    s.backtrack(1);
  }
}

TEST_F(EufTest, BooleanArgumentsFollowTheirTruthValues) {
  euf::Solver s(&tm);
  const Type* bt = tm.get_bool_type();
  const Term_* p = constant("p", bt);
  const Term_* q = constant("q", bt);
  const Symbol* f = tm.make_symbol("fb", tm.get_function_type({bt}, u));
  const Term_* fp = tm.make_uninterpreted_function(f, {p});
  const Term_* fq = tm.make_uninterpreted_function(f, {q});
  const Term_* ft = tm.make_uninterpreted_function(f, {tm.make_true()});
  s.set_report_new_terms(true);
  s.tell_atom(tm.make_equal(fp, fq));
  std::vector<const Term_*> made;
  s.take_new_terms(made);
  std::sort(made.begin(), made.end());
  std::vector<const Term_*> expected{p, q, fp, fq, tm.make_equal(fp, fq)};
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(made, expected);
  s.add_term(ft);
  ASSERT_TRUE(assert_all(s, {TheoryLit(p), TheoryLit(q)}));
  EXPECT_TRUE(s.are_equal(fp, fq));
  EXPECT_TRUE(s.are_equal(fp, ft));
  Lits why;
  s.get_congruence_reason(fp, ft, why);
  EXPECT_EQ(why, Lits{TheoryLit(p)});
}

// ---------------------------------------------------------------------------
// Backtracking
// ---------------------------------------------------------------------------

// Random equalities and disequalities under checkpoints; after each
// backtrack the partition, the disequalities and consistency are exactly
// those of the checkpoint.
TEST_F(EufTest, BacktrackingRestoresStateExactly) {
  std::mt19937 rng(11);
  TermList cs;
  for (int i = 0; i < 8; ++i) {
    cs.push_back(constant("k" + std::to_string(i)));
  }
  const Symbol* f = function("f", 1, u);
  const Symbol* g = function("g", 2, u);
  TermList terms = cs;
  for (int i = 0; i < 8; ++i) {
    terms.push_back(app(f, {cs[i]}));
    terms.push_back(app(g, {cs[i], cs[(i + 3) % 8]}));
    terms.push_back(app(f, {app(f, {cs[i]})}));
  }
  for (int round = 0; round < 40; ++round) {
    euf::Solver s(&tm);
    for (const Term_* t : terms) {
      s.add_term(t);
    }
    std::vector<std::vector<std::vector<uint64_t>>> saved;
    std::vector<std::string> dumps;
    for (int level = 0; level < 6; ++level) {
      saved.push_back(partition(s, terms));
      dumps.push_back(s.debug_dump());
      s.push_checkpoint();
      for (int k = 0; k < 3; ++k) {
        const Term_* a = terms[rng() % terms.size()];
        const Term_* b = terms[rng() % terms.size()];
        if (a == b) {
          continue;
        }
        TheoryLit l = eq(a, b);
        s.tell_atom(l.atom());
        if (!s.push_constraint(rng() % 4 ? l : ~l)) {
          break;
        }
      }
      if (!s.check()) {
        break;
      }
    }
    while (!saved.empty()) {
      s.backtrack(1);
      EXPECT_TRUE(s.check());
      EXPECT_EQ(partition(s, terms), saved.back());
      EXPECT_EQ(s.debug_dump().substr(0, 4), dumps.back().substr(0, 4));
      saved.pop_back();
      dumps.pop_back();
    }
  }
}

TEST_F(EufTest, RetractedAtomsLoseTheirNodesOthersStay) {
  euf::Solver s(&tm);
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  const Symbol* f = function("f", 1, u);
  TheoryLit first = eq(a, b);
  TheoryLit second = eq(app(f, {a}), app(f, {b}));
  s.tell_atom(first.atom());
  s.push_checkpoint();
  s.tell_atom(second.atom());
  EXPECT_TRUE(s.has_node(app(f, {a})));
  s.backtrack(1);
  // Told again after the backtrack, since the caller told it once.
  EXPECT_TRUE(s.has_node(second.atom()));
  s.retract_atom(second.atom());
  EXPECT_FALSE(s.has_node(second.atom()));
  EXPECT_FALSE(s.has_node(app(f, {a})));
  EXPECT_TRUE(s.has_node(first.atom()));
  EXPECT_TRUE(assert_all(s, {first}));
  // An inconsistency older than the retracted atom stays.
  ASSERT_FALSE(assert_all(s, {~first}));
  s.tell_atom(second.atom());
  s.retract_atom(second.atom());
  EXPECT_FALSE(s.check());
}

// A retraction undoes what came after the atom; the facts among that must
// be asserted again by the caller, and only then does it say so.
TEST_F(EufTest, RetractionSaysWhenItTookFactsBack) {
  euf::Solver s(&tm);
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  const Term_* c = constant("c");
  TheoryLit older = eq(a, b);
  TheoryLit young = eq(b, c);
  s.tell_atom(older.atom());
  EXPECT_TRUE(assert_all(s, {older}));
  s.tell_atom(young.atom());
  EXPECT_FALSE(s.retract_atom(young.atom()));
  EXPECT_EQ(s.get_representative(a), s.get_representative(b));

  s.tell_atom(young.atom());
  TheoryLit later = eq(a, c);
  s.tell_atom(later.atom());
  EXPECT_TRUE(assert_all(s, {later}));
  EXPECT_TRUE(s.retract_atom(young.atom()));
  // The fact asserted before the young atom stays; the later one went.
  EXPECT_EQ(s.get_representative(a), s.get_representative(b));
  EXPECT_NE(s.get_representative(a), s.get_representative(c));
}

// ---------------------------------------------------------------------------
// Depth
// ---------------------------------------------------------------------------

// f^n(a) and f^n(b) for n = 100000: building nodes, the cascade of
// congruences, deduction, explanation and backtracking all run without
// recursion and in linear time.
TEST_F(EufTest, DeepCongruenceChains) {
  const int n = 100000;
  const Symbol* f = function("f", 1, u);
  const Term_* a = constant("a");
  const Term_* b = constant("b");
  const Term_* fa = a;
  const Term_* fb = b;
  for (int i = 0; i < n; ++i) {
    fa = app(f, {fa});
    fb = app(f, {fb});
  }
  euf::Solver s(&tm);
  TheoryLit top = eq(fa, fb);
  s.tell_atom(top.atom());
  s.push_checkpoint();
  ASSERT_TRUE(assert_all(s, {eq(a, b)}));
  EXPECT_TRUE(s.are_equal(fa, fb));
  TheoryLit l;
  bool implied = false;
  while (s.get_next_implied(l)) {
    implied = implied || l == top;
  }
  ASSERT_TRUE(implied);
  Lits why;
  s.get_implied_reason(top, why);
  EXPECT_EQ(why, Lits{eq(a, b)});
  EXPECT_FALSE(s.push_constraint(~top));
  Lits conflict;
  s.get_conflict(conflict);
  EXPECT_EQ(sorted(conflict), sorted({eq(a, b), ~top}));
  s.backtrack(1);
  EXPECT_TRUE(s.check());
  EXPECT_FALSE(s.are_equal(fa, fb));
}

}  // namespace
}  // namespace zenlo
