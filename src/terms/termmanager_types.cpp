// The type constructors and tests of the term store. The universe only
// hash-conses; the meaning of compound types (functions, arrays,
// bit-vectors, floats) and the rules on what may be built live here.
#include <string>

#include "terms/termmanager.h"

namespace zenlo {

void TermManager::make_base_types() {
  d_bool_type = d_universe.make_type("Bool");
  d_real_type = d_universe.make_type("Real");
  d_int_type = d_universe.make_type("Int");
  d_array_marker = d_universe.make_type("Array");
  d_bv_marker = d_universe.make_type("BitVec");
  d_fprounding_type = d_universe.make_type("FPRounding");
  d_fp_marker = d_universe.make_type("FP");
  d_universe.set_subtype(d_real_type, d_int_type);
}

const Type* TermManager::function_type_unchecked(
    const std::vector<const Type*>& args, const Type* ret) {
  if (args.empty()) {
    return ret;
  }
  std::vector<const Type*> components;
  components.reserve(args.size() + 2);
  components.push_back(d_universe.get_application_type());
  components.insert(components.end(), args.begin(), args.end());
  components.push_back(ret);
  return d_universe.make_type(components);
}

const Type* TermManager::get_simple_type(std::string_view name,
                                         bool only_lookup) {
  if (only_lookup) {
    return d_universe.find_type(name);
  }
  if (name.empty()) {
    throw error("Empty name for type");
  }
  return d_universe.make_type(name);
}

const Type* TermManager::get_bv_type(size_t width) {
  if (const Type* const* t = d_bv_types.get(width)) {
    return *t;
  }
  if (width == 0) {
    throw error("bit-vector types need a positive width");
  }
  const Type* w = d_universe.make_type(std::to_string(width));
  const Type* t = d_universe.make_type({d_bv_marker, w});
  d_bv_types.insert(width, t);
  d_bv_widths.insert(w, width);
  return t;
}

const Type* TermManager::get_fp_type(size_t exp_w, size_t mant_w) {
  FamilyKey key;
  key.n[0] = exp_w;
  key.n[1] = mant_w;
  if (const Type* const* t = d_fp_types.get(key)) {
    return *t;
  }
  if (d_typecheck && (exp_w < 2 || mant_w < 2)) {
    throw error("too small exponent and/or mantissa width for FP numbers: "
                + std::to_string(exp_w) + ", " + std::to_string(mant_w)
                + " (min is 2, 2)");
  }
  const Type* f = d_universe.make_type(std::to_string(exp_w) + ":"
                                       + std::to_string(mant_w));
  const Type* t = d_universe.make_type({d_fp_marker, f});
  d_fp_types.insert(key, t);
  d_fp_formats.insert(f, std::make_pair(exp_w, mant_w));
  return t;
}

const Type* TermManager::get_array_type(const Type* index,
                                        const Type* element) {
  if (d_forbid_bool_args && (index == d_bool_type || element == d_bool_type)) {
    throw error("Arrays with Bool as argument are not supported");
  }
  if (is_function_type(index) || is_function_type(element)) {
    throw error("Arrays with functions as arguments are not supported");
  }
  return d_universe.make_type({d_array_marker, index, element});
}

const Type* TermManager::get_function_type(const std::vector<const Type*>& args,
                                           const Type* ret) {
  for (const Type* a : args) {
    if (is_function_type(a)) {
      throw error("Higher-order functions not supported");
    }
    if (d_forbid_bool_args && a == d_bool_type) {
      throw error("Functions with Bool arguments not supported");
    }
  }
  if (is_function_type(ret)) {
    throw error("Higher-order functions not supported");
  }
  return function_type_unchecked(args, ret);
}

const Type* TermManager::get_compound_type(
    const std::vector<const Type*>& components) {
  if (components.empty()) {
    throw error("compound types need at least one component");
  }
  for (const Type* c : components) {
    if (is_function_type(c) || (d_forbid_bool_args && c == d_bool_type)) {
      throw error("Higher-order compound types not supported");
    }
  }
  return d_universe.make_type(components);
}

const Type* TermManager::get_enum_type(std::string_view name,
                                       const std::vector<std::string>& values) {
  if (const Type* old = d_universe.find_type(name)) {
    const std::vector<const Symbol*>* known = get_enum_values(old);
    if (known == nullptr) {
      throw error("type `" + std::string(name) + "' already declared");
    }
    bool same = known->size() == values.size();
    for (size_t i = 0; same && i < values.size(); ++i) {
      same = (*known)[i]->get_name() == values[i];
    }
    if (!same) {
      throw error("enum type `" + std::string(name)
                  + "' already declared, but with different domain");
    }
    return old;
  }
  if (name.empty() || values.empty()) {
    throw error("enum type `" + std::string(name)
                + "' needs a name and values");
  }
  // Check everything before making anything, so a failure leaves the
  // store as it was.
  for (size_t i = 0; i < values.size(); ++i) {
    bool repeated = false;
    for (size_t j = 0; j < i; ++j) {
      repeated = repeated || values[j] == values[i];
    }
    if (repeated || values[i].empty() || values[i][0] == '`'
        || values[i][0] == '\'' || find_symbol(values[i]) != nullptr) {
      throw error("symbol `" + values[i] + "' already declared");
    }
  }
  const Type* t = d_universe.make_type(name);
  std::vector<const Symbol*> symbols;
  for (const std::string& v : values) {
    const Symbol* s = d_signature.add_symbol(v, t);
    symbols.push_back(s);
    d_enum_of_value.insert(s, t);
  }
  d_enum_values.insert(t, std::move(symbols));
  return t;
}

const Type* TermManager::get_supertype(const Type* a, const Type* b) const {
  if (is_subtype(a, b)) {
    return b;
  }
  if (is_subtype(b, a)) {
    return a;
  }
  throw error("unrelated types: " + a->to_str() + " and " + b->to_str());
}

bool TermManager::is_bv_type(const Type* t, size_t* width) const {
  if (t->get_num_components() != 2 || t->get_components()[0] != d_bv_marker) {
    return false;
  }
  const size_t* w = d_bv_widths.get(t->get_components()[1]);
  if (w != nullptr && width != nullptr) {
    *width = *w;
  }
  return w != nullptr;
}

bool TermManager::is_fp_type(const Type* t,
                             size_t* exp_w,
                             size_t* mant_w) const {
  if (t->get_num_components() != 2 || t->get_components()[0] != d_fp_marker) {
    return false;
  }
  const std::pair<size_t, size_t>* f = d_fp_formats.get(t->get_components()[1]);
  if (f == nullptr) {
    return false;
  }
  if (exp_w != nullptr) {
    *exp_w = f->first;
  }
  if (mant_w != nullptr) {
    *mant_w = f->second;
  }
  return true;
}

bool TermManager::is_array_type(const Type* t,
                                const Type** index,
                                const Type** element) const {
  if (t->get_num_components() != 3
      || t->get_components()[0] != d_array_marker) {
    return false;
  }
  if (index != nullptr) {
    *index = t->get_components()[1];
  }
  if (element != nullptr) {
    *element = t->get_components()[2];
  }
  return true;
}

bool TermManager::is_function_type(const Type* t) const {
  return !t->is_simple()
         && t->get_components()[0] == d_universe.get_application_type();
}

bool TermManager::is_enum_type(const Type* t) const {
  return get_enum_values(t) != nullptr;
}

const std::vector<const Symbol*>* TermManager::get_enum_values(
    const Type* t) const {
  return d_enum_values.empty() ? nullptr : d_enum_values.get(t);
}

bool TermManager::is_finite_domain_type(const Type* t,
                                        QNumber* cardinality) const {
  size_t w = 0, e = 0, m = 0;
  QNumber n;
  if (t == d_bool_type) {
    n = 2;
  } else if (t == d_fprounding_type) {
    n = 4;
  } else if (is_bv_type(t, &w)) {
    n = BVNumber::pow2(w);
  } else if (is_fp_type(t, &e, &m)) {
    n = BVNumber::pow2(e + m + 1);
  } else if (const std::vector<const Symbol*>* v = get_enum_values(t)) {
    n = static_cast<long>(v->size());
  } else {
    return false;
  }
  if (cardinality != nullptr) {
    *cardinality = n;
  }
  return true;
}

}  // namespace zenlo
