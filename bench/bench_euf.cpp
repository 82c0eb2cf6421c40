// The congruence closure's hot path, as a search drives it: open a
// checkpoint, assert a few equalities (each may cascade through
// congruences), explain a deduction, and backtrack. The loop must allocate
// nothing once the pools and vectors have grown: a malloc counter checks.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "terms/termmanager.h"
#include "theory/euf/eufsolver.h"

static size_t g_mallocs = 0;

extern "C" void* __libc_malloc(size_t n);

extern "C" void* malloc(size_t n) {
  ++g_mallocs;
  return __libc_malloc(n);
}

namespace {

using zenlo::Term_;
using zenlo::TermList;
using zenlo::TheoryLit;

struct Graph {
  explicit Graph(size_t n) {
    const zenlo::Type* u = tm.get_simple_type("U");
    const zenlo::Symbol* f = tm.make_symbol("f", tm.get_function_type({u}, u));
    const zenlo::Symbol* g =
        tm.make_symbol("g", tm.get_function_type({u, u}, u));
    for (size_t i = 0; i < n; ++i) {
      leaves.push_back(
          tm.make_constant(tm.make_symbol("x" + std::to_string(i), u)));
    }
    std::mt19937 rng(3);
    TermList terms = leaves;
    for (size_t i = 0; i < 4 * n; ++i) {
      const Term_* a = terms[rng() % terms.size()];
      const Term_* b = terms[rng() % terms.size()];
      terms.push_back(rng() % 2 ? tm.make_uninterpreted_function(f, {a})
                                : tm.make_uninterpreted_function(g, {a, b}));
    }
    for (size_t i = 0; i < 8 * n; ++i) {
      const Term_* a = leaves[rng() % n];
      const Term_* b = leaves[rng() % n];
      if (a != b) {
        atoms.push_back(TheoryLit(tm.make_equal(a, b)));
      }
    }
    all = terms;
  }

  zenlo::TermManager tm;
  TermList leaves;
  TermList all;
  std::vector<TheoryLit> atoms;
};

void BM_CheckpointAssertExplainBacktrack(benchmark::State& state) {
  Graph g(static_cast<size_t>(state.range(0)));
  zenlo::euf::Solver s(&g.tm);
  for (const Term_* t : g.all) {
    s.add_term(t);
  }
  for (TheoryLit l : g.atoms) {
    s.tell_atom(l.atom());
  }
  std::mt19937 rng(5);
  std::vector<TheoryLit> why;
  size_t mallocs = 0;
  int64_t rounds = 0;
  for (auto _ : state) {
    size_t before = g_mallocs;
    s.push_checkpoint();
    for (int k = 0; k < 8; ++k) {
      s.push_constraint(g.atoms[rng() % g.atoms.size()]);
    }
    TheoryLit implied;
    if (s.check() && s.get_next_implied(implied)) {
      why.clear();
      s.get_implied_reason(implied, why);
    }
    while (s.get_next_implied(implied)) {
    }
    s.backtrack(1);
    if (++rounds > 1000) {
      mallocs += g_mallocs - before;
    }
  }
  state.counters["mallocs_after_warmup"] = static_cast<double>(mallocs);
}

BENCHMARK(BM_CheckpointAssertExplainBacktrack)->Arg(100)->Arg(1000)->Arg(10000);

}  // namespace

BENCHMARK_MAIN();
