#include "base/configuration.h"

namespace zenlo {

void Configuration::Dpll::copy_to(Dpll& other) const {
  if (&other == this) {
    return;
  }
  void* parent_keep = other.parent;
  Dpll* pre_parent_keep = other.preprocessor.parent;
  // The record is plain data apart from the two back pointers, so a
  // member-wise copy followed by restoring those is exact.
  other.restart_strategy = restart_strategy;
  other.restart_initial = restart_initial;
  other.restart_geometric_factor = restart_geometric_factor;
  other.store_tlemmas = store_tlemmas;
  other.branching_random_frequency = branching_random_frequency;
  other.branching_initial_phase = branching_initial_phase;
  other.branching_cache_phase = branching_cache_phase;
  other.branching_random_invalidate_phase_cache =
      branching_random_invalidate_phase_cache;
  other.branching_random_ignore_polarity = branching_random_ignore_polarity;
  other.ghost_filtering = ghost_filtering;
  other.minimize_model = minimize_model;
  other.allsat_minimize_model = allsat_minimize_model;
  other.pop_btpoint_reset_var_order = pop_btpoint_reset_var_order;
  other.glucose_var_activity = glucose_var_activity;
  other.glucose_learnt_minimization = glucose_learnt_minimization;
  other.interpolation_mode = interpolation_mode;
  other.proof_simplification = proof_simplification;
  other.allsat_allow_duplicates = allsat_allow_duplicates;
  other.preprocessor = preprocessor;
  other.var_decay = var_decay;
  other.clause_decay = clause_decay;
  other.glucose_var_decay_max = glucose_var_decay_max;
  other.learnt_size_factor = learnt_size_factor;
  other.learnt_size_inc = learnt_size_inc;
  other.agility_decay = agility_decay;
  other.agility_limit = agility_limit;
  other.agility_restart_limit = agility_restart_limit;
  other.theory_clause_weight = theory_clause_weight;
  other.reduce_fraction = reduce_fraction;
  other.learnt_minimization = learnt_minimization;
  other.remove_satisfied = remove_satisfied;
  other.parent = parent_keep;
  other.preprocessor.parent =
      pre_parent_keep != nullptr ? pre_parent_keep : &other;
}

void Configuration::copy_to(Configuration& other) const {
  if (&other == this) {
    return;
  }
  other.verbosity = verbosity;
  other.proof_generation = proof_generation;
  other.interpolation = interpolation;
  other.model_generation = model_generation;
  other.bool_model_generation = bool_model_generation;
  other.allow_bool_function_args = allow_bool_function_args;
  other.unsat_core_generation = unsat_core_generation;
  other.shallow_incrementality = shallow_incrementality;
  other.random_seed = random_seed;
  other.api_call_trace = api_call_trace;
  other.api_call_trace_filename = api_call_trace_filename;
  other.api_call_trace_dump_config = api_call_trace_dump_config;
  other.dump_theory_lemmas = dump_theory_lemmas;
  other.log_sections = log_sections;
  other.solver_enabled = solver_enabled;
  other.term_simplifications = term_simplifications;
  other.preprocessor = preprocessor;
  other.dpll = dpll;
  other.theory = theory;
  other.printer = printer;
  other.check = check;
  other.optimization = optimization;
  other.link_parents();
}

void Configuration::link_parents() {
  preprocessor.parent = this;
  dpll.parent = this;
  dpll.preprocessor.parent = &dpll;
  theory.parent = this;
  theory.bv.lazydpll.parent = &theory.bv;
  theory.bv.lazydpll.preprocessor.parent = &theory.bv.lazydpll;
  theory.fp.dpll.parent = &theory.fp;
  theory.fp.dpll.preprocessor.parent = &theory.fp.dpll;
  theory.fp.bv.lazydpll.parent = &theory.fp.bv;
  theory.fp.bv.lazydpll.preprocessor.parent = &theory.fp.bv.lazydpll;
  printer.parent = this;
  optimization.parent = this;
}

}  // namespace zenlo
