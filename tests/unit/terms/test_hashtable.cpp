// The hash containers shared by every memo table, and the node pools.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "terms/hashtable.h"
#include "terms/memorypool.h"

namespace zenlo {
namespace {

TEST(Hashtable, GrowsThroughThePrimesAtLoadSevenTenths) {
  hsh::HashSet<size_t> set;
  EXPECT_EQ(set.bucket_count(), 0u);  // nothing allocated before use
  std::vector<size_t> sizes;
  for (size_t i = 0; i < 200; ++i) {
    set.insert(i * 7919);
    if (sizes.empty() || sizes.back() != set.bucket_count()) {
      sizes.push_back(set.bucket_count());
      // The growth happened on the insertion that passed 0.7.
      EXPECT_LE(set.size() * 10, set.bucket_count() * 7);
    }
  }
  EXPECT_EQ(sizes, std::vector<size_t>({31, 73, 151, 313}));
  EXPECT_EQ(hsh::next_table_size(4294867387ul), 4294867387ul);
  for (size_t i = 0; i < 200; ++i) {
    ASSERT_TRUE(set.contains(i * 7919));
  }
  EXPECT_FALSE(set.insert(7919).second);
  EXPECT_EQ(set.size(), 200u);
}

TEST(Hashtable, ErasesIteratesCopiesAndMoves) {
  hsh::HashMap<std::string, int> map;
  for (int i = 0; i < 100; ++i) {
    map["k" + std::to_string(i)] = i;
  }
  EXPECT_EQ(map.erase("k7"), 1u);
  EXPECT_EQ(map.erase("k7"), 0u);
  EXPECT_EQ(map.erase_if([](const auto& e) { return e.second % 2 == 0; }), 50u);
  int sum = 0;
  for (const auto& e : map) {
    sum += e.second;
  }
  EXPECT_EQ(sum, 2500 - 7);
  hsh::HashMap<std::string, int> copy(map);
  hsh::HashMap<std::string, int> moved(std::move(map));
  EXPECT_EQ(copy.size(), 49u);
  EXPECT_EQ(moved.size(), 49u);
  ASSERT_NE(copy.get("k9"), nullptr);
  EXPECT_EQ(*copy.get("k9"), 9);
  EXPECT_EQ(copy.get("k8"), nullptr);
  copy.clear();
  EXPECT_TRUE(copy.empty());
  copy["again"] = 1;
  EXPECT_EQ(copy.size(), 1u);
}

TEST(MemoryPool, ReusesFreedNodesFirst) {
  MemoryPool pool(24, 2, 2.0, 4);
  void* a = pool.allocate();
  void* b = pool.allocate();
  void* c = pool.allocate();  // second block
  EXPECT_NE(a, b);
  EXPECT_NE(b, c);
  pool.deallocate(b);
  EXPECT_EQ(pool.allocate(), b);
  for (int i = 0; i < 100; ++i) {
    pool.allocate();  // blocks stop growing at four nodes
  }
  pool.release_all();
  EXPECT_NE(pool.allocate(), nullptr);
}

}  // namespace
}  // namespace zenlo
