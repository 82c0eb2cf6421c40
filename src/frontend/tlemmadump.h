// Dumped theory facts ("tlemma_N.smt2"): each formula that a theory claims
// unsatisfiable goes to a file of its own, in standard syntax with the
// sorts declared, so that another solver can check it as it stands.
#ifndef ZENLO_FRONTEND_TLEMMADUMP_H
#define ZENLO_FRONTEND_TLEMMADUMP_H

#include <cstdint>
#include <iosfwd>

#include "theory/theoryfactsink.h"

namespace zenlo {

// Writes the declarations of the formula's symbols and an assertion of it.
void write_tlemma_formula(std::ostream& out,
                          TermManager& tm,
                          const Term_* formula);

// Numbers the files from 1 in the working directory.
class TlemmaFileWriter : public TheoryFactSink {
 public:
  void add_fact(TermManager& tm, const Term_* formula) override;

 private:
  uint64_t d_dumped = 1;
};

}  // namespace zenlo

#endif
