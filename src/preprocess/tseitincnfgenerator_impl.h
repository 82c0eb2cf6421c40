// The body of TseitinCNFGenerator<Sink>. Included by the .cpp files that
// instantiate the generator for a sink (tseitincnfgenerator.cpp for the
// engine's sink, tests for their recording sinks); nobody else needs it.
#ifndef ZENLO_PREPROCESS_TSEITINCNFGENERATOR_IMPL_H
#define ZENLO_PREPROCESS_TSEITINCNFGENERATOR_IMPL_H

#include "base/terminationtest.h"
#include "preprocess/tseitincnfgenerator.h"
#include "terms/termmanager.h"

namespace zenlo {

template <class Sink>
TseitinCNFGenerator<Sink>::TseitinCNFGenerator(TermManager* tm,
                                               Sink* sink,
                                               bool full_cnf_conversion)
    : d_tm(tm), d_sink(sink), d_full_cnf(full_cnf_conversion), d_helper(*tm) {}

// ---------------------------------------------------------------------------
// The top level
// ---------------------------------------------------------------------------

template <class Sink>
void TseitinCNFGenerator<Sink>::operator()(const Term_* f) {
  if (d_full_cnf) {
    if (!d_emitted.get(f->get_id())) {
      make_cnf(f);
      mark(d_emitted, d_emitted_undo, f);
    }
    return;
  }
  if (d_depth > 0) {
    d_formula_undo.push_back(f);
  }
  d_helper.find_parents(f, d_parents, true);
  d_todo.clear();
  d_todo.push_back(f);
  while (!d_todo.empty()) {
    const Term_* t = d_todo.back();
    d_todo.pop_back();
    if (d_emitted.get(t->get_id())) {
      continue;
    }
    Kind k = d_helper.kind(t);
    if (k == Kind::Quantifier) {
      throw error("The CNF conversion does not support quantifiers");
    }
    if (k == Kind::And && d_parents.get(t) < 2) {
      // An unshared conjunct needs no name: assert its parts one by one.
      for (size_t i = t->get_arity(); i-- > 0;) {
        d_todo.push_back(t->get_child(i));
      }
    } else if (d_helper.check_clause(t, d_shape)) {
      handle_clause(t, k == Kind::Not);
    } else {
      make_cnf(t);
      mark(d_emitted, d_emitted_undo, t);
    }
  }
}

template <class Sink>
void TseitinCNFGenerator<Sink>::push_backtrack_point() {
  ++d_depth;
  d_defined_undo.push_back(nullptr);
  d_emitted_undo.push_back(nullptr);
  d_formula_undo.push_back(nullptr);
}

template <class Sink>
void TseitinCNFGenerator<Sink>::pop_backtrack_point() {
  for (; d_defined_undo.back() != nullptr; d_defined_undo.pop_back()) {
    d_defined.clear(d_defined_undo.back()->get_id());
  }
  d_defined_undo.pop_back();
  for (; d_emitted_undo.back() != nullptr; d_emitted_undo.pop_back()) {
    d_emitted.clear(d_emitted_undo.back()->get_id());
  }
  d_emitted_undo.pop_back();
  for (; d_formula_undo.back() != nullptr; d_formula_undo.pop_back()) {
    d_helper.find_parents(d_formula_undo.back(), d_parents, false);
  }
  d_formula_undo.pop_back();
  --d_depth;
}

template <class Sink>
void TseitinCNFGenerator<Sink>::mark(BitSet& bits,
                                     std::vector<const Term_*>& undo,
                                     const Term_* t) {
  bits.set(t->get_id());
  // At the base level nothing is ever popped, so nothing is recorded.
  if (d_depth > 0) {
    undo.push_back(t);
  }
}

// ---------------------------------------------------------------------------
// Formulas of clause shape
// ---------------------------------------------------------------------------

template <class Sink>
void TseitinCNFGenerator<Sink>::handle_clause(const Term_* t, bool negated) {
  if (d_emitted.get(t->get_id())) {
    return;
  }
  mark(d_emitted, d_emitted_undo, t);
  const Term_* s = negated ? t->get_child(0) : t;
  if (d_helper.kind(s) == Kind::Iff) {
    emit_iff_clauses(s->get_child(0), s->get_child(1), negated);
    return;
  }
  // A node shared inside the clause is walked once per polarity, so the
  // walk stays linear in the DAG.
  d_marks.clear();
  d_sink->begin_clause(false);
  d_walk.clear();
  d_walk.emplace_back(s, negated);
  while (!d_walk.empty()) {
    auto [u, neg] = d_walk.back();
    d_walk.pop_back();
    if (!d_marks.test_and_set(2 * u->get_id() + (neg ? 1 : 0))) {
      continue;
    }
    Kind k = d_helper.kind(u);
    if ((k == Kind::Or && !neg) || (k == Kind::And && neg)) {
      for (size_t i = u->get_arity(); i-- > 0;) {
        d_walk.emplace_back(u->get_child(i), neg);
      }
    } else if (k == Kind::Not) {
      d_walk.emplace_back(u->get_child(0), !neg);
    } else {
      d_sink->add_literal(u, neg);
    }
  }
  d_marks.clear();
  d_sink->end_clause();
}

// a <-> b is (!a | b) & (!b | a); its negation is (a | b) & (!b | !a).
template <class Sink>
void TseitinCNFGenerator<Sink>::emit_iff_clauses(const Term_* a,
                                                 const Term_* b,
                                                 bool negated) {
  d_sink->begin_clause(false);
  d_sink->add_literal(a, !negated);
  d_sink->add_literal(b, false);
  d_sink->end_clause();
  d_sink->begin_clause(false);
  d_sink->add_literal(b, true);
  d_sink->add_literal(a, negated);
  d_sink->end_clause();
}

// ---------------------------------------------------------------------------
// Definitions
// ---------------------------------------------------------------------------

// Post-order over the connectives of `f`: a node is defined once all the
// nodes its definition mentions are. Each stack entry says whether the
// node's arguments were pushed already.
template <class Sink>
void TseitinCNFGenerator<Sink>::make_cnf(const Term_* f) {
  d_walk.clear();
  d_walk.emplace_back(f, false);
  while (!d_walk.empty()) {
    auto [t, expanded] = d_walk.back();
    d_walk.pop_back();
    if (d_defined.get(t->get_id())) {
      continue;
    }
    Kind k = d_helper.kind(t);
    if (k == Kind::Atom) {
      continue;
    }
    if (!expanded) {
      check_convertible(t, k);
      d_walk.emplace_back(t, true);
      expand(t);
    } else {
      define(t);
    }
  }
  emit_unit(f);
}

template <class Sink>
void TseitinCNFGenerator<Sink>::check_convertible(const Term_* t,
                                                  Kind k) const {
  switch (k) {
    case Kind::True:
    case Kind::False:
      throw error("The CNF conversion does not support `true' and `false'");
    case Kind::Quantifier:
      throw error("The CNF conversion does not support quantifiers");
    case Kind::NonBool:
      throw error("Unexpected symbol: " + t->get_symbol()->get_name());
    default: break;
  }
}

template <class Sink>
void TseitinCNFGenerator<Sink>::expand(const Term_* t) {
  Kind k = d_helper.kind(t);
  if (k == Kind::And || k == Kind::Or) {
    collect_leaves(t, k);
    for (const Term_* c : d_leaves) {
      d_walk.emplace_back(c, false);
    }
  } else {
    for (const Term_* c : *t) {
      d_walk.emplace_back(c, false);
    }
  }
}

template <class Sink>
void TseitinCNFGenerator<Sink>::define(const Term_* t) {
  switch (d_helper.kind(t)) {
    case Kind::And: define_chain(t, true); break;
    case Kind::Or: define_chain(t, false); break;
    case Kind::Iff: define_iff(t); break;
    default: break;  // `not` needs no clause: literals fold the negation
  }
  mark(d_defined, d_defined_undo, t);
  if (d_termination != nullptr) {
    (*d_termination)();
  }
}

// The leaves of the chain of `t`: arguments, and arguments of arguments
// with the same connective that nothing else shares and that have no
// definition of their own. Each inner node is entered once even when the
// parent counts are not kept (full conversion), so sharing stays linear.
template <class Sink>
void TseitinCNFGenerator<Sink>::collect_leaves(const Term_* t, Kind k) {
  d_leaves.clear();
  d_chain.clear();
  d_marks.clear();
  for (size_t i = t->get_arity(); i-- > 0;) {
    d_chain.push_back(t->get_child(i));
  }
  while (!d_chain.empty()) {
    const Term_* u = d_chain.back();
    d_chain.pop_back();
    bool inner = d_helper.kind(u) == k && d_parents.get(u) < 2
                 && !d_defined.get(u->get_id());
    if (!inner) {
      d_leaves.push_back(u);
    } else if (d_marks.test_and_set(u->get_id())) {
      for (size_t i = u->get_arity(); i-- > 0;) {
        d_chain.push_back(u->get_child(i));
      }
    }
  }
  d_marks.clear();
}

// and: t -> c_i for each leaf, and (c_1 & ... & c_n) -> t.
// or:  c_i -> t for each leaf, and t -> (c_1 | ... | c_n).
template <class Sink>
void TseitinCNFGenerator<Sink>::define_chain(const Term_* t, bool is_and) {
  d_sink->create_label(t);
  collect_leaves(t, is_and ? Kind::And : Kind::Or);
  for (const Term_* c : d_leaves) {
    d_sink->begin_clause(true);
    d_sink->add_literal(t, is_and);
    d_sink->add_literal(c, !is_and);
    d_sink->end_clause();
  }
  d_sink->begin_clause(true);
  d_sink->add_literal(t, !is_and);
  for (const Term_* c : d_leaves) {
    d_sink->add_literal(c, is_and);
  }
  d_sink->end_clause();
}

template <class Sink>
void TseitinCNFGenerator<Sink>::define_iff(const Term_* t) {
  const Term_* a = t->get_child(0);
  const Term_* b = t->get_child(1);
  d_sink->create_label(t);
  const bool signs[4][3] = {
      {true, true, false},    // !t | !a | b
      {true, false, true},    // !t | a | !b
      {false, true, true},    // t | !a | !b
      {false, false, false},  // t | a | b
  };
  for (const auto& s : signs) {
    d_sink->begin_clause(true);
    d_sink->add_literal(t, s[0]);
    d_sink->add_literal(a, s[1]);
    d_sink->add_literal(b, s[2]);
    d_sink->end_clause();
  }
}

template <class Sink>
void TseitinCNFGenerator<Sink>::emit_unit(const Term_* f) {
  d_sink->begin_clause(false);
  d_sink->add_literal(f, false);
  d_sink->end_clause();
}

}  // namespace zenlo

#endif
