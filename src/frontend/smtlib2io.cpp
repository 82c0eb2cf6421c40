// Reading and writing SMT-LIB 2 text for the library's entry points.
#include "frontend/smtlib2io.h"

#include <sstream>

namespace zenlo {

FileInBuf::int_type FileInBuf::underflow() {
  if (gptr() < egptr()) {
    return traits_type::to_int_type(*gptr());
  }
  size_t n = std::fread(d_buf, 1, sizeof d_buf, d_file);
  if (n == 0) {
    return traits_type::eof();
  }
  setg(d_buf, d_buf, d_buf + n);
  return traits_type::to_int_type(*gptr());
}

// ----------------------------------------------------------------------
// Reading
// ----------------------------------------------------------------------

const Term_* read_smtlib2_formula(TermManager& tm, std::istream& in) {
  SmtLib2Parser parser(&tm);
  return parser.parse(in);
}

namespace {

// Whether the text opens with "(" and a command name: then it is a
// script rather than a term.
bool begins_with_command(const std::string& text) {
  std::istringstream in(text);
  SmtLib2Scanner scanner(in);
  try {
    return scanner.next() == Token::LParen && scanner.next() == Token::Symbol
           && !scanner.quoted() && is_command_name(scanner.text());
  } catch (const ParserInterface::error&) {
    return false;
  }
}

}  // namespace

const Term_* read_smtlib2_string(TermManager& tm, const std::string& text) {
  std::istringstream in(text);
  if (begins_with_command(text)) {
    return read_smtlib2_formula(tm, in);
  }
  SmtLib2Parser parser(&tm);
  return parser.parse_term(in);
}

std::vector<SmtLib2Parser::NamedTerm> read_smtlib2_named(TermManager& tm,
                                                         std::istream& in) {
  SmtLib2Parser parser(&tm);
  parser.parse_list(in);
  return parser.get_named_terms();
}

void read_smtlib2_annotated(TermManager& tm,
                            std::istream& in,
                            TermList& terms,
                            std::vector<AttributeList>& attributes) {
  SmtLib2Parser parser(&tm);
  parser.parse_list(in);
  terms = parser.get_annotated_terms();
  attributes.clear();
  for (const Term_* t : terms) {
    attributes.push_back(*parser.get_annotations(t));
  }
}

// ----------------------------------------------------------------------
// Writing
// ----------------------------------------------------------------------

std::string write_smtlib2_formula(TermManager& tm,
                                  const Configuration::Printer* config,
                                  const Term_* formula,
                                  const std::string& name,
                                  const std::string& logic,
                                  bool use_defines) {
  std::ostringstream out;
  SmtLib2TermPrinter printer(
      &tm, config, use_defines, nullptr, std::string(), logic);
  std::vector<std::string> trailers;
  if (!name.empty()) {
    trailers.push_back(":named " + quote_symbol(name));
  }
  printer.print_terms(out, TermList{formula}, trailers);
  return out.str();
}

std::string write_smtlib2_annotated(TermManager& tm,
                                    const Configuration::Printer* config,
                                    const TermList& formulas,
                                    const std::vector<AttributeList>& attrs) {
  std::vector<std::string> trailers(formulas.size());
  for (size_t i = 0; i < formulas.size() && i < attrs.size(); ++i) {
    for (const Attribute& a : attrs[i]) {
      std::string& t = trailers[i];
      t += (t.empty() ? "" : " ") + a.key;
      if (!a.value.empty()) {
        t += " " + a.value;
      }
    }
  }
  std::ostringstream out;
  SmtLib2TermPrinter printer(&tm, config);
  printer.print_terms(out, formulas, trailers);
  return out.str();
}

std::string write_smtlib2_term(TermManager& tm,
                               const Configuration::Printer* config,
                               const Term_* term) {
  std::ostringstream out;
  SmtLib2TermPrinter printer(&tm, config);
  printer.print_term(out, term, false);
  return out.str();
}

}  // namespace zenlo
