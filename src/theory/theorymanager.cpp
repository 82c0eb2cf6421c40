// TheoryManager: solvers, atoms, levels, literals and checks. Lemmas and
// Boolean arguments are in theorymanager_lemmas.cpp, theory combination in
// theorymanager_combination.cpp.
#include "theory/theorymanager.h"

#include <ostream>

#include "base/logger.h"
#include "base/terminationtest.h"
#include "dpll/dpllsolver.h"
#include "preprocess/polaritychecker.h"
#include "terms/termmanager.h"
#include "theory/arr/arrsolverinterface.h"
#include "theory/bv/bvsolverinterface.h"
#include "theory/cardinalitychecker.h"
#include "theory/check/theoryfactchecks.h"
#include "theory/euf/eufsolverinterface.h"
#include "theory/la/lasolverinterface.h"

namespace zenlo {

using dpll::lit_Undef;
using dpll::mk_lit;
using dpll::var;
using dpll::var_Undef;

namespace {
constexpr const char* kSection = "TMANAGER";
}  // namespace

TheoryManager::TheoryManager(const Configuration* config,
                             TermManager* tm,
                             DpllSolver* dpll,
                             Logger* logger)
    : d_global(config),
      d_config(&config->theory),
      d_tm(tm),
      d_dpll(dpll),
      d_logger(logger) {
  auto euf = std::make_unique<EufSolverInterface>(&d_config->euf, tm);
  if (d_config->arr.enabled) {
    euf->add_dyn_ack_tag(SymbolTag::ARRAY_READ);
    euf->add_dyn_ack_tag(SymbolTag::ARRAY_WRITE);
  }
  install_solver(SolverIndex::Euf, std::move(euf), d_config->euf.enabled);
  install_solver(SolverIndex::La,
                 std::make_unique<LaSolverInterface>(d_config, tm),
                 d_config->la.enabled);
  install_solver(SolverIndex::Bv,
                 bv::make_bv_solver(config, tm, dpll),
                 d_config->bv.enabled);
  if (enabled(0) && d_euf != nullptr) {
    d_card = std::make_unique<CardinalityChecker>(tm, &d_euf->get_solver());
    if (d_config->arr.enabled) {
      auto arr = std::make_unique<ArrSolverInterface>(config, tm, d_euf);
      // Cells take their values from the combined model.
      arr->set_value_source(
          [this](const Term_* t) { return get_model_value(t); });
      install_solver(SolverIndex::Arr, std::move(arr), true);
    }
  }
}

TheoryManager::~TheoryManager() = default;

void TheoryManager::install_solver(SolverIndex index,
                                   std::unique_ptr<TheorySolver> solver,
                                   bool on) {
  int i = static_cast<int>(index);
  d_solvers[i] = std::move(solver);
  d_enabled[i] = d_solvers[i] != nullptr && on;
  if (d_solvers[i] != nullptr) {
    if (d_logger != nullptr) {
      d_solvers[i]->set_logger(d_logger);
    }
    d_solvers[i]->set_termination_test(d_termination);
  }
  if (index == SolverIndex::Euf) {
    // Tests may put another solver in EUF's slot.
    d_euf = dynamic_cast<EufSolverInterface*>(d_solvers[i].get());
  }
}

EufSolverInterface* TheoryManager::euf() const {
  return enabled(0) ? d_euf : nullptr;
}

TheorySolver* TheoryManager::get_tsolver(const std::string& name) const {
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i) && name == d_solvers[i]->get_name()) {
      return d_solvers[i].get();
    }
  }
  return nullptr;
}

void TheoryManager::set_logger(Logger* logger) {
  d_logger = logger;
  for (auto& s : d_solvers) {
    if (s != nullptr) {
      s->set_logger(logger);
    }
  }
}

void TheoryManager::set_termination_test(TerminationTest* test) {
  d_termination = test;
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      d_solvers[i]->set_termination_test(test);
    }
  }
}

void TheoryManager::set_polarity_checker(PolarityChecker* pc) {
  d_polarity = pc;
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      d_solvers[i]->set_polarity_checker(pc);
    }
  }
}

// ---------------------------------------------------------------------------
// Atoms
// ---------------------------------------------------------------------------

void TheoryManager::grow_var_tables(Var v) {
  size_t need = static_cast<size_t>(v) + 1;
  if (d_non_theory.size() < need) {
    size_t n = std::max(need, d_non_theory.size() * 2);
    d_non_theory.resize(n, 1);
    d_listeners.resize(n, 0);
    d_told.resize(n, 0);
    d_implied_by.resize(n, -1);
  }
}

// Boolean structure and Boolean constants are the search's own business.
bool TheoryManager::is_non_theory(const Term_* term) const {
  return term == nullptr || !d_tm->is_bool_type(term->get_type())
         || theory_of(*d_tm, term) == TheoryId::Search;
}

TheoryManager::Var TheoryManager::var_of(const Term_* term) const {
  size_t i = term->get_id();
  return i < d_var_of_term.size() ? d_var_of_term[i] : var_Undef;
}

void TheoryManager::tell_atom(const Term_* term, Var v) {
  grow_var_tables(v);
  if (term != nullptr) {
    size_t i = term->get_id();
    if (i >= d_var_of_term.size()) {
      d_var_of_term.resize(std::max(i + 1, d_var_of_term.size() * 2),
                           var_Undef);
    }
    d_var_of_term[i] = v;
  }
  bool none = is_non_theory(term) && !d_bool_args.contains(term);
  d_non_theory[v] = none;
  d_listeners[v] = 0;
  d_told[v] = 0;
  bool owned = false;
  if (!none) {
    for (int i = 0; i < kNumSolvers; ++i) {
      if (!enabled(i)) {
        continue;
      }
      auto [owns, wants] = d_solvers[i]->tell_atom(term);
      d_told[v] |= static_cast<uint8_t>(1u << i);
      owned |= owns;
      if (wants) {
        d_listeners[v] |= static_cast<uint8_t>(1u << i);
      }
    }
    d_comb_frames.push_back(v);
    if (!d_in_lemma && !d_lemma_atoms.contains(v)) {
      update_interface_terms(term);
    }
  }
  handle_euf_requests();
  if (!none && !owned) {
    // Heard but owned by none: deciding it as if uninterpreted could
    // answer sat wrongly, so it is refused.
    check_supported(term);
  }
}

bool TheoryManager::retract_atom(const Term_* term, Var v) {
  bool took_back = false;
  if (static_cast<size_t>(v) < d_non_theory.size() && !d_non_theory[v]) {
    // Exactly the solvers that heard the atom, wanted or not: each keeps
    // its atoms as a stack.
    for (int i = 0; i < kNumSolvers; ++i) {
      if ((d_told[v] >> i) & 1) {
        d_solvers[i]->retract_atom(term);
        took_back |= d_solvers[i]->took_back_facts();
      }
    }
    undo_theory_combination_info(term, v);
  }
  if (static_cast<size_t>(v) < d_non_theory.size()) {
    d_non_theory.resize(v);
    d_listeners.resize(v);
    d_told.resize(v);
    d_implied_by.resize(v);
  }
  if (term != nullptr && var_of(term) == v) {
    d_var_of_term[term->get_id()] = var_Undef;
  }
  d_lemma_atoms.erase(v);
  return took_back;
}

// ---------------------------------------------------------------------------
// Levels
// ---------------------------------------------------------------------------

void TheoryManager::new_decision_level() {
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      d_solvers[i]->new_decision_level();
    }
  }
}

void TheoryManager::cancel_until(int level) {
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      d_solvers[i]->cancel_until(level);
    }
  }
  d_conflict_solver = -1;
  resend_late_literals(level);
}

void TheoryManager::push_backtrack_point() {
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      d_solvers[i]->push_backtrack_point();
    }
  }
  if (d_card != nullptr) {
    d_card->push_backtrack_point();
  }
}

void TheoryManager::pop_backtrack_point() {
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      d_solvers[i]->pop_backtrack_point();
    }
  }
  if (d_card != nullptr) {
    d_card->pop_backtrack_point();
  }
}

// ---------------------------------------------------------------------------
// Literals
// ---------------------------------------------------------------------------

TheoryLit TheoryManager::theory_lit(Lit lit) const {
  return TheoryLit(d_dpll->term_of(var(lit)), dpll::sign(lit));
}

TheoryManager::Lit TheoryManager::search_lit(TheoryLit lit) const {
  Var v = var_of(lit.atom());
  if (v == var_Undef) {
    throw error("theory literal over an atom unknown to the search: "
                + lit.atom()->to_str());
  }
  return mk_lit(v, lit.negated());
}

void TheoryManager::to_search_lits(const std::vector<TheoryLit>& in,
                                   std::vector<Lit>& out) {
  for (TheoryLit l : in) {
    out.push_back(search_lit(l));
  }
}

// A literal fixed at level 0 always goes through. Pure literals are kept
// back when the polarity checker says the formula never needs their
// theory meaning; ghost filtering belongs to all-SAT enumeration.
bool TheoryManager::should_filter(Lit lit) const {
  if (d_dpll->level(var(lit)) == 0) {
    return false;
  }
  if (!d_config->pure_literal_filtering || d_polarity == nullptr) {
    return false;
  }
  // An atom that occurs only negatively never needs its positive meaning,
  // and the other way round.
  int polarity = (*d_polarity)(d_dpll->term_of(var(lit)));
  return dpll::sign(lit) ? polarity == PolarityChecker::kPositive
                         : polarity == PolarityChecker::kNegative;
}

void TheoryManager::do_assume(Lit lit, bool filter) {
  Var v = var(lit);
  if (static_cast<size_t>(v) >= d_non_theory.size() || d_non_theory[v]) {
    return;
  }
  if (filter && should_filter(lit)) {
    if (d_logger != nullptr) {
      (*d_logger)(kSection) << loglevel(4) << "filtering out " << lit << endlog;
    }
    return;
  }
  if (conflict()) {
    return;
  }
  TheoryLit tl = theory_lit(lit);
  for (int i = 0; i < kNumSolvers; ++i) {
    if ((d_listeners[v] >> i) & 1) {
      if (!d_solvers[i]->assume(tl)) {
        ++d_counters[i].conflicts;
        d_conflict_solver = i;
        return;
      }
    }
  }
}

// ---------------------------------------------------------------------------
// Checks
// ---------------------------------------------------------------------------

bool TheoryManager::run_check(int i, bool approx) {
  ++d_counters[i].total_calls;
  if (!approx) {
    ++d_counters[i].complete_calls;
  }
  if (!d_solvers[i]->check(approx)) {
    ++d_counters[i].conflicts;
    d_conflict_solver = i;
    return false;
  }
  return true;
}

// With EUF at low priority the other solvers go first, and the cursor of
// get_next_implied starts behind EUF: EUF still checks, but its
// implications are not collected.
bool TheoryManager::check_approx() {
  throw_if_refused();
  handle_euf_requests();
  const int low = d_config->euf.low_priority ? 1 : 0;
  d_cursor = low;
  if (conflict()) {
    return false;
  }
  for (int k = 0; k < kNumSolvers; ++k) {
    int i = low ? (k + 1) % kNumSolvers : k;
    if (enabled(i) && !run_check(i, true)) {
      return false;
    }
  }
  return true;
}

bool TheoryManager::check_complete() {
  throw_if_refused();
  handle_euf_requests();
  d_cursor = d_config->euf.low_priority ? 1 : 0;
  if (conflict()) {
    return false;
  }
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i) && !run_check(i, false)) {
      return false;
    }
  }
  return true;
}

void TheoryManager::log_lits(const char* what, const std::vector<Lit>& lits) {
  if (d_logger == nullptr || !d_logger->would_log(kSection, 3)) {
    return;
  }
  Logger& l = (*d_logger)(kSection) << loglevel(3) << what;
  for (Lit p : lits) {
    l << " " << p;
  }
  l << endlog;
}

void TheoryManager::get_conflict(std::vector<Lit>& lits) {
  d_tlits.clear();
  d_solvers[d_conflict_solver]->get_conflict(d_tlits);
  to_search_lits(d_tlits, lits);
  log_lits("Conflict:", lits);
  dump_tlemma(d_conflict_solver, tlit_Undef, d_tlits, false);
}

TheoryManager::Lit TheoryManager::get_next_implied() {
  while (d_cursor < kNumSolvers) {
    if (!enabled(d_cursor)) {
      ++d_cursor;
      continue;
    }
    TheoryLit tl = d_solvers[d_cursor]->get_next_implied();
    if (tl.is_undef()) {
      ++d_cursor;
      continue;
    }
    Var v = var_of(tl.atom());
    if (v == var_Undef || d_dpll->value(v) != l_Undef) {
      continue;
    }
    Lit p = mk_lit(v, tl.negated());
    if (should_filter(p)) {
      continue;
    }
    ++d_counters[d_cursor].implications;
    grow_var_tables(v);
    d_implied_by[v] = static_cast<int8_t>(d_cursor);
    return p;
  }
  return lit_Undef;
}

bool TheoryManager::get_explanation(Lit lit,
                                    bool force,
                                    std::vector<Lit>& lits) {
  TheoryLit tl = theory_lit(lit);
  size_t v = static_cast<size_t>(var(lit));
  int i = v < d_implied_by.size() ? d_implied_by[v] : -1;
  if (i < 0) {
    throw error("explanation asked for a literal no theory implied: "
                + tl.atom()->to_str());
  }
  d_tlits.clear();
  if (!d_solvers[i]->get_explanation(tl, force, d_tlits)) {
    return false;
  }
  ++d_counters[i].explanations;
  to_search_lits(d_tlits, lits);
  dump_tlemma(i, tl, d_tlits, false);
  return true;
}

// ---------------------------------------------------------------------------
// Full assignments and models
// ---------------------------------------------------------------------------

int TheoryManager::boolean_model_found() {
  if (d_termination != nullptr) {
    (*d_termination)();
  }
  bool added = false;
  int level = generate_interface_equalities(added);
  if (level >= 0 || added) {
    return level;
  }
  if (d_card != nullptr && d_card->check() && d_logger != nullptr) {
    (*d_logger)(kSection) << loglevel(3) << "cardinality: domain lemmas"
                          << endlog;
  }
  // The theories agree on the shared terms: EUF's classes are a model, in
  // which the arrays solver looks for violated instances at the next
  // complete check.
  constexpr int kArr = static_cast<int>(TheoryId::Arr);
  if (enabled(kArr)) {
    d_solvers[kArr]->build_abstract_model();
  }
  return level;
}

void TheoryManager::build_model() {
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      d_solvers[i]->build_model();
    }
  }
}

// EUF's class comes first: its value stands for every member, and the
// other theories are asked about the value and then the members, so that a
// term shared between theories gets one value wherever it is asked.
const Term_* TheoryManager::get_model_value(const Term_* term) {
  if (!enabled(0) || d_euf == nullptr || d_config->interface_eq_policy == 3) {
    return do_get_model_value(term);
  }
  const Term_* r = d_euf->get_model_value(term);
  if (r == nullptr) {
    return do_get_model_value(term);
  }
  if (const Term_* v = do_get_model_value(r)) {
    return v;
  }
  if (const TermList* members = d_euf->get_model_congruence_class(r)) {
    for (const Term_* m : *members) {
      if (const Term_* v = do_get_model_value(m)) {
        return v;
      }
    }
  }
  return r;
}

// The solvers besides EUF, by index; the last that knows the term wins.
// Null when none does.
const Term_* TheoryManager::do_get_model_value(const Term_* term) {
  const Term_* value = nullptr;
  for (int i = 1; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      if (const Term_* v = d_solvers[i]->get_model_value(term)) {
        value = v;
      }
    }
  }
  return value;
}

// ---------------------------------------------------------------------------
// Statistics
// ---------------------------------------------------------------------------

TheorySolver::Stats TheoryManager::get_stats() const {
  TheorySolver::Stats out{
      {"necessary interface equalities", std::to_string(d_necessary_ieqs)},
      {"extra interface equalities", std::to_string(d_extra_ieqs)},
      {"cardinality lemmas",
       std::to_string(d_card != nullptr ? d_card->num_lemmas() : 0)},
  };
  for (int i = 0; i < kNumSolvers; ++i) {
    if (!enabled(i)) {
      continue;
    }
    const SolverCounters& c = d_counters[i];
    std::string name = d_solvers[i]->get_name();
    out.emplace_back(name + " total calls", std::to_string(c.total_calls));
    out.emplace_back(name + " complete calls",
                     std::to_string(c.complete_calls));
    out.emplace_back(name + " conflicts", std::to_string(c.conflicts));
    out.emplace_back(name + " implications", std::to_string(c.implications));
    out.emplace_back(name + " explanations", std::to_string(c.explanations));
    for (auto& [k, v] : d_solvers[i]->get_stats()) {
      out.emplace_back(name + " " + k, v);
    }
  }
  return out;
}

}  // namespace zenlo
