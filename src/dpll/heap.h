// The decision order of the engine: a binary max-heap of variables keyed by
// their activity, with a position index per variable so that a variable's
// key can be raised in place and membership is tested in constant time.
//
// Ties go to the smaller variable index, which keeps runs reproducible.
// The heap reads the activity vector but never writes it; the owner must
// call increase() after raising a key and must not lower the key of a
// variable that is in the heap.
#ifndef ZENLO_DPLL_HEAP_H
#define ZENLO_DPLL_HEAP_H

#include <cstdint>
#include <vector>

#include "dpll/dplltypes.h"

namespace zenlo {

// Larger activity first; on equal activity the smaller index first.
struct VarOrderLt {
  const std::vector<double>* activity;

  bool operator()(dpll::Var x, dpll::Var y) const {
    double ax = (*activity)[x];
    double ay = (*activity)[y];
    return ax > ay || (ax == ay && x < y);
  }
};

class Heap {
 public:
  static constexpr uint32_t NO_IDX = static_cast<uint32_t>(-1);

  explicit Heap(const std::vector<double>* activity) : d_lt{activity} {}

  uint32_t size() const { return static_cast<uint32_t>(d_heap.size()); }

  bool empty() const { return d_heap.empty(); }

  bool contains(dpll::Var v) const {
    return static_cast<size_t>(v) < d_index.size() && d_index[v] != NO_IDX;
  }

  dpll::Var operator[](uint32_t i) const { return d_heap[i]; }

  void insert(dpll::Var v) {
    if (static_cast<size_t>(v) >= d_index.size()) {
      d_index.resize(v + 1, NO_IDX);
    }
    d_index[v] = size();
    d_heap.push_back(v);
    percolate_up(d_index[v]);
  }

  // After the key of `v` grew.
  void increase(dpll::Var v) { percolate_up(d_index[v]); }

  dpll::Var remove_max() {
    dpll::Var top = d_heap[0];
    dpll::Var last = d_heap.back();
    d_heap.pop_back();
    d_index[top] = NO_IDX;
    if (!d_heap.empty()) {
      d_heap[0] = last;
      d_index[last] = 0;
      percolate_down(0);
    }
    return top;
  }

  // Takes `v` out wherever it stands.
  void remove(dpll::Var v) {
    uint32_t i = d_index[v];
    dpll::Var last = d_heap.back();
    d_heap.pop_back();
    d_index[v] = NO_IDX;
    if (last != v) {
      d_heap[i] = last;
      d_index[last] = i;
      percolate_up(i);
      percolate_down(d_index[last]);
    }
  }

  // Forgets index entries of variables from `n` on; they must be out.
  void shrink_vars(size_t n) {
    if (d_index.size() > n) {
      d_index.resize(n);
    }
  }

  void clear() {
    for (dpll::Var v : d_heap) {
      d_index[v] = NO_IDX;
    }
    d_heap.clear();
  }

  // Replaces the contents by `vars` in one linear pass.
  void build(const std::vector<dpll::Var>& vars) {
    clear();
    for (dpll::Var v : vars) {
      if (static_cast<size_t>(v) >= d_index.size()) {
        d_index.resize(v + 1, NO_IDX);
      }
      d_index[v] = size();
      d_heap.push_back(v);
    }
    for (int i = static_cast<int>(size()) / 2 - 1; i >= 0; --i) {
      percolate_down(i);
    }
  }

 private:
  static uint32_t parent(uint32_t i) { return (i - 1) >> 1; }

  static uint32_t left(uint32_t i) { return 2 * i + 1; }

  void percolate_up(uint32_t i) {
    dpll::Var x = d_heap[i];
    while (i != 0 && d_lt(x, d_heap[parent(i)])) {
      d_heap[i] = d_heap[parent(i)];
      d_index[d_heap[i]] = i;
      i = parent(i);
    }
    d_heap[i] = x;
    d_index[x] = i;
  }

  void percolate_down(uint32_t i) {
    dpll::Var x = d_heap[i];
    uint32_t n = size();
    while (left(i) < n) {
      uint32_t child = left(i);
      if (child + 1 < n && d_lt(d_heap[child + 1], d_heap[child])) {
        ++child;
      }
      if (!d_lt(d_heap[child], x)) {
        break;
      }
      d_heap[i] = d_heap[child];
      d_index[d_heap[i]] = i;
      i = child;
    }
    d_heap[i] = x;
    d_index[x] = i;
  }

  VarOrderLt d_lt;
  std::vector<dpll::Var> d_heap;
  std::vector<uint32_t> d_index;
};

}  // namespace zenlo

#endif
