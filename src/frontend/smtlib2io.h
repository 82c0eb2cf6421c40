// The library's ways in and out of SMT-LIB 2 text: each C function of the
// parsing and printing family is one call here. Readers run a fresh
// SmtLib2Parser on the given term store, so a script may use symbols the store
// has already and its declarations stay in the store; writers run a
// SmtLib2TermPrinter.
#ifndef ZENLO_FRONTEND_SMTLIB2IO_H
#define ZENLO_FRONTEND_SMTLIB2IO_H

#include <cstdio>
#include <istream>
#include <streambuf>
#include <string>
#include <vector>

#include "base/configuration.h"
#include "frontend/smtlib2parser.h"
#include "frontend/termprinter.h"

namespace zenlo {

// An input stream buffer over a C stream it does not own, read in blocks.
class FileInBuf : public std::streambuf {
 public:
  explicit FileInBuf(std::FILE* f) : d_file(f) {}

 protected:
  int_type underflow() override;

  std::streamsize showmanyc() override { return egptr() - gptr(); }

 private:
  std::FILE* d_file;
  char d_buf[1 << 16];
};

// ------------------------------------------------------------------
// Reading. All throw ParserInterface::error on bad text.
// ------------------------------------------------------------------

// The conjunction of the script's assertions (see SmtLib2Parser::parse).
const Term_* read_smtlib2_formula(TermManager& tm, std::istream& in);
// One term, or, when the text begins with a command, a whole script.
const Term_* read_smtlib2_string(TermManager& tm, const std::string& text);
// The :named terms of a script, in order.
std::vector<SmtLib2Parser::NamedTerm> read_smtlib2_named(TermManager& tm,
                                                         std::istream& in);
// The annotated terms of a script by increasing id, and their attributes.
void read_smtlib2_annotated(TermManager& tm,
                            std::istream& in,
                            TermList& terms,
                            std::vector<AttributeList>& attributes);

// ------------------------------------------------------------------
// Writing. All throw TermPrinter::error for a term with no SMT-LIB form.
// ------------------------------------------------------------------

// A script asserting `formula`; `name` (may be empty) becomes its :named
// attribute, `logic` (may be empty) its set-logic line.
std::string write_smtlib2_formula(TermManager& tm,
                                  const Configuration::Printer* config,
                                  const Term_* formula,
                                  const std::string& name,
                                  const std::string& logic,
                                  bool use_defines);
// A script asserting each formula with its attributes (none for an empty
// list); attributes with the key ":named" give names.
std::string write_smtlib2_annotated(TermManager& tm,
                                    const Configuration::Printer* config,
                                    const TermList& formulas,
                                    const std::vector<AttributeList>& attrs);
// One term on one line.
std::string write_smtlib2_term(TermManager& tm,
                               const Configuration::Printer* config,
                               const Term_* term);

}  // namespace zenlo

#endif
