// The chained hash containers of the whole system. Every memo table keyed
// by terms, symbols, types or numbers is an hsh::Hashtable or an
// hsh::HashMap, so growth, memory and iteration behave the same everywhere:
//
// - bucket counts run through a fixed list of primes, each about twice the
//   last, and the table grows as soon as size / buckets exceeds 0.7;
// - chain nodes come from a MemoryPool owned by the table, so an insertion
//   costs no call into malloc once the pool has warmed up, and a lookup
//   never allocates;
// - the hash of each node is kept in the node, so growing and probing never
//   recompute hashes of stored keys;
// - iteration follows the buckets. Terms, symbols and types hash by their
//   id, never by address, so iteration order is the same from run to run.
//
// Tables allocate nothing until the first insertion: the term store holds
// dozens of them and most stay empty.
#ifndef ZENLO_TERMS_HASHTABLE_H
#define ZENLO_TERMS_HASHTABLE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>

#include "terms/memorypool.h"

namespace zenlo {
namespace hsh {

// Returns: the smallest bucket count of the prime list above `buckets`.
size_t next_table_size(size_t buckets);

// The default hash. Specialised for Term_, Symbol and Type pointers (by id)
// next to those classes.
template <class T>
struct Hash {
  size_t operator()(const T& x) const { return std::hash<T>()(x); }
};

// Names hash as h * 5 + c over their bytes.
struct NameHash {
  size_t operator()(std::string_view s) const {
    size_t h = 0;
    for (unsigned char c : s) {
      h = h * 5 + c;
    }
    return h;
  }
};

template <>
struct Hash<std::string_view> : NameHash {};

struct Identity {
  template <class V>
  const V& operator()(const V& v) const {
    return v;
  }
};

struct FirstOf {
  template <class P>
  const typename P::first_type& operator()(const P& p) const {
    return p.first;
  }
};

// Pool parameters of the chain nodes of every table.
constexpr size_t kChainFirstBlock = 16;
constexpr double kChainGrowth = 2.0;
constexpr size_t kChainMaxBlock = 8192;

template <class Key,
          class Value,
          class KeyOf,
          class HashFn = Hash<Key>,
          class EqFn = std::equal_to<Key>>
class Hashtable {
  struct Node {
    Node* next;
    size_t hash;
    Value value;
  };

 public:
  using key_type = Key;
  using value_type = Value;

  template <bool Const>
  class Iter {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Value;
    using difference_type = std::ptrdiff_t;
    using pointer = std::conditional_t<Const, const Value*, Value*>;
    using reference = std::conditional_t<Const, const Value&, Value&>;

    Iter() = default;

    Iter(const Hashtable* t, size_t b, Node* n) : d_t(t), d_b(b), d_n(n) {}

    template <bool C = Const, class = std::enable_if_t<C>>
    Iter(const Iter<false>& o) : d_t(o.d_t), d_b(o.d_b), d_n(o.d_n) {}

    reference operator*() const { return d_n->value; }

    pointer operator->() const { return &d_n->value; }

    Iter& operator++() {
      d_n = d_n->next;
      if (d_n == nullptr) {
        d_n = d_t->first_node_from(d_b + 1, d_b);
      }
      return *this;
    }

    Iter operator++(int) {
      Iter r = *this;
      ++*this;
      return r;
    }

    bool operator==(const Iter& o) const { return d_n == o.d_n; }

    bool operator!=(const Iter& o) const { return d_n != o.d_n; }

   private:
    friend class Hashtable;
    template <bool>
    friend class Iter;
    const Hashtable* d_t = nullptr;
    size_t d_b = 0;
    Node* d_n = nullptr;
  };

  using iterator = Iter<false>;
  using const_iterator = Iter<true>;

  Hashtable()
      : d_pool(sizeof(Node), kChainFirstBlock, kChainGrowth, kChainMaxBlock) {}

  ~Hashtable() { destroy_all(); }

  Hashtable(const Hashtable& o) : Hashtable() {
    for (const Value& v : o) {
      insert(v);
    }
  }

  Hashtable(Hashtable&& o) noexcept
      : d_pool(std::move(o.d_pool)),
        d_buckets(std::exchange(o.d_buckets, nullptr)),
        d_nbuckets(std::exchange(o.d_nbuckets, 0)),
        d_size(std::exchange(o.d_size, 0)) {}

  Hashtable& operator=(const Hashtable& o) {
    if (this != &o) {
      clear();
      for (const Value& v : o) {
        insert(v);
      }
    }
    return *this;
  }

  Hashtable& operator=(Hashtable&& o) noexcept {
    if (this != &o) {
      destroy_all();
      d_pool = std::move(o.d_pool);
      d_buckets = std::exchange(o.d_buckets, nullptr);
      d_nbuckets = std::exchange(o.d_nbuckets, 0);
      d_size = std::exchange(o.d_size, 0);
    }
    return *this;
  }

  size_t size() const { return d_size; }

  bool empty() const { return d_size == 0; }

  size_t bucket_count() const { return d_nbuckets; }

  iterator begin() {
    size_t b = 0;
    Node* n = first_node_from(0, b);
    return iterator(this, b, n);
  }

  iterator end() { return iterator(this, d_nbuckets, nullptr); }

  const_iterator begin() const {
    size_t b = 0;
    Node* n = first_node_from(0, b);
    return const_iterator(this, b, n);
  }

  const_iterator end() const {
    return const_iterator(this, d_nbuckets, nullptr);
  }

  iterator find(const Key& key) { return find_hashed(key, d_hash(key)); }

  const_iterator find(const Key& key) const {
    return const_cast<Hashtable*>(this)->find(key);
  }

  bool contains(const Key& key) const { return find(key) != end(); }

  size_t count(const Key& key) const { return contains(key) ? 1 : 0; }

  // Lookup with a hash the caller computed already (see insert_new).
  iterator find_hashed(const Key& key, size_t h) {
    if (d_nbuckets == 0) {
      return end();
    }
    size_t b = bucket_of(h, d_nbuckets);
    for (Node* n = d_buckets[b]; n != nullptr; n = n->next) {
      if (n->hash == h && d_eq(KeyOf()(n->value), key)) {
        return iterator(this, b, n);
      }
    }
    return end();
  }

  // Returns: the element with the key of `v` and whether `v` was inserted.
  template <class V>
  std::pair<iterator, bool> insert(V&& v) {
    size_t h = d_hash(KeyOf()(v));
    iterator it = find_hashed(KeyOf()(v), h);
    if (it != end()) {
      return {it, false};
    }
    return {insert_new(std::forward<V>(v), h), true};
  }

  // Requires: no element has the key of `v`; `h` is its hash.
  // After: the element is in the table; one probe saved on known misses.
  template <class V>
  iterator insert_new(V&& v, size_t h) {
    if ((d_size + 1) * 10 > d_nbuckets * 7) {
      grow();
    }
    Node* n = static_cast<Node*>(d_pool.allocate());
    try {
      new (&n->value) Value(std::forward<V>(v));
    } catch (...) {
      d_pool.deallocate(n);
      throw;
    }
    n->hash = h;
    size_t b = bucket_of(h, d_nbuckets);
    n->next = d_buckets[b];
    d_buckets[b] = n;
    ++d_size;
    return iterator(this, b, n);
  }

  size_t erase(const Key& key) {
    return erase_first([&](const Value& v) { return d_eq(KeyOf()(v), key); },
                       d_hash(key));
  }

  // Removes every element for which pred(value) holds; returns how many.
  template <class Pred>
  size_t erase_if(Pred pred) {
    size_t removed = 0;
    for (size_t b = 0; b < d_nbuckets; ++b) {
      Node** link = &d_buckets[b];
      while (*link != nullptr) {
        Node* n = *link;
        if (pred(static_cast<const Value&>(n->value))) {
          *link = n->next;
          free_node(n);
          ++removed;
        } else {
          link = &n->next;
        }
      }
    }
    d_size -= removed;
    return removed;
  }

  void clear() {
    destroy_all();
    d_pool.release_all();
  }

 private:
  // Tables below 2^32 buckets (all but the last size) fold the hash to 32
  // bits first: a 32-bit division costs a fraction of a 64-bit one, and the
  // division is most of the price of a probe that hits.
  static size_t bucket_of(size_t h, size_t n) {
    if (n <= 0xffffffffu) {
      uint32_t folded = static_cast<uint32_t>(h ^ (h >> 32));
      return folded % static_cast<uint32_t>(n);
    }
    return h % n;
  }

  Node* first_node_from(size_t b, size_t& out_b) const {
    for (; b < d_nbuckets; ++b) {
      if (d_buckets[b] != nullptr) {
        out_b = b;
        return d_buckets[b];
      }
    }
    out_b = d_nbuckets;
    return nullptr;
  }

  template <class Pred>
  size_t erase_first(Pred pred, size_t h) {
    if (d_nbuckets == 0) {
      return 0;
    }
    for (Node** link = &d_buckets[bucket_of(h, d_nbuckets)]; *link != nullptr;
         link = &(*link)->next) {
      Node* n = *link;
      if (n->hash == h && pred(static_cast<const Value&>(n->value))) {
        *link = n->next;
        free_node(n);
        --d_size;
        return 1;
      }
    }
    return 0;
  }

  void free_node(Node* n) {
    n->value.~Value();
    d_pool.deallocate(n);
  }

  void grow() {
    size_t nb = next_table_size(d_nbuckets);
    if (nb <= d_nbuckets) {
      return;  // the largest size of the list: chains just get longer
    }
    Node** fresh = new Node*[nb]();
    for (size_t b = 0; b < d_nbuckets; ++b) {
      Node* n = d_buckets[b];
      while (n != nullptr) {
        Node* next = n->next;
        size_t nbk = bucket_of(n->hash, nb);
        n->next = fresh[nbk];
        fresh[nbk] = n;
        n = next;
      }
    }
    delete[] d_buckets;
    d_buckets = fresh;
    d_nbuckets = nb;
  }

  // Runs the destructors and forgets the buckets; the pool keeps its
  // blocks for reuse.
  void destroy_all() {
    if (!std::is_trivially_destructible<Value>::value) {
      for (size_t b = 0; b < d_nbuckets; ++b) {
        for (Node* n = d_buckets[b]; n != nullptr; n = n->next) {
          n->value.~Value();
        }
      }
    }
    delete[] d_buckets;
    d_buckets = nullptr;
    d_nbuckets = 0;
    d_size = 0;
  }

  MemoryPool d_pool;
  Node** d_buckets = nullptr;
  size_t d_nbuckets = 0;
  size_t d_size = 0;
  HashFn d_hash;
  EqFn d_eq;
};

// A set.
template <class T, class HashFn = Hash<T>, class EqFn = std::equal_to<T>>
using HashSet = Hashtable<T, T, Identity, HashFn, EqFn>;

// A map from K to V; elements are std::pair<K, V>.
template <class K,
          class V,
          class HashFn = Hash<K>,
          class EqFn = std::equal_to<K>>
class HashMap : public Hashtable<K, std::pair<K, V>, FirstOf, HashFn, EqFn> {
  using Base = Hashtable<K, std::pair<K, V>, FirstOf, HashFn, EqFn>;

 public:
  using Base::Base;
  using Base::insert;

  std::pair<typename Base::iterator, bool> insert(const K& k, const V& v) {
    return Base::insert(std::pair<K, V>(k, v));
  }

  V& operator[](const K& k) {
    auto it = this->find(k);
    if (it == this->end()) {
      it = this->insert_new(std::pair<K, V>(k, V()), HashFn()(k));
    }
    return it->second;
  }

  // Returns: the value of `k`, or null when absent.
  const V* get(const K& k) const {
    auto it = this->find(k);
    return it == this->end() ? nullptr : &it->second;
  }

  V* get(const K& k) {
    auto it = this->find(k);
    return it == this->end() ? nullptr : &it->second;
  }
};

}  // namespace hsh
}  // namespace zenlo

#endif
