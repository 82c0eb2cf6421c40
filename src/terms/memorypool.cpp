#include "terms/memorypool.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace zenlo {

namespace {

// Keeps the first node of a block aligned as malloc aligns.
constexpr size_t kBlockHeader = 16;

size_t round_to_word(size_t n) {
  size_t w = sizeof(void*);
  n = n < w ? w : n;
  return (n + w - 1) / w * w;
}

}  // namespace

MemoryPool::MemoryPool(size_t node_size,
                       size_t first_block,
                       double growth,
                       size_t max_block)
    : d_node_size(round_to_word(node_size)),
      d_first_block(first_block == 0 ? 1 : first_block),
      d_block_nodes(d_first_block),
      d_growth(growth < 1.0 ? 1.0 : growth),
      d_max_block(max_block) {}

MemoryPool::~MemoryPool() {
  release_all();
}

MemoryPool::MemoryPool(MemoryPool&& other) noexcept
    : d_node_size(other.d_node_size),
      d_first_block(other.d_first_block),
      d_block_nodes(other.d_block_nodes),
      d_growth(other.d_growth),
      d_max_block(other.d_max_block),
      d_next(std::exchange(other.d_next, nullptr)),
      d_end(std::exchange(other.d_end, nullptr)),
      d_free(std::exchange(other.d_free, nullptr)),
      d_blocks(std::exchange(other.d_blocks, nullptr)) {}

MemoryPool& MemoryPool::operator=(MemoryPool&& other) noexcept {
  if (this != &other) {
    release_all();
    d_node_size = other.d_node_size;
    d_first_block = other.d_first_block;
    d_block_nodes = other.d_block_nodes;
    d_growth = other.d_growth;
    d_max_block = other.d_max_block;
    d_next = std::exchange(other.d_next, nullptr);
    d_end = std::exchange(other.d_end, nullptr);
    d_free = std::exchange(other.d_free, nullptr);
    d_blocks = std::exchange(other.d_blocks, nullptr);
  }
  return *this;
}

void MemoryPool::release_all() {
  while (d_blocks != nullptr) {
    void* next = *static_cast<void**>(d_blocks);
    std::free(d_blocks);
    d_blocks = next;
  }
  d_next = d_end = nullptr;
  d_free = nullptr;
  d_block_nodes = d_first_block;
}

void MemoryPool::grow() {
  size_t nodes = d_block_nodes;
  char* block =
      static_cast<char*>(std::malloc(kBlockHeader + nodes * d_node_size));
  if (block == nullptr) {
    // Callers hold raw node pointers everywhere; there is no state to
    // unwind to, so running out of memory here ends the process.
    std::fputs("zenlo: out of memory in a memory pool\n", stderr);
    std::abort();
  }
  *reinterpret_cast<void**>(block) = d_blocks;
  d_blocks = block;
  d_next = block + kBlockHeader;
  d_end = d_next + nodes * d_node_size;
  double grown = static_cast<double>(nodes) * d_growth;
  d_block_nodes = static_cast<size_t>(grown);
  if (d_max_block != 0 && d_block_nodes > d_max_block) {
    d_block_nodes = d_max_block;
  }
  if (d_block_nodes < nodes) {
    d_block_nodes = nodes;
  }
}

}  // namespace zenlo
