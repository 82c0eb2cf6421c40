// Keeping the clause database small: reduction of learnt clauses, removal
// of satisfied clauses, pending units, and explicit removal.
#include <algorithm>
#include <climits>
#include <ostream>

#include "base/logger.h"
#include "dpll/dpllsolver.h"

namespace zenlo {

using dpll::var;
using dpll::var_Undef;

// ---------------------------------------------------------------------------
// Removal
// ---------------------------------------------------------------------------

// Takes the watchers of all `doomed` clauses out with one pass over each
// watch list concerned, instead of one pass per clause. Sorts `doomed`.
void DpllSolver::detach_batch(std::vector<Clause*>& doomed) {
  std::sort(doomed.begin(), doomed.end());
  std::vector<Lit> lists;
  for (const Clause* c : doomed) {
    if (c->size() >= 2) {
      lists.push_back((*c)[0] ^ 1);
      lists.push_back((*c)[1] ^ 1);
    }
  }
  std::sort(lists.begin(), lists.end());
  lists.erase(std::unique(lists.begin(), lists.end()), lists.end());
  for (Lit p : lists) {
    ReallocVector<Watch>& ws = d_watches[p];
    uint32_t j = 0;
    for (uint32_t i = 0; i < ws.size(); ++i) {
      if (!std::binary_search(doomed.begin(), doomed.end(), ws[i].clause())) {
        ws[j++] = ws[i];
      }
    }
    ws.resize_down(j);
  }
}

// Drops the lemma registration and the database's reference; the watches
// must be gone already.
void DpllSolver::forget_clause(Clause* c) {
  if (c->theory()) {
    auto it = d_lemma_ids.find(c->id());
    if (it != d_lemma_ids.end()) {
      theory_retract_lemma(it->second);
      d_lemma_ids.erase(it);
    }
  }
  Clause::release(c);
}

bool DpllSolver::remove_clause(Clause* c, bool force) {
  if (c->theory() && !force && decision_level() > 0
      && d_lemma_ids.count(c->id()) > 0) {
    return false;
  }
  std::vector<Clause*>& list = c->learnt() ? d_learnts : d_clauses;
  auto it = std::find(list.begin(), list.end(), c);
  if (it != list.end()) {
    list.erase(it);
  }
  auto pit = std::find(d_pending_units.begin(), d_pending_units.end(), c);
  if (pit != d_pending_units.end()) {
    d_pending_units.erase(pit);
  }
  for (Lit p : *c) {
    if (d_vardata[var(p)].reason == c) {
      d_vardata[var(p)].reason = nullptr;
    }
  }
  detach(c);
  forget_clause(c);
  return true;
}

void DpllSolver::remove_clauses(const std::unordered_set<Clause*>& set) {
  for (Clause* c : set) {
    remove_clause(c, true);
  }
}

void DpllSolver::remove_learnt_clauses() {
  std::vector<Clause*> doomed;
  size_t j = 0;
  for (Clause* c : d_learnts) {
    if (locked(c)) {
      d_learnts[j++] = c;
    } else {
      doomed.push_back(c);
    }
  }
  d_learnts.resize(j);
  detach_batch(doomed);
  for (Clause* c : doomed) {
    forget_clause(c);
  }
}

// ---------------------------------------------------------------------------
// Reduction
// ---------------------------------------------------------------------------

// Halves the learnt clauses by activity; clauses of LBD 1 or 2 (binary ones
// among them) and reasons stay. Theory clauses score higher because they
// are costly to find again.
void DpllSolver::reduce_db() {
  const size_t n = d_learnts.size();
  if (n == 0) {
    return;
  }
  const double extra = d_cla_inc / static_cast<double>(n);
  const double weight = d_config->theory_clause_weight;
  auto score = [weight](const Clause* c) {
    return c->theory() ? c->activity() * weight : c->activity();
  };
  std::sort(d_learnts.begin(),
            d_learnts.end(),
            [&score](const Clause* x, const Clause* y) {
              return x->size() > 2 && (y->size() == 2 || score(x) < score(y));
            });
  const size_t judged = static_cast<size_t>(n * d_config->reduce_fraction);
  // Lemmas waiting as pending units are referenced from that list.
  std::vector<Clause*> pending(d_pending_units);
  std::sort(pending.begin(), pending.end());
  std::vector<Clause*> doomed;
  size_t j = 0;
  for (size_t i = 0; i < n; ++i) {
    Clause* c = d_learnts[i];
    bool keep = c->lbd() <= 2 || locked(c)
                || (i >= judged && c->activity() >= extra)
                || std::binary_search(pending.begin(), pending.end(), c);
    if (keep) {
      d_learnts[j++] = c;
    } else {
      doomed.push_back(c);
    }
  }
  d_learnts.resize(j);
  detach_batch(doomed);
  for (Clause* c : doomed) {
    forget_clause(c);
  }
  if (Logger* l = log_at(2)) {
    (*l)(d_log_section) << loglevel(2) << "reduced clause db (removed "
                        << doomed.size() << " / " << n << " learnt clauses)"
                        << endlog;
  }
}

// ---------------------------------------------------------------------------
// Simplification
// ---------------------------------------------------------------------------

bool DpllSolver::simplify() {
  if (d_ok >= 0) {
    return false;
  }
  if (decision_level() == 0) {
    if (Clause* confl = propagate()) {
      Clause::release(confl);
      d_ok = num_backtrack_points();
      return false;
    }
  }
  // Pending units are settled first: a clause on that list must not go.
  if (static_cast<int>(d_trail.size()) == d_simp_trail_size
      || !d_pending_units.empty()) {
    return true;
  }
  if (d_simp_credit > 0
      || d_heap.size() > d_clauses.size() + d_learnts.size()) {
    return true;
  }
  remove_satisfied(d_learnts, true);
  if (d_remove_satisfied) {
    remove_satisfied(d_clauses, false);
  }
  if (decision_level() == 0) {
    std::vector<Var> vars;
    for (Var v = 0; v < num_vars(); ++v) {
      if (d_decision[v] && d_assigns[v] == dpll::kValUndef) {
        vars.push_back(v);
      }
    }
    d_heap.build(vars);
  }
  d_simp_trail_size = static_cast<int>(d_trail.size());
  int64_t lits = 0;
  for (const std::vector<Clause*>* cs : {&d_clauses, &d_learnts}) {
    for (const Clause* c : *cs) {
      lits += c->size();
    }
  }
  d_simp_credit = lits;
  return true;
}

// Inside backtrack points a clause may go only if what satisfies it stays
// as long as the clause would: the literal was true when the top point was
// opened, and the clause dies with that point anyway (it mentions the
// point's variable or a younger one).
void DpllSolver::remove_satisfied(std::vector<Clause*>& cs, bool learnt) {
  (void)learnt;
  const Var b = d_btpoints.empty() ? var_Undef : var(d_btpoints.back());
  const int bpos = b == var_Undef ? INT_MAX : d_vardata[b].trail_pos;
  std::vector<Clause*> doomed;
  size_t j = 0;
  for (Clause* c : cs) {
    bool sat = false;
    bool young = b == var_Undef;
    for (Lit p : *c) {
      sat = sat || (is_true(p) && d_vardata[var(p)].trail_pos <= bpos);
      young = young || var(p) >= b;
    }
    bool registered =
        c->theory() && decision_level() > 0 && d_lemma_ids.count(c->id()) > 0;
    if (!sat || !young || registered || locked(c)) {
      cs[j++] = c;
      continue;
    }
    doomed.push_back(c);
  }
  cs.resize(j);
  detach_batch(doomed);
  for (Clause* c : doomed) {
    forget_clause(c);
  }
}

// ---------------------------------------------------------------------------
// Pending units
// ---------------------------------------------------------------------------

// Settles at level 0 the clauses that arrived unit or conflicting in the
// middle of a search. Clauses that are neither at level 0 keep their
// watches, which are valid there.
bool DpllSolver::add_pending_units() {
  cancel_until(0);
  for (Clause* c : d_pending_units) {
    bool unit = true;
    for (uint32_t k = 1; k < c->size() && unit; ++k) {
      unit = is_false((*c)[k]);
    }
    if (!unit) {
      continue;
    }
    if (c->size() == 0 || is_false((*c)[0])) {
      d_ok = 0;
      d_pending_units.clear();
      return false;
    }
    if (is_unassigned((*c)[0])) {
      unchecked_enqueue((*c)[0], c);
    }
  }
  d_pending_units.clear();
  return true;
}

}  // namespace zenlo
