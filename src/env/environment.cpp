// Building and tearing down an environment, its reset, and statistics.
// The road of a formula to an answer is in environment_check.cpp.
#include "env/environment.h"

#include <cstdio>
#include <string>

#include "base/terminationtest.h"
#include "dpll/dpllsolver.h"
#include "preprocess/cnfgenerator.h"
#include "preprocess/constraintencoder.h"
#include "preprocess/dpllclausesink.h"
#include "preprocess/modelstore.h"
#include "preprocess/polaritychecker.h"
#include "preprocess/rewritestack.h"
#include "preprocess/tseitincnfgenerator.h"
#include "terms/stdtermsimplifier.h"
#include "theory/theoryfactsink.h"
#include "theory/theorymanager.h"

namespace zenlo {

namespace {

// Standard output through C stdio with our own 8192-byte buffer: output of
// the environment and of a caller's printf calls stays in order because
// every flush goes through stdout.
class StdoutBuf : public std::streambuf {
 public:
  StdoutBuf() { setp(d_buf, d_buf + sizeof d_buf); }

  ~StdoutBuf() override { sync(); }

 protected:
  int_type overflow(int_type c) override {
    if (flush_buffer() != 0) {
      return traits_type::eof();
    }
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
      *pptr() = traits_type::to_char_type(c);
      pbump(1);
    }
    return traits_type::not_eof(c);
  }

  int sync() override {
    int r = flush_buffer();
    std::fflush(stdout);
    return r;
  }

 private:
  int flush_buffer() {
    size_t n = static_cast<size_t>(pptr() - pbase());
    if (n > 0 && std::fwrite(pbase(), 1, n, stdout) != n) {
      return -1;
    }
    setp(d_buf, d_buf + sizeof d_buf);
    return 0;
  }

  char d_buf[8192];
};

}  // namespace

Environment::Environment(const Configuration& config)
    : d_outbuf(new StdoutBuf()), d_out(d_outbuf.get()), d_logger(&d_out) {
  d_tm = new TermManager();
  d_owns_tm = true;
  d_config = config;
  configure_logger();
  try {
    renew_simplifier();
    d_tm->enable_simplifications(d_config.term_simplifications);
    d_tm->set_forbid_bool_args(!d_config.allow_bool_function_args);
    init();
  } catch (...) {
    do_reset();
    destroy_owned_store();
    throw;
  }
  // API call tracing starts here, after init().
}

Environment::Environment(const Configuration& config, TermManager* shared)
    : d_outbuf(new StdoutBuf()), d_out(d_outbuf.get()), d_logger(&d_out) {
  d_tm = shared;
  d_owns_tm = false;
  d_config = config;
  if (!d_config.term_simplifications) {
    d_tm->enable_simplifications(false);
  }
  configure_logger();
  try {
    init();
  } catch (...) {
    do_reset();
    throw;
  }
}

Environment::~Environment() {
  // Reverse order of building: the parts of init(), the simplifier and the
  // store, then stream and logger.
  do_reset();
  destroy_owned_store();
  d_out.flush();
}

void Environment::destroy_owned_store() {
  if (d_owns_tm) {
    d_tm->set_simplifier(nullptr);
    delete d_simplifier;
    delete d_tm;
    d_simplifier = nullptr;
    d_tm = nullptr;
  }
}

void Environment::renew_simplifier() {
  if (!d_owns_tm) {
    return;  // the owner of the store keeps its simplifier
  }
  std::unique_ptr<StdTermSimplifier> fresh =
      std::make_unique<StdTermSimplifier>(d_tm);
  fresh->set_logger(&d_logger);
  d_tm->set_simplifier(fresh.get());
  delete d_simplifier;
  d_simplifier = fresh.release();
}

void Environment::configure_logger() {
  d_logger.set_verbosity(d_config.verbosity);
  bool any = false;
  for (const std::string& s : d_config.log_sections) {
    if (s == "ALL") {
      d_logger.enable_all_sections();
    } else if (!s.empty()) {
      d_logger.enable_section(s);
    }
    any = any || !s.empty();
  }
  if (!any) {
    d_logger.enable_all_sections();
  }
}

// ---------------------------------------------------------------------------
// init and reset
// ---------------------------------------------------------------------------

void Environment::init() {
  d_interrupted = false;
  reset_model();
  d_processed = 0;
  d_last_result = -1;
  d_unsat_mark = -1;
  d_unsat_mark_group = -1;

  // The engine. (An external engine hook takes its place when one is set.)
  d_dpll = std::make_unique<DpllSolver>(&d_config.dpll, &d_config);
  d_dpll->set_logger(&d_logger, d_config.verbosity > 2 ? "DPLL" : "");
  d_theory_manager =
      std::make_unique<TheoryManager>(&d_config, d_tm, d_dpll.get(), &d_logger);
  d_dpll->set_theory_manager(d_theory_manager.get());
  d_theory_manager->set_fact_sink(d_fact_sink.get());

  d_rewrite_stack = std::make_unique<RewriteStack>();
  // The top-level propagator, the term normalizer and the free-input coder
  // are created here, each when its option asks.

  make_constraint_encoder();

  d_polarity = std::make_unique<PolarityChecker>(d_tm);
  d_theory_manager->set_polarity_checker(d_polarity.get());
  d_clause_sink =
      std::make_unique<DpllClauseSink>(d_tm,
                                       d_dpll.get(),
                                       d_polarity.get(),
                                       d_config.unsat_core_generation == 2);
  d_clause_sink->set_phase_by_polarity(d_config.dpll.branching_initial_phase
                                       == 2);

  // The unsat core store and the interpolation classifier (with the sink
  // that forwards to it) are created here when their options ask.
  d_cnf = std::make_unique<TseitinCNFGenerator<DpllClauseSink>>(
      d_tm, d_clause_sink.get(), d_config.preprocessor.full_cnf_conversion);

  // The NNF generator of `preprocessor.partial_nnf_conversion` goes here.

  d_next_label = 1;
  set_termination_test(d_termination);
}

void Environment::make_constraint_encoder() {
  ConstraintEncoder::Options o;
  o.interpolation_ite_elimination =
      d_config.interpolation
      && d_config.preprocessor.interpolation_ite_elimination;
  o.term_ite_simplification = (d_config.preprocessor.simplification & 2) != 0;
  o.ite_minimization = d_config.preprocessor.ite_minimization;
  o.ite_minimization_call_limit =
      d_config.preprocessor.ite_minimization_call_limit;
  o.bv_div_by_zero_uf = d_config.theory.bv.div_by_zero_mode == 1;
  o.fp_minmax_zero_uf = d_config.theory.fp.minmax_zero_mode == 4;
  o.fp_to_bv_overflow_uf = d_config.theory.fp.to_bv_overflow_mode == 1;
  o.na_div_by_zero_uf = d_config.theory.na.div_by_zero_mode == 1;
  if (d_encoder != nullptr) {
    d_encoder->reset();
  } else {
    d_encoder = std::make_unique<ConstraintEncoder>(d_tm, o, nullptr);
  }
  d_encoder->set_termination_test(d_termination);
}

void Environment::do_reset() {
  // The model first: a handle held elsewhere still reads the engine, the
  // theories and the polarity checker while it detaches.
  reset_model();
  // Reverse dependency order: the generator feeds the sink, the sink the
  // engine, and the sink asks the polarity checker.
  d_cnf.reset();
  d_clause_sink.reset();
  d_polarity.reset();
  d_encoder.reset();
  d_rewrite_stack.reset();
  if (d_dpll != nullptr) {
    d_dpll->set_theory_manager(nullptr);
  }
  d_theory_manager.reset();
  d_dpll.reset();
  d_stack.clear();
  d_engine_formulas.clear();
  d_labels.clear();
  d_processed = 0;
}

void Environment::reset_assertions() {
  // (The tracer is told here, and an external engine's interface reset.)
  do_reset();
  init();
}

void Environment::reset_after_interrupted() {
  // Shallow labels are not kept: the null entries of the stack make new
  // ones as it is processed again, under numbers never used before.
  std::vector<const Term_*> stack = std::move(d_stack);
  uint32_t next_label = d_next_label;
  reset_assertions();
  d_stack = std::move(stack);
  d_next_label = next_label;
}

void Environment::set_theory_fact_sink(std::unique_ptr<TheoryFactSink> sink) {
  d_fact_sink = std::move(sink);
  if (d_theory_manager != nullptr) {
    d_theory_manager->set_fact_sink(d_fact_sink.get());
  }
}

void Environment::set_termination_test(TerminationTest* test) {
  d_termination = test;
  if (d_dpll != nullptr) {
    d_dpll->set_termination_test(test);
  }
  if (d_cnf != nullptr) {
    d_cnf->set_termination_test(test);
  }
  if (d_encoder != nullptr) {
    d_encoder->set_termination_test(test);
  }
  if (d_theory_manager != nullptr) {
    d_theory_manager->set_termination_test(test);
  }
  // The top-level propagator and the model get it too once they exist.
}

size_t Environment::num_backtrack_points() const {
  size_t n = 0;
  for (const Term_* t : d_stack) {
    n += t == nullptr ? 1 : 0;
  }
  return n;
}

// ---------------------------------------------------------------------------
// Statistics
// ---------------------------------------------------------------------------

Environment::Stats Environment::get_stats() const {
  Stats out;
  if (d_clause_sink != nullptr) {
    out.emplace_back(":cnf-variables",
                     std::to_string(d_clause_sink->num_variables()));
    out.emplace_back(":cnf-literals",
                     std::to_string(d_clause_sink->num_literals()));
    out.emplace_back(":cnf-clauses",
                     std::to_string(d_clause_sink->num_clauses()));
  }
  if (d_dpll != nullptr) {
    for (auto& kv : d_dpll->get_stats()) {
      out.push_back(std::move(kv));
    }
  }
  // The theory manager's entries follow, as ":" + words joined by "-".
  if (d_theory_manager != nullptr) {
    for (auto& [key, value] : d_theory_manager->get_stats()) {
      std::string k = ":" + key;
      for (char& c : k) {
        c = c == ' ' ? '-' : c;
      }
      out.emplace_back(std::move(k), value);
    }
  }
  return out;
}

void Environment::print_stats(std::ostream& out,
                              const std::string& prefix) const {
  for (const auto& [key, value] : get_stats()) {
    out << prefix << key << ' ' << value << '\n';
  }
}

const Term_* Environment::apply_substitution(const Term_* term,
                                             const Term_* const* from,
                                             const Term_* const* to,
                                             size_t n) {
  return d_tm->substitute(term, from, to, n, true);
}

}  // namespace zenlo
