// The engine's side of theory reasoning: when literals reach the theories,
// and how their conflicts, implications and lemmas enter the clause
// database and the trail.
//
// Everything the engine asks of the theory manager goes through the
// `theory_*` hooks at the end of this file, one per manager operation. With
// no manager attached the search never reaches them, and each is inert.
// Subclasses that drive a reasoner of their own (tests, external engines)
// override the hooks instead.
#include <algorithm>
#include <ostream>
#include <sstream>

#include "base/logger.h"
#include "dpll/dpllsolver.h"
#include "theory/theorymanager.h"

namespace zenlo {

using dpll::lit_Undef;
using dpll::var;

namespace {

std::string clause_text(const dpll::Clause& c) {
  std::ostringstream out;
  out << "(";
  for (uint32_t k = 0; k < c.size(); ++k) {
    out << (k > 0 ? " " : "") << (dpll::sign(c[k]) ? "-" : "")
        << dpll::var(c[k]);
  }
  out << ")";
  return out.str();
}

}  // namespace

void DpllSolver::set_theory_manager(TheoryManager* tm) {
  d_theory = tm;
  d_theory_on = tm != nullptr;
  d_theory_head = 0;
  std::fill(d_theory_lim.begin(), d_theory_lim.end(), 0);
}

// ---------------------------------------------------------------------------
// Search steps
// ---------------------------------------------------------------------------

// After Boolean propagation: new literals go to the theories, then their
// conflict, their lemmas and their implications are taken, in this order.
DpllSolver::Step DpllSolver::theory_step(uint64_t& conflicts) {
  if (!d_theory_on) {
    return Step::Next;
  }
  check_theory(true);
  if (theory_in_conflict()) {
    ++conflicts;
    return learn_theory_conflict("theory conflict: ");
  }
  lbool lemmas = add_theory_lemmas();
  if (lemmas == l_False) {
    return Step::Unsat;
  }
  bool implied = enqueue_theory_implications();
  return implied || lemmas == l_True ? Step::Again : Step::Next;
}

DpllSolver::Step DpllSolver::learn_theory_conflict(const char* what) {
  Clause* c = get_theory_conflict();
  if (Logger* l = log_at(3)) {
    (*l)(d_log_section) << loglevel(3) << what << clause_text(*c) << endlog;
  }
  return backjump_and_learn(c, true) ? Step::Again : Step::Unsat;
}

// Every decision variable is assigned. A model is reported only after two
// complete checks with no new assignment, lemma or interface equality in
// between; theory combination may create variables or send the search back.
DpllSolver::Step DpllSolver::complete_check() {
  if (!d_theory_on) {
    return Step::Next;
  }
  for (int round = 0; round < 2; ++round) {
    check_theory(false);
    if (theory_in_conflict()) {
      return learn_theory_conflict("theory complete conflict: ");
    }
    lbool lemmas = add_theory_lemmas();
    if (lemmas == l_False) {
      return Step::Unsat;
    }
    if (round == 1 && !d_pending_units.empty()) {
      return Step::Again;
    }
    if (lemmas == l_True || enqueue_theory_implications()) {
      return Step::Again;
    }
    if (round == 1) {
      break;
    }
    int level = theory_boolean_model_found();
    if (level >= 0) {
      cancel_until(level);
      return Step::Again;
    }
    Lit next = pick_branch_lit();
    if (next != lit_Undef) {
      new_decision_level();
      unchecked_enqueue(next, nullptr);
      return Step::Again;
    }
    if (!d_pending_units.empty()) {
      return Step::Again;
    }
  }
  return Step::Next;
}

// ---------------------------------------------------------------------------
// Virtual theory steps
// ---------------------------------------------------------------------------

void DpllSolver::check_theory(bool approx) {
  if (!d_theory_on) {
    return;
  }
  // Literals reach the theories in batches, not at each assignment.
  for (; d_theory_head < d_trail.size(); ++d_theory_head) {
    Lit p = d_trail[d_theory_head];
    if (d_var_term[var(p)] != nullptr) {
      theory_assume(p);
    }
  }
  theory_check(approx);
}

bool DpllSolver::enqueue_theory_implications() {
  if (!d_theory_on || !btlevels_open()) {
    return false;
  }
  bool any = false;
  for (Lit p = theory_next_implied(); p != lit_Undef;
       p = theory_next_implied()) {
    if (!is_unassigned(p)) {
      continue;
    }
    // A theory that explains eagerly gives the clause now; otherwise the
    // placeholder stands until analysis needs the reason.
    Clause* r = get_theory_reason(p, false);
    unchecked_enqueue(p, r != nullptr ? r : d_placeholder);
    ++d_stats.theory_propagations;
    any = true;
  }
  return any;
}

lbool DpllSolver::add_theory_lemmas() {
  if (!d_theory_on || !btlevels_open()) {
    return l_Undef;
  }
  LemmaRound round;
  std::vector<Lit> lits;
  while (pending_theory_lemmas()) {
    bool first = true;
    bool second = true;
    lits.clear();
    int id = next_theory_lemma(lits, first, second);
    if (add_lemma(lits, id, first, second, round) == l_False) {
      return l_False;
    }
  }
  return finish_lemmas(round);
}

// ---------------------------------------------------------------------------
// Conflicts and explanations
// ---------------------------------------------------------------------------

DpllSolver::Clause* DpllSolver::get_theory_conflict() {
  d_theory_lits.clear();
  theory_conflict_lits(d_theory_lits);
  return make_theory_conflict(d_theory_lits);
}

// The scratch vector is free here: a conflict's literals have become a
// clause before analysis asks for reasons.
DpllSolver::Clause* DpllSolver::get_theory_reason(Lit p, bool force) {
  d_theory_lits.clear();
  if (!theory_explanation(p, force, d_theory_lits)) {
    return nullptr;
  }
  return make_theory_reason(p, d_theory_lits);
}

// The guard ties a theory clause to the youngest backtrack point that is
// older than its newest atom: atoms of a popped point are deleted, and a
// fact told inside a point may rest on that point. Variables are numbered in
// creation order, which makes "older" a comparison of indices.
void DpllSolver::add_guard(std::vector<Lit>& lits, GuardKind kind) const {
  if (d_btpoints.empty() || lits.empty()) {
    return;
  }
  Var newest = var(lits[0]);
  for (Lit p : lits) {
    newest = std::max(newest, var(p));
  }
  for (size_t i = d_btpoints.size(); i-- > 0;) {
    if (var(d_btpoints[i]) < newest) {
      Lit b = d_btpoints[i];
      lits.push_back(kind == GuardKind::TrueLits ? b : b ^ 1);
      return;
    }
  }
}

// Negates every literal after the first `keep` and drops repeats; `lits`
// is sorted by trail, so repeats are neighbours.
void DpllSolver::negate_unique(std::vector<Lit>& lits, size_t keep) const {
  size_t j = 0;
  for (size_t i = 0; i < lits.size(); ++i) {
    Lit q = i < keep ? lits[i] : lits[i] ^ 1;
    if (j == 0 || lits[j - 1] != q) {
      lits[j++] = q;
    }
  }
  lits.resize(j);
}

// `lits` are true literals that imply `p`.
DpllSolver::Clause* DpllSolver::make_theory_reason(Lit p,
                                                   std::vector<Lit>& lits) {
  lits.push_back(p);
  add_guard(lits, GuardKind::TrueLits);
  sort_by_trail(lits);
  if (lits[0] != p) {
    std::swap(*std::find(lits.begin(), lits.end(), p), lits[0]);
  }
  negate_unique(lits, 1);
  if (d_rup) {
    d_rup->add_axiom(lits);
  }
  Clause* c = new_clause(lits, true, true);
  c->set_lbd(compute_lbd(lits.data(), lits.size()));
  d_learnts.push_back(c);
  attach(c);
  cla_bump(c);
  if (d_config->store_tlemmas) {
    c->retain();
    d_stored_lemmas.push_back(c);
  }
  ++d_stats.theory_clauses;
  return c;
}

// `lits` are true literals that the theories cannot hold together.
// Returns: the clause, with a hold taken for the conflict.
DpllSolver::Clause* DpllSolver::make_theory_conflict(std::vector<Lit>& lits) {
  if (d_rup) {
    // A conflict with a literal that is not true is no conflict: analysis
    // would resolve on it and learn clauses that do not follow.
    for (Lit p : lits) {
      if (value_lit(p) != l_True) {
        throw error(
            "internal error: check of learnt clauses: theory conflict with "
            "a literal that is not true: "
            + std::to_string(dpll::sign(p) ? -(dpll::var(p) + 1)
                                           : dpll::var(p) + 1));
      }
    }
  }
  add_guard(lits, GuardKind::TrueLits);
  sort_by_trail(lits);
  negate_unique(lits, 0);
  if (d_rup) {
    d_rup->add_axiom(lits);
  }
  Clause* c = new_clause(lits, true, true);
  c->set_lbd(lits.empty() ? 0 : compute_lbd(lits.data(), lits.size()));
  if (c->size() >= 2) {
    c->retain();
    d_learnts.push_back(c);
    attach(c);
    cla_bump(c);
    ++d_stats.theory_clauses;
  } else if (d_proof_logging) {
    c->retain();
    d_unit_learnts.push_back(c);
  }
  if (d_config->store_tlemmas) {
    c->retain();
    d_stored_lemmas.push_back(c);
  }
  ++d_stats.theory_conflicts;
  return c;
}

// ---------------------------------------------------------------------------
// Lemmas
// ---------------------------------------------------------------------------

bool DpllSolver::pending_theory_lemmas() {
  return theory_has_lemmas();
}

int DpllSolver::next_theory_lemma(std::vector<Lit>& lits,
                                  bool& first,
                                  bool& second) {
  first = true;
  second = true;
  return theory_next_lemma(lits, first, second);
}

// Adds one lemma. `second` makes it permanent; `id` (not 0) registers it
// with the manager, which hears of its removal.
lbool DpllSolver::add_lemma(std::vector<Lit>& lits,
                            int id,
                            bool first,
                            bool second,
                            LemmaRound& round) {
  (void)first;  // only the ghost filter distinguishes it
  add_guard(lits, GuardKind::Lemma);
  sort_by_trail(lits);
  lits.erase(std::unique(lits.begin(), lits.end()), lits.end());
  if (d_rup) {
    d_rup->add_axiom(lits);
  }
  Clause* c = new_clause(lits, !second, true);
  c->set_lbd(compute_lbd(lits.data(), lits.size()));
  if (id != 0) {
    d_lemma_ids[c->id()] = id;
  }
  if (Logger* l = log_at(3)) {
    (*l)(d_log_section) << loglevel(3)
                        << "adding theory lemma: " << clause_text(*c) << endlog;
  }
  lemma_backjump_target(c, round);
  (second ? d_clauses : d_learnts).push_back(c);
  if (d_config->store_tlemmas) {
    c->retain();
    d_stored_lemmas.push_back(c);
  }
  round.added = true;
  if (c->size() == 0) {
    // The theories are inconsistent on their own.
    d_ok = 0;
    return l_False;
  }
  if (c->size() == 1) {
    if (Logger* l = log_at(3)) {
      (*l)(d_log_section) << loglevel(3)
                          << "unit lemma, backtracking to level zero" << endlog;
    }
    d_pending_units.push_back(c);
    return l_True;
  }
  attach(c);
  const Clause& cl = *c;
  bool rest_false = true;
  for (uint32_t k = 2; k < cl.size() && rest_false; ++k) {
    rest_false = is_false(cl[k]);
  }
  if (is_false(cl[0]) && is_false(cl[1]) && rest_false) {
    if (Logger* l = log_at(3)) {
      (*l)(d_log_section) << loglevel(3) << "conflict lemma!" << endlog;
    }
    if (d_vardata[var(cl[0])].level == 0) {
      if (!round.conflicts.empty()) {
        cancel_until(0);
      }
      d_ok = 0;
      return l_False;
    }
    round.conflicts.push_back(c);
  } else if (is_unassigned(cl[0]) && !is_unassigned(cl[1]) && rest_false) {
    if (Logger* l = log_at(3)) {
      (*l)(d_log_section) << loglevel(3) << "unit lemma, adding to pending"
                          << endlog;
    }
    d_pending_units.push_back(c);
  }
  return l_True;
}

// A lemma satisfied at some level sends the search below that level, so
// that the lemma is watched as if it had been there all along.
void DpllSolver::lemma_backjump_target(const Clause* c,
                                       LemmaRound& round) const {
  for (uint32_t k = c->size(); k-- > 0;) {
    Lit q = (*c)[k];
    if (is_true(q)) {
      int lv = d_vardata[var(q)].level;
      if (round.backjump_target < 0 || lv <= round.backjump_target) {
        round.backjump_target = std::max(lv - 1, 0);
      }
      return;
    }
  }
}

lbool DpllSolver::finish_lemmas(LemmaRound& round) {
  if (!round.conflicts.empty()) {
    // The conflict lemma that became false earliest decides the level.
    Clause* best = round.conflicts[0];
    for (Clause* c : round.conflicts) {
      if (d_vardata[var((*c)[0])].trail_pos
          < d_vardata[var((*best)[0])].trail_pos) {
        best = c;
      }
    }
    Lit first = (*best)[0];
    int l = d_vardata[var((*best)[1])].level;
    if (l == d_vardata[var(first)].level) {
      if (l - 1 < num_backtrack_points()) {
        analyze_final(first ^ 1);
        d_ok = l;
        return l_False;
      }
      cancel_until(l - 1);
    } else {
      cancel_until(l);
      unchecked_enqueue(first, best);
    }
    if (Logger* lg = log_at(3)) {
      (*lg)(d_log_section) << loglevel(3) << "backtracking to level "
                           << decision_level() << endlog;
    }
  }
  if (round.backjump_target >= 0 && round.backjump_target < decision_level()) {
    cancel_until(round.backjump_target);
  }
  uint64_t c = d_clauses.size();
  d_learnt_limit =
      std::max<uint64_t>(d_learnt_limit, 50 * std::max<uint64_t>(c / 3, 1000));
  return round.added ? l_True : l_Undef;
}

// ---------------------------------------------------------------------------
// Theory hooks: one per operation of the theory manager. Each is inert while
// no manager is attached; engines that wrap another reasoner override them.
// ---------------------------------------------------------------------------

void DpllSolver::theory_tell_atom(const Term_* term, Var v) {
  if (d_theory != nullptr) {
    d_theory->tell_atom(term, v);
  }
}

bool DpllSolver::theory_retract_atom(const Term_* term, Var v) {
  return d_theory != nullptr && d_theory->retract_atom(term, v);
}

void DpllSolver::theory_new_decision_level() {
  if (d_theory != nullptr) {
    d_theory->new_decision_level();
  }
}

void DpllSolver::theory_cancel_until(int level) {
  if (d_theory != nullptr) {
    d_theory->cancel_until(level);
  }
}

void DpllSolver::theory_push_backtrack_point() {
  if (d_theory != nullptr) {
    d_theory->push_backtrack_point();
  }
}

void DpllSolver::theory_pop_backtrack_point() {
  if (d_theory != nullptr) {
    d_theory->pop_backtrack_point();
  }
}

// The flag turns on the filtering of pure and ghost literals.
void DpllSolver::theory_assume(Lit p) {
  if (d_theory != nullptr) {
    d_theory->do_assume(p, true);
  }
}

void DpllSolver::theory_check(bool approx) {
  if (d_theory != nullptr) {
    if (approx) {
      d_theory->check_approx();
    } else {
      d_theory->check_complete();
    }
  }
}

bool DpllSolver::theory_in_conflict() {
  return d_theory != nullptr && d_theory->conflict();
}

void DpllSolver::theory_conflict_lits(std::vector<Lit>& out) {
  d_theory->get_conflict(out);
}

DpllSolver::Lit DpllSolver::theory_next_implied() {
  return d_theory != nullptr ? d_theory->get_next_implied() : lit_Undef;
}

bool DpllSolver::theory_explanation(Lit p, bool force, std::vector<Lit>& out) {
  return d_theory != nullptr && d_theory->get_explanation(p, force, out);
}

bool DpllSolver::theory_has_lemmas() {
  return d_theory != nullptr && d_theory->has_lemmas();
}

int DpllSolver::theory_next_lemma(std::vector<Lit>& lits,
                                  bool& first,
                                  bool& second) {
  return d_theory->get_lemma(lits, first, second);
}

void DpllSolver::theory_retract_lemma(int id) {
  if (d_theory != nullptr) {
    d_theory->retract_lemma(id);
  }
}

// A level to go back to, or -1.
int DpllSolver::theory_boolean_model_found() {
  return d_theory != nullptr ? d_theory->boolean_model_found() : -1;
}

void DpllSolver::theory_build_model() {
  if (d_theory != nullptr) {
    d_theory->build_model();
  }
}

}  // namespace zenlo
