// TheoryManager: the hooks of theory combination. Theories share terms;
// the manager finds the interface terms (terms that solvers of the two
// groups, EUF-like and the others, must agree on) as atoms are told, and on
// a full assignment asks the search to decide equalities between them that
// the solvers' models disagree on.
//
// With the solvers of one group only, as long as EUF is the only solver,
// there is nothing to combine: the detector stops at once and no interface
// term exists. The detection walk and the generation of interface
// equalities are written with the first solver of the other group; the
// frames kept here already scope them by atom.
#include <ostream>

#include "base/logger.h"
#include "theory/theorymanager.h"

namespace zenlo {

namespace {
constexpr const char* kSection = "TMANAGER";
}  // namespace

void TheoryManager::update_interface_terms(const Term_*) {
  bool euf_like = false;
  bool others = false;
  for (int i = 0; i < kNumSolvers; ++i) {
    if (enabled(i)) {
      (d_solvers[i]->is_euf_extension() ? euf_like : others) = true;
    }
  }
  if (!euf_like || !others) {
    if (d_logger != nullptr) {
      (*d_logger)(kSection)
          << loglevel(4)
          << "theory combination not needed because some theory solvers "
          << "are not enabled, not collecting interface terms" << endlog;
    }
    return;
  }
}

// Pops the frames of the atom of `var`, the youngest told one.
void TheoryManager::undo_theory_combination_info(const Term_*, Var var) {
  while (!d_comb_frames.empty()) {
    Var top = d_comb_frames.back();
    d_comb_frames.pop_back();
    if (top == var) {
      break;
    }
  }
  d_lemma_atoms.erase(var);
}

int TheoryManager::generate_interface_equalities(bool& added) {
  added = false;
  if (!enabled(0)) {
    if (d_logger != nullptr) {
      (*d_logger)(kSection)
          << loglevel(4)
          << "not generating interface equalities because the EUF solver"
          << " is not enabled" << endlog;
    }
    return -1;
  }
  if (d_config->interface_eq_policy == 3) {
    if (d_logger != nullptr) {
      (*d_logger)(kSection)
          << loglevel(4)
          << "not generating interface equalities because policy is OFF "
          << "in the configuration" << endlog;
    }
    return -1;
  }
  // No interface term exists without a solver of the second group.
  return -1;
}

}  // namespace zenlo
