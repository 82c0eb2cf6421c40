#include "theory/la/tableau.h"

#include <algorithm>

#include "base/exception.h"

namespace zenlo {
namespace la {

int Tableau::add_var() {
  int x = num_vars();
  d_row_of.push_back(-1);
  d_cols.emplace_back();
  d_mark.push_back(-1);
  return x;
}

int Tableau::new_row(int basic) {
  int r;
  if (!d_free_rows.empty()) {
    r = d_free_rows.back();
    d_free_rows.pop_back();
    --d_free;
  } else {
    r = static_cast<int>(d_rows.size());
    d_rows.emplace_back();
    d_basic.push_back(-1);
    d_den.emplace_back();
  }
  d_den[r] = 1L;
  d_basic[r] = basic;
  d_row_of[basic] = r;
  return r;
}

void Tableau::drop_row(int r) {
  while (!d_rows[r].empty()) {
    remove_entry(r, static_cast<int>(d_rows[r].size()) - 1);
  }
  d_row_of[d_basic[r]] = -1;
  d_basic[r] = -1;
  d_free_rows.push_back(r);
  ++d_free;
}

// Swap-with-last in both the row and the column keeps removal O(1); the
// entries that move get their back pointers fixed.
void Tableau::remove_entry(int r, int pos) {
  Row& row = d_rows[r];
  Entry& e = row[pos];
  std::vector<ColEntry>& col = d_cols[e.var];
  int cp = e.col_pos;
  if (cp + 1 != static_cast<int>(col.size())) {
    col[cp] = col.back();
    d_rows[col[cp].row][col[cp].row_pos].col_pos = cp;
  }
  col.pop_back();
  if (d_mark[e.var] >= 0) {
    d_mark[e.var] = -1;
  }
  int last = static_cast<int>(row.size()) - 1;
  if (pos != last) {
    e = std::move(row[last]);
    d_cols[e.var][e.col_pos].row_pos = pos;
    if (d_mark[e.var] >= 0) {
      d_mark[e.var] = pos;
    }
  }
  row.pop_back();
}

void Tableau::append_entry(int r, int var, const QNumber& coeff) {
  Row& row = d_rows[r];
  int pos = static_cast<int>(row.size());
  std::vector<ColEntry>& col = d_cols[var];
  row.push_back(Entry{var, static_cast<int>(col.size()), coeff});
  col.push_back(ColEntry{r, pos});
}

void Tableau::mark_row(int r) {
  const Row& row = d_rows[r];
  for (size_t i = 0; i < row.size(); ++i) {
    d_mark[row[i].var] = static_cast<int>(i);
  }
}

void Tableau::unmark_row(int r) {
  for (const Entry& e : d_rows[r]) {
    d_mark[e.var] = -1;
  }
}

// Requires: r is marked. Entries that cancel are removed; new ones are
// appended and marked, so the marks stay exact throughout.
void Tableau::add_multiple(int r, const QNumber& c, int src) {
  const Row& s = d_rows[src];
  for (size_t i = 0; i < s.size(); ++i) {
    int v = s[i].var;
    int pos = d_mark[v];
    if (pos >= 0) {
      QNumber& a = d_rows[r][pos].coeff;
      a.self_addmul(s[i].coeff, c);
      if (a.is_zero()) {
        remove_entry(r, pos);
      }
    } else {
      QNumber a(s[i].coeff);
      a *= c;
      d_mark[v] = static_cast<int>(d_rows[r].size());
      append_entry(r, v, a);
    }
  }
}

// The sum is gathered with rational coefficients (basic variables expanded
// through their rows), then brought to integers over the lcm of the
// denominators. Not a hot path: rows are added once per slack.
void Tableau::add_row(int basic, const LinearSum& sum) {
  if (is_basic(basic) || !d_cols[basic].empty()) {
    throw Exception("la::Tableau::add_row: variable is not fresh");
  }
  d_acc.clear();
  auto accumulate = [this](int v, const QNumber& a) {
    int pos = d_mark[v];
    if (pos >= 0) {
      d_acc[pos].second += a;
    } else {
      d_mark[v] = static_cast<int>(d_acc.size());
      d_acc.emplace_back(v, a);
    }
  };
  for (const auto& [v, a] : sum) {
    if (!is_basic(v)) {
      accumulate(v, a);
      continue;
    }
    int src = d_row_of[v];
    for (const Entry& e : d_rows[src]) {
      d_tmp = e.coeff;
      d_tmp *= a;
      d_tmp /= d_den[src];
      accumulate(e.var, d_tmp);
    }
  }
  QNumber den(1L);
  for (auto& [v, a] : d_acc) {
    d_mark[v] = -1;
    if (!a.is_zero() && !a.is_integer()) {
      QNumber d = a.get_den();
      den *= d / gcd(den, d);
    }
  }
  int r = new_row(basic);
  d_den[r] = den;
  for (auto& [v, a] : d_acc) {
    if (!a.is_zero()) {
      a *= den;
      append_entry(r, v, a);
    }
  }
  remove_content(r);
}

void Tableau::remove_content(int r) {
  Row& row = d_rows[r];
  QNumber& den = d_den[r];
  if (den == 1L) {
    return;
  }
  // The first gcd is the costly one when both numbers are big; an entry in
  // machine words, if there is one, makes it cheap, and the rest follow a
  // small g.
  QNumber g(den);
  for (const Entry& e : row) {
    if (!e.coeff.is_big()) {
      g = gcd(g, e.coeff);
      break;
    }
  }
  for (const Entry& e : row) {
    if (g == 1L) {
      return;
    }
    g = gcd(g, e.coeff);
  }
  if (g == 1L) {
    return;
  }
  for (Entry& e : row) {
    e.coeff.self_divexact(g);
  }
  den.self_divexact(g);
}

QNumber Tableau::coeff(int x, int y) const {
  for (const Entry& e : row(x)) {
    if (e.var == y) {
      return e.coeff / denominator(x);
    }
  }
  return QNumber::zero();
}

// Row r: D*x = n*y + rest becomes |n|*y = sign(n)*(D*x - rest). Every other
// row s with D_s*b = c*y + rest_s takes y's row, both scaled by
// g = gcd(c, |n|): (D_s*|n|/g)*b = (|n|/g)*rest_s + (c/g)*(row of y).
void Tableau::pivot(int x, int y) {
  int r = d_row_of[x];
  Row& row = d_rows[r];
  int py = -1;
  for (size_t i = 0; i < row.size(); ++i) {
    if (row[i].var == y) {
      py = static_cast<int>(i);
      break;
    }
  }
  if (py < 0 || is_basic(y)) {
    throw Exception("la::Tableau::pivot: bad pivot");
  }
  QNumber n = row[py].coeff;
  remove_entry(r, py);
  QNumber dx = d_den[r];
  if (n.sign() > 0) {
    for (Entry& e : d_rows[r]) {
      e.coeff.self_neg();
    }
  } else {
    dx.self_neg();
    n.self_neg();
  }
  append_entry(r, x, dx);
  d_den[r] = n;
  d_row_of[x] = -1;
  d_basic[r] = y;
  d_row_of[y] = r;
  remove_content(r);
  const QNumber& dy = d_den[r];

  // Taking y's column from the back: removing y's entry from that row
  // pops the column's last element, and the entry's position in its row is
  // exact until the row itself is rewritten.
  while (!d_cols[y].empty()) {
    const ColEntry ce = d_cols[y].back();
    const int s = ce.row;
    const int pos = ce.row_pos;
    Row& srow = d_rows[s];
    d_tmp = srow[pos].coeff;  // c
    remove_entry(s, pos);
    d_tmp2 = dy;
    if (!(dy == 1L)) {
      QNumber g = gcd(d_tmp, dy);
      if (!(g == 1L)) {
        d_tmp.self_divexact(g);
        d_tmp2.self_divexact(g);
      }
      if (!(d_tmp2 == 1L)) {
        for (Entry& e : srow) {
          e.coeff *= d_tmp2;
        }
        d_den[s] *= d_tmp2;
      }
    }
    mark_row(s);
    add_multiple(s, d_tmp, r);
    unmark_row(s);
    // Without scaling den_s stayed as it was, and a common factor of the
    // row (rare) divides it: numbers cannot grow through it, so the gcd
    // pass is only worth its cost after a scaling.
    if (!(d_tmp2 == 1L)) {
      remove_content(s);
    }
  }
}

void Tableau::remove_last_var() {
  int x = num_vars() - 1;
  if (!is_basic(x) && !d_cols[x].empty()) {
    pivot(d_basic[d_cols[x].front().row], x);
  }
  if (is_basic(x)) {
    drop_row(d_row_of[x]);
  }
  d_row_of.pop_back();
  d_cols.pop_back();
  d_mark.pop_back();
}

size_t Tableau::max_row_length() const {
  size_t m = 0;
  for (size_t r = 0; r < d_rows.size(); ++r) {
    if (d_basic[r] >= 0) {
      m = std::max(m, d_rows[r].size());
    }
  }
  return m;
}

size_t Tableau::total_row_length() const {
  size_t n = 0;
  for (size_t r = 0; r < d_rows.size(); ++r) {
    if (d_basic[r] >= 0) {
      n += d_rows[r].size();
    }
  }
  return n;
}

}  // namespace la
}  // namespace zenlo
