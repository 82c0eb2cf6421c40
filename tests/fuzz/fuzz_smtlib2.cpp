// libFuzzer target of the SMT-LIB 2 reader and the printers. For any
// input: the library client reads it or fails with an error; what it reads
// prints in both forms and reads back to the same terms (quantified ones
// aside, whose bound variables are made anew); a command loop that skips
// bad commands always moves forward; and the S-expression reader copes.
// A violation traps, so the fuzzer reports it.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "frontend/sexp.h"
#include "frontend/smtlib2parser.h"
#include "frontend/termprinter.h"
#include "terms/termvisitor.h"

using namespace zenlo;

namespace {

struct QuantifierFinder : public TermVisitorCallback {
  explicit QuantifierFinder(TermManager& tm) : tm(tm) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (preorder && tm.is_quantifier(t->get_symbol())) {
      found = true;
      return VisitResult::Abort;
    }
    return VisitResult::Process;
  }

  TermManager& tm;
  bool found = false;
};

bool has_quantifier(TermManager& tm, const Term_* t) {
  QuantifierFinder cb(tm);
  TermVisitor<QuantifierFinder> v(tm, cb);
  v.visit(t);
  return cb.found;
}

void check_round_trip(TermManager& tm, const TermList& terms, uint8_t knobs) {
  Configuration::Printer cfg;
  cfg.bv_number_format = knobs % 3;
  cfg.fp_number_format = (knobs / 3) % 3;
  for (bool defines : {false, true}) {
    std::ostringstream out;
    SmtLib2TermPrinter printer(&tm, &cfg, defines);
    printer.print_terms(out, terms);
    for (const Term_* t : terms) {
      printer.atom_to_string(t);
    }
    std::istringstream in(out.str());
    SmtLib2Parser back(&tm);
    TermList again = back.parse_list(in);
    if (again.size() != terms.size()) {
      __builtin_trap();
    }
    for (size_t i = 0; i < terms.size(); ++i) {
      if (again[i] != terms[i] && !has_quantifier(tm, terms[i])) {
        __builtin_trap();
      }
    }
  }
}

void read_script(const std::string& text, uint8_t knobs) {
  TermManager tm;
  tm.set_forbid_bool_args((knobs & 0x80) != 0);
  TermList terms;
  try {
    SmtLib2Parser parser(&tm);
    std::istringstream in(text);
    terms = parser.parse_list(in);
  } catch (const Exception&) {
    return;
  }
  // What was read must print and read back; a printing error is a bug too
  // except for terms with no SMT-LIB form, which the store cannot make
  // from SMT-LIB text in the first place.
  check_round_trip(tm, terms, knobs);
}

void run_commands(const std::string& text) {
  TermManager tm;
  SmtLib2Parser parser(&tm);
  std::istringstream in(text);
  SmtLib2Scanner scanner(in);
  size_t steps = 0;
  for (bool more = true; more; ++steps) {
    if (steps > text.size() + 1) {
      __builtin_trap();  // a step that consumed nothing
    }
    try {
      more = parser.parse_command(scanner);
    } catch (const ParserInterface::error&) {
      parser.skip_command(scanner);
    } catch (const Exception&) {
      parser.skip_command(scanner);
    }
  }
}

void read_sexp(const std::string& text) {
  SexpManager m;
  try {
    Sexp s = sexp::from_string(m, text, text.size() % 2 == 0);
    Sexp c = sexp::copy(m, s);
    if (sexp::cmp(m, s, c) != 0) {
      __builtin_trap();
    }
    sexp::to_string(m, s);
  } catch (const SexpParser::error&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) {
    return 0;
  }
  uint8_t knobs = data[0];
  std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  read_script(text, knobs);
  run_commands(text);
  read_sexp(text);
  return 0;
}
