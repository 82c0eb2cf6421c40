// The interpreter's run: the command loop, the answers, the environment's
// making and dropping, and the commands that concern the run itself (gc,
// print-stats, echo, exit, reset).
#include "frontend/smtlib2interface.h"

#include <iomanip>
#include <iostream>
#include <new>
#include <sstream>

#include "base/terminationtest.h"
#include "env/environment.h"
#include "frontend/tlemmadump.h"

namespace zenlo {

SmtLib2Interface::SmtLib2Interface(Configuration* config,
                                   ConfigurationSetter* setter,
                                   uint32_t gc_period)
    : SmtLib2Interface(config, setter, std::cout, std::cerr) {
  d_gc_period = gc_period;
}

SmtLib2Interface::SmtLib2Interface(Configuration* config,
                                   ConfigurationSetter* setter,
                                   std::ostream& out,
                                   std::ostream& diag)
    : d_config(config),
      d_setter(setter),
      d_out(&out),
      d_diag(&diag),
      d_session_start(get_cpu_time_sec()) {
  if (d_setter == nullptr) {
    d_own_setter = std::make_unique<CConfigurationSetter>();
    d_setter = d_own_setter.get();
  }
  fill_info_table();
}

SmtLib2Interface::~SmtLib2Interface() {
  // What lives on the term store goes before the store.
  d_printer.reset();
  d_sorts.reset();
  d_terms.reset();
  d_env.reset();
}

// ---------------------------------------------------------------------------
// The run
// ---------------------------------------------------------------------------

int SmtLib2Interface::solve(std::istream& in,
                            bool show_model,
                            uint64_t timeout_sec,
                            uint64_t mem_limit_mb) {
  d_show_model = show_model;
  d_run_timeout_sec = timeout_sec;
  d_run_mem_limit_mb = mem_limit_mb;
  if (timeout_sec != 0 || mem_limit_mb != 0) {
    d_limits = make_new_termination_test();
  }
  main_loop(in);
  return 0;
}

void SmtLib2Interface::main_loop(std::istream& in) {
  SmtLib2Scanner scanner(in);
  d_stop = false;
  d_response.clear();
  // The logger and the interpreter agree on the verbosity from the start.
  set_verbosity(d_config->verbosity);
  d_response.clear();
  while (!d_stop) {
    try {
      if (!parse_command(scanner)) {
        break;
      }
    } catch (const std::bad_alloc&) {
      recover_after_error("out of memory");
      skip_command(scanner);
      continue;
    } catch (const Unsupported& e) {
      recover_after_error(e.message(), true);
      skip_command(scanner);
      continue;
    } catch (const Exception& e) {
      recover_after_error(e.message());
      skip_command(scanner);
      continue;
    }
    print_response();
  }
}

void SmtLib2Interface::print_response() {
  d_response.print(*d_out, d_print_success, d_printer_config.model_as_formula);
  d_response.clear();
}

// A command failed: its answer is the error alone, and the names it opened
// while reading are gone (the reader unwound them; this also drops what a
// failure in the middle of a binding may have left). A refusal answers
// `unsupported`; its text goes to the diagnostic channel.
void SmtLib2Interface::recover_after_error(const std::string& message,
                                           bool unsupported) {
  if (unsupported) {
    d_response.clear();
    d_response.kind = SmtLib2Response::Kind::Unsupported;
    *d_diag << "unsupported: " << message << std::endl;
  } else {
    d_response.set_error(message);
  }
  print_response();
  if (d_terms != nullptr) {
    d_terms->clear_scopes();
  }
  d_parsing_values = false;
}

void SmtLib2Interface::print_stats(std::ostream& out,
                                   double cpu_seconds,
                                   uint64_t mem_bytes) {
  out << ";; statistics\n(\n";
  if (d_env != nullptr) {
    d_env->print_stats(out, " ");
  }
  std::ios::fmtflags flags = out.flags();
  std::streamsize precision = out.precision();
  out << std::fixed << std::setprecision(3) << " :time-seconds " << cpu_seconds
      << "\n :memory-mb " << static_cast<double>(mem_bytes) / (1 << 20) << "\n)"
      << std::endl;
  out.flags(flags);
  out.precision(precision);
}

void SmtLib2Interface::print_error(std::ostream& out,
                                   const std::string& message) {
  out << "(error " << smtlib_string(message) << ")" << std::endl;
}

// ---------------------------------------------------------------------------
// The environment
// ---------------------------------------------------------------------------

Environment* SmtLib2Interface::make_new_environment() {
  auto* env = new Environment(*d_config);
  env->set_theory_fact_sink(std::make_unique<TlemmaFileWriter>());
  return env;
}

void SmtLib2Interface::init_env() {
  if (d_env != nullptr) {
    return;
  }
  if (!d_config_read) {
    try {
      d_setter->update_config(*d_config);
    } catch (const ConfigurationSetter::warning&) {
      // The entries that failed were reported when the file was read;
      // the configuration is complete.
    }
    d_config_read = true;
  }
  std::unique_ptr<Environment> env(make_new_environment());
  TermManager* tm = &env->get_term_manager();
  auto terms = std::make_unique<SmtLibTermParser>(tm);
  auto sorts = std::make_unique<SmtLibSorts>(tm);
  // Answers print values whole: no definitions, hence no prefix.
  d_printer_config = env->get_config().printer;
  d_printer_config.defines_prefix.clear();
  d_printer = std::make_unique<SmtLib2TermPrinter>(tm, &d_printer_config);
  d_env = std::move(env);
  d_terms = std::move(terms);
  d_sorts = std::move(sorts);
  d_session_start = get_cpu_time_sec();
  if (d_limits != nullptr) {
    d_env->set_termination_test(d_limits.get());
  }
  d_env_fresh = true;
}

TermManager& SmtLib2Interface::term_manager() {
  init_env();
  return d_env->get_term_manager();
}

std::unique_ptr<ToplevelInterface::TimeMemLimitTest>
SmtLib2Interface::make_new_termination_test() {
  return std::make_unique<TimeMemLimitTest>(d_run_timeout_sec,
                                            d_run_mem_limit_mb << 20);
}

void SmtLib2Interface::push_backtrack_point(Environment* env) {
  env->push_backtrack_point();
}

void SmtLib2Interface::pop_backtrack_point(Environment* env) {
  env->pop_backtrack_point();
}

bool SmtLib2Interface::should_skip_term(const Term_*) {
  return false;
}

bool SmtLib2Interface::opt_handle_option(const std::string&,
                                         const std::string&) {
  return false;
}

void SmtLib2Interface::cmd_reset() {
  d_printer.reset();
  d_sorts.reset();
  d_terms.reset();
  d_env.reset();
  reset_session_state();
}

// What belongs to one problem: its names, answers and expectations. The
// settings of the run stay.
void SmtLib2Interface::reset_session_state() {
  d_logic.clear();
  d_last_result = -1;
  d_status.clear();
  d_reason_unknown.clear();
  d_model_available = false;
  d_function_scopes.clear();
  d_sort_scopes.clear();
  d_groups.clear();
  d_named.clear();
  d_assumptions.clear();
  d_false_assumption = nullptr;
  d_assumption_proxies.clear();
  d_parsed_terms.clear();
  d_pops_since_gc = 0;
  d_refused.clear();
  d_depth = 0;
}

void SmtLib2Interface::do_gc() {
  throw Unsupported("garbage collection is not supported yet");
}

// ---------------------------------------------------------------------------
// Commands of the run
// ---------------------------------------------------------------------------

void SmtLib2Interface::exit() {
  d_stop = true;
}

void SmtLib2Interface::reset() {
  cmd_reset();
}

void SmtLib2Interface::echo(const std::string& text) {
  d_response.kind = SmtLib2Response::Kind::Text;
  d_response.text = text;
}

void SmtLib2Interface::generic_command(const std::string& name) {
  if (name == "gc") {
    cmd_gc();
  } else if (name == "print-stats") {
    cmd_print_stats();
  } else if (name == "reset") {
    cmd_reset();
  } else {
    throw error("unknown command: " + name);
  }
}

void SmtLib2Interface::generic_command(const std::string& name,
                                       const std::vector<std::string>& texts) {
  if (name == "echo") {
    // (echo "text") has its own operation; this is every other form.
    if (texts.size() != 1) {
      throw error("invalid numer of arguments for `echo' command");
    }
    throw error("the argument of `echo' must be a string");
  }
  throw error("unknown command: " + name);
}

void SmtLib2Interface::cmd_gc() {
  d_response.clear();
  init_env();
  do_gc();
}

void SmtLib2Interface::cmd_print_stats() {
  print_stats(
      *d_out, get_cpu_time_sec() - d_session_start, get_mem_used_bytes());
}

const Term_* SmtLib2Interface::parse(std::istream& in) {
  main_loop(in);
  return nullptr;
}

ParserInterface::Status SmtLib2Interface::get_status() const {
  if (d_status == "sat") {
    return ParserInterface::Status::Sat;
  }
  return d_status == "unsat" ? ParserInterface::Status::Unsat
                             : ParserInterface::Status::Unknown;
}

}  // namespace zenlo
