// A small S-expression library for the texts that external tools answer
// with and for the command interpreter's own bookkeeping. It is separate
// from the SMT-LIB reader: it builds no terms, only trees of symbols.
//
// Sexp is a reference-counted handle of a node, Sexp_. A node is a symbol
// (an id into the manager's table of interned texts) or a cons of two
// handles, and may carry annotations. The count lives in the low 31 bits
// of a word whose top bit marks a cons. The empty list is the symbol
// "nil". Nodes come from a free list of their SexpManager, which must
// outlive every handle; freeing a long list walks it with a work list,
// never by recursion, and so do all the functions below.
#ifndef ZENLO_FRONTEND_SEXP_H
#define ZENLO_FRONTEND_SEXP_H

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/exception.h"
#include "terms/hashtable.h"

namespace zenlo {

class Sexp_;
class SexpManager;

class Sexp {
 public:
  Sexp() = default;
  explicit Sexp(Sexp_* node);
  Sexp(const Sexp& o);

  Sexp(Sexp&& o) noexcept : d_node(o.d_node) { o.d_node = nullptr; }

  Sexp& operator=(const Sexp& o);
  Sexp& operator=(Sexp&& o) noexcept;
  ~Sexp();

  Sexp_* get() const { return d_node; }

  Sexp_* operator->() const { return d_node; }

  bool is_null() const { return d_node == nullptr; }

  // Identity of nodes; sexp::cmp compares structure.
  bool operator==(const Sexp& o) const { return d_node == o.d_node; }

  bool operator!=(const Sexp& o) const { return d_node != o.d_node; }

 private:
  friend class SexpManager;

  // Gives up the node without touching its count.
  Sexp_* release() {
    Sexp_* n = d_node;
    d_node = nullptr;
    return n;
  }

  Sexp_* d_node = nullptr;
};

class Sexp_ {
 public:
  bool is_cons() const { return (d_word & kConsBit) != 0; }

  bool is_symbol() const { return !is_cons(); }

  uint32_t ref_count() const { return d_word & ~kConsBit; }

  // Requires: a symbol.
  uint32_t symbol_id() const { return d_symbol; }

  // Require: a cons.
  const Sexp& car() const { return d_car; }

  const Sexp& cdr() const { return d_cdr; }

  // Annotations: keys compare by structure.
  bool has_annotation(const Sexp& key) const;
  // Returns: the value, or a null handle.
  Sexp get_annotation(const Sexp& key) const;
  // Replaces the value of an existing key.
  void add_annotation(const Sexp& key, const Sexp& value);
  void del_annotation(const Sexp& key);
  void clear_annotations();
  void copy_annotations(const Sexp_* other);

  const std::vector<std::pair<Sexp, Sexp>>* annotations() const {
    return d_annotations.get();
  }

 private:
  friend class Sexp;
  friend class SexpManager;
  static constexpr uint32_t kConsBit = 0x80000000u;

  uint32_t d_word = 0;
  uint32_t d_symbol = 0;
  SexpManager* d_manager = nullptr;
  Sexp d_car;
  Sexp d_cdr;
  std::unique_ptr<std::vector<std::pair<Sexp, Sexp>>> d_annotations;
};

struct SexpPairHash {
  size_t operator()(const std::pair<Sexp_*, Sexp_*>& p) const {
    return reinterpret_cast<size_t>(p.first) * 31
           ^ reinterpret_cast<size_t>(p.second);
  }
};

class SexpManager {
 public:
  SexpManager();
  ~SexpManager();
  SexpManager(const SexpManager&) = delete;
  SexpManager& operator=(const SexpManager&) = delete;

  const Sexp& nil() const { return d_nil; }

  // Any symbol "nil", hash-consed or not.
  bool is_nil(const Sexp& s) const { return is_nil(s.get()); }

  bool is_nil(const Sexp_* s) const {
    return s != nullptr && s->is_symbol()
           && s->symbol_id() == d_nil->symbol_id();
  }

  Sexp cons(const Sexp& a, const Sexp& b);
  Sexp sym(uint32_t id);
  // The symbol of `text`, its text interned.
  Sexp make_symbol(std::string_view text);
  // Hash-consed forms: equal structure, one node.
  Sexp sh_cons(const Sexp& a, const Sexp& b);
  Sexp sh_sym(uint32_t id);

  static size_t strhash(std::string_view text);
  uint32_t intern(std::string_view text);

  // Requires: an id of intern.
  const std::string& get_symbol_value(uint32_t id) const {
    return *d_texts[id];
  }

  // Called by the handles.
  void destroy(Sexp_* node);

 private:
  Sexp_* alloc();

  std::deque<Sexp_> d_nodes;
  std::vector<Sexp_*> d_free;
  std::vector<Sexp_*> d_dying;
  bool d_destroying = false;
  std::vector<std::unique_ptr<std::string>> d_texts;
  hsh::HashMap<std::string_view, uint32_t> d_ids;
  hsh::HashMap<std::pair<Sexp_*, Sexp_*>, Sexp, SexpPairHash> d_conses;
  hsh::HashMap<uint32_t, Sexp> d_symbols;
  Sexp d_nil;
};

namespace sexp {

// Structural order: symbols by text before conses, conses by car then cdr.
// Returns: -1, 0 or 1.
int cmp(const SexpManager& m, const Sexp& a, const Sexp& b);
bool is_list(const SexpManager& m, const Sexp& s);
size_t list_length(const SexpManager& m, const Sexp& s);
// Requires: i < list_length.
Sexp list_nth(const SexpManager& m, const Sexp& s, size_t i);
// x in front of the list.
Sexp list_push(SexpManager& m, const Sexp& list, const Sexp& x);
// The list without its first element.
Sexp list_pop(const SexpManager& m, const Sexp& list);
Sexp list_reverse(SexpManager& m, const Sexp& list);
// The reverse of a in front of b.
Sexp list_revappend(SexpManager& m, const Sexp& a, const Sexp& b);
Sexp list_append(SexpManager& m, const Sexp& a, const Sexp& b);
// The elements of a list, in order.
std::vector<Sexp> list_elements(const SexpManager& m, const Sexp& list);

// Association lists: lists of (key . value) conses.
bool is_assoc(const SexpManager& m, const Sexp& s);
// Returns: the value of the first pair with that key, or a null handle.
Sexp find_assoc(const SexpManager& m, const Sexp& alist, const Sexp& key);
Sexp add_assoc(SexpManager& m,
               const Sexp& alist,
               const Sexp& key,
               const Sexp& value);
Sexp del_assoc(SexpManager& m, const Sexp& alist, const Sexp& key);

// A copy of the structure with fresh nodes (annotations copied too).
Sexp copy(SexpManager& m, const Sexp& s);
// Text of a tree: lists as (a b c), dotted tails as (a . b).
std::string to_string(const SexpManager& m, const Sexp& s);
// Reads one S-expression (see SexpParser); nil for an empty text.
Sexp from_string(SexpManager& m, const std::string& text, bool hash_consed);

}  // namespace sexp

// Matches patterns against trees, binding pattern variables (symbols
// declared with add_var) to subtrees; a variable met twice must meet equal
// subtrees.
class SexpMatcher {
 public:
  SexpMatcher(SexpManager& m, const std::vector<Sexp>& variables);

  void add_var(const Sexp& var);
  // Returns: whether `expr` matches `pattern`; on success the bindings are
  // set, on failure those of this match are dropped.
  bool match(const Sexp& pattern, const Sexp& expr);
  // Returns: the binding of a variable, or a null handle.
  Sexp get(const Sexp& var) const;
  void put(const Sexp& var, const Sexp& value);
  void erase(const Sexp& var);

 private:
  bool is_var(const Sexp& s) const;

  SexpManager& d_m;
  std::vector<Sexp> d_vars;
  std::vector<std::pair<Sexp, Sexp>> d_bindings;
};

// Reads S-expressions: empty input, or one expression, which is a symbol,
// a list ( e... ), a dotted pair ( e . e ), or an annotated expression
// ( ! e :key value ... ). Symbols are runs of characters other than blanks,
// parentheses and ';', or |quoted|, or "strings" (kept with their quotes).
class SexpParser {
 public:
  ZENLO_DECLARE_ERROR;

  SexpParser(SexpManager& m, bool hash_consed = false)
      : d_m(m), d_hash_consed(hash_consed) {}

  // Throws: error on bad text.
  Sexp parse(const std::string& text);

 private:
  SexpManager& d_m;
  bool d_hash_consed;
};

}  // namespace zenlo

#endif
