// The base of every reader that turns a whole input into one formula: the
// command-line front ends ask it for the formula, and for the logic and
// the expected status that the input declares, without knowing the
// language.
#ifndef ZENLO_FRONTEND_PARSERINTERFACE_H
#define ZENLO_FRONTEND_PARSERINTERFACE_H

#include <istream>
#include <string>

#include "api/exception.h"

namespace zenlo {

class Term_;

class ParserInterface {
 public:
  ZENLO_DECLARE_ERROR;

  // The expected answer that the input declares.
  enum class Status { Unknown = 0, Unsat = 1, Sat = 2 };

  virtual ~ParserInterface() = default;

  // Reads the whole input.
  // - Returns: the conjunction of the input's assertions, or null for an
  //   input that asserts nothing.
  // - Throws: error for text that is not in the language.
  virtual const Term_* parse(std::istream& in) = 0;

  // Returns: the logic that the input names, empty for none.
  virtual std::string get_logic() const { return std::string(); }

  virtual Status get_status() const { return Status::Unknown; }
};

}  // namespace zenlo

#endif
