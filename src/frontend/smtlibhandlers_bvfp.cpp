// Built-in symbols of bit-vectors, floating point and the conversions
// between integers and bit-vectors. The derived bit-vector operators
// (bvsmod, bvxnor, bvredor, repeat, the swapped comparisons) are spelled
// out in the store's primitives. Floating-point sorts are written with the
// significand width of SMT-LIB, which counts the hidden bit; the store
// counts without it, hence the "s - 1" below.
#include <string>

#include "frontend/smtlibhandlers.h"

namespace zenlo {

using perror = ParserInterface::error;

const Term_* fp_from_bits(TermManager& tm,
                          size_t e,
                          size_t m,
                          const Term_* bits) {
  QNumber value;
  size_t w = 0;
  if (is_bv_literal(tm, bits, &value, &w) && w == e + m + 1) {
    return tm.make_fp_bits_number(value, e, m);
  }
  return tm.make_fp_from_ieeebv(e, m, bits);
}

namespace {

using BinaryOp = const Term_* (TermManager::*)(const Term_*, const Term_*);

size_t bv_width(TermManager& tm, const Term_* t) {
  size_t w = 0;
  if (!tm.is_bv_type(t->get_type(), &w)) {
    throw perror("ERROR: not a bit-vector: " + t->to_shallow_str());
  }
  return w;
}

template <BinaryOp op>
const Term_* left_nested(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = a[0];
  for (size_t i = 1; i < a.size(); ++i) {
    r = (tm.*op)(r, a[i]);
  }
  return r;
}

template <BinaryOp op>
const Term_* binary(TermManager& tm, const Type*, TermArgs a) {
  return (tm.*op)(a[0], a[1]);
}

// The comparisons written the other way round: a >u b is b <u a.
template <BinaryOp op>
const Term_* swapped(TermManager& tm, const Type*, TermArgs a) {
  return (tm.*op)(a[1], a[0]);
}

template <BinaryOp op>
const Term_* negated(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_bv_not((tm.*op)(a[0], a[1]));
}

const Term_* h_bvnot(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_bv_not(a[0]);
}

const Term_* h_bvneg(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_bv_neg(a[0]);
}

const Term_* h_bvxnor(TermManager& tm, const Type* s, TermArgs a) {
  return tm.make_bv_not(left_nested<&TermManager::make_bv_xor>(tm, s, a));
}

// The signed remainder whose sign follows the divisor, from the unsigned
// remainder r of the magnitudes u = |s| and v = |t|:
//   r = 0 or s, t >= 0:  r
//   s < 0, t >= 0:       -r + t
//   s >= 0, t < 0:       r + t
//   s, t < 0:            -r
const Term_* h_bvsmod(TermManager& tm, const Type*, TermArgs a) {
  const Term_* s = a[0];
  const Term_* t = a[1];
  size_t w = bv_width(tm, s);
  const Term_* one = tm.make_bv_number(QNumber(1), 1);
  const Term_* s_neg = tm.make_equal(tm.make_bv_extract(w - 1, w - 1, s), one);
  const Term_* t_neg = tm.make_equal(tm.make_bv_extract(w - 1, w - 1, t), one);
  const Term_* u = tm.make_term_ite(s_neg, tm.make_bv_neg(s), s);
  const Term_* v = tm.make_term_ite(t_neg, tm.make_bv_neg(t), t);
  const Term_* r = tm.make_bv_urem(u, v);
  const Term_* neg_r = tm.make_bv_neg(r);
  const Term_* s_pos = tm.make_not(s_neg);
  const Term_* t_pos = tm.make_not(t_neg);
  const Term_* result =
      tm.make_term_ite(tm.make_and(s_pos, t_neg), tm.make_bv_add(r, t), neg_r);
  result = tm.make_term_ite(
      tm.make_and(s_neg, t_pos), tm.make_bv_add(neg_r, t), result);
  result = tm.make_term_ite(tm.make_and(s_pos, t_pos), r, result);
  const Term_* zero = tm.make_bv_number(QNumber(0), w);
  return tm.make_term_ite(tm.make_equal(r, zero), r, result);
}

const Term_* h_bvredor(TermManager& tm, const Type*, TermArgs a) {
  size_t w = bv_width(tm, a[0]);
  const Term_* zero = tm.make_bv_number(QNumber(0), w);
  return tm.make_bv_not(tm.make_bv_comp(a[0], zero));
}

const Term_* h_bvredand(TermManager& tm, const Type*, TermArgs a) {
  size_t w = bv_width(tm, a[0]);
  const Term_* ones = tm.make_bv_number(BVNumber::pow2(w) - 1, w);
  return tm.make_bv_comp(a[0], ones);
}

// Indexed symbols check their own counts: `n` indices, one argument.
void check_indexed(std::string_view name,
                   size_t n,
                   IndexArgs idx,
                   TermArgs a,
                   size_t nargs = 1) {
  SymbolHandler::check_idx_arity(name, n, idx);
  SymbolHandler::check_arity(name, nargs, a, true);
}

const Term_* h_extract(TermManager& tm,
                       std::string_view name,
                       const Type*,
                       IndexArgs idx,
                       TermArgs a) {
  check_indexed(name, 2, idx, a);
  return tm.make_bv_extract(SymbolHandler::check_idx_int(name, idx, 0),
                            SymbolHandler::check_idx_int(name, idx, 1),
                            a[0]);
}

const Term_* h_repeat(TermManager& tm,
                      std::string_view name,
                      const Type*,
                      IndexArgs idx,
                      TermArgs a) {
  check_indexed(name, 1, idx, a);
  size_t n = SymbolHandler::check_idx_int(name, idx, 0);
  if (n == 0) {
    throw perror("ERROR: repeat needs a positive index (0 given)");
  }
  if (n * bv_width(tm, a[0]) > SymbolHandler::kMaxIndex) {
    throw perror("ERROR: repeat makes a bit-vector wider than "
                 + std::to_string(SymbolHandler::kMaxIndex) + " bits");
  }
  const Term_* r = a[0];
  for (size_t i = 1; i < n; ++i) {
    r = tm.make_bv_concat(r, a[0]);
  }
  return r;
}

using IndexedBvOp = const Term_* (TermManager::*)(size_t, const Term_*);

template <IndexedBvOp op>
const Term_* by_amount(TermManager& tm,
                       std::string_view name,
                       const Type*,
                       IndexArgs idx,
                       TermArgs a) {
  check_indexed(name, 1, idx, a);
  return (tm.*op)(SymbolHandler::check_idx_int(name, idx, 0), a[0]);
}

const Term_* h_int_from_ubv(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_int_from_ubv(a[0]);
}

const Term_* h_int_from_sbv(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_int_from_sbv(a[0]);
}

// ----------------------------------------------------------------------
// Floating point
// ----------------------------------------------------------------------

// The store's format of (_ ... e s): exponent width e, mantissa s - 1.
void fp_format(std::string_view name, IndexArgs idx, size_t* e, size_t* m) {
  *e = SymbolHandler::check_idx_int(name, idx, 0);
  size_t s = SymbolHandler::check_idx_int(name, idx, 1);
  if (s == 0) {
    throw perror("ERROR: " + std::string(name)
                 + " needs a positive significand width");
  }
  *m = s - 1;
}

using RoundedBinary = const Term_* (TermManager::*)(const Term_*,
                                                    const Term_*,
                                                    const Term_*);

template <RoundedBinary op>
const Term_* rounded3(TermManager& tm, const Type*, TermArgs a) {
  return (tm.*op)(a[0], a[1], a[2]);
}

using UnaryOp = const Term_* (TermManager::*)(const Term_*);

template <UnaryOp op>
const Term_* unary(TermManager& tm, const Type*, TermArgs a) {
  return (tm.*op)(a[0]);
}

// Chained comparisons, conjoined; `swap` reads a > b as b < a.
template <BinaryOp op, bool swap>
const Term_* fp_chain(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = nullptr;
  for (size_t i = 1; i < a.size(); ++i) {
    const Term_* c = swap ? (tm.*op)(a[i], a[i - 1]) : (tm.*op)(a[i - 1], a[i]);
    r = r == nullptr ? c : tm.make_and(r, c);
  }
  return r;
}

// (fp sign exponent significand): one number when all three are literals.
const Term_* h_fp(TermManager& tm, const Type*, TermArgs a) {
  QNumber v[3];
  size_t w[3] = {0, 0, 0};
  bool literal = true;
  for (size_t i = 0; i < 3; ++i) {
    w[i] = bv_width(tm, a[i]);
    literal = literal && is_bv_literal(tm, a[i], &v[i], &w[i]);
  }
  if (w[0] != 1) {
    throw perror("ERROR: the sign of fp must be a bit-vector of width 1");
  }
  if (literal) {
    QNumber bits =
        v[0] * BVNumber::pow2(w[1] + w[2]) + v[1] * BVNumber::pow2(w[2]) + v[2];
    return tm.make_fp_bits_number(bits, w[1], w[2]);
  }
  return tm.make_fp_from_ieeebv(
      w[1], w[2], tm.make_bv_concat(tm.make_bv_concat(a[0], a[1]), a[2]));
}

// ((_ to_fp e s) x): from an IEEE bit pattern (a literal becomes the
// number); ((_ to_fp e s) rm x): from a float, a rational literal or a
// signed bit-vector.
const Term_* h_to_fp(TermManager& tm,
                     std::string_view name,
                     const Type*,
                     IndexArgs idx,
                     TermArgs a) {
  SymbolHandler::check_idx_arity(name, 2, idx);
  size_t e = 0, m = 0;
  fp_format(name, idx, &e, &m);
  if (a.size() != 1 && a.size() != 2) {
    throw perror("ERROR: to_fp takes 1 or 2 arguments ("
                 + std::to_string(a.size()) + " given)");
  }
  const Term_* x = a.back();
  QNumber value;
  if (a.size() == 1) {
    if (tm.is_bv_type(x->get_type())) {
      return fp_from_bits(tm, e, m, x);
    }
    throw perror("wrong arguments for to_fp");
  }
  if (tm.is_fp_type(x->get_type())) {
    return tm.make_fp_cast(e, m, a[0], x);
  }
  if (tm.is_bv_type(x->get_type())) {
    return tm.make_fp_from_sbv(e, m, a[0], x);
  }
  if (is_rational_literal(tm, x, &value)) {
    return tm.make_fp_rat_number(value, e, m, a[0]);
  }
  if (tm.is_subtype(x->get_type(), tm.get_real_type())) {
    throw perror("ERROR: fprat argument 2 must be a positive rational literal ("
                 + x->to_str() + " given)");
  }
  throw perror("wrong arguments for to_fp");
}

const Term_* h_to_fp_unsigned(TermManager& tm,
                              std::string_view name,
                              const Type*,
                              IndexArgs idx,
                              TermArgs a) {
  check_indexed(name, 2, idx, a, 2);
  size_t e = 0, m = 0;
  fp_format(name, idx, &e, &m);
  return tm.make_fp_from_ubv(e, m, a[0], a[1]);
}

template <bool is_signed>
const Term_* h_fp_to_bv(TermManager& tm,
                        std::string_view name,
                        const Type*,
                        IndexArgs idx,
                        TermArgs a) {
  check_indexed(name, 1, idx, a, 2);
  size_t w = SymbolHandler::check_idx_int(name, idx, 0);
  return is_signed ? tm.make_fp_to_sbv(w, a[0], a[1])
                   : tm.make_fp_to_ubv(w, a[0], a[1]);
}

enum class Special { NaN, PlusInf, MinusInf, PlusZero, MinusZero };

template <Special kind>
const Term_* h_special(TermManager& tm,
                       std::string_view name,
                       const Type*,
                       IndexArgs idx,
                       TermArgs a) {
  check_indexed(name, 2, idx, a, 0);
  size_t e = 0, m = 0;
  fp_format(name, idx, &e, &m);
  switch (kind) {
    case Special::NaN: return tm.make_fp_nan(e, m);
    case Special::PlusInf: return tm.make_fp_plus_inf(e, m);
    case Special::MinusInf: return tm.make_fp_minus_inf(e, m);
    case Special::PlusZero: return tm.make_fp_bits_number(QNumber(0), e, m);
    case Special::MinusZero:
      return tm.make_fp_bits_number(BVNumber::pow2(e + m), e, m);
  }
  return nullptr;
}

const Term_* h_fp_sqrt(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_fp_sqrt(a[0], a[1]);
}

const Term_* h_fp_round(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_fp_round_to_int(a[0], a[1]);
}

const Term_* h_int_to_bv(TermManager& tm,
                         std::string_view name,
                         const Type*,
                         IndexArgs idx,
                         TermArgs a) {
  check_indexed(name, 1, idx, a);
  return tm.make_int_to_bv(SymbolHandler::check_idx_int(name, idx, 0), a[0]);
}

}  // namespace

void add_bv_handlers(HandlerRegistry& r) {
  using T = TermManager;
  const bool exact = true, least = false;
  r.plain("concat", 2, least, left_nested<&T::make_bv_concat>);
  r.indexed("extract", h_extract);
  r.plain("bvnot", 1, exact, h_bvnot);
  r.plain("bvneg", 1, exact, h_bvneg);
  r.plain("bvand", 1, least, left_nested<&T::make_bv_and>);
  r.plain("bvor", 1, least, left_nested<&T::make_bv_or>);
  r.plain("bvxor", 2, least, left_nested<&T::make_bv_xor>);
  r.plain("bvadd", 2, least, left_nested<&T::make_bv_add>);
  r.plain("bvmul", 2, least, left_nested<&T::make_bv_mul>);
  r.plain("bvudiv", 2, least, left_nested<&T::make_bv_udiv>);
  r.plain("bvurem", 2, least, left_nested<&T::make_bv_urem>);
  r.plain("bvshl", 2, least, left_nested<&T::make_bv_lshl>);
  r.plain("bvlshr", 2, least, left_nested<&T::make_bv_lshr>);
  r.plain("bvsub", 2, exact, binary<&T::make_bv_sub>);
  r.plain("bvsdiv", 2, exact, binary<&T::make_bv_sdiv>);
  r.plain("bvsrem", 2, exact, binary<&T::make_bv_srem>);
  r.plain("bvashr", 2, exact, binary<&T::make_bv_ashr>);
  r.plain("bvcomp", 2, exact, binary<&T::make_bv_comp>);
  r.plain("bvult", 2, exact, binary<&T::make_bv_ult>);
  r.plain("bvule", 2, exact, binary<&T::make_bv_ule>);
  r.plain("bvslt", 2, exact, binary<&T::make_bv_slt>);
  r.plain("bvsle", 2, exact, binary<&T::make_bv_sle>);
  r.plain("bvugt", 2, exact, swapped<&T::make_bv_ult>);
  r.plain("bvuge", 2, exact, swapped<&T::make_bv_ule>);
  r.plain("bvsgt", 2, exact, swapped<&T::make_bv_slt>);
  r.plain("bvsge", 2, exact, swapped<&T::make_bv_sle>);
  r.plain("bvnand", 2, exact, negated<&T::make_bv_and>);
  r.plain("bvnor", 2, exact, negated<&T::make_bv_or>);
  r.plain("bvxnor", 2, least, h_bvxnor);
  r.plain("bvsmod", 2, exact, h_bvsmod);
  r.plain("bvredor", 1, exact, h_bvredor);
  r.plain("bvredand", 1, exact, h_bvredand);
  r.indexed("repeat", h_repeat);
  r.indexed("zero_extend", by_amount<&T::make_bv_zext>);
  r.indexed("sign_extend", by_amount<&T::make_bv_sext>);
  r.indexed("rotate_left", by_amount<&T::make_bv_rol>);
  r.indexed("rotate_right", by_amount<&T::make_bv_ror>);
  // Integer conversions, with the names other solvers use beside ours.
  r.indexed("to_bv", h_int_to_bv);
  r.indexed("int_to_bv", h_int_to_bv);
  r.indexed("int2bv", h_int_to_bv);
  r.plain("ubv_to_int", 1, exact, h_int_from_ubv);
  r.plain("bv2nat", 1, exact, h_int_from_ubv);
  r.plain("sbv_to_int", 1, exact, h_int_from_sbv);
}

void add_fp_handlers(HandlerRegistry& r) {
  using T = TermManager;
  const bool exact = true, least = false;
  r.plain("fp.add", 3, exact, rounded3<&T::make_fp_add>);
  r.plain("fp.sub", 3, exact, rounded3<&T::make_fp_sub>);
  r.plain("fp.mul", 3, exact, rounded3<&T::make_fp_mul>);
  r.plain("fp.div", 3, exact, rounded3<&T::make_fp_div>);
  r.plain("fp.sqrt", 2, exact, h_fp_sqrt);
  r.plain("fp.roundToIntegral", 2, exact, h_fp_round);
  r.plain("fp.min", 2, exact, binary<&T::make_fp_min>);
  r.plain("fp.max", 2, exact, binary<&T::make_fp_max>);
  r.plain("fp.neg", 1, exact, unary<&T::make_fp_neg>);
  r.plain("fp.abs", 1, exact, unary<&T::make_fp_abs>);
  r.plain("fp.isNaN", 1, exact, unary<&T::make_fp_isnan>);
  r.plain("fp.isInfinite", 1, exact, unary<&T::make_fp_isinf>);
  r.plain("fp.isZero", 1, exact, unary<&T::make_fp_iszero>);
  r.plain("fp.isSubnormal", 1, exact, unary<&T::make_fp_issubnormal>);
  r.plain("fp.isNormal", 1, exact, unary<&T::make_fp_isnormal>);
  r.plain("fp.isPositive", 1, exact, unary<&T::make_fp_ispos>);
  r.plain("fp.isNegative", 1, exact, unary<&T::make_fp_isneg>);
  r.plain("fp.as_ieee_bv", 1, exact, unary<&T::make_fp_as_ieeebv>);
  r.plain("fp.eq", 2, least, fp_chain<&T::make_fp_equal, false>);
  r.plain("fp.lt", 2, least, fp_chain<&T::make_fp_lt, false>);
  r.plain("fp.leq", 2, least, fp_chain<&T::make_fp_le, false>);
  r.plain("fp.gt", 2, least, fp_chain<&T::make_fp_lt, true>);
  r.plain("fp.geq", 2, least, fp_chain<&T::make_fp_le, true>);
  r.plain("fp", 3, exact, h_fp);
  r.indexed("to_fp", h_to_fp);
  r.indexed("to_fp_unsigned", h_to_fp_unsigned);
  r.indexed("fp.to_sbv", h_fp_to_bv<true>);
  r.indexed("fp.to_ubv", h_fp_to_bv<false>);
  r.indexed("NaN", h_special<Special::NaN>);
  r.indexed("+oo", h_special<Special::PlusInf>);
  r.indexed("-oo", h_special<Special::MinusInf>);
  r.indexed("+zero", h_special<Special::PlusZero>);
  r.indexed("-zero", h_special<Special::MinusZero>);
}

}  // namespace zenlo
