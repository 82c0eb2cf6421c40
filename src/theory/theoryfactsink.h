// Where the manager sends each theory fact it hands to the search (a
// conflict, an implied literal with its reasons, a lemma) as one formula
// that must be unsatisfiable. Writers of such formulas to files, and
// checkers of them, live above the theories; the manager only knows this
// interface, so no solver or manager file needs a printer.
#ifndef ZENLO_THEORY_THEORYFACTSINK_H
#define ZENLO_THEORY_THEORYFACTSINK_H

namespace zenlo {

class TermManager;
class Term_;

class TheoryFactSink {
 public:
  virtual ~TheoryFactSink() = default;

  // `formula` is a term of `tm` that the theory claims unsatisfiable.
  virtual void add_fact(TermManager& tm, const Term_* formula) = 0;
};

}  // namespace zenlo

#endif
