// Backtrack points: guard variables held true at their own levels, and the
// removal of everything that carries a guard.
#include <algorithm>
#include <string>

#include "dpll/dpllsolver.h"

namespace zenlo {

using dpll::mk_lit;
using dpll::var;
using dpll::var_Undef;

DpllSolver::Var DpllSolver::push_backtrack_point() {
  if (d_cancel_on_push) {
    cancel_until(std::max(num_backtrack_points() - 1, 0));
    d_cancel_on_push = false;
  }
  const int old_points = num_backtrack_points();
  Var v = new_var();
  d_btpoints.push_back(mk_lit(v));
  d_btvar[v] = 1;
  d_frozen[v] = 1;
  d_btpoint_ids.push_back(d_next_clause_id);
  d_dep_undo.emplace_back(var_Undef, var_Undef);
  if (d_ok < 0) {
    reopen_btlevels(old_points);
  }
  if (d_config->store_tlemmas) {
    d_btpoint_stored.push_back(d_stored_lemmas.size());
  }
  if (d_theory_on) {
    theory_push_backtrack_point();
  }
  if (d_ok < 0) {
    reopen_btlevels(num_backtrack_points());
  }
  return v;
}

// Opens backtrack levels up to `count`, each propagated before the next, so
// that level k holds backtrack literal k and what it implies. A false
// literal or a conflict stops the opening; the search meets it again in
// search_btpoints and deals with it there.
void DpllSolver::reopen_btlevels(int count) {
  while (decision_level() < count) {
    Lit b = d_btpoints[decision_level()];
    if (is_false(b)) {
      return;
    }
    new_decision_level();
    if (is_unassigned(b)) {
      unchecked_enqueue(b, nullptr);
    }
    if (Clause* confl = propagate()) {
      Clause::release(confl);
      cancel_until(decision_level() - 1);
      return;
    }
  }
}

void DpllSolver::pop_backtrack_point() {
  const Lit b = d_btpoints.back();
  const Var bv = var(b);
  // A theory may hold the atoms of the point's variables below the point's
  // level (a restart during the point's search tells them again at level
  // 0). Retracting them there undoes every later step of the theory, so
  // the search goes down to level 0 first, where nothing of a higher level
  // can be caught in the cut.
  cancel_until(d_theory_on ? 0 : num_backtrack_points() - 1);

  // When the point's literal was refuted at level 0, the entries above it
  // on the trail may rest on clauses that are about to go: take them off
  // now and put back later those whose reasons survive.
  std::vector<std::pair<Lit, Clause*>> saved;
  int repair_from = -1;
  if (is_false(b)) {
    int lv = d_vardata[bv].level;
    cancel_until(std::max(lv - 1, 0));
    if (lv == 0) {
      repair_from = d_vardata[bv].trail_pos;
      take_trail_from(repair_from, bv, saved);
    }
  }

  remove_clauses_containing(bv);
  pop_young_vars(bv);
  if (d_config->pop_btpoint_reset_var_order) {
    reset_var_order();
  }
  d_preferred_list.erase(std::remove_if(d_preferred_list.begin(),
                                        d_preferred_list.end(),
                                        [bv](Var x) { return x >= bv; }),
                         d_preferred_list.end());
  if (repair_from >= 0) {
    restore_trail(repair_from, saved);
  }
  if (d_config->store_tlemmas && !d_btpoint_stored.empty()) {
    drop_stored_lemmas(b ^ 1, d_btpoint_stored.back());
    d_btpoint_stored.pop_back();
  }

  d_btpoint_ids.pop_back();
  d_btpoints.pop_back();
  if (d_ok > num_backtrack_points()) {
    d_ok = -1;
  }
  undo_decision_deps();
  d_assumptions.clear();
  if (d_theory_on) {
    theory_pop_backtrack_point();
    // Level 0 goes back to the theories now, ahead of the atoms the next
    // check tells them: heard after those, it would be cut again with
    // them at the next pop, and sent again, at every round.
    if (decision_level() == 0 && d_theory_head < d_trail.size()) {
      check_theory(true);
    }
  }
  if (d_ok < 0) {
    reopen_btlevels(num_backtrack_points());
  }
  d_cancel_on_push = false;
}

// Unassigns the level-0 trail from position `from` on, and keeps in
// `saved` the entries (literal and reason) that do not depend on variables
// from `bv` up.
void DpllSolver::take_trail_from(int from,
                                 Var bv,
                                 std::vector<std::pair<Lit, Clause*>>& saved) {
  auto young = [bv](Lit q) { return var(q) >= bv; };
  for (size_t i = from + 1; i < d_trail.size(); ++i) {
    Var x = var(d_trail[i]);
    Clause* r = d_vardata[x].reason;
    bool doomed = x >= bv
                  || (r != nullptr && r != d_placeholder
                      && std::any_of(r->begin(), r->end(), young));
    if (!doomed) {
      saved.emplace_back(d_trail[i], r);
    }
  }
  for (size_t i = from; i < d_trail.size(); ++i) {
    Var x = var(d_trail[i]);
    d_assigns[x] = dpll::kValUndef;
    d_vardata[x].reason = nullptr;
    d_vardata[x].level = -1;
    insert_var_order(x);
  }
  d_trail.resize(from);
  d_qhead = std::min<uint32_t>(d_qhead, from);
  d_theory_head = std::min<uint32_t>(d_theory_head, from);
}

// Puts back, oldest first, the saved entries whose reasons still imply
// them; propagation resumes at `from`.
void DpllSolver::restore_trail(
    int from, const std::vector<std::pair<Lit, Clause*>>& saved) {
  for (const auto& [p, r] : saved) {
    Lit implied = p;
    bool still = r == nullptr
                 || std::all_of(r->begin(), r->end(), [this, implied](Lit q) {
                      return q == implied || is_false(q);
                    });
    if (still && is_unassigned(p)) {
      unchecked_enqueue(p, r);
    }
  }
  d_qhead = static_cast<uint32_t>(from);
}

// Drops the stored theory lemmas from index `from` on that contain `guard`.
void DpllSolver::drop_stored_lemmas(Lit guard, size_t from) {
  size_t j = from;
  for (size_t i = from; i < d_stored_lemmas.size(); ++i) {
    Clause* c = d_stored_lemmas[i];
    if (c->contains(guard)) {
      Clause::release(c);
    } else {
      d_stored_lemmas[j++] = c;
    }
  }
  d_stored_lemmas.resize(j);
}

// Deletes the variables from `bv` up, youngest first, with their atoms.
void DpllSolver::pop_young_vars(Var bv) {
  if (d_rup) {
    d_rup->forget_vars_from(bv);
  }
  while (num_vars() > bv) {
    Var y = num_vars() - 1;
    // Every clause over a variable of the point carries the point's guard
    // and is gone by now; anything left would point into freed tables.
    if (d_assigns[y] != dpll::kValUndef || !d_watches[2 * y].empty()
        || !d_watches[2 * y + 1].empty()) {
      throw error("internal error: variable " + std::to_string(y)
                  + " outlives its backtrack point");
    }
    const Term_* t = d_var_term[y];
    // A retraction may take back, with the atom, level-0 literals the
    // theory heard after it: then they are sent again.
    if (t != nullptr && d_theory_on && theory_retract_atom(t, y)) {
      d_theory_head = 0;
    }
    unproxy(y);
    pop_var();
  }
}

void DpllSolver::undo_decision_deps() {
  while (!d_dep_undo.empty()) {
    auto [v, on] = d_dep_undo.back();
    d_dep_undo.pop_back();
    if (v == var_Undef) {
      return;
    }
    if (on < num_vars()) {
      std::vector<Var>& deps = d_dependents[on];
      auto it = std::find(deps.begin(), deps.end(), v);
      if (it != deps.end()) {
        deps.erase(it);
      }
    }
  }
}

void DpllSolver::remove_clauses_containing(Var v) {
  // Clauses older than the push of the top point cannot mention its
  // variable; problem clauses stay in creation order, so only their tail
  // needs a look. Learnt clauses are reordered by reduction.
  int min_id = 0;
  if (!d_btpoints.empty() && var(d_btpoints.back()) == v
      && !d_extended_clauses) {
    min_id = d_btpoint_ids.back();
  }
  auto mentions = [v](const Clause* c) {
    return std::any_of(
        c->begin(), c->end(), [v](Lit q) { return var(q) == v; });
  };
  d_pending_units.erase(
      std::remove_if(d_pending_units.begin(), d_pending_units.end(), mentions),
      d_pending_units.end());
  remove_clauses_containing_in(d_clauses, v, min_id);
  remove_clauses_containing_in(d_learnts, v, 0);
  remove_clauses_containing_in(d_unit_learnts, v, 0);
}

void DpllSolver::remove_clauses_containing_in(std::vector<Clause*>& cs,
                                              Var v,
                                              int min_id) {
  size_t start = cs.size();
  while (start > 0 && cs[start - 1]->id() >= min_id) {
    --start;
  }
  std::vector<Clause*> doomed;
  size_t j = start;
  for (size_t i = start; i < cs.size(); ++i) {
    Clause* c = cs[i];
    bool hit =
        std::any_of(c->begin(), c->end(), [v](Lit q) { return var(q) == v; });
    if (!hit) {
      cs[j++] = c;
      continue;
    }
    for (Lit q : *c) {
      if (d_vardata[var(q)].reason == c) {
        d_vardata[var(q)].reason = nullptr;
      }
    }
    doomed.push_back(c);
  }
  cs.resize(j);
  detach_batch(doomed);
  for (Clause* c : doomed) {
    forget_clause(c);
  }
}

}  // namespace zenlo
