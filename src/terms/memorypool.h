// Pools of equal-sized nodes. The term store makes millions of small nodes
// of a handful of sizes and gives them back only at a collection or at the
// end, so a free list over large blocks beats the general heap twice: no
// per-node header, and no call into malloc on the hot path. The hash tables
// of the whole system draw their chain nodes from pools too.
//
// A pool knows nothing of what it holds: it hands out raw memory of one
// size and never runs a destructor. Its blocks go back to the heap only
// when the pool itself dies (or at release_all).
#ifndef ZENLO_TERMS_MEMORYPOOL_H
#define ZENLO_TERMS_MEMORYPOOL_H

#include <cstddef>

namespace zenlo {

class MemoryPool {
 public:
  // Requires: first_block >= 1, growth >= 1.0; max_block 0 means that
  // blocks may grow without bound. The node size is rounded up to a
  // multiple of the machine word.
  MemoryPool(size_t node_size,
             size_t first_block,
             double growth,
             size_t max_block);
  ~MemoryPool();

  MemoryPool(MemoryPool&& other) noexcept;
  MemoryPool& operator=(MemoryPool&& other) noexcept;
  MemoryPool(const MemoryPool&) = delete;
  MemoryPool& operator=(const MemoryPool&) = delete;

  void* allocate() {
    if (d_free != nullptr) {
      void* p = d_free;
      d_free = *static_cast<void**>(p);
      return p;
    }
    if (d_next == d_end) {
      grow();
    }
    void* p = d_next;
    d_next += d_node_size;
    return p;
  }

  // Requires: p came from allocate() of this pool and is not in use.
  void deallocate(void* p) {
    *static_cast<void**>(p) = d_free;
    d_free = p;
  }

  // Returns every block to the heap; all nodes become invalid.
  void release_all();

  size_t node_size() const { return d_node_size; }

 private:
  void grow();

  size_t d_node_size;
  size_t d_first_block;
  size_t d_block_nodes;
  double d_growth;
  size_t d_max_block;
  char* d_next = nullptr;
  char* d_end = nullptr;
  void* d_free = nullptr;
  // Blocks are chained through their first word.
  void* d_blocks = nullptr;
};

}  // namespace zenlo

#endif
