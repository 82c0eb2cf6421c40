// The SMT-LIB 2 command interpreter: what the command-line solver runs on
// an SMT-LIB 2 script. Each command is read by the grammar, carried out on
// one Environment, and answered on the regular output channel before the
// next command is read, so a script can be driven interactively through a
// pipe.
//
// The environment is made when the first command needs it (a declaration,
// an assertion, a check, set-logic), so options set before that point
// still shape it; options that fix what the search records are refused
// afterwards ("too late for setting ..."). The interpreter keeps the
// script's names itself: define-fun bindings and sorts in an
// SmtLibTermParser and an SmtLibSorts on the environment's term store,
// declarations made since each push in two vectors with a mark per push,
// so that a pop undeclares them (unless :global-declarations is on).
//
// A failing command answers (error "...") and the script goes on with the
// next one. A check that the environment cannot decide (no theory solver
// for its atoms, a limit reached) answers unknown, and get-info
// :reason-unknown says why.
//
// The optimising interpreter derives from this class and replaces what
// concerns objectives through the protected virtual operations.
#ifndef ZENLO_FRONTEND_SMTLIB2INTERFACE_H
#define ZENLO_FRONTEND_SMTLIB2INTERFACE_H

#include <cstdint>
#include <fstream>
#include <istream>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/configuration.h"
#include "base/configurationsetter.h"
#include "base/exception.h"
#include "frontend/smtlib2abstractparser.h"
#include "frontend/smtlib2response.h"
#include "frontend/smtlibsorts.h"
#include "frontend/smtlibtermparser.h"
#include "frontend/termprinter.h"
#include "frontend/toplevelinterface.h"

namespace zenlo {

class Environment;

class SmtLib2Interface : public ToplevelInterface,
                         public SmtLib2AbstractParser {
 public:
  // Failures of a command that are not about the text of the script:
  // printed without a line number.
  ZENLO_DECLARE_ERROR;

  struct NamedTerm {
    std::string name;
    const Term_* term;
  };

  // The command-line interpreter: answers on standard output, diagnostics
  // on standard error; `setter` as below; a garbage collection every
  // `gc_period` checks (0 for none).
  // - Requires: `config` and `setter` outlive the interface.
  SmtLib2Interface(Configuration* config,
                   ConfigurationSetter* setter,
                   uint32_t gc_period);

  // An interpreter on given channels; `setter` (which :config and dotted
  // options write to) may be null, and the interface then has its own.
  // - Requires: everything given outlives the interface.
  SmtLib2Interface(Configuration* config,
                   ConfigurationSetter* setter,
                   std::ostream& out,
                   std::ostream& diag);

  ~SmtLib2Interface() override;

  // ------------------------------------------------------------------
  // The run.
  // ------------------------------------------------------------------

  // Runs the script of `in` to its end or its (exit), with the limits of
  // the command line over the whole run.
  // - Returns: 0; every failure of a command is answered in the script.
  // - Throws: Exception "Memory limit not supported on this platform!".
  int solve(std::istream& in,
            bool show_model,
            uint64_t timeout_sec,
            uint64_t mem_limit_mb) override;
  // ";; statistics" and a list of the environment's counters, with the
  // time and memory given.
  void print_stats(std::ostream& out,
                   double cpu_seconds,
                   uint64_t mem_bytes) override;
  void print_error(std::ostream& out, const std::string& message) override;

  // Runs the commands of `in`, answering each, until its end or (exit).
  void main_loop(std::istream& in);

  // Performs garbage collection after every `period` pops (0: never).
  void set_gc_period(uint32_t period) { d_gc_period = period; }

  // Returns: the environment, or null before the first command needed it.
  Environment* get_environment() const { return d_env.get(); }

  // ------------------------------------------------------------------
  // Commands.
  // ------------------------------------------------------------------

  void set_logic(const std::string& name) override;
  void declare_sort(const std::string& name, size_t arity) override;
  void declare_enum_sort(const std::string& name,
                         const std::vector<std::string>& values) override;
  void define_sort(const std::string& name,
                   const std::vector<std::string>& params,
                   const Type* sort) override;
  void declare_function(const std::string& name, const Type* type) override;
  void define_function(const std::string& name,
                       const Type* sort,
                       const Term_* body) override;
  void define_function(const std::string& name,
                       const TermList& params,
                       const Type* sort,
                       const Term_* body) override;
  void push(size_t n) override;
  void pop(size_t n) override;
  void assert_formula(const Term_* term) override;
  void check_sat() override;
  void get_assertions() override;
  void get_unsat_core() override;
  void get_proof() override;
  void set_option(const std::string& name, const std::string& value) override;
  void set_option(const std::string& name, long value) override;
  void set_option(const std::string& name, double value) override;
  void get_info(const std::string& key) override;
  void set_info(const std::string& key, const std::string& value) override;
  void get_assignment() override;
  void get_model() override;
  void get_value(const std::vector<std::string>& texts) override;
  void exit() override;
  void get_interpolant(const std::vector<std::string>& texts) override;
  void check_allsat(const TermList& terms) override;
  void check_sat_assumptions(const TermList& terms) override;
  void get_unsat_assumptions() override;
  void reset_assertions() override;
  void assertion_refused(const std::string& message) override;
  void generic_command(const std::string& name) override;
  void generic_command(const std::string& name,
                       const std::vector<std::string>& texts) override;
  void echo(const std::string& text) override;
  void get_option(const std::string& key) override;
  void reset() override;

  // ------------------------------------------------------------------
  // Names and terms, on the environment's term store.
  // ------------------------------------------------------------------

  void push_let_namespace(bool is_function) override;
  void pop_let_namespace(bool is_function) override;
  void push_bound_variable(std::string_view name, const Term_* var) override;
  void pop_bound_variables(size_t n) override;
  const Term_* make_term(std::string_view name, const Type* sort) override;
  const Term_* make_term(std::string_view name,
                         const Type* sort,
                         IndexArgs indices) override;
  const Term_* make_term(std::string_view name,
                         const Type* sort,
                         TermArgs args) override;
  const Term_* make_term(std::string_view name,
                         const Type* sort,
                         IndexArgs indices,
                         TermArgs args) override;
  const Term_* make_number_term(std::string_view text) override;
  const Term_* make_number_term(std::string_view text,
                                size_t width,
                                int base) override;
  const Term_* make_fresh_variable(const Type* sort) override;
  const Term_* make_named_variable(std::string_view name,
                                   const Type* sort) override;
  const Term_* make_forall_term(const TermList& vars,
                                const Term_* body) override;
  const Term_* make_exists_term(const TermList& vars,
                                const Term_* body) override;
  const Term_* annotate_term(const Term_* term,
                             const AttributeList& attributes) override;
  void define_let_binding(std::string_view name,
                          const Term_* term,
                          bool is_function_argument) override;
  const Type* make_sort(std::string_view name) override;
  const Type* make_sort(std::string_view name,
                        const std::vector<std::string>& indices) override;
  const Type* make_parametric_sort(std::string_view name,
                                   const SortList& sorts) override;
  const Type* make_function_sort(const SortList& sorts) override;
  void push_sort_parameters(const std::vector<std::string>& names) override;
  void pop_sort_parameters() override;
  void internal_set_parsed_terms(const TermList& terms) override;

  // ------------------------------------------------------------------
  // Objectives: the plain interpreter has none.
  // ------------------------------------------------------------------

  void push_minimize(const Term_*, const OptAttributes&) override;
  void push_maximize(const Term_*, const OptAttributes&) override;
  void push_minmax(const TermList&, const OptAttributes&) override;
  void push_maxmin(const TermList&, const OptAttributes&) override;
  void assert_soft_formula(const Term_*, const OptAttributes&) override;
  void get_objectives() override;
  void load_objective_model(const std::string&) override;

  // A whole script is not read into one formula here.
  const Term_* parse(std::istream& in) override;

  std::string get_logic() const override { return d_logic; }

  ParserInterface::Status get_status() const override;

 protected:
  // ------------------------------------------------------------------
  // Customisation points, in this order.
  // ------------------------------------------------------------------

  virtual Environment* make_new_environment();
  virtual void push_backtrack_point(Environment* env);
  virtual void pop_backtrack_point(Environment* env);
  // A test with the limits of the run (the command line's).
  // - Throws: Exception "Memory limit not supported on this platform!".
  virtual std::unique_ptr<TimeMemLimitTest> make_new_termination_test();
  // Whether get-model leaves `term` out.
  virtual bool should_skip_term(const Term_* term);
  void add_unmet_symbols(
      std::vector<std::pair<const Term_*, const Term_*>>& model);
  // Returns: true when the option was taken.
  virtual bool opt_handle_option(const std::string& name,
                                 const std::string& value);
  // (reset): drops the environment and everything on it; the settings
  // stay.
  virtual void cmd_reset();
  // Makes the environment, its parser and printer, unless they exist.
  // A failure leaves no environment, and the next command tries again.
  virtual void init_env();

  // Collects the garbage of the term store.
  // - Throws: error while the environment offers no collection.
  virtual void do_gc();

  // ------------------------------------------------------------------
  // For subclasses.
  // ------------------------------------------------------------------

  SmtLib2Response& response() { return d_response; }

  TermManager& term_manager();

  SmtLib2TermPrinter& printer() { return *d_printer; }

  const Configuration& config() const { return *d_config; }

  bool model_available() const { return d_model_available; }

 private:
  // Running commands (smtlib2interface.cpp).
  void print_response();
  void recover_after_error(const std::string& message,
                           bool unsupported = false);
  void cmd_gc();
  void cmd_print_stats();
  void reset_session_state();

  // Declarations and scopes (smtlib2interface_scopes.cpp).
  void record_function(const std::string& name);
  void record_sort(const std::string& name);
  void undeclare_function(const std::string& name);
  void undo_scopes_to_mark();
  void undo_all_scopes();
  void define_named_term(const std::string& name, const Term_* term);
  void set_interpolation_group(const std::string& name);

  // Checks (smtlib2interface_check.cpp).
  void run_check(const TermList* assumptions);
  const Term_* assumption_proxy(const Term_* formula);
  int solve_now(const TermList* assumptions);
  void install_termination_test();
  void collect_check_model();
  void compare_with_status();

  // Options and info (smtlib2interface_options.cpp).
  void fill_info_table();
  bool too_late(const std::string& option);
  void set_config_option(const std::string& smt_name,
                         const std::string& name,
                         const std::string& value);
  void set_verbosity(long level);
  void set_timeout_seconds(double seconds);
  void set_channel(const std::string& option, const std::string& value);
  void set_config_list(const std::string& value);
  bool set_dotted_option(const std::string& name, const std::string& value);
  bool get_standard_option(const std::string& key, std::string& value) const;
  bool get_dotted_option(const std::string& key, std::string& value) const;
  void info_statistics();
  void info_reason_unknown();

  // Queries of a model (smtlib2interface_queries.cpp).
  void require_model() const;
  bool model_queries_enabled() const;
  TermList parse_value_terms(const std::vector<std::string>& texts);
  std::string print_term(const Term_* t);

  // ---- settings ----
  Configuration* d_config;
  ConfigurationSetter* d_setter;
  std::unique_ptr<ConfigurationSetter> d_own_setter;
  // Whether the setter's entries have reached the configuration since the
  // last change through :config, a dotted option or set-logic.
  bool d_config_read = false;
  bool d_print_success = false;
  bool d_global_declarations = false;
  bool d_produce_unsat_assumptions = false;
  bool d_show_model = false;
  uint32_t d_gc_period = 0;
  uint32_t d_pops_since_gc = 0;
  bool d_gc_warned = false;
  // :timeout of each check, in milliseconds; 0 is none.
  uint64_t d_time_limit_ms = 0;

  // ---- channels ----
  std::ostream* d_out;
  std::ostream* d_diag;
  std::unique_ptr<std::ofstream> d_out_file;
  std::unique_ptr<std::ofstream> d_diag_file;
  std::string d_out_name = "stdout";
  std::string d_diag_name = "stderr";

  // ---- limits ----
  uint64_t d_run_timeout_sec = 0;
  uint64_t d_run_mem_limit_mb = 0;
  std::unique_ptr<TimeMemLimitTest> d_limits;

  // ---- the environment and what lives on its term store ----
  std::unique_ptr<Environment> d_env;
  std::unique_ptr<SmtLibTermParser> d_terms;
  std::unique_ptr<SmtLibSorts> d_sorts;
  Configuration::Printer d_printer_config;
  std::unique_ptr<SmtLib2TermPrinter> d_printer;
  double d_session_start = 0;

  // ---- the script's state ----
  SmtLib2Response d_response;
  bool d_stop = false;
  std::string d_logic;
  int d_last_result = -1;  // 1 sat, 0 unsat, -1 unknown
  std::string d_status;    // from :status, empty when unknown
  std::string d_reason_unknown;

  // Assert commands that failed, by the push depth they failed at: while
  // one is in scope, sat is not an answer, since the script meant more.
  struct RefusedAssertion {
    size_t depth;
    std::string message;
  };

  std::vector<RefusedAssertion> d_refused;
  size_t d_depth = 0;
  bool d_model_available = false;
  // Nothing lives on the environment yet: no name, assertion, level or
  // check since it was made.
  bool d_env_fresh = false;
  std::map<std::string, std::string> d_info;
  // Names declared since the start and since each push; "" marks a push.
  std::vector<std::string> d_function_scopes;
  std::vector<std::string> d_sort_scopes;
  std::unordered_map<std::string, int> d_groups;
  std::vector<NamedTerm> d_named;
  TermList d_assumptions;
  // The assumption false (or (not true)) that decided the last check.
  const Term_* d_false_assumption = nullptr;
  // Constants assumed in place of the formulas of the last check.
  std::vector<std::pair<const Term_*, const Term_*>> d_assumption_proxies;
  uint64_t d_num_assumption_proxies = 0;
  // get-value's terms, read back through ".internal-parse-terms".
  bool d_parsing_values = false;
  TermList d_parsed_terms;
};

}  // namespace zenlo

#endif
