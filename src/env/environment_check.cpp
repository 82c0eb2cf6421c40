// The road of a formula to an answer: the assertion stack, the
// preprocessing pipeline of one formula, and the check.
#include <vector>

#include "base/terminationtest.h"
#include "dpll/dpllsolver.h"
#include "env/environment.h"
#include "preprocess/cnfgenerator.h"
#include "preprocess/constraintencoder.h"
#include "preprocess/dpllclausesink.h"
#include "preprocess/modelstore.h"
#include "preprocess/polaritychecker.h"
#include "terms/typecheckscope.h"

namespace zenlo {

// ---------------------------------------------------------------------------
// Asserting
// ---------------------------------------------------------------------------

void Environment::assert_formula(const Term_* f) {
  // (The tracer sees the call, and with interpolation the classifier's
  // current group is stored with the formula.)
  if (!d_tm->is_bool_type(f->get_type())) {
    throw error("can't assert a term that is not of type Bool");
  }
  d_stack.push_back(f);
}

void Environment::do_assert_stack() {
  // Batch mode: with no certificate to keep apart per formula, the
  // formulas between two backtrack points are preprocessed together, so
  // that propagation across them is possible.
  const bool batch = !d_config.interpolation
                     && d_config.unsat_core_generation == 0
                     && !d_config.proof_generation;
  const Term_* pending = nullptr;
  while (d_processed < d_stack.size()) {
    const Term_* f = d_stack[d_processed];
    if (f == nullptr) {
      flush_pending(pending);
      do_push_backtrack_point();
    } else if (!batch) {
      // (With interpolation the classifier's group is set from the
      // stack's group here.)
      do_assert_formula(f, true);
    } else if (pending == nullptr || f == d_tm->make_false()) {
      pending = f;
    } else if (f != d_tm->make_true() && pending != d_tm->make_false()) {
      // `true` adds nothing and `false` absorbs the rest, as the
      // construction-time simplifier would have it.
      pending = pending == d_tm->make_true() ? f : d_tm->make_and(pending, f);
    }
    ++d_processed;
  }
  flush_pending(pending);
}

void Environment::flush_pending(const Term_*& pending) {
  if (pending != nullptr) {
    const Term_* f = pending;
    pending = nullptr;
    do_assert_formula(f, true);
  }
}

void Environment::do_assert_formula(const Term_* f, bool encode) {
  if (d_encoder == nullptr) {
    make_constraint_encoder();
  }
  // (The unsat core store replaces `f` by its tracked form here.)
  if (d_unsat_mark >= 0) {
    return;  // recorded on the stack; nothing can change the answer
  }
  if (d_config.shallow_incrementality && !d_labels.empty()) {
    // The formula holds only while its level is open: its label, assumed
    // false by every check, becomes true for good at the pop.
    f = d_tm->make_or(d_labels.back(), f);
  }
  // (The NNF generator rewrites `f` here.)
  log_step(1, "preprocessing...");
  // (Free-input coding, top-level propagation and normalization run
  // here, in this order.)
  if (encode) {
    log_step(2, " constraint encoding...");
    f = (*d_encoder)(f);
    log_step(2, " done");
  }
  d_polarity->add_formula(f);
  d_engine_formulas.emplace_back(engine_level(), f);
  SymbolTag::tag top = d_tm->get_tag(f->get_symbol());
  if (top == SymbolTag::FALSE) {
    reset_model();
    record_unsat_mark();
    // (The unsat core store learns of a trivial core here.)
  } else if (top != SymbolTag::TRUE) {
    reset_model();
    log_step(2, " converting to cnf...");
    (*d_cnf)(f);
    log_step(2, " done");
  }
  log_step(1, "done");
}

void Environment::record_unsat_mark() {
  d_unsat_mark = static_cast<int32_t>(engine_level());
}

size_t Environment::engine_level() const {
  return d_config.shallow_incrementality ? d_labels.size()
                                         : d_dpll->num_backtrack_points();
}

void Environment::log_step(int level, const char* what) {
  if (d_logger.would_log("", level)) {
    d_logger("") << loglevel(level) << what << endlog;
  }
}

// ---------------------------------------------------------------------------
// Checking
// ---------------------------------------------------------------------------

int Environment::check() {
  TypecheckScope typecheck_off(*d_tm, false);
  // (The tracer sees the call.)
  try {
    return do_check();
  } catch (...) {
    // Whatever stopped the check may have left the engine or the pipeline
    // half way; the next check starts over from the assertion stack.
    d_interrupted = true;
    d_last_result = -1;
    throw;
  }
}

// Returns: false when solving is switched off; else the stack has reached
//   the engine (rebuilt first after an interrupted check) and the last
//   answer is forgotten.
bool Environment::begin_check() {
  if (!d_config.solver_enabled) {
    return false;
  }
  if (d_interrupted) {
    reset_after_interrupted();
  }
  reset_model();
  do_assert_stack();
  d_last_result = -1;
  d_unsat_assumptions.clear();
  return true;
}

int Environment::do_check() {
  if (!begin_check()) {
    return -1;
  }
  if (d_unsat_mark >= 0) {
    d_last_result = 0;
    return 0;
  }
  log_step(1, "searching...");
  // Under shallow incrementality the negations of the open labels switch
  // their levels on. (The unsat core store's assumptions join them.)
  std::vector<dpll::Lit> assumptions;
  shallow_assumptions(assumptions);
  if (d_dpll->solve(assumptions)) {
    check_theory_atoms();
    d_last_result = 1;
    make_model_store();
    if (d_config.check.models) {
      check_model_holds(TermList());
    }
  } else {
    d_last_result = 0;
    record_unsat_mark();
  }
  return d_last_result;
}

void Environment::check_theory_atoms() const {
  if (d_theory_manager == nullptr && d_clause_sink->num_theory_atoms() > 0) {
    // The engine has treated theory atoms as free Boolean variables: a
    // model of the abstraction says nothing about the formula.
    throw error("no theory solver is available for the atoms of the formula");
  }
}

}  // namespace zenlo
