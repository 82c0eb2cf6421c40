// set-option, get-option, set-info, get-info and set-logic.
//
// Options that decide what the search records reach the configuration
// through the setter, at the caller's priority, so that a later reading of
// the setter (after :config) keeps them; they are refused once the
// environment exists. The solver's own options can be set by their dotted
// names, as on the command line: (set-option :dpll.restart_strategy 1).
#include <algorithm>
#include <cctype>
#include <cmath>
#include <iostream>
#include <sstream>

#include "base/identity.h"
#include "env/environment.h"
#include "frontend/smtlib2interface.h"

namespace zenlo {

namespace {

using Kind = SmtLib2Response::Kind;

// The priority of the items of :config: under the command line's own.
constexpr int kConfigAttributePriority = 1;

const char* bool_text(bool b) {
  return b ? "true" : "false";
}

// Whether `text` can stand in an answer as it is: a numeral, a decimal, a
// simple symbol, a keyword or a list; anything else is quoted.
// Numerals and decimals print bare: "2.6", not "|2.6|".
bool is_decimal_numeral(const std::string& text) {
  size_t i = 0;
  while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) {
    ++i;
  }
  if (i == 0) {
    return false;
  }
  if (i == text.size()) {
    return true;
  }
  if (text[i] != '.' || i + 1 == text.size()) {
    return false;
  }
  for (++i; i < text.size(); ++i) {
    if (!std::isdigit(static_cast<unsigned char>(text[i]))) {
      return false;
    }
  }
  return true;
}

bool is_plain_value(const std::string& text) {
  if (text.empty()) {
    return false;
  }
  if (text.front() == '(' || text.front() == '"') {
    return true;
  }
  if (is_decimal_numeral(text)) {
    return true;
  }
  std::string body = text.front() == ':' ? text.substr(1) : text;
  return !body.empty() && quote_symbol(body) == body;
}

// Captures the current value of one option from a dump of the
// configuration.
class OptionValueCapture : public ConfigEntryPrinter {
 public:
  explicit OptionValueCapture(std::string name) : d_name(std::move(name)) {}

  bool found = false;
  std::string value;

  void print_bool(std::ostream&, const std::string& n, bool v) override {
    take(n, bool_text(v));
  }

  void print_int(std::ostream&, const std::string& n, long v) override {
    take(n, std::to_string(v));
  }

  void print_unsigned(std::ostream&,
                      const std::string& n,
                      unsigned long v) override {
    take(n, std::to_string(v));
  }

  void print_float(std::ostream&, const std::string& n, double v) override {
    std::ostringstream s;
    s << v;
    take(n, s.str());
  }

  void print_string(std::ostream&,
                    const std::string& n,
                    const std::string& v) override {
    take(n, smtlib_string(v));
  }

 private:
  void take(const std::string& n, std::string v) {
    if (n == d_name) {
      found = true;
      value = std::move(v);
    }
  }

  std::string d_name;
};

}  // namespace

// ---------------------------------------------------------------------------
// set-logic
// ---------------------------------------------------------------------------

// Any name is accepted: the logic only chooses the section of the
// configuration that applies on top of the unnamed one, and a logic with no
// section of its own runs with the general settings.
void SmtLib2Interface::set_logic(const std::string& name) {
  if (d_env != nullptr) {
    throw error("set-logic is invalid at this point");
  }
  d_logic = name;
  d_setter->set_active_config(name);
  d_config_read = false;
  init_env();
}

// ---------------------------------------------------------------------------
// set-option
// ---------------------------------------------------------------------------

// Scripts often set options right after set-logic. While nothing lives on
// the environment it is dropped, and the caller builds it again with the
// new setting; after that the setting is refused.
// Returns: whether the environment was dropped.
bool SmtLib2Interface::too_late(const std::string& option) {
  if (d_env == nullptr) {
    return false;
  }
  if (!d_env_fresh) {
    throw error("too late for setting " + option);
  }
  d_printer.reset();
  d_sorts.reset();
  d_terms.reset();
  d_env.reset();
  return true;
}

void SmtLib2Interface::set_config_option(const std::string& smt_name,
                                         const std::string& name,
                                         const std::string& value) {
  const bool rebuild = too_late(smt_name);
  d_config_read = false;
  try {
    d_setter->set_option(name, value, ConfigurationSetter::kUserPriority);
  } catch (...) {
    if (rebuild) {
      init_env();
    }
    throw;
  }
  if (rebuild) {
    init_env();
  }
}

void SmtLib2Interface::set_option(const std::string& name, long value) {
  const bool on = value != 0;
  if (name == ":print-success") {
    d_print_success = on;
  } else if (name == ":verbosity") {
    set_verbosity(value);
  } else if (name == ":produce-assignments") {
    set_config_option(name, "bool_model_generation", bool_text(on));
    d_config->bool_model_generation = on;
  } else if (name == ":produce-models") {
    set_config_option(name, "model_generation", bool_text(on));
    d_config->model_generation = on;
  } else if (name == ":produce-unsat-cores") {
    set_config_option(name, "unsat_core_generation", on ? "1" : "0");
    d_config->unsat_core_generation = on ? 1 : 0;
  } else if (name == ":produce-interpolants") {
    set_config_option(name, "interpolation", bool_text(on));
    d_config->interpolation = on;
  } else if (name == ":global-decls" || name == ":global-declarations") {
    // The switch only says how this interpreter keeps its names, so it
    // may change after set-logic, as long as no name or level would have
    // to be kept otherwise than it was.
    if (!d_function_scopes.empty() || !d_sort_scopes.empty()
        || (d_env != nullptr && d_env->num_backtrack_points() > 0)) {
      throw error("too late for setting :global-declarations");
    }
    d_global_declarations = on;
  } else if (name == ":produce-unsat-assumptions") {
    d_produce_unsat_assumptions = on;
  } else if (name == ":produce-proofs") {
    // Proofs are not produced; asking for none is fine.
    if (on) {
      d_response.kind = Kind::Unsupported;
    }
  } else if (name == ":random-seed") {
    set_config_option(name, "random_seed", std::to_string(value));
    d_config->random_seed = value;
  } else if (name == ":timeout") {
    set_timeout_seconds(static_cast<double>(value));
  } else if (!opt_handle_option(name, std::to_string(value))
             && !set_dotted_option(name, std::to_string(value))) {
    d_response.kind = Kind::Unsupported;
  }
}

void SmtLib2Interface::set_option(const std::string& name, double value) {
  if (name == ":timeout") {
    set_timeout_seconds(value);
    return;
  }
  std::ostringstream text;
  text << value;
  if (!opt_handle_option(name, text.str())
      && !set_dotted_option(name, text.str())) {
    d_response.kind = Kind::Unsupported;
  }
}

void SmtLib2Interface::set_option(const std::string& name,
                                  const std::string& value) {
  if (name == ":regular-output-channel"
      || name == ":diagnostic-output-channel") {
    set_channel(name, value);
  } else if (name == ":timeout") {
    if (value != "none") {
      throw error("invalid value for :timeout option");
    }
    set_timeout_seconds(0);
  } else if (name == ":config") {
    set_config_list(value);
  } else if (!opt_handle_option(name, value)
             && !set_dotted_option(name, value)) {
    d_response.kind = Kind::Unsupported;
  }
}

void SmtLib2Interface::set_verbosity(long level) {
  int v = static_cast<int>(std::max(0L, std::min(level, 2L)));
  d_config->verbosity = v;
  if (d_env != nullptr) {
    d_env->get_logger().set_verbosity(v);
  }
}

void SmtLib2Interface::set_timeout_seconds(double seconds) {
  if (seconds < 0 || std::isnan(seconds)) {
    throw error("invalid value for :timeout option");
  }
  d_time_limit_ms = static_cast<uint64_t>(std::llround(seconds * 1000));
}

void SmtLib2Interface::set_channel(const std::string& option,
                                   const std::string& value) {
  bool regular = option == ":regular-output-channel";
  std::ostream* stream = nullptr;
  std::unique_ptr<std::ofstream> file;
  if (value == "stdout") {
    stream = &std::cout;
  } else if (value == "stderr") {
    stream = &std::cerr;
  } else {
    // Appended to, so that a script cannot wipe a file by naming it.
    file = std::make_unique<std::ofstream>(value, std::ios::app);
    if (!*file) {
      throw error("Impossible to open `" + value + "' as " + option);
    }
    stream = file.get();
  }
  (regular ? d_out : d_diag)->flush();
  (regular ? d_out : d_diag) = stream;
  (regular ? d_out_file : d_diag_file) = std::move(file);
  (regular ? d_out_name : d_diag_name) = value;
}

// ":config" "a=1,b.c=2": the items go to the setter, under the command
// line's own settings, and reach the configuration with the environment.
void SmtLib2Interface::set_config_list(const std::string& value) {
  const bool rebuild = too_late(":config");
  std::istringstream items(value);
  std::string item;
  try {
    while (std::getline(items, item, ',')) {
      size_t eq = item.find('=');
      if (eq == std::string::npos || eq == 0) {
        throw error(item);
      }
      d_setter->set_option(
          item.substr(0, eq), item.substr(eq + 1), kConfigAttributePriority);
    }
  } catch (const Exception&) {
    d_config_read = false;
    if (rebuild) {
      init_env();
    }
    throw error("bad value for :config option: " + value);
  }
  d_config_read = false;
  if (rebuild) {
    init_env();
  }
}

bool SmtLib2Interface::set_dotted_option(const std::string& name,
                                         const std::string& value) {
  std::string key = name.size() > 1 && name[0] == ':' ? name.substr(1) : "";
  const OptionParser::Option* opt = d_setter->parser().get_option(key);
  if (key.find('.') == std::string::npos || opt == nullptr) {
    return false;
  }
  std::string text = value;
  if (opt->kind == OptionParser::Kind::Bool && (value == "0" || value == "1")) {
    text = bool_text(value == "1");
  }
  const bool rebuild = too_late(name);
  d_config_read = false;
  try {
    d_setter->set_option(key, text, ConfigurationSetter::kUserPriority);
  } catch (const Exception& e) {
    if (rebuild) {
      init_env();
    }
    throw error(e.message());
  }
  if (rebuild) {
    init_env();
  }
  return true;
}

// ---------------------------------------------------------------------------
// get-option
// ---------------------------------------------------------------------------

void SmtLib2Interface::get_option(const std::string& key) {
  std::string value;
  if (get_standard_option(key, value) || get_dotted_option(key, value)) {
    d_response.kind = Kind::Text;
    d_response.text = value;
  } else {
    d_response.kind = Kind::Unsupported;
  }
}

bool SmtLib2Interface::get_standard_option(const std::string& key,
                                           std::string& value) const {
  const Configuration& c = *d_config;
  const std::map<std::string, std::string> options = {
      {":print-success", bool_text(d_print_success)},
      {":produce-models", bool_text(c.model_generation)},
      {":produce-assignments", bool_text(c.bool_model_generation)},
      {":produce-unsat-cores", bool_text(c.unsat_core_generation != 0)},
      {":produce-interpolants", bool_text(c.interpolation)},
      {":produce-proofs", bool_text(false)},
      {":produce-unsat-assumptions", bool_text(d_produce_unsat_assumptions)},
      {":global-declarations", bool_text(d_global_declarations)},
      {":global-decls", bool_text(d_global_declarations)},
      {":verbosity", std::to_string(c.verbosity)},
      {":random-seed", std::to_string(c.random_seed)},
      {":regular-output-channel", smtlib_string(d_out_name)},
      {":diagnostic-output-channel", smtlib_string(d_diag_name)},
  };
  auto it = options.find(key);
  if (it != options.end()) {
    value = it->second;
    return true;
  }
  if (key == ":timeout") {
    std::ostringstream s;
    s << static_cast<double>(d_time_limit_ms) / 1000;
    value = d_time_limit_ms == 0 ? "none" : s.str();
    return true;
  }
  return false;
}

bool SmtLib2Interface::get_dotted_option(const std::string& key,
                                         std::string& value) const {
  if (key.size() < 2 || key.find('.') == std::string::npos) {
    return false;
  }
  OptionValueCapture capture(key.substr(1));
  std::ostringstream ignored;
  d_setter->dump(*d_config, ignored, capture);
  value = capture.value;
  return capture.found;
}

// ---------------------------------------------------------------------------
// set-info and get-info
// ---------------------------------------------------------------------------

void SmtLib2Interface::fill_info_table() {
  d_info[":error-behavior"] = "continued-execution";
  d_info[":error-behaviour"] = "continued-execution";
  d_info[":name"] = smtlib_string("Zenlo");
  d_info[":authors"] = smtlib_string(program_authors());
  d_info[":version"] = smtlib_string(program_version());
  d_info[":license"] = smtlib_string(program_license());
}

void SmtLib2Interface::set_info(const std::string& key,
                                const std::string& value) {
  if (key == ":status") {
    if (value != "sat" && value != "unsat" && value != "unknown") {
      throw error("bad value `" + value + "' for :status info");
    }
    d_status = value == "unknown" ? std::string() : value;
  }
  d_info[key] = is_plain_value(value) ? value : smtlib_string(value);
}

void SmtLib2Interface::get_info(const std::string& key) {
  d_response.kind = Kind::Info;
  if (key == ":assertion-stack-levels") {
    size_t levels = d_env != nullptr ? d_env->num_backtrack_points() : 0;
    d_response.pairs.emplace_back(key, std::to_string(levels));
  } else if (key == ":all-statistics") {
    info_statistics();
  } else if (key == ":reason-unknown") {
    info_reason_unknown();
  } else if (d_info.count(key) != 0) {
    d_response.pairs.emplace_back(key, d_info[key]);
  } else {
    d_response.kind = Kind::Unsupported;
  }
}

void SmtLib2Interface::info_statistics() {
  if (d_env != nullptr) {
    d_response.pairs = d_env->get_stats();
  }
  std::ostringstream time, memory;
  time.setf(std::ios::fixed);
  memory.setf(std::ios::fixed);
  time.precision(3);
  memory.precision(3);
  time << get_cpu_time_sec() - d_session_start;
  memory << static_cast<double>(get_mem_used_bytes()) / (1 << 20);
  d_response.pairs.emplace_back(":time-seconds", time.str());
  d_response.pairs.emplace_back(":memory-mb", memory.str());
}

void SmtLib2Interface::info_reason_unknown() {
  if (d_last_result >= 0 || d_reason_unknown.empty()) {
    throw error("no reason to give: the last check did not answer unknown");
  }
  const std::string& r = d_reason_unknown;
  d_response.pairs.emplace_back(":reason-unknown",
                                is_plain_value(r) ? r : smtlib_string(r));
}

}  // namespace zenlo
