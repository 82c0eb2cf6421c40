// Conflict analysis: first-UIP learning, minimisation of the learnt clause,
// the backjump, and the final conflict over assumptions.
#include <algorithm>

#include "dpll/dpllsolver.h"

namespace zenlo {

using dpll::lit_Undef;
using dpll::mk_lit;
using dpll::var;

namespace {
constexpr double kVarActivityLimit = 1e100;
constexpr double kClauseActivityLimit = 1e20;
constexpr size_t kBinaryMinimizeMaxSize = 30;
constexpr unsigned kBinaryMinimizeMaxLbd = 6;
}  // namespace

// Requires: `confl` is false under the assignment, with a hold taken on it.
// Returns: false when the conflict makes the clause set unsatisfiable.
// After: the hold is given back; the learnt clause asserts its first
// literal at the backjump level.
bool DpllSolver::backjump_and_learn(Clause* confl, bool theory) {
  (void)theory;
  // A theory conflict may lie entirely below the current level: go down to
  // the level where it became false, so that analysis finds a UIP there.
  if (confl->size() > 0) {
    int top = d_vardata[var((*confl)[0])].level;
    if (confl->size() > 1) {
      top = std::max(top, d_vardata[var((*confl)[1])].level);
    }
    if (top < decision_level()) {
      cancel_until(top);
      if (confl->size() > 1) {
        detach(confl);
        sort_by_trail(confl);
        attach(confl);
      }
    }
  } else {
    cancel_until(0);
  }
  ++d_stats.conflicts;
  ++d_stats.check_conflicts;
  if (decision_level() == 0) {
    Clause::release(confl);
    d_ok = 0;
    return false;
  }
  if (confl->size() == 1) {
    cancel_until(0);
    Lit p = (*confl)[0];
    unchecked_enqueue(p, d_proof_logging ? confl : nullptr);
    agility_update(var(p));
    Clause::release(confl);
    return true;
  }
  int btlevel = 0;
  analyze(confl, d_learnt, btlevel);
  unsigned lbd = compute_lbd(d_learnt.data(), d_learnt.size());
  if (d_config->glucose_var_activity) {
    // Variables implied by good learnt clauses are bumped once more.
    for (Lit q : d_glucose_lits) {
      Clause* r = reason(var(q));
      if (r != nullptr && r->lbd() < lbd) {
        var_bump(var(q));
      }
    }
    d_glucose_lits.clear();
  }
  cancel_until(btlevel);
  if (d_restart_strategy == 3) {
    if (d_lbd_count == kLbdRingSize) {
      d_lbd_ring_sum -= d_lbd_ring[d_lbd_read];
      d_lbd_read = (d_lbd_read + 1) % kLbdRingSize;
    } else {
      ++d_lbd_count;
    }
    d_lbd_ring[d_lbd_write] = lbd;
    d_lbd_write = (d_lbd_write + 1) % kLbdRingSize;
    d_lbd_ring_sum += lbd;
    d_restart_budget += lbd;
  }
  learn(d_learnt, lbd);
  agility_update(var(d_learnt[0]));
  d_var_inc *= d_config->var_decay;
  d_cla_inc *= d_config->clause_decay;
  Clause::release(confl);
  return true;
}

void DpllSolver::learn(const std::vector<Lit>& lits, unsigned lbd) {
  if (d_rup) {
    check_learnt(lits);
  }
  if (lits.size() > 1) {
    Clause* c = new_clause(lits, true, false);
    c->set_lbd(lbd);
    d_learnts.push_back(c);
    attach(c);
    cla_bump(c);
    unchecked_enqueue(lits[0], c);
    return;
  }
  Clause* c = nullptr;
  if (d_proof_logging) {
    c = new_clause(lits, true, false);
    d_unit_learnts.push_back(c);
  }
  unchecked_enqueue(lits[0], c);
}

// First-UIP resolution from `confl`. `out` gets the learnt clause, its
// asserting literal first and a literal of the backjump level second.
void DpllSolver::analyze(Clause* confl, std::vector<Lit>& out, int& btlevel) {
  const bool skip0 = !d_proof_logging && !d_config->store_tlemmas;
  const bool glucose = d_config->glucose_var_activity;
  const int level = decision_level();
  int path = 0;
  Lit p = lit_Undef;
  int index = static_cast<int>(d_trail.size()) - 1;
  out.clear();
  out.push_back(lit_Undef);
  for (;;) {
    Clause& c = *confl;
    if (p != lit_Undef && c.size() == 2 && c[0] != p) {
      std::swap(c[0], c[1]);
    }
    if (c.learnt()) {
      cla_bump(&c);
    }
    for (uint32_t k = p == lit_Undef ? 0 : 1; k < c.size(); ++k) {
      Lit q = c[k];
      Var v = var(q);
      int lv = d_vardata[v].level;
      if (d_seen[v] || (lv == 0 && skip0)) {
        continue;
      }
      d_seen[v] = 1;
      var_bump(v);
      if (lv >= level) {
        ++path;
        Clause* r = d_vardata[v].reason;
        if (glucose && r != nullptr && r != d_placeholder && r->learnt()) {
          d_glucose_lits.push_back(q);
        }
      } else {
        out.push_back(q);
      }
    }
    while (!d_seen[var(d_trail[index--])]) {
    }
    p = d_trail[index + 1];
    d_seen[var(p)] = 0;
    if (--path == 0) {
      break;
    }
    // Only now, with another literal of the level still open, is the
    // reason of `p` needed; a lazy theory reason is built here.
    confl = reason_for_analysis(var(p));
  }
  out[0] = p ^ 1;
  minimize_learnt(out);

  btlevel = 0;
  if (out.size() > 1) {
    size_t max_i = 1;
    for (size_t i = 2; i < out.size(); ++i) {
      if (d_vardata[var(out[i])].level > d_vardata[var(out[max_i])].level) {
        max_i = i;
      }
    }
    std::swap(out[1], out[max_i]);
    btlevel = d_vardata[var(out[1])].level;
  }
}

DpllSolver::Clause* DpllSolver::reason_for_analysis(Var v) {
  Clause* r = d_vardata[v].reason;
  if (r == d_placeholder) {
    Lit p = mk_lit(v, d_assigns[v] == dpll::kValFalse);
    r = get_theory_reason(p, true);
    if (r == nullptr) {
      throw error("theory gave no explanation for an implied literal");
    }
    d_vardata[v].reason = r;
  }
  return r;
}

void DpllSolver::minimize_learnt(std::vector<Lit>& out) {
  d_analyze_toclear.assign(out.begin(), out.end());
  if (d_config->learnt_minimization) {
    // Level-0 facts may be resolved away unless a stored lemma set must
    // stay complete and some level-0 fact has no clause behind it.
    d_level0_resolvable = true;
    if (d_config->store_tlemmas) {
      int end0 = d_trail_lim.empty() ? static_cast<int>(d_trail.size())
                                     : d_trail_lim[0];
      for (int i = 0; i < end0 && d_level0_resolvable; ++i) {
        d_level0_resolvable = reason(var(d_trail[i])) != d_placeholder;
      }
    }
    uint32_t abstract_levels = 0;
    for (size_t i = 1; i < out.size(); ++i) {
      abstract_levels |= 1u << (d_vardata[var(out[i])].level & 31);
    }
    size_t j = 1;
    for (size_t i = 1; i < out.size(); ++i) {
      Var v = var(out[i]);
      Clause* r = d_vardata[v].reason;
      bool keep = r == nullptr || r == d_placeholder
                  || (d_vardata[v].level == 0 && !d_level0_resolvable)
                  || !lit_redundant(out[i], abstract_levels);
      if (keep) {
        out[j++] = out[i];
      }
    }
    out.resize(j);
  }
  for (Lit q : d_analyze_toclear) {
    d_seen[var(q)] = 0;
  }
  if (d_config->glucose_learnt_minimization && !d_proof_logging
      && out.size() <= kBinaryMinimizeMaxSize
      && compute_lbd(out.data(), out.size()) <= kBinaryMinimizeMaxLbd) {
    binary_minimize(out);
  }
}

// Depth-first walk through the reasons of `p`: true when every path ends
// in a literal of the learnt clause (seen) or at level 0. Levels outside
// `abstract_levels` cannot lead back into the clause, which cuts the walk
// early.
bool DpllSolver::lit_redundant(Lit p, uint32_t abstract_levels) {
  d_analyze_stack.clear();
  d_analyze_stack.push_back(p);
  const size_t top = d_analyze_toclear.size();
  while (!d_analyze_stack.empty()) {
    Var x = var(d_analyze_stack.back());
    d_analyze_stack.pop_back();
    Clause& c = *d_vardata[x].reason;
    if (c.size() == 2 && var(c[0]) != x) {
      std::swap(c[0], c[1]);
    }
    for (uint32_t k = 1; k < c.size(); ++k) {
      Lit q = c[k];
      Var v = var(q);
      const VarData& vd = d_vardata[v];
      if (d_seen[v] || (vd.level == 0 && d_level0_resolvable)) {
        continue;
      }
      if (vd.reason != nullptr && vd.reason != d_placeholder
          && ((1u << (vd.level & 31)) & abstract_levels) != 0) {
        d_seen[v] = 1;
        d_analyze_stack.push_back(q);
        d_analyze_toclear.push_back(q);
      } else {
        for (size_t j = top; j < d_analyze_toclear.size(); ++j) {
          d_seen[var(d_analyze_toclear[j])] = 0;
        }
        d_analyze_toclear.resize(top);
        return false;
      }
    }
  }
  return true;
}

// Drops literals ~q of the learnt clause for which a binary clause
// (first | q) exists with q true: resolving on it removes ~q.
void DpllSolver::binary_minimize(std::vector<Lit>& out) {
  for (size_t i = 1; i < out.size(); ++i) {
    d_seen[var(out[i])] = 2;
  }
  bool removed = false;
  for (const Watch& w : d_watches[out[0] ^ 1]) {
    if (w.binary() && is_true(w.blocker) && d_seen[var(w.blocker)] == 2) {
      d_seen[var(w.blocker)] = 0;
      removed = true;
    }
  }
  size_t j = 1;
  for (size_t i = 1; i < out.size(); ++i) {
    if (d_seen[var(out[i])] == 2 || !removed) {
      out[j++] = out[i];
    }
    d_seen[var(out[i])] = 0;
  }
  out.resize(j);
}

unsigned DpllSolver::compute_lbd(const Lit* lits, size_t n) {
  if (d_level_stamp.size() <= static_cast<size_t>(decision_level())) {
    d_level_stamp.resize(2 * decision_level() + 2, 0);
  }
  ++d_stamp;
  unsigned lbd = 0;
  for (size_t i = 0; i < n; ++i) {
    int lv = d_vardata[var(lits[i])].level;
    if (lv >= 0 && d_level_stamp[lv] != d_stamp) {
      d_level_stamp[lv] = d_stamp;
      ++lbd;
    }
  }
  return lbd;
}

// Collects in the conflict vector the negations of the assumptions that
// imply `p`; `p` itself comes first. Backtrack literals are left out: they
// are not the caller's assumptions.
void DpllSolver::analyze_final(Lit p) {
  d_conflict.clear();
  if (!is_btvar(var(p))) {
    d_conflict.push_back(p);
  }
  if (decision_level() == 0) {
    return;
  }
  d_seen[var(p)] = 1;
  for (int i = static_cast<int>(d_trail.size()) - 1; i >= d_trail_lim[0]; --i) {
    Var x = var(d_trail[i]);
    if (!d_seen[x]) {
      continue;
    }
    if (d_vardata[x].reason == nullptr) {
      if (!is_btvar(x)) {
        d_conflict.push_back(d_trail[i] ^ 1);
      }
    } else {
      Clause& c = *reason_for_analysis(x);
      for (Lit q : c) {
        if (var(q) != x && d_vardata[var(q)].level > 0) {
          d_seen[var(q)] = 1;
        }
      }
    }
    d_seen[x] = 0;
  }
  d_seen[var(p)] = 0;
}

void DpllSolver::var_bump(Var v) {
  if ((d_activity[v] += d_var_inc) > kVarActivityLimit) {
    for (double& a : d_activity) {
      a *= 1 / kVarActivityLimit;
    }
    d_var_inc *= 1 / kVarActivityLimit;
  }
  if (d_heap.contains(v)) {
    d_heap.increase(v);
  }
}

void DpllSolver::cla_bump(Clause* c) {
  float a = c->activity() + static_cast<float>(d_cla_inc);
  c->set_activity(a);
  if (a > kClauseActivityLimit) {
    for (Clause* l : d_learnts) {
      l->set_activity(l->activity() * static_cast<float>(1e-20));
    }
    d_cla_inc *= 1e-20;
  }
}

}  // namespace zenlo
