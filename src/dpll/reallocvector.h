// A growable array of trivially copyable elements on malloc/realloc.
//
// The engine keeps one of these per literal for its watch lists, so the
// object itself is small (a pointer and two 32-bit counters) and growth can
// extend the block in place instead of copying. Capacity grows as
// (capacity * 3 + 1) / 2, at least 2. Shrinking never gives memory back;
// clear_and_free() does.
#ifndef ZENLO_DPLL_REALLOCVECTOR_H
#define ZENLO_DPLL_REALLOCVECTOR_H

#include <cstdint>
#include <cstdlib>
#include <new>
#include <type_traits>

namespace zenlo {

template <class T>
class ReallocVector {
  static_assert(std::is_trivially_copyable<T>::value,
                "ReallocVector moves its elements with realloc");

 public:
  ReallocVector() = default;

  ReallocVector(const ReallocVector&) = delete;
  ReallocVector& operator=(const ReallocVector&) = delete;

  ReallocVector(ReallocVector&& o) noexcept
      : d_data(o.d_data), d_size(o.d_size), d_cap(o.d_cap) {
    o.d_data = nullptr;
    o.d_size = o.d_cap = 0;
  }

  ReallocVector& operator=(ReallocVector&& o) noexcept {
    if (this != &o) {
      std::free(d_data);
      d_data = o.d_data;
      d_size = o.d_size;
      d_cap = o.d_cap;
      o.d_data = nullptr;
      o.d_size = o.d_cap = 0;
    }
    return *this;
  }

  ~ReallocVector() { std::free(d_data); }

  uint32_t size() const { return d_size; }

  uint32_t capacity() const { return d_cap; }

  bool empty() const { return d_size == 0; }

  T* begin() { return d_data; }

  T* end() { return d_data + d_size; }

  const T* begin() const { return d_data; }

  const T* end() const { return d_data + d_size; }

  T& operator[](uint32_t i) { return d_data[i]; }

  const T& operator[](uint32_t i) const { return d_data[i]; }

  T& back() { return d_data[d_size - 1]; }

  void push_back(const T& x) {
    if (d_size == d_cap) {
      grow();
    }
    d_data[d_size++] = x;
  }

  void pop_back() { --d_size; }

  // Drops the last `n` elements.
  void shrink(uint32_t n) { d_size -= n; }

  // Keeps the first `n` elements; requires n <= size().
  void resize_down(uint32_t n) { d_size = n; }

  void clear() { d_size = 0; }

  void clear_and_free() {
    std::free(d_data);
    d_data = nullptr;
    d_size = d_cap = 0;
  }

 private:
  void grow() {
    uint32_t cap = (d_cap * 3 + 1) / 2;
    if (cap < 2) {
      cap = 2;
    }
    void* p = std::realloc(d_data, sizeof(T) * cap);
    if (p == nullptr) {
      throw std::bad_alloc();
    }
    d_data = static_cast<T*>(p);
    d_cap = cap;
  }

  T* d_data = nullptr;
  uint32_t d_size = 0;
  uint32_t d_cap = 0;
};

}  // namespace zenlo

#endif
