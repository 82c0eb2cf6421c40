// bv::WordClausifier: the bit-blaster that writes clauses directly as it
// builds each circuit. Every bit-vector operator of the term store has a
// circuit here (a ripple-carry adder, shift-and-add multiplication, a
// restoring divider, barrel shifters, comparators from bit 0 upward), and
// every gate first tries its constant shortcuts, so that circuits over
// constants (multiplication by a number, shifts by a number) cost few or
// no clauses.
//
// Words live in vectors drawn from a pool and returned to it when their
// term is retracted; temporaries of a circuit go back at once. Nothing is
// allocated per gate: a gate is a new_atom and a few pushes to the sink.
//
// The traversal is iterative and enters only the arguments of operators it
// has a circuit for; any other term is a leaf: numbers become constant
// words, Boolean and bit-vector constants fresh variables. A leaf that is
// an application (an uninterpreted function, an array read, a conversion
// from integers) raises error: giving it free bits would forget that equal
// arguments give equal values.
#ifndef ZENLO_THEORY_BV_WORDCLAUSIFIER_H
#define ZENLO_THEORY_BV_WORDCLAUSIFIER_H

#include <cstdint>
#include <memory>
#include <vector>

#include "base/configuration.h"
#include "terms/numbers.h"
#include "terms/symboltag.h"
#include "theory/bv/wordclausifierinterface.h"

namespace zenlo {

class TermManager;

namespace bv {

class WordClausifier : public WordClausifierInterface {
 public:
  struct Stats {
    uint64_t gates = 0;
    uint64_t words = 0;
  };

  // Requires: `tm` outlives the clausifier; `config` may be null (then
  //   division by zero has the hardware result).
  WordClausifier(TermManager* tm, const Configuration::Theory::Bv* config);
  ~WordClausifier() override;
  WordClausifier(const WordClausifier&) = delete;
  WordClausifier& operator=(const WordClausifier&) = delete;

  void set_logger(Logger* logger) override { d_logger = logger; }

  void set_termination_test(TerminationTest* test) override {
    d_termination = test;
  }

  bool is_cached(const Term_* term) const override {
    return word_of(term) != nullptr;
  }

  bool get_bits(const Term_* term, BvLitList& bits) const override;
  BvLit bit_blast(const Term_* term, ClauseSink& sink) override;
  void set_bits(const Term_* term,
                ClauseSink& sink,
                const BvLitList& bits) override;
  void make_bits(const Term_* term, BvLitList& bits, ClauseSink& sink) override;
  void retract_upto(const Term_* term) override;
  bool bit_blast_theory_eq(BvLit lit,
                           const Term_* lhs,
                           const Term_* rhs,
                           ClauseSink& sink) override;
  void notify_interface_term(const Term_* term, ClauseSink& sink) override;
  bool is_terminal(const Term_* term) const override;
  void push_backtrack_point() override;
  void pop_backtrack_point() override;

  // Requires: `term` is a bit-vector or Boolean term.
  // Returns: its word, blasted first if needed; valid until the term is
  //   retracted.
  const BvLitList& blast_word(const Term_* term, ClauseSink& sink);

  // Puts `term`, which has no word, on the cache order as a mark that
  // is_cached reports and retract_upto(term) goes back to: the words of
  // the terms shared with other theories that the atom `term` brings go
  // with it. Requires: term has no word.
  void mark(const Term_* term);

  // Applications of uninterpreted functions become leaves of fresh bits
  // (only where congruence over them is enforced by someone else); off,
  // they are refused.
  void set_applications_as_leaves(bool on) { d_apps_as_leaves = on; }

  // A circuit estimated above this many gates is refused (error) rather
  // than built: a wide multiplication must not exhaust memory.
  void set_gate_budget(uint64_t gates) { d_gate_budget = gates; }

  const Stats& stats() const { return d_stats; }

 private:
  // ---- Words and the cache (wordclausifier.cpp) ---------------------------
  BvLitList* word_of(const Term_* term) const;
  BvLitList* new_word();
  void recycle(BvLitList* w);
  void cache(const Term_* term, BvLitList* w);
  void blast(const Term_* root);
  bool enters(SymbolTag::tag tag) const;
  void blast_one(const Term_* t);
  void blast_leaf(const Term_* t, BvLitList& out);
  void blast_bool(const Term_* t, SymbolTag::tag tag, BvLitList& out);
  void blast_word_op(const Term_* t, SymbolTag::tag tag, BvLitList& out);
  void blast_rewiring(const Term_* t, SymbolTag::tag tag, BvLitList& out);
  const BvLitList& arg(const Term_* t, size_t i) const;
  BvLit proxy_of(const Term_* t);
  BvLit tie_to_proxy(BvLit result, BvLit proxy);
  void check_budget(uint64_t gates);
  void poll() const;

  // ---- Gates (wordclausifier_gates.cpp) ------------------------------------
  BvLit fresh();
  BvLit bit_and(BvLit a, BvLit b);

  BvLit bit_or(BvLit a, BvLit b) { return -bit_and(-a, -b); }

  BvLit bit_xor(BvLit a, BvLit b);
  BvLit bit_ite(BvLit c, BvLit t, BvLit e);
  void add_position(BvLit x, BvLit y, BvLit z, BvLit& sum, BvLit& carry);

  // ---- Word circuits (wordclausifier_gates.cpp) ---------------------------
  // Outputs never alias inputs.
  void word_add(const BvLitList& a,
                const BvLitList& b,
                BvLit carry_in,
                BvLitList& out);
  void word_neg(const BvLitList& a, BvLitList& out);
  void word_sub(const BvLitList& a, const BvLitList& b, BvLitList& out);
  BvLit word_cmp(const BvLitList& a,
                 const BvLitList& b,
                 bool strict,
                 BvLit proxy);
  BvLit word_signed_cmp(const BvLitList& a,
                        const BvLitList& b,
                        bool strict,
                        BvLit proxy);
  BvLit word_equal(const BvLitList& a, const BvLitList& b, BvLit proxy);
  void word_ite(BvLit c,
                const BvLitList& t,
                const BvLitList& e,
                BvLitList& out);

  // ---- Arithmetic circuits (wordclausifier_arith.cpp) ---------------------
  void word_mul(const Term_* t, BvLitList& out);
  void word_mul_generic(const BvLitList& a, const BvLitList& b, BvLitList& out);
  void word_mul_by_constant(const QNumber& c,
                            const BvLitList& x,
                            BvLitList& out);
  void word_udiv_simple(const BvLitList& a,
                        const BvLitList& b,
                        BvLitList& q,
                        BvLitList& r);
  void word_sdiv_simple(const BvLitList& a,
                        const BvLitList& b,
                        BvLitList& q,
                        BvLitList& r);
  void word_divide(const Term_* t, SymbolTag::tag tag, BvLitList& out);
  void word_div_complete_semantics(const BvLitList& divisor, BvLitList& result);
  void word_shift(const Term_* t, SymbolTag::tag tag, BvLitList& out);
  void word_shift_by_constant(const BvLitList& a,
                              const QNumber& amount,
                              SymbolTag::tag tag,
                              BvLitList& out);
  void word_shift_barrel(const BvLitList& a,
                         const BvLitList& s,
                         SymbolTag::tag tag,
                         BvLitList& out);

  // A temporary word, back to the pool at the end of its scope.
  class Temp {
   public:
    explicit Temp(WordClausifier& c) : d_c(c), d_w(c.new_word()) {}

    ~Temp() { d_c.recycle(d_w); }

    Temp(const Temp&) = delete;
    Temp& operator=(const Temp&) = delete;

    BvLitList& operator*() { return *d_w; }

    BvLitList* operator->() { return d_w; }

   private:
    WordClausifier& d_c;
    BvLitList* d_w;
  };

  // ---- Data ----------------------------------------------------------------
  TermManager* d_tm;
  const Configuration::Theory::Bv* d_config;
  Logger* d_logger = nullptr;
  TerminationTest* d_termination = nullptr;
  ClauseSink* d_sink = nullptr;  // the sink of the call in progress
  // The term a bit_blast call was made for: only it may take a proxy.
  const Term_* d_root = nullptr;

  // The word of each cached term, by term id (null: none).
  std::vector<BvLitList*> d_words;
  // Cached terms in caching order; null marks a backtrack point.
  std::vector<const Term_*> d_order;
  std::vector<std::unique_ptr<BvLitList>> d_pool;
  std::vector<BvLitList*> d_free;
  std::vector<const Term_*> d_todo;

  // The word of every mark: no bits, never recycled.
  BvLitList d_mark_word;
  bool d_apps_as_leaves = false;

  uint64_t d_gate_budget = 20000000;
  Stats d_stats;
};

}  // namespace bv
}  // namespace zenlo

#endif
