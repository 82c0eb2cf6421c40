// The term store's hot paths: making a new binary term, finding an existing
// one (which must allocate nothing: a malloc counter proves it), making a
// bit-vector term through its family memo, and walking a deep term.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

#include "terms/termmanager.h"
#include "terms/termvisitor.h"

// Counts every call of malloc in the process: operator new and the memory
// pools both end there.
static size_t g_mallocs = 0;

extern "C" void* __libc_malloc(size_t n);

extern "C" void* malloc(size_t n) {
  ++g_mallocs;
  return __libc_malloc(n);
}

namespace {

using zenlo::Term_;
using zenlo::TermList;
using zenlo::TermManager;

constexpr size_t kLeaves = 4096;

TermList make_leaves(TermManager& tm, const zenlo::Type* type) {
  TermList leaves;
  for (size_t i = 0; i < kLeaves; ++i) {
    std::string name = "x" + std::to_string(i);
    leaves.push_back(tm.make_constant(tm.make_symbol(name, type)));
  }
  return leaves;
}

// Every iteration makes a term the store has never seen: (and x_i x_j) for
// successive pairs.
void BM_MakeNewBinaryTerm(benchmark::State& state) {
  TermManager tm;
  TermList x = make_leaves(tm, tm.get_bool_type());
  size_t k = 0;
  for (auto _ : state) {
    const Term_* t = tm.make_and(x[(k / kLeaves) % kLeaves], x[k % kLeaves]);
    benchmark::DoNotOptimize(t);
    ++k;
  }
  state.counters["terms"] = static_cast<double>(tm.num_terms());
}

BENCHMARK(BM_MakeNewBinaryTerm);

// Every iteration makes a term that exists already.
void BM_FindExistingBinaryTerm(benchmark::State& state) {
  TermManager tm;
  TermList x = make_leaves(tm, tm.get_bool_type());
  constexpr size_t kTerms = 1 << 16;
  for (size_t k = 0; k < kTerms; ++k) {
    tm.make_and(x[k / kLeaves], x[k % kLeaves]);
  }
  size_t before = g_mallocs;
  size_t k = 0;
  for (auto _ : state) {
    size_t j = k & (kTerms - 1);
    benchmark::DoNotOptimize(tm.make_and(x[j / kLeaves], x[j % kLeaves]));
    ++k;
  }
  state.counters["mallocs_per_op"] =
      static_cast<double>(g_mallocs - before) / static_cast<double>(k);
}

BENCHMARK(BM_FindExistingBinaryTerm);

// The same through a parametric family: the symbol comes from the memo of
// bvadd over width 32, then the term from the bank.
void BM_FindExistingBvAdd(benchmark::State& state) {
  TermManager tm;
  TermList x = make_leaves(tm, tm.get_bv_type(32));
  for (size_t k = 0; k < kLeaves; ++k) {
    tm.make_bv_add(x[k], x[(k + 1) % kLeaves]);
  }
  size_t before = g_mallocs;
  size_t k = 0;
  for (auto _ : state) {
    size_t j = k % kLeaves;
    benchmark::DoNotOptimize(tm.make_bv_add(x[j], x[(j + 1) % kLeaves]));
    ++k;
  }
  state.counters["mallocs_per_op"] =
      static_cast<double>(g_mallocs - before) / static_cast<double>(k);
}

BENCHMARK(BM_FindExistingBvAdd);

class CountNodes : public zenlo::TermVisitorCallback {
 public:
  zenlo::VisitResult visit(const Term_*, bool preorder) override {
    nodes += preorder ? 1 : 0;
    return zenlo::VisitResult::Process;
  }

  size_t nodes = 0;
};

// One full walk of a chain of a million `not`s per iteration.
void BM_DeepTermWalk(benchmark::State& state) {
  TermManager tm;
  const Term_* t = tm.make_constant(tm.make_symbol("p", tm.get_bool_type()));
  const size_t depth = static_cast<size_t>(state.range(0));
  for (size_t k = 0; k < depth; ++k) {
    t = tm.make_not(t);
  }
  CountNodes cb;
  zenlo::TermVisitor<CountNodes> visitor(tm, cb);
  visitor.visit(t);  // the first walk sizes the stack and the marks
  size_t before = g_mallocs;
  size_t walks = 0;
  for (auto _ : state) {
    visitor.visit(t);
    ++walks;
  }
  state.SetItemsProcessed(static_cast<int64_t>(cb.nodes));
  state.counters["mallocs_per_walk"] =
      static_cast<double>(g_mallocs - before) / static_cast<double>(walks);
}

BENCHMARK(BM_DeepTermWalk)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
