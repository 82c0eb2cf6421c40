// The bit-vector solver of the theory manager's slot: eager (atoms
// bit-blasted into the main engine) or lazy (an inner engine checked under
// assumptions on each full assignment), fixed by theory.bv.eager when the
// manager is built.
#ifndef ZENLO_THEORY_BV_BVSOLVERINTERFACE_H
#define ZENLO_THEORY_BV_BVSOLVERINTERFACE_H

#include <memory>

#include "base/configuration.h"
#include "theory/theorysolver.h"

namespace zenlo {

class DpllSolver;

namespace bv {

// Requires: the arguments outlive the solver.
// Returns: the solver that theory.bv.eager chooses.
std::unique_ptr<TheorySolver> make_bv_solver(const Configuration* global,
                                             TermManager* tm,
                                             DpllSolver* dpll);

}  // namespace bv
}  // namespace zenlo

#endif
