// The parametric symbols of the term store: equality over a type, the
// bit-vector operations of a width, the floating-point operations of a
// format, and the other families whose members are made on first use.
// Each family has a maker (make_bv_add_symbol(w)) and a test
// (is_bv_add(symbol, &w)); both go through one memo per family, kept in
// both directions, so a test answers with the parameters in one probe.
//
// This class only memoises. What a family member is called and what its
// type is are the TermManager's business (create_family_symbol), since
// they need the store's types and signature. TermManager derives from it,
// so every maker and test is called on the TermManager.
#ifndef ZENLO_TERMS_SYMBOLFAMILIES_H
#define ZENLO_TERMS_SYMBOLFAMILIES_H

#include <cstddef>
#include <vector>

#include "terms/hashtable.h"
#include "terms/numbers.h"
#include "terms/signature.h"
#include "terms/symboltag.h"
#include "terms/typeuniverse.h"

namespace zenlo {

// The parameters of a parametric symbol: up to two types and four numbers,
// in the order of the family's name.
struct FamilyKey {
  const Type* t1 = nullptr;
  const Type* t2 = nullptr;
  size_t n[4] = {0, 0, 0, 0};

  bool operator==(const FamilyKey& o) const {
    return t1 == o.t1 && t2 == o.t2 && n[0] == o.n[0] && n[1] == o.n[1]
           && n[2] == o.n[2] && n[3] == o.n[3];
  }
};

struct FamilyKeyHash {
  size_t operator()(const FamilyKey& k) const;
};

class SymbolFamilies {
 public:
  SymbolFamilies();
  virtual ~SymbolFamilies();
  SymbolFamilies(const SymbolFamilies&) = delete;
  SymbolFamilies& operator=(const SymbolFamilies&) = delete;

  // ------------------------------------------------------------------
  // A test answers false for a symbol of another family and leaves the
  // out-parameters alone; each out-parameter may be null.
  // ------------------------------------------------------------------

  bool is_term_ite(const Symbol* s, const Type** type = nullptr) const {
    return family_type(s, SymbolTag::ITE, type);
  }

  const Symbol* make_equal_symbol(const Type* t) {
    return typed(SymbolTag::EQ, t);
  }

  const Symbol* make_term_ite_symbol(const Type* t) {
    return typed(SymbolTag::ITE, t);
  }

  const Symbol* make_forall_symbol(const Type* t) {
    return typed(SymbolTag::FORALL, t);
  }

  const Symbol* make_exists_symbol(const Type* t) {
    return typed(SymbolTag::EXISTS, t);
  }

  const Symbol* make_array_read_symbol(const Type* i, const Type* e) {
    return typed(SymbolTag::ARRAY_READ, i, e);
  }

  const Symbol* make_array_write_symbol(const Type* i, const Type* e) {
    return typed(SymbolTag::ARRAY_WRITE, i, e);
  }

  const Symbol* make_array_const_symbol(const Type* i, const Type* e) {
    return typed(SymbolTag::ARRAY_CONST, i, e);
  }

  // Any family of bit-vector operations whose only parameter is the width
  // (BV_NOT to BV_ASHR, INT_TO_BV, INT_FROM_UBV, INT_FROM_SBV).
  const Symbol* make_bv_symbol(SymbolTag::tag tag, size_t width) {
    return numbered(tag, width);
  }

  const Symbol* make_bv_not_symbol(size_t w) {
    return numbered(SymbolTag::BV_NOT, w);
  }

  const Symbol* make_bv_neg_symbol(size_t w) {
    return numbered(SymbolTag::BV_NEG, w);
  }

  const Symbol* make_bv_and_symbol(size_t w) {
    return numbered(SymbolTag::BV_AND, w);
  }

  const Symbol* make_bv_or_symbol(size_t w) {
    return numbered(SymbolTag::BV_OR, w);
  }

  const Symbol* make_bv_xor_symbol(size_t w) {
    return numbered(SymbolTag::BV_XOR, w);
  }

  const Symbol* make_bv_add_symbol(size_t w) {
    return numbered(SymbolTag::BV_ADD, w);
  }

  const Symbol* make_bv_sub_symbol(size_t w) {
    return numbered(SymbolTag::BV_SUB, w);
  }

  const Symbol* make_bv_mul_symbol(size_t w) {
    return numbered(SymbolTag::BV_MUL, w);
  }

  const Symbol* make_bv_udiv_symbol(size_t w) {
    return numbered(SymbolTag::BV_UDIV, w);
  }

  const Symbol* make_bv_sdiv_symbol(size_t w) {
    return numbered(SymbolTag::BV_SDIV, w);
  }

  const Symbol* make_bv_urem_symbol(size_t w) {
    return numbered(SymbolTag::BV_UREM, w);
  }

  const Symbol* make_bv_srem_symbol(size_t w) {
    return numbered(SymbolTag::BV_SREM, w);
  }

  const Symbol* make_bv_lshl_symbol(size_t w) {
    return numbered(SymbolTag::BV_LSHL, w);
  }

  const Symbol* make_bv_lshr_symbol(size_t w) {
    return numbered(SymbolTag::BV_LSHR, w);
  }

  const Symbol* make_bv_ashr_symbol(size_t w) {
    return numbered(SymbolTag::BV_ASHR, w);
  }

  const Symbol* make_bv_ult_symbol(size_t w) {
    return numbered(SymbolTag::BV_ULT, w);
  }

  const Symbol* make_bv_ule_symbol(size_t w) {
    return numbered(SymbolTag::BV_ULE, w);
  }

  const Symbol* make_bv_slt_symbol(size_t w) {
    return numbered(SymbolTag::BV_SLT, w);
  }

  const Symbol* make_bv_sle_symbol(size_t w) {
    return numbered(SymbolTag::BV_SLE, w);
  }

  const Symbol* make_bv_comp_symbol(size_t w) {
    return numbered(SymbolTag::BV_COMP, w);
  }

  const Symbol* make_bv_rol_symbol(size_t amount, size_t w) {
    return numbered(SymbolTag::BV_ROL, amount, w);
  }

  const Symbol* make_bv_ror_symbol(size_t amount, size_t w) {
    return numbered(SymbolTag::BV_ROR, amount, w);
  }

  const Symbol* make_bv_zext_symbol(size_t amount, size_t w) {
    return numbered(SymbolTag::BV_ZEXT, amount, w);
  }

  const Symbol* make_bv_sext_symbol(size_t amount, size_t w) {
    return numbered(SymbolTag::BV_SEXT, amount, w);
  }

  const Symbol* make_bv_concat_symbol(size_t w1, size_t w2) {
    return numbered(SymbolTag::BV_CONCAT, w1, w2);
  }

  const Symbol* make_bv_extract_symbol(size_t msb, size_t lsb, size_t w) {
    return numbered(SymbolTag::BV_EXTRACT, msb, lsb, w);
  }

  const Symbol* make_int_to_bv_symbol(size_t w) {
    return numbered(SymbolTag::INT_TO_BV, w);
  }

  const Symbol* make_int_from_ubv_symbol(size_t w) {
    return numbered(SymbolTag::INT_FROM_UBV, w);
  }

  const Symbol* make_int_from_sbv_symbol(size_t w) {
    return numbered(SymbolTag::INT_FROM_SBV, w);
  }

  // Any family of floating-point operations whose only parameter is the
  // format (FP_EQ to FP_ISPOS except the conversions, FP_AS_IEEEBV,
  // FP_FROM_IEEEBV).
  const Symbol* make_fp_symbol(SymbolTag::tag tag, size_t e, size_t m) {
    return numbered(tag, e, m);
  }

  const Symbol* make_fp_cast_symbol(size_t e1,
                                    size_t m1,
                                    size_t e2,
                                    size_t m2) {
    return numbered(SymbolTag::FP_CAST, e1, m1, e2, m2);
  }

  const Symbol* make_fp_from_sbv_symbol(size_t w, size_t e, size_t m) {
    return numbered(SymbolTag::FP_FROM_SBV, w, e, m);
  }

  const Symbol* make_fp_from_ubv_symbol(size_t w, size_t e, size_t m) {
    return numbered(SymbolTag::FP_FROM_UBV, w, e, m);
  }

  const Symbol* make_fp_to_sbv_symbol(size_t e, size_t m, size_t w) {
    return numbered(SymbolTag::FP_TO_SBV, e, m, w);
  }

  const Symbol* make_fp_to_ubv_symbol(size_t e, size_t m, size_t w) {
    return numbered(SymbolTag::FP_TO_UBV, e, m, w);
  }

  const Symbol* make_int_mod_congr_symbol(const QNumber& modulus);

  // The generic maker behind all of the above. Requires: a parametric tag
  // (EQ, ITE, BV_CONCAT to FP_FROM_IEEEBV and INT_FROM_UBV to INT_TO_BV,
  // FORALL, EXISTS) with the parameters its family names.
  const Symbol* make_family_symbol(SymbolTag::tag tag, const FamilyKey& key);

  // Returns: the parameters of a parametric symbol, or null.
  const FamilyKey* get_family_key(const Symbol* s) const;

  bool is_equal(const Symbol* s, const Type** t = nullptr) const {
    return family_type(s, SymbolTag::EQ, t);
  }

  bool is_array_read(const Symbol* s,
                     const Type** i = nullptr,
                     const Type** e = nullptr) const {
    return family_types(s, SymbolTag::ARRAY_READ, i, e);
  }

  bool is_array_write(const Symbol* s,
                      const Type** i = nullptr,
                      const Type** e = nullptr) const {
    return family_types(s, SymbolTag::ARRAY_WRITE, i, e);
  }

  bool is_array_const(const Symbol* s,
                      const Type** i = nullptr,
                      const Type** e = nullptr) const {
    return family_types(s, SymbolTag::ARRAY_CONST, i, e);
  }

  // Tests of the families with numeric parameters, in the order of their
  // makers' arguments.
  bool is_bv_not(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_NOT, w);
  }

  bool is_bv_neg(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_NEG, w);
  }

  bool is_bv_and(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_AND, w);
  }

  bool is_bv_or(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_OR, w);
  }

  bool is_bv_xor(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_XOR, w);
  }

  bool is_bv_add(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_ADD, w);
  }

  bool is_bv_sub(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_SUB, w);
  }

  bool is_bv_mul(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_MUL, w);
  }

  bool is_bv_udiv(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_UDIV, w);
  }

  bool is_bv_sdiv(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_SDIV, w);
  }

  bool is_bv_urem(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_UREM, w);
  }

  bool is_bv_srem(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_SREM, w);
  }

  bool is_bv_lshl(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_LSHL, w);
  }

  bool is_bv_lshr(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_LSHR, w);
  }

  bool is_bv_ashr(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_ASHR, w);
  }

  bool is_bv_ult(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_ULT, w);
  }

  bool is_bv_ule(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_ULE, w);
  }

  bool is_bv_slt(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_SLT, w);
  }

  bool is_bv_sle(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_SLE, w);
  }

  bool is_bv_comp(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_COMP, w);
  }

  bool is_bv_rol(const Symbol* s,
                 size_t* amount = nullptr,
                 size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_ROL, amount, w);
  }

  bool is_bv_ror(const Symbol* s,
                 size_t* amount = nullptr,
                 size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_ROR, amount, w);
  }

  bool is_bv_zext(const Symbol* s,
                  size_t* amount = nullptr,
                  size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_ZEXT, amount, w);
  }

  bool is_bv_sext(const Symbol* s,
                  size_t* amount = nullptr,
                  size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_SEXT, amount, w);
  }

  bool is_bv_concat(const Symbol* s,
                    size_t* w1 = nullptr,
                    size_t* w2 = nullptr) const {
    return family_nums(s, SymbolTag::BV_CONCAT, w1, w2);
  }

  bool is_bv_extract(const Symbol* s,
                     size_t* msb = nullptr,
                     size_t* lsb = nullptr,
                     size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::BV_EXTRACT, msb, lsb, w);
  }

  bool is_int_to_bv(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::INT_TO_BV, w);
  }

  bool is_int_from_ubv(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::INT_FROM_UBV, w);
  }

  bool is_int_from_sbv(const Symbol* s, size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::INT_FROM_SBV, w);
  }

  // Floating-point families with the format as their only parameters.
  bool is_fp_eq(const Symbol* s,
                size_t* e = nullptr,
                size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_EQ, e, m);
  }

  bool is_fp_lt(const Symbol* s,
                size_t* e = nullptr,
                size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_LT, e, m);
  }

  bool is_fp_le(const Symbol* s,
                size_t* e = nullptr,
                size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_LE, e, m);
  }

  bool is_fp_neg(const Symbol* s,
                 size_t* e = nullptr,
                 size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_NEG, e, m);
  }

  bool is_fp_abs(const Symbol* s,
                 size_t* e = nullptr,
                 size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ABS, e, m);
  }

  bool is_fp_add(const Symbol* s,
                 size_t* e = nullptr,
                 size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ADD, e, m);
  }

  bool is_fp_sub(const Symbol* s,
                 size_t* e = nullptr,
                 size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_SUB, e, m);
  }

  bool is_fp_mul(const Symbol* s,
                 size_t* e = nullptr,
                 size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_MUL, e, m);
  }

  bool is_fp_div(const Symbol* s,
                 size_t* e = nullptr,
                 size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_DIV, e, m);
  }

  bool is_fp_sqrt(const Symbol* s,
                  size_t* e = nullptr,
                  size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_SQRT, e, m);
  }

  bool is_fp_min(const Symbol* s,
                 size_t* e = nullptr,
                 size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_MIN, e, m);
  }

  bool is_fp_max(const Symbol* s,
                 size_t* e = nullptr,
                 size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_MAX, e, m);
  }

  bool is_fp_round_to_int(const Symbol* s,
                          size_t* e = nullptr,
                          size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ROUND_TO_INT, e, m);
  }

  bool is_fp_isnan(const Symbol* s,
                   size_t* e = nullptr,
                   size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ISNAN, e, m);
  }

  bool is_fp_isinf(const Symbol* s,
                   size_t* e = nullptr,
                   size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ISINF, e, m);
  }

  bool is_fp_iszero(const Symbol* s,
                    size_t* e = nullptr,
                    size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ISZERO, e, m);
  }

  bool is_fp_issubnormal(const Symbol* s,
                         size_t* e = nullptr,
                         size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ISSUBNORMAL, e, m);
  }

  bool is_fp_isnormal(const Symbol* s,
                      size_t* e = nullptr,
                      size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ISNORMAL, e, m);
  }

  bool is_fp_isneg(const Symbol* s,
                   size_t* e = nullptr,
                   size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ISNEG, e, m);
  }

  bool is_fp_ispos(const Symbol* s,
                   size_t* e = nullptr,
                   size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_ISPOS, e, m);
  }

  bool is_fp_as_ieeebv(const Symbol* s,
                       size_t* e = nullptr,
                       size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_AS_IEEEBV, e, m);
  }

  bool is_fp_from_ieeebv(const Symbol* s,
                         size_t* e = nullptr,
                         size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_FROM_IEEEBV, e, m);
  }

  bool is_fp_cast(const Symbol* s,
                  size_t* e1 = nullptr,
                  size_t* m1 = nullptr,
                  size_t* e2 = nullptr,
                  size_t* m2 = nullptr) const {
    return family_nums(s, SymbolTag::FP_CAST, e1, m1, e2, m2);
  }

  bool is_fp_from_sbv(const Symbol* s,
                      size_t* w = nullptr,
                      size_t* e = nullptr,
                      size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_FROM_SBV, w, e, m);
  }

  bool is_fp_from_ubv(const Symbol* s,
                      size_t* w = nullptr,
                      size_t* e = nullptr,
                      size_t* m = nullptr) const {
    return family_nums(s, SymbolTag::FP_FROM_UBV, w, e, m);
  }

  bool is_fp_to_sbv(const Symbol* s,
                    size_t* e = nullptr,
                    size_t* m = nullptr,
                    size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::FP_TO_SBV, e, m, w);
  }

  bool is_fp_to_ubv(const Symbol* s,
                    size_t* e = nullptr,
                    size_t* m = nullptr,
                    size_t* w = nullptr) const {
    return family_nums(s, SymbolTag::FP_TO_UBV, e, m, w);
  }

  bool is_int_mod_congr(const Symbol* s, QNumber* modulus = nullptr) const;

 protected:
  // Makes the member of a family that is not memoised yet.
  // - Requires: a parametric tag and the parameters its family names.
  // - Returns: the new symbol, with its tag set.
  virtual const Symbol* create_family_symbol(SymbolTag::tag tag,
                                             const FamilyKey& key) = 0;
  // - Requires: a positive integer modulus.
  virtual const Symbol* create_congruence_symbol(const QNumber& modulus) = 0;

  const Symbol* typed(SymbolTag::tag tag,
                      const Type* t1,
                      const Type* t2 = nullptr);
  const Symbol* numbered(
      SymbolTag::tag tag, size_t a, size_t b = 0, size_t c = 0, size_t d = 0);

  // After: every memo entry of a symbol that is not kept is gone.
  void gc_families(const SymbolSet& kept);

 private:
  static SymbolTag::tag tag_of(const Symbol* s);

  bool family_type(const Symbol* s, SymbolTag::tag tag, const Type** t) const {
    return family_types(s, tag, t, nullptr);
  }

  bool family_types(const Symbol* s,
                    SymbolTag::tag tag,
                    const Type** t1,
                    const Type** t2) const;
  bool family_nums(const Symbol* s,
                   SymbolTag::tag tag,
                   size_t* a,
                   size_t* b = nullptr,
                   size_t* c = nullptr,
                   size_t* d = nullptr) const;

  // Parameters to symbol by tag, and symbol to parameters for all tags.
  std::vector<hsh::HashMap<FamilyKey, const Symbol*, FamilyKeyHash>> d_by_key;
  hsh::HashMap<const Symbol*, FamilyKey> d_key_of;
  hsh::HashMap<QNumber, const Symbol*, QNumberHash> d_congr_by_modulus;
  hsh::HashMap<const Symbol*, QNumber> d_congr_modulus;
};

}  // namespace zenlo

#endif
