// The check of learnt clauses (-check.learnt_clauses), kept out of the
// analysis file: it runs only in tests.
#include <string>

#include "dpll/dpllsolver.h"

namespace zenlo {

using dpll::sign;
using dpll::var;

// Literals a theory implied at level 0 keep a placeholder reason, since
// analysis skips level 0; the learnt clause may rest on them all the same.
// Their explanations are built here (and so checked by the theory checks
// too) before the copy is asked.
void DpllSolver::check_learnt(const std::vector<Lit>& lits) {
  const size_t end0 = d_trail_lim.empty() ? d_trail.size()
                                          : static_cast<size_t>(d_trail_lim[0]);
  for (size_t i = 0; i < end0; ++i) {
    Var v = var(d_trail[i]);
    if (d_vardata[v].reason == d_placeholder) {
      reason_for_analysis(v);
    }
  }
  if (!d_rup->implied(lits.data(), lits.size())) {
    std::string text;
    for (Lit p : lits) {
      text += " " + std::to_string(sign(p) ? -(var(p) + 1) : var(p) + 1);
    }
    throw error(
        "internal error: check of learnt clauses: clause not implied by "
        "unit propagation:"
        + text);
  }
  d_rup->add_axiom(lits);
}

}  // namespace zenlo
