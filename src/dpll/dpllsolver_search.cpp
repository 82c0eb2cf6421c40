// The check: the restart loop, the search loop, unit propagation and the
// choice of decisions.
#include <algorithm>
#include <ostream>

#include "base/logger.h"
#include "base/terminationtest.h"
#include "dpll/dpllsolver.h"

namespace zenlo {

using dpll::lit_Undef;
using dpll::mk_lit;
using dpll::var;
using dpll::var_Undef;

namespace {

constexpr uint64_t kMinReduceThreshold = 3000;
constexpr uint64_t kMinReduceIncrement = 500;
constexpr uint64_t kMinLearntBase = 1000;
constexpr uint64_t kLearntLimitFactor = 50;
constexpr double kLbdRestartMargin = 0.7;

// The Luby sequence from index 1: 1 1 2 1 1 2 4 1 1 2 1 1 2 4 8 ...
double luby(uint64_t i) {
  for (;;) {
    int k = 1;
    while ((uint64_t(1) << k) - 1 < i) {
      ++k;
    }
    if ((uint64_t(1) << k) - 1 == i) {
      return static_cast<double>(uint64_t(1) << (k - 1));
    }
    i = i - (uint64_t(1) << (k - 1)) + 1;
  }
}

}  // namespace

// ---------------------------------------------------------------------------
// Entry points
// ---------------------------------------------------------------------------

bool DpllSolver::solve(bool keep) {
  return do_solve({}, keep) == l_True;
}

bool DpllSolver::solve() {
  return solve(false);
}

bool DpllSolver::solve(const std::vector<Lit>& assumptions, bool keep) {
  return do_solve(assumptions, keep) == l_True;
}

bool DpllSolver::solve(const std::vector<Lit>& assumptions) {
  return solve(assumptions, false);
}

lbool DpllSolver::solve_limited(const std::vector<Lit>& assumptions,
                                uint64_t conflicts,
                                uint64_t propagations,
                                uint64_t decisions,
                                bool keep) {
  d_conflict_limit = conflicts;
  d_propagation_limit = propagations;
  d_decision_limit = decisions;
  lbool result;
  try {
    result = do_solve(assumptions, keep);
  } catch (...) {
    d_conflict_limit = d_propagation_limit = d_decision_limit = 0;
    throw;
  }
  d_conflict_limit = d_propagation_limit = d_decision_limit = 0;
  return result;
}

lbool DpllSolver::do_solve(const std::vector<Lit>& assumptions, bool keep) {
  d_model.clear();
  d_conflict.clear();
  for (Lit a : assumptions) {
    if (a < 0 || var(a) >= num_vars()) {
      throw error("assumption `" + std::to_string(a)
                  + "' names no variable of the engine");
    }
  }
  if (d_ok >= 0) {
    return l_False;
  }
  // A trail kept by the previous check holds its assumptions; the new check
  // starts from the backtrack levels.
  cancel_until(num_backtrack_points());
  d_assumptions = assumptions;
  init_check();
  lbool status = l_Undef;
  for (;;) {
    status = search();
    if (status != l_Undef) {
      break;
    }
    update_restart_state();
    if (limits_reached()) {
      break;
    }
  }
  if (Logger* l = log_at(1)) {
    (*l)(d_log_section) << loglevel(1) << "check done: conflicts "
                        << d_stats.check_conflicts << ", decisions "
                        << d_stats.check_decisions << ", propagations "
                        << d_stats.check_propagations << endlog;
  }
  if (keep) {
    return status;
  }
  if (status == l_True) {
    build_model();
    if (d_config->minimize_model) {
      minimize_model();
    }
  }
  cancel_until(num_backtrack_points());
  return status;
}

void DpllSolver::init_check() {
  d_cancel_on_push = true;
  ++d_stats.checks;
  d_stats.check_conflicts = 0;
  d_stats.check_propagations = 0;
  d_stats.check_decisions = 0;

  d_restart_strategy = d_config->restart_strategy;
  d_agility_on = d_restart_strategy == 2;
  uint64_t c = d_clauses.size();
  d_reduce_threshold = std::max(c, kMinReduceThreshold);
  d_reduce_increment = std::max(c / 10, kMinReduceIncrement);
  d_learnt_limit = kLearntLimitFactor * std::max(c / 3, kMinLearntBase);

  switch (d_restart_strategy) {
    case 1:
    case 2:
      d_luby_index = 1;
      d_luby_unit = d_config->restart_initial;
      d_restart_budget = d_luby_unit;
      break;
    case 3:
      // The budget slot holds the running sum of LBDs of this check.
      d_restart_budget = 0.0;
      d_lbd_ring.assign(kLbdRingSize, 0);
      d_lbd_count = d_lbd_write = d_lbd_read = 0;
      d_lbd_ring_sum = 0;
      break;
    default: d_restart_budget = d_config->restart_initial; break;
  }
}

// ---------------------------------------------------------------------------
// Restarts and limits
// ---------------------------------------------------------------------------

bool DpllSolver::restart_due(uint64_t conflicts) const {
  if (d_restart_strategy != 3) {
    return static_cast<double>(conflicts) >= d_restart_budget;
  }
  // Restart when the recent learnt clauses are clearly worse (higher LBD)
  // than the average of the check.
  if (d_lbd_count < kLbdRingSize || d_stats.check_conflicts == 0) {
    return false;
  }
  double recent = static_cast<double>(d_lbd_ring_sum / d_lbd_count);
  double overall =
      d_restart_budget / static_cast<double>(d_stats.check_conflicts);
  return overall < recent * kLbdRestartMargin;
}

void DpllSolver::update_restart_state() {
  switch (d_restart_strategy) {
    case 0: d_restart_budget *= d_config->restart_geometric_factor; break;
    case 2:
      if (d_agility >= d_config->agility_limit) {
        d_luby_unit *= 2;
      } else if (d_agility <= d_config->agility_restart_limit) {
        d_luby_unit = std::max(d_luby_unit / 2,
                               static_cast<double>(d_config->restart_initial));
      }
      [[fallthrough]];
    case 1:
      ++d_luby_index;
      d_restart_budget = luby(d_luby_index) * d_luby_unit;
      break;
    case 3:
      d_lbd_count = d_lbd_write = d_lbd_read = 0;
      d_lbd_ring_sum = 0;
      break;
    default: break;
  }
}

bool DpllSolver::limits_reached() const {
  const Stats& s = d_stats;
  return (d_conflict_limit != 0 && s.check_conflicts >= d_conflict_limit)
         || (d_propagation_limit != 0
             && s.check_propagations >= d_propagation_limit)
         || (d_decision_limit != 0 && s.check_decisions >= d_decision_limit);
}

// ---------------------------------------------------------------------------
// The search loop
// ---------------------------------------------------------------------------

// Returns l_True with a model, l_False for unsat (of the clause set, or
// under the assumptions), l_Undef for a restart or a reached limit.
lbool DpllSolver::search() {
  ++d_stats.restarts;
  uint64_t conflicts = 0;
  for (;;) {
    if (d_termination != nullptr && conflicts % 100 == 0) {
      (*d_termination)();
    }
    if (limits_reached() || restart_due(conflicts)) {
      break;
    }
    if (!d_pending_units.empty() && !add_pending_units()) {
      return l_False;
    }
    if (Clause* confl = propagate()) {
      ++conflicts;
      if (!backjump_and_learn(confl, false)) {
        return l_False;
      }
      continue;
    }
    Step step = search_btpoints();
    if (step == Step::Next) {
      step = theory_step(conflicts);
    }
    switch (step) {
      case Step::Again: continue;
      case Step::Unsat: return l_False;
      case Step::Next: break;
    }
    if (decision_level() <= num_backtrack_points() && !simplify()) {
      return l_False;
    }
    maybe_reduce_db();
    switch (take_assumptions()) {
      case Step::Again: continue;
      case Step::Unsat: return l_False;
      case Step::Next: break;
    }
    ++d_stats.decisions;
    ++d_stats.check_decisions;
    Lit next = pick_branch_lit();
    if (next != lit_Undef) {
      new_decision_level();
      unchecked_enqueue(next, nullptr);
      continue;
    }
    switch (complete_check()) {
      case Step::Again: continue;
      case Step::Unsat: return l_False;
      case Step::Next: break;
    }
    if (!d_pending_units.empty()) {
      continue;
    }
    if (d_model_generation && d_theory_on) {
      theory_build_model();
    }
    return l_True;
  }
  cancel_until(num_backtrack_points());
  return l_Undef;
}

// Opens the backtrack levels that are not open, one literal per call.
DpllSolver::Step DpllSolver::search_btpoints() {
  while (decision_level() < num_backtrack_points()) {
    Lit b = d_btpoints[decision_level()];
    if (is_true(b)) {
      new_decision_level();
    } else if (is_false(b)) {
      analyze_final(b ^ 1);
      d_ok = decision_level() + 1;
      return Step::Unsat;
    } else {
      new_decision_level();
      unchecked_enqueue(b, nullptr);
      return Step::Again;
    }
  }
  return Step::Next;
}

// Each assumption is a pseudo-decision at its own level above the
// backtrack levels, so its position follows from the decision level.
DpllSolver::Step DpllSolver::take_assumptions() {
  for (;;) {
    size_t pos = decision_level() - num_backtrack_points();
    if (pos >= d_assumptions.size()) {
      return Step::Next;
    }
    Lit a = d_assumptions[pos];
    if (is_true(a)) {
      new_decision_level();
    } else if (is_false(a)) {
      analyze_final(a ^ 1);
      return Step::Unsat;
    } else {
      new_decision_level();
      unchecked_enqueue(a, nullptr);
      return Step::Again;
    }
  }
}

void DpllSolver::maybe_reduce_db() {
  const uint64_t learnts = d_learnts.size();
  const bool over = d_learnt_limit != 0 && d_learnt_limit < learnts;
  if (d_reduce_threshold * d_reduce_multiplier <= d_stats.check_conflicts) {
    if (over) {
      d_learnt_limit =
          static_cast<uint64_t>(d_learnt_limit * d_config->learnt_size_inc);
    } else {
      d_reduce_multiplier = d_stats.check_conflicts / d_reduce_threshold + 1;
      d_reduce_threshold += d_reduce_increment;
    }
    reduce_db();
  } else if (over) {
    d_learnt_limit =
        static_cast<uint64_t>(d_learnt_limit * d_config->learnt_size_inc);
    reduce_db();
  }
}

// ---------------------------------------------------------------------------
// Propagation
// ---------------------------------------------------------------------------

// Returns the conflict clause, with a hold taken on it, or null. Watch
// lists are compacted in place with a read and a write cursor; the only
// allocation is the growth of another literal's watch list.
DpllSolver::Clause* DpllSolver::propagate() {
  enqueue_theory_implications();
  Clause* confl = nullptr;
  const uint32_t start = d_qhead;
  uint64_t visits = 0;
  uint64_t bin_visits = 0;
  const uint8_t* assigns = d_assigns.data();
  auto lit_value = [assigns](Lit p) { return assigns[p >> 1] ^ (p & 1); };

  while (d_qhead < d_trail.size()) {
    const Lit p = d_trail[d_qhead++];
    const Lit false_lit = p ^ 1;
    ReallocVector<Watch>& ws = d_watches[p];
    Watch* i = ws.begin();
    Watch* j = i;
    Watch* const end = ws.end();
    while (i != end) {
      const Lit blocker = i->blocker;
      if (lit_value(blocker) == dpll::kValTrue) {
        *j++ = *i++;
        continue;
      }
      if (i->binary()) {
        ++visits;
        ++bin_visits;
        Clause* c = i->clause();
        *j++ = *i++;
        if (lit_value(blocker) == dpll::kValFalse) {
          c->retain();
          (*c)[0] = blocker;
          (*c)[1] = false_lit;
          confl = c;
          d_qhead = static_cast<uint32_t>(d_trail.size());
          while (i != end) {
            *j++ = *i++;
          }
        } else {
          unchecked_enqueue(blocker, c);
          agility_update(var(blocker));
        }
        continue;
      }
      Clause& c = *i->clause();
      ++i;
      if (c[0] == false_lit) {
        c[0] = c[1];
        c[1] = false_lit;
      }
      const Lit first = c[0];
      if (first != blocker && lit_value(first) == dpll::kValTrue) {
        *j++ = Watch(first, &c, false);
        continue;
      }
      ++visits;
      const uint32_t size = c.size();
      bool moved = false;
      for (uint32_t k = 2; k < size; ++k) {
        if (lit_value(c[k]) != dpll::kValFalse) {
          c[1] = c[k];
          c[k] = false_lit;
          d_watches[c[1] ^ 1].push_back(Watch(first, &c, false));
          moved = true;
          break;
        }
      }
      if (moved) {
        continue;
      }
      *j++ = Watch(first, &c, false);
      if (lit_value(first) == dpll::kValFalse) {
        c.retain();
        confl = &c;
        d_qhead = static_cast<uint32_t>(d_trail.size());
        while (i != end) {
          *j++ = *i++;
        }
      } else {
        unchecked_enqueue(first, &c);
        agility_update(var(first));
      }
    }
    ws.shrink(static_cast<uint32_t>(i - j));
  }
  const uint64_t props = d_qhead - start;
  d_stats.propagations += props;
  d_stats.check_propagations += props;
  d_stats.watched_visits += visits;
  d_stats.binary_watched_visits += bin_visits;
  d_simp_credit -= static_cast<int64_t>(props);
  return confl;
}

// ---------------------------------------------------------------------------
// Decisions
// ---------------------------------------------------------------------------

uint64_t DpllSolver::next_random() {
  // The mask clears bit 49 only; runs depend on exactly this sequence.
  d_seed = (d_seed * 0x5DEECE66DULL + 0xBULL) & 0xFFFDFFFFFFFFFFFFULL;
  return d_seed;
}

DpllSolver::Lit DpllSolver::pick_branch_lit() {
  for (Var v : d_preferred_list) {
    if (d_assigns[v] == dpll::kValUndef) {
      return decide_polarity(v, false);
    }
  }
  Var next = var_Undef;
  bool random_polarity = false;
  uint64_t x = next_random();
  double r = static_cast<double>(static_cast<uint32_t>(x >> 16) % 0x7FFFFFFFu)
             / 2147483647.0;
  if (r < d_config->branching_random_frequency && !d_heap.empty()) {
    x = next_random();
    Var v = d_heap[static_cast<uint32_t>(x >> 16) % d_heap.size()];
    if (d_assigns[v] == dpll::kValUndef && d_decision[v]) {
      ++d_stats.random_decisions;
      if (d_config->branching_random_invalidate_phase_cache) {
        d_phase[v] = dpll::kPhaseInvalid;
      }
      random_polarity = d_config->branching_random_ignore_polarity;
      next = v;
    }
  }
  while (next == var_Undef || d_assigns[next] != dpll::kValUndef
         || !d_decision[next]) {
    if (d_heap.empty()) {
      return lit_Undef;
    }
    next = d_heap.remove_max();
  }
  return decide_polarity(next, random_polarity);
}

DpllSolver::Lit DpllSolver::decide_polarity(Var v, bool random_polarity) {
  if (d_preferred[v] != dpll::kValUndef) {
    return mk_lit(v, d_preferred[v] == dpll::kValFalse);
  }
  if (random_polarity) {
    return mk_lit(v, ((next_random() >> 16) & 1) != 0);
  }
  uint8_t phase = d_phase[v];
  return mk_lit(v, !(phase == dpll::kValTrue || phase == dpll::kPhaseInvalid));
}

}  // namespace zenlo
