// TheoryManager: the one door between the search (DpllSolver) and the
// theory solvers. It owns one solver per theory, in a fixed order that is
// also the order of every loop: EUF, LA, BV, FP, arrays, nonlinear. It
// translates between the search's dpll::Lit and the theories' TheoryLit,
// remembers which solver implied what (for lazy explanations) and which
// solver gave which lemma (for retraction), gives atoms only to the solvers
// that asked for them, and counts per solver.
//
// A disabled solver, or one not built yet, keeps its slot, so that indices
// in statistics and tables keep their meaning.
//
// The manager keeps no search state beyond the conflicting solver, the
// implied table, the cursor of get_next_implied and the lemma table; levels
// are the solvers' business. Theory combination (interface terms and
// interface equalities) hangs off tell_atom, retract_atom and
// boolean_model_found in theorymanager_combination.cpp.
#ifndef ZENLO_THEORY_THEORYMANAGER_H
#define ZENLO_THEORY_THEORYMANAGER_H

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/configuration.h"
#include "base/exception.h"
#include "dpll/dplltypes.h"
#include "terms/hashtable.h"
#include "terms/term.h"
#include "theory/theorylit.h"
#include "theory/theoryowner.h"
#include "theory/theorysolver.h"

namespace zenlo {

class DpllSolver;
class EufSolverInterface;
class Logger;
class PolarityChecker;
class TermManager;
class TerminationTest;
class TheoryFactChecks;
class CardinalityChecker;
class TheoryFactSink;

class TheoryManager {
 public:
  ZENLO_DECLARE_ERROR;

  using Var = dpll::Var;
  using Lit = dpll::Lit;

  // The slots, in the order of every loop.
  // Slots are the theories' ids, in the order of every loop.
  using SolverIndex = TheoryId;
  static constexpr int kNumSolvers = 6;

  // Per-solver counters, in the order of the statistics.
  struct SolverCounters {
    uint64_t total_calls = 0;
    uint64_t complete_calls = 0;
    uint64_t conflicts = 0;
    uint64_t implications = 0;
    uint64_t explanations = 0;
  };

  // Requires: every argument outlives the manager.
  // After: the solvers that exist are built; those whose option is off are
  //   disabled.
  TheoryManager(const Configuration* config,
                TermManager* tm,
                DpllSolver* dpll,
                Logger* logger);
  virtual ~TheoryManager();
  TheoryManager(const TheoryManager&) = delete;
  TheoryManager& operator=(const TheoryManager&) = delete;

  // With -debug.dump_theory_lemmas, every conflict, explanation and lemma
  // also goes to `sink` as a formula that must be unsatisfiable.
  // Requires: `sink` (may be null) outlives the manager.
  void set_fact_sink(TheoryFactSink* sink) { d_fact_sink = sink; }

  // Puts `solver` in slot `index`, replacing what was there; the manager
  // calls it only when `enabled`. For solvers built outside (and tests).
  // Requires: no atom was told yet.
  void install_solver(SolverIndex index,
                      std::unique_ptr<TheorySolver> solver,
                      bool enabled);

  // ---- Atoms (called by the search's make_proxy and pop) -------------------

  // Requires: `var` is the search variable of `term` (term may be null).
  // After: each enabled solver that wants the atom's value is recorded for
  //   var; Boolean structure and constants are nobody's.
  void tell_atom(const Term_* term, Var var);

  // Requires: `var` is the youngest told variable not yet retracted.
  // After: every solver that was told the atom has forgotten it.
  // Returns: whether a solver took back, with the atom, literals assumed
  //   after it, which must be assumed again.
  bool retract_atom(const Term_* term, Var var);

  // ---- Levels --------------------------------------------------------------

  void new_decision_level();

  // After: every solver is back at `level`; no conflict is recorded.
  void cancel_until(int level);

  void push_backtrack_point();
  void pop_backtrack_point();

  // ---- Literals and checks -------------------------------------------------

  // Gives an assigned literal to the solvers that asked for its atom; with
  // `filter`, pure and ghost literals are kept back (should_filter).
  // After: conflict() may hold.
  void do_assume(Lit lit, bool filter);

  // The approximate check during search: solvers by index (EUF last with
  // theory.euf.low_priority), stopping at the first conflict.
  // Returns: false on a conflict.
  bool check_approx();

  // The complete check on a full assignment, solvers by index.
  // Returns: false on a conflict.
  bool check_complete();

  bool conflict() const { return d_conflict_solver >= 0; }

  // Requires: conflict().
  // After: `lits` holds true literals of the search that the conflicting
  //   solver cannot hold together.
  void get_conflict(std::vector<Lit>& lits);

  // Returns: the next implied literal that is not assigned yet, or
  //   dpll::lit_Undef. Restarted by each check.
  Lit get_next_implied();

  // Requires: `lit` came from get_next_implied and is true.
  // Returns: false if the solver gives no reason now (only without
  //   `force`); else true with the reason's true literals in `lits`.
  bool get_explanation(Lit lit, bool force, std::vector<Lit>& lits);

  // ---- Lemmas --------------------------------------------------------------

  bool has_lemmas();

  // Requires: has_lemmas().
  // Returns: the lemma's id (never 0); the clause is in `lits`, over search
  //   variables that are created as needed. `first` tells the search to
  //   show the clause to its ghost filter, `second` to keep it for good.
  int get_lemma(std::vector<Lit>& lits, bool& first, bool& second);

  // Requires: `id` came from get_lemma and was not retracted.
  // After: the solver that gave the lemma knows it is gone; the id may be
  //   given again.
  void retract_lemma(int id);

  // ---- Full assignments and models -----------------------------------------

  // Called on a full assignment that passed the complete check.
  // Returns: a decision level for the search to go back to, or -1.
  int boolean_model_found();

  void build_model();

  // Returns: the value of `term` in the theories' model: EUF's class
  //   first, then what the other solvers say of its value or members;
  //   null when no solver knows it.
  const Term_* get_model_value(const Term_* term);

  // ---- For the environment -------------------------------------------------

  // Returns: the first enabled solver of that name, or null.
  TheorySolver* get_tsolver(const std::string& name) const;

  // Returns: the EUF solver when enabled, else null.
  EufSolverInterface* euf() const;

  void set_logger(Logger* logger);
  void set_termination_test(TerminationTest* test);
  // The checker also hears the literals of lemmas.
  void set_polarity_checker(PolarityChecker* pc);

  const SolverCounters& counters(SolverIndex i) const {
    return d_counters[static_cast<int>(i)];
  }

  // Groups of name and value: the manager's own, then per enabled solver
  // its counters and its get_stats().
  TheorySolver::Stats get_stats() const;

 private:
  struct LemmaInfo {
    int solver;  // index, or kCardinalitySource
    void* data;
  };

  // ---- theorymanager.cpp ---------------------------------------------------
  bool enabled(int i) const { return d_enabled[i] != 0; }

  void grow_var_tables(Var var);
  Var var_of(const Term_* term) const;
  bool is_non_theory(const Term_* term) const;
  bool should_filter(Lit lit) const;
  bool run_check(int i, bool approx);
  void to_search_lits(const std::vector<TheoryLit>& in, std::vector<Lit>& out);
  Lit search_lit(TheoryLit lit) const;
  TheoryLit theory_lit(Lit lit) const;
  void log_lits(const char* what, const std::vector<Lit>& lits);

  // ---- Lemmas (theorymanager_lemmas.cpp) -----------------------------------
  int new_lemma_id();
  Lit lemma_lit(TheoryLit l, const TheoryLemma& lemma, Var dependency);
  const Term_* do_get_model_value(const Term_* term);
  // Hands a fact of solver `solver` to the checks and the dump, each when
  // its option is on.
  void dump_tlemma(int solver,
                   TheoryLit lit,
                   const std::vector<TheoryLit>& lits,
                   bool is_lemma);
  void check_fact(int solver,
                  TheoryLit lit,
                  const std::vector<TheoryLit>& lits,
                  bool is_lemma);

  // ---- Terms EUF meets (theorymanager_lemmas.cpp) --------------------------
  void handle_euf_requests();
  void check_supported(const Term_* t);
  void throw_if_refused();
  void give_to_euf(Var var, const Term_* term);
  void resend_late_literals(int level);

  // ---- Theory combination (theorymanager_combination.cpp) ------------------
  void update_interface_terms(const Term_* atom);
  bool is_shared_application(const Term_* t) const;
  int value_solver(const Type* type) const;
  void add_interface_term(const Term_* t, Var var);
  void undo_theory_combination_info(const Term_* term, Var var);
  int generate_interface_equalities(bool& added);
  // The pairs (a, b) of interface terms that LA's model and EUF's classes
  // disagree on, by grouping rather than by the walk over all pairs.
  void disagreeing_pairs(
      std::vector<std::pair<const Term_*, const Term_*>>& out);
  // Returns: the level to go back to (or -1) after making the atom of
  //   a = b a decision of the search; `added` is set for a new atom.
  int request_interface_equality(const Term_* a, const Term_* b, bool& added);

  // ---- Data ----------------------------------------------------------------
  const Configuration* d_global;
  const Configuration::Theory* d_config;
  TermManager* d_tm;
  DpllSolver* d_dpll;
  Logger* d_logger;
  TerminationTest* d_termination = nullptr;
  PolarityChecker* d_polarity = nullptr;

  std::array<std::unique_ptr<TheorySolver>, kNumSolvers> d_solvers;
  std::array<uint8_t, kNumSolvers> d_enabled{};
  std::array<SolverCounters, kNumSolvers> d_counters{};
  EufSolverInterface* d_euf = nullptr;
  // With EUF on: the domain lemmas of enumerated sorts. Its lemmas come
  // from source kCardinalitySource.
  std::unique_ptr<CardinalityChecker> d_card;
  static constexpr int kCardinalitySource = kNumSolvers;

  // The variable of each told atom, by term id: translating the literals
  // of every implication and explanation must not cost a hash lookup.
  std::vector<Var> d_var_of_term;

  // Per search variable.
  std::vector<uint8_t> d_non_theory;
  std::vector<uint8_t> d_listeners;  // bit i: solver i takes the atom
  std::vector<uint8_t> d_told;       // bit i: solver i heard the atom

  int d_conflict_solver = -1;
  // Per search variable: the solver whose implication assigned it last;
  // an entry is rewritten before it is read again, so none is cleared.
  std::vector<int8_t> d_implied_by;
  int d_cursor = 0;

  hsh::HashMap<int, LemmaInfo> d_lemmas;
  std::vector<int> d_free_lemma_ids;
  int d_next_lemma_id = 1;
  int d_lemma_source = -1;
  bool d_in_lemma = false;
  hsh::HashSet<Var> d_lemma_atoms;
  TheoryFactSink* d_fact_sink = nullptr;
  // With -check.theory_facts: the checkers, made at the first fact.
  std::unique_ptr<TheoryFactChecks> d_fact_checks;
  std::vector<TheoryLit> d_check_lits;

  // Boolean arguments: terms whose values EUF needs, the requests not yet
  // handled, and variables given to EUF after they were assigned.
  TermSet d_bool_args;
  std::vector<const Term_*> d_bool_requests;
  std::vector<const Term_*> d_foreign;
  const Term_* d_refused = nullptr;
  std::string d_refusal;
  std::vector<Var> d_late_vars;

  // Theory combination: one frame per told atom, and the interface terms
  // with the variable of the atom that brought each, oldest first.
  std::vector<Var> d_comb_frames;
  TermSet d_iface_set;
  std::vector<std::pair<Var, const Term_*>> d_iface_trail;
  TermSet d_iface_seen;                     // scratch of one detection walk
  std::vector<const Term_*> d_iface_stack;  // scratch of the same walk
  uint64_t d_necessary_ieqs = 0;
  uint64_t d_extra_ieqs = 0;

  // Scratch, reused by every conversion.
  std::vector<TheoryLit> d_tlits;
};

}  // namespace zenlo

#endif
