// Gomory cuts alone: a hand-made row, then random rows whose cut is
// checked against every integer point of a small box around the vertex
// (the cut must hold at each, and fail at the vertex), and whose split
// term must take integer values there.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "theory/la/gomorycut.h"

namespace zenlo {
namespace la {
namespace {

QNumber eval(const std::vector<std::pair<int, QNumber>>& sum,
             const std::vector<QNumber>& val) {
  QNumber v;
  for (const auto& [x, a] : sum) {
    v.self_addmul(val[x], a);
  }
  return v;
}

TEST(GomoryCut, HalfOfAnIntegerIsEven) {
  // x = y/2 with y on its lower bound 1: x = 1/2. Every integer x needs an
  // even y, so y >= 2; the split is on x - y.
  GomoryCut g;
  std::vector<GomoryCut::Column> row{{1, QNumber(1L, 2L), 1L, false, true}};
  ASSERT_TRUE(g.compute(0, QNumber(1L, 2L), row));
  ASSERT_EQ(g.cut_coeffs().size(), 1u);
  EXPECT_EQ(g.cut_coeffs()[0].first, 1);
  EXPECT_EQ(g.cut_coeffs()[0].second, QNumber(1L));
  EXPECT_EQ(g.cut_bound(), QNumber(2L));
  ASSERT_EQ(g.split_coeffs().size(), 1u);
  EXPECT_EQ(g.split_coeffs()[0].second, QNumber(-1L));
  EXPECT_EQ(g.split_floor(), QNumber(-1L));
}

TEST(GomoryCut, RandomRowsCutOffTheVertexOnly) {
  std::mt19937 rng(5);
  int cuts = 0;
  for (int round = 0; round < 400; ++round) {
    const int n = 1 + static_cast<int>(rng() % 3);
    std::vector<GomoryCut::Column> row;
    QNumber value;
    for (int j = 1; j <= n; ++j) {
      QNumber a(static_cast<long>(rng() % 15) - 7,
                static_cast<long>(rng() % 6) + 1);
      if (a.is_zero()) {
        a = QNumber(1L, 3L);
      }
      QNumber bound(static_cast<long>(rng() % 7) - 3);
      bool at_upper = rng() % 2 == 0;
      bool integer = rng() % 4 != 0;
      row.push_back({j, a, bound, at_upper, integer});
      value.self_addmul(a, bound);
    }
    if (value.is_integer()) {
      continue;
    }
    GomoryCut g;
    if (!g.compute(0, value, row)) {
      continue;
    }
    ++cuts;
    // The vertex violates the cut.
    std::vector<QNumber> val(n + 1);
    val[0] = value;
    for (int j = 1; j <= n; ++j) {
      val[j] = row[j - 1].bound;
    }
    ASSERT_LT(eval(g.cut_coeffs(), val), g.cut_bound());
    // Points within the bounds (three steps of 1/2 for real columns, of 1
    // for integer ones), with x integral: the cut holds.
    std::function<void(int)> walk = [&](int j) {
      if (j > n) {
        QNumber x;
        for (int k = 1; k <= n; ++k) {
          x.self_addmul(row[k - 1].coeff, val[k]);
        }
        if (!x.is_integer()) {
          return;
        }
        val[0] = x;
        ASSERT_GE(eval(g.cut_coeffs(), val), g.cut_bound())
            << "round " << round;
        QNumber z = x + eval(g.split_coeffs(), val);
        if (std::all_of(row.begin(), row.end(), [](const auto& c) {
              return c.is_integer;
            })) {
          ASSERT_TRUE(z.is_integer());
        }
        return;
      }
      const GomoryCut::Column& c = row[j - 1];
      QNumber step = c.is_integer ? QNumber(1L) : QNumber(1L, 2L);
      for (int t = 0; t <= 6; ++t) {
        QNumber d = step * QNumber(static_cast<long>(t));
        val[j] = c.at_upper ? c.bound - d : c.bound + d;
        walk(j + 1);
      }
    };
    walk(1);
  }
  EXPECT_GT(cuts, 100);
}

}  // namespace
}  // namespace la
}  // namespace zenlo
