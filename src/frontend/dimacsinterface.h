// The command line's DIMACS road: the clauses of the file go straight to a
// SAT engine, with no environment and no theory, and the answer is printed
// in the SAT competition's form ("s SATISFIABLE", "v ... 0", "c ...").
//
// The engine is built at construction from the configuration's `dpll`
// settings; its log lines start with "c " so that they read as comments.
#ifndef ZENLO_FRONTEND_DIMACSINTERFACE_H
#define ZENLO_FRONTEND_DIMACSINTERFACE_H

#include <memory>
#include <ostream>
#include <string>

#include "base/configuration.h"
#include "base/logger.h"
#include "dpll/dpllsolver.h"
#include "frontend/toplevelinterface.h"
#include "terms/termmanager.h"

namespace zenlo {

class DimacsParser;

class DimacsInterface : public ToplevelInterface {
 public:
  // `out` is the run's output channel: answers, model, log and errors.
  // - Requires: `out` outlives the interface.
  DimacsInterface(const Configuration& config, std::ostream& out);
  ~DimacsInterface() override;

  // Prints "s SATISFIABLE" or "s UNSATISFIABLE" (with `show_model` and a
  // satisfiable input, the "v" line); when a limit stops the search, the
  // reason as a comment and "s UNKNOWN".
  // - Returns: 0 with an answer, 1 without.
  // - Throws: ParserInterface::error for text that is not DIMACS,
  //   Exception for a clause beyond the engine's size limit or an
  //   unsupported memory limit.
  int solve(std::istream& in,
            bool show_model,
            uint64_t timeout_sec,
            uint64_t mem_limit_mb) override;

  // The engine's counters, CPU time and memory, as comment lines.
  void print_stats(std::ostream& out,
                   double cpu_seconds,
                   uint64_t mem_bytes) override;

  void print_error(std::ostream& out, const std::string& message) override;

  DpllSolver& get_dpll_solver() { return *d_dpll; }

 private:
  void print_model(const DimacsParser& parser);

  Configuration d_config;
  std::ostream& d_out;
  TermManager d_tm;
  Logger d_logger;
  std::unique_ptr<DpllSolver> d_dpll;
};

}  // namespace zenlo

#endif
