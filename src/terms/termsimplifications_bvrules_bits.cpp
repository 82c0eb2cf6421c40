// The rewrite rules on extraction, the bitwise operations and the
// comparisons of bit-vectors, and the helpers the rule families share.
#include "terms/bvrewriterule.h"
#include "terms/termsimplifications_impl.h"

namespace zenlo {
namespace norm {

using T = SymbolTag;

const Term_* make_commutative(TermManager& tm,
                              SymbolTag::tag op,
                              const Term_* a,
                              const Term_* b) {
  switch (op) {
    case T::BV_AND: return tm.make_bv_and(a, b);
    case T::BV_OR: return tm.make_bv_or(a, b);
    case T::BV_XOR: return tm.make_bv_xor(a, b);
    case T::BV_ADD: return tm.make_bv_add(a, b);
    default: return tm.make_bv_mul(a, b);
  }
}

bool const_first(TermManager& tm, const Term_* t, const Term_** r) {
  const Term_* a = t->get_child(0);
  const Term_* b = t->get_child(1);
  if (!bv_const(tm, b) || bv_const(tm, a)) {
    return false;
  }
  return set(r, make_commutative(tm, tm.get_tag(t->get_symbol()), b, a));
}

bool order_by_id(TermManager& tm, const Term_* t, const Term_** r) {
  const Term_* a = t->get_child(0);
  const Term_* b = t->get_child(1);
  if (bv_const(tm, a) || !prec(b, a)) {
    return false;
  }
  return set(r, make_commutative(tm, tm.get_tag(t->get_symbol()), b, a));
}

bool double_unary(const Term_* t, const Term_** r) {
  const Term_* a = t->get_child(0);
  if (a->get_symbol() != t->get_symbol()) {
    return false;
  }
  return set(r, a->get_child(0));
}

namespace {

// extract(w - 1, 0, t) -> t
bool extract_whole(const TermManager& tm, const Term_* t, const Term_** r) {
  size_t msb = 0, lsb = 0;
  tm.is_bv_extract(t->get_symbol(), &msb, &lsb);
  const Term_* a = t->get_child(0);
  return lsb == 0 && msb + 1 == bv_size(tm, a) && set(r, a);
}

// extract(m, l, ext(n, t)) -> extract(m, l, t) when the bits lie in t
bool extract_below_ext(TermManager& tm,
                       const Term_* t,
                       SymbolTag::tag ext,
                       const Term_** r) {
  size_t msb = 0, lsb = 0;
  tm.is_bv_extract(t->get_symbol(), &msb, &lsb);
  const Term_* a = t->get_child(0);
  if (!has_tag(tm, a, ext) || msb >= bv_size(tm, a->get_child(0))) {
    return false;
  }
  return set(r, tm.make_bv_extract(msb, lsb, a->get_child(0)));
}

// extract(m, 0, ext(n, t)) -> ext(m - size(t) + 1, t) when the bits reach
// into the extension
bool extract_low_of_ext(TermManager& tm,
                        const Term_* t,
                        SymbolTag::tag ext,
                        const Term_** r) {
  size_t msb = 0, lsb = 0;
  tm.is_bv_extract(t->get_symbol(), &msb, &lsb);
  const Term_* a = t->get_child(0);
  if (lsb != 0 || !has_tag(tm, a, ext)) {
    return false;
  }
  const Term_* x = a->get_child(0);
  size_t w = bv_size(tm, x);
  if (w > msb) {
    return false;
  }
  size_t mm = msb - w + 1;
  return set(
      r, ext == T::BV_ZEXT ? tm.make_bv_zext(mm, x) : tm.make_bv_sext(mm, x));
}

// bvslt(t, 0) -> (extract(msb, msb, t) == 1): negative is the top bit.
bool slt_zero(TermManager& tm, const Term_* t, const Term_** r) {
  if (!second_is(tm, t, 0)) {
    return false;
  }
  const Term_* a = t->get_child(0);
  size_t msb = bv_size(tm, a) - 1;
  return set(
      r, tm.make_equal(tm.make_bv_extract(msb, msb, a), bv_number(tm, 1, 1)));
}

// ---- The rule classes, in the order of registration -------------------

// match:  extract(m, l, t), (l == 0), (m == _size(t) - 1_)
// result: t
struct
    GeneratedRewriteRule_extract_m_l_t__WITH__lEQ0___mEQ_size_t__MINUS_1___TO_t
    : BvRewriteRule {
  GeneratedRewriteRule_extract_m_l_t__WITH__lEQ0___mEQ_size_t__MINUS_1___TO_t()
      : BvRewriteRule(T::BV_EXTRACT,
                      "rewrite(extract(m, l, t), (l == 0), (m == _size(t) - "
                      "1_)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return extract_whole(tm, t, r);
  }
};

// match:  extract(m, l, zext(n, t)), (m < size(t))
// result: extract(m, l, t)
struct
    GeneratedRewriteRule_extract_m_l_zext_n_t___WITH__mLTsize_t___TO_extract_m_l_t_
    : BvRewriteRule {
  GeneratedRewriteRule_extract_m_l_zext_n_t___WITH__mLTsize_t___TO_extract_m_l_t_()
      : BvRewriteRule(T::BV_EXTRACT,
                      "rewrite(extract(m, l, zext(n, t)), (m < size(t))) >> "
                      "extract(m, l, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return extract_below_ext(tm, t, T::BV_ZEXT, r);
  }
};

// match:  extract(m, l, zext(n, t)), (l == 0), (size(t) <= m), mm=__m -
// size(t)_ + 1_ result: zext(mm, t)
struct
    GeneratedRewriteRule_extract_m_l_zext_n_t___WITH__lEQ0___size_t_LEm__mm___m_MINUS_size_t___PLUS_1__TO_zext_mm_t_
    : BvRewriteRule {
  GeneratedRewriteRule_extract_m_l_zext_n_t___WITH__lEQ0___size_t_LEm__mm___m_MINUS_size_t___PLUS_1__TO_zext_mm_t_()
      : BvRewriteRule(
          T::BV_EXTRACT,
          "rewrite(extract(m, l, zext(n, t)), (l == 0), (size(t) <= "
          "m), mm=__m - size(t)_ + 1_) >> zext(mm, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return extract_low_of_ext(tm, t, T::BV_ZEXT, r);
  }
};

// match:  extract(m, l, sext(n, t)), (m < size(t))
// result: extract(m, l, t)
struct
    GeneratedRewriteRule_extract_m_l_sext_n_t___WITH__mLTsize_t___TO_extract_m_l_t_
    : BvRewriteRule {
  GeneratedRewriteRule_extract_m_l_sext_n_t___WITH__mLTsize_t___TO_extract_m_l_t_()
      : BvRewriteRule(T::BV_EXTRACT,
                      "rewrite(extract(m, l, sext(n, t)), (m < size(t))) >> "
                      "extract(m, l, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return extract_below_ext(tm, t, T::BV_SEXT, r);
  }
};

// match:  extract(m, l, sext(n, t)), (l == 0), (size(t) <= m), mm=__m -
// size(t)_ + 1_ result: sext(mm, t)
struct
    GeneratedRewriteRule_extract_m_l_sext_n_t___WITH__lEQ0___size_t_LEm__mm___m_MINUS_size_t___PLUS_1__TO_sext_mm_t_
    : BvRewriteRule {
  GeneratedRewriteRule_extract_m_l_sext_n_t___WITH__lEQ0___size_t_LEm__mm___m_MINUS_size_t___PLUS_1__TO_sext_mm_t_()
      : BvRewriteRule(
          T::BV_EXTRACT,
          "rewrite(extract(m, l, sext(n, t)), (l == 0), (size(t) <= "
          "m), mm=__m - size(t)_ + 1_) >> sext(mm, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return extract_low_of_ext(tm, t, T::BV_SEXT, r);
  }
};

// match:  bvnot(bvnot(t))
// result: t
struct GeneratedRewriteRule_bvnot_bvnot_t___WITH__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvnot_bvnot_t___WITH__TO_t()
      : BvRewriteRule(T::BV_NOT, "rewrite(bvnot(bvnot(t)), ) >> t") {}

  bool operator()(TermManager& /*tm*/,
                  const Term_* t,
                  const Term_** r) override {
    return double_unary(t, r);
  }
};

// match:  bvand(t, c), const(c), ~const(t)
// result: bvand(c, t)
struct GeneratedRewriteRule_bvand_t_c__WITH_const_c__NOTconst_t__TO_bvand_c_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvand_t_c__WITH_const_c__NOTconst_t__TO_bvand_c_t_()
      : BvRewriteRule(
          T::BV_AND,
          "rewrite(bvand(t, c), const(c), ~const(t)) >> bvand(c, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return const_first(tm, t, r);
  }
};

// match:  bvand(t1, t2), ~const(t1), prec(t2, t1)
// result: bvand(t2, t1)
struct
    GeneratedRewriteRule_bvand_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvand_t2_t1_
    : BvRewriteRule {
  GeneratedRewriteRule_bvand_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvand_t2_t1_()
      : BvRewriteRule(T::BV_AND,
                      "rewrite(bvand(t1, t2), ~const(t1), prec(t2, t1)) >> "
                      "bvand(t2, t1)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return order_by_id(tm, t, r);
  }
};

// match:  bvand(0, t), (0 == 0)
// result: 0
struct GeneratedRewriteRule_bvand_0_t__WITH__0EQ0__TO_0 : BvRewriteRule {
  GeneratedRewriteRule_bvand_0_t__WITH__0EQ0__TO_0()
      : BvRewriteRule(T::BV_AND, "rewrite(bvand(0, t), (0 == 0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 0) && set(r, t->get_child(0));
  }
};

// match:  bvand(-1, t), (-1 == -1)
// result: t
struct GeneratedRewriteRule_bvand_M1_t__WITH__M1EQM1__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvand_M1_t__WITH__M1EQM1__TO_t()
      : BvRewriteRule(T::BV_AND, "rewrite(bvand(-1, t), (-1 == -1)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is_ones(tm, t) && set(r, t->get_child(1));
  }
};

// match:  bvand(t, t_0), identity(t, t_0)
// result: t
struct GeneratedRewriteRule_bvand_t_t_0__WITH_identity_t_t_0__TO_t
    : BvRewriteRule {
  GeneratedRewriteRule_bvand_t_t_0__WITH_identity_t_t_0__TO_t()
      : BvRewriteRule(T::BV_AND,
                      "rewrite(bvand(t, t_0), identity(t, t_0)) >> t") {}

  bool operator()(TermManager& /*tm*/,
                  const Term_* t,
                  const Term_** r) override {
    return same_args(t) && set(r, t->get_child(0));
  }
};

// match:  bvand(t, bvnot(t_0)), identity(t, t_0)
// result: 0
struct GeneratedRewriteRule_bvand_t_bvnot_t_0___WITH_identity_t_t_0__TO_0
    : BvRewriteRule {
  GeneratedRewriteRule_bvand_t_bvnot_t_0___WITH_identity_t_t_0__TO_0()
      : BvRewriteRule(T::BV_AND,
                      "rewrite(bvand(t, bvnot(t_0)), identity(t, t_0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_negates_first(tm, t) && set(r, zero_of(tm, t));
  }
};

// match:  bvand(bvnot(t), t_0), identity(t, t_0)
// result: 0
struct GeneratedRewriteRule_bvand_bvnot_t__t_0__WITH_identity_t_t_0__TO_0
    : BvRewriteRule {
  GeneratedRewriteRule_bvand_bvnot_t__t_0__WITH_identity_t_t_0__TO_0()
      : BvRewriteRule(T::BV_AND,
                      "rewrite(bvand(bvnot(t), t_0), identity(t, t_0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_negates_second(tm, t) && set(r, zero_of(tm, t));
  }
};

// match:  bvor(t, c), const(c), ~const(t)
// result: bvor(c, t)
struct GeneratedRewriteRule_bvor_t_c__WITH_const_c__NOTconst_t__TO_bvor_c_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvor_t_c__WITH_const_c__NOTconst_t__TO_bvor_c_t_()
      : BvRewriteRule(
          T::BV_OR, "rewrite(bvor(t, c), const(c), ~const(t)) >> bvor(c, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return const_first(tm, t, r);
  }
};

// match:  bvor(t1, t2), ~const(t1), prec(t2, t1)
// result: bvor(t2, t1)
struct
    GeneratedRewriteRule_bvor_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvor_t2_t1_
    : BvRewriteRule {
  GeneratedRewriteRule_bvor_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvor_t2_t1_()
      : BvRewriteRule(T::BV_OR,
                      "rewrite(bvor(t1, t2), ~const(t1), prec(t2, t1)) >> "
                      "bvor(t2, t1)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return order_by_id(tm, t, r);
  }
};

// match:  bvor(0, t), (0 == 0)
// result: t
struct GeneratedRewriteRule_bvor_0_t__WITH__0EQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvor_0_t__WITH__0EQ0__TO_t()
      : BvRewriteRule(T::BV_OR, "rewrite(bvor(0, t), (0 == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 0) && set(r, t->get_child(1));
  }
};

// match:  bvor(-1, t), (-1 == -1)
// result: -1
struct GeneratedRewriteRule_bvor_M1_t__WITH__M1EQM1__TO_M1 : BvRewriteRule {
  GeneratedRewriteRule_bvor_M1_t__WITH__M1EQM1__TO_M1()
      : BvRewriteRule(T::BV_OR, "rewrite(bvor(-1, t), (-1 == -1)) >> -1") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is_ones(tm, t) && set(r, t->get_child(0));
  }
};

// match:  bvor(t, t_0), identity(t, t_0)
// result: t
struct GeneratedRewriteRule_bvor_t_t_0__WITH_identity_t_t_0__TO_t
    : BvRewriteRule {
  GeneratedRewriteRule_bvor_t_t_0__WITH_identity_t_t_0__TO_t()
      : BvRewriteRule(T::BV_OR,
                      "rewrite(bvor(t, t_0), identity(t, t_0)) >> t") {}

  bool operator()(TermManager& /*tm*/,
                  const Term_* t,
                  const Term_** r) override {
    return same_args(t) && set(r, t->get_child(0));
  }
};

// match:  bvor(t, bvnot(t_0)), identity(t, t_0)
// result: -1
struct GeneratedRewriteRule_bvor_t_bvnot_t_0___WITH_identity_t_t_0__TO_M1
    : BvRewriteRule {
  GeneratedRewriteRule_bvor_t_bvnot_t_0___WITH_identity_t_t_0__TO_M1()
      : BvRewriteRule(T::BV_OR,
                      "rewrite(bvor(t, bvnot(t_0)), identity(t, t_0)) >> -1") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_negates_first(tm, t) && set(r, ones_of(tm, t));
  }
};

// match:  bvor(bvnot(t), t_0), identity(t, t_0)
// result: -1
struct GeneratedRewriteRule_bvor_bvnot_t__t_0__WITH_identity_t_t_0__TO_M1
    : BvRewriteRule {
  GeneratedRewriteRule_bvor_bvnot_t__t_0__WITH_identity_t_t_0__TO_M1()
      : BvRewriteRule(T::BV_OR,
                      "rewrite(bvor(bvnot(t), t_0), identity(t, t_0)) >> -1") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_negates_second(tm, t) && set(r, ones_of(tm, t));
  }
};

// match:  bvxor(t, c), const(c), ~const(t)
// result: bvxor(c, t)
struct GeneratedRewriteRule_bvxor_t_c__WITH_const_c__NOTconst_t__TO_bvxor_c_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvxor_t_c__WITH_const_c__NOTconst_t__TO_bvxor_c_t_()
      : BvRewriteRule(
          T::BV_XOR,
          "rewrite(bvxor(t, c), const(c), ~const(t)) >> bvxor(c, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return const_first(tm, t, r);
  }
};

// match:  bvxor(t1, t2), ~const(t1), prec(t2, t1)
// result: bvxor(t2, t1)
struct
    GeneratedRewriteRule_bvxor_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvxor_t2_t1_
    : BvRewriteRule {
  GeneratedRewriteRule_bvxor_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvxor_t2_t1_()
      : BvRewriteRule(T::BV_XOR,
                      "rewrite(bvxor(t1, t2), ~const(t1), prec(t2, t1)) >> "
                      "bvxor(t2, t1)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return order_by_id(tm, t, r);
  }
};

// match:  bvxor(0, t), (0 == 0)
// result: t
struct GeneratedRewriteRule_bvxor_0_t__WITH__0EQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvxor_0_t__WITH__0EQ0__TO_t()
      : BvRewriteRule(T::BV_XOR, "rewrite(bvxor(0, t), (0 == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 0) && set(r, t->get_child(1));
  }
};

// match:  bvxor(-1, t), (-1 == -1)
// result: bvnot(t)
struct GeneratedRewriteRule_bvxor_M1_t__WITH__M1EQM1__TO_bvnot_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvxor_M1_t__WITH__M1EQM1__TO_bvnot_t_()
      : BvRewriteRule(T::BV_XOR,
                      "rewrite(bvxor(-1, t), (-1 == -1)) >> bvnot(t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is_ones(tm, t) && set(r, tm.make_bv_not(t->get_child(1)));
  }
};

// match:  bvxor(t, t_0), identity(t, t_0)
// result: 0
struct GeneratedRewriteRule_bvxor_t_t_0__WITH_identity_t_t_0__TO_0
    : BvRewriteRule {
  GeneratedRewriteRule_bvxor_t_t_0__WITH_identity_t_t_0__TO_0()
      : BvRewriteRule(T::BV_XOR,
                      "rewrite(bvxor(t, t_0), identity(t, t_0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return same_args(t) && set(r, zero_of(tm, t));
  }
};

// match:  bvxor(t, bvnot(t_0)), identity(t, t_0)
// result: -1
struct GeneratedRewriteRule_bvxor_t_bvnot_t_0___WITH_identity_t_t_0__TO_M1
    : BvRewriteRule {
  GeneratedRewriteRule_bvxor_t_bvnot_t_0___WITH_identity_t_t_0__TO_M1()
      : BvRewriteRule(
          T::BV_XOR, "rewrite(bvxor(t, bvnot(t_0)), identity(t, t_0)) >> -1") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_negates_first(tm, t) && set(r, ones_of(tm, t));
  }
};

// match:  bvxor(bvnot(t), t_0), identity(t, t_0)
// result: -1
struct GeneratedRewriteRule_bvxor_bvnot_t__t_0__WITH_identity_t_t_0__TO_M1
    : BvRewriteRule {
  GeneratedRewriteRule_bvxor_bvnot_t__t_0__WITH_identity_t_t_0__TO_M1()
      : BvRewriteRule(
          T::BV_XOR, "rewrite(bvxor(bvnot(t), t_0), identity(t, t_0)) >> -1") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_negates_second(tm, t) && set(r, ones_of(tm, t));
  }
};

// match:  bvult(t, 0), (0 == 0)
// result: false
struct GeneratedRewriteRule_bvult_t_0__WITH__0EQ0__TO_false : BvRewriteRule {
  GeneratedRewriteRule_bvult_t_0__WITH__0EQ0__TO_false()
      : BvRewriteRule(T::BV_ULT, "rewrite(bvult(t, 0), (0 == 0)) >> false") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is(tm, t, 0) && set(r, tm.make_false());
  }
};

// match:  bvult(0, t), (0 == 0)
// result: ~((t == 0))
struct GeneratedRewriteRule_bvult_0_t__WITH__0EQ0__TO_NOT__tEQ0__
    : BvRewriteRule {
  GeneratedRewriteRule_bvult_0_t__WITH__0EQ0__TO_NOT__tEQ0__()
      : BvRewriteRule(T::BV_ULT,
                      "rewrite(bvult(0, t), (0 == 0)) >> ~((t == 0))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 0)
           && set(r,
                  tm.make_not(tm.make_equal(t->get_child(1), t->get_child(0))));
  }
};

// match:  bvult(t, 1), (1 == 1)
// result: (t == 0)
struct GeneratedRewriteRule_bvult_t_1__WITH__1EQ1__TO__tEQ0_ : BvRewriteRule {
  GeneratedRewriteRule_bvult_t_1__WITH__1EQ1__TO__tEQ0_()
      : BvRewriteRule(T::BV_ULT, "rewrite(bvult(t, 1), (1 == 1)) >> (t == 0)") {
  }

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is(tm, t, 1)
           && set(r, tm.make_equal(t->get_child(0), zero_of(tm, t)));
  }
};

// match:  bvult(-1, t), (-1 == -1)
// result: false
struct GeneratedRewriteRule_bvult_M1_t__WITH__M1EQM1__TO_false : BvRewriteRule {
  GeneratedRewriteRule_bvult_M1_t__WITH__M1EQM1__TO_false()
      : BvRewriteRule(T::BV_ULT, "rewrite(bvult(-1, t), (-1 == -1)) >> false") {
  }

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is_ones(tm, t) && set(r, tm.make_false());
  }
};

// match:  bvult(t, -1), (-1 == -1)
// result: ~((t == -1))
struct GeneratedRewriteRule_bvult_t_M1__WITH__M1EQM1__TO_NOT__tEQM1__
    : BvRewriteRule {
  GeneratedRewriteRule_bvult_t_M1__WITH__M1EQM1__TO_NOT__tEQM1__()
      : BvRewriteRule(T::BV_ULT,
                      "rewrite(bvult(t, -1), (-1 == -1)) >> ~((t == -1))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is_ones(tm, t)
           && set(r,
                  tm.make_not(tm.make_equal(t->get_child(0), t->get_child(1))));
  }
};

// match:  bvult(t, t_0), identity(t, t_0)
// result: false
struct GeneratedRewriteRule_bvult_t_t_0__WITH_identity_t_t_0__TO_false
    : BvRewriteRule {
  GeneratedRewriteRule_bvult_t_t_0__WITH_identity_t_t_0__TO_false()
      : BvRewriteRule(T::BV_ULT,
                      "rewrite(bvult(t, t_0), identity(t, t_0)) >> false") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return same_args(t) && set(r, tm.make_false());
  }
};

// match:  bvslt(t, t_0), identity(t, t_0)
// result: false
struct GeneratedRewriteRule_bvslt_t_t_0__WITH_identity_t_t_0__TO_false
    : BvRewriteRule {
  GeneratedRewriteRule_bvslt_t_t_0__WITH_identity_t_t_0__TO_false()
      : BvRewriteRule(T::BV_SLT,
                      "rewrite(bvslt(t, t_0), identity(t, t_0)) >> false") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return same_args(t) && set(r, tm.make_false());
  }
};

// match:  bvslt(t, 0), (0 == 0), msb=_size(t) - 1_
// result: (extract(msb, msb, t) == 1)
struct
    GeneratedRewriteRule_bvslt_t_0__WITH__0EQ0__msb__size_t__MINUS_1__TO__extract_msb_msb_t_EQ1_
    : BvRewriteRule {
  GeneratedRewriteRule_bvslt_t_0__WITH__0EQ0__msb__size_t__MINUS_1__TO__extract_msb_msb_t_EQ1_()
      : BvRewriteRule(T::BV_SLT,
                      "rewrite(bvslt(t, 0), (0 == 0), msb=_size(t) - 1_) >> "
                      "(extract(msb, msb, t) == 1)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return slt_zero(tm, t, r);
  }
};

// match:  bvule(t, t_0), identity(t, t_0)
// result: true
struct GeneratedRewriteRule_bvule_t_t_0__WITH_identity_t_t_0__TO_true
    : BvRewriteRule {
  GeneratedRewriteRule_bvule_t_t_0__WITH_identity_t_t_0__TO_true()
      : BvRewriteRule(T::BV_ULE,
                      "rewrite(bvule(t, t_0), identity(t, t_0)) >> true") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return same_args(t) && set(r, tm.make_true());
  }
};

// match:  bvule(t1, t2)
// result: ~(bvult(t2, t1))
struct GeneratedRewriteRule_bvule_t1_t2__WITH__TO_NOT_bvult_t2_t1__
    : BvRewriteRule {
  GeneratedRewriteRule_bvule_t1_t2__WITH__TO_NOT_bvult_t2_t1__()
      : BvRewriteRule(T::BV_ULE,
                      "rewrite(bvule(t1, t2), ) >> ~(bvult(t2, t1))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return set(r,
               tm.make_not(tm.make_bv_ult(t->get_child(1), t->get_child(0))));
  }
};

// match:  bvsle(t, t_0), identity(t, t_0)
// result: true
struct GeneratedRewriteRule_bvsle_t_t_0__WITH_identity_t_t_0__TO_true
    : BvRewriteRule {
  GeneratedRewriteRule_bvsle_t_t_0__WITH_identity_t_t_0__TO_true()
      : BvRewriteRule(T::BV_SLE,
                      "rewrite(bvsle(t, t_0), identity(t, t_0)) >> true") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return same_args(t) && set(r, tm.make_true());
  }
};

// match:  bvsle(t1, t2)
// result: ~(bvslt(t2, t1))
struct GeneratedRewriteRule_bvsle_t1_t2__WITH__TO_NOT_bvslt_t2_t1__
    : BvRewriteRule {
  GeneratedRewriteRule_bvsle_t1_t2__WITH__TO_NOT_bvslt_t2_t1__()
      : BvRewriteRule(T::BV_SLE,
                      "rewrite(bvsle(t1, t2), ) >> ~(bvslt(t2, t1))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return set(r,
               tm.make_not(tm.make_bv_slt(t->get_child(1), t->get_child(0))));
  }
};

}  // namespace
}  // namespace norm

namespace termsimpl {

void register_bv_bit_rules(StdTermSimplifier& s) {
  using namespace norm;
  TermNormalizer::norm_fun* rules[] = {
      new GeneratedRewriteRule_extract_m_l_t__WITH__lEQ0___mEQ_size_t__MINUS_1___TO_t(),
      new GeneratedRewriteRule_extract_m_l_zext_n_t___WITH__mLTsize_t___TO_extract_m_l_t_(),
      new GeneratedRewriteRule_extract_m_l_zext_n_t___WITH__lEQ0___size_t_LEm__mm___m_MINUS_size_t___PLUS_1__TO_zext_mm_t_(),
      new GeneratedRewriteRule_extract_m_l_sext_n_t___WITH__mLTsize_t___TO_extract_m_l_t_(),
      new GeneratedRewriteRule_extract_m_l_sext_n_t___WITH__lEQ0___size_t_LEm__mm___m_MINUS_size_t___PLUS_1__TO_sext_mm_t_(),
      new GeneratedRewriteRule_bvnot_bvnot_t___WITH__TO_t(),
      new GeneratedRewriteRule_bvand_t_c__WITH_const_c__NOTconst_t__TO_bvand_c_t_(),
      new GeneratedRewriteRule_bvand_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvand_t2_t1_(),
      new GeneratedRewriteRule_bvand_0_t__WITH__0EQ0__TO_0(),
      new GeneratedRewriteRule_bvand_M1_t__WITH__M1EQM1__TO_t(),
      new GeneratedRewriteRule_bvand_t_t_0__WITH_identity_t_t_0__TO_t(),
      new GeneratedRewriteRule_bvand_t_bvnot_t_0___WITH_identity_t_t_0__TO_0(),
      new GeneratedRewriteRule_bvand_bvnot_t__t_0__WITH_identity_t_t_0__TO_0(),
      new GeneratedRewriteRule_bvor_t_c__WITH_const_c__NOTconst_t__TO_bvor_c_t_(),
      new GeneratedRewriteRule_bvor_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvor_t2_t1_(),
      new GeneratedRewriteRule_bvor_0_t__WITH__0EQ0__TO_t(),
      new GeneratedRewriteRule_bvor_M1_t__WITH__M1EQM1__TO_M1(),
      new GeneratedRewriteRule_bvor_t_t_0__WITH_identity_t_t_0__TO_t(),
      new GeneratedRewriteRule_bvor_t_bvnot_t_0___WITH_identity_t_t_0__TO_M1(),
      new GeneratedRewriteRule_bvor_bvnot_t__t_0__WITH_identity_t_t_0__TO_M1(),
      new GeneratedRewriteRule_bvxor_t_c__WITH_const_c__NOTconst_t__TO_bvxor_c_t_(),
      new GeneratedRewriteRule_bvxor_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvxor_t2_t1_(),
      new GeneratedRewriteRule_bvxor_0_t__WITH__0EQ0__TO_t(),
      new GeneratedRewriteRule_bvxor_M1_t__WITH__M1EQM1__TO_bvnot_t_(),
      new GeneratedRewriteRule_bvxor_t_t_0__WITH_identity_t_t_0__TO_0(),
      new GeneratedRewriteRule_bvxor_t_bvnot_t_0___WITH_identity_t_t_0__TO_M1(),
      new GeneratedRewriteRule_bvxor_bvnot_t__t_0__WITH_identity_t_t_0__TO_M1(),
      new GeneratedRewriteRule_bvult_t_0__WITH__0EQ0__TO_false(),
      new GeneratedRewriteRule_bvult_0_t__WITH__0EQ0__TO_NOT__tEQ0__(),
      new GeneratedRewriteRule_bvult_t_1__WITH__1EQ1__TO__tEQ0_(),
      new GeneratedRewriteRule_bvult_M1_t__WITH__M1EQM1__TO_false(),
      new GeneratedRewriteRule_bvult_t_M1__WITH__M1EQM1__TO_NOT__tEQM1__(),
      new GeneratedRewriteRule_bvult_t_t_0__WITH_identity_t_t_0__TO_false(),
      new GeneratedRewriteRule_bvslt_t_t_0__WITH_identity_t_t_0__TO_false(),
      new GeneratedRewriteRule_bvslt_t_0__WITH__0EQ0__msb__size_t__MINUS_1__TO__extract_msb_msb_t_EQ1_(),
      new GeneratedRewriteRule_bvule_t_t_0__WITH_identity_t_t_0__TO_true(),
      new GeneratedRewriteRule_bvule_t1_t2__WITH__TO_NOT_bvult_t2_t1__(),
      new GeneratedRewriteRule_bvsle_t_t_0__WITH_identity_t_t_0__TO_true(),
      new GeneratedRewriteRule_bvsle_t1_t2__WITH__TO_NOT_bvslt_t2_t1__(),
  };
  for (TermNormalizer::norm_fun* rule : rules) {
    s.register_normalization(rule);
  }
}

}  // namespace termsimpl
}  // namespace zenlo
