#include "theory/bv/eagerbvsolver.h"

#include <unordered_set>

#include "dpll/dpllsolver.h"
#include "terms/termmanager.h"
#include "theory/bv/bvmodelevaluator.h"
#include "theory/theoryowner.h"

namespace zenlo {
namespace bv {
namespace eager {

EagerBVSolverInterface::EagerBVSolverInterface(const Configuration* global,
                                               TermManager* tm,
                                               DpllSolver* dpll)
    : TheorySolver(tm),
      d_global(global),
      d_dpll(dpll),
      d_clausifier(tm, &global->theory.bv),
      d_sink(dpll),
      d_combined(global->theory.euf.enabled
                 && global->theory.interface_eq_policy != 3) {
  d_clausifier.set_applications_as_leaves(d_combined);
}

EagerBVSolverInterface::~EagerBVSolverInterface() = default;

void EagerBVSolverInterface::set_termination_test(TerminationTest* test) {
  TheorySolver::set_termination_test(test);
  d_clausifier.set_termination_test(test);
}

// ---------------------------------------------------------------------------
// Atoms
// ---------------------------------------------------------------------------

std::pair<bool, bool> EagerBVSolverInterface::tell_atom(const Term_* atom) {
  d_foreign_atom = nullptr;
  if (theory_of(*d_tm, atom) != TheoryId::Bv) {
    if (!d_combined) {
      refuse_shared_bv_terms(atom);
    } else if (!d_clausifier.is_cached(atom)) {
      // Marked only if it brings bit-vector terms.
      d_foreign_atom = atom;
    }
    return {false, false};
  }
  if (d_global->proof_generation) {
    throw error("eager bv solver does not support proof generation");
  }
  if (!d_clausifier.is_cached(atom)) {
    ++d_atoms;
    // The sink's proxy is the atom's own variable: the circuit ends in it.
    d_clausifier.bit_blast(atom, d_sink);
  }
  return {true, false};
}

// Words cached since the atom was blasted (or marked) go with it: their
// clauses were added inside the engine's current backtrack point and go
// at its pop. A word already gone (a pop came first) has nothing left to
// take back.
void EagerBVSolverInterface::retract_atom(const Term_* atom) {
  if (d_clausifier.is_cached(atom)) {
    d_clausifier.retract_upto(atom);
  }
}

// An atom of another theory that reaches bit-vector terms through
// uninterpreted functions or arrays: congruence would decide those terms
// without knowing the bits. Walks below non-bit-vector terms only.
void EagerBVSolverInterface::refuse_shared_bv_terms(const Term_* atom) {
  std::vector<const Term_*> stack{atom};
  std::unordered_set<const Term_*> seen;
  while (!stack.empty()) {
    const Term_* t = stack.back();
    stack.pop_back();
    if (!seen.insert(t).second) {
      continue;
    }
    if (d_tm->is_bv_type(t->get_type())) {
      throw error("bit-vector term shared with another theory: `"
                  + t->to_shallow_str() + "'");
    }
    for (const Term_* c : *t) {
      stack.push_back(c);
    }
  }
}

// The manager names the term while the atom that brought it is being
// told, so its word lands after that atom's word or mark.
void EagerBVSolverInterface::notify_interface_term(const Term_* term) {
  if (!d_tm->is_bv_type(term->get_type())) {
    return;
  }
  if (d_foreign_atom != nullptr) {
    d_clausifier.mark(d_foreign_atom);
    d_foreign_atom = nullptr;
  }
  d_clausifier.notify_interface_term(term, d_sink);
}

// ---------------------------------------------------------------------------
// Backtrack points
// ---------------------------------------------------------------------------

void EagerBVSolverInterface::push_backtrack_point() {
  d_clausifier.push_backtrack_point();
}

void EagerBVSolverInterface::pop_backtrack_point() {
  d_clausifier.pop_backtrack_point();
}

// ---------------------------------------------------------------------------
// Model
// ---------------------------------------------------------------------------

const Term_* EagerBVSolverInterface::get_model_value(const Term_* term) {
  ModelEvaluator eval(
      d_tm, &d_clausifier, [this](BvLit l) { return d_sink.value(l); });
  return eval.value_of(term);
}

lbool EagerBVSolverInterface::equal_in_model(const Term_* a, const Term_* b) {
  const Term_* va = get_model_value(a);
  const Term_* vb = get_model_value(b);
  if (va == nullptr || vb == nullptr) {
    return l_Undef;
  }
  return va == vb ? l_True : l_False;
}

// Bit-vector operators and numbers are the solver's own; any other term
// of bit-vector sort (a constant, an application) may be shared.
bool EagerBVSolverInterface::is_alien(const Term_* term) {
  if (!d_tm->is_bv_type(term->get_type())) {
    return theory_of(*d_tm, term) != TheoryId::Bv;
  }
  return d_clausifier.is_terminal(term) && !d_tm->is_number(term->get_symbol());
}

TheorySolver::Stats EagerBVSolverInterface::get_stats() const {
  return {
      {"atoms", std::to_string(d_atoms)},
      {"gates", std::to_string(d_clausifier.stats().gates)},
      {"words", std::to_string(d_clausifier.stats().words)},
      {"clauses", std::to_string(d_sink.num_clauses())},
  };
}

}  // namespace eager
}  // namespace bv
}  // namespace zenlo
