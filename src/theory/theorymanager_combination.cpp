// TheoryManager: theory combination between EUF and the theories with
// values of their own (linear arithmetic, bit-vectors).
//
// Terms are shared where congruence and such a theory meet: an
// application of an uninterpreted function of the theory's sort (its
// value is the theory's business, its congruence EUF's), and each
// argument of the theory's sort of an uninterpreted function (the theory
// decides which arguments are equal, and EUF needs to know). These
// interface terms are found as atoms are told, and go with the atom that
// brought them.
//
// On a full assignment, the theories' concrete models and EUF's classes
// must agree on every pair of interface terms. Each pair they disagree on
// becomes an equality atom that the search decides (phase true first); both
// solvers hear it, so the disagreement cannot survive the next full assignment.
// Since the atoms are between interface terms only, and those are finitely
// many, the loop ends.
#include <algorithm>
#include <ostream>

#include "base/logger.h"
#include "dpll/dpllsolver.h"
#include "preprocess/polaritychecker.h"
#include "terms/termmanager.h"
#include "theory/euf/eufsolverinterface.h"
#include "theory/theorymanager.h"

namespace zenlo {

using dpll::var_Undef;

namespace {

constexpr const char* kSection = "TMANAGER";
constexpr int kEuf = static_cast<int>(TheoryId::Euf);
constexpr int kLa = static_cast<int>(TheoryId::La);
constexpr int kBv = static_cast<int>(TheoryId::Bv);

}  // namespace

// The solver that gives terms of `type` their values in the combination,
// or -1 when congruence alone decides the sort.
int TheoryManager::value_solver(const Type* type) const {
  if (d_tm->is_arithmetic_type(type)) {
    return enabled(kLa) ? kLa : -1;
  }
  if (d_tm->is_bv_type(type)) {
    return enabled(kBv) ? kBv : -1;
  }
  return -1;
}

// Applications whose arguments and value congruence handles: those of
// uninterpreted functions, and reads and writes of arrays (an extension of
// EUF).
bool TheoryManager::is_shared_application(const Term_* t) const {
  if (d_tm->is_uninterpreted_function(t->get_symbol())) {
    return true;
  }
  switch (d_tm->get_tag(t->get_symbol())) {
    case SymbolTag::ARRAY_READ:
    case SymbolTag::ARRAY_WRITE:
    case SymbolTag::ARRAY_CONST: return true;
    default: return false;
  }
}

void TheoryManager::update_interface_terms(const Term_* atom) {
  if (!enabled(kEuf) || !(enabled(kLa) || enabled(kBv))
      || d_config->interface_eq_policy == 3) {
    if (d_logger != nullptr) {
      (*d_logger)(kSection)
          << loglevel(4)
          << "theory combination not needed because some theory solvers "
          << "are not enabled, not collecting interface terms" << endlog;
    }
    return;
  }
  Var var = d_comb_frames.back();
  d_iface_seen.clear();
  d_iface_stack.assign(1, atom);
  while (!d_iface_stack.empty()) {
    const Term_* t = d_iface_stack.back();
    d_iface_stack.pop_back();
    if (!d_iface_seen.insert(t).second) {
      continue;
    }
    d_iface_stack.insert(d_iface_stack.end(), t->begin(), t->end());
    if (t->get_arity() == 0 || !is_shared_application(t)) {
      continue;
    }
    if (value_solver(t->get_type()) >= 0) {
      add_interface_term(t, var);
    }
    for (const Term_* c : *t) {
      if (value_solver(c->get_type()) >= 0) {
        add_interface_term(c, var);
      }
    }
  }
}

void TheoryManager::add_interface_term(const Term_* t, Var var) {
  if (!d_iface_set.insert(t).second) {
    return;
  }
  d_iface_trail.emplace_back(var, t);
  if (d_logger != nullptr) {
    (*d_logger)(kSection) << loglevel(4) << "interface term: " << outterm(t)
                          << endlog;
  }
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      d_solvers[i]->notify_interface_term(t);
    }
  }
}

// Pops the frames of the atom of `var`, the youngest told one, and the
// interface terms that it brought (variables grow with age, so those of
// the atom and of any younger one are at the end of the trail).
void TheoryManager::undo_theory_combination_info(const Term_*, Var var) {
  while (!d_comb_frames.empty()) {
    Var top = d_comb_frames.back();
    d_comb_frames.pop_back();
    if (top == var) {
      break;
    }
  }
  while (!d_iface_trail.empty() && d_iface_trail.back().first >= var) {
    const Term_* t = d_iface_trail.back().second;
    d_iface_trail.pop_back();
    d_iface_set.erase(t);
    for (int i = 0; i < kNumSolvers; ++i) {
      if (enabled(i)) {
        d_solvers[i]->retract_interface_term(t);
      }
    }
  }
  d_lemma_atoms.erase(var);
}

// Two passes of grouping: terms with one value that EUF keeps apart,
// chained class by class; and members of one EUF class with different
// values, chained value by value. Values are terms of the store, so
// values of different sorts never meet. Chains suffice: once their equalities
// hold, the classes and the values coincide.
void TheoryManager::disagreeing_pairs(
    std::vector<std::pair<const Term_*, const Term_*>>& out) {
  struct Entry {
    const Term_* term;
    const Term_* value;  // of the term's theory, a number term
    const Term_* rep;    // EUF's class
  };

  std::vector<Entry> entries;
  for (const auto& [var, t] : d_iface_trail) {
    (void)var;
    int owner = value_solver(t->get_type());
    const Term_* v =
        owner >= 0 ? d_solvers[owner]->get_model_value(t) : nullptr;
    if (v == nullptr) {
      continue;
    }
    const Term_* rep = d_euf->get_solver().get_representative(t);
    if (rep == nullptr) {
      continue;
    }
    entries.push_back({t, v, rep});
  }
  // Sorted by (key, other), neighbours with one key and different others
  // are a disagreement.
  auto chain = [&](const Term_* Entry::*key, const Term_* Entry::*other) {
    std::sort(
        entries.begin(), entries.end(), [&](const Entry& x, const Entry& y) {
          if (x.*key != y.*key) {
            return (x.*key)->get_id() < (y.*key)->get_id();
          }
          return (x.*other)->get_id() < (y.*other)->get_id();
        });
    for (size_t i = 1; i < entries.size(); ++i) {
      const Entry& x = entries[i - 1];
      const Entry& y = entries[i];
      if (x.*key == y.*key && x.*other != y.*other && x.term != y.term
          && !(d_tm->is_number_term(x.term) && d_tm->is_number_term(y.term))) {
        out.emplace_back(x.term, y.term);
      }
    }
  };
  chain(&Entry::value, &Entry::rep);  // same value, different classes
  chain(&Entry::rep, &Entry::value);  // same class, different values
}

int TheoryManager::request_interface_equality(const Term_* a,
                                              const Term_* b,
                                              bool& added) {
  // One term for the equality whichever side asks: the lower id first and
  // a number on the right.
  if (d_tm->is_number_term(a)
      || (!d_tm->is_number_term(b) && b->get_id() < a->get_id())) {
    std::swap(a, b);
  }
  // Unsimplified: the normal form of a - b = 0 may be an atom of the input
  // that congruence reads as an equation between other terms, so it would
  // never learn that a and b are equal.
  const Term_* eq = nullptr;
  {
    SimplificationScope raw(*d_tm, false);
    eq = d_tm->make_equal(a, b);
  }
  if (d_tm->get_tag(eq->get_symbol()) != SymbolTag::EQ) {
    // Folded to a constant: the solvers disagree on a fact of the store.
    throw error("theory combination: the solvers disagree on "
                + d_tm->make_equal(a, b)->to_str());
  }
  if (d_polarity != nullptr) {
    d_polarity->add_literal(eq, false);
    d_polarity->add_literal(eq, true);
  }
  Var v = var_of(eq);
  if (v == var_Undef) {
    d_in_lemma = true;
    bool is_new = false;
    try {
      is_new = d_dpll->make_proxy(eq, v);
    } catch (...) {
      d_in_lemma = false;
      throw;
    }
    d_in_lemma = false;
    if (is_new) {
      d_lemma_atoms.insert(v);
      d_dpll->set_phase(v, true);
      ++d_necessary_ieqs;
      added = true;
      if (d_logger != nullptr) {
        (*d_logger)(kSection)
            << loglevel(3) << "added interface equality: " << outterm(eq)
            << endlog;
      }
      return -1;
    }
  }
  d_dpll->set_decision_var(v, true);
  if (d_dpll->value(v) == l_Undef) {
    added = true;
    return -1;
  }
  // Assigned, and still the models disagree: a solver did not hear the
  // literal in the polarity it has. Going back below it tells it again.
  int level = d_dpll->level(v);
  if (level == 0) {
    throw error("theory combination: the solvers disagree on " + eq->to_str()
                + " at level 0");
  }
  return level - 1;
}

int TheoryManager::generate_interface_equalities(bool& added) {
  added = false;
  if (!enabled(kEuf) || d_euf == nullptr) {
    if (d_logger != nullptr) {
      (*d_logger)(kSection)
          << loglevel(4)
          << "not generating interface equalities because the EUF solver"
          << " is not enabled" << endlog;
    }
    return -1;
  }
  if (d_config->interface_eq_policy == 3) {
    if (d_logger != nullptr) {
      (*d_logger)(kSection)
          << loglevel(4)
          << "not generating interface equalities because policy is OFF "
          << "in the configuration" << endlog;
    }
    return -1;
  }
  if (d_iface_trail.empty()) {
    return -1;
  }
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      d_solvers[i]->build_abstract_model();
    }
  }
  std::vector<std::pair<const Term_*, const Term_*>> pairs;
  disagreeing_pairs(pairs);
  size_t limit = d_config->interface_eq_batch_size > 0
                     ? static_cast<size_t>(d_config->interface_eq_batch_size)
                     : pairs.size();
  int answer = -1;
  size_t made = 0;
  for (const auto& [a, b] : pairs) {
    if (made++ >= limit) {
      break;
    }
    int level = request_interface_equality(a, b, added);
    if (level >= 0 && (answer < 0 || level < answer)) {
      answer = level;
    }
  }
  if (!pairs.empty() && d_logger != nullptr) {
    (*d_logger)(kSection) << loglevel(3) << "generated " << pairs.size()
                          << " interface equalities" << endlog;
  }
  return answer;
}

}  // namespace zenlo
