// The answer of one command of the SMT-LIB 2 interpreter, held until the
// command is done and then printed in one piece.
//
// Holding the answer rather than printing it as it is made means a command
// that fails half way shows nothing of its partial work: the error replaces
// the response. The response keeps texts only; terms are printed into it
// while the command runs, so a failing printer is the command's failure,
// and a (reset) that drops the terms leaves the response intact.
#ifndef ZENLO_FRONTEND_SMTLIB2RESPONSE_H
#define ZENLO_FRONTEND_SMTLIB2RESPONSE_H

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace zenlo {

struct SmtLib2Response {
  enum class Kind {
    Success,      // "success", printed only with :print-success
    Error,        // (error "text")
    Unsupported,  // unsupported
    CheckSat,     // the result, with the model pairs of -model after sat
    Info,         // ( key value ... )
    Values,       // ( (text value) ... )
    Model,        // (model (define-fun ...) ... )
    TermList,     // ( term ... )
    Term,         // one term
    Text,         // text as it stands (echo, get-option)
  };

  using Pairs = std::vector<std::pair<std::string, std::string>>;

  Kind kind = Kind::Success;
  // The error, the result of a check, the term or the text.
  std::string text;
  // Info pairs, value pairs, or the model pairs printed after sat.
  Pairs pairs;
  // The printed terms, or one define-fun per entry of a model.
  std::vector<std::string> items;
  // After sat with -model: whether the model follows, and why it could
  // not be had when `model_error` is not empty.
  bool show_model = false;
  std::string model_error;

  void clear();

  void set_error(std::string message);

  // Writes the response and a line end, and flushes. `values_as_formula`
  // prints value pairs as one conjunction of equalities.
  void print(std::ostream& out,
             bool print_success,
             bool values_as_formula) const;

 private:
  void print_check_sat(std::ostream& out) const;
  void print_values(std::ostream& out, bool as_formula) const;
};

// `text` as an SMT-LIB string literal: between double quotes, each double
// quote inside doubled.
std::string smtlib_string(const std::string& text);

}  // namespace zenlo

#endif
