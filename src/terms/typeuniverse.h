// Types and the universe that owns them. A type is either simple (a name)
// or compound (a list of component types); both are hash-consed, so two
// types are the same exactly when their pointers are equal, and every test
// above this layer is a pointer comparison.
//
// The universe knows nothing of what a compound means: function, array,
// bit-vector and floating-point types are conventions of the TermManager
// (a marker type in component 0). Only the special application type, the
// first component of every function type, is made here. Subtyping is a
// forest of single-parent edges set by set_subtype, extended
// component-wise to compound types.
#ifndef ZENLO_TERMS_TYPEUNIVERSE_H
#define ZENLO_TERMS_TYPEUNIVERSE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/exception.h"
#include "terms/hashtable.h"

namespace zenlo {

class Type {
 public:
  uint64_t get_id() const { return d_id; }

  bool is_simple() const { return d_components.empty(); }

  // Requires: a simple type; throws TypeUniverse::error otherwise.
  const std::string& get_name() const;

  size_t get_num_components() const { return d_components.size(); }

  // Throws TypeUniverse::error for a simple type or an index past the end.
  const Type* get_component(size_t i) const;

  const std::vector<const Type*>& get_components() const {
    return d_components;
  }

  // A simple type prints by name ("T(id)" when unnamed), a compound one as
  // "<" followed by each component and ", ", then ">".
  std::string to_str() const;

 private:
  friend class TypeUniverse;

  Type(uint64_t id, std::string name, std::vector<const Type*> components)
      : d_id(id),
        d_name(std::move(name)),
        d_components(std::move(components)) {}

  uint64_t d_id;
  std::string d_name;
  std::vector<const Type*> d_components;
};

namespace hsh {
template <>
struct Hash<const Type*> {
  size_t operator()(const Type* t) const { return t->get_id(); }
};
}  // namespace hsh

using TypeSet = hsh::HashSet<const Type*>;

class TypeUniverse {
 public:
  ZENLO_DECLARE_ERROR;

  TypeUniverse();
  ~TypeUniverse();
  TypeUniverse(const TypeUniverse&) = delete;
  TypeUniverse& operator=(const TypeUniverse&) = delete;

  // Returns: the simple type of that name, made on first use.
  const Type* make_type(std::string_view name);
  // Returns: the compound type with these components, made on first use.
  // Requires: a non-empty list.
  const Type* make_type(const std::vector<const Type*>& components);

  // Returns: the simple type of that name, or null.
  const Type* find_type(std::string_view name) const;

  const Type* get_application_type() const { return d_app_type; }

  // Returns: whether a can stand where b is expected: equal, b reachable
  // from a by the parent chain, or both compound with equally many
  // components and each component of a a subtype of b's.
  bool is_subtype(const Type* a, const Type* b) const;

  // Makes `sub` a subtype of `super`.
  // Requires: sub has no parent yet, no cycle arises, neither is the
  // application type; throws error otherwise.
  void set_subtype(const Type* super, const Type* sub);

  // Returns: the parent of t, or null.
  const Type* get_parent(const Type* t) const;

  // Deletes t (and forgets it in every table).
  void remove_type(const Type* t);

  // After: every type not in `kept` is deleted; the application type is
  // always kept.
  void gc(const TypeSet& kept);

  size_t size() const { return d_all.size(); }

 private:
  struct ComponentsHash {
    size_t operator()(const std::vector<const Type*>& c) const;
  };

  void forget(const Type* t);

  uint64_t d_next_id = 1;
  const Type* d_app_type;
  hsh::HashMap<std::string_view, Type*> d_simple;
  hsh::HashMap<std::vector<const Type*>, Type*, ComponentsHash> d_compound;
  hsh::HashMap<const Type*, const Type*> d_parent;
  hsh::HashSet<const Type*> d_all;
};

}  // namespace zenlo

#endif
