#include "theory/bv/bvsolverinterface.h"

#include "theory/bv/eagerbvsolver.h"

namespace zenlo {
namespace bv {

std::unique_ptr<TheorySolver> make_bv_solver(const Configuration* global,
                                             TermManager* tm,
                                             DpllSolver* dpll) {
  return std::make_unique<eager::EagerBVSolverInterface>(global, tm, dpll);
}

}  // namespace bv
}  // namespace zenlo
