// check-sat and check-sat-assuming: the limits of the check, the answer,
// the model that -model prints, and the comparison with :status.
//
// A check that cannot reach a definite answer is no failure of the script:
// the environment refusing atoms that no theory solver decides, a limit,
// or memory running out all answer unknown, and the reason is kept for
// get-info :reason-unknown. Only a request the environment cannot serve at
// all (a missing service) is an error.
#include <new>

#include "api/environment.h"
#include "api/terminationtest.h"
#include "frontend/smtlib2interface.h"
#include "frontend/smtlib2model.h"

namespace zenlo {

namespace {

const char* result_text(int result) {
  return result > 0 ? "sat" : result == 0 ? "unsat" : "unknown";
}

// The environment's services that are still being filled in answer
// "... is not supported yet" before any work is done.
bool is_missing_service(const Exception& e) {
  const std::string suffix = " is not supported yet";
  const std::string& m = e.message();
  return m.size() >= suffix.size()
         && m.compare(m.size() - suffix.size(), suffix.size(), suffix) == 0;
}

}  // namespace

void SmtLib2Interface::check_sat() {
  run_check(nullptr);
}

void SmtLib2Interface::check_sat_assumptions(const TermList& terms) {
  d_assumptions = terms;
  run_check(&d_assumptions);
}

void SmtLib2Interface::run_check(const TermList* assumptions) {
  init_env();
  install_termination_test();
  d_model_available = false;
  d_last_result = -1;
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
    return r;
  } catch (const TerminationTest::terminated& e) {
    d_reason_unknown = e.message();
  } catch (const std::bad_alloc&) {
    d_reason_unknown = "memout";
  } catch (const Exception& e) {
    if (is_missing_service(e)) {
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
