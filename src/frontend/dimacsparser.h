// The reader of DIMACS CNF. One syntax serves two roads: parse() builds the
// formula as a term (the conjunction of the clauses) for callers that want
// an environment, and read() feeds the clauses to any clause sink; the
// command line's DIMACS road gives them straight to the SAT engine through
// a DpllClauseSink.
//
// The syntax, character by character: "c" starts a comment to the end of
// the line (wherever a token may start); "p cnf V" declares variables 1..V,
// in order, and the rest of its line (the clause count) is not checked; a
// digit or "-" starts a clause of signed integers ended by 0; white space
// separates. A header is optional, there may be several, and a variable
// not declared is made when first used. Variable n is the Boolean constant
// ".n" (with "_" appended while the name is taken).
#ifndef ZENLO_FRONTEND_DIMACSPARSER_H
#define ZENLO_FRONTEND_DIMACSPARSER_H

#include <cctype>
#include <cstdint>
#include <istream>
#include <string>
#include <utility>
#include <vector>

#include "frontend/parserinterface.h"
#include "terms/hashtable.h"
#include "terms/term.h"

namespace zenlo {

class TermManager;

class DimacsParser : public ParserInterface {
 public:
  // Builds the formula: each clause the disjunction of its literals (the
  // empty clause `false`), the formula the conjunction of the clauses.
  class TermBuildSink {
   public:
    explicit TermBuildSink(TermManager* tm) : d_tm(tm) {}

    void begin_clause(bool /*definition*/) { d_lits.clear(); }

    void add_literal(const Term_* t, bool negated);
    void end_clause();

    void create_label(const Term_* /*t*/) {}

    // Returns: the conjunction of the clauses; null when there was none.
    const Term_* get_result() const { return d_result; }

   private:
    TermManager* d_tm;
    TermList d_lits;
    const Term_* d_result = nullptr;
  };

  // - Requires: `tm` outlives the parser.
  explicit DimacsParser(TermManager* tm) : d_tm(tm) {}

  const Term_* parse(std::istream& in) override;

  // Reads all of `in` into `sink` (begin_clause, add_literal, end_clause,
  // create_label for declared variables).
  // - Throws: error "syntax error", "error parsing header",
  //   "unexpected character: X"; what the sink throws.
  template <class Sink>
  void read(std::istream& in, Sink& sink);

  // Returns: the term of variable `n` (n > 0), made on first use.
  const Term_* get_term(int n);

  // Calls fn(n, term) for every variable made so far, in no fixed order.
  template <class Fn>
  void for_each_variable(Fn fn) const;

 private:
  // Variables up to this number (or the largest declared one) live in a
  // vector; beyond, in a hash map, so that a stray huge number does not
  // allocate a table of its size.
  static constexpr size_t kDenseLimit = size_t(1) << 22;

  // Reads an integer as a stream would: white space, a sign, digits.
  // Returns: false when there is none or it overflows 32 bits.
  static bool read_int(std::streambuf* sb, int& out);
  static void skip_line(std::streambuf* sb);
  // The character itself, or "\xNN" when it does not print.
  static std::string describe_char(int c);
  int read_header(std::streambuf* sb);

  TermManager* d_tm;
  std::vector<const Term_*> d_terms;
  hsh::HashMap<int, const Term_*> d_sparse;
  size_t d_declared = 0;
};

template <class Sink>
void DimacsParser::read(std::istream& in, Sink& sink) {
  std::streambuf* sb = in.rdbuf();
  if (sb == nullptr) {
    return;
  }
  for (;;) {
    int c = sb->sgetc();
    if (c == std::char_traits<char>::eof()) {
      return;
    }
    if (c == 'c') {
      skip_line(sb);
    } else if (c == '-' || std::isdigit(c)) {
      sink.begin_clause(false);
      int n;
      for (;;) {
        if (!read_int(sb, n)) {
          throw error("syntax error");
        }
        if (n == 0) {
          break;
        }
        sink.add_literal(get_term(n < 0 ? -n : n), n < 0);
      }
      sink.end_clause();
    } else if (std::isspace(c)) {
      sb->sbumpc();
    } else if (c == 'p') {
      sb->sbumpc();
      int declared = read_header(sb);
      for (int v = 1; v <= declared; ++v) {
        sink.create_label(get_term(v));
      }
    } else {
      throw error("unexpected character: " + describe_char(c));
    }
  }
}

template <class Fn>
void DimacsParser::for_each_variable(Fn fn) const {
  for (size_t n = 1; n < d_terms.size(); ++n) {
    if (d_terms[n] != nullptr) {
      fn(static_cast<int>(n), d_terms[n]);
    }
  }
  for (const auto& [n, t] : d_sparse) {
    fn(n, t);
  }
}

}  // namespace zenlo

#endif
