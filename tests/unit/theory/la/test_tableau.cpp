// The sparse tableau alone: rows stay equivalent to the original equations
// through pivots, columns agree with rows, rows stay integral, youngest
// variables can be removed at any time, and
// coefficients beyond 64 bits survive a pivot.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "theory/la/tableau.h"

namespace zenlo {
namespace la {
namespace {

// Evaluates every row at values chosen for the nonbasic variables and
// checks that the basic values agree with the original equations.
void expect_equivalent(const Tableau& t,
                       const std::vector<std::pair<int, LinearSum>>& eqs) {
  std::mt19937 rng(7);
  std::vector<QNumber> val(t.num_vars());
  for (int x = 0; x < t.num_vars(); ++x) {
    if (!t.is_basic(x)) {
      val[x] = QNumber(static_cast<long>(rng() % 41) - 20);
    }
  }
  for (int x = 0; x < t.num_vars(); ++x) {
    if (t.is_basic(x)) {
      QNumber v;
      const QNumber& den = t.denominator(x);
      ASSERT_TRUE(den.is_integer() && den.sign() > 0);
      for (const auto& e : t.row(x)) {
        ASSERT_FALSE(t.is_basic(e.var));
        ASSERT_FALSE(e.coeff.is_zero());
        ASSERT_TRUE(e.coeff.is_integer());
        v.self_addmul(val[e.var], e.coeff);
        EXPECT_EQ(t.coeff(x, e.var), e.coeff / den);
        // The column points back at this very entry.
        const auto& ce = t.column(e.var)[e.col_pos];
        EXPECT_EQ(t.basic_of_row(ce.row), x);
      }
      val[x] = v / den;
    }
  }
  for (const auto& [s, sum] : eqs) {
    QNumber v;
    for (const auto& [x, a] : sum) {
      v.self_addmul(val[x], a);
    }
    EXPECT_EQ(v, val[s]) << "equation of " << s;
  }
}

TEST(Tableau, PivotsKeepTheEquations) {
  Tableau t;
  for (int i = 0; i < 4; ++i) {
    t.add_var();
  }
  std::vector<std::pair<int, LinearSum>> eqs;
  for (int k = 0; k < 3; ++k) {
    int s = t.add_var();
    LinearSum sum{{0, QNumber(k + 1L)}, {1, QNumber(-2L)}, {2 + k % 2, 3L}};
    t.add_row(s, sum);
    eqs.emplace_back(s, sum);
  }
  expect_equivalent(t, eqs);
  t.pivot(4, 0);
  expect_equivalent(t, eqs);
  t.pivot(5, 1);
  expect_equivalent(t, eqs);
  t.pivot(0, 4);
  expect_equivalent(t, eqs);
  // A row over a basic variable is expanded.
  int s = t.add_var();
  LinearSum sum{{1, 1L}, {6, QNumber(1L, 3L)}};
  t.add_row(s, sum);
  eqs.emplace_back(s, sum);
  expect_equivalent(t, eqs);
}

TEST(Tableau, CancellingEntriesLeaveRowsAndColumns) {
  Tableau t;
  t.add_var();
  t.add_var();
  int s = t.add_var();
  int u = t.add_var();
  t.add_row(s, {{0, 1L}, {1, 1L}});
  t.add_row(u, {{0, 1L}, {1, -1L}});
  t.pivot(s, 0);  // 0 = s - 1, u = s - 2*1
  EXPECT_EQ(t.row(u).size(), 2u);
  int w = t.add_var();
  t.add_row(w, {{0, 1L}, {1, 1L}});  // w = s, the 1 cancels
  ASSERT_EQ(t.row(w).size(), 1u);
  EXPECT_EQ(t.row(w)[0].var, s);
  EXPECT_EQ(t.column(1).size(), 2u);
}

TEST(Tableau, RemovingYoungestVariables) {
  Tableau t;
  for (int i = 0; i < 3; ++i) {
    t.add_var();
  }
  int s = t.add_var();
  t.add_row(s, {{0, 2L}, {1, 1L}});
  int u = t.add_var();
  t.add_row(u, {{0, 1L}, {2, 1L}});
  t.pivot(s, 0);        // u now mentions s
  t.remove_last_var();  // u basic: its row goes
  EXPECT_EQ(t.num_rows(), 1);
  t.remove_last_var();  // s nonbasic in a row: pivoted in, then dropped
  EXPECT_EQ(t.num_rows(), 0);
  for (int x = 0; x < 3; ++x) {
    EXPECT_FALSE(t.is_basic(x));
    EXPECT_TRUE(t.column(x).empty());
  }
}

TEST(Tableau, BigCoefficientsThroughPivots) {
  Tableau t;
  for (int i = 0; i < 3; ++i) {
    t.add_var();
  }
  const QNumber big = QNumber::from_str("123456789012345678901");
  const QNumber odd(3037000499L);  // its square just fits, its cube not
  std::vector<std::pair<int, LinearSum>> eqs;
  int s = t.add_var();
  LinearSum a{{0, odd}, {1, odd * odd}, {2, 1L}};
  t.add_row(s, a);
  eqs.emplace_back(s, a);
  int u = t.add_var();
  LinearSum b{{0, big}, {1, QNumber(1L, 7L)}, {2, odd}};
  t.add_row(u, b);
  eqs.emplace_back(u, b);
  t.pivot(s, 1);
  t.pivot(u, 0);
  expect_equivalent(t, eqs);
  t.pivot(1, s);
  expect_equivalent(t, eqs);
}

// Random pivots over rows with fractional and word-overflowing
// coefficients, against the original equations after every step.
TEST(Tableau, RandomPivotsKeepTheEquations) {
  std::mt19937 rng(11);
  for (int round = 0; round < 20; ++round) {
    Tableau t;
    const int n = 6;
    for (int i = 0; i < n; ++i) {
      t.add_var();
    }
    std::vector<std::pair<int, LinearSum>> eqs;
    for (int k = 0; k < 8; ++k) {
      LinearSum sum;
      for (int v = 0; v < n; ++v) {
        if (rng() % 2 == 0) {
          QNumber a(static_cast<long>(rng() % 19) - 9,
                    static_cast<long>(rng() % 5) + 1);
          if (rng() % 7 == 0) {
            a *= QNumber::from_str("98765432109876543211");
          }
          if (!a.is_zero()) {
            sum.emplace_back(v, a);
          }
        }
      }
      int s = t.add_var();
      t.add_row(s, sum);
      eqs.emplace_back(s, sum);
    }
    for (int step = 0; step < 30; ++step) {
      int x = static_cast<int>(rng() % t.num_vars());
      if (!t.is_basic(x) || t.row(x).empty()) {
        continue;
      }
      int y = t.row(x)[rng() % t.row(x).size()].var;
      t.pivot(x, y);
      expect_equivalent(t, eqs);
    }
  }
}

}  // namespace
}  // namespace la
}  // namespace zenlo
