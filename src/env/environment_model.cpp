// Models, model enumeration by blocking, stored theory lemmas, the
// asserted formulas and garbage collection of an environment.
#include <string>
#include <utility>
#include <vector>

#include "dpll/dpllsolver.h"
#include "env/environment.h"
#include "preprocess/modelstore.h"
#include "preprocess/polaritychecker.h"
#include "preprocess/rewritestack.h"
#include "terms/termmanager.h"
#include "terms/typecheckscope.h"

namespace zenlo {

// ---------------------------------------------------------------------------
// The model of the last check
// ---------------------------------------------------------------------------

void Environment::make_model_store() {
  if (!d_config.model_generation && !d_config.bool_model_generation) {
    return;
  }
  ModelStore::Options o;
  o.na_div_by_zero_mode = d_config.theory.na.div_by_zero_mode;
  o.bv_div_by_zero_mode = d_config.theory.bv.div_by_zero_mode;
  const bool full = d_config.model_generation;
  d_model = new ModelStore(d_tm,
                           d_rewrite_stack.get(),
                           d_dpll.get(),
                           full ? d_theory_manager.get() : nullptr,
                           d_polarity.get(),
                           nullptr,
                           full,
                           o);
  d_model->set_logger(&d_logger);
  d_model->set_termination_test(d_termination);
}

void Environment::reset_model() {
  if (d_model == nullptr) {
    return;
  }
  ModelStore* m = d_model;
  d_model = nullptr;
  if (m->refcount() > 1) {
    // A handle outlives this answer: it must stop reading the engine and
    // the theories, which the next step changes. A failure stays inside
    // the store and shows at the handle's next question.
    if (m->state() == 0) {
      add_model_formulas(*m);
    }
    m->detach();
  }
  ModelStore::release(m);
}

void Environment::add_model_formulas(ModelStore& m) {
  // Only what reached the solver: a formula asserted after the check is
  // not part of the answer.
  for (size_t i = 0; i < d_processed && i < d_stack.size(); ++i) {
    if (d_stack[i] != nullptr) {
      m.add_formula(d_stack[i]);
    }
  }
  for (const auto& entry : d_engine_formulas) {
    m.add_formula(entry.second);
  }
}

ModelStore& Environment::current_model(const char* /*what*/) {
  // (The tracer sees the request, named by `what`.)
  if (d_model == nullptr) {
    throw error("model generation not enabled");
  }
  if (d_model->state() == 0) {
    add_model_formulas(*d_model);
    d_model->compute();
  }
  return *d_model;
}

const Term_* Environment::get_model_value(const Term_* t) {
  TypecheckScope typecheck_off(*d_tm, false);
  return current_model("get_model_value").get_value(t);
}

const Term_* Environment::get_model_default_value(const Type* type) {
  TypecheckScope typecheck_off(*d_tm, false);
  return current_model("get_model_value").get_default_value(type);
}

std::vector<std::pair<const Term_*, const Term_*>>
Environment::get_model_assignments() {
  TypecheckScope typecheck_off(*d_tm, false);
  ModelStore& m = current_model("model_begin");
  return std::vector<std::pair<const Term_*, const Term_*>>(m.begin(), m.end());
}

ModelStore* Environment::get_model(bool handle) {
  if (d_model == nullptr && handle) {
    throw error("no model available");
  }
  ModelStore& m = current_model(handle ? "get_model" : "model_begin");
  m.acquire();
  return &m;
}

// ---------------------------------------------------------------------------
// Diversification
// ---------------------------------------------------------------------------

size_t Environment::diversify(ModelFoundHook& hook,
                              const TermList& diversifiers) {
  if (d_config.proof_generation) {
    throw error("diversification is not compatible with proof generation");
  }
  if (!d_config.model_generation) {
    throw error("model generation must be enabled for diversification");
  }
  size_t count = 0;
  for (;;) {
    if (check() != 1) {
      return count;  // unsat (the mark is set) or unknown
    }
    ++count;
    TypecheckScope typecheck_off(*d_tm, false);
    ModelStore& m = current_model("diversify");
    std::vector<ModelStore::Assignment> pairs(m.begin(), m.end());
    if (!hook(pairs.data(), pairs.data() + pairs.size())) {
      return count;
    }
    const Term_* block = blocking_clause(m, diversifiers);
    // On the stack, so that the model stays excluded at later checks.
    assert_formula(block);
  }
}

const Term_* Environment::blocking_clause(ModelStore& m,
                                          const TermList& diversifiers) {
  const Term_* clause = d_tm->make_false();
  for (const Term_* d : diversifiers) {
    const Term_* v = m.get_value(d);
    const Term_* lit;
    if (d_tm->is_bool_type(d->get_type())) {
      lit = v == d_tm->make_true() ? d_tm->make_not(d) : d;
    } else if (d_tm->is_number(v->get_symbol())) {
      lit = d_tm->make_not(d_tm->make_equal(v, d));
    } else {
      throw error("bad model value for diversifier: " + v->to_str());
    }
    clause = d_tm->make_or(clause, lit);
  }
  return clause;
}

// ---------------------------------------------------------------------------
// Inspection
// ---------------------------------------------------------------------------

TermList Environment::get_asserted_formulas() const {
  TermList out;
  for (const Term_* f : d_stack) {
    if (f != nullptr) {
      out.push_back(f);
    }
  }
  return out;
}

TermList Environment::get_theory_lemmas() {
  TermList out;
  for (const dpll::Clause* c : d_dpll->stored_theory_lemmas()) {
    const Term_* lemma = d_tm->make_false();
    for (dpll::Lit p : *c) {
      // Backtrack guards and unnamed definitions carry no meaning for
      // the caller.
      const Term_* t = d_dpll->term_of(dpll::var(p));
      if (t != nullptr) {
        lemma = d_tm->make_or(lemma, dpll::sign(p) ? d_tm->make_not(t) : t);
      }
    }
    out.push_back(lemma);
  }
  return out;
}

// ---------------------------------------------------------------------------
// Garbage collection
// ---------------------------------------------------------------------------

void Environment::gc_hook::operator()(TermList& /*terms*/,
                                      std::vector<const Symbol*>& /*symbols*/,
                                      std::vector<const Type*>& /*types*/) {}

void Environment::gc(const TermList& keep, gc_hook* hook) {
  log_step(2, "gc");
  std::vector<const Term_*> stack = std::move(d_stack);
  const uint32_t next_label = d_next_label;
  do_reset();
  // (An environment with an active tracer collects nothing: the trace
  // names terms by their ids.)
  if (d_owns_tm) {
    TermList terms = keep;
    for (const Term_* f : stack) {
      if (f != nullptr) {
        terms.push_back(f);
      }
    }
    std::vector<const Symbol*> symbols;
    std::vector<const Type*> types;
    if (hook != nullptr) {
      (*hook)(terms, symbols, types);
    }
    d_tm->gc(terms, symbols, types);
    // The old simplifier's memo names dead terms.
    renew_simplifier();
  }
  init();
  d_stack = std::move(stack);
  d_next_label = next_label;
}

}  // namespace zenlo
