#include "base/optiontable.h"

namespace zenlo {

namespace {

using Range = OptionDef::Range;

Range at_most(double max) {
  return Range{-HUGE_VAL, max};
}

Range at_least(double min) {
  return Range{min, HUGE_VAL};
}

constexpr bool kNotDumped = false;

// The name of an option is the path of its field from the root of the
// record, except under "debug.", whose fields sit at the root.
#define ZENLO_FIELD(path)           \
  +[](Configuration & c) -> auto& { \
    return c.path;                  \
  }
#define ZENLO_OPT(path) #path, ZENLO_FIELD(path)
#define ZENLO_DEBUG_OPT(field) "debug." #field, ZENLO_FIELD(field)

std::vector<OptionDef> general_options() {
  return {
      {ZENLO_OPT(verbosity),
       at_most(2),
       "Amount of progress and statistics output, from 0 (silent) to 2."},
      {ZENLO_OPT(proof_generation),
       {},
       "Record the search so that a proof of unsatisfiability can be "
       "produced."},
      {ZENLO_OPT(interpolation),
       {},
       "Enable the computation of Craig interpolants. Turns proof generation "
       "on and top-level propagation off."},
      {ZENLO_OPT(model_generation),
       {},
       "Keep what is needed to produce a model after a satisfiable check."},
      {ZENLO_OPT(bool_model_generation),
       {},
       "Produce models of the Boolean atoms only. Turns top-level "
       "propagation off."},
      {ZENLO_OPT(unsat_core_generation),
       at_most(3),
       "Unsat core extraction: 0 off, 1 proof-based, 2 lemma-lifting "
       "algorithm, 3 assumptions-based algorithm."},
      {ZENLO_OPT(random_seed), {}, "Seed of the search's random choices."},
      {ZENLO_OPT(allow_bool_function_args),
       {},
       "Allow uninterpreted functions to take Boolean arguments.",
       kNotDumped},
  };
}

std::vector<OptionDef> debug_options() {
  return {
      {ZENLO_DEBUG_OPT(api_call_trace),
       at_most(3),
       "Trace the calls of the C interface: 0 off, 1 SMT-LIB v2 script with "
       "global declarations, 2 C source file, 3 SMT-LIB v2 script with "
       "scoped declarations."},
      {ZENLO_DEBUG_OPT(api_call_trace_filename),
       {},
       "File that receives the trace of the C interface calls.",
       kNotDumped},
      {ZENLO_DEBUG_OPT(api_call_trace_dump_config),
       {},
       "Write the configuration settings at the start of the trace."},
      {ZENLO_DEBUG_OPT(dump_theory_lemmas),
       {},
       "Write every theory lemma to a file of its own, as an SMT-LIB v2 "
       "script."},
      {ZENLO_DEBUG_OPT(solver_enabled),
       {},
       "When false, checks do not search and answer unknown; useful with "
       "tracing."},
  };
}

// Help lists them; dumps leave them out, so that configuration files
// written by one build read the same in every other.
std::vector<OptionDef> check_options() {
  return {
      {ZENLO_OPT(check.models),
       {},
       "After every sat answer, evaluate each assertion and assumption in "
       "the model; one that is not true is an internal error.",
       kNotDumped},
      {ZENLO_OPT(check.theory_facts),
       {},
       "Check every theory conflict, explanation and lemma by a checker "
       "that shares no code with the theory solver.",
       kNotDumped},
      {ZENLO_OPT(check.learnt_clauses),
       {},
       "Check that every learnt clause follows from the clauses and theory "
       "facts so far by unit propagation on a copy (slow).",
       kNotDumped},
      {ZENLO_OPT(check.unsat_assumptions),
       {},
       "After unsat under assumptions, check in a fresh environment that "
       "the returned assumptions are unsat with the assertions.",
       kNotDumped},
  };
}

std::vector<OptionDef> printer_options() {
  return {
      {ZENLO_OPT(printer.bv_number_format),
       at_most(2),
       "Format of bit-vector constants: 0 decimal, 1 binary, 2 hexadecimal "
       "(binary when the width is not a multiple of 4)."},
      {ZENLO_OPT(printer.fp_number_format),
       at_most(2),
       "Format of floating-point constants: 0 decimal form of the "
       "bit-vector encoding, 1 binary form of it, 2 decimal floating-point "
       "format."},
      {ZENLO_OPT(printer.defines_prefix),
       {},
       "Prefix of the names of the definitions made when printing shared "
       "subterms."},
      {ZENLO_OPT(printer.model_as_formula),
       {},
       "Print models as a formula rather than as a list of assignments."},
  };
}

std::vector<OptionDef> preprocessor_options() {
  return {
      {ZENLO_OPT(preprocessor.toplevel_propagation),
       {},
       "Propagate the top-level equalities and unit facts of the input "
       "before searching."},
      {ZENLO_OPT(preprocessor.toplevel_propagation_limit),
       {},
       "Limit on the work of top-level propagation; 0 means unlimited."},
      {ZENLO_OPT(preprocessor.simplification),
       at_most(63),
       "Preprocessing simplifications, a bitwise or of: 1 generic Term-ITE, "
       "2 bit-vector specific, 4 array specific, 8 global, 16 arithmetic, "
       "32 pseudo-Boolean constraint simplifications."},
      {ZENLO_OPT(preprocessor.ite_minimization),
       {},
       "Minimize the term if-then-else expressions of the input."},
      {ZENLO_OPT(preprocessor.ite_minimization_call_limit),
       at_least(0),
       "Limit on the calls of if-then-else minimization; 0 means "
       "unlimited."},
      {ZENLO_OPT(preprocessor.interpolation_ite_elimination),
       {},
       "Eliminate term if-then-else expressions when computing "
       "interpolants."},
      {ZENLO_OPT(preprocessor.partial_nnf_conversion),
       {},
       "Convert the input partially to negation normal form before the "
       "clause conversion."},
      {ZENLO_OPT(preprocessor.full_cnf_conversion),
       {},
       "Convert to clauses by distribution instead of introducing "
       "definitions for subformulas."},
  };
}

std::vector<OptionDef> dpll_options() {
  return {
      {ZENLO_OPT(dpll.restart_strategy),
       at_most(3),
       "Restart strategy: 0 geometric, 1 Luby sequence, 2 Luby with the "
       "unit adjusted by agility, 3 the dynamic strategy of the Glucose SAT "
       "solver."},
      {ZENLO_OPT(dpll.restart_initial),
       {},
       "Number of conflicts before the first restart."},
      {ZENLO_OPT(dpll.restart_geometric_factor),
       {},
       "Factor by which the restart interval grows under the geometric "
       "strategy."},
      {ZENLO_OPT(dpll.store_tlemmas),
       {},
       "Keep the theory lemmas as permanent clauses of the search."},
      {ZENLO_OPT(dpll.branching_random_frequency),
       at_most(1),
       "Frequency of random decisions, between 0 and 1."},
      {ZENLO_OPT(dpll.branching_initial_phase),
       at_most(2),
       "Initial phase of decisions: 0 false first, 1 true first, 2 by the "
       "polarity of the atom (true if it occurs only negatively)."},
      {ZENLO_OPT(dpll.branching_cache_phase),
       at_most(2),
       "Phase caching: 0 off, 1 cache except for variables assigned at the "
       "last decision level, 2 always."},
      {ZENLO_OPT(dpll.branching_random_invalidate_phase_cache),
       {},
       "A random decision forgets the cached phase of its variable."},
      {ZENLO_OPT(dpll.branching_random_ignore_polarity),
       {},
       "A random decision picks its phase at random instead of by the phase "
       "rules."},
      {ZENLO_OPT(dpll.ghost_filtering),
       {},
       "Filter the decisions on atoms that no longer matter to the current "
       "assignment."},
      {ZENLO_OPT(dpll.minimize_model),
       {},
       "Drop from a model the assignments that the formula does not need."},
      {ZENLO_OPT(dpll.allsat_minimize_model),
       {},
       "Minimize each model of an All-SAT enumeration before blocking it."},
      {ZENLO_OPT(dpll.pop_btpoint_reset_var_order),
       {},
       "Reset the variable order when a backtrack point is popped."},
      {ZENLO_OPT(dpll.glucose_var_activity),
       {},
       "Bump variable activities in the way of the Glucose SAT solver."},
      {ZENLO_OPT(dpll.glucose_learnt_minimization),
       {},
       "Minimize learnt clauses with binary clauses, in the way of the "
       "Glucose SAT solver."},
      {ZENLO_OPT(dpll.preprocessor.mode),
       at_most(2),
       "SAT-level preprocessing: 0 off, 1 preprocessing, 2 inprocessing."},
      {ZENLO_OPT(dpll.preprocessor.clause_size_limit),
       {},
       "Largest clause that SAT-level preprocessing resolves on."},
      {ZENLO_OPT(dpll.preprocessor.subsumption_size_limit),
       {},
       "Largest clause that SAT-level preprocessing checks for "
       "subsumption."},
      {ZENLO_OPT(dpll.preprocessor.elimination_grow_limit),
       {},
       "How many clauses eliminating a variable may add."},
      {ZENLO_OPT(dpll.preprocessor.elimination_phase),
       at_least(1),
       "Number of variable elimination rounds of SAT-level preprocessing."},
      {ZENLO_OPT(dpll.preprocessor.elimination_recent_vars_only),
       {},
       "Eliminate only the variables added since the last preprocessing."},
      {ZENLO_OPT(dpll.preprocessor.try_reelimination),
       {},
       "Try again to eliminate variables that were restored."},
      {ZENLO_OPT(dpll.interpolation_mode),
       at_most(2),
       "Boolean interpolation system: 0 McMillan's algorithm, 1 symmetric, "
       "2 inverse McMillan."},
      {ZENLO_OPT(dpll.proof_simplification),
       {},
       "Simplify resolution proofs before they are used."},
      {ZENLO_OPT(dpll.allsat_allow_duplicates),
       {},
       "Allow All-SAT enumeration to report the same model more than once, "
       "which is cheaper."},
  };
}

// The inner engines of the bit-vector and floating-point solvers share a
// subset of the main engine's options under their own prefix. `Engine`
// selects the inner record, so the accessors stay plain functions.
template <Configuration::Dpll& (*Engine)(Configuration&)>
std::vector<OptionDef> inner_dpll_options(const std::string& prefix,
                                          const std::string& what) {
  return {
      {prefix + ".restart_strategy",
       +[](Configuration& c) -> int& { return Engine(c).restart_strategy; },
       at_most(3),
       "Restart strategy of the " + what
           + ": 0 geometric, 1 Luby sequence, 2 Luby with the unit adjusted "
             "by agility, 3 the dynamic strategy of the Glucose SAT solver."},
      {prefix + ".restart_initial",
       +[](Configuration& c) -> int& { return Engine(c).restart_initial; },
       {},
       "Number of conflicts before the first restart of the " + what + "."},
      {prefix + ".restart_geometric_factor",
       +[](Configuration& c) -> double& {
         return Engine(c).restart_geometric_factor;
       },
       {},
       "Growth factor of the geometric restart interval of the " + what + "."},
      {prefix + ".branching_random_frequency",
       +[](Configuration& c) -> double& {
         return Engine(c).branching_random_frequency;
       },
       at_most(1),
       "Frequency of random decisions of the " + what + ", between 0 and 1."},
      {prefix + ".branching_initial_phase",
       +[](Configuration& c) -> int& {
         return Engine(c).branching_initial_phase;
       },
       at_most(2),
       "Initial phase of decisions of the " + what
           + ": 0 false first, 1 true first, 2 by the polarity of the atom."},
      {prefix + ".branching_cache_phase",
       +[](Configuration& c) -> int& {
         return Engine(c).branching_cache_phase;
       },
       at_most(2),
       "Phase caching of the " + what
           + ": 0 off, 1 except for the last decision level, 2 always."},
      {prefix + ".branching_random_invalidate_phase_cache",
       +[](Configuration& c) -> bool& {
         return Engine(c).branching_random_invalidate_phase_cache;
       },
       {},
       "A random decision of the " + what + " forgets the cached phase."},
      {prefix + ".branching_random_ignore_polarity",
       +[](Configuration& c) -> bool& {
         return Engine(c).branching_random_ignore_polarity;
       },
       {},
       "A random decision of the " + what + " picks its phase at random."},
      {prefix + ".ghost_filtering",
       +[](Configuration& c) -> bool& { return Engine(c).ghost_filtering; },
       {},
       "Ghost filtering of the decisions of the " + what + "."},
      {prefix + ".glucose_var_activity",
       +[](Configuration& c) -> bool& {
         return Engine(c).glucose_var_activity;
       },
       {},
       "Glucose-style variable activities in the " + what + "."},
      {prefix + ".glucose_learnt_minimization",
       +[](Configuration& c) -> bool& {
         return Engine(c).glucose_learnt_minimization;
       },
       {},
       "Glucose-style minimization of learnt clauses in the " + what + "."},
  };
}

Configuration::Dpll& bv_engine(Configuration& c) {
  return c.theory.bv.lazydpll;
}

Configuration::Dpll& fp_engine(Configuration& c) {
  return c.theory.fp.dpll;
}

void append(std::vector<OptionDef>& defs, std::vector<OptionDef> more) {
  defs.insert(defs.end(), more.begin(), more.end());
}

std::vector<OptionDef> theory_general_options() {
  return {
      {ZENLO_OPT(theory.eq_propagation),
       {},
       "Propagate equalities between the theory solvers."},
      {ZENLO_OPT(theory.interface_eq_policy),
       at_most(3),
       "Generation of interface equalities: 0 lazy, 1 eager, 2 heuristic, "
       "by equalities the theories find interesting, 3 off."},
      {ZENLO_OPT(theory.pairwise_interface_eq),
       {},
       "Generate interface equalities pairwise rather than all at once."},
      {ZENLO_OPT(theory.interface_eq_batch_size),
       {},
       "Number of interface equalities generated at a time; 0 means "
       "unlimited."},
      {ZENLO_OPT(theory.pure_literal_filtering),
       {},
       "Do not give the theories the atoms whose value does not matter, as "
       "they occur with one polarity only."},
  };
}

std::vector<OptionDef> theory_la_options() {
  return {
      {ZENLO_OPT(theory.la.enabled),
       {},
       "Enable the solver for linear arithmetic."},
      {ZENLO_OPT(theory.la.split_rat_eq),
       {},
       "Split rational equalities into two inequalities."},
      {ZENLO_OPT(theory.la.delay_alien),
       {},
       "Delay the atoms that mix arithmetic with other theories."},
      {ZENLO_OPT(theory.la.pivoting_greedy_threshold),
       {},
       "Number of pivoting steps chosen greedily before a fair rule is "
       "used."},
      {ZENLO_OPT(theory.la.lazy_expl_threshold),
       {},
       "Size from which explanations of implied bounds are computed "
       "lazily."},
      {ZENLO_OPT(theory.la.interpolation_laz_use_floor),
       {},
       "Use the floor function in interpolants over the integers."},
      {ZENLO_OPT(theory.la.pure_equality_filtering),
       {},
       "Give the solver only one polarity of an equality whose other "
       "polarity does not occur."},
      {ZENLO_OPT(theory.la.detect_euf_fragment),
       {},
       "Detect arithmetic atoms that equality reasoning alone can decide."},
      {ZENLO_OPT(theory.la.deduction_enabled),
       {},
       "Deduce the values of arithmetic atoms from the current bounds."},
      {ZENLO_OPT(theory.la.laz_equality_elimination),
       {},
       "Eliminate integer equalities before branch and bound."},
      {ZENLO_OPT(theory.la.laz_internal_branch_and_bound),
       {},
       "Run branch and bound inside the integer solver before splitting in "
       "the search."},
      {ZENLO_OPT(theory.la.laz_internal_branch_and_bound_limit),
       {},
       "Limit of internal branch and bound; 0 means unlimited, 1 a value "
       "proportional to the problem."},
      {ZENLO_OPT(theory.la.laz_cuts_from_proofs_mode),
       at_most(3),
       "Cuts from proofs: 0 off, 1 always, 2 only for external branch and "
       "bound, 3 external with branching on equalities over defining "
       "constraints."},
      {ZENLO_OPT(theory.la.laz_enabled),
       {},
       "Enable the solver for linear integer arithmetic."},
      {ZENLO_OPT(theory.la.laz_unit_cube_test),
       {},
       "Try the unit cube test for integer solutions."},
      {ZENLO_OPT(theory.la.interpolation_mode),
       at_most(2),
       "Interpolation of linear arithmetic: 0 single summaries from A, 1 "
       "multiple summaries from A, 2 single negated summaries from B."},
      {ZENLO_OPT(theory.la.interpolation_laz_split_mixed_eq),
       {},
       "Split integer equalities that mix the symbols of both partitions "
       "when interpolating.",
       kNotDumped},
  };
}

std::vector<OptionDef> theory_euf_arr_options() {
  return {
      {ZENLO_OPT(theory.euf.enabled),
       {},
       "Enable the solver for equality and uninterpreted functions."},
      {ZENLO_OPT(theory.euf.dyn_ack),
       at_most(2),
       "Dynamic Ackermann expansion: 0 off, 1 only toplevel congruences, 2 "
       "all congruences."},
      {ZENLO_OPT(theory.euf.dyn_ack_threshold),
       {},
       "Number of uses of a congruence before it is expanded."},
      {ZENLO_OPT(theory.euf.dyn_ack_limit),
       {},
       "Largest number of Ackermann lemmas added; 0 means unlimited."},
      {ZENLO_OPT(theory.euf.low_priority),
       {},
       "Let the other theory solvers answer before equality reasoning.",
       kNotDumped},
      {ZENLO_OPT(theory.euf.transitivity_lemmas),
       {},
       "Learn a = c as a lemma when conflicts keep chaining a = b and "
       "b = c; counted and limited with the Ackermann lemmas."},
      {ZENLO_OPT(theory.arr.enabled), {}, "Enable the solver for arrays."},
      {ZENLO_OPT(theory.arr.mode),
       at_most(2),
       "Array reasoning: 0 lazy axiom instantiation with weak equivalence, "
       "1 lemmas on demand in the style of the Boolector solver, 2 frugal "
       "axiom instantiation."},
      {ZENLO_OPT(theory.arr.lazy_lemmas),
       {},
       "Add array lemmas only when a complete check needs them."},
      {ZENLO_OPT(theory.arr.max_ext_lemmas),
       {},
       "Largest number of extensionality lemmas; 0 means unlimited."},
      {ZENLO_OPT(theory.arr.enable_ext_polarity),
       {},
       "Add extensionality lemmas only for array equalities that occur "
       "negatively."},
      {ZENLO_OPT(theory.arr.enable_ext_arg),
       {},
       "Use the arguments of extensionality witnesses in read-over-write "
       "lemmas."},
      {ZENLO_OPT(theory.arr.enable_witness),
       {},
       "Name the witness of a disequality between arrays by an index "
       "constant."},
  };
}

std::vector<OptionDef> theory_bv_options() {
  std::vector<OptionDef> defs = {
      {ZENLO_OPT(theory.bv.enabled), {}, "Enable the solver for bit-vectors."},
      {ZENLO_OPT(theory.bv.delay_propagated_eqs),
       {},
       "Delay the bit-vector equalities propagated by other theories."},
      {ZENLO_OPT(theory.bv.eager),
       {},
       "Bit-blast eagerly into the main search instead of an inner lazy "
       "engine."},
      {ZENLO_OPT(theory.bv.bit_blast_mode),
       at_most(2),
       "Bit-blasting: 0 directly to CNF, 1 through an AIG and Tseitin "
       "conversion, 2 through an AIG and conversion with logic synthesis."},
      {ZENLO_OPT(theory.bv.interpolation_mode),
       at_most(4),
       "Bit-vector interpolation: 0 equality substitution + LA(Z) encoding "
       "+ bit-level, 1 LA(Z) encoding + bit-level, 2 bit-level only, 3 "
       "LA(Z) encoding + equality substitution + bit-level, 4 equality "
       "substitution + bit-level."},
      {ZENLO_OPT(theory.bv.proof_simplification),
       {},
       "Simplify the proofs of the bit-vector solver."},
  };
  append(
      defs,
      inner_dpll_options<bv_engine>(
          "theory.bv.lazydpll", "lazy bit-vector solver's inner SAT engine"));
  defs.push_back(
      {ZENLO_OPT(theory.bv.div_by_zero_mode),
       at_most(1),
       "Division by zero: 0 hardware semantics, division by 0 gives the "
       "all-ones value and remainder by 0 gives the dividend; 1 an "
       "uninterpreted function leaves the result unspecified."});
  return defs;
}

std::vector<OptionDef> theory_fp_options() {
  std::vector<OptionDef> defs = {
      {ZENLO_OPT(theory.fp.enabled),
       {},
       "Enable the solver for floating-point arithmetic."},
      {ZENLO_OPT(theory.fp.mode),
       at_most(2),
       "Floating-point reasoning: 0 BV encoding with lazy bit-blasting, 1 "
       "BV encoding with eager bit-blasting, 2 ACDCL with interval "
       "domain."},
      {ZENLO_OPT(theory.fp.bv_combination_enabled),
       {},
       "Combine the floating-point and bit-vector solvers."},
      {ZENLO_OPT(theory.fp.bit_blast_mode),
       at_most(2),
       "Bit-blasting of floating point: 0 directly to CNF, 1 through an AIG "
       "and Tseitin conversion, 2 through an AIG and conversion with logic "
       "synthesis."},
  };
  append(defs,
         inner_dpll_options<fp_engine>(
             "theory.fp.dpll", "floating-point solver's inner SAT engine"));
  append(
      defs,
      {
          {ZENLO_OPT(theory.fp.acdcl_conflict_generalization),
           at_most(3),
           "ACDCL conflict analysis: 0 none, 1 learning and backjumping "
           "without "
           "generalization, 2 with cheap generalization, 3 with aggressive "
           "generalization."},
          {ZENLO_OPT(theory.fp.interpolation_mode),
           at_most(5),
           "Floating-point interpolation, even values with equality inlining, "
           "odd without: 0, 1 McMillan; 2, 3 symmetric; 4, 5 inverse "
           "McMillan."},
          {ZENLO_OPT(theory.fp.acdcl_single_propagation_limit),
           {},
           "Limit on the propagations of one ACDCL step; 0 means unlimited."},
          {ZENLO_OPT(theory.fp.acdcl_single_generalization_limit),
           {},
           "Limit on the work of one ACDCL generalization; 0 means unlimited."},
          {ZENLO_OPT(theory.fp.acdcl_generalization_fair),
           {},
           "Generalize ACDCL conflicts fairly over all variables."},
          {ZENLO_OPT(theory.fp.minmax_zero_mode),
           at_most(4),
           "Result of min and max on zeros of both signs: 0 min gives -0 and "
           "max +0, 1 always +0, 2 the first argument, 3 the second argument, "
           "4 an uninterpreted function."},
          {ZENLO_OPT(theory.fp.to_bv_overflow_mode),
           at_most(1),
           "Conversion to bit-vector out of range: 0 truncate, 1 an "
           "uninterpreted function."},
      });
  return defs;
}

std::vector<OptionDef> theory_na_options() {
  return {
      {ZENLO_OPT(theory.na.enabled),
       {},
       "Enable the solver for nonlinear arithmetic."},
      {ZENLO_OPT(theory.na.permanent_lemmas),
       {},
       "Keep the lemmas of nonlinear arithmetic across backtracking."},
      {ZENLO_OPT(theory.na.eager_lemmas),
       {},
       "Add nonlinear lemmas at every check, not only at complete ones."},
      {ZENLO_OPT(theory.na.enable_tangent_lemmas_frontier),
       {},
       "Add tangent plane lemmas at the frontier of the current model."},
      {ZENLO_OPT(theory.na.tangent_lemmas_rat_approx),
       {},
       "Precision of the rational approximation of tangent points; 0 "
       "means exact."},
      {ZENLO_OPT(theory.na.tangent_lemmas_limit),
       {},
       "Largest number of tangent lemmas per check; 0 means unlimited."},
      {ZENLO_OPT(theory.na.tangent_lemmas_enabled),
       {},
       "Refine multiplications by tangent plane lemmas."},
      {ZENLO_OPT(theory.na.sat_check_enabled),
       {},
       "Try to prove a candidate model of the linear abstraction "
       "satisfiable."},
      {ZENLO_OPT(theory.na.bound_lemmas_enabled),
       {},
       "Add lemmas that bound the transcendental functions."},
      {ZENLO_OPT(theory.na.nta_enabled),
       {},
       "Enable the transcendental functions exp, sin, log and asin."},
      {ZENLO_OPT(theory.na.nta_rat_approx),
       {},
       "Precision of the rational approximations of transcendental "
       "values."},
      {ZENLO_OPT(theory.na.nta_rat_approx_limit),
       {},
       "Largest precision that approximations of transcendental values may "
       "reach."},
      {ZENLO_OPT(theory.na.nta_sat_mode),
       at_most(2),
       "Satisfiability check with transcendental functions: 0 off, 1 linear "
       "arithmetic only, 2 nonlinear arithmetic."},
      {ZENLO_OPT(theory.na.nta_eager),
       {},
       "Add the lemmas of transcendental functions eagerly."},
      {ZENLO_OPT(theory.na.div_by_zero_mode),
       at_most(1),
       "Division by zero: 0 gives 0, 1 an uninterpreted function.",
       kNotDumped},
  };
}

std::vector<OptionDef> theory_options() {
  std::vector<OptionDef> defs = theory_general_options();
  append(defs, theory_la_options());
  append(defs, theory_euf_arr_options());
  append(defs, theory_bv_options());
  append(defs, theory_fp_options());
  append(defs, theory_na_options());
  return defs;
}

}  // namespace

const std::vector<OptionGroup>& option_table() {
  static const std::vector<OptionGroup> table = {
      {"General options:", general_options()},
      {"Debug options:", debug_options()},
      {"Checking options:", check_options()},
      {"Printer options:", printer_options()},
      {"Preprocessor options:", preprocessor_options()},
      {"DPLL options:", dpll_options()},
      {"Theory options:", theory_options()},
  };
  return table;
}

const std::vector<OptionDef>& unregistered_options() {
  static const std::vector<OptionDef> defs = {
      {ZENLO_DEBUG_OPT(term_simplifications),
       {},
       "Simplify terms as they are built.",
       kNotDumped},
      {ZENLO_OPT(preprocessor.free_input_propagation),
       {},
       "Propagate through the input symbols that occur only once.",
       kNotDumped},
      {ZENLO_OPT(shallow_incrementality),
       {},
       "Implement backtrack points by labels instead of engine levels.",
       kNotDumped},
  };
  return defs;
}

#undef ZENLO_DEBUG_OPT
#undef ZENLO_OPT
#undef ZENLO_FIELD

}  // namespace zenlo
