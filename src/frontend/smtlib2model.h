// The SMT-LIB 2 text of a model: one define-fun per symbol of the user,
// built from the (term, value) pairs an environment gives for its model.
// A constant becomes its value; a function becomes a nest of conditionals
// over the points the pairs list, ending in a default value.
//
// It knows nothing of how the model was found. The command interpreter
// calls it for get-model, and print_value for every value it prints.
#ifndef ZENLO_FRONTEND_SMTLIB2MODEL_H
#define ZENLO_FRONTEND_SMTLIB2MODEL_H

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "frontend/termprinter.h"
#include "terms/termmanager.h"

namespace zenlo {

using ModelAssignment = std::pair<const Term_*, const Term_*>;

// Writes `value` where a term of `type` is expected: whole, and inside
// (to_real ...) when it is an Int standing where a Real is expected.
void print_value(TermManager& tm,
                 SmtLibTermPrinter& printer,
                 std::ostream& out,
                 const Term_* value,
                 const Type* type);

std::string value_text(TermManager& tm,
                       SmtLibTermPrinter& printer,
                       const Term_* value,
                       const Type* type);

// Returns: one "(define-fun ...)" text per symbol that heads a term of
//   `model`, by increasing symbol id (the order of declaration).
// Requires: each term is a constant or an application of an
//   uninterpreted function to values, and each value a value of the
//   term's sort.
// A function's default is the value of its last point, which therefore
// needs no condition of its own.
std::vector<std::string> model_define_funs(
    TermManager& tm,
    SmtLibTermPrinter& printer,
    const std::vector<ModelAssignment>& model);

}  // namespace zenlo

#endif
