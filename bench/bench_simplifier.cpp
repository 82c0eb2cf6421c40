// The construction-time simplifier on the store's hot paths: making a term
// that exists already (which must still allocate nothing: a malloc counter
// proves it), a bit-vector term that a rewrite rule reorders, a linear atom
// that goes through the polynomial normal form, and folding constants.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>
#include <string>

#include "terms/stdtermsimplifier.h"
#include "terms/termmanager.h"

static size_t g_mallocs = 0;

extern "C" void* __libc_malloc(size_t n);

extern "C" void* malloc(size_t n) {
  ++g_mallocs;
  return __libc_malloc(n);
}

namespace {

using zenlo::QNumber;
using zenlo::Term_;
using zenlo::TermList;
using zenlo::TermManager;

constexpr size_t kLeaves = 1024;

struct Store {
  Store() : simp(&tm) {
    tm.set_simplifier(&simp);
    tm.enable_simplifications(true);
  }

  TermList leaves(const zenlo::Type* type) {
    TermList out;
    for (size_t i = 0; i < kLeaves; ++i) {
      std::string name = "x" + std::to_string(i);
      out.push_back(tm.make_constant(tm.make_symbol(name, type)));
    }
    return out;
  }

  TermManager tm;
  zenlo::StdTermSimplifier simp;
};

// Runs `make(k)` once for every k to warm the store, then measures it.
template <class Make>
void measure(benchmark::State& state, Make make) {
  for (size_t k = 0; k < kLeaves; ++k) {
    benchmark::DoNotOptimize(make(k));
  }
  size_t before = g_mallocs;
  size_t k = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(make(k % kLeaves));
    ++k;
  }
  state.counters["mallocs_per_op"] =
      static_cast<double>(g_mallocs - before) / static_cast<double>(k);
}

// (and x_{i+1} x_i): ordered by the simplifier every time.
void BM_ExistingAnd(benchmark::State& state) {
  Store s;
  TermList x = s.leaves(s.tm.get_bool_type());
  measure(state,
          [&](size_t k) { return s.tm.make_and(x[(k + 1) % kLeaves], x[k]); });
}

BENCHMARK(BM_ExistingAnd);

// (bvadd x_{i+1} x_i): built, then reordered by a rewrite rule.
void BM_ExistingBvAddReordered(benchmark::State& state) {
  Store s;
  TermList x = s.leaves(s.tm.get_bv_type(32));
  measure(state, [&](size_t k) {
    return s.tm.make_bv_add(x[(k + 1) % kLeaves], x[k]);
  });
}

BENCHMARK(BM_ExistingBvAddReordered);

// (<= (+ x_i (+ x_{i+1} (+ ... x_{i+7}))) 10) in reverse order: the sum
// is read into a polynomial, sorted and rebuilt.
void BM_ExistingLinearAtom(benchmark::State& state) {
  Store s;
  TermList x = s.leaves(s.tm.get_real_type());
  const Term_* ten = s.tm.make_number(10L);
  measure(state, [&](size_t k) {
    const Term_* sum = x[k];
    for (size_t j = 1; j < 8; ++j) {
      sum = s.tm.make_plus(sum, x[(k + j) % kLeaves]);
    }
    return s.tm.make_leq(sum, ten);
  });
}

BENCHMARK(BM_ExistingLinearAtom);

// (bvmul c1 c2) over 32-bit constants folds to a number; the number term
// is found by its printed name, which costs the allocations.
void BM_FoldBvMul(benchmark::State& state) {
  Store s;
  TermList c;
  for (size_t k = 0; k < kLeaves; ++k) {
    c.push_back(
        s.tm.make_bv_number(QNumber(long(k * 2654435761u % 4294967296u)), 32));
  }
  measure(state, [&](size_t k) {
    return s.tm.make_bv_mul(c[k], c[(k + 7) % kLeaves]);
  });
}

BENCHMARK(BM_FoldBvMul);

}  // namespace

BENCHMARK_MAIN();
