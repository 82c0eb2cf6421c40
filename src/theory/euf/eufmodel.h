// The model of the EUF solver after a satisfiable check: which class each
// term is in, the term that stands for each class, and the function tables
// of the uninterpreted functions over those standing terms. The model store
// reads it to give values to the user's terms and to print functions; it
// knows nothing of how the classes were found.
//
// A standing term is a member of its class chosen for printing: a value
// (number, enumeration value, true, false) when the class has one, else a
// member without arguments, else a term-if, else any member; interface
// terms come first when there are some.
#ifndef ZENLO_THEORY_EUF_EUFMODEL_H
#define ZENLO_THEORY_EUF_EUFMODEL_H

#include <vector>

#include "terms/hashtable.h"
#include "terms/term.h"

namespace zenlo {

class TermManager;

namespace euf {

class Solver;

class Model {
 public:
  // One point of a function: the standing terms of the arguments and of
  // the application.
  struct FunctionEntry {
    TermList args;
    const Term_* value;
  };

  // After: the tables describe the classes of `solver`; `preferred` terms
  // stand for their classes where possible.
  void build(const Solver& solver, TermManager& tm, const TermSet* preferred);

  void clear();

  // Returns: the standing term of the class of `t`, or null when `t` is
  //   not known to the solver.
  const Term_* value_of(const Term_* t) const;

  // Returns: the members of the class whose standing term is `value`, or
  //   null.
  const TermList* members_of(const Term_* value) const;

  // The standing terms, one per class.
  const TermList& classes() const { return d_classes; }

  // Returns: the points of function `f` known to the solver, or null.
  const std::vector<FunctionEntry>* function_table(const Symbol* f) const;

 private:
  const Term_* choose_standing(const TermList& members,
                               TermManager& tm,
                               const TermSet* preferred) const;

  TermMap d_value;
  hsh::HashMap<const Term_*, TermList> d_members;
  TermList d_classes;
  hsh::HashMap<const Symbol*, std::vector<FunctionEntry>> d_functions;
};

}  // namespace euf
}  // namespace zenlo

#endif
