// Names, terms and sorts of the interpreter: the reader's requests go to
// the name machinery on the environment's term store. The first request
// makes the environment, so that the terms of a script and of its checks
// live in one store.
#include "env/environment.h"
#include "frontend/smtlib2interface.h"

namespace zenlo {

void SmtLib2Interface::push_let_namespace(bool) {
  init_env();
  d_terms->push_let_namespace();
}

void SmtLib2Interface::pop_let_namespace(bool) {
  if (d_terms != nullptr) {
    d_terms->pop_let_namespace();
  }
}

void SmtLib2Interface::push_bound_variable(std::string_view name,
                                           const Term_* var) {
  init_env();
  d_terms->push_bound_variable(name, var);
}

void SmtLib2Interface::pop_bound_variables(size_t n) {
  if (d_terms != nullptr) {
    d_terms->pop_bound_variables(n);
  }
}

const Term_* SmtLib2Interface::make_term(std::string_view name,
                                         const Type* sort) {
  return make_term(name, sort, IndexArgs(), TermArgs());
}

const Term_* SmtLib2Interface::make_term(std::string_view name,
                                         const Type* sort,
                                         IndexArgs indices) {
  return make_term(name, sort, indices, TermArgs());
}

const Term_* SmtLib2Interface::make_term(std::string_view name,
                                         const Type* sort,
                                         TermArgs args) {
  return make_term(name, sort, IndexArgs(), args);
}

const Term_* SmtLib2Interface::make_term(std::string_view name,
                                         const Type* sort,
                                         IndexArgs indices,
                                         TermArgs args) {
  init_env();
  return d_terms->make_term(name, sort, indices, args);
}

const Term_* SmtLib2Interface::make_number_term(std::string_view text) {
  init_env();
  return d_terms->make_number_term(text);
}

const Term_* SmtLib2Interface::make_number_term(std::string_view text,
                                                size_t width,
                                                int base) {
  init_env();
  return d_terms->make_number_term(text, width, base);
}

const Term_* SmtLib2Interface::make_fresh_variable(const Type* sort) {
  return term_manager().make_fresh_variable(sort);
}

const Term_* SmtLib2Interface::make_named_variable(std::string_view name,
                                                   const Type* sort) {
  return term_manager().make_named_variable(name, sort);
}

const Term_* SmtLib2Interface::make_forall_term(const TermList& vars,
                                                const Term_* body) {
  init_env();
  return d_terms->make_quantifier_term(true, vars, body);
}

const Term_* SmtLib2Interface::make_exists_term(const TermList& vars,
                                                const Term_* body) {
  init_env();
  return d_terms->make_quantifier_term(false, vars, body);
}

void SmtLib2Interface::define_let_binding(std::string_view name,
                                          const Term_* term,
                                          bool is_function_argument) {
  init_env();
  d_terms->define_let_binding(name, term, is_function_argument);
}

const Type* SmtLib2Interface::make_sort(std::string_view name) {
  init_env();
  return d_sorts->make_sort(name);
}

const Type* SmtLib2Interface::make_sort(
    std::string_view name, const std::vector<std::string>& indices) {
  init_env();
  return d_sorts->make_sort(name, indices);
}

const Type* SmtLib2Interface::make_parametric_sort(std::string_view name,
                                                   const SortList& sorts) {
  init_env();
  return d_sorts->make_parametric_sort(name, sorts);
}

const Type* SmtLib2Interface::make_function_sort(const SortList& sorts) {
  init_env();
  return d_sorts->make_function_sort(sorts);
}

void SmtLib2Interface::push_sort_parameters(
    const std::vector<std::string>& names) {
  init_env();
  d_sorts->push_sort_parameters(names);
}

void SmtLib2Interface::pop_sort_parameters() {
  if (d_sorts != nullptr) {
    d_sorts->pop_sort_parameters();
  }
}

}  // namespace zenlo
