// The questions a script asks after a check: values, models, assignments
// and unsat assumptions; and the answers for what this interpreter does
// not offer (cores, proofs, interpolants, All-SAT, objectives).
#include <unordered_set>

#include "env/environment.h"
#include "frontend/smtlib2interface.h"
#include "frontend/smtlib2model.h"

namespace zenlo {

namespace {

using Kind = SmtLib2Response::Kind;

}  // namespace

std::string SmtLib2Interface::print_term(const Term_* t) {
  return d_printer->atom_to_string(t);
}

void SmtLib2Interface::require_model() const {
  if (!d_model_available) {
    throw error("model not available");
  }
}

bool SmtLib2Interface::model_queries_enabled() const {
  const Configuration& c = d_env->get_config();
  return (c.model_generation || c.bool_model_generation) && c.solver_enabled;
}

// ---------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------

void SmtLib2Interface::get_value(const std::vector<std::string>& texts) {
  init_env();
  require_model();
  TermList terms = parse_value_terms(texts);
  if (!model_queries_enabled()) {
    d_response.kind = Kind::Unsupported;
    return;
  }
  TermManager& tm = d_env->get_term_manager();
  SmtLib2Response::Pairs pairs;
  for (size_t i = 0; i < terms.size(); ++i) {
    const Term_* value = d_env->get_model_value(terms[i]);
    pairs.emplace_back(texts[i],
                       value_text(tm, *d_printer, value, terms[i]->get_type()));
  }
  d_response.kind = Kind::Values;
  d_response.pairs = std::move(pairs);
}

// The texts are read again as one ".internal-parse-terms" command, now,
// with the names in force at this point of the script.
TermList SmtLib2Interface::parse_value_terms(
    const std::vector<std::string>& texts) {
  std::string command = "(.internal-parse-terms (";
  for (const std::string& t : texts) {
    command += t + " ";
  }
  command += "))";
  d_parsing_values = true;
  d_parsed_terms.clear();
  try {
    parse_nested(command);
  } catch (...) {
    d_parsing_values = false;
    throw;
  }
  d_parsing_values = false;
  TermList terms;
  terms.swap(d_parsed_terms);
  return terms;
}

void SmtLib2Interface::internal_set_parsed_terms(const TermList& terms) {
  if (!d_parsing_values) {
    throw error("unsupported command: .internal-parse-terms");
  }
  d_parsed_terms = terms;
}

void SmtLib2Interface::get_assignment() {
  init_env();
  require_model();
  if (!d_env->get_config().bool_model_generation) {
    d_response.kind = Kind::Unsupported;
    return;
  }
  TermManager& tm = d_env->get_term_manager();
  SmtLib2Response::Pairs pairs;
  for (const NamedTerm& n : d_named) {
    if (tm.is_bool_type(n.term->get_type())) {
      const Term_* value = d_env->get_model_value(n.term);
      pairs.emplace_back(SmtLibTermPrinter::to_smtlib(n.name),
                         print_term(value));
    }
  }
  d_response.kind = Kind::Values;
  d_response.pairs = std::move(pairs);
}

void SmtLib2Interface::get_model() {
  init_env();
  require_model();
  if (!model_queries_enabled()) {
    d_response.kind = Kind::Unsupported;
    return;
  }
  std::vector<ModelAssignment> model;
  for (const ModelAssignment& a : d_env->get_model_assignments()) {
    if (!should_skip_term(a.first)) {
      model.push_back(a);
    }
  }
  add_unmet_symbols(model);
  d_response.items =
      model_define_funs(d_env->get_term_manager(), *d_printer, model);
  d_response.kind = Kind::Model;
}

// Every declared name gets a definition, also those the search never met
// (unused, or simplified away): a model that leaves names out cannot be
// put back into the script in place of its declarations. Each takes the
// value the model gives a term it never met, the same that get-value
// answers for it.
void SmtLib2Interface::add_unmet_symbols(std::vector<ModelAssignment>& model) {
  TermManager& tm = d_env->get_term_manager();
  std::unordered_set<const Symbol*> met;
  for (const ModelAssignment& a : model) {
    met.insert(a.first->get_symbol());
  }
  // Values of uninterpreted sorts are symbols too, made on first use:
  // the signature may grow below, so it is not walked while that happens.
  std::vector<const Symbol*> symbols;
  for (const auto& entry : tm.get_signature()) {
    symbols.push_back(entry.second);
  }
  for (const Symbol* s : symbols) {
    const std::string& name = s->get_name();
    bool user_symbol = s->get_arity() == 0 ? tm.is_constant(s)
                                           : tm.is_uninterpreted_function(s);
    if (met.count(s) != 0 || !user_symbol || name.empty() || name[0] == '.'
        || name[0] == '@') {
      continue;
    }
    TermList args;
    for (size_t i = 0; i < s->get_arity(); ++i) {
      args.push_back(d_env->get_model_default_value(s->get_arg_type(i)));
    }
    const Term_* point = tm.make_term(s, args);
    if (!should_skip_term(point)) {
      model.emplace_back(point, d_env->get_model_value(point));
    }
  }
}

void SmtLib2Interface::get_unsat_assumptions() {
  init_env();
  std::vector<std::string> items;
  if (d_false_assumption != nullptr) {
    items.push_back(print_term(d_false_assumption));
  } else {
    for (const Term_* t : d_env->get_unsat_assumptions()) {
      for (const auto& [proxy, formula] : d_assumption_proxies) {
        t = t == proxy ? formula : t;
      }
      items.push_back(print_term(t));
    }
  }
  d_response.kind = Kind::TermList;
  d_response.items = std::move(items);
}

// ---------------------------------------------------------------------------
// What this interpreter does not offer
// ---------------------------------------------------------------------------

void SmtLib2Interface::get_assertions() {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::get_unsat_core() {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::get_proof() {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::get_interpolant(const std::vector<std::string>& texts) {
  if (!d_config->interpolation) {
    d_response.kind = Kind::Unsupported;
    return;
  }
  for (const std::string& text : texts) {
    std::string name = unquote_symbol(text);
    if (d_groups.find(name) == d_groups.end()) {
      throw error("unknown :interpolation-group `" + name + "'");
    }
  }
  // The groups are known, but no interpolant is computed yet.
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::check_allsat(const TermList&) {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::push_minimize(const Term_*, const OptAttributes&) {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::push_maximize(const Term_*, const OptAttributes&) {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::push_minmax(const TermList&, const OptAttributes&) {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::push_maxmin(const TermList&, const OptAttributes&) {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::assert_soft_formula(const Term_*, const OptAttributes&) {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::get_objectives() {
  d_response.kind = Kind::Unsupported;
}

void SmtLib2Interface::load_objective_model(const std::string&) {
  d_response.kind = Kind::Unsupported;
}

}  // namespace zenlo
