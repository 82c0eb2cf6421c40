// The base of every reader that turns a whole input into one formula: the
// command-line front ends ask it for the formula, and for the logic and
// the expected status that the input declares, without knowing the
// language.
//
// A reader's failures are ParserInterface::error. Readers that know where
// they are in the input (the SMT-LIB 2 reader) end the message with
// " (line: N)" and keep the line beside it.
#ifndef ZENLO_FRONTEND_PARSERINTERFACE_H
#define ZENLO_FRONTEND_PARSERINTERFACE_H

#include <istream>
#include <string>
#include <utility>

#include "base/exception.h"

namespace zenlo {

class Term_;

class ParserInterface {
 public:
  struct error : public Exception {
    explicit error(std::string msg) : Exception(std::move(msg)) {}

    error(std::string msg, int line) : Exception(std::move(msg)), line(line) {}

    // The input line the message names, 0 when it names none.
    int line = 0;
  };

  // The expected answer that the input declares.
  enum class Status { Unknown = 0, Unsat = 1, Sat = 2 };

  virtual ~ParserInterface() = default;

  // Reads the whole input.
  // - Returns: the conjunction of the input's assertions; for an input
  //   that asserts nothing, null or `true` (the SMT-LIB 2 reader).
  // - Throws: error for text that is not in the language.
  virtual const Term_* parse(std::istream& in) = 0;

  // Returns: the logic that the input names, empty for none.
  virtual std::string get_logic() const { return std::string(); }

  virtual Status get_status() const { return Status::Unknown; }
};

// Runs a declaration: a failure of the term store becomes a parse error,
// so that the message names the line of the declaration.
template <class F>
void declaring(F&& f) {
  try {
    f();
  } catch (const ParserInterface::error&) {
    throw;
  } catch (const Exception& e) {
    throw ParserInterface::error(e.message());
  }
}

}  // namespace zenlo

#endif
