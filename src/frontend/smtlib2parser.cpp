// The library client of the SMT-LIB 2 reader.
#include "frontend/smtlib2parser.h"

#include <algorithm>

namespace zenlo {

using perror = ParserInterface::error;

SmtLib2Parser::SmtLib2Parser(TermManager* tm)
    : d_tm(tm), d_terms(tm), d_sorts(tm) {}

SmtLib2Parser::~SmtLib2Parser() = default;

TermList SmtLib2Parser::parse_list(std::istream& in) {
  SmtLib2Scanner scanner(in);
  d_stop = false;
  while (!d_stop && parse_command(scanner)) {
  }
  TermList out;
  out.swap(d_formulas);
  return out;
}

const Term_* SmtLib2Parser::parse(std::istream& in) {
  TermList formulas = parse_list(in);
  if (formulas.size() == 1) {
    return formulas[0];
  }
  const Term_* r = d_tm->make_true();
  for (const Term_* f : formulas) {
    r = d_tm->make_and(r, f);
  }
  return r;
}

const Term_* SmtLib2Parser::parse_term(std::istream& in) {
  SmtLib2Scanner scanner(in);
  return parse_single_term(scanner);
}

ParserInterface::Status SmtLib2Parser::get_status() const {
  if (d_status == "sat") {
    return Status::Sat;
  }
  return d_status == "unsat" ? Status::Unsat : Status::Unknown;
}

const AttributeList* SmtLib2Parser::get_annotations(const Term_* t) const {
  return d_annotations.get(t);
}

TermList SmtLib2Parser::get_annotated_terms() const {
  TermList out;
  for (const auto& e : d_annotations) {
    out.push_back(e.first);
  }
  std::sort(out.begin(), out.end(), [](const Term_* a, const Term_* b) {
    return a->get_id() < b->get_id();
  });
  return out;
}

void SmtLib2Parser::unsupported(const std::string& name) {
  throw perror("unsupported command: " + name);
}

// ----------------------------------------------------------------------
// Commands
// ----------------------------------------------------------------------

void SmtLib2Parser::set_logic(const std::string& name) {
  if (!d_logic_allowed) {
    throw perror("set-logic is invalid at this point");
  }
  d_logic = name;
  d_logic_allowed = false;
}

void SmtLib2Parser::declare_sort(const std::string& name, size_t arity) {
  no_more_logic();
  declaring([&] { d_sorts.declare_sort(name, arity); });
}

void SmtLib2Parser::declare_enum_sort(const std::string& name,
                                      const std::vector<std::string>& values) {
  no_more_logic();
  declaring([&] { d_sorts.declare_enum_sort(name, values); });
}

void SmtLib2Parser::define_sort(const std::string& name,
                                const std::vector<std::string>& params,
                                const Type* sort) {
  no_more_logic();
  declaring([&] { d_sorts.define_sort(name, params, sort); });
}

void SmtLib2Parser::declare_function(const std::string& name,
                                     const Type* type) {
  no_more_logic();
  declaring([&] { d_terms.declare_function(name, type); });
}

void SmtLib2Parser::define_function(const std::string& name,
                                    const Type* sort,
                                    const Term_* body) {
  define_function(name, TermList(), sort, body);
}

void SmtLib2Parser::define_function(const std::string& name,
                                    const TermList& params,
                                    const Type* sort,
                                    const Term_* body) {
  no_more_logic();
  if (!d_tm->is_subtype(body->get_type(), sort)) {
    throw perror("the body of `" + name + "' has type "
                 + body->get_type()->to_str() + ", but " + sort->to_str()
                 + " was declared");
  }
  declaring([&] { d_terms.define_binding(name, params, body); });
}

void SmtLib2Parser::push(size_t) {
  unsupported("push");
}

void SmtLib2Parser::pop(size_t) {
  unsupported("pop");
}

void SmtLib2Parser::assert_formula(const Term_* term) {
  no_more_logic();
  if (term->get_type() != d_tm->get_bool_type()) {
    throw perror("assert of a term that is not a formula: "
                 + term->to_shallow_str());
  }
  d_formulas.push_back(term);
}

void SmtLib2Parser::set_info(const std::string& key, const std::string& value) {
  if (key == ":status") {
    d_status = value;
  }
}

void SmtLib2Parser::generic_command(const std::string& name) {
  unsupported(name);
}

void SmtLib2Parser::generic_command(const std::string& name,
                                    const std::vector<std::string>&) {
  unsupported(name);
}

void SmtLib2Parser::internal_set_parsed_terms(const TermList&) {
  unsupported(".internal-parse-terms");
}

void SmtLib2Parser::push_minimize(const Term_*, const OptAttributes&) {
  unsupported("minimize");
}

void SmtLib2Parser::push_maximize(const Term_*, const OptAttributes&) {
  unsupported("maximize");
}

void SmtLib2Parser::push_minmax(const TermList&, const OptAttributes&) {
  unsupported("minmax");
}

void SmtLib2Parser::push_maxmin(const TermList&, const OptAttributes&) {
  unsupported("maxmin");
}

void SmtLib2Parser::assert_soft_formula(const Term_*, const OptAttributes&) {
  unsupported("assert-soft");
}

void SmtLib2Parser::get_objectives() {
  unsupported("get-objectives");
}

void SmtLib2Parser::load_objective_model(const std::string&) {
  unsupported("load-objective-model");
}

// ----------------------------------------------------------------------
// Terms, bindings and sorts
// ----------------------------------------------------------------------

const Term_* SmtLib2Parser::make_term(std::string_view name, const Type* sort) {
  return d_terms.make_term(name, sort, IndexArgs(), TermArgs());
}

const Term_* SmtLib2Parser::make_term(std::string_view name,
                                      const Type* sort,
                                      IndexArgs indices) {
  return d_terms.make_term(name, sort, indices, TermArgs());
}

const Term_* SmtLib2Parser::make_term(std::string_view name,
                                      const Type* sort,
                                      TermArgs args) {
  return d_terms.make_term(name, sort, IndexArgs(), args);
}

const Term_* SmtLib2Parser::make_term(std::string_view name,
                                      const Type* sort,
                                      IndexArgs indices,
                                      TermArgs args) {
  return d_terms.make_term(name, sort, indices, args);
}

const Term_* SmtLib2Parser::make_number_term(std::string_view text) {
  return d_terms.make_number_term(text);
}

const Term_* SmtLib2Parser::make_number_term(std::string_view text,
                                             size_t width,
                                             int base) {
  return d_terms.make_number_term(text, width, base);
}

const Term_* SmtLib2Parser::make_fresh_variable(const Type* sort) {
  return d_tm->make_fresh_variable(sort);
}

const Term_* SmtLib2Parser::make_named_variable(std::string_view name,
                                                const Type* sort) {
  return d_tm->make_named_variable(name, sort);
}

const Term_* SmtLib2Parser::make_forall_term(const TermList& vars,
                                             const Term_* body) {
  return d_terms.make_quantifier_term(true, vars, body);
}

const Term_* SmtLib2Parser::make_exists_term(const TermList& vars,
                                             const Term_* body) {
  return d_terms.make_quantifier_term(false, vars, body);
}

const Term_* SmtLib2Parser::annotate_term(const Term_* term,
                                          const AttributeList& attributes) {
  for (const Attribute& a : attributes) {
    if (a.key == ":named" && !a.value.empty()) {
      std::string name = unquote_symbol(a.value);
      if (d_terms.has_binding(name) || d_tm->find_symbol(name) != nullptr
          || d_terms.is_builtin(name)) {
        throw perror("name `" + name + "' already used");
      }
      define_function(name, term->get_type(), term);
      d_named.push_back(NamedTerm{name, term});
    }
    d_annotations[term].push_back(a);
  }
  return term;
}

void SmtLib2Parser::define_let_binding(std::string_view name,
                                       const Term_* term,
                                       bool is_function_argument) {
  d_terms.define_let_binding(name, term, is_function_argument);
}

const Type* SmtLib2Parser::make_sort(std::string_view name) {
  return d_sorts.make_sort(name);
}

const Type* SmtLib2Parser::make_sort(std::string_view name,
                                     const std::vector<std::string>& indices) {
  return d_sorts.make_sort(name, indices);
}

const Type* SmtLib2Parser::make_parametric_sort(std::string_view name,
                                                const SortList& sorts) {
  return d_sorts.make_parametric_sort(name, sorts);
}

const Type* SmtLib2Parser::make_function_sort(const SortList& sorts) {
  return d_sorts.make_function_sort(sorts);
}

void SmtLib2Parser::push_sort_parameters(
    const std::vector<std::string>& names) {
  d_sorts.push_sort_parameters(names);
}

void SmtLib2Parser::pop_sort_parameters() {
  d_sorts.pop_sort_parameters();
}

}  // namespace zenlo
