// Tseitin's conversion with both implication directions, over any clause
// sink. Three refinements keep the clause set small:
//
// - an unshared conjunction at the top is split, so each conjunct is
//   asserted on its own (a conjunction of literals gives unit clauses and
//   no definition variable);
// - a subformula that already has clause shape (CnfHelper::check_clause)
//   is emitted as clauses with no definition variable;
// - nested and/or chains whose inner nodes are not shared get one
//   definition over the leaves of the whole chain.
//
// A definition variable is the sink's label of the defined term itself, so
// a later formula that mentions the term reuses the definition through the
// sink's proxy table. The conversion is incremental: bit sets by term id
// record what is defined and what was emitted as a clause, and undo stacks
// (a null entry at every backtrack point) forget both at a pop, together
// with the parent counts of the formulas converted since the push.
//
// The sink protocol (DpllClauseSink is the model):
//   begin_clause(bool definition); add_literal(term, negated);
//   end_clause(); create_label(term) -> variable.
// The generator knows nothing of the engine behind the sink.
#ifndef ZENLO_PREPROCESS_TSEITINCNFGENERATOR_H
#define ZENLO_PREPROCESS_TSEITINCNFGENERATOR_H

#include <utility>
#include <vector>

#include "preprocess/cnfgenerator.h"
#include "preprocess/cnfhelper.h"
#include "terms/bitset.h"
#include "terms/term.h"

namespace zenlo {

class TermManager;
class TerminationTest;

template <class Sink>
class TseitinCNFGenerator : public CNFGenerator {
 public:
  // `full_cnf_conversion` turns all three refinements off: every connective
  // gets a definition (preprocessor.full_cnf_conversion).
  // - Requires: `tm` and `sink` outlive the generator.
  TseitinCNFGenerator(TermManager* tm, Sink* sink, bool full_cnf_conversion);

  void operator()(const Term_* f) override;
  void push_backtrack_point() override;
  void pop_backtrack_point() override;

  void set_termination_test(TerminationTest* test) override {
    d_termination = test;
  }

  // For tests and statistics: whether `t` has its definition in the sink.
  bool is_defined(const Term_* t) const { return d_defined.get(t->get_id()); }

 private:
  using Kind = CnfHelper::Kind;

  void handle_clause(const Term_* t, bool negated);
  void emit_iff_clauses(const Term_* a, const Term_* b, bool negated);
  void make_cnf(const Term_* f);
  void expand(const Term_* t);
  void define(const Term_* t);
  void define_chain(const Term_* t, bool is_and);
  void define_iff(const Term_* t);
  void collect_leaves(const Term_* t, Kind k);
  void check_convertible(const Term_* t, Kind k) const;
  void emit_unit(const Term_* f);
  void mark(BitSet& bits, std::vector<const Term_*>& undo, const Term_* t);

  TermManager* d_tm;
  Sink* d_sink;
  bool d_full_cnf;
  TerminationTest* d_termination = nullptr;
  CnfHelper d_helper;
  CnfHelper::Parents d_parents;
  CnfHelper::ShapeMemo d_shape;
  BitSet d_defined;
  BitSet d_emitted;
  // Undo stacks: defined terms, emitted terms, converted formulas; nullptr
  // marks a backtrack point.
  std::vector<const Term_*> d_defined_undo;
  std::vector<const Term_*> d_emitted_undo;
  std::vector<const Term_*> d_formula_undo;
  int d_depth = 0;
  // Working stacks, kept between calls to avoid allocating.
  std::vector<const Term_*> d_todo;
  std::vector<std::pair<const Term_*, bool>> d_walk;
  std::vector<const Term_*> d_leaves;
  std::vector<const Term_*> d_chain;
  WalkMarks d_marks;
};

}  // namespace zenlo

#endif
