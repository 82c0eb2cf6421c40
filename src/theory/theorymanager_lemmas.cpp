// TheoryManager: lemmas, their ids and flags, the debug dump of theory
// facts, and the Boolean arguments that EUF asks the search about.
#include "base/logger.h"
#include "dpll/dpllsolver.h"
#include "preprocess/polaritychecker.h"
#include "terms/termmanager.h"
#include "theory/cardinalitychecker.h"
#include "theory/euf/eufsolverinterface.h"
#include "theory/theoryfactsink.h"
#include "theory/theorymanager.h"

namespace zenlo {

using dpll::mk_lit;
using dpll::var;
using dpll::var_Undef;

// ---------------------------------------------------------------------------
// Lemmas
// ---------------------------------------------------------------------------

bool TheoryManager::has_lemmas() {
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i) && d_solvers[i]->has_lemmas()) {
      d_lemma_source = i;
      return true;
    }
  }
  if (d_card != nullptr && d_card->has_lemmas()) {
    d_lemma_source = kCardinalitySource;
    return true;
  }
  d_lemma_source = -1;
  return false;
}

// Ids are small and reused, so that the search's registry stays compact.
int TheoryManager::new_lemma_id() {
  if (!d_free_lemma_ids.empty()) {
    int id = d_free_lemma_ids.back();
    d_free_lemma_ids.pop_back();
    return id;
  }
  return d_next_lemma_id++;
}

int TheoryManager::get_lemma(std::vector<Lit>& lits,
                             bool& first,
                             bool& second) {
  if (d_lemma_source < 0) {
    throw error("no theory has a lemma to give");
  }
  int id = new_lemma_id();
  d_tlits.clear();
  TheoryLemma lemma = d_lemma_source == kCardinalitySource
                          ? d_card->get_lemma(d_tlits)
                          : d_solvers[d_lemma_source]->get_lemma(d_tlits);
  d_lemmas.insert(id, LemmaInfo{d_lemma_source, lemma.data});
  first = has_flag(lemma.flags, LemmaFlag::Kept);
  second = first && !has_flag(lemma.flags, LemmaFlag::Learnt);
  Var dep = var_Undef;
  if (has_flag(lemma.flags, LemmaFlag::DecisionDependency)
      && lemma.dependency != nullptr) {
    dep = var_of(lemma.dependency);
  }
  // Making a variable tells its atom, which may come back here for Boolean
  // arguments; the scratch vector must not be reused meanwhile.
  std::vector<TheoryLit> clause;
  clause.swap(d_tlits);
  try {
    for (TheoryLit l : clause) {
      lits.push_back(lemma_lit(l, lemma, dep));
    }
  } catch (...) {
    d_in_lemma = false;
    throw;
  }
  // Domain lemmas are EUF's to check: its checker knows the values.
  dump_tlemma(d_lemma_source == kCardinalitySource ? 0 : d_lemma_source,
              tlit_Undef,
              clause,
              true);
  clause.clear();
  d_tlits.swap(clause);
  return id;
}

// Finds or makes the search variable of a lemma literal. A new one is told
// to the theories on the way (make_proxy), and then gets what the flags
// say.
TheoryManager::Lit TheoryManager::lemma_lit(TheoryLit l,
                                            const TheoryLemma& lemma,
                                            Var dep) {
  d_in_lemma = has_flag(lemma.flags, LemmaFlag::LemmaAtoms);
  if (d_polarity != nullptr) {
    d_polarity->add_literal(l.atom(), l.negated());
  }
  Var v = var_Undef;
  bool is_new = d_dpll->make_proxy(l.atom(), v);
  if (is_new) {
    if (has_flag(lemma.flags, LemmaFlag::LemmaAtoms)) {
      d_lemma_atoms.insert(v);
    }
    if (dep != var_Undef) {
      d_dpll->set_decision_var_dep(v, dep);
    }
    if (has_flag(lemma.flags, LemmaFlag::ProblemVars)
        && d_global->model_generation) {
      d_dpll->set_problem_var(v, true);
    }
  }
  d_in_lemma = false;
  return mk_lit(v, l.negated());
}

void TheoryManager::retract_lemma(int id) {
  const LemmaInfo* info = d_lemmas.get(id);
  if (info == nullptr) {
    throw error("retracting unknown theory lemma " + std::to_string(id));
  }
  if (info->solver != kCardinalitySource) {
    d_solvers[info->solver]->retract_lemma(info->data);
  }
  d_lemmas.erase(id);
  d_free_lemma_ids.push_back(id);
}

// Writes a formula that must be unsatisfiable: the conflict, the negated
// implied literal with its reasons, or the negated lemma.
void TheoryManager::dump_tlemma(int solver,
                                TheoryLit lit,
                                const std::vector<TheoryLit>& lits,
                                bool is_lemma) {
  if (d_global->check.theory_facts) {
    check_fact(solver, lit, lits, is_lemma);
  }
  if (d_fact_sink == nullptr || !d_global->dump_theory_lemmas) {
    return;
  }
  auto term_of = [this](TheoryLit l) {
    return l.negated() ? d_tm->make_not(l.atom()) : l.atom();
  };
  const Term_* f =
      lit.is_undef() ? d_tm->make_true() : d_tm->make_not(term_of(lit));
  for (TheoryLit l : lits) {
    f = d_tm->make_and(f, term_of(is_lemma ? ~l : l));
  }
  d_fact_sink->add_fact(*d_tm, f);
}

// ---------------------------------------------------------------------------
// Terms that EUF meets: of other theories, and Boolean arguments
// ---------------------------------------------------------------------------

// Congruence closure treats every symbol as uninterpreted, which is sound
// but answers sat for what only another theory refutes. Rather than a
// wrong answer, a term whose theory has no enabled solver is refused.
void TheoryManager::check_supported(const Term_* t) {
  int need = static_cast<int>(theory_of(*d_tm, t));
  if (need == static_cast<int>(TheoryId::Search)) {
    return;
  }
  if (need < 0 || !enabled(need)) {
    d_refused = t;
    d_refusal = "no enabled theory solver handles `" + t->to_shallow_str()
                + "' of type " + t->get_type()->to_str();
    throw error(d_refusal);
  }
}

// A refused term stays refused while EUF knows it: the search must not go
// on as if the atom were decided.
void TheoryManager::throw_if_refused() {
  if (d_refused == nullptr) {
    return;
  }
  if (d_euf != nullptr && d_euf->get_solver().has_node(d_refused)) {
    throw error(d_refusal);
  }
  d_refused = nullptr;
}

// ---------------------------------------------------------------------------
// Boolean arguments of functions
// ---------------------------------------------------------------------------

// EUF has met Boolean arguments whose truth values it needs. An argument
// with a variable is given to EUF (if it was not); an atom without one gets
// one; a compound formula without one is defined by EUF's lemmas, which
// make the variable.
void TheoryManager::handle_euf_requests() {
  if (!enabled(0) || d_euf == nullptr) {
    return;
  }
  d_euf->take_requests(d_bool_requests, d_foreign);
  for (const Term_* t : d_foreign) {
    check_supported(t);
  }
  d_foreign.clear();
  while (!d_bool_requests.empty()) {
    const Term_* t = d_bool_requests.back();
    d_bool_requests.pop_back();
    d_bool_args.insert(t);
    Var v = var_of(t);
    if (v != var_Undef) {
      give_to_euf(v, t);
      continue;
    }
    switch (d_tm->get_tag(t->get_symbol())) {
      case SymbolTag::NOT:
      case SymbolTag::AND:
      case SymbolTag::OR:
      case SymbolTag::IFF: d_euf->define_bool_term(t); break;
      default: d_dpll->make_proxy(t, v); break;
    }
  }
}

// The variable existed before EUF asked: from now on EUF hears its values.
// One assigned already may have gone past the theories; EUF gets it now,
// and again after each backtrack that keeps it (resend_late_literals).
void TheoryManager::give_to_euf(Var v, const Term_* t) {
  grow_var_tables(v);
  if ((d_listeners[v] & 1) != 0) {
    return;
  }
  if (d_non_theory[v]) {
    d_non_theory[v] = 0;
    d_solvers[0]->tell_atom(t);
    d_told[v] |= 1;
  }
  d_listeners[v] |= 1;
  lbool value = d_dpll->value(v);
  if (!value.is_undef()) {
    d_solvers[0]->assume(TheoryLit(t, value == l_False));
    d_late_vars.push_back(v);
  }
}

// Called while the search backtracks, before its trail shrinks: a late
// variable whose level survives is given again, one that goes will reach
// EUF through the trail next time.
void TheoryManager::resend_late_literals(int level) {
  size_t j = 0;
  for (Var v : d_late_vars) {
    if (v >= d_dpll->num_vars() || d_dpll->value(v).is_undef()
        || d_dpll->level(v) > level) {
      continue;
    }
    d_solvers[0]->assume(
        TheoryLit(d_dpll->term_of(v), d_dpll->value(v) == l_False));
    d_late_vars[j++] = v;
  }
  d_late_vars.resize(j);
}

}  // namespace zenlo
