// The library's SMT-LIB 2 reader: reads a whole script and keeps what it
// asserts, with the names and annotations of its terms. This is what
// zenlo_from_smtlib2 and its sisters run. It solves nothing: queries such
// as check-sat or get-model are read and ignored, so a complete benchmark
// script reads as it stands, while commands that would change the meaning
// of the assertions (push, pop, objectives, unknown commands) are refused.
#ifndef ZENLO_FRONTEND_SMTLIB2PARSER_H
#define ZENLO_FRONTEND_SMTLIB2PARSER_H

#include <istream>
#include <string>
#include <vector>

#include "frontend/parserinterface.h"
#include "frontend/smtlib2abstractparser.h"
#include "frontend/smtlibsorts.h"
#include "frontend/smtlibtermparser.h"

namespace zenlo {

class SmtLib2Parser : public SmtLib2AbstractParser, public ParserInterface {
 public:
  struct NamedTerm {
    std::string name;
    const Term_* term;
  };

  // Requires: `tm` outlives the parser.
  explicit SmtLib2Parser(TermManager* tm);
  ~SmtLib2Parser() override;

  // Reads the script up to its end or its (exit).
  // - Returns: one formula per assert, in order.
  // - Throws: ParserInterface::error at the first failing command; the
  //   parser is then to be thrown away.
  TermList parse_list(std::istream& in);
  // The same, as the conjunction of the formulas: `true` for none, the
  // formula itself for one, else left-nested from `true`.
  const Term_* parse(std::istream& in) override;
  // Reads one term written over the symbols already declared.
  const Term_* parse_term(std::istream& in);

  std::string get_logic() const override { return d_logic; }

  // From (set-info :status ...): sat, unsat, anything else unknown.
  Status get_status() const override;

  // The :named terms, in the order of the script.
  const std::vector<NamedTerm>& get_named_terms() const { return d_named; }

  // The attributes given to t, or null.
  const AttributeList* get_annotations(const Term_* t) const;
  // Every annotated term, by increasing id.
  TermList get_annotated_terms() const;

  SmtLibTermParser& get_term_parser() { return d_terms; }

  SmtLibSorts& get_sorts() { return d_sorts; }

  // ------------------------------------------------------------------
  // The operations of the reader.
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

  void check_sat() override { ignored(); }

  void get_assertions() override { ignored(); }

  void get_unsat_core() override { ignored(); }

  void get_proof() override { ignored(); }

  void set_option(const std::string&, const std::string&) override {
    ignored();
  }

  void set_option(const std::string&, long) override { ignored(); }

  void set_option(const std::string&, double) override { ignored(); }

  void get_info(const std::string&) override { ignored(); }

  void set_info(const std::string& key, const std::string& value) override;

  void get_assignment() override { ignored(); }

  void get_model() override { ignored(); }

  void get_value(const std::vector<std::string>&) override { ignored(); }

  void exit() override { d_stop = true; }

  void get_interpolant(const std::vector<std::string>&) override { ignored(); }

  void check_allsat(const TermList&) override { ignored(); }

  void check_sat_assumptions(const TermList&) override { ignored(); }

  void get_unsat_assumptions() override { ignored(); }

  void reset_assertions() override { ignored(); }

  void generic_command(const std::string& name) override;
  void generic_command(const std::string& name,
                       const std::vector<std::string>& texts) override;

  void push_let_namespace(bool) override { d_terms.push_let_namespace(); }

  void pop_let_namespace(bool) override { d_terms.pop_let_namespace(); }

  void push_bound_variable(std::string_view name, const Term_* var) override {
    d_terms.push_bound_variable(name, var);
  }

  void pop_bound_variables(size_t n) override {
    d_terms.pop_bound_variables(n);
  }

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
  void push_minimize(const Term_*, const OptAttributes&) override;
  void push_maximize(const Term_*, const OptAttributes&) override;
  void push_minmax(const TermList&, const OptAttributes&) override;
  void push_maxmin(const TermList&, const OptAttributes&) override;
  void assert_soft_formula(const Term_*, const OptAttributes&) override;
  void get_objectives() override;
  void load_objective_model(const std::string&) override;

 protected:
  // Queries that a script may hold but that mean nothing here.
  void ignored() {}

  // - Throws: ParserInterface::error "unsupported command: " + name.
  [[noreturn]] void unsupported(const std::string& name);

  TermManager* d_tm;

 private:
  void no_more_logic() { d_logic_allowed = false; }

  SmtLibTermParser d_terms;
  SmtLibSorts d_sorts;
  TermList d_formulas;
  std::vector<NamedTerm> d_named;
  hsh::HashMap<const Term_*, AttributeList> d_annotations;
  std::string d_logic;
  std::string d_status;
  bool d_logic_allowed = true;
  bool d_stop = false;
};

}  // namespace zenlo

#endif
