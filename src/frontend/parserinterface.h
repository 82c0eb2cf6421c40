// The base of every reader of whole inputs (SMT-LIB 2 scripts, and later
// DIMACS and SMT-LIB 1): something that turns a stream into one formula.
// The command-line driver and the C interface hold readers through it and
// know nothing of their syntax.
//
// A reader's failures are ParserInterface::error. The SMT-LIB 2 reader
// gives them a message that already ends with " (line: N)", and keeps the
// line number beside it for callers that want it separately.
#ifndef ZENLO_FRONTEND_PARSERINTERFACE_H
#define ZENLO_FRONTEND_PARSERINTERFACE_H

#include <istream>
#include <string>
#include <utility>

#include "api/exception.h"
#include "terms/term.h"

namespace zenlo {

class ParserInterface {
 public:
  struct error : public Exception {
    explicit error(std::string msg) : Exception(std::move(msg)) {}

    error(std::string msg, int line) : Exception(std::move(msg)), line(line) {}

    // The input line the message refers to, 0 while not known; a nonzero
    // line means the message already names it.
    int line = 0;
  };

  virtual ~ParserInterface() = default;

  // Reads the whole input.
  // - Returns: the conjunction of what it asserts, `true` for nothing.
  // - Throws: error on bad input.
  virtual const Term_* parse(std::istream& in) = 0;

  // The logic named by the input, empty when none.
  virtual const std::string& get_logic() const = 0;

  // The expected status the input declares ("sat", "unsat", "unknown"),
  // empty when none.
  virtual const std::string& get_status() const = 0;
};

}  // namespace zenlo

#endif
