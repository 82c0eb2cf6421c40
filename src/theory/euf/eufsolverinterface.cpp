#include "theory/euf/eufsolverinterface.h"

#include <algorithm>
#include <ostream>
#include <string>

#include "base/logger.h"
#include "terms/termmanager.h"
#include "theory/theoryowner.h"

namespace zenlo {

EufSolverInterface::EufSolverInterface(const Configuration::Theory::Euf* config,
                                       TermManager* tm)
    : TheorySolver(tm), d_config(config), d_solver(tm) {
  d_solver.set_backtrack_keep_told(true);
  d_solver.set_report_new_terms(true);
  d_solver.set_record_congruences(d_config->dyn_ack > 0);
  d_solver.set_record_chains(d_config->transitivity_lemmas);
}

EufSolverInterface::~EufSolverInterface() {
  for (auto& [atom, teq] : d_teqs) {
    teq->destroy();
  }
}

// ---------------------------------------------------------------------------
// Atoms
// ---------------------------------------------------------------------------

bool EufSolverInterface::owns_atom(const Term_* atom) const {
  return theory_of(*d_tm, atom) == TheoryId::Euf;
}

std::pair<bool, bool> EufSolverInterface::tell_atom(const Term_* atom) {
  bool owns = owns_atom(atom);
  // The arrays solver extends EUF: the values of its atoms are EUF's.
  bool wants = owns || d_config->dyn_ack > 0
               || theory_of(*d_tm, atom) == TheoryId::Arr
               || d_tm->get_tag(atom->get_symbol()) == SymbolTag::EQ
               || d_bool_args.contains(atom);
  d_solver.tell_atom(atom);
  return {owns, wants};
}

void EufSolverInterface::retract_atom(const Term_* atom) {
  // The literals still queued are not facts yet: they reach the closure
  // at the next check either way.
  d_took_back_facts |= d_solver.retract_atom(atom);
  // A Boolean argument whose variable goes must be asked for again. When
  // its node outlives the variable (the application was told at an older
  // backtrack point), no new term will bring it back, so it is asked for
  // at the next check; otherwise the node would float free of its truth
  // value and congruence would treat it as neither true nor false.
  if (d_bool_args.erase(atom) && d_solver.has_node(atom)) {
    d_rerequests.push_back(atom);
  }
  d_defined.erase(atom);
  if (TheoryEq** teq = d_teqs.get(atom)) {
    (*teq)->destroy();
    d_teqs.erase(atom);
  }
}

bool EufSolverInterface::took_back_facts() {
  bool took = d_took_back_facts;
  d_took_back_facts = false;
  return took;
}

bool EufSolverInterface::is_own_term(const Term_* t) const {
  return is_euf_term(*d_tm, t);
}

void EufSolverInterface::take_requests(std::vector<const Term_*>& bool_args,
                                       std::vector<const Term_*>& foreign) {
  for (const Term_* c : d_rerequests) {
    if (d_solver.has_node(c) && d_bool_args.insert(c).second) {
      bool_args.push_back(c);
    }
  }
  d_rerequests.clear();
  d_new_terms.clear();
  d_solver.take_new_terms(d_new_terms);
  for (const Term_* t : d_new_terms) {
    // Atoms told again after a backtrack may make nodes that a retraction
    // takes away before anyone asked: such a term belongs to no live
    // atom, and a request for it would bring popped symbols back.
    if (!d_solver.has_node(t)) {
      continue;
    }
    if (!is_own_term(t)) {
      foreign.push_back(t);
    }
    switch (d_tm->get_tag(t->get_symbol())) {
      case SymbolTag::NOT:
      case SymbolTag::AND:
      case SymbolTag::OR:
      case SymbolTag::IFF:
      case SymbolTag::ITE: continue;  // the search owns these arguments
      default: break;
    }
    for (const Term_* c : *t) {
      if (d_tm->is_bool_type(c->get_type()) && c != d_tm->make_true()
          && c != d_tm->make_false() && d_bool_args.insert(c).second) {
        bool_args.push_back(c);
      }
    }
  }
}

// ---------------------------------------------------------------------------
// Levels
// ---------------------------------------------------------------------------

void EufSolverInterface::new_decision_level() {
  d_solver.push_checkpoint();
  ++d_level;
}

// A batch of literals never spans levels, so what is still queued belongs
// to a level being undone.
void EufSolverInterface::cancel_until(int level) {
  d_queue.clear();
  d_queue_head = 0;
  if (level < d_level) {
    int n = d_solver.num_checkpoints() - level;
    if (n > 0) {
      d_solver.backtrack(n);
    }
    d_level = level;
  }
}

// ---------------------------------------------------------------------------
// Asserting and checking
// ---------------------------------------------------------------------------

bool EufSolverInterface::assume(TheoryLit lit) {
  d_queue.push_back(lit);
  return true;
}

// An equality derived by another solver becomes a literal of its own atom;
// explanations that meet it ask the equality for its reasons.
bool EufSolverInterface::assume(const TheoryEq* eq) {
  const Term_* atom = d_tm->make_equal(eq->left(), eq->right());
  if (atom == d_tm->make_true() || d_solver.has_node(atom)) {
    return true;
  }
  d_solver.tell_atom(atom);
  if (TheoryEq** old = d_teqs.get(atom)) {
    (*old)->destroy();
    *old = eq->new_copy();
  } else {
    d_teqs.insert(atom, eq->new_copy());
  }
  d_queue.push_back(TheoryLit(atom));
  return true;
}

bool EufSolverInterface::check(bool) {
  ++d_counters.checks;
  bool any = d_queue_head < d_queue.size();
  while (d_queue_head < d_queue.size() && d_solver.check()) {
    TheoryLit lit = d_queue[d_queue_head++];
    if (!d_solver.has_node(lit.atom())) {
      d_solver.tell_atom(lit.atom());
    }
    d_solver.push_constraint(lit);
  }
  if (d_queue_head == d_queue.size()) {
    d_queue.clear();
    d_queue_head = 0;
  }
  if (any) {
    poll_termination();
  }
  return d_solver.check();
}

void EufSolverInterface::expand_reasons(std::vector<TheoryLit>& lits) {
  if (d_teqs.empty()) {
    return;
  }
  size_t n = lits.size();
  for (size_t i = 0; i < n; ++i) {
    TheoryEq** teq = d_teqs.get(lits[i].atom());
    if (teq != nullptr && !lits[i].negated()) {
      d_scratch.clear();
      (*teq)->explain(d_scratch);
      lits[i] = tlit_Undef;
      lits.insert(lits.end(), d_scratch.begin(), d_scratch.end());
    }
  }
  lits.erase(std::remove(lits.begin(), lits.end(), tlit_Undef), lits.end());
}

void EufSolverInterface::get_conflict(std::vector<TheoryLit>& out) {
  ++d_counters.conflicts;
  size_t start = out.size();
  d_solver.get_conflict(out);
  if (d_config->dyn_ack > 0 || d_config->transitivity_lemmas) {
    enqueue_dyn_ack_lemmas();
  }
  if (!d_teqs.empty()) {
    d_reasons.assign(out.begin() + start, out.end());
    out.resize(start);
    expand_reasons(d_reasons);
    out.insert(out.end(), d_reasons.begin(), d_reasons.end());
  }
}

TheoryLit EufSolverInterface::get_next_implied() {
  TheoryLit lit;
  while (d_solver.get_next_implied(lit)) {
    if (d_teqs.empty() || d_teqs.get(lit.atom()) == nullptr) {
      ++d_counters.implications;
      return lit;
    }
  }
  return tlit_Undef;
}

bool EufSolverInterface::get_explanation(TheoryLit lit,
                                         bool force,
                                         std::vector<TheoryLit>& out) {
  if (!force) {
    return false;
  }
  size_t start = out.size();
  d_solver.get_implied_reason(lit, out);
  if (!d_teqs.empty()) {
    d_reasons.assign(out.begin() + start, out.end());
    out.resize(start);
    expand_reasons(d_reasons);
    out.insert(out.end(), d_reasons.begin(), d_reasons.end());
  }
  return true;
}

// ---------------------------------------------------------------------------
// Lemmas: definitions of Boolean arguments first, since soundness rests on
// them; then dynamic Ackermann lemmas.
// ---------------------------------------------------------------------------

bool EufSolverInterface::has_lemmas() {
  if (!d_def_lemmas.empty()) {
    return true;
  }
  while (d_ready.empty() && !d_dyn_ack_queue.empty()) {
    prepare_dyn_ack_lemma();
  }
  return !d_ready.empty();
}

TheoryLemma EufSolverInterface::get_lemma(std::vector<TheoryLit>& clause) {
  if (!d_def_lemmas.empty()) {
    clause.insert(
        clause.end(), d_def_lemmas.front().begin(), d_def_lemmas.front().end());
    d_def_lemmas.pop_front();
    TheoryLemma lemma;
    lemma.flags = static_cast<uint32_t>(LemmaFlag::Kept);
    return lemma;
  }
  // Requires has_lemmas(), which made the clause ready.
  ReadyLemma& r = d_ready.front();
  clause.insert(clause.end(), r.clause.begin(), r.clause.end());
  TheoryLemma lemma;
  lemma.data = reinterpret_cast<void*>(static_cast<uintptr_t>(r.id));
  lemma.flags = static_cast<uint32_t>(LemmaFlag::LemmaAtoms);
  d_ready.pop_front();
  return lemma;
}

// ---------------------------------------------------------------------------
// Models
// ---------------------------------------------------------------------------

void EufSolverInterface::build_model() {
  build_model(nullptr);
}

void EufSolverInterface::build_model(const TermSet* interface_terms) {
  d_model.build(d_solver, *d_tm, interface_terms);
  if (logger().would_log("EUF_SOLVER", 3)) {
    logger()("EUF_SOLVER") << loglevel(3)
                           << "build_model - CONGRUENCE CLASSES:" << endlog;
    for (const Term_* v : d_model.classes()) {
      logger()("EUF_SOLVER") << loglevel(3) << "  " << outterm(v) << " :"
                             << outtermlist(*d_model.members_of(v)) << endlog;
    }
  }
}

const Term_* EufSolverInterface::get_model_value(const Term_* term) {
  return d_model.value_of(term);
}

const TermList* EufSolverInterface::get_model_congruence_class(
    const Term_* term) const {
  const Term_* v = d_model.value_of(term);
  return v == nullptr ? nullptr : d_model.members_of(v);
}

lbool EufSolverInterface::equal_in_model(const Term_* a, const Term_* b) {
  const Term_* ra = d_solver.get_representative(a);
  const Term_* rb = d_solver.get_representative(b);
  if (ra == nullptr || rb == nullptr) {
    return l_Undef;
  }
  return ra == rb ? l_True : l_False;
}

// ---------------------------------------------------------------------------
// Theory combination
// ---------------------------------------------------------------------------

bool EufSolverInterface::is_alien(const Term_* term) {
  return !is_euf_term(*d_tm, term);
}

// ---------------------------------------------------------------------------
// Statistics
// ---------------------------------------------------------------------------

TheorySolver::Stats EufSolverInterface::get_stats() const {
  const euf::Solver::Stats& s = d_solver.stats();
  const Counters& c = d_counters;
  return {
      {"merges", std::to_string(s.merges)},
      {"congruences", std::to_string(s.congruences)},
      {"deductions", std::to_string(s.deductions)},
      {"closure explanations", std::to_string(s.explanations)},
      {"closure explanation literals", std::to_string(s.explained_literals)},
      {"num atoms retold", std::to_string(s.atoms_retold)},
      {"boolean argument definitions",
       std::to_string(c.lemma(LemmaKind::Definition))},
      {"dynamic ackermann lemmas generated",
       std::to_string(c.lemma(LemmaKind::Congruence)
                      + c.lemma(LemmaKind::Transitivity))},
      {"transitivity lemmas generated",
       std::to_string(c.lemma(LemmaKind::Transitivity))},
      {"dynamic ackermann lemmas deleted",
       std::to_string(d_counters.dyn_ack_deleted)},
  };
}

}  // namespace zenlo
