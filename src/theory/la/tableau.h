// Tableau: the sparse matrix of the simplex. Each row defines one basic
// variable as a linear combination of nonbasic ones, in integers:
//   den * basic = sum n_j * v_j,
// with den > 0, so the coefficient of v_j is n_j / den. A row whose den
// grew in a pivot is divided by the common factor of its numbers. A basic
// variable never occurs inside a row. Columns list, per variable, the rows it
// occurs in, so that a pivot touches only the rows that mention the entering
// variable.
//
// Integer rows make a pivot fraction-free: one multiplication and one
// addition per entry and a single gcd pass per row, where rational
// coefficients would need gcds on every operation. That dominates on
// problems whose coefficients leave the machine words.
//
// Rows and columns point at each other by position (a row entry knows its
// place in the column and the other way round), which makes removal of an
// entry constant time. A pivot reuses scratch vectors and the rows'
// capacities: after warm-up it allocates nothing unless a row grows or a
// coefficient leaves the machine words.
//
// The tableau knows nothing of bounds or values; la::Solver keeps those.
// Variables are numbered from 0 and are removed youngest first.
#ifndef ZENLO_THEORY_LA_TABLEAU_H
#define ZENLO_THEORY_LA_TABLEAU_H

#include <cstddef>
#include <utility>
#include <vector>

#include "terms/numbers.h"

namespace zenlo {
namespace la {

// A linear combination as the front end hands it over: (variable,
// coefficient) pairs, each variable once, no zero coefficient.
using LinearSum = std::vector<std::pair<int, QNumber>>;

class Tableau {
 public:
  struct Entry {
    int var;
    int col_pos;    // index of this entry in the column of var
    QNumber coeff;  // the integer n_j; the coefficient is n_j / den
  };

  struct ColEntry {
    int row;
    int row_pos;  // index of the entry in that row
  };

  using Row = std::vector<Entry>;

  // Returns: a fresh nonbasic variable, occurring in no row.
  int add_var();

  int num_vars() const { return static_cast<int>(d_row_of.size()); }

  int num_rows() const { return static_cast<int>(d_rows.size()) - d_free; }

  bool is_basic(int x) const { return d_row_of[x] >= 0; }

  // Requires: basic is a fresh variable (no row, no occurrence); the
  //   variables of `sum` exist. Basic variables in `sum` are replaced by
  //   their rows.
  // After: basic is basic with basic = sum.
  void add_row(int basic, const LinearSum& sum);

  // Requires: x basic, y nonbasic with a nonzero coefficient in x's row.
  // After: y is basic, x nonbasic; every other row is rewritten so that y
  //   occurs in none.
  void pivot(int x, int y);

  // Requires: x is the youngest variable.
  // After: x is gone; if it occurred in rows it was first pivoted into
  //   one of them, whose equation is dropped with it.
  void remove_last_var();

  // Requires: is_basic(x).
  const Row& row(int x) const { return d_rows[d_row_of[x]]; }

  const std::vector<ColEntry>& column(int y) const { return d_cols[y]; }

  // Returns: the basic variable of row `r` of column entries.
  int basic_of_row(int r) const { return d_basic[r]; }

  // Requires: is_basic(x).
  // Returns: the positive integer den of x's row.
  const QNumber& denominator(int x) const { return d_den[d_row_of[x]]; }

  // Returns: the rational coefficient of y in the row of basic x (0 when
  //   absent).
  QNumber coeff(int x, int y) const;

  size_t max_row_length() const;
  size_t total_row_length() const;

 private:
  void remove_entry(int r, int pos);
  void append_entry(int r, int var, const QNumber& coeff);
  // Row r's numbers += c * (row src's numbers); r is marked.
  void add_multiple(int r, const QNumber& c, int src);
  // Divides row r's numbers and den by their gcd.
  void remove_content(int r);
  void mark_row(int r);
  void unmark_row(int r);
  int new_row(int basic);
  void drop_row(int r);

  std::vector<Row> d_rows;
  std::vector<QNumber> d_den;  // row -> den
  std::vector<int> d_basic;    // row -> basic variable, -1 for a free row
  std::vector<int> d_row_of;   // variable -> row, -1 when nonbasic
  std::vector<std::vector<ColEntry>> d_cols;
  std::vector<int> d_free_rows;
  int d_free = 0;
  // Scratch: position of each variable in the row being rewritten, -1
  // elsewhere; kept all -1 between operations.
  std::vector<int> d_mark;
  // Scratch of add_row: the row being built, with rational coefficients.
  std::vector<std::pair<int, QNumber>> d_acc;
  QNumber d_tmp, d_tmp2;
};

}  // namespace la
}  // namespace zenlo

#endif
