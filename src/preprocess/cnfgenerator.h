// The last step of preprocessing: a Boolean formula over atoms becomes
// clauses of the search engine. The environment knows its CNF generator
// only through this interface, so that the plain road, the unsat-core road
// and the interpolation road can each put their own clause sink behind the
// one Tseitin conversion (TseitinCNFGenerator<Sink>).
//
// A generator is incremental: it remembers what it has defined, so a
// subformula met again costs nothing, and it forgets that again at the pop
// of the backtrack point it was defined in. The environment pushes and pops
// it together with the engine, because a term marked as defined must have
// its definition clauses in the engine.
#ifndef ZENLO_PREPROCESS_CNFGENERATOR_H
#define ZENLO_PREPROCESS_CNFGENERATOR_H

#include "base/exception.h"

namespace zenlo {

class Term_;
class TerminationTest;

class CNFGenerator {
 public:
  ZENLO_DECLARE_ERROR;

  virtual ~CNFGenerator() = default;

  // Converts `f` and asserts it: after the call, the clauses given to the
  // sink are satisfiable together with the earlier ones exactly when `f`
  // is, and every model of them satisfies `f` on its atoms.
  // - Requires: `f` is a Boolean term of the generator's store, free of
  //   `true`, `false` and quantifiers below the top.
  // - Throws: error for `true`, `false`, quantifiers and non-Boolean
  //   terms; TerminationTest::terminated. Clauses emitted before the error
  //   stay with the sink.
  virtual void operator()(const Term_* f) = 0;

  // - After: what is defined from now on is forgotten at the matching pop.
  virtual void push_backtrack_point() = 0;

  // - Requires: a point is open.
  // - After: definitions, emitted clauses and parent counts of the formulas
  //   converted since the matching push are forgotten.
  virtual void pop_backtrack_point() = 0;

  // `test` (may be null) is polled after each definition.
  virtual void set_termination_test(TerminationTest* test) = 0;
};

}  // namespace zenlo

#endif
