// The text of a dumped theory fact ("tlemma_N.smt2"): a formula that must
// be unsatisfiable, for checking a theory's conflicts, explanations and
// lemmas with another solver. Kept apart from the manager, which then
// needs nothing of the front end's printer.
#ifndef ZENLO_THEORY_TLEMMADUMP_H
#define ZENLO_THEORY_TLEMMADUMP_H

#include <iosfwd>

namespace zenlo {

class TermManager;
class Term_;

// Writes the declarations of the formula's symbols and an assertion of it.
void write_tlemma_formula(std::ostream& out,
                          TermManager& tm,
                          const Term_* formula);

}  // namespace zenlo

#endif
