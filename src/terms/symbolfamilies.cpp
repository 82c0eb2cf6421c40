#include "terms/symbolfamilies.h"

namespace zenlo {

size_t FamilyKeyHash::operator()(const FamilyKey& k) const {
  size_t h = k.t1 == nullptr ? 0 : k.t1->get_id();
  h ^= (h >> 2) + (h << 6) + (k.t2 == nullptr ? 0 : k.t2->get_id());
  for (size_t x : k.n) {
    h ^= (h >> 2) + (h << 6) + x;
  }
  return h;
}

SymbolFamilies::SymbolFamilies() : d_by_key(SymbolTag::num_tags) {}

SymbolFamilies::~SymbolFamilies() = default;

SymbolTag::tag SymbolFamilies::tag_of(const Symbol* s) {
  return s->d_tag;
}

const Symbol* SymbolFamilies::make_family_symbol(SymbolTag::tag tag,
                                                 const FamilyKey& key) {
  auto& memo = d_by_key[tag];
  if (const Symbol* const* s = memo.get(key)) {
    return *s;
  }
  const Symbol* s = create_family_symbol(tag, key);
  memo.insert(key, s);
  d_key_of.insert(s, key);
  return s;
}

const Symbol* SymbolFamilies::typed(SymbolTag::tag tag,
                                    const Type* t1,
                                    const Type* t2) {
  FamilyKey key;
  key.t1 = t1;
  key.t2 = t2;
  return make_family_symbol(tag, key);
}

const Symbol* SymbolFamilies::numbered(
    SymbolTag::tag tag, size_t a, size_t b, size_t c, size_t d) {
  FamilyKey key;
  key.n[0] = a;
  key.n[1] = b;
  key.n[2] = c;
  key.n[3] = d;
  return make_family_symbol(tag, key);
}

const FamilyKey* SymbolFamilies::get_family_key(const Symbol* s) const {
  return d_key_of.get(s);
}

bool SymbolFamilies::family_types(const Symbol* s,
                                  SymbolTag::tag tag,
                                  const Type** t1,
                                  const Type** t2) const {
  if (tag_of(s) != tag) {
    return false;
  }
  const FamilyKey* k = d_key_of.get(s);
  if (t1 != nullptr) {
    *t1 = k->t1;
  }
  if (t2 != nullptr) {
    *t2 = k->t2;
  }
  return true;
}

bool SymbolFamilies::family_nums(const Symbol* s,
                                 SymbolTag::tag tag,
                                 size_t* a,
                                 size_t* b,
                                 size_t* c,
                                 size_t* d) const {
  if (tag_of(s) != tag) {
    return false;
  }
  const FamilyKey* k = d_key_of.get(s);
  size_t* out[4] = {a, b, c, d};
  for (int i = 0; i < 4; ++i) {
    if (out[i] != nullptr) {
      *out[i] = k->n[i];
    }
  }
  return true;
}

const Symbol* SymbolFamilies::make_int_mod_congr_symbol(
    const QNumber& modulus) {
  if (const Symbol* const* s = d_congr_by_modulus.get(modulus)) {
    return *s;
  }
  const Symbol* s = create_congruence_symbol(modulus);
  d_congr_by_modulus.insert(modulus, s);
  d_congr_modulus.insert(s, modulus);
  return s;
}

bool SymbolFamilies::is_int_mod_congr(const Symbol* s, QNumber* modulus) const {
  if (tag_of(s) != SymbolTag::INT_MOD_CONGR) {
    return false;
  }
  if (modulus != nullptr) {
    *modulus = *d_congr_modulus.get(s);
  }
  return true;
}

void SymbolFamilies::gc_families(const SymbolSet& kept) {
  auto dead = [&](const Symbol* s) { return !kept.contains(s); };
  for (auto& memo : d_by_key) {
    memo.erase_if([&](const auto& e) { return dead(e.second); });
  }
  d_key_of.erase_if([&](const auto& e) { return dead(e.first); });
  d_congr_by_modulus.erase_if([&](const auto& e) { return dead(e.second); });
  d_congr_modulus.erase_if([&](const auto& e) { return dead(e.first); });
}

}  // namespace zenlo
