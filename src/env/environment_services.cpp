// Backtrack points, assumptions and preferred branching of an environment.
//
// A backtrack point lives on the assertion stack as a null entry until a
// check processes it; only then do the engine, the CNF generator and the
// preprocessing steps open a point of their own. A pop therefore first
// cuts unprocessed entries off the stack, and only when it reaches the
// processed part does it take the solver back, in the reverse order of the
// push.
#include <string>
#include <vector>

#include "dpll/dpllsolver.h"
#include "env/environment.h"
#include "preprocess/cnfgenerator.h"
#include "preprocess/constraintencoder.h"
#include "preprocess/dpllclausesink.h"
#include "preprocess/modelstore.h"
#include "preprocess/polaritychecker.h"
#include "preprocess/rewritestack.h"
#include "terms/typecheckscope.h"

namespace zenlo {

// ---------------------------------------------------------------------------
// Backtrack points
// ---------------------------------------------------------------------------

void Environment::push_backtrack_point() {
  // (The tracer is told here; with interpolation a -1 group goes along.)
  d_stack.push_back(nullptr);
}

void Environment::pop_backtrack_point() {
  // (The tracer is told here.)
  if (num_backtrack_points() == 0) {
    throw error("no backtrack points to pop");
  }
  while (d_processed < d_stack.size()) {
    const Term_* top = d_stack.back();
    d_stack.pop_back();
    if (top == nullptr) {
      return;  // the point never reached the solver: nothing to undo
    }
  }
  do_pop_backtrack_point();
}

void Environment::do_push_backtrack_point() {
  log_step(2, "push");
  if (d_config.shallow_incrementality) {
    do_push_shallow_backtrack_point();
    return;
  }
  // (The top-level propagator and the free-input coder push after the
  // rewrite stack once they exist.)
  d_rewrite_stack->push_backtrack_point();
  d_polarity->push_backtrack_point();
  d_cnf->push_backtrack_point();
  d_dpll->push_backtrack_point();
  // (The interpolation classifier and the unsat core store push here.)
}

void Environment::do_pop_backtrack_point() {
  log_step(2, "pop");
  if (d_stack.empty()) {
    throw error("no backtrack points to pop");
  }
  reset_model();
  // Down to and including the topmost null entry; all of these reached
  // the solver, since the caller cut the unprocessed ones first.
  bool found = false;
  while (!d_stack.empty() && !found) {
    found = d_stack.back() == nullptr;
    d_stack.pop_back();
    --d_processed;
  }
  if (!found) {
    throw error("no backtrack points to pop");
  }
  const size_t popped = engine_level();
  while (!d_engine_formulas.empty()
         && d_engine_formulas.back().first >= popped) {
    d_engine_formulas.pop_back();
  }
  if (d_config.shallow_incrementality) {
    do_pop_shallow_backtrack_point();
    d_encoder->reset();
    return;
  }
  d_dpll->pop_backtrack_point();
  if (d_unsat_mark > d_dpll->num_backtrack_points()) {
    d_unsat_mark = -1;
  }
  // The side constraints of encodings made above the point are gone from
  // the engine, so a term met again must be encoded anew.
  d_encoder->reset();
  d_rewrite_stack->pop_backtrack_point();
  d_cnf->pop_backtrack_point();
  // (The top-level propagator and the free-input coder pop here.)
  d_polarity->pop_backtrack_point();
  // (The unsat core store pops here.)
}

// ---------------------------------------------------------------------------
// Shallow incrementality: a label per point, no engine backtrack point
// ---------------------------------------------------------------------------

void Environment::do_push_shallow_backtrack_point() {
  const Symbol* s = d_tm->make_unique_symbol(
      ".btlabel" + std::to_string(d_next_label++), d_tm->get_bool_type());
  const Term_* label = d_tm->make_constant(s);
  d_labels.push_back(label);
  // (The top-level propagator protects the label here.)
  label_var(label);
}

void Environment::do_pop_shallow_backtrack_point() {
  // The unit clause (label) switches every formula of the level off for
  // good: they were all asserted as (or label f).
  const Term_* label = d_labels.back();
  d_labels.pop_back();
  d_clause_sink->begin_clause(false);
  d_clause_sink->add_literal(label, false);
  if (dpll::Clause* copy = d_clause_sink->end_clause()) {
    dpll::Clause::release(copy);
  }
  if (d_unsat_mark > static_cast<int32_t>(d_labels.size())) {
    d_unsat_mark = -1;
  }
}

dpll::Var Environment::label_var(const Term_* label) {
  dpll::Var v;
  d_dpll->make_proxy(label, v);
  d_dpll->set_frozen(v, true);
  return v;
}

void Environment::shallow_assumptions(std::vector<dpll::Lit>& out) {
  for (const Term_* label : d_labels) {
    out.push_back(dpll::mk_lit(label_var(label), true));
  }
}

// ---------------------------------------------------------------------------
// Assumptions
// ---------------------------------------------------------------------------

int Environment::check_with_assumptions(const TermList& assumptions) {
  TypecheckScope typecheck_off(*d_tm, false);
  // (The tracer sees the call.)
  // Refused assumptions are found before the solver is touched, so that
  // the environment stays as it was.
  check_assumptions_are_literals(assumptions);
  try {
    return do_check_with_assumptions(assumptions);
  } catch (...) {
    d_interrupted = true;
    d_last_result = -1;
    throw;
  }
}

int Environment::do_check_with_assumptions(const TermList& assumptions) {
  if (!begin_check()) {
    return -1;
  }

  std::vector<dpll::Lit> lits;
  // The labels of open shallow points go first; they are not the caller's
  // and never show among the unsat assumptions.
  shallow_assumptions(lits);
  const size_t first_user = lits.size();
  TermList side;
  for (const Term_* a : assumptions) {
    lits.push_back(assumption_lit(a, side));
  }
  if (!side.empty()) {
    do_assert_formula(conjunction(side), false);
  }
  if (d_unsat_mark >= 0) {
    d_last_result = 0;
    return 0;  // the stack alone is unsat: no assumption is to blame
  }
  log_step(1, "searching...");
  if (d_dpll->solve(lits)) {
    check_theory_atoms();
    d_last_result = 1;
    make_model_store();
    if (d_model != nullptr) {
      // The model answers for the assumptions too, also for an atom that
      // occurs in no assertion.
      for (const Term_* a : assumptions) {
        d_model->add_formula(a);
      }
    }
    if (d_config.check.models) {
      check_model_holds(assumptions);
    }
  } else {
    // A failure under assumptions says nothing about the stack alone.
    d_last_result = 0;
    collect_unsat_assumptions(lits, first_user);
    if (d_config.check.unsat_assumptions) {
      check_unsat_assumptions();
    }
  }
  return d_last_result;
}

void Environment::check_assumptions_are_literals(
    const TermList& assumptions) const {
  for (const Term_* a : assumptions) {
    check_assumption(a);
  }
}

void Environment::check_assumption(const Term_* a) const {
  if (!is_assumption_literal(a)) {
    throw bad_assumption("assumptions can only be literals");
  }
}

bool Environment::is_assumption_literal(const Term_* a) const {
  while (d_tm->get_tag(a->get_symbol()) == SymbolTag::NOT) {
    a = a->get_child(0);
  }
  SymbolTag::tag tag = d_tm->get_tag(a->get_symbol());
  return d_tm->is_bool_type(a->get_type()) && tag != SymbolTag::TRUE
         && tag != SymbolTag::FALSE && tag != SymbolTag::AND
         && tag != SymbolTag::OR && tag != SymbolTag::IFF
         && !d_tm->is_quantifier(a->get_symbol());
}

dpll::Lit Environment::assumption_lit(const Term_* a, TermList& side) {
  bool negated = false;
  while (d_tm->get_tag(a->get_symbol()) == SymbolTag::NOT) {
    negated = !negated;
    a = a->get_child(0);
  }
  // (With top-level propagation, a constant it eliminated is tied to its
  // substitute again here, so that the assumption still means something.)
  dpll::Var v;
  if (d_dpll->make_proxy(a, v)) {
    // A new atom: the engine must learn what it means, as it would had
    // the atom come through the pipeline.
    const Term_* enc = d_encoder->encode(a, side);
    if (enc != a) {
      side.push_back(d_tm->make_iff(a, enc));
    }
    if (d_polarity != nullptr) {
      d_polarity->add_literal(a, negated);
    }
  }
  d_dpll->set_frozen(v, true);
  return dpll::mk_lit(v, negated);
}

void Environment::collect_unsat_assumptions(const std::vector<dpll::Lit>& lits,
                                            size_t first_user) {
  // The conflict holds the negations of the failed assumptions.
  for (dpll::Lit p : d_dpll->get_conflict()) {
    dpll::Lit a = p ^ 1;
    bool user = false;
    for (size_t i = first_user; i < lits.size() && !user; ++i) {
      user = lits[i] == a;
    }
    if (!user) {
      continue;
    }
    const Term_* t = d_dpll->term_of(dpll::var(a));
    if (t != nullptr) {
      d_unsat_assumptions.push_back(dpll::sign(a) ? d_tm->make_not(t) : t);
    }
  }
}

TermList Environment::get_unsat_assumptions() {
  // (The tracer sees the call.)
  return d_unsat_assumptions;
}

const Term_* Environment::conjunction(const TermList& terms) {
  const Term_* all = nullptr;
  for (const Term_* t : terms) {
    all = all == nullptr ? t : d_tm->make_and(all, t);
  }
  return all == nullptr ? d_tm->make_true() : all;
}

// ---------------------------------------------------------------------------
// Preferred branching
// ---------------------------------------------------------------------------

void Environment::add_preferred_for_branching(const Term_* atom, int value) {
  if (atom->get_arity() != 0 || !d_tm->is_bool_type(atom->get_type())
      || d_tm->is_interpreted(atom->get_symbol())) {
    throw error("only Boolean constants can be set as preferred for branching");
  }
  // (A constant that top-level propagation eliminated is tied to its
  // substitute first, and protected from further elimination.)
  dpll::Var v = d_dpll->proxy_for_term(atom);
  if (v == dpll::var_Undef) {
    d_dpll->make_proxy(atom, v);
  }
  lbool polarity = value == 1 ? l_True : value == 0 ? l_False : l_Undef;
  d_dpll->add_preferred_for_branching(dpll::mk_lit(v, value == 0));
  d_dpll->set_preferred_polarity(v, polarity);
}

void Environment::clear_preferred_for_branching() {
  d_dpll->clear_preferred_for_branching();
}

}  // namespace zenlo
