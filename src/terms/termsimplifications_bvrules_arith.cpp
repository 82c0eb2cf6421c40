// The rewrite rules on the arithmetic, shift, rotation and extension
// operations of bit-vectors.
#include "terms/bvrewriterule.h"
#include "terms/termsimplifications_impl.h"

namespace zenlo {
namespace norm {

namespace {

using T = SymbolTag;

// bvmul(2^n, t) -> bvlshl(t, n), with the power on either side
bool mul_by_pow2(TermManager& tm, const Term_* t, int side, const Term_** r) {
  size_t n = 0;
  if (!bv_pow2(tm, t->get_child(side), &n)) {
    return false;
  }
  const Term_* other = t->get_child(1 - side);
  return set(r, tm.make_bv_lshl(other, bv_number(tm, n, bv_size(tm, other))));
}

// bvudiv(t, 2^n) -> bvlshr(t, n)
bool udiv_by_pow2(TermManager& tm, const Term_* t, const Term_** r) {
  size_t n = 0;
  if (!bv_pow2(tm, t->get_child(1), &n)) {
    return false;
  }
  const Term_* a = t->get_child(0);
  return set(r, tm.make_bv_lshr(a, bv_number(tm, n, bv_size(tm, a))));
}

// A shift by a number of at least the width shifts every bit out.
bool shift_out(const TermManager& tm, const Term_* t) {
  QNumber n;
  return bv_const(tm, t->get_child(1), &n)
         && n >= static_cast<long>(bv_size(tm, t));
}

const Term_* make_rotate(TermManager& tm,
                         SymbolTag::tag op,
                         size_t n,
                         const Term_* a) {
  return op == T::BV_ROL ? tm.make_bv_rol(n, a) : tm.make_bv_ror(n, a);
}

// rot(n, t) with n > size(t) -> rot(n - size(t), t). Taken modulo the
// width at once: the same as applying the rule until it stops, without a
// nested construction per turn for a huge amount.
bool rotate_reduce(TermManager& tm, const Term_* t, const Term_** r) {
  size_t n = amount(tm, t);
  size_t w = bv_size(tm, t);
  if (n <= w) {
    return false;
  }
  return set(
      r, make_rotate(tm, tm.get_tag(t->get_symbol()), n % w, t->get_child(0)));
}

// rot(n1, rot(n2, t)) -> rot(n1 + n2, t)
bool rotate_twice(TermManager& tm, const Term_* t, const Term_** r) {
  const Term_* a = t->get_child(0);
  if (!has_tag(tm, a, tm.get_tag(t->get_symbol()))) {
    return false;
  }
  size_t w = bv_size(tm, t);
  size_t n = amount(tm, t) % w + amount(tm, a) % w;
  return set(r,
             make_rotate(tm, tm.get_tag(t->get_symbol()), n, a->get_child(0)));
}

const Term_* make_extend(TermManager& tm,
                         SymbolTag::tag op,
                         size_t n,
                         const Term_* a) {
  return op == T::BV_ZEXT ? tm.make_bv_zext(n, a) : tm.make_bv_sext(n, a);
}

// ext(n1, ext(n2, t)) -> ext(n1 + n2, t)
bool extend_twice(TermManager& tm, const Term_* t, const Term_** r) {
  const Term_* a = t->get_child(0);
  SymbolTag::tag op = tm.get_tag(t->get_symbol());
  if (!has_tag(tm, a, op)) {
    return false;
  }
  return set(
      r, make_extend(tm, op, amount(tm, t) + amount(tm, a), a->get_child(0)));
}

// ext(n, concat(0, t)) -> zext(n + size(0), t): the top bit is 0, so the
// sign extension is a zero extension too.
bool extend_zero_concat(TermManager& tm, const Term_* t, const Term_** r) {
  const Term_* a = t->get_child(0);
  if (!has_tag(tm, a, T::BV_CONCAT) || !first_is(tm, a, 0)) {
    return false;
  }
  size_t n = amount(tm, t) + bv_size(tm, a->get_child(0));
  return set(r, tm.make_bv_zext(n, a->get_child(1)));
}

// ---- The rule classes, in the order of registration -------------------

// match:  bvneg(bvneg(t))
// result: t
struct GeneratedRewriteRule_bvneg_bvneg_t___WITH__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvneg_bvneg_t___WITH__TO_t()
      : BvRewriteRule(T::BV_NEG, "rewrite(bvneg(bvneg(t)), ) >> t") {}

  bool operator()(TermManager& /*tm*/,
                  const Term_* t,
                  const Term_** r) override {
    return double_unary(t, r);
  }
};

// match:  bvadd(t, c), const(c), ~const(t)
// result: bvadd(c, t)
struct GeneratedRewriteRule_bvadd_t_c__WITH_const_c__NOTconst_t__TO_bvadd_c_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvadd_t_c__WITH_const_c__NOTconst_t__TO_bvadd_c_t_()
      : BvRewriteRule(
          T::BV_ADD,
          "rewrite(bvadd(t, c), const(c), ~const(t)) >> bvadd(c, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return const_first(tm, t, r);
  }
};

// match:  bvadd(t1, t2), ~const(t1), prec(t2, t1)
// result: bvadd(t2, t1)
struct
    GeneratedRewriteRule_bvadd_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvadd_t2_t1_
    : BvRewriteRule {
  GeneratedRewriteRule_bvadd_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvadd_t2_t1_()
      : BvRewriteRule(T::BV_ADD,
                      "rewrite(bvadd(t1, t2), ~const(t1), prec(t2, t1)) >> "
                      "bvadd(t2, t1)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return order_by_id(tm, t, r);
  }
};

// match:  bvadd(0, t), (0 == 0)
// result: t
struct GeneratedRewriteRule_bvadd_0_t__WITH__0EQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvadd_0_t__WITH__0EQ0__TO_t()
      : BvRewriteRule(T::BV_ADD, "rewrite(bvadd(0, t), (0 == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 0) && set(r, t->get_child(1));
  }
};

// match:  bvadd(bvneg(t), t_0), identity(t, t_0)
// result: 0
struct GeneratedRewriteRule_bvadd_bvneg_t__t_0__WITH_identity_t_t_0__TO_0
    : BvRewriteRule {
  GeneratedRewriteRule_bvadd_bvneg_t__t_0__WITH_identity_t_t_0__TO_0()
      : BvRewriteRule(T::BV_ADD,
                      "rewrite(bvadd(bvneg(t), t_0), identity(t, t_0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_negates_second(tm, t) && set(r, zero_of(tm, t));
  }
};

// match:  bvadd(t, bvneg(t_0)), identity(t, t_0)
// result: 0
struct GeneratedRewriteRule_bvadd_t_bvneg_t_0___WITH_identity_t_t_0__TO_0
    : BvRewriteRule {
  GeneratedRewriteRule_bvadd_t_bvneg_t_0___WITH_identity_t_t_0__TO_0()
      : BvRewriteRule(T::BV_ADD,
                      "rewrite(bvadd(t, bvneg(t_0)), identity(t, t_0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_negates_first(tm, t) && set(r, zero_of(tm, t));
  }
};

// match:  bvadd(t, t_0), identity(t, t_0), (size(t) > 1)
// result: bvmul(2, t)
struct
    GeneratedRewriteRule_bvadd_t_t_0__WITH_identity_t_t_0___size_t_GT1__TO_bvmul_2_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvadd_t_t_0__WITH_identity_t_t_0___size_t_GT1__TO_bvmul_2_t_()
      : BvRewriteRule(T::BV_ADD,
                      "rewrite(bvadd(t, t_0), identity(t, t_0), (size(t) > 1)) "
                      ">> bvmul(2, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return same_args(t) && bv_size(tm, t) > 1
           && set(r,
                  tm.make_bv_mul(bv_number(tm, 2, bv_size(tm, t)),
                                 t->get_child(0)));
  }
};

// match:  bvadd(t1, t2), (size(t1) == 1)
// result: bvxor(t1, t2)
struct GeneratedRewriteRule_bvadd_t1_t2__WITH__size_t1_EQ1__TO_bvxor_t1_t2_
    : BvRewriteRule {
  GeneratedRewriteRule_bvadd_t1_t2__WITH__size_t1_EQ1__TO_bvxor_t1_t2_()
      : BvRewriteRule(
          T::BV_ADD,
          "rewrite(bvadd(t1, t2), (size(t1) == 1)) >> bvxor(t1, t2)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return bv_size(tm, t) == 1
           && set(r, tm.make_bv_xor(t->get_child(0), t->get_child(1)));
  }
};

// match:  bvsub(t, t_0), identity(t, t_0)
// result: 0
struct GeneratedRewriteRule_bvsub_t_t_0__WITH_identity_t_t_0__TO_0
    : BvRewriteRule {
  GeneratedRewriteRule_bvsub_t_t_0__WITH_identity_t_t_0__TO_0()
      : BvRewriteRule(T::BV_SUB,
                      "rewrite(bvsub(t, t_0), identity(t, t_0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return same_args(t) && set(r, zero_of(tm, t));
  }
};

// match:  bvsub(t1, t2)
// result: bvadd(t1, bvneg(t2))
struct GeneratedRewriteRule_bvsub_t1_t2__WITH__TO_bvadd_t1_bvneg_t2__
    : BvRewriteRule {
  GeneratedRewriteRule_bvsub_t1_t2__WITH__TO_bvadd_t1_bvneg_t2__()
      : BvRewriteRule(T::BV_SUB,
                      "rewrite(bvsub(t1, t2), ) >> bvadd(t1, bvneg(t2))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return set(
        r, tm.make_bv_add(t->get_child(0), tm.make_bv_neg(t->get_child(1))));
  }
};

// match:  bvmul(t, c), const(c), ~const(t)
// result: bvmul(c, t)
struct GeneratedRewriteRule_bvmul_t_c__WITH_const_c__NOTconst_t__TO_bvmul_c_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvmul_t_c__WITH_const_c__NOTconst_t__TO_bvmul_c_t_()
      : BvRewriteRule(
          T::BV_MUL,
          "rewrite(bvmul(t, c), const(c), ~const(t)) >> bvmul(c, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return const_first(tm, t, r);
  }
};

// match:  bvmul(t1, t2), ~const(t1), prec(t2, t1)
// result: bvmul(t2, t1)
struct
    GeneratedRewriteRule_bvmul_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvmul_t2_t1_
    : BvRewriteRule {
  GeneratedRewriteRule_bvmul_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvmul_t2_t1_()
      : BvRewriteRule(T::BV_MUL,
                      "rewrite(bvmul(t1, t2), ~const(t1), prec(t2, t1)) >> "
                      "bvmul(t2, t1)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return order_by_id(tm, t, r);
  }
};

// match:  bvmul(0, t), (0 == 0)
// result: 0
struct GeneratedRewriteRule_bvmul_0_t__WITH__0EQ0__TO_0 : BvRewriteRule {
  GeneratedRewriteRule_bvmul_0_t__WITH__0EQ0__TO_0()
      : BvRewriteRule(T::BV_MUL, "rewrite(bvmul(0, t), (0 == 0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 0) && set(r, t->get_child(0));
  }
};

// match:  bvmul(1, t), (1 == 1)
// result: t
struct GeneratedRewriteRule_bvmul_1_t__WITH__1EQ1__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvmul_1_t__WITH__1EQ1__TO_t()
      : BvRewriteRule(T::BV_MUL, "rewrite(bvmul(1, t), (1 == 1)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 1) && set(r, t->get_child(1));
  }
};

// match:  bvmul(t1, t2), pow2(t1, n)
// result: bvlshl(t2, n)
struct GeneratedRewriteRule_bvmul_t1_t2__WITH_pow2_t1_n__TO_bvlshl_t2_n_
    : BvRewriteRule {
  GeneratedRewriteRule_bvmul_t1_t2__WITH_pow2_t1_n__TO_bvlshl_t2_n_()
      : BvRewriteRule(T::BV_MUL,
                      "rewrite(bvmul(t1, t2), pow2(t1, n)) >> bvlshl(t2, n)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return mul_by_pow2(tm, t, 0, r);
  }
};

// match:  bvmul(t1, t2), pow2(t2, n)
// result: bvlshl(t1, n)
struct GeneratedRewriteRule_bvmul_t1_t2__WITH_pow2_t2_n__TO_bvlshl_t1_n_
    : BvRewriteRule {
  GeneratedRewriteRule_bvmul_t1_t2__WITH_pow2_t2_n__TO_bvlshl_t1_n_()
      : BvRewriteRule(T::BV_MUL,
                      "rewrite(bvmul(t1, t2), pow2(t2, n)) >> bvlshl(t1, n)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return mul_by_pow2(tm, t, 1, r);
  }
};

// match:  bvudiv(t, 1), (1 == 1)
// result: t
struct GeneratedRewriteRule_bvudiv_t_1__WITH__1EQ1__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvudiv_t_1__WITH__1EQ1__TO_t()
      : BvRewriteRule(T::BV_UDIV, "rewrite(bvudiv(t, 1), (1 == 1)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is(tm, t, 1) && set(r, t->get_child(0));
  }
};

// match:  bvudiv(t1, t2), pow2(t2, n)
// result: bvlshr(t1, n)
struct GeneratedRewriteRule_bvudiv_t1_t2__WITH_pow2_t2_n__TO_bvlshr_t1_n_
    : BvRewriteRule {
  GeneratedRewriteRule_bvudiv_t1_t2__WITH_pow2_t2_n__TO_bvlshr_t1_n_()
      : BvRewriteRule(T::BV_UDIV,
                      "rewrite(bvudiv(t1, t2), pow2(t2, n)) >> bvlshr(t1, n)") {
  }

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return udiv_by_pow2(tm, t, r);
  }
};

// match:  bvsdiv(t, 1), (1 == 1)
// result: t
struct GeneratedRewriteRule_bvsdiv_t_1__WITH__1EQ1__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvsdiv_t_1__WITH__1EQ1__TO_t()
      : BvRewriteRule(T::BV_SDIV, "rewrite(bvsdiv(t, 1), (1 == 1)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is(tm, t, 1) && set(r, t->get_child(0));
  }
};

// match:  bvurem(t, 1), (1 == 1)
// result: 0
struct GeneratedRewriteRule_bvurem_t_1__WITH__1EQ1__TO_0 : BvRewriteRule {
  GeneratedRewriteRule_bvurem_t_1__WITH__1EQ1__TO_0()
      : BvRewriteRule(T::BV_UREM, "rewrite(bvurem(t, 1), (1 == 1)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is(tm, t, 1) && set(r, zero_of(tm, t));
  }
};

// match:  bvsrem(t, 1), (1 == 1)
// result: 0
struct GeneratedRewriteRule_bvsrem_t_1__WITH__1EQ1__TO_0 : BvRewriteRule {
  GeneratedRewriteRule_bvsrem_t_1__WITH__1EQ1__TO_0()
      : BvRewriteRule(T::BV_SREM, "rewrite(bvsrem(t, 1), (1 == 1)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is(tm, t, 1) && set(r, zero_of(tm, t));
  }
};

// match:  bvlshl(0, t), (0 == 0)
// result: 0
struct GeneratedRewriteRule_bvlshl_0_t__WITH__0EQ0__TO_0 : BvRewriteRule {
  GeneratedRewriteRule_bvlshl_0_t__WITH__0EQ0__TO_0()
      : BvRewriteRule(T::BV_LSHL, "rewrite(bvlshl(0, t), (0 == 0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 0) && set(r, t->get_child(0));
  }
};

// match:  bvlshl(t, 0), (0 == 0)
// result: t
struct GeneratedRewriteRule_bvlshl_t_0__WITH__0EQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvlshl_t_0__WITH__0EQ0__TO_t()
      : BvRewriteRule(T::BV_LSHL, "rewrite(bvlshl(t, 0), (0 == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is(tm, t, 0) && set(r, t->get_child(0));
  }
};

// match:  bvlshl(t1, t2), (size(t1) <= t2)
// result: 0
struct GeneratedRewriteRule_bvlshl_t1_t2__WITH__size_t1_LEt2__TO_0
    : BvRewriteRule {
  GeneratedRewriteRule_bvlshl_t1_t2__WITH__size_t1_LEt2__TO_0()
      : BvRewriteRule(T::BV_LSHL,
                      "rewrite(bvlshl(t1, t2), (size(t1) <= t2)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return shift_out(tm, t) && set(r, zero_of(tm, t));
  }
};

// match:  bvlshr(0, t), (0 == 0)
// result: 0
struct GeneratedRewriteRule_bvlshr_0_t__WITH__0EQ0__TO_0 : BvRewriteRule {
  GeneratedRewriteRule_bvlshr_0_t__WITH__0EQ0__TO_0()
      : BvRewriteRule(T::BV_LSHR, "rewrite(bvlshr(0, t), (0 == 0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 0) && set(r, t->get_child(0));
  }
};

// match:  bvlshr(t, 0), (0 == 0)
// result: t
struct GeneratedRewriteRule_bvlshr_t_0__WITH__0EQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvlshr_t_0__WITH__0EQ0__TO_t()
      : BvRewriteRule(T::BV_LSHR, "rewrite(bvlshr(t, 0), (0 == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is(tm, t, 0) && set(r, t->get_child(0));
  }
};

// match:  bvlshr(t1, t2), (size(t1) <= t2)
// result: 0
struct GeneratedRewriteRule_bvlshr_t1_t2__WITH__size_t1_LEt2__TO_0
    : BvRewriteRule {
  GeneratedRewriteRule_bvlshr_t1_t2__WITH__size_t1_LEt2__TO_0()
      : BvRewriteRule(T::BV_LSHR,
                      "rewrite(bvlshr(t1, t2), (size(t1) <= t2)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return shift_out(tm, t) && set(r, zero_of(tm, t));
  }
};

// match:  bvashr(0, t), (0 == 0)
// result: 0
struct GeneratedRewriteRule_bvashr_0_t__WITH__0EQ0__TO_0 : BvRewriteRule {
  GeneratedRewriteRule_bvashr_0_t__WITH__0EQ0__TO_0()
      : BvRewriteRule(T::BV_ASHR, "rewrite(bvashr(0, t), (0 == 0)) >> 0") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is(tm, t, 0) && set(r, t->get_child(0));
  }
};

// match:  bvashr(-1, t), (-1 == -1)
// result: -1
struct GeneratedRewriteRule_bvashr_M1_t__WITH__M1EQM1__TO_M1 : BvRewriteRule {
  GeneratedRewriteRule_bvashr_M1_t__WITH__M1EQM1__TO_M1()
      : BvRewriteRule(T::BV_ASHR, "rewrite(bvashr(-1, t), (-1 == -1)) >> -1") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return first_is_ones(tm, t) && set(r, t->get_child(0));
  }
};

// match:  bvashr(t, 0), (0 == 0)
// result: t
struct GeneratedRewriteRule_bvashr_t_0__WITH__0EQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvashr_t_0__WITH__0EQ0__TO_t()
      : BvRewriteRule(T::BV_ASHR, "rewrite(bvashr(t, 0), (0 == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return second_is(tm, t, 0) && set(r, t->get_child(0));
  }
};

// match:  bvrol(n_1, t), (n_1 == 0)
// result: t
struct GeneratedRewriteRule_bvrol_n_1_t__WITH__n_1EQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvrol_n_1_t__WITH__n_1EQ0__TO_t()
      : BvRewriteRule(T::BV_ROL, "rewrite(bvrol(n_1, t), (n_1 == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return amount(tm, t) == 0 && set(r, t->get_child(0));
  }
};

// match:  bvrol(n, t), (n == size(t))
// result: t
struct GeneratedRewriteRule_bvrol_n_t__WITH__nEQsize_t___TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvrol_n_t__WITH__nEQsize_t___TO_t()
      : BvRewriteRule(T::BV_ROL, "rewrite(bvrol(n, t), (n == size(t))) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return amount(tm, t) == bv_size(tm, t) && set(r, t->get_child(0));
  }
};

// match:  bvrol(n, t), (size(t) < n), w2=_n - size(t)_
// result: bvrol(w2, t)
struct
    GeneratedRewriteRule_bvrol_n_t__WITH__size_t_LTn__w2__n_MINUS_size_t___TO_bvrol_w2_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvrol_n_t__WITH__size_t_LTn__w2__n_MINUS_size_t___TO_bvrol_w2_t_()
      : BvRewriteRule(
          T::BV_ROL,
          "rewrite(bvrol(n, t), (size(t) < n), w2=_n - size(t)_) >> "
          "bvrol(w2, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return rotate_reduce(tm, t, r);
  }
};

// match:  bvrol(n1, bvrol(n2, t)), w=_n1 + n2_
// result: bvrol(w, t)
struct
    GeneratedRewriteRule_bvrol_n1_bvrol_n2_t___WITH_w__n1_PLUS_n2__TO_bvrol_w_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvrol_n1_bvrol_n2_t___WITH_w__n1_PLUS_n2__TO_bvrol_w_t_()
      : BvRewriteRule(T::BV_ROL,
                      "rewrite(bvrol(n1, bvrol(n2, t)), w=_n1 + n2_) >> "
                      "bvrol(w, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return rotate_twice(tm, t, r);
  }
};

// match:  bvror(n_2, t), (n_2 == 0)
// result: t
struct GeneratedRewriteRule_bvror_n_2_t__WITH__n_2EQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvror_n_2_t__WITH__n_2EQ0__TO_t()
      : BvRewriteRule(T::BV_ROR, "rewrite(bvror(n_2, t), (n_2 == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return amount(tm, t) == 0 && set(r, t->get_child(0));
  }
};

// match:  bvror(n, t), (n == size(t))
// result: t
struct GeneratedRewriteRule_bvror_n_t__WITH__nEQsize_t___TO_t : BvRewriteRule {
  GeneratedRewriteRule_bvror_n_t__WITH__nEQsize_t___TO_t()
      : BvRewriteRule(T::BV_ROR, "rewrite(bvror(n, t), (n == size(t))) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return amount(tm, t) == bv_size(tm, t) && set(r, t->get_child(0));
  }
};

// match:  bvror(n, t), (size(t) < n), w2=_n - size(t)_
// result: bvror(w2, t)
struct
    GeneratedRewriteRule_bvror_n_t__WITH__size_t_LTn__w2__n_MINUS_size_t___TO_bvror_w2_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvror_n_t__WITH__size_t_LTn__w2__n_MINUS_size_t___TO_bvror_w2_t_()
      : BvRewriteRule(
          T::BV_ROR,
          "rewrite(bvror(n, t), (size(t) < n), w2=_n - size(t)_) >> "
          "bvror(w2, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return rotate_reduce(tm, t, r);
  }
};

// match:  bvror(n1, bvror(n2, t)), w=_n1 + n2_
// result: bvror(w, t)
struct
    GeneratedRewriteRule_bvror_n1_bvror_n2_t___WITH_w__n1_PLUS_n2__TO_bvror_w_t_
    : BvRewriteRule {
  GeneratedRewriteRule_bvror_n1_bvror_n2_t___WITH_w__n1_PLUS_n2__TO_bvror_w_t_()
      : BvRewriteRule(T::BV_ROR,
                      "rewrite(bvror(n1, bvror(n2, t)), w=_n1 + n2_) >> "
                      "bvror(w, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return rotate_twice(tm, t, r);
  }
};

// match:  zext(n, t), (n == 0)
// result: t
struct GeneratedRewriteRule_zext_n_t__WITH__nEQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_zext_n_t__WITH__nEQ0__TO_t()
      : BvRewriteRule(T::BV_ZEXT, "rewrite(zext(n, t), (n == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return amount(tm, t) == 0 && set(r, t->get_child(0));
  }
};

// match:  zext(n1, zext(n2, t)), s=_n1 + n2_
// result: zext(s, t)
struct GeneratedRewriteRule_zext_n1_zext_n2_t___WITH_s__n1_PLUS_n2__TO_zext_s_t_
    : BvRewriteRule {
  GeneratedRewriteRule_zext_n1_zext_n2_t___WITH_s__n1_PLUS_n2__TO_zext_s_t_()
      : BvRewriteRule(
          T::BV_ZEXT,
          "rewrite(zext(n1, zext(n2, t)), s=_n1 + n2_) >> zext(s, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return extend_twice(tm, t, r);
  }
};

// match:  zext(n, concat(t2, t)), varvalue(t2, 0), w=_n + size(t2)_
// result: zext(w, t)
struct
    GeneratedRewriteRule_zext_n_concat_t2_t___WITH_varvalue_t2_0__w__n_PLUS_size_t2___TO_zext_w_t_
    : BvRewriteRule {
  GeneratedRewriteRule_zext_n_concat_t2_t___WITH_varvalue_t2_0__w__n_PLUS_size_t2___TO_zext_w_t_()
      : BvRewriteRule(T::BV_ZEXT,
                      "rewrite(zext(n, concat(t2, t)), varvalue(t2, 0), w=_n + "
                      "size(t2)_) >> zext(w, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return extend_zero_concat(tm, t, r);
  }
};

// match:  sext(n, t), (n == 0)
// result: t
struct GeneratedRewriteRule_sext_n_t__WITH__nEQ0__TO_t : BvRewriteRule {
  GeneratedRewriteRule_sext_n_t__WITH__nEQ0__TO_t()
      : BvRewriteRule(T::BV_SEXT, "rewrite(sext(n, t), (n == 0)) >> t") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return amount(tm, t) == 0 && set(r, t->get_child(0));
  }
};

// match:  sext(n1, sext(n2, t)), s=_n1 + n2_
// result: sext(s, t)
struct GeneratedRewriteRule_sext_n1_sext_n2_t___WITH_s__n1_PLUS_n2__TO_sext_s_t_
    : BvRewriteRule {
  GeneratedRewriteRule_sext_n1_sext_n2_t___WITH_s__n1_PLUS_n2__TO_sext_s_t_()
      : BvRewriteRule(
          T::BV_SEXT,
          "rewrite(sext(n1, sext(n2, t)), s=_n1 + n2_) >> sext(s, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return extend_twice(tm, t, r);
  }
};

// match:  sext(n, concat(t2, t)), varvalue(t2, 0), w=_n + size(t2)_
// result: zext(w, t)
struct
    GeneratedRewriteRule_sext_n_concat_t2_t___WITH_varvalue_t2_0__w__n_PLUS_size_t2___TO_zext_w_t_
    : BvRewriteRule {
  GeneratedRewriteRule_sext_n_concat_t2_t___WITH_varvalue_t2_0__w__n_PLUS_size_t2___TO_zext_w_t_()
      : BvRewriteRule(T::BV_SEXT,
                      "rewrite(sext(n, concat(t2, t)), varvalue(t2, 0), w=_n + "
                      "size(t2)_) >> zext(w, t)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return extend_zero_concat(tm, t, r);
  }
};

}  // namespace
}  // namespace norm

namespace termsimpl {

void register_bv_op_rules(StdTermSimplifier& s) {
  using namespace norm;
  TermNormalizer::norm_fun* rules[] = {
      new GeneratedRewriteRule_bvneg_bvneg_t___WITH__TO_t(),
      new GeneratedRewriteRule_bvadd_t_c__WITH_const_c__NOTconst_t__TO_bvadd_c_t_(),
      new GeneratedRewriteRule_bvadd_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvadd_t2_t1_(),
      new GeneratedRewriteRule_bvadd_0_t__WITH__0EQ0__TO_t(),
      new GeneratedRewriteRule_bvadd_bvneg_t__t_0__WITH_identity_t_t_0__TO_0(),
      new GeneratedRewriteRule_bvadd_t_bvneg_t_0___WITH_identity_t_t_0__TO_0(),
      new GeneratedRewriteRule_bvadd_t_t_0__WITH_identity_t_t_0___size_t_GT1__TO_bvmul_2_t_(),
      new GeneratedRewriteRule_bvadd_t1_t2__WITH__size_t1_EQ1__TO_bvxor_t1_t2_(),
      new GeneratedRewriteRule_bvsub_t_t_0__WITH_identity_t_t_0__TO_0(),
      new GeneratedRewriteRule_bvsub_t1_t2__WITH__TO_bvadd_t1_bvneg_t2__(),
      new GeneratedRewriteRule_bvmul_t_c__WITH_const_c__NOTconst_t__TO_bvmul_c_t_(),
      new GeneratedRewriteRule_bvmul_t1_t2__WITH_NOTconst_t1__prec_t2_t1__TO_bvmul_t2_t1_(),
      new GeneratedRewriteRule_bvmul_0_t__WITH__0EQ0__TO_0(),
      new GeneratedRewriteRule_bvmul_1_t__WITH__1EQ1__TO_t(),
      new GeneratedRewriteRule_bvmul_t1_t2__WITH_pow2_t1_n__TO_bvlshl_t2_n_(),
      new GeneratedRewriteRule_bvmul_t1_t2__WITH_pow2_t2_n__TO_bvlshl_t1_n_(),
      new GeneratedRewriteRule_bvudiv_t_1__WITH__1EQ1__TO_t(),
      new GeneratedRewriteRule_bvudiv_t1_t2__WITH_pow2_t2_n__TO_bvlshr_t1_n_(),
      new GeneratedRewriteRule_bvsdiv_t_1__WITH__1EQ1__TO_t(),
      new GeneratedRewriteRule_bvurem_t_1__WITH__1EQ1__TO_0(),
      new GeneratedRewriteRule_bvsrem_t_1__WITH__1EQ1__TO_0(),
      new GeneratedRewriteRule_bvlshl_0_t__WITH__0EQ0__TO_0(),
      new GeneratedRewriteRule_bvlshl_t_0__WITH__0EQ0__TO_t(),
      new GeneratedRewriteRule_bvlshl_t1_t2__WITH__size_t1_LEt2__TO_0(),
      new GeneratedRewriteRule_bvlshr_0_t__WITH__0EQ0__TO_0(),
      new GeneratedRewriteRule_bvlshr_t_0__WITH__0EQ0__TO_t(),
      new GeneratedRewriteRule_bvlshr_t1_t2__WITH__size_t1_LEt2__TO_0(),
      new GeneratedRewriteRule_bvashr_0_t__WITH__0EQ0__TO_0(),
      new GeneratedRewriteRule_bvashr_M1_t__WITH__M1EQM1__TO_M1(),
      new GeneratedRewriteRule_bvashr_t_0__WITH__0EQ0__TO_t(),
      new GeneratedRewriteRule_bvrol_n_1_t__WITH__n_1EQ0__TO_t(),
      new GeneratedRewriteRule_bvrol_n_t__WITH__nEQsize_t___TO_t(),
      new GeneratedRewriteRule_bvrol_n_t__WITH__size_t_LTn__w2__n_MINUS_size_t___TO_bvrol_w2_t_(),
      new GeneratedRewriteRule_bvrol_n1_bvrol_n2_t___WITH_w__n1_PLUS_n2__TO_bvrol_w_t_(),
      new GeneratedRewriteRule_bvror_n_2_t__WITH__n_2EQ0__TO_t(),
      new GeneratedRewriteRule_bvror_n_t__WITH__nEQsize_t___TO_t(),
      new GeneratedRewriteRule_bvror_n_t__WITH__size_t_LTn__w2__n_MINUS_size_t___TO_bvror_w2_t_(),
      new GeneratedRewriteRule_bvror_n1_bvror_n2_t___WITH_w__n1_PLUS_n2__TO_bvror_w_t_(),
      new GeneratedRewriteRule_zext_n_t__WITH__nEQ0__TO_t(),
      new GeneratedRewriteRule_zext_n1_zext_n2_t___WITH_s__n1_PLUS_n2__TO_zext_s_t_(),
      new GeneratedRewriteRule_zext_n_concat_t2_t___WITH_varvalue_t2_0__w__n_PLUS_size_t2___TO_zext_w_t_(),
      new GeneratedRewriteRule_sext_n_t__WITH__nEQ0__TO_t(),
      new GeneratedRewriteRule_sext_n1_sext_n2_t___WITH_s__n1_PLUS_n2__TO_sext_s_t_(),
      new GeneratedRewriteRule_sext_n_concat_t2_t___WITH_varvalue_t2_0__w__n_PLUS_size_t2___TO_zext_w_t_(),
  };
  for (TermNormalizer::norm_fun* rule : rules) {
    s.register_normalization(rule);
  }
}

}  // namespace termsimpl
}  // namespace zenlo
