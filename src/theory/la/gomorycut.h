// GomoryCut: the mixed-integer Gomory cut of one tableau row. The row
// defines an integer basic variable whose value is fractional while every
// other variable of the row sits on one of its bounds; the cut is a linear
// inequality that the current vertex violates and every integer solution
// within those bounds satisfies. Branching alone can follow a thin,
// unbounded sliver of the relaxation forever; cuts shave it off.
//
// With t_j the distance of nonbasic x_j from its bound (x_j - l_j at the
// lower, u_j - x_j at the upper), the row reads x_i + sum abar_j t_j = b,
// and with f0 = frac(b), f_j = frac(abar_j) the cut is
//   sum c_j t_j >= 1,
//   c_j = f_j / f0              integer j, f_j <= f0
//         (1 - f_j) / (1 - f0)  integer j, f_j > f0
//         abar_j / f0           other j, abar_j >= 0
//         -abar_j / (1 - f0)    other j, abar_j < 0.
// Its justification is a split on the integer z = x_i + sum k_j t_j, with
// k_j = floor(abar_j) or ceil(abar_j) as above (0 for other j): each side,
// z <= floor(b) and z >= floor(b) + 1, gives the cut by a nonnegative
// combination of the row and the bounds. The split comes out with the cut,
// so that a checker can re-derive it over the rationals, side by side.
//
// Pure computation over exact numbers; no solver state.
#ifndef ZENLO_THEORY_LA_GOMORYCUT_H
#define ZENLO_THEORY_LA_GOMORYCUT_H

#include <utility>
#include <vector>

#include "terms/numbers.h"

namespace zenlo {
namespace la {

class GomoryCut {
 public:
  // A nonbasic variable of the row: x_i = value(x_i) + ... reads
  // x_i = sum coeff * x_j over these.
  struct Column {
    int var;
    QNumber coeff;    // coefficient of x_j in the row of x_i
    QNumber bound;    // the bound x_j sits on (its value)
    bool at_upper;    // on its upper bound, else on its lower
    bool is_integer;  // x_j and its bound are integral
  };

  // Requires: `value` is not integral; each column's variable sits on its
  //   bound.
  // Returns: false when no cut results (every c_j is zero). Otherwise the
  //   cut  sum cut_coeffs * x_j >= cut_bound,  and the split term
  //   x_i + sum split_coeffs * x_j  (integer coefficients) with the split
  //   point: the term is at most split_floor or at least split_floor + 1.
  bool compute(int basic, const QNumber& value, const std::vector<Column>& row);

  const std::vector<std::pair<int, QNumber>>& cut_coeffs() const {
    return d_cut;
  }

  const QNumber& cut_bound() const { return d_cut_bound; }

  // Without the basic variable, which enters with coefficient 1.
  const std::vector<std::pair<int, QNumber>>& split_coeffs() const {
    return d_split;
  }

  const QNumber& split_floor() const { return d_split_floor; }

 private:
  std::vector<std::pair<int, QNumber>> d_cut;
  QNumber d_cut_bound;
  std::vector<std::pair<int, QNumber>> d_split;
  QNumber d_split_floor;
};

}  // namespace la
}  // namespace zenlo

#endif
