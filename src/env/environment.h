// One solving context. An Environment owns its copy of the configuration,
// its output stream and logger, and (unless it was made to share another
// environment's) its term store; init() builds the search engine and the
// preprocessing pipeline on top, and fixes the order of all work:
//
//   assert_formula  appends to the assertion stack, nothing else;
//   check           flushes what is new through the pipeline
//                   (do_assert_stack -> do_assert_formula: encoder,
//                   polarity checker, CNF generator, clause sink, engine),
//                   then runs the engine's search.
//
// A null entry of the assertion stack marks a backtrack point; the stack
// is processed up to a count, and everything below the count has reached
// the engine. A check that a termination test stopped marks the
// environment interrupted, and the next check rebuilds the whole solver
// state from the stack.
//
// The parts are built in a fixed order and torn down in the reverse one:
// configuration, stream and logger; term store; simplifier; init(). A
// shared environment uses another environment's TermManager and owns
// nothing of it: the owner must outlive every environment sharing its
// store.
//
// The C interface reaches an Environment through capi::EnvRecord; the
// command-line interpreter and the optimisation layer hold one directly.
#ifndef ZENLO_ENV_ENVIRONMENT_H
#define ZENLO_ENV_ENVIRONMENT_H

#include <cstdint>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include "base/configuration.h"
#include "base/exception.h"
#include "base/logger.h"
#include "dpll/dplltypes.h"
#include "terms/term.h"
#include "terms/termmanager.h"

namespace zenlo {

class CNFGenerator;
class ConstraintEncoder;
class ModelStore;
class RewriteStack;
class DpllClauseSink;
class DpllSolver;
class PolarityChecker;
class StdTermSimplifier;
class TerminationTest;
class TheoryFactSink;
class TheoryManager;

// Called once per model by Environment::diversify, with the pairs of the
// model (ModelStore iteration order).
class ModelFoundHook {
 public:
  using Assignment = std::pair<const Term_*, const Term_*>;

  virtual ~ModelFoundHook() = default;

  // Returns: false to stop the enumeration.
  virtual bool operator()(const Assignment* begin, const Assignment* end) {
    (void)begin;
    (void)end;
    return true;
  }
};

class Environment {
 public:
  ZENLO_DECLARE_ERROR;

  // An assumption that is not a literal: the caller's mistake, not a
  // limit of the check.
  struct bad_assumption : public error {
    explicit bad_assumption(std::string msg) : error(std::move(msg)) {}
  };

  using Stats = std::vector<std::pair<std::string, std::string>>;

  // An environment with its own term store.
  // - After: the term store exists with type checking on, the standard
  //   simplifier installed (and on unless `debug.term_simplifications` is
  //   false), and Bool function arguments forbidden unless
  //   `allow_bool_function_args`; the logger
  //   writes to standard output at the configured verbosity; init() ran.
  // - Throws: Exception when the settings cannot be combined (the engine
  //   refuses them); nothing is left behind.
  explicit Environment(const Configuration& config);

  // An environment on the term store of another one.
  // - Requires: `shared` outlives this environment.
  // - After: as above, except that the term store's switches are left as
  //   they are (simplification is only ever switched off here).
  Environment(const Configuration& config, TermManager* shared);

  virtual ~Environment();

  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  // ---- The road to an answer ---------------------------------------------

  // Appends `f` to the assertion stack; no other work happens until the
  // next check.
  // - Throws: error for a formula that is not of type Bool.
  virtual void assert_formula(const Term_* f);

  // Decides the conjunction of the assertion stack.
  // - Returns: 1 sat, 0 unsat, -1 unknown (also when `solver_enabled` is
  //   off, with no message).
  // - Throws: TerminationTest::terminated when the termination test
  //   stopped the check; any failure of preprocessing. After either, the
  //   environment is marked interrupted and the next check rebuilds the
  //   solver state from the assertion stack.
  virtual int check();

  // (The All-SAT enumeration slots in here.)

  // Builds the solving parts from the configuration; runs at construction
  // and again after every reset.
  virtual void init();

  // Destroys what init() built, in reverse order, and empties the
  // assertion stack.
  virtual void do_reset();

  // Drops the environment's reference to the current model; a model
  // handle held elsewhere is first made independent of the engine.
  virtual void reset_model();

  // Rebuilds the solver state from the assertion stack after a check that
  // did not finish.
  virtual void reset_after_interrupted();

  // Back to the state of a fresh environment, with the same configuration
  // and term store (terms stay valid).
  void reset_assertions();

  // Installs `test` (may be null; the caller keeps ownership) in every
  // part that polls one: engine, CNF generator, constraint encoder.
  void set_termination_test(TerminationTest* test);

  TerminationTest* get_termination_test() const { return d_termination; }

  // Installs the sink that receives every theory fact as a formula
  // (see TheoryFactSink), for the life of the environment; null removes
  // it. The solvers of later rebuilds get it too.
  void set_theory_fact_sink(std::unique_ptr<TheoryFactSink> sink);

  // ---- Backtrack points ----------------------------------------------------

  // Opens a backtrack point on the assertion stack; the engine sees it at
  // the next check, so a push and pop around no check cost the engine
  // nothing.
  virtual void push_backtrack_point();

  // Drops every assertion made since the matching push. Entries that never
  // reached the engine are simply cut off the stack; only a pop into the
  // processed part takes back the engine, the CNF marks and the
  // preprocessing steps.
  // - Throws: error "no backtrack points to pop" when none is open.
  virtual void pop_backtrack_point();

  // ---- Assumptions ---------------------------------------------------------

  // Decides the assertion stack under `assumptions`, each an atom or the
  // negation of one; an atom never seen before is legal. A failure under
  // assumptions says nothing about the stack alone: the unsat mark is
  // left as it was.
  // - Returns: 1 sat, 0 unsat, -1 unknown.
  // - Throws: error "assumptions can only be literals" for a connective,
  //   `true`, `false` or a non-Boolean term; the stack is then unchanged
  //   and the environment usable.
  int check_with_assumptions(const std::vector<const Term_*>& assumptions);

  // Returns: whether check_with_assumptions takes `a`: an atom or the
  //   negation of one.
  bool is_assumption_literal(const Term_* a) const;

  // - Throws: the error of check_with_assumptions when one of
  //   `assumptions` is not a literal; touches nothing.
  void check_assumptions_are_literals(
      const std::vector<const Term_*>& assumptions) const;

  // Returns: after an unsat check_with_assumptions, the assumptions (as
  //   they were passed) that take part in the conflict; empty when the
  //   stack alone is unsatisfiable or the last check was not such a check.
  std::vector<const Term_*> get_unsat_assumptions();

  // ---- Branching -----------------------------------------------------------

  // Asks the engine to decide `atom` first, with `value` (1 true, 0 false,
  // else no preferred polarity).
  // - Throws: error "only Boolean constants can be set as preferred for
  //   branching".
  void add_preferred_for_branching(const Term_* atom, int value);

  // Empties the engine's preferred list; stored polarities stay.
  void clear_preferred_for_branching();

  // ---- Models --------------------------------------------------------------

  // Returns: the value of `t` in the model of the last sat check, for any
  //   ground term over the model's symbols.
  // - Throws: error "model generation not enabled" when there is no model
  //   (no sat answer since the last change, or model generation off);
  //   ModelStore::error when the model cannot be rebuilt.
  const Term_* get_model_value(const Term_* t);

  // Returns: the value that the model gives a term of `type` it never met.
  // - Throws: as get_model_value.
  const Term_* get_model_default_value(const Type* type);

  // Returns: the pairs (term, value) of the model of the last sat check:
  //   the user's constants, and the applications of its functions with
  //   their arguments replaced by values, sorted by symbol then id.
  // - Throws: as get_model_value.
  std::vector<std::pair<const Term_*, const Term_*>> get_model_assignments();

  // Returns: the current model with one more reference, which the caller
  //   drops with ModelStore::release; it stays valid after later checks
  //   (but not after a collection of the term store, nor after this
  //   environment is destroyed).
  // - Throws: error "no model available" (with `handle` false, for an
  //   iteration: "model generation not enabled").
  ModelStore* get_model(bool handle = true);

  // Returns: whether a model of the last check exists.
  bool has_model() const { return d_model != nullptr; }

  // Calls `hook` once per model of the assertions, blocking each found
  // model on the values of `diversifiers` (Boolean atoms and numeric
  // terms) by a clause asserted on the stack, until the hook answers false
  // or no model is left.
  // - Returns: the number of models found.
  // - Throws: error "diversification is not compatible with proof
  //   generation", "model generation must be enabled for diversification",
  //   "bad model value for diversifier: " + value.
  size_t diversify(ModelFoundHook& hook, const TermList& diversifiers);

  // ---- Inspection ----------------------------------------------------------

  // Returns: the formulas of the stack, as asserted, in stack order.
  TermList get_asserted_formulas() const;

  // Returns: the theory lemmas the engine stored (dpll.store_tlemmas), each
  //   as the `or` of the terms of its literals; literals without a term
  //   are left out, so a lemma with none is `false`.
  TermList get_theory_lemmas();

  // ---- Garbage collection --------------------------------------------------

  // Adds to the keep lists of a collection; a derived environment (or an
  // interpreter) keeps its own roots alive this way.
  class gc_hook {
   public:
    virtual ~gc_hook() = default;

    virtual void operator()(TermList& terms,
                            std::vector<const Symbol*>& symbols,
                            std::vector<const Type*>& types);
  };

  // Rebuilds the solver from the assertion stack and, when this
  // environment owns its term store, collects every term that is neither
  // in `keep`, nor asserted, nor kept by `hook` (may be null).
  // - After: all formulas stay asserted; terms of `keep` stay valid, other
  //   terms and models may not; learnt clauses are gone.
  void gc(const TermList& keep, gc_hook* hook);

  // ---- State -------------------------------------------------------------

  // Returns: the result of the last check: 1 sat, 0 unsat, -1 unknown.
  int last_result() const { return d_last_result; }

  bool interrupted() const { return d_interrupted; }

  // Returns: the number of open backtrack points (null entries) of the
  // assertion stack.
  size_t num_backtrack_points() const;

  const std::vector<const Term_*>& assertion_stack() const { return d_stack; }

  // Returns: how many stack entries have reached the engine.
  size_t num_processed() const { return d_processed; }

  // ---- Statistics --------------------------------------------------------

  // Returns: pairs of key and value: the CNF counters, then the engine's.
  Stats get_stats() const;

  // Writes one line per statistic: prefix, key, a blank, value.
  void print_stats(std::ostream& out, const std::string& prefix) const;

  // ---- Parts and services ------------------------------------------------

  TermManager& get_term_manager() { return *d_tm; }

  bool owns_term_manager() const { return d_owns_tm; }

  // Returns: whether both environments build terms in one store, so that
  // their terms can be exchanged as they are.
  bool shares_term_manager(const Environment& other) const {
    return d_tm == other.d_tm;
  }

  const Configuration& get_config() const { return d_config; }

  Logger& get_logger() { return d_logger; }

  std::ostream& get_output_stream() { return d_out; }

  DpllSolver* get_dpll_solver() const { return d_dpll.get(); }

  const DpllClauseSink* get_clause_sink() const { return d_clause_sink.get(); }

  // Returns: the construction-time simplifier of the owned term store, or
  //   null in a shared environment.
  StdTermSimplifier* get_simplifier() const { return d_simplifier; }

  // Replaces the simplifier of the owned term store by a new one; after a
  // collection of the store the old one's memo names dead terms.
  // - Requires: this environment owns its term store.
  // - After: the switch of simplifications is as it was.
  void renew_simplifier();

  // Replaces from[i] by to[i] in `term`, all at once, with type checks.
  // - Throws: TermManager::error for unequal types.
  const Term_* apply_substitution(const Term_* term,
                                  const Term_* const* from,
                                  const Term_* const* to,
                                  size_t n);

 protected:
  // Runs every stack entry from the processed count upward through the
  // pipeline; in batch mode the formulas between two backtrack points go
  // as one conjunction.
  void do_assert_stack();

  // The pipeline of one formula (with `encode`, through the constraint
  // encoder), ending in the CNF generator.
  void do_assert_formula(const Term_* f, bool encode);

  // Opens a backtrack point in every part that keeps one.
  void do_push_backtrack_point();

  // Takes back the topmost backtrack point that reached the engine, in
  // every part that keeps one.
  // - Throws: error "no backtrack points to pop".
  void do_pop_backtrack_point();

  int do_check();
  bool begin_check();

  // After a sat answer of the engine: the model store, when models are
  // asked for.
  void make_model_store();

 private:
  void configure_logger();
  void make_constraint_encoder();
  void flush_pending(const Term_*& pending);
  void record_unsat_mark();
  // Returns: the backtrack points open in the engine (labels when shallow).
  size_t engine_level() const;
  void log_step(int level, const char* what);
  void destroy_owned_store();
  void check_theory_atoms() const;

  // Shallow incrementality: labels instead of engine backtrack points.
  void do_push_shallow_backtrack_point();
  void do_pop_shallow_backtrack_point();
  dpll::Var label_var(const Term_* label);
  void shallow_assumptions(std::vector<dpll::Lit>& out);

  // Assumptions.
  int do_check_with_assumptions(const TermList& assumptions);
  void check_assumption(const Term_* a) const;
  dpll::Lit assumption_lit(const Term_* a, TermList& side_constraints);
  void collect_unsat_assumptions(const std::vector<dpll::Lit>& lits,
                                 size_t first_user);
  const Term_* conjunction(const TermList& terms);

  // Models.
  ModelStore& current_model(const char* what);
  void add_model_formulas(ModelStore& m);
  const Term_* blocking_clause(ModelStore& model, const TermList& diversifiers);

  // Self-checks (-check.models, -check.unsat_assumptions); see
  // environment_selfcheck.cpp.
  void check_model_holds(const TermList& assumptions);
  void check_unsat_assumptions();

  // 1. Configuration copy, output stream, logger.
  Configuration d_config;
  std::unique_ptr<std::streambuf> d_outbuf;
  std::ostream d_out;
  Logger d_logger;

  // 2. The term store, and whether this environment deletes it.
  TermManager* d_tm = nullptr;
  bool d_owns_tm = false;

  // 3. The construction-time simplifier installed in an owned store; null
  //    in a shared environment.
  StdTermSimplifier* d_simplifier = nullptr;

  // 4. The search engine. (An external engine hook and its interface slot
  //    in here.)
  std::unique_ptr<DpllSolver> d_dpll;

  // 5. The theory manager with the solvers that the options enable. A sat
  //    answer over theory atoms without it is refused (see do_check).
  std::unique_ptr<TheoryManager> d_theory_manager;
  std::unique_ptr<TheoryFactSink> d_fact_sink;

  // 6. Unsat mark (number of open backtrack points at which
  //    unsatisfiability was found, or -1), its interpolation group.
  int32_t d_unsat_mark = -1;
  int32_t d_unsat_mark_group = -1;

  // 7. The termination test installed by the caller, or null.
  TerminationTest* d_termination = nullptr;

  // 8. The pipeline: the rewrite stack, then (the top-level propagator,
  //    term normalizer and free-input coder come here once they exist) the
  //    encoder, polarity checker, clause sink and CNF generator (the NNF
  //    generator after it).
  std::unique_ptr<RewriteStack> d_rewrite_stack;
  std::unique_ptr<ConstraintEncoder> d_encoder;
  std::unique_ptr<PolarityChecker> d_polarity;
  std::unique_ptr<DpllClauseSink> d_clause_sink;
  std::unique_ptr<CNFGenerator> d_cnf;

  // 9. The model of the last sat check (reference counted, null when there
  //    is none). (The unsat core store slots in here.)
  ModelStore* d_model = nullptr;

  // 10. The assertion stack (null: a backtrack point) and how many of its
  //     entries have reached the engine.
  std::vector<const Term_*> d_stack;
  // The formulas as the engine got them (after encoding), with the number
  // of backtrack points open when they went in: the model is built from
  // these as well, since the terms that encoding made up (the constants
  // standing for term-ites) carry values the original formulas need.
  std::vector<std::pair<size_t, const Term_*>> d_engine_formulas;
  size_t d_processed = 0;

  // 11. (Interpolation groups per stack entry slot in here.)

  // 12. Shallow labels and the next label number.
  std::vector<const Term_*> d_labels;
  uint32_t d_next_label = 1;

  // 13. (The interpolation classifier and its sink slot in here.)

  // 14. The last result: -1 unknown, 0 unsat, 1 sat.
  int32_t d_last_result = -1;

  // 15. The assumptions of the last check that took part in its conflict,
  //     taken from the engine when the check ended (a later pop may delete
  //     their variables). (The cached unsat-core result joins it.)
  TermList d_unsat_assumptions;

  // 16. Set when a check ended early; the next check rebuilds.
  bool d_interrupted = false;

  // 17. (The API tracer and its stream slot in here.)
};

}  // namespace zenlo

#endif
