#include "frontend/tlemmadump.h"

#include <cstdio>
#include <fstream>

#include "frontend/termprinter.h"
#include "terms/termmanager.h"

namespace zenlo {

void write_tlemma_formula(std::ostream& out,
                          TermManager& tm,
                          const Term_* formula) {
  SmtLib2TermPrinter printer(&tm, nullptr);
  printer.print_formula(out, formula);
}

void TlemmaFileWriter::add_fact(TermManager& tm, const Term_* formula) {
  char name[64];
  std::snprintf(name,
                sizeof name,
                "tlemma_%llu.smt2",
                static_cast<unsigned long long>(d_dumped++));
  std::ofstream out(name);
  write_tlemma_formula(out, tm, formula);
  out << "(check-sat)\n";
}

}  // namespace zenlo
