// The front of a command-line run: one object per run that reads the whole
// input, solves it and prints the answer, its statistics and its errors in
// the conventions of the input language. The driver (zenlo_main) treats
// every language alike through these three operations.
//
// TimeMemLimitTest is the termination test of a run with -timeout or
// -memlimit; the process figures it reads are here too, for the driver's
// statistics.
#ifndef ZENLO_FRONTEND_TOPLEVELINTERFACE_H
#define ZENLO_FRONTEND_TOPLEVELINTERFACE_H

#include <cstdint>
#include <ctime>
#include <istream>
#include <ostream>
#include <string>

#include "base/processfigures.h"
#include "base/terminationtest.h"

namespace zenlo {

class ToplevelInterface {
 public:
  // Stops a search when the process has used more CPU time than the time
  // limit, or holds more memory than the memory limit. The memory is read
  // at most every 100 milliseconds of CPU time, since reading it costs a
  // system call and a parse.
  //
  // Besides the limit of the whole run, a script may limit each query on
  // its own (:timeout): that second clock restarts at every start_query,
  // so one run can hold many limited queries.
  class TimeMemLimitTest : public TerminationTest {
   public:
    // Limits of 0 are no limits.
    // - Throws: Exception "Memory limit not supported on this platform!"
    //   for a memory limit where the memory in use cannot be read.
    TimeMemLimitTest(uint64_t timeout_sec, uint64_t mem_limit_bytes);

    bool active() const {
      return d_timeout_ms != 0 || d_mem_limit != 0 || d_query_limit_ms != 0;
    }

    // Restarts the clock.
    void reset();

    // Limits each query to `ms` milliseconds of CPU time, 0 for none.
    void set_query_limit_ms(uint64_t ms) { d_query_limit_ms = ms; }

    // Restarts the clock of the query limit.
    void start_query() { d_query_start_ms = elapsed_ms(); }

    // - Throws: terminated with "timeout" or "memory limit exceeded".
    bool should_terminate() override;

   private:
    uint64_t elapsed_ms() const;

    uint64_t d_timeout_ms;
    uint64_t d_mem_limit;
    std::clock_t d_start = 0;
    uint64_t d_last_mem_check_ms = 0;
    uint64_t d_query_limit_ms = 0;
    uint64_t d_query_start_ms = 0;
  };

  virtual ~ToplevelInterface() = default;

  // Reads all of `in`, solves it and prints the answer (and with
  // `show_model` the model of a satisfiable input).
  // - Returns: 0, or 1 when the run ended without an answer.
  // - Throws: Exception for input that cannot be read; the driver prints
  //   it with print_error.
  virtual int solve(std::istream& in,
                    bool show_model,
                    uint64_t timeout_sec,
                    uint64_t mem_limit_mb) = 0;

  virtual void print_stats(std::ostream& out,
                           double cpu_seconds,
                           uint64_t mem_bytes) = 0;

  // Prints `message` as an error of the input language, and flushes.
  virtual void print_error(std::ostream& out, const std::string& message) = 0;
};

}  // namespace zenlo

#endif
