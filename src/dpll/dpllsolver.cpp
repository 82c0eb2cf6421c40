// Variables, proxies, the assignment and the ways clauses enter the engine.
#include "dpll/dpllsolver.h"

#include <algorithm>
#include <ostream>

#include "base/logger.h"

namespace zenlo {

using dpll::lit_Undef;
using dpll::mk_lit;
using dpll::sign;
using dpll::var;
using dpll::var_Undef;

namespace {
constexpr long kDefaultSeed = 91648253;
}

DpllSolver::DpllSolver(Configuration::Dpll* config, const Configuration* global)
    : d_config(config),
      d_heap(&d_activity),
      d_seed(
          static_cast<uint64_t>(global ? global->random_seed : kDefaultSeed)) {
  if (global != nullptr) {
    d_model_generation = global->model_generation;
    d_unsat_core_generation = global->unsat_core_generation;
    d_proof_logging = global->proof_generation;
    if (global->check.learnt_clauses) {
      d_rup = std::make_unique<dpll::RupChecker>();
    }
  }
  if (config->preprocessor.mode != 0) {
    if (d_proof_logging) {
      throw error(
          "proof generation is not compatible with SAT-level preprocessing");
    }
    // Eliminated variables may come back, so satisfied problem clauses must
    // stay, and clauses carry the preprocessor's words.
    d_remove_satisfied = false;
    d_extended_clauses = true;
  } else {
    d_remove_satisfied = config->remove_satisfied;
  }
  d_restart_strategy = config->restart_strategy;
  d_agility_on = d_restart_strategy == 2;
  d_placeholder = Clause::create_placeholder();
}

DpllSolver::~DpllSolver() {
  for (Clause* c : d_stored_lemmas) {
    Clause::release(c);
  }
  for (std::vector<Clause*>* cs : {&d_clauses, &d_learnts, &d_unit_learnts}) {
    for (Clause* c : *cs) {
      Clause::release(c);
    }
  }
  Clause::release(d_placeholder);
}

// ---------------------------------------------------------------------------
// Variables
// ---------------------------------------------------------------------------

DpllSolver::Var DpllSolver::next_var() const {
  return num_vars();
}

DpllSolver::Var DpllSolver::new_var() {
  Var v = num_vars();
  d_assigns.push_back(dpll::kValUndef);
  d_phase.push_back(d_config->branching_initial_phase == 1 ? dpll::kValTrue
                                                           : dpll::kValFalse);
  d_preferred.push_back(dpll::kValUndef);
  d_decision.push_back(0);
  d_vardata.push_back({nullptr, -1, -1});
  d_seen.push_back(0);
  d_problem.push_back(0);
  d_frozen.push_back(0);
  d_btvar.push_back(0);
  d_var_term.push_back(nullptr);
  d_dependents.emplace_back();
  d_activity.push_back(0.0);
  d_watches.emplace_back();
  d_watches.emplace_back();
  // Every variable is on the trail at most once, so with this capacity the
  // trail never reallocates during propagation.
  if (d_trail.capacity() < d_assigns.size()) {
    d_trail.reserve(2 * d_assigns.size());
  }
  set_decision_var(v, true);
  return v;
}

void DpllSolver::pop_var() {
  Var v = num_vars() - 1;
  if (d_heap.contains(v)) {
    d_heap.remove(v);
  }
  d_heap.shrink_vars(v);
  unproxy(v);
  d_assigns.pop_back();
  d_phase.pop_back();
  d_preferred.pop_back();
  d_decision.pop_back();
  d_vardata.pop_back();
  d_seen.pop_back();
  d_problem.pop_back();
  d_frozen.pop_back();
  d_btvar.pop_back();
  d_var_term.pop_back();
  d_dependents.pop_back();
  d_activity.pop_back();
  d_watches.pop_back();
  d_watches.pop_back();
  if (d_model.size() > d_assigns.size()) {
    d_model.resize(d_assigns.size());
  }
}

void DpllSolver::set_frozen(Var v, bool frozen) {
  d_frozen[v] = frozen;
}

void DpllSolver::set_problem_var(Var v, bool flag) {
  d_problem[v] = flag;
  if (flag) {
    set_decision_var(v, true);
  }
}

void DpllSolver::set_decision_var(Var v, bool flag) {
  d_decision[v] = flag;
  if (flag) {
    insert_var_order(v);
  }
  for (Var d : d_dependents[v]) {
    set_decision_var(d, flag);
  }
}

void DpllSolver::set_decision_var_dep(Var v, Var on) {
  d_dependents[on].push_back(v);
  set_decision_var(v, d_decision[on] != 0);
  d_dep_undo.emplace_back(v, on);
}

void DpllSolver::insert_var_order(Var v) {
  if (!d_heap.contains(v) && d_decision[v]) {
    d_heap.insert(v);
  }
}

void DpllSolver::reset_var_order() {
  std::fill(d_activity.begin(), d_activity.end(), 0.0);
  d_var_inc = 1.0;
  std::vector<Var> vars;
  for (Var v = 0; v < num_vars(); ++v) {
    if (d_decision[v] && d_assigns[v] == dpll::kValUndef) {
      vars.push_back(v);
    }
  }
  d_heap.build(vars);
}

void DpllSolver::add_preferred_for_branching(Lit p) {
  d_preferred_list.push_back(var(p));
  d_preferred[var(p)] = sign(p) ? dpll::kValFalse : dpll::kValTrue;
}

void DpllSolver::set_preferred_polarity(Var v, lbool polarity) {
  d_preferred[v] = polarity.is_undef() ? dpll::kValUndef : polarity.raw();
}

void DpllSolver::clear_preferred_for_branching() {
  d_preferred_list.clear();
}

void DpllSolver::set_phase(Var v, bool value) {
  d_phase[v] = value ? dpll::kValTrue : dpll::kValFalse;
}

// ---------------------------------------------------------------------------
// Proxies
// ---------------------------------------------------------------------------

bool DpllSolver::make_proxy(const Term_* term, Var& v) {
  auto it = d_term_var.find(term);
  if (it != d_term_var.end()) {
    v = it->second;
    return false;
  }
  v = new_var();
  d_var_term[v] = term;
  d_term_var.emplace(term, v);
  if (Logger* l = log_at(3)) {
    (*l)(d_log_section) << loglevel(3)
                        << "proxied term: " << static_cast<const void*>(term)
                        << ", with var: " << v << endlog;
  }
  theory_tell_atom(term, v);
  return true;
}

DpllSolver::Var DpllSolver::proxy_for_term(const Term_* term) const {
  auto it = d_term_var.find(term);
  return it == d_term_var.end() ? var_Undef : it->second;
}

const Term_* DpllSolver::term_of(Var v) const {
  return v >= 0 && v < num_vars() ? d_var_term[v] : nullptr;
}

void DpllSolver::unproxy(Var v) {
  const Term_* t = d_var_term[v];
  if (t != nullptr) {
    d_term_var.erase(t);
    d_var_term[v] = nullptr;
  }
}

// ---------------------------------------------------------------------------
// Assignment
// ---------------------------------------------------------------------------

void DpllSolver::new_decision_level() {
  if (d_theory_on) {
    theory_new_decision_level();
  }
  d_trail_lim.push_back(static_cast<int>(d_trail.size()));
  d_theory_lim.push_back(d_theory_head);
}

void DpllSolver::cancel_until(int level) {
  if (decision_level() <= level) {
    return;
  }
  if (d_theory_on) {
    // What the theories heard since the first dropped level opened is
    // taken back by them, also literals of lower levels that reached them
    // late (a backtrack level opens before the theories catch up); the
    // head falls back to where it stood when that level opened.
    d_theory_head = std::min(d_theory_head, d_theory_lim[level]);
    theory_cancel_until(level);
  }
  const int cache = d_config->branching_cache_phase;
  const int start = d_trail_lim[level];
  const int top_start = d_trail_lim.back();
  const uint8_t initial =
      d_config->branching_initial_phase == 1 ? dpll::kValTrue : dpll::kValFalse;
  for (int c = static_cast<int>(d_trail.size()) - 1; c >= start; --c) {
    Var x = var(d_trail[c]);
    if (d_phase[x] == dpll::kPhaseInvalid) {
      d_phase[x] = initial;
    } else if (cache == 2 || (cache == 1 && c > top_start)) {
      d_phase[x] = d_assigns[x];
    }
    d_assigns[x] = dpll::kValUndef;
    d_vardata[x].reason = nullptr;
    d_vardata[x].level = -1;
    insert_var_order(x);
  }
  d_qhead = static_cast<uint32_t>(start);
  d_trail.resize(start);
  d_trail_lim.resize(level);
  d_theory_lim.resize(level);
}

void DpllSolver::build_model() {
  d_model.resize(d_assigns.size());
  for (size_t v = 0; v < d_assigns.size(); ++v) {
    d_model[v] = lbool(d_assigns[v]);
  }
}

lbool DpllSolver::get_model_value(Var v) const {
  return v >= 0 && static_cast<size_t>(v) < d_model.size() ? d_model[v]
                                                           : l_Undef;
}

// ---------------------------------------------------------------------------
// Adding clauses
// ---------------------------------------------------------------------------

DpllSolver::Clause* DpllSolver::new_clause(const std::vector<Lit>& lits,
                                           bool learnt,
                                           bool theory) {
  return dpll::Clause_new(
      d_extended_clauses, d_next_clause_id++, lits, learnt, theory);
}

bool DpllSolver::add_clause_inplace(std::vector<Lit>& lits,
                                    bool theory,
                                    bool tell) {
  (void)tell;  // only the ghost filter listens
  for (Lit p : lits) {
    if (p < 0 || var(p) >= num_vars()) {
      throw error("clause literal `" + std::to_string(p)
                  + "' names no variable of the engine");
    }
  }
  if (!d_btpoints.empty()) {
    lits.push_back(d_btpoints.back() ^ 1);
  }
  if (d_rup) {
    d_rup->add_axiom(lits);
  }
  Clause* c = nullptr;
  bool result = true;
  if (decision_level() > num_backtrack_points()) {
    add_clause_in_search(lits, theory);
  } else {
    result = do_add_clause(lits, &c, !theory);
  }
  if (c != nullptr) {
    if (!d_btpoints.empty() && c->extended()) {
      Var g = var(d_btpoints.back());
      c->set_guard(g);
      c->compute_abstraction(g);
    }
    c->set_theory(theory);
  }
  return result;
}

// Sorts, drops repeated literals and tautologies, and keeps the clause
// watched on its most recently assigned literals; whatever is unit or
// conflicting under the current assignment waits as a pending unit, which
// the loop settles at level 0 before its next propagation.
void DpllSolver::add_clause_in_search(std::vector<Lit>& lits, bool theory) {
  std::sort(lits.begin(), lits.end());
  size_t j = 0;
  for (size_t i = 0; i < lits.size(); ++i) {
    if (j > 0 && lits[i] == (lits[j - 1] ^ 1)) {
      return;
    }
    if (j == 0 || lits[i] != lits[j - 1]) {
      lits[j++] = lits[i];
    }
  }
  lits.resize(j);
  Clause* c = new_clause(lits, false, theory);
  d_clauses.push_back(c);
  if (lits.size() < 2) {
    d_pending_units.push_back(c);
    return;
  }
  sort_by_trail(c);
  attach(c);
  int open = 0;
  for (Lit p : *c) {
    open += is_unassigned(p) ? 1 : 0;
  }
  if (open <= 1) {
    d_pending_units.push_back(c);
  }
}

bool DpllSolver::do_add_clause(std::vector<Lit>& lits,
                               Clause** out,
                               bool simplify) {
  if (d_ok >= 0) {
    return false;
  }
  const bool strip = !d_proof_logging && decision_level() == 0
                     && d_unsat_core_generation == 0 && simplify;
  std::sort(lits.begin(), lits.end());
  size_t j = 0;
  Lit prev = lit_Undef;
  for (size_t i = 0; i < lits.size(); ++i) {
    Lit p = lits[i];
    if (is_true(p) || p == (prev ^ 1)) {
      return true;
    }
    if (p != prev && !(strip && is_false(p))) {
      lits[j++] = p;
    }
    prev = p;
  }
  lits.resize(j);
  if (lits.empty()) {
    d_ok = num_backtrack_points();
    return false;
  }
  if (lits.size() > 1) {
    return add_long_clause(lits, out, strip);
  }
  Clause* c = nullptr;
  if (d_proof_logging || !d_remove_satisfied) {
    c = new_clause(lits, false, false);
    d_clauses.push_back(c);
    *out = c;
  }
  if (is_false(lits[0])) {
    d_ok = num_backtrack_points();
    return false;
  }
  unchecked_enqueue(lits[0], c);
  if (Clause* confl = propagate()) {
    Clause::release(confl);
    d_ok = num_backtrack_points();
    return false;
  }
  return true;
}

// A clause of two or more literals, none true. Without `strip` some may be
// false (inside backtrack levels or when the literals must stay for
// certificates): the watches then go to non-false literals where possible,
// else to the false literal assigned last.
bool DpllSolver::add_long_clause(std::vector<Lit>& lits,
                                 Clause** out,
                                 bool strip) {
  if (!strip) {
    for (int w = 0; w < 2; ++w) {
      size_t best = w;
      for (size_t i = w; i < lits.size(); ++i) {
        bool better = !is_false(lits[i])
                      || (is_false(lits[best])
                          && d_vardata[var(lits[i])].trail_pos
                                 > d_vardata[var(lits[best])].trail_pos);
        if (better) {
          best = i;
          if (!is_false(lits[i])) {
            break;
          }
        }
      }
      std::swap(lits[w], lits[best]);
    }
  }
  Clause* c = new_clause(lits, false, false);
  d_clauses.push_back(c);
  *out = c;
  attach(c);
  if (is_false(lits[0])) {
    d_ok = num_backtrack_points();
    return false;
  }
  if (is_false(lits[1])) {
    unchecked_enqueue(lits[0], c);
    if (Clause* confl = propagate()) {
      Clause::release(confl);
      d_ok = num_backtrack_points();
      return false;
    }
  }
  return true;
}

// Unassigned literals first, then the assigned ones latest first. Values do
// not matter among assigned literals, so one total order serves every use.
void DpllSolver::sort_by_trail(std::vector<Lit>& lits) const {
  auto key = [this](Lit p) -> int64_t {
    if (is_unassigned(p)) {
      return -1;
    }
    return d_vardata[var(p)].trail_pos;
  };
  std::sort(lits.begin(), lits.end(), [&key](Lit a, Lit b) {
    int64_t ka = key(a);
    int64_t kb = key(b);
    if ((ka < 0) != (kb < 0)) {
      return ka < 0;
    }
    return ka != kb ? ka > kb : a < b;
  });
}

void DpllSolver::sort_by_trail(Clause* c) const {
  std::vector<Lit> tmp(c->begin(), c->end());
  sort_by_trail(tmp);
  std::copy(tmp.begin(), tmp.end(), c->begin());
}

// ---------------------------------------------------------------------------
// Watches
// ---------------------------------------------------------------------------

void DpllSolver::attach(Clause* c) {
  if (c->size() < 2) {
    return;
  }
  Lit a = (*c)[0];
  Lit b = (*c)[1];
  bool binary = c->size() == 2;
  d_watches[a ^ 1].push_back(Watch(b, c, binary));
  d_watches[b ^ 1].push_back(Watch(a, c, binary));
}

void DpllSolver::detach(Clause* c) {
  if (c->size() < 2) {
    return;
  }
  for (int k = 0; k < 2; ++k) {
    ReallocVector<Watch>& ws = d_watches[(*c)[k] ^ 1];
    uint32_t i = 0;
    while (ws[i].clause() != c) {
      ++i;
    }
    for (; i + 1 < ws.size(); ++i) {
      ws[i] = ws[i + 1];
    }
    ws.pop_back();
  }
}

// A clause that is the reason of an assignment must stay. Long clauses
// imply their first literal; a binary clause may imply either.
bool DpllSolver::locked(const Clause* c) const {
  auto is_reason_of = [this, c](Lit p) {
    return d_vardata[var(p)].reason == c && (d_proof_logging || is_true(p));
  };
  if (c->size() == 0) {
    return false;
  }
  return is_reason_of((*c)[0]) || (c->size() == 2 && is_reason_of((*c)[1]));
}

// ---------------------------------------------------------------------------
// Statistics and logging
// ---------------------------------------------------------------------------

std::vector<std::pair<std::string, std::string>> DpllSolver::get_stats() const {
  const Stats& s = d_stats;
  return {
      {":sat-checks", std::to_string(s.checks)},
      {":sat-restarts", std::to_string(s.restarts)},
      {":sat-decisions", std::to_string(s.decisions)},
      {":sat-random-decisions", std::to_string(s.random_decisions)},
      {":sat-propagations", std::to_string(s.propagations)},
      {":sat-theory-propagations", std::to_string(s.theory_propagations)},
      {":sat-watched-clauses-visited", std::to_string(s.watched_visits)},
      {":sat-binary-watched-clauses-visited",
       std::to_string(s.binary_watched_visits)},
      {":sat-conflicts", std::to_string(s.conflicts)},
      {":sat-theory-conflicts", std::to_string(s.theory_conflicts)},
  };
}

void DpllSolver::set_logger(Logger* logger, const std::string& section) {
  d_logger = logger;
  d_log_section = section;
}

Logger* DpllSolver::log_at(int level) const {
  if (d_logger != nullptr
      && d_logger->would_log(d_log_section.c_str(), level)) {
    return d_logger;
  }
  return nullptr;
}

void DpllSolver::optimization_set(opt::OptSearch* const*,
                                  opt::OptSearch* const*) {}

void DpllSolver::optimization_unset() {}

}  // namespace zenlo
