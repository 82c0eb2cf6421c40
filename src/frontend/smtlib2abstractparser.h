// The SMT-LIB 2 grammar, written once, and the outward contract of every
// client of it. SmtLib2AbstractParser reads one command per call of
// parse_command and hands what it read to its virtual operations: the
// library client (SmtLib2Parser) collects the formulas of a script, the
// command interpreter carries every command out as soon as it is read.
//
// The reader is iterative: terms, sorts and attribute values are read with
// explicit stacks, so nesting depth is bounded by memory, not by the call
// stack. It builds nothing itself: every term, sort and binding goes
// through the virtual operations below, which is where a client decides
// what a name means.
//
// Deliberate readings of the standard:
// - `let` binds in parallel: every binding term is read before any of the
//   names is defined, so (let ((x y) (y x)) ...) swaps.
// - Command names are reserved only at the head of a command; a user may
//   call a constant `push` or `reset`.
// - Missing numerals in (push), (pop) and (declare-sort s) read as 1, 1
//   and 0.
#ifndef ZENLO_FRONTEND_SMTLIB2ABSTRACTPARSER_H
#define ZENLO_FRONTEND_SMTLIB2ABSTRACTPARSER_H

#include <cstddef>
#include <istream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/parserinterface.h"
#include "frontend/smtlib2scanner.h"
#include "terms/term.h"
#include "terms/typeuniverse.h"

namespace zenlo {

class TermManager;

// A read-only view of consecutive elements, so the reader can hand the
// arguments of a term straight from its stack without copying them.
template <class T>
class Span {
 public:
  Span() = default;

  Span(const T* data, size_t size) : d_data(data), d_size(size) {}

  Span(const std::vector<T>& v)  // NOLINT: vectors convert implicitly
      : d_data(v.data()), d_size(v.size()) {}

  size_t size() const { return d_size; }

  bool empty() const { return d_size == 0; }

  const T& operator[](size_t i) const { return d_data[i]; }

  const T* begin() const { return d_data; }

  const T* end() const { return d_data + d_size; }

  const T& back() const { return d_data[d_size - 1]; }

  std::vector<T> to_vector() const { return std::vector<T>(begin(), end()); }

 private:
  const T* d_data = nullptr;
  size_t d_size = 0;
};

using TermArgs = Span<const Term_*>;
// Indices of an indexed identifier, as written: (_ extract 7 0) has "7"
// and "0".
using IndexArgs = Span<std::string_view>;
using SortList = std::vector<const Type*>;

// One attribute of an annotated term (! t :key value). The key keeps its
// colon; the value is the source text of the attribute value, rebuilt
// with single blanks, empty when there is none.
struct Attribute {
  std::string key;
  std::string value;
};

using AttributeList = std::vector<Attribute>;

// The attributes of the objective commands.
struct OptAttributes {
  std::string id;  // :id, empty when not given
  bool is_signed = false;
  const Term_* weight = nullptr;   // :weight, or null
  const Term_* dweight = nullptr;  // :dweight, or null
};

class SmtLib2AbstractParser {
 public:
  // A sort with parameters, from define-sort or a declare-sort of nonzero
  // arity: a pattern type in which placeholder types stand for the
  // parameters.
  class ParametricType {
   public:
    ParametricType(TermManager* tm,
                   const Type* pattern,
                   std::vector<const Type*> params);

    size_t num_params() const { return d_params.size(); }

    const Type* get_pattern() const { return d_pattern; }

    const std::vector<const Type*>& get_params() const { return d_params; }

    // Returns: the pattern with each parameter replaced by its image.
    // Requires: every key of the map is a parameter.
    const Type* instantiate(const hsh::HashMap<const Type*, const Type*>& map);

    // The same with the parameters' images in order.
    const Type* instantiate(const SortList& args);

   private:
    const Type* rebuild(const Type* t, const std::vector<const Type*>& comps);

    TermManager* d_tm;
    const Type* d_pattern;
    std::vector<const Type*> d_params;
  };

  SmtLib2AbstractParser();
  virtual ~SmtLib2AbstractParser();
  SmtLib2AbstractParser(const SmtLib2AbstractParser&) = delete;
  SmtLib2AbstractParser& operator=(const SmtLib2AbstractParser&) = delete;

  // ------------------------------------------------------------------
  // The reader.
  // ------------------------------------------------------------------

  // Reads one command from `scanner` and carries it out.
  // - Returns: false when the input ended before a command began.
  // - Throws: ParserInterface::error, with " (line: N)" ending the message,
  //   for bad text, a syntax error, or a failure while reading a term,
  //   sort or binding; any ParserInterface::error that a command raises
  //   gets the line too. Other exceptions raised by the command's own
  //   action (after it was read in full) pass unchanged.
  //   The line is in the message already (and in error::line): a client
  //   prints the message as it stands.
  // - After a throw: the let namespaces, function parameters, sort
  //   parameters and bound variables the command opened are popped again
  //   through the virtual operations; skip_command() then skips what is
  //   left of it.
  bool parse_command(SmtLib2Scanner& scanner);

  // Skips the rest of a command whose parse_command threw, up to its
  // closing parenthesis (or the end of the input).
  void skip_command(SmtLib2Scanner& scanner);

  // Reads every command of `text` on a scanner of its own; this is how a
  // client parses the texts of get-value as ".internal-parse-terms"
  // commands in a scope it chooses. Nests inside a running command.
  // - Throws: as parse_command; the line numbers are those of `text`.
  void parse_nested(const std::string& text);

  // Reads one term, which must be all that `scanner` holds.
  const Term_* parse_single_term(SmtLib2Scanner& scanner);

  // The line of the command being read, 0 outside of one.
  int current_line() const;

  // ------------------------------------------------------------------
  // Commands. The operations are called once their command has been read
  // in full, in the order of the script.
  // ------------------------------------------------------------------

  virtual void set_logic(const std::string& name) = 0;
  virtual void declare_sort(const std::string& name, size_t arity) = 0;
  virtual void declare_enum_sort(const std::string& name,
                                 const std::vector<std::string>& values) = 0;
  // `sort` was read with the parameters standing for the placeholder
  // types of push_sort_parameters.
  virtual void define_sort(const std::string& name,
                           const std::vector<std::string>& params,
                           const Type* sort) = 0;
  // `type` is the sort of a constant or a function type.
  virtual void declare_function(const std::string& name, const Type* type) = 0;
  virtual void define_function(const std::string& name,
                               const Type* sort,
                               const Term_* body) = 0;
  // `params` are the variables of make_fresh_variable that stood for the
  // parameters while the body was read.
  virtual void define_function(const std::string& name,
                               const TermList& params,
                               const Type* sort,
                               const Term_* body) = 0;
  virtual void push(size_t n) = 0;
  virtual void pop(size_t n) = 0;
  virtual void assert_formula(const Term_* term) = 0;
  virtual void check_sat() = 0;
  virtual void get_assertions() = 0;
  virtual void get_unsat_core() = 0;
  virtual void get_proof() = 0;
  // The value of set-option goes by its form: a numeral to the integer
  // overload, a decimal to the double one, the symbols true and false to
  // the integers 1 and 0, none to the double 0.0, other symbols and
  // strings to the string one.
  virtual void set_option(const std::string& name,
                          const std::string& value) = 0;
  virtual void set_option(const std::string& name, long value) = 0;
  virtual void set_option(const std::string& name, double value) = 0;
  virtual void get_info(const std::string& key) = 0;
  // The value is the text of a numeral, decimal or symbol, the content of
  // a string, or the source text of a list.
  virtual void set_info(const std::string& key, const std::string& value) = 0;
  virtual void get_assignment() = 0;
  virtual void get_model() = 0;
  // Each text is the source of one term, rebuilt with single blanks; it is
  // parsed later, by the client, through parse_nested.
  virtual void get_value(const std::vector<std::string>& texts) = 0;
  virtual void exit() = 0;
  virtual void get_interpolant(const std::vector<std::string>& texts) = 0;
  virtual void check_allsat(const TermList& terms) = 0;
  virtual void check_sat_assumptions(const TermList& terms) = 0;
  virtual void get_unsat_assumptions() = 0;
  virtual void reset_assertions() = 0;
  // Commands the grammar does not know: (name) and (name texts...).
  virtual void generic_command(const std::string& name) = 0;
  virtual void generic_command(const std::string& name,
                               const std::vector<std::string>& texts) = 0;

  // Called on every syntax error with its message. The default throws
  // ParserInterface::error; an override must throw as well.
  virtual void handle_error(const std::string& message);

  // Called when an assert command fails, with the failure's message, before
  // the failure is reported. The default does nothing.
  virtual void assertion_refused(const std::string& message);

  // ------------------------------------------------------------------
  // Names and terms. These are called while a command is read.
  // ------------------------------------------------------------------

  // A let (is_function false) or the parameters of a define-fun (true).
  virtual void push_let_namespace(bool is_function) = 0;
  virtual void pop_let_namespace(bool is_function) = 0;
  virtual void push_bound_variable(std::string_view name, const Term_* var) = 0;
  virtual void pop_bound_variables(size_t n) = 0;

  // `sort` is the sort an "as" asked for, or null.
  virtual const Term_* make_term(std::string_view name, const Type* sort) = 0;
  virtual const Term_* make_term(std::string_view name,
                                 const Type* sort,
                                 IndexArgs indices) = 0;
  virtual const Term_* make_term(std::string_view name,
                                 const Type* sort,
                                 TermArgs args) = 0;
  virtual const Term_* make_term(std::string_view name,
                                 const Type* sort,
                                 IndexArgs indices,
                                 TermArgs args) = 0;
  // A numeral or decimal.
  virtual const Term_* make_number_term(std::string_view text) = 0;
  // A bit-vector literal: the digits after "#b" (base 2) or "#x" (16).
  virtual const Term_* make_number_term(std::string_view text,
                                        size_t width,
                                        int base) = 0;
  virtual const Term_* make_fresh_variable(const Type* sort) = 0;
  virtual const Term_* make_named_variable(std::string_view name,
                                           const Type* sort) = 0;
  // Quantifies `body` over `vars`, the first outermost. The reader pops
  // the bound variables itself afterwards.
  virtual const Term_* make_forall_term(const TermList& vars,
                                        const Term_* body) = 0;
  virtual const Term_* make_exists_term(const TermList& vars,
                                        const Term_* body) = 0;
  virtual const Term_* annotate_term(const Term_* term,
                                     const AttributeList& attributes) = 0;
  virtual void define_let_binding(std::string_view name,
                                  const Term_* term,
                                  bool is_function_argument) = 0;

  virtual const Type* make_sort(std::string_view name) = 0;
  virtual const Type* make_sort(std::string_view name,
                                const std::vector<std::string>& indices) = 0;
  virtual const Type* make_parametric_sort(std::string_view name,
                                           const SortList& sorts) = 0;
  // One entry: the sort itself; more: the function type from all but the
  // last to the last.
  virtual const Type* make_function_sort(const SortList& sorts) = 0;
  // The parameters of a define-sort, in scope while its body is read.
  virtual void push_sort_parameters(const std::vector<std::string>& names) = 0;
  virtual void pop_sort_parameters() = 0;

  // The terms of ".internal-parse-terms" (get-value's own command).
  virtual void internal_set_parsed_terms(const TermList& terms) = 0;

  // ------------------------------------------------------------------
  // Objectives.
  // ------------------------------------------------------------------

  virtual void push_minimize(const Term_* term,
                             const OptAttributes& attributes) = 0;
  virtual void push_maximize(const Term_* term,
                             const OptAttributes& attributes) = 0;
  virtual void push_minmax(const TermList& terms,
                           const OptAttributes& attributes) = 0;
  virtual void push_maxmin(const TermList& terms,
                           const OptAttributes& attributes) = 0;
  virtual void assert_soft_formula(const Term_* term,
                                   const OptAttributes& attributes) = 0;
  virtual void get_objectives() = 0;
  virtual void load_objective_model(const std::string& text) = 0;

  // ------------------------------------------------------------------
  // Commands the grammar reads as generic ones. The defaults pass them to
  // generic_command, with the string of echo in its quoted form.
  // ------------------------------------------------------------------

  virtual void echo(const std::string& text);
  virtual void get_option(const std::string& key);
  virtual void reset();

  virtual const Term_* parse(std::istream& in) = 0;
  virtual std::string get_logic() const = 0;
  virtual ParserInterface::Status get_status() const = 0;

 protected:
  // The reader's own throw: handle_error, then an error in case it
  // returned.
  [[noreturn]] void fail(const std::string& message);

 private:
  struct Reader;
  class Grammar;
  friend class Grammar;

  Reader& reader();

  std::vector<std::unique_ptr<Reader>> d_readers;
  size_t d_level = 0;
};

// The source text of an SMT-LIB symbol: the name itself when it is a
// simple symbol, else between bars with each bar inside escaped.
std::string quote_symbol(std::string_view name);

// The name a symbol's source text stands for: the text itself, or the
// name between the bars of a quoted symbol (as attribute values keep it).
std::string unquote_symbol(std::string_view text);

// Whether `name` is a command the grammar knows (check-sat-assuming too).
bool is_command_name(std::string_view name);

}  // namespace zenlo

#endif
