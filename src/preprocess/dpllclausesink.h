// Where the CNF conversion meets the search engine: clauses over terms
// become clauses over engine literals. Each atom, and each defined
// subformula, is named by an engine variable through the engine's proxy
// table (make_proxy), which also tells the theory manager of new atoms.
//
// The sink keeps the counters that the statistics report as
// ":cnf-variables", ":cnf-literals" and ":cnf-clauses". With a polarity
// checker and `dpll.branching_initial_phase` 2, a new variable starts
// with the phase its atom's polarity suggests. The DIMACS front end uses
// the same sink with no checker.
#ifndef ZENLO_PREPROCESS_DPLLCLAUSESINK_H
#define ZENLO_PREPROCESS_DPLLCLAUSESINK_H

#include <cstdint>
#include <vector>

#include "dpll/clause.h"
#include "dpll/dplltypes.h"

namespace zenlo {

class DpllSolver;
class PolarityChecker;
class Term_;
class TermManager;

class DpllClauseSink {
 public:
  // `keep_dropped` (unsat_core_generation 2): end_clause hands out a copy
  // of every clause, so that the core store sees also the clauses that the
  // engine drops as satisfied.
  // - Requires: `tm`, `dpll` and `polarity` (may be null) outlive the sink.
  DpllClauseSink(TermManager* tm,
                 DpllSolver* dpll,
                 PolarityChecker* polarity,
                 bool keep_dropped);
  virtual ~DpllClauseSink();

  DpllClauseSink(const DpllClauseSink&) = delete;
  DpllClauseSink& operator=(const DpllClauseSink&) = delete;

  // Starts a clause. `definition` tells a Tseitin definition clause from
  // one that states (part of) an asserted formula.
  virtual void begin_clause(bool definition);

  // Hands the clause to the engine.
  // - Returns: null; with `keep_dropped`, a detached copy of the clause
  //   that the caller owns (dpll::Clause::release), unless it is empty.
  // - Throws: Exception "max clause size exceeded ..." beyond 2^24 - 1
  //   literals.
  virtual dpll::Clause* end_clause();

  // - Returns: the variable naming `t` (created if new), now a problem
  //   variable of the engine.
  virtual dpll::Var create_label(const Term_* t);

  // Appends the literal of `t` (below its chain of `not`) to the clause.
  virtual void add_literal(const Term_* t, bool negated);

  // With `on` (dpll.branching_initial_phase 2) and a polarity checker, a
  // new variable's cached phase is false for an atom that occurs only
  // negatively, true otherwise.
  void set_phase_by_polarity(bool on) { d_phase_by_polarity = on; }

  uint32_t num_variables() const { return d_variables; }

  uint32_t num_literals() const { return d_literals; }

  uint32_t num_clauses() const { return d_clauses; }

  // Atoms that need a theory to be understood: applications, as opposed
  // to Boolean constants and definitions.
  uint32_t num_theory_atoms() const { return d_theory_atoms; }

 protected:
  dpll::Var proxy(const Term_* t);

  TermManager* d_tm;
  DpllSolver* d_dpll;
  PolarityChecker* d_polarity;
  std::vector<dpll::Lit> d_buffer;
  bool d_keep_dropped;
  bool d_phase_by_polarity = false;
  uint32_t d_variables = 0;
  uint32_t d_literals = 0;
  uint32_t d_clauses = 0;
  uint32_t d_theory_atoms = 0;
};

}  // namespace zenlo

#endif
