#include "terms/signature.h"

#include <algorithm>

namespace zenlo {

Symbol::Symbol(uint64_t id,
               std::string name,
               const Type* type,
               size_t arity,
               const Type* output_type)
    : d_id(id),
      d_name(std::move(name)),
      d_arity(arity),
      d_type(type),
      d_output_type(output_type) {}

Signature::Signature(const Type* application_type)
    : d_app_type(application_type) {}

Signature::~Signature() {
  gc_removed();
  for (auto& e : d_live) {
    delete e.second;
  }
}

size_t Signature::compute_arity(const Type* t, const Type* application_type) {
  if (t->is_simple() || t->get_components()[0] != application_type) {
    return 0;
  }
  return t->get_num_components() - 2;
}

const Symbol* Signature::add_symbol(std::string_view name, const Type* type) {
  if (Symbol* const* found = d_live.get(name)) {
    if ((*found)->d_type != type) {
      throw error("A symbol with name `" + std::string(name)
                  + "' already exists, with type: "
                  + (*found)->d_type->to_str());
    }
    return *found;
  }
  size_t arity = compute_arity(type, d_app_type);
  if (Symbol* const* old = d_removed.get(name)) {
    Symbol* s = *old;
    d_removed.erase(name);
    if (s->d_type == type && s->d_arity == arity) {
      d_live.insert(std::string_view(s->d_name), s);
      return s;
    }
    d_to_free.push_back(s);
  }
  bool function = !type->is_simple() && type->get_components()[0] == d_app_type;
  const Type* out = function ? type->get_components().back() : type;
  Symbol* s = new Symbol(d_next_id++, std::string(name), type, arity, out);
  d_live.insert(std::string_view(s->d_name), s);
  return s;
}

void Signature::remove_symbol(std::string_view name) {
  Symbol* const* found = d_live.get(name);
  if (found == nullptr) {
    throw error("No symbol with name `" + std::string(name) + "' is present");
  }
  Symbol* s = *found;
  d_live.erase(name);
  if (Symbol* const* older = d_removed.get(name)) {
    d_to_free.push_back(*older);
    d_removed.erase(name);
  }
  d_removed.insert(std::string_view(s->d_name), s);
}

void Signature::gc_removed() {
  for (auto& e : d_removed) {
    delete e.second;
  }
  d_removed.clear();
  for (Symbol* s : d_to_free) {
    delete s;
  }
  d_to_free.clear();
}

void Signature::gc(const SymbolSet& kept) {
  gc_removed();
  uint64_t max_id = 0;
  std::vector<Symbol*> dropped;
  for (auto& e : d_live) {
    if (!kept.contains(e.second)) {
      dropped.push_back(e.second);
    }
    max_id = std::max(max_id, e.second->d_id);
  }
  for (Symbol* s : dropped) {
    d_live.erase(std::string_view(s->d_name));
    d_removed.insert(std::string_view(s->d_name), s);
  }
  // Removed symbols may come back with their old id, so the counter must
  // stay above them as well as above the survivors.
  d_next_id = max_id + 1;
}

}  // namespace zenlo
