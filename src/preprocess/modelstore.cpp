// The cheap phase of a model: what the engine and the theories said, read
// right after the check; references, iteration and the self-check.
#include "preprocess/modelstore.h"

#include <algorithm>
#include <ostream>

#include "base/logger.h"
#include "dpll/dpllsolver.h"
#include "preprocess/polaritychecker.h"
#include "preprocess/rewritestack.h"
#include "terms/termmanager.h"
#include "terms/termsimplifications.h"
#include "theory/theorymanager.h"

namespace zenlo {

ModelStore::ModelStore(TermManager* tm,
                       RewriteStack* rewrites,
                       DpllSolver* dpll,
                       TheoryManager* theory,
                       PolarityChecker* polarity,
                       TermNormalizer* normalizer,
                       bool full,
                       const Options& options)
    : d_tm(tm),
      d_rewrites(rewrites),
      d_dpll(dpll),
      d_theory(theory),
      d_polarity(polarity),
      d_normalizer(normalizer),
      d_full(full),
      d_options(options),
      d_simplifier(new ModelTermSimplifier(tm, options)) {}

ModelStore::~ModelStore() = default;

void ModelStore::release(ModelStore* m) {
  if (m != nullptr && --m->d_refcount == 0) {
    delete m;
  }
}

void ModelStore::register_ad_hoc_rule(SymbolTag::tag tag,
                                      adhoccalculator::AdHocCalculator* calc) {
  std::unique_ptr<adhoccalculator::AdHocCalculator> owned(calc);
  if (d_adhoc_rules[tag] != nullptr) {
    throw error(std::string("AdHoc calculations for ")
                + SymbolTag::to_str(tag).substr(11) + " already registered");
  }
  d_adhoc_rules[tag] = std::move(owned);
}

bool ModelStore::is_good_model_value(const Term_* t) const {
  return termsimpl::is_value(d_tm, t, true);
}

void ModelStore::add_formula(const Term_* f) {
  d_formulas.push_back(f);
}

// ---------------------------------------------------------------------------
// compute(): the engine's and the theories' answers
// ---------------------------------------------------------------------------

void ModelStore::compute() {
  d_state = 1;
  d_values.clear();
  d_constraints.clear();
  d_rewrite_list.clear();
  find_terminals();
  read_atom_values();
  read_terminal_values();
  read_rewrite_steps();
}

bool ModelStore::is_terminal(const Term_* t) const {
  const Symbol* s = t->get_symbol();
  return t->get_arity() == 0 ? d_tm->is_constant(s)
                             : d_tm->is_uninterpreted_function(s);
}

bool ModelStore::is_solver_made(const Term_* t) const {
  // Names the solver makes for itself begin with a point; abstract values
  // with "@".
  const std::string& name = t->get_symbol()->get_name();
  return !name.empty() && (name[0] == '.' || name[0] == '@');
}

// One walk over the added formulas, each subterm once: the symbols the
// model is about, and the atoms the engine has a variable for.
void ModelStore::find_terminals() {
  TermList stack(d_formulas.rbegin(), d_formulas.rend());
  while (!stack.empty()) {
    const Term_* t = stack.back();
    stack.pop_back();
    if (!d_seen.insert(t).second) {
      continue;
    }
    if (is_terminal(t)) {
      d_terminals.push_back(t);
    }
    if (d_tm->is_bool_type(t->get_type()) && d_dpll != nullptr
        && d_dpll->proxy_for_term(t) != dpll::var_Undef) {
      d_atoms.push_back(t);
    }
    if (d_tm->is_quantifier(t->get_symbol())) {
      continue;  // bound variables are no symbols of the model
    }
    for (size_t i = t->get_arity(); i-- > 0;) {
      stack.push_back(t->get_child(i));
    }
  }
}

void ModelStore::read_atom_values() {
  for (const Term_* atom : d_atoms) {
    SymbolTag::tag tag = d_tm->get_tag(atom->get_symbol());
    if (tag >= SymbolTag::TRUE && tag <= SymbolTag::IFF) {
      continue;  // connectives are evaluated, not looked up
    }
    lbool v = d_dpll->get_model_value(d_dpll->proxy_for_term(atom));
    if (v == l_Undef) {
      continue;
    }
    const bool value = v == l_True;
    if (d_logger != nullptr && d_logger->would_log("MODELSTORE", 4)) {
      (*d_logger)("MODELSTORE")
          << loglevel(4) << "DPLL MODEL: " << outterm(atom) << " " << value
          << endlog;
    }
    if (!d_full || atom->get_arity() == 0) {
      d_values[atom] = value ? d_tm->make_true() : d_tm->make_false();
      continue;
    }
    // An atom that occurs with one polarity only, and has the other value,
    // is irrelevant: the formulas hold whatever its value.
    int pol = d_polarity != nullptr ? (*d_polarity)(atom) : 0;
    if ((pol == PolarityChecker::kPositive && !value)
        || (pol == PolarityChecker::kNegative && value)) {
      continue;
    }
    d_constraints.push_back(ModelData{atom, nullptr, value});
  }
}

void ModelStore::read_terminal_values() {
  if (!d_full) {
    return;
  }
  for (const Term_* t : d_terminals) {
    if (t->get_arity() == 0 && d_tm->is_bool_type(t->get_type())) {
      continue;  // the engine's business, read above
    }
    const Term_* v = theory_value(t);
    if (v == nullptr) {
      if (t->get_arity() > 0) {
        // No solver met this application (preprocessing replaced it, as
        // with a term-ite argument): its value follows from its arguments'
        // values through the function's table. A class of its own would
        // take a fresh value that may break congruence with the table.
        continue;
      }
      v = t;
    }
    d_constraints.push_back(ModelData{t, v, true});
    if (t->get_arity() == 0 && v != t && is_good_model_value(v)) {
      d_values[t] = v;
    }
  }
}

// The theories answer with a term that stands for the class of `t` in
// their model (a value, or a member that the classes below will give a
// fresh value); null when no solver knows `t`.
const Term_* ModelStore::theory_value(const Term_* t) {
  return d_theory != nullptr ? d_theory->get_model_value(t) : nullptr;
}

void ModelStore::read_rewrite_steps() {
  if (d_rewrites == nullptr) {
    return;
  }
  for (RewriteStep* s : *d_rewrites) {
    if (s->is_active()) {
      d_rewrite_list.push_back(ModelData{s->src(), s->dst(), s->is_adhoc()});
    }
  }
}

// ---------------------------------------------------------------------------
// Detaching
// ---------------------------------------------------------------------------

void ModelStore::detach() {
  try {
    if (d_state == 0) {
      compute();
    }
    if (d_full) {
      check_compute_full();
    }
    init_iter_terminals();
  } catch (const Exception& e) {
    d_failure = e.message();
  }
  d_dpll = nullptr;
  d_theory = nullptr;
  d_polarity = nullptr;
  d_rewrites = nullptr;
  d_normalizer = nullptr;
}

// ---------------------------------------------------------------------------
// Iteration
// ---------------------------------------------------------------------------

ModelStore::ModelIterator ModelStore::begin() {
  init_iter_terminals();
  return ModelIterator(&d_iter_pairs, 0);
}

ModelStore::ModelIterator ModelStore::end() {
  init_iter_terminals();
  return ModelIterator(&d_iter_pairs, d_iter_pairs.size());
}

const std::vector<ModelStore::Assignment>& ModelStore::assignments() {
  init_iter_terminals();
  return d_iter_pairs;
}

void ModelStore::init_iter_terminals() {
  if (d_iter_ready) {
    return;
  }
  if (!d_failure.empty()) {
    throw error(d_failure);
  }
  std::vector<Assignment> pairs;
  TermList args;
  for (const Term_* t : d_terminals) {
    if (is_solver_made(t) || (!d_full && !d_tm->is_bool_type(t->get_type()))) {
      continue;
    }
    const Term_* key = t;
    if (t->get_arity() > 0) {
      // The point of the function table: the arguments' values.
      args.clear();
      for (const Term_* a : *t) {
        args.push_back(get_value(a));
      }
      key = d_tm->do_make_term(t->get_symbol(), args);
    }
    pairs.emplace_back(key, get_value(t));
  }
  std::sort(pairs.begin(), pairs.end(), [](const auto& a, const auto& b) {
    uint64_t sa = a.first->get_symbol()->get_id();
    uint64_t sb = b.first->get_symbol()->get_id();
    return sa != sb ? sa < sb : a.first->get_id() < b.first->get_id();
  });
  pairs.erase(std::unique(pairs.begin(),
                          pairs.end(),
                          [](const auto& a, const auto& b) {
                            return a.first == b.first;
                          }),
              pairs.end());
  d_iter_pairs = std::move(pairs);
  d_iter_ready = true;
}

// ---------------------------------------------------------------------------
// Self-check
// ---------------------------------------------------------------------------

TermList ModelStore::debug_check() {
  TermList failed;
  for (const Term_* f : d_formulas) {
    if (get_value(f) != d_tm->make_true()) {
      if (d_logger != nullptr && d_logger->would_log("MODELSTORE", 0)) {
        (*d_logger)("MODELSTORE")
            << loglevel(0) << "Not satsfied: " << outterm(f) << endlog;
      }
      failed.push_back(f);
    }
  }
  return failed;
}

}  // namespace zenlo
