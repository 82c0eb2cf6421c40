#include "theory/tlemmadump.h"

#include <ostream>

#include "frontend/termprinter.h"
#include "terms/termmanager.h"

namespace zenlo {

// The standard syntax, with the sorts declared, so that another solver
// reads the file as it stands.
void write_tlemma_formula(std::ostream& out,
                          TermManager& tm,
                          const Term_* formula) {
  SmtLib2TermPrinter printer(&tm, nullptr);
  printer.print_formula(out, formula);
}

}  // namespace zenlo
