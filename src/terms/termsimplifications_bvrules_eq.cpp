// The rewrite rules on equalities of bit-vectors. Most come in two
// orientations, (op(...) == x) and (x == op(...)); one function with the
// side of the operation as a parameter serves both, and each orientation
// is its own rule class with its own text.
#include "terms/bvrewriterule.h"
#include "terms/termsimplifications_impl.h"

namespace zenlo {
namespace norm {

namespace {

using T = SymbolTag;

struct EqRule : BvRewriteRule {
  explicit EqRule(const char* signature) : BvRewriteRule(T::EQ, signature) {}
};

// The side of the pattern's operation, and the other side.
struct Sides {
  Sides(const Term_* t, int side)
      : op(t->get_child(side)), other(t->get_child(1 - side)) {}

  const Term_* op;
  const Term_* other;
};

bool set(const Term_** r, const Term_* v) {
  *r = v;
  return true;
}

// (bvadd(t1, t2) == 0)  ->  (t1 == bvneg(t2))
bool add_eq_zero(TermManager& tm, const Term_* t, int side, const Term_** r) {
  Sides s(t, side);
  if (!has_tag(tm, s.op, T::BV_ADD) || !bv_is(tm, s.other, 0)) {
    return false;
  }
  return set(
      r, tm.make_equal(s.op->get_child(0), tm.make_bv_neg(s.op->get_child(1))));
}

// (bvmul(-1, t1) == 0)  ->  (t1 == 0): -1 is odd, so it has an inverse.
bool mul_ones_eq_zero(TermManager& tm,
                      const Term_* t,
                      int side,
                      const Term_** r) {
  Sides s(t, side);
  if (!has_tag(tm, s.op, T::BV_MUL) || !bv_is_ones(tm, s.op->get_child(0))
      || !bv_is(tm, s.other, 0)) {
    return false;
  }
  return set(r, tm.make_equal(s.op->get_child(1), s.other));
}

// (bvor(c1, t) == c2) with c1 > c2  ->  false: the or is at least c1.
bool or_const_above(TermManager& tm,
                    const Term_* t,
                    int side,
                    const Term_** r) {
  Sides s(t, side);
  QNumber c1, c2;
  if (!has_tag(tm, s.op, T::BV_OR) || !bv_const(tm, s.op->get_child(0), &c1)
      || !bv_const(tm, s.other, &c2) || !(c1 > c2)) {
    return false;
  }
  return set(r, tm.make_false());
}

// (bvneg(t) == t), width 1  ->  true
bool neg_eq_self(TermManager& tm, const Term_* t, int side, const Term_** r) {
  Sides s(t, side);
  if (!has_tag(tm, s.op, T::BV_NEG) || s.op->get_child(0) != s.other
      || bv_size(tm, s.other) != 1) {
    return false;
  }
  return set(r, tm.make_true());
}

// (unary(t) == c)  ->  (t == unary(c)), for the involutions bvneg, bvnot
bool unary_eq_const(TermManager& tm,
                    const Term_* t,
                    int side,
                    SymbolTag::tag op,
                    const Term_** r) {
  Sides s(t, side);
  if (!has_tag(tm, s.op, op) || !bv_const(tm, s.other)) {
    return false;
  }
  const Term_* c =
      op == T::BV_NEG ? tm.make_bv_neg(s.other) : tm.make_bv_not(s.other);
  return set(r, tm.make_equal(s.op->get_child(0), c));
}

// (bvnot(t) == t)  ->  false
bool not_eq_self(TermManager& tm, const Term_* t, int side, const Term_** r) {
  Sides s(t, side);
  if (!has_tag(tm, s.op, T::BV_NOT) || s.op->get_child(0) != s.other) {
    return false;
  }
  return set(r, tm.make_false());
}

// (bvxor(t1, t2) == 0)  ->  (t1 == t2)
bool xor_eq_zero(TermManager& tm, const Term_* t, int side, const Term_** r) {
  Sides s(t, side);
  if (!has_tag(tm, s.op, T::BV_XOR) || !bv_is(tm, s.other, 0)) {
    return false;
  }
  return set(r, tm.make_equal(s.op->get_child(0), s.op->get_child(1)));
}

// (bvxor(t1, t2) == -1)  ->  (bvnot(t1) == t2)
bool xor_eq_ones(TermManager& tm, const Term_* t, int side, const Term_** r) {
  Sides s(t, side);
  if (!has_tag(tm, s.op, T::BV_XOR) || !bv_is_ones(tm, s.other)) {
    return false;
  }
  return set(
      r, tm.make_equal(tm.make_bv_not(s.op->get_child(0)), s.op->get_child(1)));
}

// (ext(n, t1) == 0)  ->  (t1 == 0), for zero and sign extension
bool ext_eq_zero(TermManager& tm,
                 const Term_* t,
                 int side,
                 SymbolTag::tag op,
                 const Term_** r) {
  Sides s(t, side);
  if (!has_tag(tm, s.op, op) || !bv_is(tm, s.other, 0)) {
    return false;
  }
  const Term_* t1 = s.op->get_child(0);
  return set(r, tm.make_equal(t1, bv_number(tm, 0, bv_size(tm, t1))));
}

// (zext(n, t) == -1), n > 0  ->  false: the top bit is 0. With n = 0 the
// extension is t itself, which may well be all ones.
bool zext_eq_ones(TermManager& tm, const Term_* t, int side, const Term_** r) {
  Sides s(t, side);
  size_t n = 0;
  if (!tm.is_bv_zext(s.op->get_symbol(), &n) || n == 0
      || !bv_is_ones(tm, s.other)) {
    return false;
  }
  return set(r, tm.make_false());
}

// (sext(n, t1) == -1)  ->  (t1 == -1)
bool sext_eq_ones(TermManager& tm, const Term_* t, int side, const Term_** r) {
  Sides s(t, side);
  if (!has_tag(tm, s.op, T::BV_SEXT) || !bv_is_ones(tm, s.other)) {
    return false;
  }
  const Term_* t1 = s.op->get_child(0);
  return set(r, tm.make_equal(t1, bv_ones(tm, bv_size(tm, t1))));
}

// (op(t1) == op(t2))  ->  (t1 == t2), for the injective bvneg, bvnot
bool unary_eq_unary(TermManager& tm,
                    const Term_* t,
                    SymbolTag::tag op,
                    const Term_** r) {
  const Term_* a = t->get_child(0);
  const Term_* b = t->get_child(1);
  if (!has_tag(tm, a, op) || !has_tag(tm, b, op)) {
    return false;
  }
  return set(r, tm.make_equal(a->get_child(0), b->get_child(0)));
}

// ---- The rule classes, in the order of registration -------------------

// match:  (bvadd(t1, t2) == t3), (t3 == 0)
// result: (t1 == bvneg(t2))
struct GeneratedRewriteRule__bvadd_t1_t2_EQt3__WITH__t3EQ0__TO__t1EQbvneg_t2__
    : EqRule {
  GeneratedRewriteRule__bvadd_t1_t2_EQt3__WITH__t3EQ0__TO__t1EQbvneg_t2__()
      : EqRule(
          "rewrite((bvadd(t1, t2) == t3), (t3 == 0)) >> (t1 == bvneg(t2))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return add_eq_zero(tm, t, 0, r);
  }
};

// match:  (t3 == bvadd(t1, t2)), (t3 == 0)
// result: (t1 == bvneg(t2))
struct GeneratedRewriteRule__t3EQbvadd_t1_t2___WITH__t3EQ0__TO__t1EQbvneg_t2__
    : EqRule {
  GeneratedRewriteRule__t3EQbvadd_t1_t2___WITH__t3EQ0__TO__t1EQbvneg_t2__()
      : EqRule(
          "rewrite((t3 == bvadd(t1, t2)), (t3 == 0)) >> (t1 == bvneg(t2))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return add_eq_zero(tm, t, 1, r);
  }
};

// match:  (bvmul(-1, t1) == t2), (t2 == 0)
// result: (t1 == 0)
struct GeneratedRewriteRule__bvmul_M1_t1_EQt2__WITH__M1EQM1___t2EQ0__TO__t1EQ0_
    : EqRule {
  GeneratedRewriteRule__bvmul_M1_t1_EQt2__WITH__M1EQM1___t2EQ0__TO__t1EQ0_()
      : EqRule(
          "rewrite((bvmul(-1, t1) == t2), (-1 == -1), (t2 == 0)) >> (t1 == "
          "0)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return mul_ones_eq_zero(tm, t, 0, r);
  }
};

// match:  (t2 == bvmul(-1, t1)), (t2 == 0)
// result: (t1 == 0)
struct GeneratedRewriteRule__t2EQbvmul_M1_t1___WITH__M1EQM1___t2EQ0__TO__t1EQ0_
    : EqRule {
  GeneratedRewriteRule__t2EQbvmul_M1_t1___WITH__M1EQM1___t2EQ0__TO__t1EQ0_()
      : EqRule(
          "rewrite((t2 == bvmul(-1, t1)), (-1 == -1), (t2 == 0)) >> (t1 == "
          "0)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return mul_ones_eq_zero(tm, t, 1, r);
  }
};

// match:  (bvor(c1, t) == c2), c1 > c2
// result: false
struct
    GeneratedRewriteRule__bvor_c1_t_EQc2__WITH_const_c1__const_c2___c1GTc2__TO_false
    : EqRule {
  GeneratedRewriteRule__bvor_c1_t_EQc2__WITH_const_c1__const_c2___c1GTc2__TO_false()
      : EqRule(
          "rewrite((bvor(c1, t) == c2), const(c1), const(c2), (c1 > c2)) >> "
          "false") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return or_const_above(tm, t, 0, r);
  }
};

// match:  (c2 == bvor(c1, t)), c1 > c2
// result: false
struct
    GeneratedRewriteRule__c2EQbvor_c1_t___WITH_const_c2__const_c1___c1GTc2__TO_false
    : EqRule {
  GeneratedRewriteRule__c2EQbvor_c1_t___WITH_const_c2__const_c1___c1GTc2__TO_false()
      : EqRule(
          "rewrite((c2 == bvor(c1, t)), const(c2), const(c1), (c1 > c2)) >> "
          "false") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return or_const_above(tm, t, 1, r);
  }
};

// match:  (bvneg(t1) == bvneg(t2))
// result: (t1 == t2)
struct GeneratedRewriteRule__bvneg_t1_EQbvneg_t2___WITH__TO__t1EQt2_ : EqRule {
  GeneratedRewriteRule__bvneg_t1_EQbvneg_t2___WITH__TO__t1EQt2_()
      : EqRule("rewrite((bvneg(t1) == bvneg(t2)), ) >> (t1 == t2)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return unary_eq_unary(tm, t, T::BV_NEG, r);
  }
};

// match:  (bvneg(t) == t), size(t) == 1
// result: true
struct
    GeneratedRewriteRule__bvneg_t_EQt_0__WITH_identity_t_t_0___size_t_EQ1__TO_true
    : EqRule {
  GeneratedRewriteRule__bvneg_t_EQt_0__WITH_identity_t_t_0___size_t_EQ1__TO_true()
      : EqRule(
          "rewrite((bvneg(t) == t_0), identity(t, t_0), (size(t) == 1)) >> "
          "true") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return neg_eq_self(tm, t, 0, r);
  }
};

// match:  (t == bvneg(t)), size(t) == 1
// result: true
struct
    GeneratedRewriteRule__tEQbvneg_t_0___WITH_identity_t_t_0___size_t_EQ1__TO_true
    : EqRule {
  GeneratedRewriteRule__tEQbvneg_t_0___WITH_identity_t_t_0___size_t_EQ1__TO_true()
      : EqRule(
          "rewrite((t == bvneg(t_0)), identity(t, t_0), (size(t) == 1)) >> "
          "true") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return neg_eq_self(tm, t, 1, r);
  }
};

// match:  (bvneg(t) == c)
// result: (t == bvneg(c))
struct GeneratedRewriteRule__bvneg_t_EQc__WITH_const_c__TO__tEQbvneg_c__
    : EqRule {
  GeneratedRewriteRule__bvneg_t_EQc__WITH_const_c__TO__tEQbvneg_c__()
      : EqRule("rewrite((bvneg(t) == c), const(c)) >> (t == bvneg(c))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return unary_eq_const(tm, t, 0, T::BV_NEG, r);
  }
};

// match:  (c == bvneg(t))
// result: (t == bvneg(c))
struct GeneratedRewriteRule__cEQbvneg_t___WITH_const_c__TO__tEQbvneg_c__
    : EqRule {
  GeneratedRewriteRule__cEQbvneg_t___WITH_const_c__TO__tEQbvneg_c__()
      : EqRule("rewrite((c == bvneg(t)), const(c)) >> (t == bvneg(c))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return unary_eq_const(tm, t, 1, T::BV_NEG, r);
  }
};

// match:  (bvnot(t) == c)
// result: (t == bvnot(c))
struct GeneratedRewriteRule__bvnot_t_EQc__WITH_const_c__TO__tEQbvnot_c__
    : EqRule {
  GeneratedRewriteRule__bvnot_t_EQc__WITH_const_c__TO__tEQbvnot_c__()
      : EqRule("rewrite((bvnot(t) == c), const(c)) >> (t == bvnot(c))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return unary_eq_const(tm, t, 0, T::BV_NOT, r);
  }
};

// match:  (c == bvnot(t))
// result: (t == bvnot(c))
struct GeneratedRewriteRule__cEQbvnot_t___WITH_const_c__TO__tEQbvnot_c__
    : EqRule {
  GeneratedRewriteRule__cEQbvnot_t___WITH_const_c__TO__tEQbvnot_c__()
      : EqRule("rewrite((c == bvnot(t)), const(c)) >> (t == bvnot(c))") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return unary_eq_const(tm, t, 1, T::BV_NOT, r);
  }
};

// match:  (bvnot(t1) == bvnot(t2))
// result: (t1 == t2)
struct GeneratedRewriteRule__bvnot_t1_EQbvnot_t2___WITH__TO__t1EQt2_ : EqRule {
  GeneratedRewriteRule__bvnot_t1_EQbvnot_t2___WITH__TO__t1EQt2_()
      : EqRule("rewrite((bvnot(t1) == bvnot(t2)), ) >> (t1 == t2)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return unary_eq_unary(tm, t, T::BV_NOT, r);
  }
};

// match:  (bvnot(t) == t)
// result: false
struct GeneratedRewriteRule__bvnot_t_EQt_0__WITH_identity_t_t_0__TO_false
    : EqRule {
  GeneratedRewriteRule__bvnot_t_EQt_0__WITH_identity_t_t_0__TO_false()
      : EqRule("rewrite((bvnot(t) == t_0), identity(t, t_0)) >> false") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return not_eq_self(tm, t, 0, r);
  }
};

// match:  (t == bvnot(t))
// result: false
struct GeneratedRewriteRule__tEQbvnot_t_0___WITH_identity_t_t_0__TO_false
    : EqRule {
  GeneratedRewriteRule__tEQbvnot_t_0___WITH_identity_t_t_0__TO_false()
      : EqRule("rewrite((t == bvnot(t_0)), identity(t, t_0)) >> false") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return not_eq_self(tm, t, 1, r);
  }
};

// match:  (bvxor(t1, t2) == 0)
// result: (t1 == t2)
struct GeneratedRewriteRule__bvxor_t1_t2_EQt3__WITH__t3EQ0__TO__t1EQt2_
    : EqRule {
  GeneratedRewriteRule__bvxor_t1_t2_EQt3__WITH__t3EQ0__TO__t1EQt2_()
      : EqRule("rewrite((bvxor(t1, t2) == t3), (t3 == 0)) >> (t1 == t2)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return xor_eq_zero(tm, t, 0, r);
  }
};

// match:  (0 == bvxor(t1, t2))
// result: (t1 == t2)
struct GeneratedRewriteRule__t3EQbvxor_t1_t2___WITH__t3EQ0__TO__t1EQt2_
    : EqRule {
  GeneratedRewriteRule__t3EQbvxor_t1_t2___WITH__t3EQ0__TO__t1EQt2_()
      : EqRule("rewrite((t3 == bvxor(t1, t2)), (t3 == 0)) >> (t1 == t2)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return xor_eq_zero(tm, t, 1, r);
  }
};

// match:  (bvxor(t1, t2) == -1)
// result: (bvnot(t1) == t2)
struct GeneratedRewriteRule__bvxor_t1_t2_EQt3__WITH__t3EQM1__TO__bvnot_t1_EQt2_
    : EqRule {
  GeneratedRewriteRule__bvxor_t1_t2_EQt3__WITH__t3EQM1__TO__bvnot_t1_EQt2_()
      : EqRule(
          "rewrite((bvxor(t1, t2) == t3), (t3 == -1)) >> (bvnot(t1) == t2)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return xor_eq_ones(tm, t, 0, r);
  }
};

// match:  (-1 == bvxor(t1, t2))
// result: (bvnot(t1) == t2)
struct GeneratedRewriteRule__t3EQbvxor_t1_t2___WITH__t3EQM1__TO__bvnot_t1_EQt2_
    : EqRule {
  GeneratedRewriteRule__t3EQbvxor_t1_t2___WITH__t3EQM1__TO__bvnot_t1_EQt2_()
      : EqRule(
          "rewrite((t3 == bvxor(t1, t2)), (t3 == -1)) >> (bvnot(t1) == t2)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return xor_eq_ones(tm, t, 1, r);
  }
};

// match:  (zext(n, t1) == 0)
// result: (t1 == 0)
struct GeneratedRewriteRule__zext_n_t1_EQt2__WITH__t2EQ0__TO__t1EQ0_ : EqRule {
  GeneratedRewriteRule__zext_n_t1_EQt2__WITH__t2EQ0__TO__t1EQ0_()
      : EqRule("rewrite((zext(n, t1) == t2), (t2 == 0)) >> (t1 == 0)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return ext_eq_zero(tm, t, 0, T::BV_ZEXT, r);
  }
};

// match:  (0 == zext(n, t1))
// result: (t1 == 0)
struct GeneratedRewriteRule__t2EQzext_n_t1___WITH__t2EQ0__TO__t1EQ0_ : EqRule {
  GeneratedRewriteRule__t2EQzext_n_t1___WITH__t2EQ0__TO__t1EQ0_()
      : EqRule("rewrite((t2 == zext(n, t1)), (t2 == 0)) >> (t1 == 0)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return ext_eq_zero(tm, t, 1, T::BV_ZEXT, r);
  }
};

// match:  (zext(n, t) == -1), n > 0
// result: false
struct GeneratedRewriteRule__zext_n_t_EQt2__WITH__t2EQM1___nGT0__TO_false
    : EqRule {
  GeneratedRewriteRule__zext_n_t_EQt2__WITH__t2EQM1___nGT0__TO_false()
      : EqRule("rewrite((zext(n, t) == t2), (t2 == -1), (n > 0)) >> false") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return zext_eq_ones(tm, t, 0, r);
  }
};

// match:  (-1 == zext(n, t)), n > 0
// result: false
struct GeneratedRewriteRule__t2EQzext_n_t___WITH__t2EQM1___nGT0__TO_false
    : EqRule {
  GeneratedRewriteRule__t2EQzext_n_t___WITH__t2EQM1___nGT0__TO_false()
      : EqRule("rewrite((t2 == zext(n, t)), (t2 == -1), (n > 0)) >> false") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return zext_eq_ones(tm, t, 1, r);
  }
};

// match:  (sext(n, t1) == 0)
// result: (t1 == 0)
struct GeneratedRewriteRule__sext_n_t1_EQt2__WITH__t2EQ0__TO__t1EQ0_ : EqRule {
  GeneratedRewriteRule__sext_n_t1_EQt2__WITH__t2EQ0__TO__t1EQ0_()
      : EqRule("rewrite((sext(n, t1) == t2), (t2 == 0)) >> (t1 == 0)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return ext_eq_zero(tm, t, 0, T::BV_SEXT, r);
  }
};

// match:  (0 == sext(n, t1))
// result: (t1 == 0)
struct GeneratedRewriteRule__t2EQsext_n_t1___WITH__t2EQ0__TO__t1EQ0_ : EqRule {
  GeneratedRewriteRule__t2EQsext_n_t1___WITH__t2EQ0__TO__t1EQ0_()
      : EqRule("rewrite((t2 == sext(n, t1)), (t2 == 0)) >> (t1 == 0)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return ext_eq_zero(tm, t, 1, T::BV_SEXT, r);
  }
};

// match:  (sext(n, t1) == -1)
// result: (t1 == -1)
struct GeneratedRewriteRule__sext_n_t1_EQt2__WITH__t2EQM1__TO__t1EQM1_
    : EqRule {
  GeneratedRewriteRule__sext_n_t1_EQt2__WITH__t2EQM1__TO__t1EQM1_()
      : EqRule("rewrite((sext(n, t1) == t2), (t2 == -1)) >> (t1 == -1)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return sext_eq_ones(tm, t, 0, r);
  }
};

// match:  (-1 == sext(n, t1))
// result: (t1 == -1)
struct GeneratedRewriteRule__t2EQsext_n_t1___WITH__t2EQM1__TO__t1EQM1_
    : EqRule {
  GeneratedRewriteRule__t2EQsext_n_t1___WITH__t2EQM1__TO__t1EQM1_()
      : EqRule("rewrite((t2 == sext(n, t1)), (t2 == -1)) >> (t1 == -1)") {}

  bool operator()(TermManager& tm, const Term_* t, const Term_** r) override {
    return sext_eq_ones(tm, t, 1, r);
  }
};

}  // namespace
}  // namespace norm

namespace termsimpl {

void register_bv_eq_rules(StdTermSimplifier& s) {
  using namespace norm;
  TermNormalizer::norm_fun* rules[] = {
      new GeneratedRewriteRule__bvadd_t1_t2_EQt3__WITH__t3EQ0__TO__t1EQbvneg_t2__(),
      new GeneratedRewriteRule__t3EQbvadd_t1_t2___WITH__t3EQ0__TO__t1EQbvneg_t2__(),
      new GeneratedRewriteRule__bvmul_M1_t1_EQt2__WITH__M1EQM1___t2EQ0__TO__t1EQ0_(),
      new GeneratedRewriteRule__t2EQbvmul_M1_t1___WITH__M1EQM1___t2EQ0__TO__t1EQ0_(),
      new GeneratedRewriteRule__bvor_c1_t_EQc2__WITH_const_c1__const_c2___c1GTc2__TO_false(),
      new GeneratedRewriteRule__c2EQbvor_c1_t___WITH_const_c2__const_c1___c1GTc2__TO_false(),
      new GeneratedRewriteRule__bvneg_t1_EQbvneg_t2___WITH__TO__t1EQt2_(),
      new GeneratedRewriteRule__bvneg_t_EQt_0__WITH_identity_t_t_0___size_t_EQ1__TO_true(),
      new GeneratedRewriteRule__tEQbvneg_t_0___WITH_identity_t_t_0___size_t_EQ1__TO_true(),
      new GeneratedRewriteRule__bvneg_t_EQc__WITH_const_c__TO__tEQbvneg_c__(),
      new GeneratedRewriteRule__cEQbvneg_t___WITH_const_c__TO__tEQbvneg_c__(),
      new GeneratedRewriteRule__bvnot_t_EQc__WITH_const_c__TO__tEQbvnot_c__(),
      new GeneratedRewriteRule__cEQbvnot_t___WITH_const_c__TO__tEQbvnot_c__(),
      new GeneratedRewriteRule__bvnot_t1_EQbvnot_t2___WITH__TO__t1EQt2_(),
      new GeneratedRewriteRule__bvnot_t_EQt_0__WITH_identity_t_t_0__TO_false(),
      new GeneratedRewriteRule__tEQbvnot_t_0___WITH_identity_t_t_0__TO_false(),
      new GeneratedRewriteRule__bvxor_t1_t2_EQt3__WITH__t3EQ0__TO__t1EQt2_(),
      new GeneratedRewriteRule__t3EQbvxor_t1_t2___WITH__t3EQ0__TO__t1EQt2_(),
      new GeneratedRewriteRule__bvxor_t1_t2_EQt3__WITH__t3EQM1__TO__bvnot_t1_EQt2_(),
      new GeneratedRewriteRule__t3EQbvxor_t1_t2___WITH__t3EQM1__TO__bvnot_t1_EQt2_(),
      new GeneratedRewriteRule__zext_n_t1_EQt2__WITH__t2EQ0__TO__t1EQ0_(),
      new GeneratedRewriteRule__t2EQzext_n_t1___WITH__t2EQ0__TO__t1EQ0_(),
      new GeneratedRewriteRule__zext_n_t_EQt2__WITH__t2EQM1___nGT0__TO_false(),
      new GeneratedRewriteRule__t2EQzext_n_t___WITH__t2EQM1___nGT0__TO_false(),
      new GeneratedRewriteRule__sext_n_t1_EQt2__WITH__t2EQ0__TO__t1EQ0_(),
      new GeneratedRewriteRule__t2EQsext_n_t1___WITH__t2EQ0__TO__t1EQ0_(),
      new GeneratedRewriteRule__sext_n_t1_EQt2__WITH__t2EQM1__TO__t1EQM1_(),
      new GeneratedRewriteRule__t2EQsext_n_t1___WITH__t2EQM1__TO__t1EQM1_(),
  };
  for (TermNormalizer::norm_fun* rule : rules) {
    s.register_normalization(rule);
  }
}

}  // namespace termsimpl
}  // namespace zenlo
