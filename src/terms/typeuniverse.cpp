#include "terms/typeuniverse.h"

#include <vector>

namespace zenlo {

const std::string& Type::get_name() const {
  if (!is_simple()) {
    throw TypeUniverse::error("Not a simple type!");
  }
  return d_name;
}

const Type* Type::get_component(size_t i) const {
  if (is_simple()) {
    throw TypeUniverse::error(to_str() + " is a simple type");
  }
  if (i >= d_components.size()) {
    throw TypeUniverse::error(to_str() + " has not enough components");
  }
  return d_components[i];
}

std::string Type::to_str() const {
  if (is_simple()) {
    return d_name.empty() ? "T(" + std::to_string(d_id) + ")" : d_name;
  }
  // Components nest only as deep as the user wrote the type, so plain
  // recursion is safe here.
  std::string s = "<";
  for (const Type* c : d_components) {
    s += c->to_str();
    s += ", ";
  }
  s += ">";
  return s;
}

size_t TypeUniverse::ComponentsHash::operator()(
    const std::vector<const Type*>& c) const {
  size_t h = 0;
  for (const Type* t : c) {
    h ^= (h >> 2) + (h << 6) + t->get_id();
  }
  return h;
}

TypeUniverse::TypeUniverse() {
  // The application type has no name and is kept out of the name table,
  // so no user sort can ever be confused with it.
  Type* app = new Type(d_next_id++, std::string(), {});
  d_all.insert(app);
  d_app_type = app;
}

TypeUniverse::~TypeUniverse() {
  for (const Type* t : d_all) {
    delete t;
  }
}

const Type* TypeUniverse::make_type(std::string_view name) {
  if (Type* const* t = d_simple.get(name)) {
    return *t;
  }
  Type* t = new Type(d_next_id++, std::string(name), {});
  d_simple.insert(std::string_view(t->d_name), t);
  d_all.insert(t);
  return t;
}

const Type* TypeUniverse::make_type(
    const std::vector<const Type*>& components) {
  if (Type* const* t = d_compound.get(components)) {
    return *t;
  }
  Type* t = new Type(d_next_id++, std::string(), components);
  d_compound.insert(components, t);
  d_all.insert(t);
  return t;
}

const Type* TypeUniverse::find_type(std::string_view name) const {
  Type* const* t = d_simple.get(name);
  return t == nullptr ? nullptr : *t;
}

bool TypeUniverse::is_subtype(const Type* a, const Type* b) const {
  if (a == b) {
    return true;
  }
  for (const Type* p = get_parent(a); p != nullptr; p = get_parent(p)) {
    if (p == b) {
      return true;
    }
  }
  size_t n = a->get_num_components();
  if (n == 0 || n != b->get_num_components()) {
    return false;
  }
  for (size_t i = 0; i < n; ++i) {
    if (!is_subtype(a->d_components[i], b->d_components[i])) {
      return false;
    }
  }
  return true;
}

void TypeUniverse::set_subtype(const Type* super, const Type* sub) {
  if (super == d_app_type || sub == d_app_type) {
    throw error(
        "the special application type can't occur in the subtype relation");
  }
  if (get_parent(sub) != nullptr) {
    throw error(sub->to_str() + " is already a subtype of another type");
  }
  if (is_subtype(super, sub)) {
    throw error(super->to_str() + " is a subtype of " + sub->to_str());
  }
  d_parent.insert(sub, super);
}

const Type* TypeUniverse::get_parent(const Type* t) const {
  if (d_parent.empty()) {
    return nullptr;
  }
  const Type* const* p = d_parent.get(t);
  return p == nullptr ? nullptr : *p;
}

void TypeUniverse::forget(const Type* t) {
  if (t->is_simple()) {
    d_simple.erase(std::string_view(t->d_name));
  } else {
    d_compound.erase(t->d_components);
  }
  d_parent.erase(t);
  d_parent.erase_if([t](const std::pair<const Type*, const Type*>& e) {
    return e.second == t;
  });
}

void TypeUniverse::remove_type(const Type* t) {
  if (t == d_app_type || !d_all.contains(t)) {
    return;
  }
  forget(t);
  d_all.erase(t);
  delete t;
}

void TypeUniverse::gc(const TypeSet& kept) {
  std::vector<const Type*> dead;
  for (const Type* t : d_all) {
    if (t != d_app_type && !kept.contains(t)) {
      dead.push_back(t);
    }
  }
  for (const Type* t : dead) {
    if (t->is_simple()) {
      d_simple.erase(std::string_view(t->d_name));
    } else {
      d_compound.erase(t->d_components);
    }
    d_all.erase(t);
  }
  // Parent edges go with either end; done in one sweep, not per type.
  d_parent.erase_if([&](const std::pair<const Type*, const Type*>& e) {
    return !d_all.contains(e.first) || !d_all.contains(e.second);
  });
  for (const Type* t : dead) {
    delete t;
  }
}

}  // namespace zenlo
