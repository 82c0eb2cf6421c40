// bv::eager::EagerBVSolverInterface: the bit-vector solver that bit-blasts
// every atom it owns into the main search engine when the atom is told.
// From then on the search decides the bits itself: the solver asks for no
// values, never conflicts and implies nothing. What remains is the model
// (values of bit-vector terms, read from the engine's model of the bits)
// and taking words back when atoms go (retraction, backtrack points),
// since their circuits' clauses go with the engine's backtrack point.
//
// Bit-vector terms shared with congruence (applications of uninterpreted
// functions of bit-vector sort, bit-vector arguments of applications) are
// the theory manager's interface terms: an application is a word of
// fresh bits here, each interface term gets its word when the manager
// names it, and the manager reconciles the bits with congruence through
// interface equalities, which are atoms like any other. Those words go
// when the atom that brought them goes: an atom of another theory that
// brings such terms leaves a mark in the word cache for that. Without
// congruence (EUF off, or combination off) such terms are refused with error,
// which ends the check in `unknown` rather than a wrong answer.
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
  void notify_interface_term(const Term_* term) override;
  Stats get_stats() const override;

 private:
  void refuse_shared_bv_terms(const Term_* atom);

  const Configuration* d_global;
  DpllSolver* d_dpll;
  WordClausifier d_clausifier;
  EagerClauseSink d_sink;
  uint64_t d_atoms = 0;
  // Congruence decides the applications and the manager combines.
  bool d_combined;
  // The atom of another theory being told, until it brings a bit-vector
  // interface term and is marked.
  const Term_* d_foreign_atom = nullptr;
};

}  // namespace eager
}  // namespace bv
}  // namespace zenlo

#endif
