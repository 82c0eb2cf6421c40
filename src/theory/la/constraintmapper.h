// ConstraintMapper: turns a linear term into a bound on one solver
// variable. A sum of more than one monomial gets a slack variable s with
// the equation s = sum, told once; two atoms over the same sum, or over
// its negation, share that slack (the negated one as a bound on -s, i.e.
// with the relation flipped). A single monomial a*x needs no slack: the
// bound is k/a on x.
#ifndef ZENLO_THEORY_LA_CONSTRAINTMAPPER_H
#define ZENLO_THEORY_LA_CONSTRAINTMAPPER_H

#include <unordered_map>
#include <utility>
#include <vector>

#include "theory/la/dnumber.h"
#include "theory/la/lasolver.h"
#include "theory/la/linearterm.h"

namespace zenlo {
namespace la {

class ConstraintMapper {
 public:
  struct Bound {
    int var;
    BoundKind kind;
    DNumber value;
  };

  explicit ConstraintMapper(Solver* solver) : d_solver(solver) {}

  // Requires: lin has monomials and a relation.
  // Returns: the bound that lin states, on a variable that exists now.
  Bound map_constraint(const LinearTerm& lin);

  // After: the equations of slacks from `var` up are forgotten (the
  //   solver variables themselves go through LinearTermMapper).
  void remove_vars_upto(int var);

  size_t num_equations() const { return d_order.size(); }

  // Returns: the sum that `slack` stands for, or null for a variable that
  //   is no slack.
  const LinearSum* sum_of(int slack) const;

 private:
  struct SumHash {
    size_t operator()(const LinearSum& s) const {
      size_t h = s.size();
      for (const auto& [v, a] : s) {
        h = h * 1000003u ^ (static_cast<size_t>(v) * 31u + a.hash());
      }
      return h;
    }
  };

  int slack_for(const LinearSum& sum, bool& negated);

  Solver* d_solver;
  std::unordered_map<LinearSum, int, SumHash> d_equations;
  std::vector<std::pair<int, LinearSum>> d_order;  // by slack, ascending
  LinearSum d_scratch;
};

}  // namespace la
}  // namespace zenlo

#endif
