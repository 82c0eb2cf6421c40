// Linear terms: arithmetic atoms and terms in the normal form
//   sum of a_i * x_i  op  k
// with monomials sorted by variable and no zero coefficient.
// LinearTermMapper reads terms into this form and owns the numbering of
// the variables that stand for non-arithmetic subterms (constants,
// uninterpreted applications, term-ifs); variables are la::Solver
// variables, created and removed in stack order.
//
// The mapper knows the term store and the solver's variables, nothing of
// literals, levels or the search.
#ifndef ZENLO_THEORY_LA_LINEARTERM_H
#define ZENLO_THEORY_LA_LINEARTERM_H

#include <cstdint>
#include <string>
#include <vector>

#include "base/exception.h"
#include "terms/hashtable.h"
#include "terms/numbers.h"
#include "terms/term.h"
#include "theory/la/tableau.h"

namespace zenlo {

class TermManager;

namespace la {

class Solver;

struct LinearTerm {
  // The relations; kNumeric for a plain numeric term.
  enum Op : int {
    kNumeric = -1,
    kBelow = 0,
    kAtMost = 1,
    kEqual = 2,
    kDifferent = 3,
    kAtLeast = 4,
    kAbove = 5
  };

  // The relation of the negated atom.
  static int invert_op(int op);
  // The relation with both sides multiplied by -1.
  static int flip_op(int op);

  const Term_* term = nullptr;
  bool negated = false;
  int op = kNumeric;
  LinearSum monomials;
  QNumber k;

  // For a term without monomials: whether 0 op k holds.
  bool is_true() const;

  bool is_false() const { return !is_true(); }

  // x - y op k.
  bool is_dl() const;
};

class LinearTermMapper {
 public:
  ZENLO_DECLARE_ERROR;

  LinearTermMapper(TermManager* tm, Solver* solver);

  // Returns: the variable of a non-arithmetic numeric term, created unless
  //   only_lookup (then -1 when absent).
  int variable(const Term_* t, bool only_lookup);

  const Term_* term(int var) const {
    return var < static_cast<int>(d_term_of.size()) ? d_term_of[var] : nullptr;
  }

  bool is_mapped(const Term_* t) const { return d_var_of.contains(t); }

  // Returns: kEqual for an equality, kAtMost for <=, kNumeric for a
  //   numeric term. Throws error "unsupported symbol: " otherwise.
  int get_op(const Term_* t) const;

  // After: `out` is the normal form of t, or of not t when negated.
  // Throws: error "unsupported term: " for a term outside linear real
  //   arithmetic (a product of variables, an integer variable, an
  //   operator the solver does not know).
  void make_linear(const Term_* t, bool negated, LinearTerm& out);

  int num_vars() const;

  // After: the variables from `var` up are gone, youngest first, with
  //   their terms.
  void free_vars_upto(int var);

  // The variables of Int type, in creation order. The solver reasons over
  // the rationals; an answer is only good when these get integers.
  const std::vector<int>& int_vars() const { return d_int_vars; }

  bool is_int_var(int var) const {
    return var < static_cast<int>(d_is_int.size()) && d_is_int[var] != 0;
  }

  // Records that the solver variable `var` (a slack) has no term.
  void set_variable(int var, const Term_* t);

  // After: a relation over integer variables only is scaled to coprime
  //   integer coefficients and its constant rounded, so that it states
  //   the same set of integer points (x < 3 is x <= 2, 2x + 2y <= 3 is
  //   x + y <= 1); an equality without integer solutions becomes the
  //   false relation 0 = 1 and a disequality without them 0 != 1, both
  //   without monomials. Anything else is left alone.
  void tighten_integer(LinearTerm& lin) const;

 private:
  void add_monomial(int var, const QNumber& a, LinearSum& sum);
  [[noreturn]] void unsupported(const Term_* t) const;

  TermManager* d_tm;
  Solver* d_solver;
  hsh::HashMap<const Term_*, int> d_var_of;
  std::vector<const Term_*> d_term_of;  // by variable; null for slacks
  std::vector<int> d_int_vars;
  std::vector<uint8_t> d_is_int;  // by variable
  // Scratch of make_linear: the explicit stack of (term, coefficient).
  std::vector<std::pair<const Term_*, QNumber>> d_stack;
};

}  // namespace la
}  // namespace zenlo

#endif
