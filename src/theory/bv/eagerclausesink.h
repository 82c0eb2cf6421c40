// The clause sink of the eager bit-vector solver: circuits go straight
// into the main search engine. An atom's own engine variable is its proxy,
// so the circuit of a comparison ends in the variable the search already
// decides on, and no equivalence clauses are needed.
#ifndef ZENLO_THEORY_BV_EAGERCLAUSESINK_H
#define ZENLO_THEORY_BV_EAGERCLAUSESINK_H

#include <cstdint>
#include <vector>

#include "theory/bv/clausesink.h"

namespace zenlo {

class DpllSolver;

namespace bv {
namespace eager {

class EagerClauseSink : public ClauseSink {
 public:
  // Requires: `dpll` outlives the sink.
  explicit EagerClauseSink(DpllSolver* dpll) : d_dpll(dpll) {}

  BvLit new_atom() override;

  // Returns: the engine variable of `term` if it has one (never makes one,
  //   which would tell the theories of a new atom in the middle of a
  //   circuit).
  bool get_proxy(const Term_* term, BvLit* out) override;

  // Constant false literals are dropped, a clause with a true one is.
  void add_clause() override;

  // Returns: the value of `l` in the engine's current assignment, where
  //   it is assigned, else in its last model (constants as they are,
  //   variables in neither false). In the middle of a search that is the
  //   full assignment that theory combination compares with congruence;
  //   after it, what is still assigned agrees with the model.
  bool value(BvLit l) const;

  uint64_t num_clauses() const { return d_clauses; }

 private:
  DpllSolver* d_dpll;
  std::vector<dpll::Lit> d_lits;
  uint64_t d_clauses = 0;
};

}  // namespace eager
}  // namespace bv
}  // namespace zenlo

#endif
