// Self-checks of answers: every model after sat holds every assertion and
// assumption, and unsat assumptions are unsat with the assertions in a
// fresh environment. A failure is an internal error, never an answer.
#include <string>

#include "env/environment.h"
#include "preprocess/modelstore.h"
#include "terms/termmanager.h"

namespace zenlo {

namespace {

std::string short_text(const Term_* t) {
  constexpr size_t kMaxChars = 400;
  std::string s = t->to_str();
  return s.size() > kMaxChars ? s.substr(0, kMaxChars) + " ..." : s;
}

}  // namespace

// Only full models are read: a Boolean-only model has no values for the
// terms under the atoms, and without model generation there is no model.
// Evaluation goes through the same store that get-model would print, so
// what is checked is what the user sees.
void Environment::check_model_holds(const TermList& assumptions) {
  if (d_model == nullptr || !d_config.model_generation) {
    return;
  }
  auto holds = [this](const Term_* f, const char* what, size_t i) {
    const Term_* v = nullptr;
    try {
      v = get_model_value(f);
    } catch (const ModelStore::error& e) {
      if (e.message().find("not supported") != std::string::npos) {
        return;  // a refusal, which get-model would give too
      }
      throw error(std::string("internal error: check of models: no model: ")
                  + e.message());
    }
    if (v != d_tm->make_true()) {
      throw error(
          "internal error: check of models: " + std::string(what) + " "
          + std::to_string(i) + " is "
          + (v == nullptr ? std::string("without value") : short_text(v))
          + " in the model: " + short_text(f));
    }
  };
  size_t n = 0;
  for (size_t i = 0; i < d_processed && i < d_stack.size(); ++i) {
    if (d_stack[i] != nullptr) {
      holds(d_stack[i], "assertion", ++n);
    }
  }
  for (size_t i = 0; i < assumptions.size(); ++i) {
    holds(assumptions[i], "assumption", i + 1);
  }
}

// A fresh environment on the same terms, with no checks of its own but the
// theory facts, decides the assertions with the unsat assumptions asserted;
// sat there means the core is wrong. Unknown proves nothing either way.
void Environment::check_unsat_assumptions() {
  Configuration config = d_config;
  config.check.unsat_assumptions = false;
  config.check.models = false;
  config.model_generation = false;
  config.unsat_core_generation = 0;
  config.api_call_trace = 0;
  Environment fresh(config, d_tm);
  fresh.set_termination_test(d_termination);
  for (const Term_* f : d_stack) {
    if (f != nullptr) {
      fresh.assert_formula(f);
    }
  }
  for (const Term_* a : d_unsat_assumptions) {
    fresh.assert_formula(a);
  }
  if (fresh.check() == 1) {
    std::string core;
    for (const Term_* a : d_unsat_assumptions) {
      core += " " + short_text(a);
    }
    throw error(
        "internal error: check of unsat assumptions: they are satisfiable "
        "with the assertions:"
        + core);
  }
}

}  // namespace zenlo
