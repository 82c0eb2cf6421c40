// The Diophantine system on its own. Every answer carries its own
// evidence: a feasible system's model, with the free variables set to any
// integers, solves every input equation in integers; an infeasible one's
// refutation combines the inputs into an equation whose coefficients' gcd
// does not divide its constant. Random systems are checked both ways.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

#include "theory/la/diophantinesystem.h"

namespace zenlo {
namespace {

class Vars : public laz::FreshVarProvider {
 public:
  int new_var() override {
    ++live;
    return next++;
  }

  void free_var(int) override { --live; }

  int next = 1000;
  int live = 0;
};

la::Equation eq(std::vector<std::pair<int, long>> monos, long c) {
  la::Equation e;
  for (auto [v, k] : monos) {
    e.add(v, QNumber(k));
  }
  e.set_constant(QNumber(c));
  return e;
}

class DioTest : public ::testing::Test {
 protected:
  void add(int id, const la::Equation& e) {
    inputs[id] = e;
    dio.add_equation(id, e);
  }

  // The model, with every free variable at `free`, solves each input.
  void expect_model_solves_inputs(long free) {
    dio.build_model();
    std::map<int, QNumber> value;
    auto value_of = [&](int var) -> QNumber {
      la::Equation m;
      if (!dio.get_model_value(var, &m)) {
        return QNumber(free);
      }
      QNumber v = m.constant();
      for (const auto& [x, c] : m.monomials()) {
        EXPECT_FALSE(dio.has_substitution(x)) << "model over a solved var";
        v += c * QNumber(free);
      }
      return v;
    };
    for (const auto& [id, e] : inputs) {
      QNumber sum = e.constant();
      for (const auto& [x, c] : e.monomials()) {
        QNumber v = value_of(x);
        EXPECT_TRUE(v.is_integer()) << "x" << x << " = " << v.to_str();
        sum += c * v;
      }
      EXPECT_TRUE(sum.is_zero()) << "equation " << id << ": " << e.to_str();
    }
  }

  // The refutation's combination of the inputs is infeasible by itself.
  void expect_refutation_holds() {
    std::vector<int> ids;
    std::vector<QNumber> mults;
    dio.get_unsat_proof(&ids, &mults);
    ASSERT_FALSE(ids.empty());
    laz::Equation sum;
    for (size_t i = 0; i < ids.size(); ++i) {
      ASSERT_TRUE(inputs.count(ids[i])) << ids[i];
      sum.comb_with(laz::Equation(inputs[ids[i]]), mults[i]);
    }
    for (const auto& [x, c] : sum.monomials()) {
      EXPECT_TRUE(c.is_integer()) << "non-integral combination";
    }
    EXPECT_TRUE(sum.infeasible()) << sum.to_str();
  }

  Vars vars;
  laz::DiophantineSystem dio{&vars, true};
  std::map<int, la::Equation> inputs;
};

TEST_F(DioTest, UnitCoefficientSolvesWithoutFreshVariables) {
  add(1, eq({{1, 1}, {2, 1}}, -3));  // x + y = 3
  EXPECT_TRUE(dio.check());
  EXPECT_EQ(vars.live, 0);
  expect_model_solves_inputs(5);
}

TEST_F(DioTest, EvenSumCannotBeOdd) {
  add(1, eq({{1, 2}, {2, 4}}, -3));  // 2x + 4y = 3
  EXPECT_FALSE(dio.check());
  std::vector<int> ids;
  std::vector<QNumber> mults;
  dio.get_unsat_proof(&ids, &mults);
  EXPECT_EQ(ids, std::vector<int>{1});
  EXPECT_EQ(mults, std::vector<QNumber>{QNumber(1)});
}

TEST_F(DioTest, CoprimeCoefficientsNeedFreshVariablesAndAreFeasible) {
  add(1, eq({{1, 3}, {2, 5}}, -1));  // 3x + 5y = 1
  EXPECT_TRUE(dio.check());
  EXPECT_GT(vars.live, 0);
  expect_model_solves_inputs(0);
  expect_model_solves_inputs(-7);
}

TEST_F(DioTest, JointlyInfeasibleEquationsNameBothWithMultipliers) {
  add(1, eq({{1, 1}, {2, 1}}, 0));    // x + y = 0
  add(2, eq({{1, 1}, {2, -1}}, -1));  // x - y = 1
  EXPECT_FALSE(dio.check());
  std::vector<int> ids;
  dio.get_unsat_proof(&ids, nullptr);
  std::sort(ids.begin(), ids.end());
  EXPECT_EQ(ids, (std::vector<int>{1, 2}));
  expect_refutation_holds();
}

TEST_F(DioTest, ThreeSixNineCannotMakeFive) {
  add(1, eq({{1, 3}, {2, 6}, {3, 9}}, -5));
  EXPECT_FALSE(dio.check());
  expect_refutation_holds();
}

TEST_F(DioTest, RationalInputsAreScaledAndProofsReferToThemAsGiven) {
  la::Equation half;  // x/2 + y/2 = 1/3
  half.add(1, QNumber(1, 2));
  half.add(2, QNumber(1, 2));
  half.set_constant(QNumber(-1, 3));
  add(1, half);
  EXPECT_FALSE(dio.check());
  expect_refutation_holds();
}

TEST_F(DioTest, CoefficientsBeyondSixtyFourBits) {
  QNumber big = QNumber::from_str("36893488147419103232");  // 2^65
  la::Equation e;  // 2^65 x + 2 y = 1: even = odd
  e.add(1, big);
  e.add(2, QNumber(2));
  e.set_constant(QNumber(-1));
  add(1, e);
  EXPECT_FALSE(dio.check());
  expect_refutation_holds();
}

TEST_F(DioTest, PopRestoresTheStateBeforeTheEquationFreshVariablesIncluded) {
  add(1, eq({{1, 3}, {2, 5}}, -1));
  ASSERT_TRUE(dio.check());
  std::string before = dio.dump_tableau();
  int live = vars.live;
  add(2, eq({{1, 7}, {3, 4}}, -2));
  add(3, eq({{2, 2}, {3, 2}}, -1));  // 2y + 2z = 1: refuted
  EXPECT_FALSE(dio.check());
  dio.pop_equation();
  inputs.erase(3);
  EXPECT_TRUE(dio.check());
  dio.pop_equation();
  inputs.erase(2);
  EXPECT_EQ(vars.live, live);
  EXPECT_EQ(dio.dump_tableau(), before);
  EXPECT_TRUE(dio.check());
  expect_model_solves_inputs(3);
}

TEST_F(DioTest, RandomSystemsCarryTheirEvidence) {
  std::mt19937 rng(7);
  std::uniform_int_distribution<int> coef(-9, 9), nvars(2, 5), neqs(1, 4);
  for (int round = 0; round < 300; ++round) {
    dio.reset();
    inputs.clear();
    int n = nvars(rng), m = neqs(rng);
    for (int id = 1; id <= m; ++id) {
      la::Equation e;
      for (int v = 1; v <= n; ++v) {
        if (rng() % 3 != 0) {
          e.add(v, QNumber(coef(rng)));
        }
      }
      e.set_constant(QNumber(coef(rng)));
      add(id, e);
    }
    if (dio.check()) {
      expect_model_solves_inputs(round % 5 - 2);
    } else {
      expect_refutation_holds();
    }
    if (HasFailure()) {
      FAIL() << "round " << round << "\n" << dio.dump_tableau();
    }
  }
}

}  // namespace
}  // namespace zenlo
