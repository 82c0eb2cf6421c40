#include "terms/termcopier.h"

#include <vector>

#include "terms/termvisitor.h"
#include "terms/typecheckscope.h"

namespace zenlo {

namespace {

class TermCopyCallback : public TermVisitorCallback {
 public:
  explicit TermCopyCallback(TermCopier& copier) : d_copier(copier) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (preorder) {
      return d_copier.image(t) != nullptr ? VisitResult::Skip
                                          : VisitResult::Process;
    }
    if (d_copier.image(t) == nullptr) {
      d_copier.rebuild(t);
    }
    return VisitResult::Process;
  }

 private:
  TermCopier& d_copier;
};

}  // namespace

const Term_* TermCopier::copy_term(const Term_* t) {
  if (const Term_* done = image(t)) {
    return done;
  }
  TypecheckScope unchecked(d_to, false);
  TermCopyCallback cb(*this);
  TermVisitor<TermCopyCallback> visitor(d_from, cb);
  visitor.visit(t);
  return image(t);
}

void TermCopier::rebuild(const Term_* t) {
  const Symbol* s = copy_symbol(t->get_symbol());
  d_args.clear();
  for (const Term_* c : *t) {
    d_args.push_back(image(c));
  }
  d_terms.insert(t, d_to.make_term(s, d_args));
}

const Type* TermCopier::copy_type(const Type* t) {
  if (const Type* const* done = d_types.get(t)) {
    return *done;
  }
  const Type* r = copy_type_uncached(t);
  d_types.insert(t, r);
  return r;
}

const Type* TermCopier::copy_type_uncached(const Type* t) {
  TermManager& f = d_from;
  if (t == f.d_bool_type)
    return d_to.d_bool_type;
  if (t == f.d_real_type)
    return d_to.d_real_type;
  if (t == f.d_int_type)
    return d_to.d_int_type;
  if (t == f.d_fprounding_type)
    return d_to.d_fprounding_type;
  if (t == f.d_universe.get_application_type()) {
    return d_to.d_universe.get_application_type();
  }
  size_t w = 0, e = 0, m = 0;
  if (f.is_bv_type(t, &w)) {
    return d_to.get_bv_type(w);
  }
  if (f.is_fp_type(t, &e, &m)) {
    return d_to.get_fp_type(e, m);
  }
  if (const std::vector<const Symbol*>* values = f.get_enum_values(t)) {
    std::vector<std::string> names;
    for (const Symbol* v : *values) {
      names.push_back(v->get_name());
    }
    return d_to.get_enum_type(t->get_name(), names);
  }
  if (t->is_simple()) {
    return d_to.d_universe.make_type(t->get_name());
  }
  // Markers ("Array", "BitVec", ...) are simple types found by name, so
  // component-wise copying rebuilds every other compound faithfully.
  std::vector<const Type*> components;
  for (const Type* c : t->get_components()) {
    components.push_back(copy_type(c));
  }
  return d_to.d_universe.make_type(components);
}

const Symbol* TermCopier::copy_symbol(const Symbol* s) {
  if (const Symbol* const* done = d_symbols.get(s)) {
    return *done;
  }
  const Symbol* r = copy_symbol_uncached(s);
  d_symbols.insert(s, r);
  return r;
}

const Symbol* TermCopier::copy_number(const Symbol* s, const QNumber& value) {
  size_t w = 0, e = 0, m = 0;
  const Type* t = s->get_type();
  if (d_from.is_bv_type(t, &w)) {
    return d_to.make_bv_number(value, w)->get_symbol();
  }
  if (d_from.is_fp_type(t, &e, &m)) {
    return d_to.make_fp_bits_number(value, e, m)->get_symbol();
  }
  return d_to.make_number(value)->get_symbol();
}

const Symbol* TermCopier::copy_symbol_uncached(const Symbol* s) {
  const std::vector<const Symbol*>& std_from = d_from.d_standard;
  for (size_t i = 0; i < std_from.size(); ++i) {
    if (std_from[i] == s) {
      return d_to.d_standard[i];
    }
  }
  SymbolTag::tag tag = d_from.get_tag(s);
  QNumber value;
  if (tag == SymbolTag::INT_MOD_CONGR) {
    d_from.is_int_mod_congr(s, &value);
    return d_to.make_int_mod_congr_symbol(value);
  }
  if (const FamilyKey* key = d_from.get_family_key(s)) {
    FamilyKey k = *key;
    k.t1 = k.t1 == nullptr ? nullptr : copy_type(k.t1);
    k.t2 = k.t2 == nullptr ? nullptr : copy_type(k.t2);
    return d_to.make_family_symbol(tag, k);
  }
  if (d_from.is_number(s, &value)) {
    return copy_number(s, value);
  }
  const Type* type = copy_type(s->get_type());
  if (d_from.is_enum_value(s)) {
    return d_to.find_symbol(s->get_name());
  }
  // User symbols and bound variables keep their stored names.
  return d_to.d_signature.add_symbol(s->get_name(), type);
}

// ----------------------------------------------------------------------
// The TermManager side
// ----------------------------------------------------------------------

const Term_* TermManager::copy_term(TermManager& from, const Term_* term) {
  if (&from == this) {
    return term;
  }
  TermCopier copier(from, *this);
  return copier.copy_term(term);
}

const Term_* TermManager::copy_term_with_subst(TermManager& from,
                                               const Term_* term,
                                               const TermMap& subst) {
  TermCopier copier(from, *this);
  for (const auto& kv : subst) {
    copier.seed(kv.first, kv.second);
  }
  if (&from == this) {
    return substitute(term, subst, false);
  }
  return copier.copy_term(term);
}

void TermManager::copy_terms(TermManager& from,
                             const TermList& terms,
                             TermList& out) {
  out.clear();
  if (&from == this) {
    out = terms;
    return;
  }
  TermCopier copier(from, *this);
  for (const Term_* t : terms) {
    out.push_back(copier.copy_term(t));
  }
}

void TermManager::copy_types(TermManager& from,
                             const std::vector<const Type*>& types,
                             std::vector<const Type*>& out) {
  out.clear();
  TermCopier copier(from, *this);
  for (const Type* t : types) {
    out.push_back(&from == this ? t : copier.copy_type(t));
  }
}

void TermManager::copy_symbols(TermManager& from,
                               const std::vector<const Symbol*>& symbols,
                               std::vector<const Symbol*>& out) {
  out.clear();
  TermCopier copier(from, *this);
  for (const Symbol* s : symbols) {
    out.push_back(&from == this ? s : copier.copy_symbol(s));
  }
}

}  // namespace zenlo
