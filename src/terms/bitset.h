// A growable set of small integers, one bit each. Walks over terms mark
// what they have seen by term id here rather than in a hash set: ids are
// dense, so a bit per id is both the smallest and the fastest memo.
#ifndef ZENLO_TERMS_BITSET_H
#define ZENLO_TERMS_BITSET_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zenlo {

class BitSet {
 public:
  // Returns: whether bit i is set; bits beyond the size read as 0.
  bool get(size_t i) const {
    size_t w = i >> 6;
    return w < d_words.size() && ((d_words[w] >> (i & 63)) & 1) != 0;
  }

  void set(size_t i) {
    ensure(i + 1);
    d_words[i >> 6] |= uint64_t(1) << (i & 63);
  }

  void clear(size_t i) {
    size_t w = i >> 6;
    if (w < d_words.size()) {
      d_words[w] &= ~(uint64_t(1) << (i & 63));
    }
  }

  // After: bits [0, n) are addressable; growth at least doubles, so a walk
  // over ever larger ids reallocates only logarithmically often.
  void ensure(size_t n) {
    size_t words = (n + 63) >> 6;
    if (words > d_words.size()) {
      size_t grown = d_words.size() * 2;
      d_words.resize(grown > words ? grown : words, 0);
    }
  }

  size_t capacity() const { return d_words.size() * 64; }

  void reset() { d_words.assign(d_words.size(), 0); }

 private:
  std::vector<uint64_t> d_words;
};

}  // namespace zenlo

#endif
