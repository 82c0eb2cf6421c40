// Symbols (declarations) and the signature that owns them. A symbol is a
// name with a type; its arity follows from the type. The signature
// hash-conses by name: one name, one symbol, for the whole store.
//
// Symbols outlive a collection by one round: a symbol that no root keeps
// moves to a table of removed symbols and is freed only at the next
// collection. Declaring the same name again with the same type in between
// revives the very object, so handles that callers kept across a collection
// stay valid as long as they are used again before the next one.
//
// The first character of a stored name classifies it (the backtick for
// interpreted symbols, the single quote for bound variables); that
// convention belongs to the TermManager, which is the only writer here.
#ifndef ZENLO_TERMS_SIGNATURE_H
#define ZENLO_TERMS_SIGNATURE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/exception.h"
#include "terms/hashtable.h"
#include "terms/symboltag.h"
#include "terms/typeuniverse.h"

namespace zenlo {

class Symbol {
 public:
  uint64_t get_id() const { return d_id; }

  const std::string& get_name() const { return d_name; }

  size_t get_arity() const { return d_arity; }

  const Type* get_type() const { return d_type; }

  // Returns: the result type: the last component of a function type, the
  // type itself for a constant.
  const Type* get_output_type() const { return d_output_type; }

  // Returns: the type of argument i. Requires: i < arity.
  const Type* get_arg_type(size_t i) const {
    return d_type->get_components()[i + 1];
  }

 private:
  friend class Signature;
  friend class SymbolFamilies;
  friend class TermManager;

  Symbol(uint64_t id,
         std::string name,
         const Type* type,
         size_t arity,
         const Type* output_type);

  uint64_t d_id;
  std::string d_name;
  size_t d_arity;
  const Type* d_type;
  const Type* d_output_type;
  // Kept with the symbol rather than in a side table: every layer asks for
  // it all the time, and a symbol's tag never changes.
  SymbolTag::tag d_tag = SymbolTag::UNKNOWN;
};

namespace hsh {
template <>
struct Hash<const Symbol*> {
  size_t operator()(const Symbol* s) const { return s->get_id(); }
};
}  // namespace hsh

using SymbolSet = hsh::HashSet<const Symbol*>;

class Signature {
  using Table = hsh::HashMap<std::string_view, Symbol*>;

 public:
  ZENLO_DECLARE_ERROR;

  using const_iterator = Table::const_iterator;

  explicit Signature(const Type* application_type);
  ~Signature();
  Signature(const Signature&) = delete;
  Signature& operator=(const Signature&) = delete;

  // Returns: the symbol of that name, made on first use, revived when it
  // was removed by the last collection with the same type.
  // Throws: error when the name exists with another type.
  const Symbol* add_symbol(std::string_view name, const Type* type);

  // Returns: the live symbol of that name, or null.
  const Symbol* get_symbol(std::string_view name) const {
    Symbol* const* s = d_live.get(name);
    return s == nullptr ? nullptr : *s;
  }

  // Moves the symbol to the removed ones; it is freed by the next
  // collection. Throws: error when no such symbol is live.
  void remove_symbol(std::string_view name);

  // Iteration over the live symbols: elements are (name, symbol) pairs.
  const_iterator begin() const { return d_live.begin(); }

  const_iterator end() const { return d_live.end(); }

  size_t size() const { return d_live.size(); }

  // Frees the symbols removed by the previous collection, then moves every
  // live symbol that is not kept to the removed ones.
  void gc(const SymbolSet& kept);

  // Frees the removed symbols.
  void gc_removed();

  // Returns: the number of argument types of a function type, 0 for any
  // other type.
  static size_t compute_arity(const Type* t, const Type* application_type);

 private:
  const Type* d_app_type;
  uint64_t d_next_id = 1;
  Table d_live;
  Table d_removed;
  // Removed symbols displaced by a declaration of another type.
  std::vector<Symbol*> d_to_free;
};

}  // namespace zenlo

#endif
