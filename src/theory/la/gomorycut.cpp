#include "theory/la/gomorycut.h"

namespace zenlo {
namespace la {

// With s = +1 on a lower bound and -1 on an upper one, t_j = s*(x_j -
// bound_j) and the row's coefficient a_j becomes abar_j = -s*a_j; the cut
// and the split go back to x_j through the same s.
bool GomoryCut::compute(int basic,
                        const QNumber& value,
                        const std::vector<Column>& row) {
  (void)basic;
  d_cut.clear();
  d_split.clear();
  const QNumber floor = value.floor();
  const QNumber f0 = value - floor;
  const QNumber one_minus_f0 = QNumber::one() - f0;
  d_cut_bound = QNumber::one();
  d_split_floor = floor;
  QNumber c, k;
  for (const Column& col : row) {
    const long s = col.at_upper ? -1 : 1;
    QNumber abar = col.coeff;
    abar *= -s;
    k = 0L;
    if (col.is_integer) {
      QNumber fj = abar - abar.floor();
      if (fj <= f0) {
        c = fj / f0;
        k = abar.floor();
      } else {
        c = (QNumber::one() - fj) / one_minus_f0;
        k = abar.ceil();
      }
    } else if (abar.sign() >= 0) {
      c = abar / f0;
    } else {
      c = abar.neg() / one_minus_f0;
    }
    if (!c.is_zero()) {
      c *= s;
      d_cut.emplace_back(col.var, c);
      d_cut_bound += c * col.bound;
    }
    if (!k.is_zero()) {
      k *= s;
      d_split.emplace_back(col.var, k);
      d_split_floor += k * col.bound;
    }
  }
  return !d_cut.empty();
}

}  // namespace la
}  // namespace zenlo
