// The polled stop test of long computations. Callers install one per
// environment; every long loop calls it at points where leaving by an
// exception keeps its data consistent. Leaving marks the environment as
// interrupted, and the next check rebuilds the solver state.
#ifndef ZENLO_BASE_TERMINATIONTEST_H
#define ZENLO_BASE_TERMINATIONTEST_H

#include "base/exception.h"

namespace zenlo {

class TerminationTest {
 public:
  // Thrown out of a long loop when the test says to stop.
  struct terminated : public Exception {
    terminated() : Exception("user-requested termination") {}

    explicit terminated(std::string msg) : Exception(std::move(msg)) {}
  };

  virtual ~TerminationTest() = default;

  // Returns: true when the computation should stop.
  virtual bool should_terminate() { return false; }

  // Throws `terminated` when should_terminate() holds.
  void operator()() {
    if (should_terminate()) {
      throw terminated();
    }
  }
};

}  // namespace zenlo

#endif
