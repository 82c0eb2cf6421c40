// One independent checker per theory slot of the manager. The manager hands
// every conflict, explanation and lemma here when -check.theory_facts is
// on; a fact of a theory that has no checker, or a fact that no checker
// refutes (its own theory's first, then the others'), is an internal
// error. A new theory solver therefore brings its checker with it: its
// facts are refused until it does.
#ifndef ZENLO_THEORY_CHECK_THEORYFACTCHECKS_H
#define ZENLO_THEORY_CHECK_THEORYFACTCHECKS_H

#include <memory>
#include <vector>

#include "base/exception.h"
#include "theory/check/theoryfact.h"

namespace zenlo {

class TermManager;

class TheoryFactChecks {
 public:
  ZENLO_DECLARE_ERROR;

  // After: EUF, LA, BV and arrays have their checkers; the other slots
  //   have none.
  TheoryFactChecks(TermManager& tm, int num_slots);
  ~TheoryFactChecks();

  // Requires: 0 <= slot < num_slots. For theories built later, and tests.
  void set_checker(int slot, std::unique_ptr<TheoryFactChecker> checker);

  // Throws: error("internal error: ...") naming the theory, the kind of
  //   fact and its literals when the slot's checker does not refute it.
  void check(int slot, const char* theory, const TheoryFact& fact);

  uint64_t num_checked() const { return d_checked; }

 private:
  const TermManager& d_tm;
  std::vector<std::unique_ptr<TheoryFactChecker>> d_checkers;
  uint64_t d_checked = 0;
};

}  // namespace zenlo

#endif
