// Answers the check-sat commands of an SMT-LIB 2 script with the library's
// reader and one Environment: a stand-in for the command interpreter, so
// that benchmark sets can be measured and checked before it exists.
//
// Assertions are kept per scope; a check-sat sends the new ones to the
// environment, and after a pop or a check-sat-assuming the environment
// starts over from the assertions in force. A reset starts over with a new
// environment and reader. Queries other than check-sat (get-value,
// get-model, ...) are read and print nothing. An error prints (error "...")
// and ends the run with status 1.
//
//   smt2_check FILE [-stats] [-name=value ...]
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "base/configurationsetter.h"
#include "env/environment.h"
#include "frontend/smtlib2parser.h"
#include "frontend/smtlib2scanner.h"

using namespace zenlo;

namespace {

class CheckingScript : public SmtLib2Parser {
 public:
  CheckingScript(Environment& env, bool stats)
      : SmtLib2Parser(&env.get_term_manager()), d_env(env), d_stats(stats) {}

  void push(size_t n) override {
    for (size_t i = 0; i < n; ++i) {
      d_scopes.push_back(d_assertions.size());
    }
  }

  void pop(size_t n) override {
    if (n > d_scopes.size()) {
      throw ParserInterface::error("pop of more scopes than were pushed");
    }
    for (size_t i = 0; i < n; ++i) {
      d_assertions.resize(d_scopes.back());
      d_scopes.pop_back();
    }
    if (d_assertions.size() < d_sent) {
      d_restart = true;
    }
  }

  void assert_formula(const Term_* term) override {
    if (term->get_type() != d_tm->get_bool_type()) {
      throw ParserInterface::error("assert of a term that is not a formula");
    }
    d_assertions.push_back(term);
  }

  void check_sat() override { answer({}); }

  void check_sat_assumptions(const TermList& terms) override { answer(terms); }

  void reset_assertions() override {
    d_assertions.clear();
    d_scopes.clear();
    d_restart = true;
  }

  void exit() override { d_exit = true; }

  void reset() override { d_reset = true; }

  bool exit_requested() const { return d_exit; }

  bool reset_requested() const { return d_reset; }

  void generic_command(const std::string&) override {}

  void generic_command(const std::string&,
                       const std::vector<std::string>&) override {}

 private:
  void answer(const TermList& assumptions) {
    if (d_restart) {
      d_env.reset_assertions();
      d_sent = 0;
      d_restart = false;
    }
    for (; d_sent < d_assertions.size(); ++d_sent) {
      d_env.assert_formula(d_assertions[d_sent]);
    }
    for (const Term_* a : assumptions) {
      d_env.assert_formula(a);
      d_restart = true;
    }
    int r = d_env.check();
    std::cout << (r == 1 ? "sat" : r == 0 ? "unsat" : "unknown") << std::endl;
    if (d_stats) {
      d_env.print_stats(std::cerr, "");
    }
  }

  Environment& d_env;
  TermList d_assertions;
  std::vector<size_t> d_scopes;
  size_t d_sent = 0;
  bool d_restart = false;
  bool d_stats;
  bool d_exit = false;
  bool d_reset = false;
};

std::string quoted(const std::string& s) {
  std::string out;
  for (char c : s) {
    out += c == '"' ? std::string("\"\"") : std::string(1, c);
  }
  return out;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: smt2_check FILE [-name=value ...]\n";
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  if (!in) {
    std::cout << "(error \"cannot open " << quoted(argv[1]) << "\")\n";
    return 1;
  }
  try {
    Configuration config;
    config.allow_bool_function_args = true;
    CConfigurationSetter setter;
    bool stats = false;
    for (int k = 2; k < argc; ++k) {
      std::string opt = argv[k];
      if (opt == "-stats") {
        stats = true;
        continue;
      }
      size_t eq = opt.find('=');
      if (opt.size() < 2 || opt[0] != '-' || eq == std::string::npos) {
        throw Exception("bad option " + opt);
      }
      setter.set_option(opt.substr(1, eq - 1), opt.substr(eq + 1));
    }
    setter.update_config(config);
    SmtLib2Scanner scanner(in);
    auto env = std::make_unique<Environment>(config);
    auto script = std::make_unique<CheckingScript>(*env, stats);
    while (script->parse_command(scanner) && !script->exit_requested()) {
      if (script->reset_requested()) {
        script.reset();
        env = std::make_unique<Environment>(config);
        script = std::make_unique<CheckingScript>(*env, stats);
      }
    }
  } catch (const std::exception& e) {
    std::cout << "(error \"" << quoted(e.what()) << "\")" << std::endl;
    return 1;
  }
  return 0;
}
