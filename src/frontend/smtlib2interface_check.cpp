// check-sat and check-sat-assuming: the limits of the check, the answer,
// the model that -model prints, and the comparison with :status.
//
// A check that cannot reach a definite answer is no failure of the script:
// the environment refusing atoms that no theory solver decides, a limit,
// or memory running out all answer unknown, and the reason is kept for
// get-info :reason-unknown. Only a request the environment cannot serve at
// all (a missing service) is an error.
#include <new>

#include "base/terminationtest.h"
#include "env/environment.h"
#include "frontend/smtlib2interface.h"
#include "frontend/smtlib2model.h"

namespace zenlo {

namespace {

const char* result_text(int result) {
  return result > 0 ? "sat" : result == 0 ? "unsat" : "unknown";
}

// A failed self-check (-check.*) is a fault of the solver: it must show as
// an error, never hide in an unknown.
bool is_internal_error(const Exception& e) {
  return e.message().rfind("internal error", 0) == 0;
}

}  // namespace

void SmtLib2Interface::check_sat() {
  d_assumption_proxies.clear();
  run_check(nullptr);
}

// SMT-LIB counts true and false among the literals a script may assume,
// and scripts in the wild assume whole formulas, while the environment
// takes atoms only: true assumes nothing, false decides the check without
// a search, as the one assumption to blame, and a formula is assumed
// through a fresh constant that implies it (see assumption_proxy).
void SmtLib2Interface::check_sat_assumptions(const TermList& terms) {
  init_env();
  TermManager& tm = d_env->get_term_manager();
  d_assumptions.clear();
  d_assumption_proxies.clear();
  const Term_* falsity = nullptr;
  for (const Term_* t : terms) {
    bool negated = false;
    const Term_* a = t;
    while (tm.get_tag(a->get_symbol()) == SymbolTag::NOT) {
      negated = !negated;
      a = a->get_child(0);
    }
    const SymbolTag::tag tag = tm.get_tag(a->get_symbol());
    if (tag != SymbolTag::TRUE && tag != SymbolTag::FALSE) {
      d_assumptions.push_back(
          d_env->is_assumption_literal(t) ? t : assumption_proxy(t));
    } else if ((tag == SymbolTag::TRUE) == negated && falsity == nullptr) {
      falsity = t;
    }
  }
  if (falsity == nullptr) {
    run_check(&d_assumptions);
    return;
  }
  d_model_available = false;
  d_last_result = 0;
  d_false_assumption = falsity;
  d_response.clear();
  d_response.kind = SmtLib2Response::Kind::CheckSat;
  d_response.text = result_text(0);
  compare_with_status();
}

// The proxy's implication stays on the stack at the current level; it
// constrains nothing but a constant no one else mentions, whose name the
// model leaves out.
const Term_* SmtLib2Interface::assumption_proxy(const Term_* formula) {
  TermManager& tm = d_env->get_term_manager();
  const Symbol* s = tm.make_unique_symbol(
      ".assumption" + std::to_string(++d_num_assumption_proxies),
      tm.get_bool_type());
  const Term_* proxy = tm.make_constant(s);
  d_env->assert_formula(tm.make_or(tm.make_not(proxy), formula));
  d_assumption_proxies.emplace_back(proxy, formula);
  return proxy;
}

void SmtLib2Interface::run_check(const TermList* assumptions) {
  d_env_fresh = false;
  init_env();
  install_termination_test();
  d_model_available = false;
  d_last_result = -1;
  d_false_assumption = nullptr;
  int result = solve_now(assumptions);
  d_last_result = result;
  d_model_available = result > 0;
  d_response.clear();
  d_response.kind = SmtLib2Response::Kind::CheckSat;
  d_response.text = result_text(result);
  if (d_show_model && result > 0) {
    collect_check_model();
  }
  compare_with_status();
}

// Returns: 1 sat, 0 unsat, -1 unknown with the reason kept.
int SmtLib2Interface::solve_now(const TermList* assumptions) {
  d_reason_unknown.clear();
  try {
    int r = assumptions != nullptr ? d_env->check_with_assumptions(*assumptions)
                                   : d_env->check();
    if (r < 0) {
      d_reason_unknown = "incomplete";
    }
    if (r > 0 && !d_refused.empty()) {
      // Unsat of a part is unsat of the whole; sat of a part is nothing.
      d_reason_unknown =
          "an assertion was refused: " + d_refused.front().message;
      return -1;
    }
    return r;
  } catch (const TerminationTest::terminated& e) {
    d_reason_unknown = e.message();
  } catch (const std::bad_alloc&) {
    d_reason_unknown = "memout";
  } catch (const Unsupported&) {
    throw;  // a missing service is the script's error, not an answer
  } catch (const Environment::bad_assumption&) {
    throw;
  } catch (const Exception& e) {
    if (is_internal_error(e)) {
      throw;
    }
    d_reason_unknown = e.message();
  }
  return -1;
}

// The run's limits hold for every check; :timeout adds one of its own,
// which restarts at each check.
void SmtLib2Interface::install_termination_test() {
  if (d_limits == nullptr && d_time_limit_ms != 0) {
    d_limits = make_new_termination_test();
  }
  if (d_limits == nullptr) {
    return;
  }
  d_limits->set_query_limit_ms(d_time_limit_ms);
  d_limits->start_query();
  d_env->set_termination_test(d_limits->active() ? d_limits.get() : nullptr);
}

// The pairs printed under "sat" with -model. When the model cannot be had
// the answer stands, and the reason follows it.
void SmtLib2Interface::collect_check_model() {
  d_response.show_model = true;
  try {
    TermManager& tm = d_env->get_term_manager();
    for (const auto& [term, value] : d_env->get_model_assignments()) {
      if (!should_skip_term(term)) {
        d_response.pairs.emplace_back(
            print_term(term),
            value_text(tm, *d_printer, value, term->get_type()));
      }
    }
  } catch (const Exception& e) {
    d_response.pairs.clear();
    d_response.model_error = e.message();
  }
}

void SmtLib2Interface::compare_with_status() {
  if (d_last_result < 0 || (d_status != "sat" && d_status != "unsat")) {
    return;
  }
  std::string got = result_text(d_last_result);
  if (got != d_status) {
    d_response.set_error("expected status was " + d_status + ", got " + got
                         + " instead");
  }
}

}  // namespace zenlo
