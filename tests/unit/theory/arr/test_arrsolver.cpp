// The arrays engine over a congruence closure of its own, without a
// search: the instances it finds in a set of asserted literals, and, for
// each, that the independent checker refutes the lemma's negation.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "terms/termmanager.h"
#include "theory/arr/arrsolver.h"
#include "theory/arr/arrsolverlod.h"
#include "theory/check/arrfactchecker.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace {

class ArrSolverTest : public ::testing::Test {
 protected:
  ArrSolverTest() : euf(&tm), checker(tm) {
    index = tm.get_integer_type();
    array = tm.get_array_type(index, index);
    a = c("a", array);
    b = c("b", array);
    i = c("i", index);
    j = c("j", index);
    x = c("x", index);
    y = c("y", index);
  }

  const Term_* c(const char* name, const Type* t) {
    return tm.make_constant(tm.make_symbol(name, t));
  }

  // As the engine builds them: the older term first, a number last.
  const Term_* eq(const Term_* p, const Term_* q) {
    if (tm.is_number_term(p)
        || (!tm.is_number_term(q) && q->get_id() < p->get_id())) {
      std::swap(p, q);
    }
    SimplificationScope raw(tm, false);
    return tm.make_equal(p, q);
  }

  const Term_* read(const Term_* arr, const Term_* at) {
    return arr::make_read(tm, arr, at);
  }

  const Term_* write(const Term_* arr, const Term_* at, const Term_* v) {
    SimplificationScope raw(tm, false);
    return tm.make_array_write(arr, at, v);
  }

  // Tells both engines the atom and asserts the literal to EUF.
  void assert_lit(arr::Solver& s, const Term_* atom, bool value = true) {
    euf.tell_atom(atom);
    s.tell_atom(atom);
    ASSERT_TRUE(euf.push_constraint(TheoryLit(atom, !value)));
  }

  // Takes every pending lemma; each must be valid in the theory.
  std::vector<arr::Lemma> take_all(arr::Solver& s) {
    std::vector<arr::Lemma> out;
    while (s.has_lemmas()) {
      out.push_back(s.take_lemma());
      std::vector<TheoryLit> negated;
      for (TheoryLit l : out.back().clause) {
        negated.push_back(~l);
      }
      TheoryFact fact{TheoryFactKind::Lemma, negated, nullptr};
      EXPECT_EQ(checker.check(fact), "");
    }
    return out;
  }

  static bool has(const arr::Lemma& l, const Term_* atom, bool negated) {
    for (TheoryLit p : l.clause) {
      if (p.atom() == atom && p.negated() == negated) {
        return true;
      }
    }
    return false;
  }

  TermManager tm;
  Configuration::Theory::Arr config;
  euf::Solver euf;
  ArrFactChecker checker;
  const Type* index;
  const Type* array;
  const Term_* a;
  const Term_* b;
  const Term_* i;
  const Term_* j;
  const Term_* x;
  const Term_* y;
};

TEST_F(ArrSolverTest, WriteGetsItsCellAsSoonAsTold) {
  arr::Solver s(&tm, &euf, &config, 0);
  const Term_* w = write(a, i, x);
  assert_lit(s, eq(b, w));
  std::vector<arr::Lemma> lemmas = take_all(s);
  ASSERT_EQ(lemmas.size(), 1u);
  EXPECT_EQ(lemmas[0].kind, arr::LemmaKind::Write);
  EXPECT_TRUE(has(lemmas[0], eq(read(w, i), x), false));
  // Not again while the search holds it; again once it dropped it.
  s.set_ready(true);
  s.check(false);
  EXPECT_FALSE(s.has_lemmas());
  s.retract_lemma(lemmas[0].key, lemmas[0].kind);
  s.check(false);
  EXPECT_TRUE(s.has_lemmas());
}

// b = store(a, i, v), x = a[j], y = b[j], x != y: unless i = j the reads
// agree, so the walk from b[j] across the write reaches a[j].
TEST_F(ArrSolverTest, ReadOverWriteThroughTheWalk) {
  arr::Solver s(&tm, &euf, &config, 0);
  const Term_* w = write(a, i, c("v", index));
  assert_lit(s, eq(b, w));
  assert_lit(s, eq(x, read(a, j)));
  assert_lit(s, eq(y, read(b, j)));
  assert_lit(s, eq(x, y), false);
  take_all(s);  // the write's cell
  s.check(false);
  EXPECT_FALSE(s.has_lemmas()) << "no lemma before EUF holds a model";
  s.set_ready(true);
  s.check(false);
  // From either read, the walk meets the other one.
  std::vector<arr::Lemma> lemmas = take_all(s);
  ASSERT_FALSE(lemmas.empty());
  for (const arr::Lemma& l : lemmas) {
    EXPECT_EQ(l.kind, arr::LemmaKind::Row);
    EXPECT_TRUE(has(l, eq(i, j), false));
    EXPECT_TRUE(has(l, eq(b, w), true));
  }
}

TEST_F(ArrSolverTest, FrugalModeInstantiatesPerWriteAndReadIndex) {
  arr::Solver s(&tm, &euf, &config, 2);
  const Term_* w = write(a, i, c("v", index));
  assert_lit(s, eq(b, w));
  assert_lit(s, eq(x, read(a, j)));
  take_all(s);
  s.set_ready(true);
  s.check(false);
  std::vector<arr::Lemma> lemmas = take_all(s);
  ASSERT_EQ(lemmas.size(), 1u);
  EXPECT_TRUE(has(lemmas[0], eq(i, j), false));
  EXPECT_TRUE(has(lemmas[0], eq(read(a, j), read(w, j)), false));
  // The instance is recorded: the next check has nothing new.
  s.check(false);
  EXPECT_FALSE(s.has_lemmas());
}

// Arrays that no write connects can always differ; a model must show it.
TEST_F(ArrSolverTest, DisequalArraysGetAWitness) {
  arr::Solver s(&tm, &euf, &config, 0);
  assert_lit(s, eq(x, read(a, i)));
  assert_lit(s, eq(a, b), false);
  s.set_ready(true);
  s.check(false);
  EXPECT_FALSE(s.has_lemmas());
  s.set_model_generation(true);
  s.check(false);
  std::vector<arr::Lemma> lemmas = take_all(s);
  ASSERT_EQ(lemmas.size(), 1u);
  EXPECT_EQ(lemmas[0].kind, arr::LemmaKind::Ext);
  ASSERT_EQ(lemmas[0].clause.size(), 2u);
  // Once per pair.
  s.check(false);
  EXPECT_FALSE(s.has_lemmas());
}

TEST_F(ArrSolverTest, ReadsThatDifferAreWitnessEnough) {
  arr::Solver s(&tm, &euf, &config, 0);
  s.set_model_generation(true);
  assert_lit(s, eq(read(a, i), x));
  assert_lit(s, eq(read(b, i), y));
  assert_lit(s, eq(x, y), false);
  assert_lit(s, eq(a, b), false);
  s.set_ready(true);
  s.check(false);
  EXPECT_FALSE(s.has_lemmas());
  config.enable_witness = false;
  s.check(false);
  EXPECT_TRUE(s.has_lemmas());
}

TEST_F(ArrSolverTest, ConstantArraysThatWritesConnectAgree) {
  arr::Solver s(&tm, &euf, &config, 0);
  const Term_* k1 = tm.make_array_const(array, tm.make_number(1L));
  const Term_* k2 = tm.make_array_const(array, tm.make_number(2L));
  assert_lit(s, eq(k2, write(k1, i, x)));
  take_all(s);
  s.set_ready(true);
  s.check(false);
  bool found = false;
  for (const arr::Lemma& l : take_all(s)) {
    found |= l.kind == arr::LemmaKind::Const;
  }
  EXPECT_TRUE(found);
}

// Over a 1-bit index two writes may cover every cell: no lemma.
TEST_F(ArrSolverTest, WritesCoveringAFiniteIndexSeparateConstants) {
  const Type* bit = tm.get_bv_type(1);
  const Type* bits = tm.get_array_type(bit, index);
  arr::Solver s(&tm, &euf, &config, 0);
  const Term_* k1 = tm.make_array_const(bits, tm.make_number(1L));
  const Term_* k2 = tm.make_array_const(bits, tm.make_number(2L));
  const Term_* zero = tm.make_bv_number(QNumber(0L), 1);
  const Term_* one = tm.make_bv_number(QNumber(1L), 1);
  const Term_* two = tm.make_number(2L);
  assert_lit(s, eq(k2, write(write(k1, zero, two), one, two)));
  take_all(s);
  s.set_ready(true);
  s.check(false);
  for (const arr::Lemma& l : take_all(s)) {
    EXPECT_NE(l.kind, arr::LemmaKind::Const);
  }
}

TEST_F(ArrSolverTest, RetractedAtomsTakeTheirTermsAlong) {
  arr::Solver s(&tm, &euf, &config, 0);
  const Term_* keep = eq(x, read(a, i));
  const Term_* gone = eq(b, write(a, j, y));
  s.tell_atom(keep);
  s.tell_atom(gone);
  EXPECT_EQ(s.arrays().size(), 3u);
  s.retract_atom(gone);
  EXPECT_FALSE(s.has_lemmas()) << "the write's pending lemma goes with it";
  EXPECT_EQ(s.arrays().size(), 1u);
  s.retract_atom(keep);
  EXPECT_TRUE(s.arrays().empty());
}

// Over Bool an instance's x = y would be an iff the search cannot read: it
// comes as two clauses over x and y, each valid on its own.
TEST_F(ArrSolverTest, BoolElementsSplitEachEqualityIntoTwoClauses) {
  tm.set_forbid_bool_args(false);
  const Type* bools = tm.get_array_type(index, tm.get_bool_type());
  const Term_* p = c("p", tm.get_bool_type());
  const Term_* a2 = c("a2", bools);
  const Term_* b2 = c("b2", bools);
  arr::Solver s(&tm, &euf, &config, 0);
  s.set_model_generation(true);
  const Term_* w = write(a2, i, p);
  assert_lit(s, eq(b2, w));
  std::vector<arr::Lemma> cell = take_all(s);
  ASSERT_EQ(cell.size(), 2u);
  for (const arr::Lemma& l : cell) {
    EXPECT_EQ(l.kind, arr::LemmaKind::Write);
    EXPECT_TRUE(has(l, p, false) || has(l, p, true));
    EXPECT_TRUE(has(l, read(w, i), false) || has(l, read(w, i), true));
  }
  const Term_* c2 = c("c2", bools);
  assert_lit(s, eq(a2, c2), false);
  s.set_ready(true);
  s.check(false);
  std::vector<arr::Lemma> ext;
  for (arr::Lemma& l : take_all(s)) {
    if (l.kind == arr::LemmaKind::Ext) {
      ext.push_back(l);
    }
  }
  ASSERT_EQ(ext.size(), 2u);
  EXPECT_EQ(ext[0].clause.size(), 3u);
  EXPECT_EQ(ext[1].clause.size(), 3u);
}

// ---------------------------------------------------------------------------
// Lemmas on demand
// ---------------------------------------------------------------------------

// The read a[j] spreads down from b = store(a, i, v) only where i != j:
// the refinement holds the index disjunct and the write's equality.
TEST_F(ArrSolverTest, OnDemandRefinesReadsThatMeetWithOtherValues) {
  arr::ArraySolverLOD s(&tm, &euf, &config);
  const Term_* w = write(a, i, c("v", index));
  assert_lit(s, eq(b, w));
  assert_lit(s, eq(x, read(a, j)));
  assert_lit(s, eq(y, read(b, j)));
  assert_lit(s, eq(x, y), false);
  take_all(s);
  s.set_ready(true);
  s.check(false);
  std::vector<arr::Lemma> lemmas = take_all(s);
  ASSERT_EQ(lemmas.size(), 1u) << "one refinement per conflict";
  EXPECT_EQ(lemmas[0].kind, arr::LemmaKind::Row);
  EXPECT_TRUE(has(lemmas[0], eq(i, j), false));
  EXPECT_TRUE(has(lemmas[0], eq(b, w), true));
}

// A told equality of arrays gets its instance only once the model has the
// arrays apart, over the equality's own witness, and only once. (No write
// connects a and b: only a model to print needs the instance.)
TEST_F(ArrSolverTest, OnDemandExtensionalityWaitsForAModelThatNeedsIt) {
  arr::ArraySolverLOD s(&tm, &euf, &config);
  s.set_model_generation(true);
  const Term_* ab = eq(a, b);
  assert_lit(s, eq(x, read(a, i)));
  euf.push_checkpoint();
  assert_lit(s, ab);
  s.set_ready(true);
  s.check(false);
  EXPECT_FALSE(s.has_lemmas());
  euf.backtrack(1);
  s.set_ready(false);
  ASSERT_TRUE(euf.push_constraint(TheoryLit(ab, true)));
  s.set_ready(true);
  s.check(false);
  std::vector<arr::Lemma> lemmas = take_all(s);
  ASSERT_EQ(lemmas.size(), 1u);
  EXPECT_EQ(lemmas[0].kind, arr::LemmaKind::Ext);
  const Term_* k =
      c((".array_witness" + std::to_string(ab->get_id())).c_str(), index);
  EXPECT_TRUE(has(lemmas[0], ab, false));
  EXPECT_TRUE(has(lemmas[0], eq(read(a, k), read(b, k)), true));
  // Again only while the search has not made the witness reads differ.
  s.check(false);
  EXPECT_TRUE(s.has_lemmas());
  take_all(s);
  assert_lit(s, eq(read(a, k), read(b, k)), false);
  s.check(false);
  EXPECT_FALSE(s.has_lemmas());
}

// ---------------------------------------------------------------------------
// The checker alone
// ---------------------------------------------------------------------------

TEST_F(ArrSolverTest, CheckerRefutesOnlyWhatTheAxiomsRefute) {
  const Term_* w = write(a, i, x);
  std::vector<TheoryLit> cell{TheoryLit(eq(read(w, i), x), true)};
  EXPECT_EQ(checker.check({TheoryFactKind::Lemma, cell, nullptr}), "");
  // a[j] = store(a, i, x)[j] needs i != j.
  std::vector<TheoryLit> row{TheoryLit(eq(read(a, j), read(w, j)), true)};
  EXPECT_NE(checker.check({TheoryFactKind::Lemma, row, nullptr}), "");
  row.push_back(TheoryLit(eq(i, j), true));
  EXPECT_EQ(checker.check({TheoryFactKind::Lemma, row, nullptr}), "");
}

TEST_F(ArrSolverTest, CheckerTakesAWitnessOnlyUnderItsName) {
  const Term_* ab = eq(a, b);
  const Term_* k = c((".idx" + std::to_string(ab->get_id())).c_str(), index);
  const Term_* other = c(".idx0", index);
  std::vector<TheoryLit> good{TheoryLit(ab, true),
                              TheoryLit(eq(read(a, k), read(b, k)))};
  EXPECT_EQ(checker.check({TheoryFactKind::Lemma, good, nullptr}), "");
  std::vector<TheoryLit> bad{TheoryLit(ab, true),
                             TheoryLit(eq(read(a, other), read(b, other)))};
  EXPECT_NE(checker.check({TheoryFactKind::Lemma, bad, nullptr}), "");
}

}  // namespace
}  // namespace zenlo
