// Declarations, definitions, assertions and the scopes that push and pop
// open and close. A name made since the last push is recorded in one of two
// vectors (functions and sorts), where an empty string marks each push; a
// pop walks back to the mark and undeclares what it passes. With
// :global-declarations nothing is recorded, so names outlive every pop.
#include <algorithm>

#include "env/environment.h"
#include "frontend/smtlib2interface.h"

namespace zenlo {

using perror = ParserInterface::error;

// ---------------------------------------------------------------------------
// Declarations and definitions
// ---------------------------------------------------------------------------

void SmtLib2Interface::declare_function(const std::string& name,
                                        const Type* type) {
  d_env_fresh = false;
  TermManager& tm = term_manager();
  // A repeated declaration with the same type gives the old symbol, which
  // belongs to the scope that made it first.
  bool existed = tm.find_symbol(name) != nullptr;
  declaring([&] { d_terms->declare_function(name, type); });
  if (!existed) {
    record_function(name);
  }
}

void SmtLib2Interface::define_function(const std::string& name,
                                       const Type* sort,
                                       const Term_* body) {
  d_env_fresh = false;
  define_function(name, TermList(), sort, body);
}

void SmtLib2Interface::define_function(const std::string& name,
                                       const TermList& params,
                                       const Type* sort,
                                       const Term_* body) {
  d_env_fresh = false;
  TermManager& tm = term_manager();
  if (!tm.is_subtype(body->get_type(), sort)) {
    throw perror("the body of `" + name + "' has type "
                 + body->get_type()->to_str() + ", but " + sort->to_str()
                 + " was declared");
  }
  declaring([&] { d_terms->define_binding(name, params, body); });
  record_function(name);
}

void SmtLib2Interface::declare_sort(const std::string& name, size_t arity) {
  d_env_fresh = false;
  init_env();
  declaring([&] { d_sorts->declare_sort(name, arity); });
  record_sort(name);
}

void SmtLib2Interface::declare_enum_sort(
    const std::string& name, const std::vector<std::string>& values) {
  d_env_fresh = false;
  init_env();
  declaring([&] { d_sorts->declare_enum_sort(name, values); });
  record_sort(name);
}

void SmtLib2Interface::define_sort(const std::string& name,
                                   const std::vector<std::string>& params,
                                   const Type* sort) {
  d_env_fresh = false;
  init_env();
  declaring([&] { d_sorts->define_sort(name, params, sort); });
  record_sort(name);
}

void SmtLib2Interface::record_function(const std::string& name) {
  if (!d_global_declarations) {
    d_function_scopes.push_back(name);
  }
}

void SmtLib2Interface::record_sort(const std::string& name) {
  if (!d_global_declarations) {
    d_sort_scopes.push_back(name);
  }
}

// ---------------------------------------------------------------------------
// Assertions and annotations
// ---------------------------------------------------------------------------

void SmtLib2Interface::assert_formula(const Term_* term) {
  d_env_fresh = false;
  init_env();
  d_model_available = false;
  d_env->assert_formula(term);
}

const Term_* SmtLib2Interface::annotate_term(const Term_* term,
                                             const AttributeList& attributes) {
  init_env();
  for (const Attribute& a : attributes) {
    if (a.key == ":named" && !a.value.empty()) {
      define_named_term(unquote_symbol(a.value), term);
    } else if (a.key == ":interpolation-group" && !a.value.empty()
               && d_config->interpolation) {
      set_interpolation_group(unquote_symbol(a.value));
    }
    // Other attributes (:pattern and the like) mean nothing to a
    // quantifier-free search; the term stands as it is.
  }
  return term;
}

void SmtLib2Interface::define_named_term(const std::string& name,
                                         const Term_* term) {
  d_env_fresh = false;
  if (d_terms->has_binding(name) || term_manager().find_symbol(name) != nullptr
      || d_terms->is_builtin(name)) {
    throw perror("name `" + name + "' already used");
  }
  declaring([&] { d_terms->define_binding(name, term); });
  record_function(name);
  d_named.push_back(NamedTerm{name, term});
}

// The group's number is ours until the environment keeps groups of its
// own; the formula is asserted as usual either way, so an interpolation
// request can never change an answer.
void SmtLib2Interface::set_interpolation_group(const std::string& name) {
  if (d_groups.find(name) == d_groups.end()) {
    int id = static_cast<int>(d_groups.size()) + 1;
    d_groups.emplace(name, id);
  }
}

// ---------------------------------------------------------------------------
// Scopes
// ---------------------------------------------------------------------------

void SmtLib2Interface::push(size_t n) {
  d_env_fresh = false;
  if (n < 1) {
    throw error("invalid argument in push");
  }
  init_env();
  d_model_available = false;
  for (size_t i = 0; i < n; ++i) {
    push_backtrack_point(d_env.get());
    ++d_depth;
    if (!d_global_declarations) {
      d_function_scopes.emplace_back();
      d_sort_scopes.emplace_back();
    }
  }
}

void SmtLib2Interface::pop(size_t n) {
  if (n < 1) {
    throw error("invalid argument in push");
  }
  init_env();
  d_model_available = false;
  // One level at a time: a failure half way leaves the names in step with
  // the levels the environment still has.
  for (size_t i = 0; i < n; ++i) {
    pop_backtrack_point(d_env.get());
    if (d_depth > 0) {
      --d_depth;
    }
    while (!d_refused.empty() && d_refused.back().depth > d_depth) {
      d_refused.pop_back();
    }
    if (!d_global_declarations) {
      undo_scopes_to_mark();
    }
  }
  d_pops_since_gc += static_cast<uint32_t>(n);
  if (d_gc_period != 0 && d_pops_since_gc >= d_gc_period) {
    d_pops_since_gc = 0;
    try {
      do_gc();
    } catch (const error& e) {
      if (!d_gc_warned) {
        *d_diag << "warning: " << e.message() << "; -gc_period is ignored"
                << std::endl;
        d_gc_warned = true;
      }
    }
  }
}

void SmtLib2Interface::undo_scopes_to_mark() {
  while (!d_function_scopes.empty() && !d_function_scopes.back().empty()) {
    undeclare_function(d_function_scopes.back());
    d_function_scopes.pop_back();
  }
  if (!d_function_scopes.empty()) {
    d_function_scopes.pop_back();
  }
  while (!d_sort_scopes.empty() && !d_sort_scopes.back().empty()) {
    d_sorts->undeclare_sort(d_sort_scopes.back());
    d_sort_scopes.pop_back();
  }
  if (!d_sort_scopes.empty()) {
    d_sort_scopes.pop_back();
  }
}

void SmtLib2Interface::undo_all_scopes() {
  for (size_t i = d_function_scopes.size(); i-- > 0;) {
    if (!d_function_scopes[i].empty()) {
      undeclare_function(d_function_scopes[i]);
    }
  }
  for (size_t i = d_sort_scopes.size(); i-- > 0;) {
    if (!d_sort_scopes[i].empty()) {
      d_sorts->undeclare_sort(d_sort_scopes[i]);
    }
  }
  d_function_scopes.clear();
  d_sort_scopes.clear();
}

// A name is a definition, a symbol, or an interpolation group; the symbol
// itself stays in the store until the next collection, so terms that still
// refer to it (in the environment's history) stay valid.
void SmtLib2Interface::undeclare_function(const std::string& name) {
  d_groups.erase(name);
  auto named = std::find_if(d_named.begin(),
                            d_named.end(),
                            [&](const NamedTerm& t) { return t.name == name; });
  if (named != d_named.end()) {
    d_named.erase(named);
  }
  if (d_terms->undefine_binding(name)) {
    return;
  }
  TermManager& tm = d_env->get_term_manager();
  if (tm.find_symbol(name) != nullptr) {
    tm.get_signature().remove_symbol(name);
  }
}

void SmtLib2Interface::reset_assertions() {
  init_env();
  d_env->reset_assertions();
  d_model_available = false;
  d_last_result = -1;
  if (!d_global_declarations) {
    undo_all_scopes();
  }
  d_groups.clear();
  d_assumptions.clear();
  d_false_assumption = nullptr;
  d_assumption_proxies.clear();
  d_refused.clear();
  d_depth = 0;
}

void SmtLib2Interface::assertion_refused(const std::string& message) {
  d_refused.push_back(RefusedAssertion{d_depth, message});
}

}  // namespace zenlo
