// The bit-blaster's circuits against BVNumber arithmetic: every operator,
// every pair of operand values at widths 1 to 6, with the second operand
// once a variable word and once a number (which takes the constant
// shortcuts). A circuit is evaluated by unit propagation over the clauses
// the sink received, from the input bits fixed by unit literals; no search
// is needed, since every gate's clauses determine its output.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "terms/numbers.h"
#include "terms/termmanager.h"
#include "theory/bv/wordclausifier.h"

namespace zenlo {
namespace {

using bv::BvLit;

// Keeps the clauses; variables are numbered from 2.
class RecordingSink : public bv::ClauseSink {
 public:
  BvLit new_atom() override { return next++; }

  bool get_proxy(const Term_*, BvLit*) override { return false; }

  void add_clause() override {
    clauses.push_back(d_clause);
    d_clause.clear();
  }

  BvLit next = 2;
  std::vector<bv::BvLitList> clauses;
};

// Unit propagation to a fixpoint; values indexed by variable, 0 unknown.
class Propagator {
 public:
  explicit Propagator(const RecordingSink& sink)
      : d_sink(sink), d_value(sink.next + 1, 0) {}

  void fix(BvLit l) {
    if (!bv::is_const(l)) {
      d_value[std::abs(l)] = l > 0 ? 1 : -1;
    }
  }

  // Returns: false on a falsified clause.
  bool propagate() {
    bool changed = true;
    while (changed) {
      changed = false;
      for (const bv::BvLitList& c : d_sink.clauses) {
        int open = 0;
        BvLit last = 0;
        bool sat = false;
        for (BvLit l : c) {
          int v = value(l);
          if (v > 0) {
            sat = true;
            break;
          }
          if (v == 0) {
            ++open;
            last = l;
          }
        }
        if (sat) {
          continue;
        }
        if (open == 0) {
          return false;
        }
        if (open == 1) {
          fix(last);
          changed = true;
        }
      }
    }
    return true;
  }

  // 1 true, -1 false, 0 unknown.
  int value(BvLit l) const {
    if (l == bv::l_true) {
      return 1;
    }
    if (l == bv::l_false) {
      return -1;
    }
    int v = d_value[std::abs(l)];
    return l > 0 ? v : -v;
  }

 private:
  const RecordingSink& d_sink;
  std::vector<int> d_value;
};

QNumber mask(size_t w) {
  return BVNumber::pow2(w) - QNumber(1);
}

QNumber udiv(const QNumber& a, const QNumber& b, size_t w) {
  if (b == 0) {
    return mask(w);
  }
  QNumber q, r;
  a.divmod(b, q, r);
  return q;
}

QNumber urem(const QNumber& a, const QNumber& b) {
  if (b == 0) {
    return a;
  }
  QNumber q, r;
  a.divmod(b, q, r);
  return r;
}

bool msb(const QNumber& a, size_t w) {
  return BVNumber::test_bit(a, w - 1);
}

QNumber neg(const QNumber& a, size_t w) {
  return BVNumber::trim(BVNumber::neg(w, a), w);
}

// SMT-LIB's definitions of bvsdiv and bvsrem, over the unsigned ones.
QNumber sdiv(const QNumber& a, const QNumber& b, size_t w) {
  bool sa = msb(a, w);
  bool sb = msb(b, w);
  QNumber q = udiv(sa ? neg(a, w) : a, sb ? neg(b, w) : b, w);
  return sa != sb ? neg(q, w) : q;
}

QNumber srem(const QNumber& a, const QNumber& b, size_t w) {
  bool sa = msb(a, w);
  QNumber r = urem(sa ? neg(a, w) : a, msb(b, w) ? neg(b, w) : b);
  return sa ? neg(r, w) : r;
}

QNumber ashr(const QNumber& a, const QNumber& s, size_t w) {
  QNumber r;
  BVNumber::lshr(w, a, s, r);
  if (msb(a, w)) {
    // The vacated top bits are copies of the sign.
    size_t k = s < QNumber(static_cast<long>(w)) ? s.to_long() : w;
    for (size_t i = w - k; i < w; ++i) {
      BVNumber::set_bit(r, i, true);
    }
  }
  return r;
}

QNumber from_bool(bool b) {
  return QNumber(b ? 1 : 0);
}

struct BinaryOp {
  const char* name;
  std::function<const Term_*(TermManager&, const Term_*, const Term_*)> make;
  std::function<QNumber(const QNumber&, const QNumber&, size_t)> eval;
};

std::vector<BinaryOp> binary_ops() {
  using T = const Term_*;
  using Q = const QNumber&;
  return {
      {"bvadd",
       [](TermManager& m, T a, T b) { return m.make_bv_add(a, b); },
       [](Q a, Q b, size_t w) { return BVNumber::trim(a + b, w); }},
      {"bvsub",
       [](TermManager& m, T a, T b) { return m.make_bv_sub(a, b); },
       [](Q a, Q b, size_t w) { return BVNumber::trim(a + neg(b, w), w); }},
      {"bvmul",
       [](TermManager& m, T a, T b) { return m.make_bv_mul(a, b); },
       [](Q a, Q b, size_t w) { return BVNumber::trim(a * b, w); }},
      {"bvudiv",
       [](TermManager& m, T a, T b) { return m.make_bv_udiv(a, b); },
       [](Q a, Q b, size_t w) { return udiv(a, b, w); }},
      {"bvurem",
       [](TermManager& m, T a, T b) { return m.make_bv_urem(a, b); },
       [](Q a, Q b, size_t) { return urem(a, b); }},
      {"bvsdiv",
       [](TermManager& m, T a, T b) { return m.make_bv_sdiv(a, b); },
       [](Q a, Q b, size_t w) { return sdiv(a, b, w); }},
      {"bvsrem",
       [](TermManager& m, T a, T b) { return m.make_bv_srem(a, b); },
       [](Q a, Q b, size_t w) { return srem(a, b, w); }},
      {"bvand",
       [](TermManager& m, T a, T b) { return m.make_bv_and(a, b); },
       [](Q a, Q b, size_t) {
         QNumber r;
         BVNumber::bit_and_l(a, b, r);
         return r;
       }},
      {"bvor",
       [](TermManager& m, T a, T b) { return m.make_bv_or(a, b); },
       [](Q a, Q b, size_t) {
         QNumber r;
         BVNumber::bit_or_l(a, b, r);
         return r;
       }},
      {"bvxor",
       [](TermManager& m, T a, T b) { return m.make_bv_xor(a, b); },
       [](Q a, Q b, size_t) {
         QNumber r;
         BVNumber::bit_xor_l(a, b, r);
         return r;
       }},
      {"bvshl",
       [](TermManager& m, T a, T b) { return m.make_bv_lshl(a, b); },
       [](Q a, Q b, size_t w) {
         QNumber r;
         BVNumber::lshl(w, a, b, r);
         return r;
       }},
      {"bvlshr",
       [](TermManager& m, T a, T b) { return m.make_bv_lshr(a, b); },
       [](Q a, Q b, size_t w) {
         QNumber r;
         BVNumber::lshr(w, a, b, r);
         return r;
       }},
      {"bvashr",
       [](TermManager& m, T a, T b) { return m.make_bv_ashr(a, b); },
       [](Q a, Q b, size_t w) { return ashr(a, b, w); }},
      {"bvcomp",
       [](TermManager& m, T a, T b) { return m.make_bv_comp(a, b); },
       [](Q a, Q b, size_t) { return from_bool(a == b); }},
      {"concat",
       [](TermManager& m, T a, T b) { return m.make_bv_concat(a, b); },
       [](Q a, Q b, size_t w) { return a * BVNumber::pow2(w) + b; }},
      // Predicates: a one-bit word.
      {"bvult",
       [](TermManager& m, T a, T b) { return m.make_bv_ult(a, b); },
       [](Q a, Q b, size_t) { return from_bool(a < b); }},
      {"bvule",
       [](TermManager& m, T a, T b) { return m.make_bv_ule(a, b); },
       [](Q a, Q b, size_t) { return from_bool(a <= b); }},
      {"bvslt",
       [](TermManager& m, T a, T b) { return m.make_bv_slt(a, b); },
       [](Q a, Q b, size_t w) {
         return from_bool(BVNumber::to_signed(a, w)
                          < BVNumber::to_signed(b, w));
       }},
      {"bvsle",
       [](TermManager& m, T a, T b) { return m.make_bv_sle(a, b); },
       [](Q a, Q b, size_t w) {
         return from_bool(BVNumber::to_signed(a, w)
                          <= BVNumber::to_signed(b, w));
       }},
      {"=",
       [](TermManager& m, T a, T b) { return m.make_equal(a, b); },
       [](Q a, Q b, size_t) { return from_bool(a == b); }},
  };
}

class WordClausifierTest : public ::testing::Test {
 protected:
  const Term_* var(const std::string& name, size_t w) {
    return tm.make_constant(tm.make_symbol(name, tm.get_bv_type(w)));
  }

  // Blasts `t`, fixes the words of the inputs to the values, propagates.
  // Returns: the value of t's word, or -1 when a bit stays open.
  QNumber evaluate(bv::WordClausifier& c,
                   RecordingSink& sink,
                   const Term_* t,
                   const std::vector<std::pair<const Term_*, QNumber>>& in) {
    const bv::BvLitList& word = c.blast_word(t, sink);
    Propagator p(sink);
    for (auto& [term, value] : in) {
      bv::BvLitList bits;
      EXPECT_TRUE(c.get_bits(term, bits));
      for (size_t i = 0; i < bits.size(); ++i) {
        p.fix(BVNumber::test_bit(value, i) ? bits[i] : -bits[i]);
      }
    }
    EXPECT_TRUE(p.propagate());
    QNumber r(0);
    for (size_t i = 0; i < word.size(); ++i) {
      int v = p.value(word[i]);
      if (v == 0) {
        return QNumber(-1);
      }
      BVNumber::set_bit(r, i, v > 0);
    }
    return r;
  }

  TermManager tm;
};

TEST_F(WordClausifierTest, BinaryOperatorsMatchBVNumberAtWidthsOneToSix) {
  for (const BinaryOp& op : binary_ops()) {
    for (size_t w = 1; w <= 6; ++w) {
      const Term_* x = var("x" + std::to_string(w), w);
      const Term_* y = var("y" + std::to_string(w), w);
      bv::WordClausifier c(&tm, nullptr);
      RecordingSink sink;
      const Term_* t = op.make(tm, x, y);
      QNumber top = BVNumber::pow2(w);
      for (QNumber a(0); a < top; a += 1) {
        for (QNumber b(0); b < top; b += 1) {
          QNumber want = op.eval(a, b, w);
          // Both operands variable: one circuit, many inputs.
          ASSERT_EQ(evaluate(c, sink, t, {{x, a}, {y, b}}), want)
              << op.name << " width " << w << " a=" << a << " b=" << b;
          // Second operand a number: the constant shortcuts.
          bv::WordClausifier cc(&tm, nullptr);
          RecordingSink csink;
          const Term_* tc = op.make(tm, x, tm.make_bv_number(b, w));
          ASSERT_EQ(evaluate(cc, csink, tc, {{x, a}}), want)
              << op.name << " width " << w << " a=" << a << " b=#" << b;
        }
      }
    }
  }
}

TEST_F(WordClausifierTest, UnaryAndIndexedOperatorsMatchBVNumber) {
  for (size_t w = 1; w <= 6; ++w) {
    const Term_* x = var("u" + std::to_string(w), w);
    QNumber top = BVNumber::pow2(w);
    std::vector<std::pair<const Term_*, std::function<QNumber(QNumber)>>> ops;
    ops.push_back({tm.make_bv_not(x), [&](QNumber a) { return mask(w) - a; }});
    ops.push_back({tm.make_bv_neg(x), [&](QNumber a) { return neg(a, w); }});
    ops.push_back({tm.make_bv_zext(3, x), [&](QNumber a) { return a; }});
    ops.push_back({tm.make_bv_sext(2, x), [&](QNumber a) {
                     return msb(a, w)
                                ? a + BVNumber::pow2(w + 2) - BVNumber::pow2(w)
                                : a;
                   }});
    for (size_t k = 0; k <= w + 1; ++k) {
      ops.push_back({tm.make_bv_rol(k, x), [&, k](QNumber a) {
                       size_t s = k % w;
                       QNumber hi, lo;
                       BVNumber::lshl(w, a, QNumber(static_cast<long>(s)), hi);
                       BVNumber::bit_right_shift(a, w - s, lo);
                       return hi + lo;
                     }});
      ops.push_back({tm.make_bv_ror(k, x), [&, k](QNumber a) {
                       size_t s = (w - k % w) % w;
                       QNumber hi, lo;
                       BVNumber::lshl(w, a, QNumber(static_cast<long>(s)), hi);
                       BVNumber::bit_right_shift(a, w - s, lo);
                       return hi + lo;
                     }});
    }
    for (size_t lo = 0; lo < w; ++lo) {
      for (size_t hi = lo; hi < w; ++hi) {
        ops.push_back({tm.make_bv_extract(hi, lo, x), [=](QNumber a) {
                         QNumber r;
                         BVNumber::bit_right_shift(a, lo, r);
                         return BVNumber::trim(r, hi - lo + 1);
                       }});
      }
    }
    for (auto& [t, eval] : ops) {
      bv::WordClausifier c(&tm, nullptr);
      RecordingSink sink;
      for (QNumber a(0); a < top; a += 1) {
        ASSERT_EQ(evaluate(c, sink, t, {{x, a}}), eval(a))
            << t->to_str() << " a=" << a;
      }
    }
  }
}

// Shifts by a constant and rewiring build no gate.
TEST_F(WordClausifierTest, ConstantShiftsAndRewiringBuildNoGate) {
  const Term_* x = var("x", 8);
  bv::WordClausifier c(&tm, nullptr);
  RecordingSink sink;
  for (long k : {0L, 3L, 8L, 200L}) {
    QNumber amount(k);
    c.blast_word(tm.make_bv_lshl(x, tm.make_bv_number(amount, 8)), sink);
    c.blast_word(tm.make_bv_lshr(x, tm.make_bv_number(amount, 8)), sink);
    c.blast_word(tm.make_bv_ashr(x, tm.make_bv_number(amount, 8)), sink);
  }
  c.blast_word(tm.make_bv_rol(3, tm.make_bv_extract(6, 1, x)), sink);
  c.blast_word(tm.make_bv_mul(x, tm.make_bv_number(QNumber(1), 8)), sink);
  c.blast_word(tm.make_bv_mul(x, tm.make_bv_number(QNumber(0), 8)), sink);
  EXPECT_EQ(c.stats().gates, 0u);
  EXPECT_TRUE(sink.clauses.empty());
  // By the width or more: all fill.
  const bv::BvLitList& shl =
      c.blast_word(tm.make_bv_lshl(x, tm.make_bv_number(QNumber(8), 8)), sink);
  EXPECT_EQ(shl, bv::BvLitList(8, bv::l_false));
  bv::BvLitList xb;
  c.get_bits(x, xb);
  const bv::BvLitList& ashr = c.blast_word(
      tm.make_bv_ashr(x, tm.make_bv_number(QNumber(200), 8)), sink);
  EXPECT_EQ(ashr, bv::BvLitList(8, xb[7]));
}

// An amount with bits set above position 32 selects the fill, never a
// stride that wrapped around.
TEST_F(WordClausifierTest, WideVariableShiftUsesHighAmountBits) {
  const Term_* x = var("x", 40);
  const Term_* s = var("s", 40);
  bv::WordClausifier c(&tm, nullptr);
  RecordingSink sink;
  const Term_* t = tm.make_bv_lshr(x, s);
  QNumber xv = BVNumber::pow2(39) + QNumber(5);
  for (QNumber sv : {QNumber(1),
                     BVNumber::pow2(33),
                     BVNumber::pow2(32) + 1,
                     QNumber(39),
                     QNumber(40)}) {
    QNumber want;
    BVNumber::lshr(40, xv, sv, want);
    EXPECT_EQ(evaluate(c, sink, t, {{x, xv}, {s, sv}}), want) << sv;
  }
}

TEST_F(WordClausifierTest, ComplementaryBitsDecideTheoryEqualityFalse) {
  const Term_* x = var("x", 4);
  bv::WordClausifier c(&tm, nullptr);
  RecordingSink sink;
  size_t before = sink.clauses.size();
  EXPECT_FALSE(
      c.bit_blast_theory_eq(sink.new_atom(), x, tm.make_bv_not(x), sink));
  c.blast_word(x, sink);
  EXPECT_EQ(sink.clauses.size(), before);
}

TEST_F(WordClausifierTest, DivisionByZeroModeOneLeavesResultFree) {
  Configuration::Theory::Bv config;
  config.div_by_zero_mode = 1;
  const Term_* x = var("x", 3);
  const Term_* y = var("y", 3);
  bv::WordClausifier c(&tm, &config);
  RecordingSink sink;
  const Term_* t = tm.make_bv_udiv(x, y);
  EXPECT_EQ(evaluate(c, sink, t, {{x, QNumber(5)}, {y, QNumber(0)}}),
            QNumber(-1));
  EXPECT_EQ(evaluate(c, sink, t, {{x, QNumber(5)}, {y, QNumber(2)}}),
            QNumber(2));
}

TEST_F(WordClausifierTest, RetractForgetsWordsInCachingOrder) {
  const Term_* x = var("x", 4);
  const Term_* y = var("y", 4);
  bv::WordClausifier c(&tm, nullptr);
  RecordingSink sink;
  c.blast_word(x, sink);
  c.push_backtrack_point();
  const Term_* sum = tm.make_bv_add(x, y);
  c.blast_word(sum, sink);
  EXPECT_TRUE(c.is_cached(y));
  c.pop_backtrack_point();
  EXPECT_TRUE(c.is_cached(x));
  EXPECT_FALSE(c.is_cached(y));
  EXPECT_FALSE(c.is_cached(sum));
}

TEST_F(WordClausifierTest, ApplicationIsALeafOnlyWhenAllowed) {
  const Type* bv4 = tm.get_bv_type(4);
  const Symbol* f = tm.make_symbol("f", tm.get_function_type({bv4}, bv4));
  const Term_* x = var("x", 4);
  bv::WordClausifier c(&tm, nullptr);
  RecordingSink sink;
  const Term_* fx = tm.make_term(f, {x});
  const Term_* t = tm.make_bv_ult(fx, x);
  EXPECT_THROW(c.bit_blast(t, sink), bv::WordClausifierInterface::error);
  c.set_applications_as_leaves(true);
  c.bit_blast(t, sink);
  bv::BvLitList fx_bits;
  bv::BvLitList x_bits;
  ASSERT_TRUE(c.get_bits(fx, fx_bits));
  ASSERT_TRUE(c.get_bits(x, x_bits));
  // Fresh bits, unrelated to the argument's.
  ASSERT_EQ(fx_bits.size(), 4u);
  for (BvLit b : fx_bits) {
    EXPECT_FALSE(bv::is_const(b));
    for (BvLit a : x_bits) {
      EXPECT_NE(std::abs(a), std::abs(b));
    }
  }
}

// An atom of another theory leaves a mark: the words blasted after it
// (its shared terms) go when it is retracted, and the mark has no bits.
TEST_F(WordClausifierTest, MarkTakesBackTheWordsAfterIt) {
  const Term_* x = var("x", 4);
  const Term_* y = var("y", 4);
  const Term_* p = tm.make_constant(tm.make_symbol("p", tm.get_bool_type()));
  bv::WordClausifier c(&tm, nullptr);
  RecordingSink sink;
  c.blast_word(x, sink);
  c.mark(p);
  EXPECT_TRUE(c.is_cached(p));
  bv::BvLitList bits;
  EXPECT_FALSE(c.get_bits(p, bits));
  c.notify_interface_term(y, sink);
  c.retract_upto(p);
  EXPECT_FALSE(c.is_cached(p));
  EXPECT_FALSE(c.is_cached(y));
  EXPECT_TRUE(c.is_cached(x));
  // The mark's word never serves as a real one.
  c.mark(p);
  EXPECT_EQ(c.blast_word(tm.make_bv_add(x, y), sink).size(), 4u);
  EXPECT_FALSE(c.get_bits(p, bits));
}

}  // namespace
}  // namespace zenlo
