// Constructors of bit-vector and floating-point terms, and of numbers of
// all three kinds. The family symbol is chosen by the width or format of
// the first operand; make_term's type check then catches operands of
// another width or format.
#include <string>

#include "terms/termmanager.h"

namespace zenlo {

// ----------------------------------------------------------------------
// Bit-vectors
// ----------------------------------------------------------------------

// `what` is "bit vector" for the binary operations and "bit-vector" for the
// unary and indexed ones: both spellings are part of the messages users
// see.
size_t TermManager::bv_width_of(const Term_* t, const char* what) const {
  size_t w = 0;
  if (!is_bv_type(t->get_type(), &w)) {
    throw error("type error. term " + t->to_shallow_str() + " is not a "
                + what);
  }
  return w;
}

const Term_* TermManager::bv_binary(const char* ctor,
                                    SymbolTag::tag tag,
                                    const Term_* a,
                                    const Term_* b) {
  size_t w = bv_width_of(a, "bit vector");
  bv_width_of(b, "bit vector");
  return apply(ctor, make_bv_symbol(tag, w), a, b);
}

const Term_* TermManager::bv_unary(const char* ctor,
                                   SymbolTag::tag tag,
                                   const Term_* a) {
  return apply(ctor, make_bv_symbol(tag, bv_width_of(a, "bit-vector")), a);
}

const Term_* TermManager::bv_indexed(const char* ctor,
                                     SymbolTag::tag tag,
                                     size_t amount,
                                     const Term_* a) {
  size_t w = bv_width_of(a, "bit-vector");
  return apply(ctor, numbered(tag, amount, w), a);
}

const Term_* TermManager::make_bv_concat(const Term_* a, const Term_* b) {
  size_t w1 = bv_width_of(a, "bit vector");
  size_t w2 = bv_width_of(b, "bit vector");
  return apply("make_bv_concat", make_bv_concat_symbol(w1, w2), a, b);
}

const Term_* TermManager::make_bv_extract(size_t msb,
                                          size_t lsb,
                                          const Term_* a) {
  size_t w = bv_width_of(a, "bit-vector");
  std::string range =
      "[" + std::to_string(msb) + ":" + std::to_string(lsb) + "]";
  if (msb < lsb) {
    throw error("bv extraction of an empty range: " + range);
  }
  if (msb >= w) {
    throw error("range too large in bv extraction. arg has width "
                + std::to_string(w) + ", but range is " + range);
  }
  return apply("make_bv_extract", make_bv_extract_symbol(msb, lsb, w), a);
}

#define ZENLO_BV_BINARY(fn, tag)                                 \
  const Term_* TermManager::fn(const Term_* a, const Term_* b) { \
    return bv_binary(#fn, SymbolTag::tag, a, b);                 \
  }

ZENLO_BV_BINARY(make_bv_and, BV_AND)
ZENLO_BV_BINARY(make_bv_or, BV_OR)
ZENLO_BV_BINARY(make_bv_xor, BV_XOR)
ZENLO_BV_BINARY(make_bv_add, BV_ADD)
ZENLO_BV_BINARY(make_bv_sub, BV_SUB)
ZENLO_BV_BINARY(make_bv_mul, BV_MUL)
ZENLO_BV_BINARY(make_bv_udiv, BV_UDIV)
ZENLO_BV_BINARY(make_bv_sdiv, BV_SDIV)
ZENLO_BV_BINARY(make_bv_urem, BV_UREM)
ZENLO_BV_BINARY(make_bv_srem, BV_SREM)
ZENLO_BV_BINARY(make_bv_lshl, BV_LSHL)
ZENLO_BV_BINARY(make_bv_lshr, BV_LSHR)
ZENLO_BV_BINARY(make_bv_ashr, BV_ASHR)
ZENLO_BV_BINARY(make_bv_ult, BV_ULT)
ZENLO_BV_BINARY(make_bv_ule, BV_ULE)
ZENLO_BV_BINARY(make_bv_slt, BV_SLT)
ZENLO_BV_BINARY(make_bv_sle, BV_SLE)
ZENLO_BV_BINARY(make_bv_comp, BV_COMP)

#undef ZENLO_BV_BINARY

const Term_* TermManager::make_bv_not(const Term_* a) {
  return bv_unary("make_bv_not", SymbolTag::BV_NOT, a);
}

const Term_* TermManager::make_bv_neg(const Term_* a) {
  return bv_unary("make_bv_neg", SymbolTag::BV_NEG, a);
}

const Term_* TermManager::make_bv_rol(size_t amount, const Term_* a) {
  return bv_indexed("make_bv_rol", SymbolTag::BV_ROL, amount, a);
}

const Term_* TermManager::make_bv_ror(size_t amount, const Term_* a) {
  return bv_indexed("make_bv_ror", SymbolTag::BV_ROR, amount, a);
}

const Term_* TermManager::make_bv_zext(size_t amount, const Term_* a) {
  return bv_indexed("make_bv_zext", SymbolTag::BV_ZEXT, amount, a);
}

const Term_* TermManager::make_bv_sext(size_t amount, const Term_* a) {
  return bv_indexed("make_bv_sext", SymbolTag::BV_SEXT, amount, a);
}

// ----------------------------------------------------------------------
// Floating point
// ----------------------------------------------------------------------

void TermManager::fp_format_of(const Term_* t, size_t& e, size_t& m) const {
  if (!is_fp_type(t->get_type(), &e, &m)) {
    throw error("type error. term " + t->to_shallow_str() + " is not a FP");
  }
}

const Term_* TermManager::fp_unary(const char* ctor,
                                   SymbolTag::tag tag,
                                   const Term_* a) {
  size_t e = 0, m = 0;
  fp_format_of(a, e, m);
  return apply(ctor, make_fp_symbol(tag, e, m), a);
}

const Term_* TermManager::fp_binary(const char* ctor,
                                    SymbolTag::tag tag,
                                    const Term_* a,
                                    const Term_* b) {
  size_t e = 0, m = 0, e2 = 0, m2 = 0;
  fp_format_of(a, e, m);
  fp_format_of(b, e2, m2);
  return apply(ctor, make_fp_symbol(tag, e, m), a, b);
}

// b is null for the unary rounded operations (square root, rounding to an
// integral value).
const Term_* TermManager::fp_rounded(const char* ctor,
                                     SymbolTag::tag tag,
                                     const Term_* r,
                                     const Term_* a,
                                     const Term_* b) {
  size_t e = 0, m = 0, e2 = 0, m2 = 0;
  fp_format_of(a, e, m);
  if (b == nullptr) {
    return apply(ctor, make_fp_symbol(tag, e, m), r, a);
  }
  fp_format_of(b, e2, m2);
  return apply(ctor, make_fp_symbol(tag, e, m), r, a, b);
}

const Term_* TermManager::fp_from_bv(const char* ctor,
                                     SymbolTag::tag tag,
                                     size_t e,
                                     size_t m,
                                     const Term_* r,
                                     const Term_* a) {
  size_t w = 0;
  if (!is_bv_type(a->get_type(), &w)) {
    throw error("type error. term " + a->to_shallow_str() + " is not a BV");
  }
  get_fp_type(e, m);
  return apply(ctor, numbered(tag, w, e, m), r, a);
}

const Term_* TermManager::fp_to_bv(const char* ctor,
                                   SymbolTag::tag tag,
                                   size_t w,
                                   const Term_* r,
                                   const Term_* a) {
  size_t e = 0, m = 0;
  fp_format_of(a, e, m);
  get_bv_type(w);
  return apply(ctor, numbered(tag, e, m, w), r, a);
}

const Term_* TermManager::make_fp_equal(const Term_* a, const Term_* b) {
  return fp_binary("make_fp_equal", SymbolTag::FP_EQ, a, b);
}

const Term_* TermManager::make_fp_lt(const Term_* a, const Term_* b) {
  return fp_binary("make_fp_lt", SymbolTag::FP_LT, a, b);
}

const Term_* TermManager::make_fp_le(const Term_* a, const Term_* b) {
  return fp_binary("make_fp_le", SymbolTag::FP_LE, a, b);
}

const Term_* TermManager::make_fp_min(const Term_* a, const Term_* b) {
  return fp_binary("make_fp_min", SymbolTag::FP_MIN, a, b);
}

const Term_* TermManager::make_fp_max(const Term_* a, const Term_* b) {
  return fp_binary("make_fp_max", SymbolTag::FP_MAX, a, b);
}

const Term_* TermManager::make_fp_add(const Term_* r,
                                      const Term_* a,
                                      const Term_* b) {
  return fp_rounded("make_fp_add", SymbolTag::FP_ADD, r, a, b);
}

const Term_* TermManager::make_fp_sub(const Term_* r,
                                      const Term_* a,
                                      const Term_* b) {
  return fp_rounded("make_fp_sub", SymbolTag::FP_SUB, r, a, b);
}

const Term_* TermManager::make_fp_mul(const Term_* r,
                                      const Term_* a,
                                      const Term_* b) {
  return fp_rounded("make_fp_mul", SymbolTag::FP_MUL, r, a, b);
}

const Term_* TermManager::make_fp_div(const Term_* r,
                                      const Term_* a,
                                      const Term_* b) {
  return fp_rounded("make_fp_div", SymbolTag::FP_DIV, r, a, b);
}

const Term_* TermManager::make_fp_sqrt(const Term_* r, const Term_* a) {
  return fp_rounded("make_fp_sqrt", SymbolTag::FP_SQRT, r, a, nullptr);
}

const Term_* TermManager::make_fp_round_to_int(const Term_* r, const Term_* a) {
  return fp_rounded(
      "make_fp_round_to_int", SymbolTag::FP_ROUND_TO_INT, r, a, nullptr);
}

const Term_* TermManager::make_fp_cast(size_t e,
                                       size_t m,
                                       const Term_* r,
                                       const Term_* a) {
  size_t e1 = 0, m1 = 0;
  fp_format_of(a, e1, m1);
  get_fp_type(e, m);
  return apply("make_fp_cast", make_fp_cast_symbol(e1, m1, e, m), r, a);
}

const Term_* TermManager::make_fp_from_sbv(size_t e,
                                           size_t m,
                                           const Term_* r,
                                           const Term_* a) {
  return fp_from_bv("make_fp_from_sbv", SymbolTag::FP_FROM_SBV, e, m, r, a);
}

const Term_* TermManager::make_fp_from_ubv(size_t e,
                                           size_t m,
                                           const Term_* r,
                                           const Term_* a) {
  return fp_from_bv("make_fp_from_ubv", SymbolTag::FP_FROM_UBV, e, m, r, a);
}

const Term_* TermManager::make_fp_to_sbv(size_t width,
                                         const Term_* r,
                                         const Term_* a) {
  return fp_to_bv("make_fp_to_sbv", SymbolTag::FP_TO_SBV, width, r, a);
}

const Term_* TermManager::make_fp_to_ubv(size_t width,
                                         const Term_* r,
                                         const Term_* a) {
  return fp_to_bv("make_fp_to_ubv", SymbolTag::FP_TO_UBV, width, r, a);
}

const Term_* TermManager::make_fp_as_ieeebv(const Term_* a) {
  return fp_unary("make_fp_as_ieeebv", SymbolTag::FP_AS_IEEEBV, a);
}

const Term_* TermManager::make_fp_from_ieeebv(size_t e,
                                              size_t m,
                                              const Term_* a) {
  size_t w = 0;
  if (!is_bv_type(a->get_type(), &w)) {
    throw error("type error. term " + a->to_shallow_str() + " is not a BV");
  }
  if (w != e + m + 1) {
    throw error("type error. term " + a->to_shallow_str()
                + " is not of the correct BV type");
  }
  get_fp_type(e, m);
  return apply("make_fp_from_ieeebv",
               make_fp_symbol(SymbolTag::FP_FROM_IEEEBV, e, m),
               a);
}

#define ZENLO_FP_UNARY(fn, tag)                  \
  const Term_* TermManager::fn(const Term_* a) { \
    return fp_unary(#fn, SymbolTag::tag, a);     \
  }

ZENLO_FP_UNARY(make_fp_neg, FP_NEG)
ZENLO_FP_UNARY(make_fp_abs, FP_ABS)
ZENLO_FP_UNARY(make_fp_isnan, FP_ISNAN)
ZENLO_FP_UNARY(make_fp_isinf, FP_ISINF)
ZENLO_FP_UNARY(make_fp_iszero, FP_ISZERO)
ZENLO_FP_UNARY(make_fp_issubnormal, FP_ISSUBNORMAL)
ZENLO_FP_UNARY(make_fp_isnormal, FP_ISNORMAL)
ZENLO_FP_UNARY(make_fp_isneg, FP_ISNEG)
ZENLO_FP_UNARY(make_fp_ispos, FP_ISPOS)

#undef ZENLO_FP_UNARY

const Term_* TermManager::make_fp_rounding_mode(RoundingMode mode) {
  return make_constant(d_rounding_sym[static_cast<int>(mode)]);
}

// ----------------------------------------------------------------------
// Numbers
// ----------------------------------------------------------------------

const Symbol* TermManager::number_symbol(const std::string& name,
                                         const Type* type,
                                         const QNumber& value) {
  const Symbol* s = d_signature.get_symbol(name);
  if (s != nullptr && s->get_type() != type) {
    throw error("a symbol for " + name
                + " already exists, but it has the wrong type: "
                + s->get_type()->to_str());
  }
  if (s == nullptr) {
    s = d_signature.add_symbol(name, type);
  }
  if (!d_number_values.contains(s)) {
    d_number_values.insert(s, value);
  }
  return s;
}

const Term_* TermManager::number_term(const std::string& name,
                                      const Type* type,
                                      const QNumber& value) {
  return d_bank.make_term(number_symbol(name, type, value), nullptr, 0);
}

const Term_* TermManager::make_number(const QNumber& value) {
  if (const Term_* const* t = d_rational_terms.get(value)) {
    return *t;
  }
  std::string name = value.to_str();
  const Type* type =
      name.find('/') != std::string::npos ? d_real_type : d_int_type;
  const Term_* t = number_term(name, type, value);
  d_rational_terms.insert(value, t);
  return t;
}

// Unchecked, a value out of range is read modulo 2^width, as the
// bit-vector theory reads every integer it is given.
QNumber TermManager::checked_bv_value(const QNumber& value,
                                      size_t width,
                                      const char* kind) {
  if (!value.is_integer()) {
    throw error(std::string("can't make a ") + kind
                + " number from a fractional number: " + value.to_str());
  }
  if (value.sign() < 0) {
    if (d_typecheck) {
      throw error(std::string("can't make a ") + kind
                  + " number from a negative number: " + value.to_str());
    }
    QNumber r = BVNumber::trim(value.neg(), width);
    return r.is_zero() ? r : BVNumber::pow2(width) - r;
  }
  if (value >= BVNumber::pow2(width)) {
    if (d_typecheck) {
      throw error("the number " + value.to_str() + " doesn't fit in "
                  + std::to_string(width) + " bits");
    }
    return BVNumber::trim(value, width);
  }
  return value;
}

const Term_* TermManager::make_bv_number(const QNumber& value, size_t width) {
  const Type* type = get_bv_type(width);
  QNumber v = checked_bv_value(value, width, "bv");
  return number_term(v.to_str() + "_" + std::to_string(width), type, v);
}

const Term_* TermManager::make_bv_number(const std::string& digits,
                                         size_t width,
                                         int base) {
  if (base == 10) {
    return make_bv_number(QNumber::from_str(digits), width);
  }
  if (base != 2 && base != 16) {
    throw error("unsupported base for a bit-vector number: "
                + std::to_string(base));
  }
  return make_bv_number(BVNumber::from_str(digits, base), width);
}

const Term_* TermManager::make_fp_bits_number(const QNumber& bits,
                                              size_t e,
                                              size_t m) {
  const Type* type = get_fp_type(e, m);
  QNumber v = checked_bv_value(bits, e + m + 1, "FP");
  std::string name =
      v.to_str() + "_" + std::to_string(e) + "_" + std::to_string(m);
  return number_term(name, type, v);
}

const Term_* TermManager::make_fp_rat_number(const QNumber& value,
                                             size_t e,
                                             size_t m,
                                             const Term_* rounding) {
  get_fp_type(e, m);
  RoundingMode mode = get_rounding_mode(rounding);
  IEEEFloat f(IEEEFloat::Format{e, m}, value, mode);
  return make_fp_bits_number(f.get_bits(), e, m);
}

const Term_* TermManager::make_fp_plus_inf(size_t e, size_t m) {
  get_fp_type(e, m);
  return make_fp_bits_number(
      IEEEFloat::plus_inf(IEEEFloat::Format{e, m}).get_bits(), e, m);
}

const Term_* TermManager::make_fp_minus_inf(size_t e, size_t m) {
  get_fp_type(e, m);
  return make_fp_bits_number(
      IEEEFloat::minus_inf(IEEEFloat::Format{e, m}).get_bits(), e, m);
}

const Term_* TermManager::make_fp_nan(size_t e, size_t m) {
  get_fp_type(e, m);
  return make_fp_bits_number(
      IEEEFloat::nan(IEEEFloat::Format{e, m}).get_bits(), e, m);
}

}  // namespace zenlo
