#include "frontend/dimacsparser.h"

#include <climits>
#include <cstdio>

#include "terms/termmanager.h"

namespace zenlo {

// ---------------------------------------------------------------------------
// Building the formula
// ---------------------------------------------------------------------------

void DimacsParser::TermBuildSink::add_literal(const Term_* t, bool negated) {
  d_lits.push_back(negated ? d_tm->make_not(t) : t);
}

void DimacsParser::TermBuildSink::end_clause() {
  // Folding from the first literal rather than from `false` keeps the
  // constant out of every non-empty clause.
  const Term_* clause = d_tm->make_false();
  if (!d_lits.empty()) {
    clause = d_lits[0];
    for (size_t i = 1; i < d_lits.size(); ++i) {
      clause = d_tm->make_or(clause, d_lits[i]);
    }
  }
  d_result = d_result == nullptr ? clause : d_tm->make_and(d_result, clause);
}

const Term_* DimacsParser::parse(std::istream& in) {
  TermBuildSink sink(d_tm);
  read(in, sink);
  return sink.get_result();
}

// ---------------------------------------------------------------------------
// Variables
// ---------------------------------------------------------------------------

const Term_* DimacsParser::get_term(int n) {
  size_t i = static_cast<size_t>(n);
  const Term_** slot = nullptr;
  if (i < kDenseLimit || i <= d_declared) {
    if (i >= d_terms.size()) {
      d_terms.resize(std::max(2 * d_terms.size(), i + 1), nullptr);
    }
    slot = &d_terms[i];
  } else {
    slot = &d_sparse[n];
  }
  if (*slot == nullptr) {
    std::string name = "." + std::to_string(n);
    while (d_tm->find_symbol(name) != nullptr) {
      name += '_';
    }
    *slot = d_tm->make_constant(d_tm->make_symbol(name, d_tm->get_bool_type()));
  }
  return *slot;
}

// ---------------------------------------------------------------------------
// Scanning
// ---------------------------------------------------------------------------

bool DimacsParser::read_int(std::streambuf* sb, int& out) {
  const int eof = std::char_traits<char>::eof();
  int c = sb->sgetc();
  while (c != eof && std::isspace(c)) {
    c = sb->snextc();
  }
  bool negative = false;
  if (c == '-' || c == '+') {
    negative = c == '-';
    c = sb->snextc();
  }
  if (c == eof || !std::isdigit(c)) {
    return false;
  }
  // Numbers whose magnitude does not fit a positive int are refused, so
  // that every literal has a variable number and a sign.
  long long value = 0;
  while (c != eof && std::isdigit(c)) {
    value = value * 10 + (c - '0');
    if (value > INT_MAX) {
      return false;
    }
    c = sb->snextc();
  }
  out = static_cast<int>(negative ? -value : value);
  return true;
}

void DimacsParser::skip_line(std::streambuf* sb) {
  const int eof = std::char_traits<char>::eof();
  int c = sb->sbumpc();
  while (c != eof && c != '\n') {
    c = sb->sbumpc();
  }
}

// After the "p": white space, "cnf", the number of variables; the rest of
// the line is skipped.
int DimacsParser::read_header(std::streambuf* sb) {
  const int eof = std::char_traits<char>::eof();
  int c = sb->sgetc();
  while (c != eof && std::isspace(c)) {
    c = sb->snextc();
  }
  for (char expected : {'c', 'n', 'f'}) {
    if (sb->sgetc() != expected) {
      throw error("error parsing header");
    }
    sb->sbumpc();
  }
  int declared;
  // The engine numbers literals in 32 bits, so it has fewer than 2^30
  // variables.
  if (!read_int(sb, declared) || declared < 0 || declared >= (1 << 30)) {
    throw error("error parsing header");
  }
  skip_line(sb);
  d_declared = std::max(d_declared, static_cast<size_t>(declared));
  return declared;
}

std::string DimacsParser::describe_char(int c) {
  if (std::isprint(c)) {
    return std::string(1, static_cast<char>(c));
  }
  char buf[8];
  std::snprintf(buf, sizeof buf, "\\x%02x", c & 0xff);
  return buf;
}

}  // namespace zenlo
