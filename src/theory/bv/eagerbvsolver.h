// bv::eager::EagerBVSolverInterface: the bit-vector solver that bit-blasts
// every atom it owns into the main search engine when the atom is told.
// From then on the search decides the bits itself: the solver asks for no
// values, never conflicts and implies nothing. What remains is the model
// (values of bit-vector terms, read from the engine's model of the bits)
// and taking words back when atoms go (retraction, backtrack points),
// since their circuits' clauses go with the engine's backtrack point.
//
// Bit-vector terms that another theory shares (arguments of uninterpreted
// functions, array elements) would need theory combination, which this
// solver does not do: an atom of another theory over bit-vector terms,
// and a bit-vector atom over such an application, are refused with
// error, which ends the check in `unknown` rather than a wrong answer.
#ifndef ZENLO_THEORY_BV_EAGERBVSOLVER_H
#define ZENLO_THEORY_BV_EAGERBVSOLVER_H

#include <memory>
#include <utility>
#include <vector>

#include "base/configuration.h"
#include "theory/bv/eagerclausesink.h"
#include "theory/bv/wordclausifier.h"
#include "theory/theorysolver.h"

namespace zenlo {

class DpllSolver;

namespace bv {
namespace eager {

class EagerBVSolverInterface : public TheorySolver {
 public:
  // Requires: the arguments outlive the solver.
  EagerBVSolverInterface(const Configuration* global,
                         TermManager* tm,
                         DpllSolver* dpll);
  ~EagerBVSolverInterface() override;

  const char* get_name() const override { return "bv"; }

  void set_termination_test(TerminationTest* test) override;

  // Owns the atoms whose theory is bit-vectors (theory_of) and blasts
  // them at once; wants no values.
  // Throws: error for proof generation and for terms it cannot blast.
  std::pair<bool, bool> tell_atom(const Term_* atom) override;
  void retract_atom(const Term_* atom) override;

  bool took_back_facts() override { return false; }

  void push_backtrack_point() override;
  void pop_backtrack_point() override;

  const Term_* get_model_value(const Term_* term) override;

  void build_abstract_model() override {}

  lbool equal_in_model(const Term_* a, const Term_* b) override;
  bool is_alien(const Term_* term) override;
  Stats get_stats() const override;

 private:
  void refuse_shared_bv_terms(const Term_* atom);

  const Configuration* d_global;
  DpllSolver* d_dpll;
  WordClausifier d_clausifier;
  EagerClauseSink d_sink;
  uint64_t d_atoms = 0;
};

}  // namespace eager
}  // namespace bv
}  // namespace zenlo

#endif
