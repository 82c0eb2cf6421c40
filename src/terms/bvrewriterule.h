// The base of the bit-vector rewrite rules (norm_fun objects of the
// TermNormalizer) and the tests of their rule language: a number and its
// value, the numbers 0, 1 and all ones of a width, powers of two, widths.
// A rule class is stateless; it matches by hand and builds its result
// through the store's constructors, so the result is simplified and
// normalised in its turn.
//
// Rules on EQ are filed under the bit-vector and float group, so they only
// meet equalities of those types; each one tests the bit-vector operation
// of its pattern before anything else.
#ifndef ZENLO_TERMS_BVREWRITERULE_H
#define ZENLO_TERMS_BVREWRITERULE_H

#include "terms/termmanager.h"
#include "terms/termnormalizer.h"

namespace zenlo {
namespace norm {

class BvRewriteRule : public TermNormalizer::norm_fun {
 public:
  BvRewriteRule(SymbolTag::tag applicant, const char* signature)
      : d_applicant(applicant), d_signature(signature) {}

  SymbolTag::tag get_applicant() const override { return d_applicant; }

  TermNormalizer::norm_group get_group() const override {
    return TermNormalizer::norm_group::BvFp;
  }

  const char* get_signature() const override { return d_signature; }

 private:
  SymbolTag::tag d_applicant;
  const char* d_signature;
};

inline bool has_tag(const TermManager& tm, const Term_* t, SymbolTag::tag g) {
  return tm.get_tag(t->get_symbol()) == g;
}

// size(t)
inline size_t bv_size(const TermManager& tm, const Term_* t) {
  size_t w = 0;
  tm.is_bv_type(t->get_type(), &w);
  return w;
}

// const(t), with its value.
inline bool bv_const(const TermManager& tm, const Term_* t, QNumber* v) {
  return tm.is_number(t->get_symbol(), v);
}

inline bool bv_const(const TermManager& tm, const Term_* t) {
  return tm.is_number(t->get_symbol());
}

// (t == k) for a small non-negative k.
inline bool bv_is(const TermManager& tm, const Term_* t, long k) {
  QNumber v;
  return tm.is_number(t->get_symbol(), &v) && v == k;
}

// (t == -1): all bits set.
inline bool bv_is_ones(const TermManager& tm, const Term_* t) {
  QNumber v;
  return tm.is_number(t->get_symbol(), &v)
         && v + QNumber(1L) == BVNumber::pow2(bv_size(tm, t));
}

// pow2(t, n): t is the number 2^n.
inline bool bv_pow2(const TermManager& tm, const Term_* t, size_t* n) {
  QNumber v;
  if (!tm.is_number(t->get_symbol(), &v) || v.sign() <= 0) {
    return false;
  }
  long low = BVNumber::scan_bit_1(v, 0);
  *n = static_cast<size_t>(low);
  return v == BVNumber::pow2(*n);
}

inline const Term_* bv_number(TermManager& tm, long k, size_t w) {
  return tm.make_bv_number(QNumber(k), w);
}

inline const Term_* bv_ones(TermManager& tm, size_t w) {
  return tm.make_bv_number(BVNumber::pow2(w) - QNumber(1L), w);
}

// prec(a, b)
inline bool prec(const Term_* a, const Term_* b) {
  return a->get_id() < b->get_id();
}

// ---- Shapes shared by several rules -----------------------------------

inline bool set(const Term_** r, const Term_* v) {
  *r = v;
  return true;
}

inline bool same_args(const Term_* t) {
  return t->get_child(0) == t->get_child(1);
}

inline bool first_is(const TermManager& tm, const Term_* t, long k) {
  return bv_is(tm, t->get_child(0), k);
}

inline bool second_is(const TermManager& tm, const Term_* t, long k) {
  return bv_is(tm, t->get_child(1), k);
}

inline bool first_is_ones(const TermManager& tm, const Term_* t) {
  return bv_is_ones(tm, t->get_child(0));
}

inline bool second_is_ones(const TermManager& tm, const Term_* t) {
  return bv_is_ones(tm, t->get_child(1));
}

// The complement that cancels an argument of t's operation: bvneg for
// bvadd, bvnot for the bitwise operations.
inline SymbolTag::tag complement_of(const TermManager& tm, const Term_* t) {
  return has_tag(tm, t, SymbolTag::BV_ADD) ? SymbolTag::BV_NEG
                                           : SymbolTag::BV_NOT;
}

// op(t, c(t)), where c is complement_of(op)
inline bool second_negates_first(const TermManager& tm, const Term_* t) {
  const Term_* b = t->get_child(1);
  return has_tag(tm, b, complement_of(tm, t))
         && b->get_child(0) == t->get_child(0);
}

// op(c(t), t)
inline bool first_negates_second(const TermManager& tm, const Term_* t) {
  const Term_* a = t->get_child(0);
  return has_tag(tm, a, complement_of(tm, t))
         && a->get_child(0) == t->get_child(1);
}

// 0 and -1 of the width of t's first argument.
inline const Term_* zero_of(TermManager& tm, const Term_* t) {
  return bv_number(tm, 0, bv_size(tm, t->get_child(0)));
}

inline const Term_* ones_of(TermManager& tm, const Term_* t) {
  return bv_ones(tm, bv_size(tm, t->get_child(0)));
}

// The first parameter of an indexed operation: the amount of a rotation
// or an extension.
inline size_t amount(const TermManager& tm, const Term_* t) {
  return tm.get_family_key(t->get_symbol())->n[0];
}

// op(a, b) for the commutative operations bvand, bvor, bvxor, bvadd,
// bvmul.
const Term_* make_commutative(TermManager& tm,
                              SymbolTag::tag op,
                              const Term_* a,
                              const Term_* b);

// op(t, c) -> op(c, t): numbers first.
bool const_first(TermManager& tm, const Term_* t, const Term_** r);

// op(t1, t2) -> op(t2, t1) when t2 is older and t1 no number.
bool order_by_id(TermManager& tm, const Term_* t, const Term_** r);

// u(u(t)) -> t, for the involutions bvnot and bvneg.
bool double_unary(const Term_* t, const Term_** r);

}  // namespace norm
}  // namespace zenlo

#endif
