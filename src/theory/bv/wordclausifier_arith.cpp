// WordClausifier: multiplication, division and shifts.
#include "terms/termmanager.h"
#include "theory/bv/wordclausifier.h"

namespace zenlo {
namespace bv {

// ---------------------------------------------------------------------------
// Multiplication
// ---------------------------------------------------------------------------

void WordClausifier::word_mul(const Term_* t, BvLitList& out) {
  QNumber c;
  if (d_tm->is_number(t->get_child(0)->get_symbol(), &c)) {
    word_mul_by_constant(c, arg(t, 1), out);
  } else if (d_tm->is_number(t->get_child(1)->get_symbol(), &c)) {
    word_mul_by_constant(c, arg(t, 0), out);
  } else {
    uint64_t n = arg(t, 0).size();
    check_budget(n * n * 2);
    word_mul_generic(arg(t, 0), arg(t, 1), out);
  }
}

// Shift and add: row i adds a * b[i], shifted left by i. The rows'
// low bits are constant false, which the adder passes through for free.
void WordClausifier::word_mul_generic(const BvLitList& a,
                                      const BvLitList& b,
                                      BvLitList& out) {
  size_t n = a.size();
  Temp acc(*this);
  Temp pp(*this);
  acc->resize(n);
  for (size_t j = 0; j < n; ++j) {
    (*acc)[j] = bit_and(a[j], b[0]);
  }
  for (size_t i = 1; i < n; ++i) {
    poll();
    pp->assign(n, l_false);
    if (b[i] != l_false) {
      for (size_t j = i; j < n; ++j) {
        (*pp)[j] = bit_and(b[i], a[j - i]);
      }
    }
    word_add(*acc, *pp, l_false, out);
    acc->swap(out);
  }
  out.swap(*acc);
}

// x * c as the sum of x shifted by each set bit of c.
void WordClausifier::word_mul_by_constant(const QNumber& c,
                                          const BvLitList& x,
                                          BvLitList& out) {
  size_t n = x.size();
  out.assign(n, l_false);
  if (!(c > QNumber(0))) {
    return;
  }
  Temp shifted(*this);
  Temp sum(*this);
  for (long k = BVNumber::scan_bit_1(c, 0);
       k >= 0 && static_cast<size_t>(k) < n;
       k = BVNumber::scan_bit_1(c, k + 1)) {
    poll();
    shifted->assign(n, l_false);
    for (size_t j = k; j < n; ++j) {
      (*shifted)[j] = x[j - k];
    }
    word_add(out, *shifted, l_false, *sum);
    out.swap(*sum);
  }
}

// ---------------------------------------------------------------------------
// Division
// ---------------------------------------------------------------------------

// Restoring division. After the step for bit i the remainder is at most
// the prefix a[n-1..i], which has n - i bits, so its higher bits are
// known to be false and are not built. A divisor of zero is never above
// the remainder: the quotient comes out all ones and the remainder is the
// dividend, which are SMT-LIB's results.
void WordClausifier::word_udiv_simple(const BvLitList& a,
                                      const BvLitList& b,
                                      BvLitList& q,
                                      BvLitList& r) {
  size_t n = a.size();
  check_budget(static_cast<uint64_t>(n) * n * 4);
  q.assign(n, l_false);
  r.assign(n, l_false);
  Temp shifted(*this);
  Temp low(*this);
  Temp mask(*this);
  Temp diff(*this);
  for (size_t i = n; i-- > 0;) {
    poll();
    shifted->resize(n);
    (*shifted)[0] = a[i];
    for (size_t j = 1; j < n; ++j) {
      (*shifted)[j] = r[j - 1];
    }
    BvLit c = word_cmp(b, *shifted, false, l_undef);
    q[i] = c;
    size_t m = n - i;
    low->assign(shifted->begin(), shifted->begin() + m);
    mask->resize(m);
    for (size_t j = 0; j < m; ++j) {
      (*mask)[j] = bit_and(b[j], c);
    }
    word_sub(*low, *mask, *diff);
    r.assign(n, l_false);
    std::copy(diff->begin(), diff->end(), r.begin());
  }
}

// On magnitudes; the remainder takes the dividend's sign and the quotient
// is negated when the signs differ. The minimum divided by -1 comes out
// as the minimum, as SMT-LIB wants.
void WordClausifier::word_sdiv_simple(const BvLitList& a,
                                      const BvLitList& b,
                                      BvLitList& q,
                                      BvLitList& r) {
  BvLit sa = a.back();
  BvLit sb = b.back();
  Temp neg(*this);
  Temp abs_a(*this);
  Temp abs_b(*this);
  word_neg(a, *neg);
  word_ite(sa, *neg, a, *abs_a);
  word_neg(b, *neg);
  word_ite(sb, *neg, b, *abs_b);
  Temp uq(*this);
  Temp ur(*this);
  word_udiv_simple(*abs_a, *abs_b, *uq, *ur);
  word_neg(*ur, *neg);
  word_ite(sa, *neg, *ur, r);
  word_neg(*uq, *neg);
  word_ite(bit_xor(sa, sb), *neg, *uq, q);
}

void WordClausifier::word_divide(const Term_* t,
                                 SymbolTag::tag tag,
                                 BvLitList& out) {
  const BvLitList& a = arg(t, 0);
  const BvLitList& b = arg(t, 1);
  Temp q(*this);
  Temp r(*this);
  if (tag == SymbolTag::BV_UDIV || tag == SymbolTag::BV_UREM) {
    word_udiv_simple(a, b, *q, *r);
  } else {
    word_sdiv_simple(a, b, *q, *r);
  }
  bool quotient = tag == SymbolTag::BV_UDIV || tag == SymbolTag::BV_SDIV;
  out.swap(quotient ? *q : *r);
  word_div_complete_semantics(b, out);
}

// With division by zero left unspecified, each bit of a result by zero is
// a fresh variable.
void WordClausifier::word_div_complete_semantics(const BvLitList& divisor,
                                                 BvLitList& result) {
  if (d_config == nullptr || d_config->div_by_zero_mode != 1) {
    return;
  }
  Temp zero(*this);
  zero->assign(divisor.size(), l_false);
  BvLit z = word_equal(divisor, *zero, l_undef);
  for (BvLit& bit : result) {
    bit = bit_ite(z, fresh(), bit);
  }
}

// ---------------------------------------------------------------------------
// Shifts
// ---------------------------------------------------------------------------

void WordClausifier::word_shift(const Term_* t,
                                SymbolTag::tag tag,
                                BvLitList& out) {
  QNumber amount;
  if (d_tm->is_number(t->get_child(1)->get_symbol(), &amount)) {
    word_shift_by_constant(arg(t, 0), amount, tag, out);
  } else {
    word_shift_barrel(arg(t, 0), arg(t, 1), tag, out);
  }
}

// No gate: the bits move, the freed positions get the fill.
void WordClausifier::word_shift_by_constant(const BvLitList& a,
                                            const QNumber& amount,
                                            SymbolTag::tag tag,
                                            BvLitList& out) {
  size_t n = a.size();
  BvLit fill = tag == SymbolTag::BV_ASHR ? a[n - 1] : l_false;
  if (!(amount < QNumber(static_cast<long>(n)))) {
    out.assign(n, fill);
    return;
  }
  size_t k = static_cast<size_t>(amount.to_long());
  out.resize(n);
  for (size_t j = 0; j < n; ++j) {
    if (tag == SymbolTag::BV_LSHL) {
      out[j] = j < k ? l_false : a[j - k];
    } else {
      out[j] = j + k < n ? a[j + k] : fill;
    }
  }
}

// One stage per bit of the amount whose stride is below the width. The
// bits whose stride is not are or-ed into one overflow flag that selects
// the fill for the whole word, which costs one stage instead of one per
// such bit.
void WordClausifier::word_shift_barrel(const BvLitList& a,
                                       const BvLitList& s,
                                       SymbolTag::tag tag,
                                       BvLitList& out) {
  size_t n = a.size();
  BvLit fill = tag == SymbolTag::BV_ASHR ? a[n - 1] : l_false;
  bool left = tag == SymbolTag::BV_LSHL;
  out = a;
  BvLit overflow = l_false;
  for (size_t i = 0; i < n; ++i) {
    BvLit si = s[i];
    if (i >= 63 || (static_cast<uint64_t>(1) << i) >= n) {
      overflow = bit_or(overflow, si);
      continue;
    }
    size_t stride = static_cast<size_t>(1) << i;
    if (si == l_false) {
      continue;
    }
    if (left) {
      for (size_t j = n; j-- > 0;) {
        out[j] = bit_ite(si, j >= stride ? out[j - stride] : l_false, out[j]);
      }
    } else {
      for (size_t j = 0; j < n; ++j) {
        out[j] = bit_ite(si, j + stride < n ? out[j + stride] : fill, out[j]);
      }
    }
  }
  for (size_t j = 0; j < n; ++j) {
    out[j] = bit_ite(overflow, fill, out[j]);
  }
}

}  // namespace bv
}  // namespace zenlo
