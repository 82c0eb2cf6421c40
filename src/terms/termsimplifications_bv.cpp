// Bit-vector operations on numbers fold through BVNumber; every other
// bit-vector application is built as it is and left to the rewrite rules
// of the normalizer. A division or remainder by 0 stays a term: what it
// means depends on `theory.bv.div_by_zero_mode`, which the model layer
// and the theory know and this layer does not.
#include "terms/termsimplifications_impl.h"

namespace zenlo {
namespace termsimpl {

namespace {

size_t width_of(const TermManager& tm, const Term_* t) {
  size_t w = 0;
  tm.is_bv_type(t->get_type(), &w);
  return w;
}

QNumber ones(size_t w) {
  return BVNumber::pow2(w) - QNumber(1L);
}

// A folding: the values of the arguments and the width of the first one
// in, the result out, or null to keep the application.
using BvFold = const Term_* (*)(TermManager& tm,
                                const Symbol* s,
                                size_t w,
                                const QNumber* v);

class BvFoldSimpl : public SimplFun {
 public:
  explicit BvFoldSimpl(BvFold fold) : d_fold(fold) {}

  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    bool all = true;
    for (size_t i = 0; i < args.size() && all; ++i) {
      all = num_value(tm, args[i], d_vals[i]);
    }
    if (all) {
      if (const Term_* r = d_fold(tm, s, width_of(tm, args[0]), d_vals)) {
        return r;
      }
    }
    return tm.do_make_term(s, args);
  }

 private:
  BvFold d_fold;
  QNumber d_vals[2];  // kept for their storage
};

// ---- Structure --------------------------------------------------------

const Term_* fold_concat(TermManager& tm,
                         const Symbol* s,
                         size_t w,
                         const QNumber* v) {
  size_t w1 = 0, w2 = 0;
  tm.is_bv_concat(s, &w1, &w2);
  QNumber r;
  BVNumber::bit_left_shift(v[0], w2, r);
  return tm.make_bv_number(r + v[1], w + w2);
}

const Term_* fold_extract(TermManager& tm,
                          const Symbol* s,
                          size_t /*w*/,
                          const QNumber* v) {
  size_t msb = 0, lsb = 0;
  tm.is_bv_extract(s, &msb, &lsb);
  QNumber r;
  BVNumber::bit_right_shift(v[0], lsb, r);
  return tm.make_bv_number(BVNumber::trim(r, msb - lsb + 1), msb - lsb + 1);
}

const Term_* fold_zext(TermManager& tm,
                       const Symbol* s,
                       size_t w,
                       const QNumber* v) {
  size_t n = 0;
  tm.is_bv_zext(s, &n);
  return tm.make_bv_number(v[0], w + n);
}

const Term_* fold_sext(TermManager& tm,
                       const Symbol* s,
                       size_t w,
                       const QNumber* v) {
  size_t n = 0;
  tm.is_bv_sext(s, &n);
  if (!BVNumber::test_bit(v[0], w - 1)) {
    return tm.make_bv_number(v[0], w + n);
  }
  return tm.make_bv_number(v[0] + BVNumber::pow2(w + n) - BVNumber::pow2(w),
                           w + n);
}

QNumber rotate_left(const QNumber& x, size_t k, size_t w) {
  if (k == 0) {
    return x;
  }
  QNumber hi, lo;
  BVNumber::bit_left_shift(x, k, hi);
  BVNumber::bit_right_shift(x, w - k, lo);
  return BVNumber::trim(hi, w) + lo;
}

const Term_* fold_rol(TermManager& tm,
                      const Symbol* s,
                      size_t w,
                      const QNumber* v) {
  size_t n = 0;
  tm.is_bv_rol(s, &n);
  return tm.make_bv_number(rotate_left(v[0], n % w, w), w);
}

const Term_* fold_ror(TermManager& tm,
                      const Symbol* s,
                      size_t w,
                      const QNumber* v) {
  size_t n = 0;
  tm.is_bv_ror(s, &n);
  return tm.make_bv_number(rotate_left(v[0], (w - n % w) % w, w), w);
}

// ---- Bitwise ----------------------------------------------------------

const Term_* fold_not(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t w,
                      const QNumber* v) {
  return tm.make_bv_number(ones(w) - v[0], w);
}

const Term_* fold_and(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t w,
                      const QNumber* v) {
  QNumber r;
  BVNumber::bit_and_l(v[0], v[1], r);
  return tm.make_bv_number(r, w);
}

const Term_* fold_or(TermManager& tm,
                     const Symbol* /*s*/,
                     size_t w,
                     const QNumber* v) {
  QNumber r;
  BVNumber::bit_or_l(v[0], v[1], r);
  return tm.make_bv_number(r, w);
}

const Term_* fold_xor(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t w,
                      const QNumber* v) {
  QNumber r;
  BVNumber::bit_xor_l(v[0], v[1], r);
  return tm.make_bv_number(r, w);
}

// ---- Comparison -------------------------------------------------------

const Term_* fold_ult(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t /*w*/,
                      const QNumber* v) {
  return bool_term(tm, v[0] < v[1]);
}

const Term_* fold_ule(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t /*w*/,
                      const QNumber* v) {
  return bool_term(tm, v[0] <= v[1]);
}

const Term_* fold_slt(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t w,
                      const QNumber* v) {
  return bool_term(tm,
                   BVNumber::to_signed(v[0], w) < BVNumber::to_signed(v[1], w));
}

const Term_* fold_sle(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t w,
                      const QNumber* v) {
  return bool_term(
      tm, BVNumber::to_signed(v[0], w) <= BVNumber::to_signed(v[1], w));
}

const Term_* fold_comp(TermManager& tm,
                       const Symbol* /*s*/,
                       size_t /*w*/,
                       const QNumber* v) {
  return tm.make_bv_number(QNumber(v[0] == v[1] ? 1L : 0L), 1);
}

// ---- Arithmetic -------------------------------------------------------

const Term_* fold_neg(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t w,
                      const QNumber* v) {
  return tm.make_bv_number(BVNumber::neg(w, v[0]), w);
}

const Term_* fold_add(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t w,
                      const QNumber* v) {
  return tm.make_bv_number(BVNumber::trim(v[0] + v[1], w), w);
}

const Term_* fold_sub(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t w,
                      const QNumber* v) {
  return tm.make_bv_number(BVNumber::trim(v[0] + BVNumber::neg(w, v[1]), w), w);
}

const Term_* fold_mul(TermManager& tm,
                      const Symbol* /*s*/,
                      size_t w,
                      const QNumber* v) {
  return tm.make_bv_number(BVNumber::trim(v[0] * v[1], w), w);
}

const Term_* fold_udiv(TermManager& tm,
                       const Symbol* /*s*/,
                       size_t w,
                       const QNumber* v) {
  if (v[1].is_zero()) {
    return nullptr;
  }
  QNumber q, r;
  v[0].divmod(v[1], q, r);
  return tm.make_bv_number(q, w);
}

const Term_* fold_urem(TermManager& tm,
                       const Symbol* /*s*/,
                       size_t w,
                       const QNumber* v) {
  if (v[1].is_zero()) {
    return nullptr;
  }
  QNumber q, r;
  v[0].divmod(v[1], q, r);
  return tm.make_bv_number(r, w);
}

const Term_* fold_sdiv(TermManager& tm,
                       const Symbol* /*s*/,
                       size_t w,
                       const QNumber* v) {
  if (v[1].is_zero()) {
    return nullptr;
  }
  QNumber q;
  BVNumber::sdiv(w, v[0], v[1], q);
  return tm.make_bv_number(q, w);
}

// The remainder of the truncating division: the sign of the dividend.
const Term_* fold_srem(TermManager& tm,
                       const Symbol* /*s*/,
                       size_t w,
                       const QNumber* v) {
  if (v[1].is_zero()) {
    return nullptr;
  }
  QNumber a = BVNumber::to_signed(v[0], w);
  QNumber b = BVNumber::to_signed(v[1], w);
  QNumber q, r;
  abs(a).divmod(abs(b), q, r);
  if (a.sign() < 0) {
    r.self_neg();
  }
  return tm.make_bv_number(BVNumber::twos_complement(r, w), w);
}

const Term_* fold_lshl(TermManager& tm,
                       const Symbol* /*s*/,
                       size_t w,
                       const QNumber* v) {
  QNumber r;
  BVNumber::lshl(w, v[0], v[1], r);
  return tm.make_bv_number(r, w);
}

const Term_* fold_lshr(TermManager& tm,
                       const Symbol* /*s*/,
                       size_t w,
                       const QNumber* v) {
  QNumber r;
  BVNumber::lshr(w, v[0], v[1], r);
  return tm.make_bv_number(r, w);
}

const Term_* fold_ashr(TermManager& tm,
                       const Symbol* /*s*/,
                       size_t w,
                       const QNumber* v) {
  QNumber a = BVNumber::to_signed(v[0], w);
  QNumber r;
  if (v[1] >= static_cast<long>(w)) {
    r = a.sign() < 0 ? -1L : 0L;
  } else {
    BVNumber::bit_right_shift(a, static_cast<size_t>(v[1].to_long()), r);
  }
  return tm.make_bv_number(BVNumber::twos_complement(r, w), w);
}

// ---- Integers ---------------------------------------------------------

const Term_* fold_int_from_ubv(TermManager& tm,
                               const Symbol* /*s*/,
                               size_t /*w*/,
                               const QNumber* v) {
  return tm.make_number(v[0]);
}

const Term_* fold_int_from_sbv(TermManager& tm,
                               const Symbol* /*s*/,
                               size_t w,
                               const QNumber* v) {
  return tm.make_number(BVNumber::to_signed(v[0], w));
}

// The integer modulo 2^w, negative ones in two's complement.
const Term_* fold_int_to_bv(TermManager& tm,
                            const Symbol* s,
                            size_t /*w*/,
                            const QNumber* v) {
  size_t w = 0;
  tm.is_int_to_bv(s, &w);
  if (!v[0].is_integer()) {
    return nullptr;
  }
  if (v[0].sign() >= 0) {
    return tm.make_bv_number(BVNumber::trim(v[0], w), w);
  }
  QNumber r = BVNumber::trim(v[0].neg(), w);
  return tm.make_bv_number(BVNumber::neg(w, r), w);
}

// The classes by tag, one each.
struct BVConcatSimpl : BvFoldSimpl {
  BVConcatSimpl() : BvFoldSimpl(fold_concat) {}
};

struct BVSelectSimpl : BvFoldSimpl {
  BVSelectSimpl() : BvFoldSimpl(fold_extract) {}
};

struct BVNotSimpl : BvFoldSimpl {
  BVNotSimpl() : BvFoldSimpl(fold_not) {}
};

struct BVAndSimpl : BvFoldSimpl {
  BVAndSimpl() : BvFoldSimpl(fold_and) {}
};

struct BVOrSimpl : BvFoldSimpl {
  BVOrSimpl() : BvFoldSimpl(fold_or) {}
};

struct BVXorSimpl : BvFoldSimpl {
  BVXorSimpl() : BvFoldSimpl(fold_xor) {}
};

struct BVUltSimpl : BvFoldSimpl {
  BVUltSimpl() : BvFoldSimpl(fold_ult) {}
};

struct BVSltSimpl : BvFoldSimpl {
  BVSltSimpl() : BvFoldSimpl(fold_slt) {}
};

struct BVUleSimpl : BvFoldSimpl {
  BVUleSimpl() : BvFoldSimpl(fold_ule) {}
};

struct BVSleSimpl : BvFoldSimpl {
  BVSleSimpl() : BvFoldSimpl(fold_sle) {}
};

struct BVCompSimpl : BvFoldSimpl {
  BVCompSimpl() : BvFoldSimpl(fold_comp) {}
};

struct BVNegSimpl : BvFoldSimpl {
  BVNegSimpl() : BvFoldSimpl(fold_neg) {}
};

struct BVAddSimpl : BvFoldSimpl {
  BVAddSimpl() : BvFoldSimpl(fold_add) {}
};

struct BVSubSimpl : BvFoldSimpl {
  BVSubSimpl() : BvFoldSimpl(fold_sub) {}
};

struct BVMulSimpl : BvFoldSimpl {
  BVMulSimpl() : BvFoldSimpl(fold_mul) {}
};

struct BVUdivSimpl : BvFoldSimpl {
  BVUdivSimpl() : BvFoldSimpl(fold_udiv) {}
};

struct BVSdivSimpl : BvFoldSimpl {
  BVSdivSimpl() : BvFoldSimpl(fold_sdiv) {}
};

struct BVUremSimpl : BvFoldSimpl {
  BVUremSimpl() : BvFoldSimpl(fold_urem) {}
};

struct BVSremSimpl : BvFoldSimpl {
  BVSremSimpl() : BvFoldSimpl(fold_srem) {}
};

struct BVLslSimpl : BvFoldSimpl {
  BVLslSimpl() : BvFoldSimpl(fold_lshl) {}
};

struct BVLsrSimpl : BvFoldSimpl {
  BVLsrSimpl() : BvFoldSimpl(fold_lshr) {}
};

struct BVAsrSimpl : BvFoldSimpl {
  BVAsrSimpl() : BvFoldSimpl(fold_ashr) {}
};

struct BVRolSimpl : BvFoldSimpl {
  BVRolSimpl() : BvFoldSimpl(fold_rol) {}
};

struct BVRorSimpl : BvFoldSimpl {
  BVRorSimpl() : BvFoldSimpl(fold_ror) {}
};

struct BVZextSimpl : BvFoldSimpl {
  BVZextSimpl() : BvFoldSimpl(fold_zext) {}
};

struct BVSextSimpl : BvFoldSimpl {
  BVSextSimpl() : BvFoldSimpl(fold_sext) {}
};

struct IntFromUBvSimpl : BvFoldSimpl {
  IntFromUBvSimpl() : BvFoldSimpl(fold_int_from_ubv) {}
};

struct IntFromSBvSimpl : BvFoldSimpl {
  IntFromSBvSimpl() : BvFoldSimpl(fold_int_from_sbv) {}
};

struct IntToBvSimpl : BvFoldSimpl {
  IntToBvSimpl() : BvFoldSimpl(fold_int_to_bv) {}
};

}  // namespace

void register_bv_simplifications(StdTermSimplifier& s) {
  using T = SymbolTag;
  s.register_simplification(T::BV_CONCAT, new BVConcatSimpl());
  s.register_simplification(T::BV_EXTRACT, new BVSelectSimpl());
  s.register_simplification(T::BV_NOT, new BVNotSimpl());
  s.register_simplification(T::BV_AND, new BVAndSimpl());
  s.register_simplification(T::BV_OR, new BVOrSimpl());
  s.register_simplification(T::BV_XOR, new BVXorSimpl());
  s.register_simplification(T::BV_ULT, new BVUltSimpl());
  s.register_simplification(T::BV_SLT, new BVSltSimpl());
  s.register_simplification(T::BV_ULE, new BVUleSimpl());
  s.register_simplification(T::BV_SLE, new BVSleSimpl());
  s.register_simplification(T::BV_COMP, new BVCompSimpl());
  s.register_simplification(T::BV_NEG, new BVNegSimpl());
  s.register_simplification(T::BV_ADD, new BVAddSimpl());
  s.register_simplification(T::BV_SUB, new BVSubSimpl());
  s.register_simplification(T::BV_MUL, new BVMulSimpl());
  s.register_simplification(T::BV_UDIV, new BVUdivSimpl());
  s.register_simplification(T::BV_SDIV, new BVSdivSimpl());
  s.register_simplification(T::BV_UREM, new BVUremSimpl());
  s.register_simplification(T::BV_SREM, new BVSremSimpl());
  s.register_simplification(T::BV_LSHL, new BVLslSimpl());
  s.register_simplification(T::BV_LSHR, new BVLsrSimpl());
  s.register_simplification(T::BV_ASHR, new BVAsrSimpl());
  s.register_simplification(T::BV_ROL, new BVRolSimpl());
  s.register_simplification(T::BV_ROR, new BVRorSimpl());
  s.register_simplification(T::BV_ZEXT, new BVZextSimpl());
  s.register_simplification(T::BV_SEXT, new BVSextSimpl());
  s.register_simplification(T::INT_FROM_UBV, new IntFromUBvSimpl());
  s.register_simplification(T::INT_FROM_SBV, new IntFromSBvSimpl());
  s.register_simplification(T::INT_TO_BV, new IntToBvSimpl());
}

}  // namespace termsimpl
}  // namespace zenlo
