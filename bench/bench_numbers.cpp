// Small-number arithmetic, the simplex's inner loop, against GMP's mpq on the
// same values and against QNumber's own big form.
#include <benchmark/benchmark.h>
#include <gmp.h>

#include <random>
#include <vector>

#include "terms/numbers.h"

namespace {

using zenlo::QNumber;

constexpr size_t kPool = 1024;  // a power of two, indexed by a mask

// Tableau-like coefficients: small numerators over small denominators.
std::vector<QNumber> small_fractions(uint64_t seed) {
  std::mt19937_64 rng(seed);
  std::vector<QNumber> v;
  for (size_t i = 0; i < kPool; ++i) {
    long n = static_cast<long>(rng() % 2001) - 1000;
    long d = static_cast<long>(rng() % 100) + 1;
    v.emplace_back(n, d);
  }
  return v;
}

std::vector<QNumber> small_integers(uint64_t seed) {
  std::mt19937_64 rng(seed);
  std::vector<QNumber> v;
  for (size_t i = 0; i < kPool; ++i) {
    v.emplace_back(static_cast<long>(rng() % 2000001) - 1000000);
  }
  return v;
}

// Fractions of about 100-bit parts.
std::vector<QNumber> big_fractions(uint64_t seed) {
  std::vector<QNumber> v;
  for (const QNumber& x : small_fractions(seed)) {
    QNumber scale = QNumber::from_str("1267650600228229401496703205377/3");
    v.push_back(x * scale + QNumber(1, 7));
  }
  return v;
}

template <typename Op>
void run_pairs(benchmark::State& state,
               const std::vector<QNumber>& a,
               const std::vector<QNumber>& b,
               Op op) {
  size_t i = 0;
  for (auto _ : state) {
    QNumber r = a[i];
    op(r, b[(i * 7 + 3) & (kPool - 1)]);
    benchmark::DoNotOptimize(r);
    i = (i + 1) & (kPool - 1);
  }
}

void BM_AddSmallInteger(benchmark::State& state) {
  run_pairs(state,
            small_integers(1),
            small_integers(2),
            [](QNumber& r, const QNumber& x) { r += x; });
}

void BM_AddSmallFraction(benchmark::State& state) {
  run_pairs(state,
            small_fractions(1),
            small_fractions(2),
            [](QNumber& r, const QNumber& x) { r += x; });
}

void BM_MulSmallFraction(benchmark::State& state) {
  run_pairs(state,
            small_fractions(1),
            small_fractions(2),
            [](QNumber& r, const QNumber& x) { r *= x; });
}

void BM_AddmulSmallFraction(benchmark::State& state) {
  auto c = small_fractions(3);
  run_pairs(state,
            small_fractions(1),
            small_fractions(2),
            [&c](QNumber& r, const QNumber& x) {
              r.self_addmul(x, c[x.hash() & (kPool - 1)]);
            });
}

void BM_CompareSmallFraction(benchmark::State& state) {
  auto a = small_fractions(1), b = small_fractions(2);
  size_t i = 0;
  for (auto _ : state) {
    bool lt = a[i] < b[(i * 7 + 3) & (kPool - 1)];
    benchmark::DoNotOptimize(lt);
    i = (i + 1) & (kPool - 1);
  }
}

void BM_AddBigFraction(benchmark::State& state) {
  run_pairs(state,
            big_fractions(1),
            big_fractions(2),
            [](QNumber& r, const QNumber& x) { r += x; });
}

// The same small fractions with plain GMP rationals, for scale.
void BM_MpqAddSmallFraction(benchmark::State& state) {
  auto a = small_fractions(1), b = small_fractions(2);
  std::vector<mpq_t> qa(kPool), qb(kPool);
  for (size_t i = 0; i < kPool; ++i) {
    mpq_init(qa[i]);
    mpq_init(qb[i]);
    a[i].to_mpq(qa[i]);
    b[i].to_mpq(qb[i]);
  }
  mpq_t r;
  mpq_init(r);
  size_t i = 0;
  for (auto _ : state) {
    mpq_add(r, qa[i], qb[(i * 7 + 3) & (kPool - 1)]);
    benchmark::DoNotOptimize(r);
    i = (i + 1) & (kPool - 1);
  }
  mpq_clear(r);
  for (size_t i = 0; i < kPool; ++i) {
    mpq_clear(qa[i]);
    mpq_clear(qb[i]);
  }
}

}  // namespace

BENCHMARK(BM_AddSmallInteger);
BENCHMARK(BM_AddSmallFraction);
BENCHMARK(BM_MulSmallFraction);
BENCHMARK(BM_AddmulSmallFraction);
BENCHMARK(BM_CompareSmallFraction);
BENCHMARK(BM_AddBigFraction);
BENCHMARK(BM_MpqAddSmallFraction);

BENCHMARK_MAIN();
