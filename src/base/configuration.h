// The typed settings of one solver context, nested by subsystem. Components
// keep a pointer to their own sub-record and read it; nobody but the
// ConfigurationSetter writes it. An environment works on its own copy, so a
// configuration handle can serve several environments.
//
// Option names are dotted paths from the root: `dpll.restart_strategy` is
// Configuration::dpll.restart_strategy. The defaults below are the built-in
// values of the option table.
#ifndef ZENLO_BASE_CONFIGURATION_H
#define ZENLO_BASE_CONFIGURATION_H

#include <string>
#include <vector>

namespace zenlo {

struct Configuration {
  struct Preprocessor {
    Configuration* parent = nullptr;
    bool toplevel_propagation = true;
    int toplevel_propagation_limit = 0;  // 0: unlimited
    int simplification = 55;             // bit set, see the option's help
    bool ite_minimization = false;
    int ite_minimization_call_limit = 150000;
    bool interpolation_ite_elimination = false;
    bool partial_nnf_conversion = false;
    bool full_cnf_conversion = false;
    bool free_input_propagation = false;  // not in the option table
  };

  // Settings of a CDCL engine. The main engine has one, and so have the
  // inner engines of the bit-vector and floating-point solvers.
  struct Dpll {
    struct Preprocessor {
      Dpll* parent = nullptr;
      int mode = 0;  // 0 off, 1 preprocessing, 2 inprocessing
      int clause_size_limit = 20;
      int subsumption_size_limit = 1000;
      int elimination_grow_limit = 0;
      int elimination_phase = 1;
      bool elimination_recent_vars_only = false;
      bool try_reelimination = true;
    };

    void* parent = nullptr;
    int restart_strategy = 0;  // 0 geometric, 1 Luby, 2 agility Luby, 3 LBD
    int restart_initial = 200;
    double restart_geometric_factor = 1.5;
    bool store_tlemmas = false;
    double branching_random_frequency = 0.001;
    int branching_initial_phase = 0;  // 0 false, 1 true, 2 by polarity
    int branching_cache_phase = 2;    // 0 off, 1 not last level, 2 always
    bool branching_random_invalidate_phase_cache = true;
    bool branching_random_ignore_polarity = false;
    bool ghost_filtering = false;
    bool minimize_model = false;
    bool allsat_minimize_model = false;
    bool pop_btpoint_reset_var_order = false;
    bool glucose_var_activity = false;
    bool glucose_learnt_minimization = false;
    int interpolation_mode = 0;
    bool proof_simplification = false;
    bool allsat_allow_duplicates = false;
    Preprocessor preprocessor;

    // Fixed tuning constants with no option.
    double var_decay = 1 / 0.95;          // 1.0526315789473684
    double clause_decay = 1 / 0.999;      // 1.001001001001001
    double glucose_var_decay_max = 0.95;  // reached when glucose activity
    double learnt_size_factor = 1.0 / 3;
    double learnt_size_inc = 1.1;
    double agility_decay = 0.9999;
    double agility_limit = 0.2;
    double agility_restart_limit = 0.15;
    double theory_clause_weight = 1.6;  // score factor in learnt reduction
    double reduce_fraction = 0.5;       // share of learnts judged by score
    bool learnt_minimization = true;    // recursive minimisation
    bool remove_satisfied = true;       // of problem clauses, in simplify

    Dpll() { preprocessor.parent = this; }

    Dpll(const Dpll& o) { o.copy_to(*this); }

    Dpll& operator=(const Dpll& o) {
      o.copy_to(*this);
      return *this;
    }

    // Copies every setting, leaving the parent pointers of `other` alone.
    void copy_to(Dpll& other) const;
  };

  struct Theory {
    struct Euf {
      bool enabled = true;
      int dyn_ack = 0;  // 0 off, 1 top-level congruences, 2 all
      int dyn_ack_threshold = 1;
      int dyn_ack_limit = 1000;
      bool low_priority = false;
      // Lemmas a = c from equalities a = b, b = c chained by conflicts.
      bool transitivity_lemmas = true;
    };

    struct La {
      bool enabled = true;
      bool split_rat_eq = true;
      bool delay_alien = false;
      int pivoting_greedy_threshold = 0;
      int lazy_expl_threshold = 10;
      bool interpolation_laz_use_floor = true;
      bool pure_equality_filtering = true;
      bool detect_euf_fragment = false;
      bool deduction_enabled = true;
      bool laz_equality_elimination = true;
      bool laz_internal_branch_and_bound = true;
      int laz_internal_branch_and_bound_limit = 1;
      int laz_cuts_from_proofs_mode = 3;
      bool laz_enabled = true;
      bool laz_unit_cube_test = true;
      int interpolation_mode = 0;
      bool interpolation_laz_split_mixed_eq = true;
      double bland_factor = 0.5;  // fixed, no option
    };

    struct Arr {
      bool enabled = true;
      int mode = 0;
      bool lazy_lemmas = false;
      int max_ext_lemmas = 0;
      bool enable_ext_polarity = true;
      bool enable_ext_arg = true;
      bool enable_witness = true;
    };

    struct Bv {
      bool enabled = true;
      bool delay_propagated_eqs = true;
      bool eager = true;
      int bit_blast_mode = 1;
      int interpolation_mode = 0;
      bool proof_simplification = false;
      int div_by_zero_mode = 0;
      Dpll lazydpll;

      Bv() { lazydpll.branching_random_frequency = 0.0; }
    };

    struct Fp {
      bool enabled = true;
      int mode = 1;
      bool bv_combination_enabled = true;
      int bit_blast_mode = 2;
      int acdcl_conflict_generalization = 2;
      int interpolation_mode = 0;
      int acdcl_single_propagation_limit = 0;
      int acdcl_single_generalization_limit = 0;
      bool acdcl_generalization_fair = true;
      int minmax_zero_mode = 1;
      int to_bv_overflow_mode = 0;
      Dpll dpll;
      Bv bv;

      Fp() {
        dpll.restart_strategy = 3;
        dpll.branching_random_frequency = 0.01;
        dpll.branching_cache_phase = 1;
        dpll.glucose_var_activity = true;
        dpll.glucose_learnt_minimization = true;
      }
    };

    struct Na {
      bool enabled = true;
      bool permanent_lemmas = true;
      bool eager_lemmas = false;
      bool enable_tangent_lemmas_frontier = true;
      int tangent_lemmas_rat_approx = 0;
      int tangent_lemmas_limit = 0;
      bool tangent_lemmas_enabled = true;
      bool sat_check_enabled = true;
      bool bound_lemmas_enabled = true;
      bool nta_enabled = true;
      int nta_rat_approx = 3;
      int nta_rat_approx_limit = 10;
      int nta_sat_mode = 1;
      bool nta_eager = true;
      int div_by_zero_mode = 1;
    };

    Configuration* parent = nullptr;
    bool eq_propagation = true;
    int interface_eq_policy = 2;
    bool pairwise_interface_eq = true;
    int interface_eq_batch_size = 100;
    bool pure_literal_filtering = false;
    Euf euf;
    La la;
    Arr arr;
    Bv bv;
    Fp fp;
    Na na;
  };

  struct Printer {
    Configuration* parent = nullptr;
    int bv_number_format = 0;  // 0 decimal, 1 binary, 2 hexadecimal
    int fp_number_format = 1;
    std::string defines_prefix;
    bool model_as_formula = false;
  };

  // Self-checks, all off by default: each costs time and exists to turn a
  // wrong answer or an unsound step into an internal error. The test runs
  // and the fuzzer switch them on; none is written by a dump.
  struct Check {
    bool models = false;             // every model holds every assertion
    bool theory_facts = false;       // conflicts, explanations, lemmas
    bool learnt_clauses = false;     // reverse unit propagation, slow
    bool unsat_assumptions = false;  // returned core refuted afresh
  };

  // Filled by the optimisation layer; no option of the table reaches it.
  struct Optimization {
    Configuration* parent = nullptr;
  };

  int verbosity = 0;
  bool proof_generation = false;
  bool interpolation = false;
  bool model_generation = false;
  bool bool_model_generation = false;
  bool allow_bool_function_args = false;
  int unsat_core_generation = 0;
  bool shallow_incrementality = false;
  long random_seed = 91648253;
  int api_call_trace = 0;
  std::string api_call_trace_filename;
  bool api_call_trace_dump_config = true;
  bool dump_theory_lemmas = false;
  std::vector<std::string> log_sections{std::string()};
  bool solver_enabled = true;
  bool term_simplifications = true;

  Preprocessor preprocessor;
  Dpll dpll;
  Theory theory;
  Printer printer;
  Check check;
  Optimization optimization;

  Configuration() { link_parents(); }

  Configuration(const Configuration& o) { o.copy_to(*this); }

  Configuration& operator=(const Configuration& o) {
    o.copy_to(*this);
    return *this;
  }

  void copy_to(Configuration& other) const;

 private:
  void link_parents();
};

}  // namespace zenlo

#endif
