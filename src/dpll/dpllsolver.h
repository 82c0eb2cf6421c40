// DpllSolver is Zenlo's conflict-driven clause-learning engine. It owns the
// variables, the clause database, the trail, the watch lists and the
// decision heap, and decides a clause set incrementally: clauses may arrive
// at any time (also in the middle of a search, from a theory), checks may
// run under assumptions, and backtrack points scope clauses and variables.
//
// A backtrack point is a fresh variable whose positive literal stays
// assigned as a pseudo-decision at its own level ("backtrack levels" 1..k),
// and every clause added inside the point carries its negation. Popping
// removes the clauses that contain the variable; learnt clauses derived
// from them carry the guard too, because a decision is never resolved away.
//
// The engine knows terms only as opaque pointers for its proxy table, and
// the theory manager only through the theory hooks (dpllsolver_theory.cpp):
// with no manager attached every theory step is inert and the engine is a
// plain SAT solver. Bit-vector and floating-point solvers run further
// instances with their own configuration record.
//
// The code is split by phase: dpllsolver.cpp (variables, assignment,
// clauses in and out), dpllsolver_search.cpp (the loop, propagation,
// restarts, branching), dpllsolver_analyze.cpp (conflict analysis),
// dpllsolver_clausedb.cpp (reduction and simplification),
// dpllsolver_btpoints.cpp (backtrack points), dpllsolver_theory.cpp.
#ifndef ZENLO_DPLL_DPLLSOLVER_H
#define ZENLO_DPLL_DPLLSOLVER_H

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/configuration.h"
#include "base/exception.h"
#include "dpll/clause.h"
#include "dpll/dplltypes.h"
#include "dpll/heap.h"
#include "dpll/reallocvector.h"
#include "dpll/rupchecker.h"

namespace zenlo {

class Term_;
class TheoryManager;
class Logger;
class TerminationTest;

namespace opt {
class OptSearch;
}

class DpllSolver {
 public:
  ZENLO_DECLARE_ERROR;

  // Raised when an enumeration hook asks the search to stop.
  struct interrupted : public Exception {
    explicit interrupted(std::string msg) : Exception(std::move(msg)) {}
  };

  using Var = dpll::Var;
  using Lit = dpll::Lit;
  using Clause = dpll::Clause;

  // A watcher in watches[p]: a clause to visit when p becomes true. The
  // blocker is another literal of the clause; when it is true the clause
  // need not be touched. The low bit of the pointer marks a binary clause,
  // whose blocker is its other literal, so binary clauses propagate
  // without reading clause memory.
  struct Watch {
    Lit blocker;
    uintptr_t ref;

    Watch() = default;

    Watch(Lit b, Clause* c, bool binary)
        : blocker(b), ref(reinterpret_cast<uintptr_t>(c) | (binary ? 1 : 0)) {}

    Clause* clause() const {
      return reinterpret_cast<Clause*>(ref & ~static_cast<uintptr_t>(1));
    }

    bool binary() const { return (ref & 1) != 0; }
  };

  // Counters; the `check_` ones restart at every check.
  struct Stats {
    uint64_t checks = 0;
    uint64_t restarts = 0;
    uint64_t decisions = 0;
    uint64_t random_decisions = 0;
    uint64_t propagations = 0;
    uint64_t theory_propagations = 0;
    uint64_t watched_visits = 0;
    uint64_t binary_watched_visits = 0;
    uint64_t conflicts = 0;
    uint64_t theory_conflicts = 0;
    uint64_t theory_clauses = 0;
    uint64_t check_conflicts = 0;
    uint64_t check_propagations = 0;
    uint64_t check_decisions = 0;
  };

  // `config` must outlive the engine. `global` supplies random_seed,
  // proof_generation, model_generation and unsat_core_generation; without
  // it their built-in values apply.
  explicit DpllSolver(Configuration::Dpll* config,
                      const Configuration* global = nullptr);

  DpllSolver(const DpllSolver&) = delete;
  DpllSolver& operator=(const DpllSolver&) = delete;

  virtual ~DpllSolver();

  // ---- Virtual operations ------------------------------------------------

  // Gives `term` a variable.
  // Returns: true and the new variable in `var`, or false and the variable
  // that `term` already has.
  // After: a new atom has been told to the theory manager.
  virtual bool make_proxy(const Term_* term, Var& var);

  // Adds the clause `lits` (which it sorts and may shorten); works between
  // checks and in the middle of a search. Inside a backtrack point the
  // clause gets the point's guard literal. `theory` marks a clause that
  // comes from a theory; `tell` passes it on to the ghost filter.
  // Returns: false when the clause set became unsatisfiable.
  virtual bool add_clause_inplace(std::vector<Lit>& lits,
                                  bool theory = false,
                                  bool tell = true);

  // Returns: true for sat. With `keep` the trail stays after the check.
  virtual bool solve(bool keep);
  virtual bool solve();

  // Returns: the guard variable of the new point.
  virtual Var push_backtrack_point();

  // Requires: a point is open.
  // After: the clauses and variables of the top point are gone.
  virtual void pop_backtrack_point();

  // Returns: the variable that new_var() would create next.
  virtual Var next_var() const;

  // Copies the current assignment into the model.
  virtual void build_model();

  virtual void set_frozen(Var v, bool frozen);

  // Returns: a fresh decision variable.
  virtual Var new_var();

  // Removes the youngest variable. Requires: no clause mentions it.
  virtual void pop_var();

  // The theory steps of the search (dpllsolver_theory.cpp).
  virtual void check_theory(bool approx);
  virtual bool enqueue_theory_implications();
  virtual lbool add_theory_lemmas();

  // Returns: the next decision literal, or lit_Undef when every decision
  // variable is assigned.
  virtual Lit pick_branch_lit();

  virtual void cancel_until(int level);

  virtual bool solve(const std::vector<Lit>& assumptions, bool keep);
  virtual bool solve(const std::vector<Lit>& assumptions);

  // Removes every clause that contains `v`, in all lists.
  virtual void remove_clauses_containing(Var v);

  // Hooks of the optimising engine; inert here.
  virtual void optimization_set(opt::OptSearch* const* begin,
                                opt::OptSearch* const* end);
  virtual void optimization_unset();

  virtual size_t learnt_clauses() const { return d_learnts.size(); }

  virtual uint64_t get_conflicts() const { return d_stats.conflicts; }

  // ---- Further operations ------------------------------------------------

  // A check that gives up when the check has used `conflicts`,
  // `propagations` or `decisions` (0: no limit).
  // Returns: l_True, l_False, or l_Undef when a limit was reached.
  lbool solve_limited(const std::vector<Lit>& assumptions,
                      uint64_t conflicts,
                      uint64_t propagations,
                      uint64_t decisions,
                      bool keep = false);

  void set_theory_manager(TheoryManager* tm);

  TheoryManager* theory_manager() const { return d_theory; }

  // `section` is the log section of the engine's lines ("DPLL" or "").
  void set_logger(Logger* logger, const std::string& section = "DPLL");

  void set_termination_test(TerminationTest* test) { d_termination = test; }

  void set_problem_var(Var v, bool flag);

  bool is_problem_var(Var v) const { return d_problem[v] != 0; }

  void set_decision_var(Var v, bool flag);

  // Makes `v` follow the decision flag of `on`, until the next pop.
  void set_decision_var_dep(Var v, Var on);

  bool is_decision_var(Var v) const { return d_decision[v] != 0; }

  // Puts var(p) on the preferred list with the polarity of `p`.
  void add_preferred_for_branching(Lit p);

  // Polarity to use whenever `v` is decided; l_Undef clears it.
  void set_preferred_polarity(Var v, lbool polarity);

  // Empties the list; stored polarities stay.
  void clear_preferred_for_branching();

  // Sets the cached phase of `v` (the clause sink does so by polarity).
  void set_phase(Var v, bool value);

  // Returns: the value of `v` in the last model, l_Undef if none.
  lbool get_model_value(Var v) const;

  // Returns: the variable of `term`, or var_Undef.
  Var proxy_for_term(const Term_* term) const;

  // Returns: the term of `v`, or null.
  const Term_* term_of(Var v) const;

  void unproxy(Var v);

  void get_backtrack_points(std::vector<Lit>& out) const { out = d_btpoints; }

  int num_backtrack_points() const {
    return static_cast<int>(d_btpoints.size());
  }

  // Removes a clause of the database. A registered theory lemma is kept
  // above level 0 unless `force`.
  // Returns: whether the clause went.
  bool remove_clause(Clause* c, bool force);

  void remove_clauses(const std::unordered_set<Clause*>& set);

  void remove_learnt_clauses();

  void set_proof_logging(bool on) { d_proof_logging = on; }

  bool proof_logging() const { return d_proof_logging; }

  // Sets all activities to 0 and rebuilds the heap in variable order.
  void reset_var_order();

  // Frees variables assigned above the backtrack levels that the model does
  // not need; needs a ghost filter, so it does nothing yet.
  void minimize_model() {}

  const Stats& stats() const { return d_stats; }

  // Returns: pairs of statistics name and value.
  std::vector<std::pair<std::string, std::string>> get_stats() const;

  // The final conflict of the last unsat check under assumptions: the
  // negations of the assumptions that took part.
  const std::vector<Lit>& get_conflict() const { return d_conflict; }

  // -1 while the clause set is not known to be unsatisfiable; otherwise the
  // number of backtrack points open when it became so.
  int ok_state() const { return d_ok; }

  bool okay() const { return d_ok < 0; }

  int num_vars() const { return static_cast<int>(d_assigns.size()); }

  size_t num_clauses() const { return d_clauses.size(); }

  size_t num_learnts() const { return d_learnts.size(); }

  int decision_level() const { return static_cast<int>(d_trail_lim.size()); }

  lbool value(Var v) const { return lbool(d_assigns[v]); }

  lbool value_lit(Lit p) const {
    return lbool(static_cast<uint8_t>(d_assigns[dpll::var(p)] ^ (p & 1)));
  }

  int level(Var v) const { return d_vardata[v].level; }

  const std::vector<Lit>& trail() const { return d_trail; }

  const std::vector<Clause*>& problem_clauses() const { return d_clauses; }

  const std::vector<Clause*>& learnts() const { return d_learnts; }

  // Theory clauses kept with dpll.store_tlemmas, in creation order.
  const std::vector<Clause*>& stored_theory_lemmas() const {
    return d_stored_lemmas;
  }

 protected:
  // What a step of the search loop tells the loop to do.
  enum class Step {
    Next,   // nothing changed: go on with the following step
    Again,  // the trail or the clauses changed: back to the top
    Unsat,  // the search ends with unsat
  };

  struct VarData {
    Clause* reason;
    int level;
    int trail_pos;
  };

  // ---- Assignment (dpllsolver.cpp) ---------------------------------------
  bool is_true(Lit p) const {
    return (d_assigns[dpll::var(p)] ^ (p & 1)) == dpll::kValTrue;
  }

  bool is_false(Lit p) const {
    return (d_assigns[dpll::var(p)] ^ (p & 1)) == dpll::kValFalse;
  }

  bool is_unassigned(Lit p) const {
    return d_assigns[dpll::var(p)] == dpll::kValUndef;
  }

  Clause* reason(Var v) const { return d_vardata[v].reason; }

  void new_decision_level();
  void unchecked_enqueue(Lit p, Clause* from);
  void insert_var_order(Var v);

  bool is_btvar(Var v) const { return d_btvar[v] != 0; }

  // True when search may run above the backtrack levels.
  bool btlevels_open() const {
    return decision_level() >= num_backtrack_points();
  }

  // ---- Clauses (dpllsolver.cpp, dpllsolver_clausedb.cpp) -----------------
  Clause* new_clause(const std::vector<Lit>& lits, bool learnt, bool theory);
  void attach(Clause* c);
  void detach(Clause* c);
  void detach_batch(std::vector<Clause*>& doomed);
  bool locked(const Clause* c) const;
  bool do_add_clause(std::vector<Lit>& lits, Clause** out, bool simplify);
  bool add_long_clause(std::vector<Lit>& lits, Clause** out, bool strip);
  void add_clause_in_search(std::vector<Lit>& lits, bool theory);
  bool add_pending_units();
  void sort_by_trail(std::vector<Lit>& lits) const;
  void sort_by_trail(Clause* c) const;
  void reduce_db();
  void maybe_reduce_db();
  bool simplify();
  void remove_satisfied(std::vector<Clause*>& cs, bool learnt);
  void forget_clause(Clause* c);

  // ---- Search (dpllsolver_search.cpp) ------------------------------------
  lbool do_solve(const std::vector<Lit>& assumptions, bool keep);
  void init_check();
  lbool search();
  Clause* propagate();
  Step search_btpoints();
  Step take_assumptions();
  bool restart_due(uint64_t conflicts) const;
  void update_restart_state();
  bool limits_reached() const;
  uint64_t next_random();
  Lit decide_polarity(Var v, bool random_polarity);

  void agility_update(Var v) {
    if (d_agility_on && d_phase[v] < 2) {
      d_agility *= d_config->agility_decay;
      if (d_phase[v] != d_assigns[v]) {
        d_agility += 1 - d_config->agility_decay;
      }
    }
  }

  // ---- Conflict analysis (dpllsolver_analyze.cpp) ------------------------
  bool backjump_and_learn(Clause* confl, bool theory);
  void analyze(Clause* confl, std::vector<Lit>& out, int& btlevel);
  void minimize_learnt(std::vector<Lit>& out);
  bool lit_redundant(Lit p, uint32_t abstract_levels);
  void binary_minimize(std::vector<Lit>& out);
  void learn(const std::vector<Lit>& lits, unsigned lbd);
  // -check.learnt_clauses: each learnt clause must follow from the copy.
  void check_learnt(const std::vector<Lit>& lits);
  void analyze_final(Lit p);
  unsigned compute_lbd(const Lit* lits, size_t n);
  Clause* reason_for_analysis(Var v);
  void var_bump(Var v);
  void cla_bump(Clause* c);

  // ---- Theory glue (dpllsolver_theory.cpp) -------------------------------
  // The search steps built on the theory operations.
  Step theory_step(uint64_t& conflicts);
  Step complete_check();
  Step learn_theory_conflict(const char* what);

  Clause* get_theory_conflict();
  Clause* get_theory_reason(Lit p, bool force);
  bool pending_theory_lemmas();
  int next_theory_lemma(std::vector<Lit>& lits, bool& first, bool& second);

  // Engine side of theory answers; `lits` are true literals for a conflict
  // or an explanation, a clause for a lemma.
  enum class GuardKind { TrueLits, Lemma };
  void add_guard(std::vector<Lit>& lits, GuardKind kind) const;
  Clause* make_theory_reason(Lit p, std::vector<Lit>& lits);
  Clause* make_theory_conflict(std::vector<Lit>& lits);
  void negate_unique(std::vector<Lit>& lits, size_t keep) const;

  // State of one round of add_theory_lemmas.
  struct LemmaRound {
    bool added = false;
    int backjump_target = -1;
    std::vector<Clause*> conflicts;
  };

  lbool add_lemma(std::vector<Lit>& lits,
                  int id,
                  bool first,
                  bool second,
                  LemmaRound& round);
  void lemma_backjump_target(const Clause* c, LemmaRound& round) const;
  lbool finish_lemmas(LemmaRound& round);

  // Whether the theory steps run at all: a manager is attached, or a
  // subclass drives the theory hooks itself.
  bool theory_on() const { return d_theory_on; }

  void enable_theory_hooks(bool on) { d_theory_on = on; }

  // The theory hooks: each stands for one call of the theory manager and
  // does nothing while none is attached.
  virtual void theory_tell_atom(const Term_* term, Var v);
  // Returns: whether the theories took back literals they must hear again.
  virtual bool theory_retract_atom(const Term_* term, Var v);
  virtual void theory_new_decision_level();
  virtual void theory_cancel_until(int level);
  virtual void theory_push_backtrack_point();
  virtual void theory_pop_backtrack_point();
  virtual void theory_assume(Lit p);
  virtual void theory_check(bool approx);
  virtual bool theory_in_conflict();
  virtual void theory_conflict_lits(std::vector<Lit>& out);
  virtual Lit theory_next_implied();
  virtual bool theory_explanation(Lit p, bool force, std::vector<Lit>& out);
  virtual bool theory_has_lemmas();
  virtual int theory_next_lemma(std::vector<Lit>& lits,
                                bool& first,
                                bool& second);
  virtual void theory_retract_lemma(int id);
  virtual int theory_boolean_model_found();
  virtual void theory_build_model();

  // ---- Backtrack points (dpllsolver_btpoints.cpp) ------------------------
  void reopen_btlevels(int count);
  void remove_clauses_containing_in(std::vector<Clause*>& cs,
                                    Var v,
                                    int min_id);
  void pop_young_vars(Var bvar);
  void take_trail_from(int from,
                       Var bv,
                       std::vector<std::pair<Lit, Clause*>>& saved);
  void restore_trail(int from,
                     const std::vector<std::pair<Lit, Clause*>>& saved);
  void drop_stored_lemmas(Lit guard, size_t from);
  void undo_decision_deps();

  // ---- Logging -----------------------------------------------------------
  Logger* log_at(int level) const;

  // ---- Data --------------------------------------------------------------
  Configuration::Dpll* d_config;
  bool d_model_generation = false;
  int d_unsat_core_generation = 0;
  bool d_proof_logging = false;
  bool d_remove_satisfied = true;
  bool d_extended_clauses = false;
  int d_ok = -1;

  std::vector<lbool> d_model;
  std::vector<Lit> d_conflict;

  // Reduce schedule.
  uint64_t d_reduce_threshold = 0;
  uint64_t d_reduce_increment = 0;
  uint64_t d_reduce_multiplier = 1;
  uint64_t d_learnt_limit = 0;

  // Restarts.
  int d_restart_strategy = 0;
  bool d_agility_on = false;
  double d_restart_budget = 0;
  uint64_t d_luby_index = 1;
  double d_luby_unit = 0;
  double d_agility = 0;
  std::vector<unsigned> d_lbd_ring;
  uint32_t d_lbd_count = 0;
  uint32_t d_lbd_write = 0;
  uint32_t d_lbd_read = 0;
  uint64_t d_lbd_ring_sum = 0;
  static constexpr uint32_t kLbdRingSize = 100;

  // Limits of solve_limited; 0 means none.
  uint64_t d_conflict_limit = 0;
  uint64_t d_propagation_limit = 0;
  uint64_t d_decision_limit = 0;

  Stats d_stats;

  std::vector<Clause*> d_clauses;
  std::vector<Clause*> d_learnts;
  double d_cla_inc = 1.0;
  std::vector<double> d_activity;
  double d_var_inc = 1.0;

  // Per variable.
  std::vector<uint8_t> d_assigns;
  std::vector<uint8_t> d_phase;
  std::vector<uint8_t> d_preferred;
  std::vector<uint8_t> d_decision;
  std::vector<VarData> d_vardata;
  std::vector<uint8_t> d_seen;
  std::vector<uint8_t> d_problem;
  std::vector<uint8_t> d_frozen;
  std::vector<uint8_t> d_btvar;
  std::vector<const Term_*> d_var_term;
  std::vector<std::vector<Var>> d_dependents;

  // Per literal.
  std::vector<ReallocVector<Watch>> d_watches;

  std::vector<Var> d_preferred_list;
  std::vector<Lit> d_trail;
  std::vector<int> d_trail_lim;
  uint32_t d_qhead = 0;

  // Simplification gate.
  int d_simp_trail_size = -1;
  int64_t d_simp_credit = 0;

  std::vector<Lit> d_assumptions;
  Heap d_heap;
  uint64_t d_seed;
  int d_next_clause_id = 0;
  std::vector<Clause*> d_unit_learnts;

  TheoryManager* d_theory = nullptr;
  bool d_theory_on = false;
  std::unordered_map<const Term_*, Var> d_term_var;

  // Backtrack points.
  std::vector<Lit> d_btpoints;
  std::vector<int> d_btpoint_ids;
  std::vector<size_t> d_btpoint_stored;
  // Pairs (dependent, master) of set_decision_var_dep; var_Undef marks a
  // push.
  std::vector<std::pair<Var, Var>> d_dep_undo;
  bool d_cancel_on_push = false;

  std::vector<Clause*> d_pending_units;
  Clause* d_placeholder;

  // With -check.learnt_clauses only; null otherwise, so that the search
  // pays one predictable branch per clause.
  std::unique_ptr<dpll::RupChecker> d_rup;

  // Theory side.
  // Trail literals below the head have been given to the theories.
  uint32_t d_theory_head = 0;
  // The theory head when each decision level opened.
  std::vector<uint32_t> d_theory_lim;
  std::unordered_map<int, int> d_lemma_ids;
  std::vector<Clause*> d_stored_lemmas;

  Logger* d_logger = nullptr;
  std::string d_log_section;
  TerminationTest* d_termination = nullptr;

  // Scratch space of conflict analysis, kept to avoid allocation.
  std::vector<Lit> d_learnt;
  std::vector<Lit> d_analyze_stack;
  std::vector<Lit> d_analyze_toclear;
  std::vector<Lit> d_glucose_lits;
  std::vector<Lit> d_theory_lits;
  std::vector<uint32_t> d_level_stamp;
  uint32_t d_stamp = 0;
  bool d_level0_resolvable = true;
};

inline void DpllSolver::unchecked_enqueue(Lit p, Clause* from) {
  Var v = dpll::var(p);
  d_assigns[v] = static_cast<uint8_t>(p & 1);
  d_vardata[v] =
      VarData{from, decision_level(), static_cast<int>(d_trail.size())};
  d_trail.push_back(p);
}

}  // namespace zenlo

#endif
