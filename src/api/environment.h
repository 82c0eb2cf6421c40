// One solving context. An Environment owns its copy of the configuration,
// its output stream and logger, and (unless it was made to share another
// environment's) its term store; the search engine, the theory manager and
// the preprocessing pipeline hang off it once init() builds them.
//
// The parts are built in a fixed order, and torn down in the reverse one:
// configuration, stream and logger; term store; simplifier; init(). A
// shared environment uses another environment's TermManager and owns
// nothing of it: the owner must outlive every environment sharing its
// store.
//
// The C interface reaches an Environment through capi::EnvRecord; the
// command-line interpreter and the optimisation layer hold one directly.
#ifndef ZENLO_API_ENVIRONMENT_H
#define ZENLO_API_ENVIRONMENT_H

#include <cstdint>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>

#include "api/configuration.h"
#include "api/exception.h"
#include "api/logger.h"
#include "terms/term.h"
#include "terms/termmanager.h"

namespace zenlo {

class Environment {
 public:
  ZENLO_DECLARE_ERROR;

  // An environment with its own term store.
  // - After: the term store exists with type checking on and Bool function
  //   arguments forbidden unless `allow_bool_function_args`; the logger
  //   writes to standard output at the configured verbosity; init() ran.
  explicit Environment(const Configuration& config);

  // An environment on the term store of another one.
  // - Requires: `shared` outlives this environment.
  // - After: as above, except that the term store's switches are left as
  //   they are (simplification is only ever switched off here).
  Environment(const Configuration& config, TermManager* shared);

  virtual ~Environment();

  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  // Builds the solving parts from the configuration; runs at construction
  // and again after every reset.
  virtual void init();

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

  // Reads SMT-LIB 2 text over this environment's symbols: one term, or a
  // script, whose assertions are conjoined.
  // - Throws: ParserInterface::error on bad text.
  const Term_* from_smt2(const std::string& text);

  // Replaces from[i] by to[i] in `term`, all at once, with type checks.
  // - Throws: TermManager::error for unequal types.
  const Term_* apply_substitution(const Term_* term,
                                  const Term_* const* from,
                                  const Term_* const* to,
                                  size_t n);

 private:
  void open_output();
  void configure_logger();

  // 1. Configuration copy, output stream, logger.
  Configuration d_config;
  std::unique_ptr<std::streambuf> d_outbuf;
  std::ostream d_out;
  Logger d_logger;

  // 2. The term store, and whether this environment deletes it.
  TermManager* d_tm = nullptr;
  bool d_owns_tm = false;

  // 3. The construction-time simplifier installed in an owned store. It
  //    stays null until the standard simplifier exists.
  TermSimplifier* d_simplifier = nullptr;

  // Built by init(), in this order, once they exist: the search engine
  // and the external engine interface; the theory manager with its
  // solvers; the rewrite stack and the preprocessing steps; the constraint
  // encoder, polarity checker, clause sink and CNF generator.

  // Unsat mark (number of open backtrack points at which unsatisfiability
  // was found, or -1), its interpolation group, and the last result
  // (-1 unknown, 0 unsat, 1 sat).
  int32_t d_unsat_mark = -1;
  int32_t d_unsat_mark_group = -1;
  int32_t d_last_result = -1;
};

}  // namespace zenlo

#endif
