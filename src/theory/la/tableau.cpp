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
  }
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

void Tableau::add_row(int basic, const LinearSum& sum) {
  if (is_basic(basic) || !d_cols[basic].empty()) {
    throw Exception("la::Tableau::add_row: variable is not fresh");
  }
  int r = new_row(basic);
  for (const auto& [v, a] : sum) {
    if (!is_basic(v)) {
      int pos = d_mark[v];
      if (pos >= 0) {
        QNumber& c = d_rows[r][pos].coeff;
        c += a;
        if (c.is_zero()) {
          remove_entry(r, pos);
        }
      } else {
        d_mark[v] = static_cast<int>(d_rows[r].size());
        append_entry(r, v, a);
      }
    } else {
      add_multiple(r, a, d_row_of[v]);
    }
  }
  unmark_row(r);
}

const QNumber& Tableau::coeff(int x, int y) const {
  for (const Entry& e : row(x)) {
    if (e.var == y) {
      return e.coeff;
    }
  }
  return QNumber::zero();
}

// Row r: x = a*y + rest becomes y = (1/a)*x - (1/a)*rest; every other row
// s with c*y gets c times the new row added, which removes y from it.
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
  QNumber inv = row[py].coeff.inv();
  remove_entry(r, py);
  QNumber minus_inv = inv.neg();
  for (Entry& e : d_rows[r]) {
    e.coeff *= minus_inv;
  }
  append_entry(r, x, inv);
  d_row_of[x] = -1;
  d_basic[r] = y;
  d_row_of[y] = r;

  d_scratch.clear();
  for (const ColEntry& ce : d_cols[y]) {
    d_scratch.push_back(ce.row);
  }
  QNumber c;
  for (int s : d_scratch) {
    // y's column changes under us; find y's entry through the row.
    const Row& srow = d_rows[s];
    int pos = -1;
    for (size_t i = 0; i < srow.size(); ++i) {
      if (srow[i].var == y) {
        pos = static_cast<int>(i);
        break;
      }
    }
    c = srow[pos].coeff;
    remove_entry(s, pos);
    mark_row(s);
    add_multiple(s, c, r);
    unmark_row(s);
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
