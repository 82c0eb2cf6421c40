// The theory manager with scripted solvers in its slots: the order of
// calls, who hears which atom, conflicts, lazy explanations, lemma flags
// and ids. The engine serves only as the owner of the variables.
#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "dpll/dpllsolver.h"
#include "terms/termmanager.h"
#include "theory/theorymanager.h"

namespace zenlo {
namespace {

using dpll::Lit;
using dpll::mk_lit;
using Index = TheoryManager::SolverIndex;

class ScriptedSolver : public TheorySolver {
 public:
  ScriptedSolver(TermManager* tm,
                 const char* name,
                 std::vector<std::string>* calls)
      : TheorySolver(tm), d_name(name), d_calls(calls) {}

  const char* get_name() const override { return d_name; }

  std::pair<bool, bool> tell_atom(const Term_* atom) override {
    d_calls->push_back(std::string(d_name) + " tell");
    return {false, wanted == nullptr || wanted == atom};
  }

  void retract_atom(const Term_*) override {}

  bool assume(TheoryLit lit) override {
    d_calls->push_back(std::string(d_name) + " assume");
    return lit != refuse;
  }

  bool check(bool approx) override {
    d_calls->push_back(std::string(d_name) + (approx ? " approx" : " full"));
    return !fail_check;
  }

  void get_conflict(std::vector<TheoryLit>& out) override { out = conflict; }

  TheoryLit get_next_implied() override {
    if (implied.empty()) {
      return tlit_Undef;
    }
    TheoryLit l = implied.front();
    implied.pop_front();
    return l;
  }

  bool get_explanation(TheoryLit,
                       bool force,
                       std::vector<TheoryLit>& out) override {
    if (!force) {
      return false;
    }
    out = reason;
    return true;
  }

  bool has_lemmas() override { return !lemmas.empty(); }

  TheoryLemma get_lemma(std::vector<TheoryLit>& clause) override {
    auto [lits, lemma] = lemmas.front();
    lemmas.pop_front();
    clause = lits;
    return lemma;
  }

  void retract_lemma(void* data) override { retracted.push_back(data); }

  const Term_* wanted = nullptr;  // null: every atom
  TheoryLit refuse;
  bool fail_check = false;
  std::vector<TheoryLit> conflict;
  std::deque<TheoryLit> implied;
  std::vector<TheoryLit> reason;
  std::deque<std::pair<std::vector<TheoryLit>, TheoryLemma>> lemmas;
  std::vector<void*> retracted;

 private:
  const char* d_name;
  std::vector<std::string>* d_calls;
};

class TheoryManagerTest : public ::testing::Test {
 protected:
  TheoryManagerTest() : u(tm.get_simple_type("U")) {
    a = tm.make_constant(tm.make_symbol("a", u));
    b = tm.make_constant(tm.make_symbol("b", u));
    c = tm.make_constant(tm.make_symbol("c", u));
    eq_ab = tm.make_equal(a, b);
    eq_bc = tm.make_equal(b, c);
    eq_ac = tm.make_equal(a, c);
  }

  // The manager with EUF replaced by a scripted solver in slot 0, and
  // scripted solvers in slots 1 and 2.
  void build() {
    engine = std::make_unique<DpllSolver>(&config.dpll, &config);
    manager =
        std::make_unique<TheoryManager>(&config, &tm, engine.get(), nullptr);
    engine->set_theory_manager(manager.get());
    ScriptedSolver* s[3];
    const char* names[3] = {"euf", "la", "bv"};
    for (int i = 0; i < 3; ++i) {
      auto p = std::make_unique<ScriptedSolver>(&tm, names[i], &calls);
      s[i] = p.get();
      manager->install_solver(static_cast<Index>(i), std::move(p), true);
    }
    euf = s[0];
    la = s[1];
    bv = s[2];
  }

  Lit lit(const Term_* atom, bool neg = false) {
    DpllSolver::Var v;
    engine->make_proxy(atom, v);
    return mk_lit(v, neg);
  }

  TermManager tm;
  const Type* u;
  const Term_* a;
  const Term_* b;
  const Term_* c;
  const Term_* eq_ab;
  const Term_* eq_bc;
  const Term_* eq_ac;
  Configuration config;
  std::unique_ptr<DpllSolver> engine;
  std::unique_ptr<TheoryManager> manager;
  std::vector<std::string> calls;
  ScriptedSolver* euf = nullptr;
  ScriptedSolver* la = nullptr;
  ScriptedSolver* bv = nullptr;
};

TEST_F(TheoryManagerTest, BooleanStructureReachesNoSolver) {
  build();
  const Term_* p = tm.make_constant(tm.make_symbol("p", tm.get_bool_type()));
  lit(p);
  lit(tm.make_and(p, eq_ab));
  EXPECT_TRUE(calls.empty());
  manager->do_assume(lit(p), false);
  EXPECT_TRUE(calls.empty());
}

TEST_F(TheoryManagerTest, ChecksRunInSolverOrderWithEufLowPriority) {
  build();
  manager->check_approx();
  manager->check_complete();
  EXPECT_EQ(calls,
            (std::vector<std::string>{"euf approx",
                                      "la approx",
                                      "bv approx",
                                      "euf full",
                                      "la full",
                                      "bv full"}));
  config.theory.euf.low_priority = true;
  calls.clear();
  euf->implied.push_back(TheoryLit(eq_ab));
  la->implied.push_back(TheoryLit(eq_bc));
  lit(eq_ab);
  lit(eq_bc);
  calls.clear();
  manager->check_approx();
  EXPECT_EQ(calls,
            (std::vector<std::string>{"la approx", "bv approx", "euf approx"}));
  // EUF's implications are not collected at low priority.
  EXPECT_EQ(manager->get_next_implied(), lit(eq_bc));
  EXPECT_EQ(manager->get_next_implied(), dpll::lit_Undef);
  calls.clear();
  manager->check_complete();
  EXPECT_EQ(calls.front(), "euf full");
}

TEST_F(TheoryManagerTest, FirstConflictStopsTheOthers) {
  build();
  Lit ab = lit(eq_ab);
  Lit not_bc = lit(eq_bc, true);
  calls.clear();
  la->refuse = TheoryLit(eq_ab);
  la->conflict = {TheoryLit(eq_ab), TheoryLit(eq_bc, true)};
  manager->do_assume(ab, false);
  // Every solver wants the atom; the conflict in la keeps bv from it.
  EXPECT_EQ(calls, (std::vector<std::string>{"euf assume", "la assume"}));
  ASSERT_TRUE(manager->conflict());
  EXPECT_FALSE(manager->check_approx());
  std::vector<Lit> lits;
  manager->get_conflict(lits);
  EXPECT_EQ(lits, (std::vector<Lit>{ab, not_bc}));
  EXPECT_EQ(manager->counters(Index::La).conflicts, 1u);
  manager->cancel_until(0);
  EXPECT_FALSE(manager->conflict());
  // An atom wanted by one solver only goes to that one.
  bv->wanted = eq_ac;
  euf->wanted = la->wanted = tm.make_true();
  Lit ac = lit(eq_ac);
  calls.clear();
  manager->do_assume(ac, false);
  EXPECT_EQ(calls, (std::vector<std::string>{"bv assume"}));
}

TEST_F(TheoryManagerTest, ExplanationsAreLazyAndGoToTheImplyingSolver) {
  build();
  Lit ab = lit(eq_ab);
  Lit bc = lit(eq_bc);
  Lit not_ac = lit(eq_ac, true);
  bv->implied = {TheoryLit(eq_ac, true)};
  bv->reason = {TheoryLit(eq_ab), TheoryLit(eq_bc, true)};
  manager->check_approx();
  ASSERT_EQ(manager->get_next_implied(), not_ac);
  EXPECT_EQ(manager->get_next_implied(), dpll::lit_Undef);
  std::vector<Lit> lits;
  EXPECT_FALSE(manager->get_explanation(not_ac, false, lits));
  EXPECT_TRUE(lits.empty());
  EXPECT_TRUE(manager->get_explanation(not_ac, true, lits));
  EXPECT_EQ(lits, (std::vector<Lit>{ab, bc ^ 1}));
  EXPECT_EQ(manager->counters(Index::Bv).implications, 1u);
  EXPECT_EQ(manager->counters(Index::Bv).explanations, 1u);
  EXPECT_EQ(manager->counters(Index::Euf).explanations, 0u);
}

TEST_F(TheoryManagerTest, LemmaFlagsAndIds) {
  build();
  Lit ab = lit(eq_ab);
  int h1 = 1;
  int h2 = 2;
  int h3 = 3;
  TheoryLemma kept{&h1, static_cast<uint32_t>(LemmaFlag::Kept), nullptr};
  TheoryLemma learnt{&h2, LemmaFlag::Kept | LemmaFlag::Learnt, nullptr};
  TheoryLemma plain{&h3, static_cast<uint32_t>(LemmaFlag::LemmaAtoms), nullptr};
  la->lemmas.push_back({{TheoryLit(eq_ab, true), TheoryLit(eq_bc)}, kept});
  bv->lemmas.push_back({{TheoryLit(eq_ac)}, learnt});
  bv->lemmas.push_back({{}, plain});
  std::vector<Lit> lits;
  bool first;
  bool second;
  ASSERT_TRUE(manager->has_lemmas());
  int id1 = manager->get_lemma(lits, first, second);
  // A new atom of a lemma gets a variable and is told on the way.
  EXPECT_EQ(lits, (std::vector<Lit>{ab ^ 1, lit(eq_bc)}));
  EXPECT_TRUE(first);
  EXPECT_TRUE(second);
  lits.clear();
  ASSERT_TRUE(manager->has_lemmas());
  int id2 = manager->get_lemma(lits, first, second);
  EXPECT_TRUE(first);
  EXPECT_FALSE(second);
  lits.clear();
  ASSERT_TRUE(manager->has_lemmas());
  int id3 = manager->get_lemma(lits, first, second);
  EXPECT_TRUE(lits.empty());  // an empty lemma is legal
  EXPECT_FALSE(first);
  EXPECT_FALSE(second);
  EXPECT_FALSE(manager->has_lemmas());
  EXPECT_EQ(std::vector<int>({id1, id2, id3}), std::vector<int>({1, 2, 3}));
  manager->retract_lemma(id2);
  EXPECT_EQ(bv->retracted, std::vector<void*>{&h2});
  EXPECT_TRUE(la->retracted.empty());
  // A retracted id is given again.
  la->lemmas.push_back({{TheoryLit(eq_ab)}, kept});
  ASSERT_TRUE(manager->has_lemmas());
  EXPECT_EQ(manager->get_lemma(lits, first, second), id2);
  manager->retract_lemma(id2);
  EXPECT_EQ(la->retracted, std::vector<void*>{&h1});
}

TEST_F(TheoryManagerTest, DisabledSolversKeepTheirSlots) {
  build();
  manager->install_solver(Index::La, nullptr, false);
  EXPECT_EQ(manager->get_tsolver("la"), nullptr);
  EXPECT_EQ(manager->get_tsolver("bv"), bv);
  bv->implied = {TheoryLit(eq_ab)};
  lit(eq_ab);
  manager->check_approx();
  EXPECT_EQ(manager->get_next_implied(), lit(eq_ab));
  EXPECT_EQ(manager->counters(Index::Bv).implications, 1u);
  EXPECT_EQ(manager->counters(Index::La).total_calls, 0u);
}

}  // namespace
}  // namespace zenlo
