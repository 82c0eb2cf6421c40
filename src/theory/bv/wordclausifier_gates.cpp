// WordClausifier: gates, the adder and the comparators. Each gate tries
// its constant shortcuts first and only then makes a variable; the
// shortcuts are what keep circuits over constants small.
#include "theory/bv/wordclausifier.h"

namespace zenlo {
namespace bv {

// ---------------------------------------------------------------------------
// Gates
// ---------------------------------------------------------------------------

BvLit WordClausifier::fresh() {
  ++d_stats.gates;
  return d_sink->new_atom();
}

// o <-> a & b
BvLit WordClausifier::bit_and(BvLit a, BvLit b) {
  if (a == b) {
    return a;
  }
  if (a == -b || a == l_false || b == l_false) {
    return l_false;
  }
  if (a == l_true) {
    return b;
  }
  if (b == l_true) {
    return a;
  }
  BvLit o = fresh();
  d_sink->push(-a, -b, o);
  d_sink->push(a, -o);
  d_sink->push(b, -o);
  return o;
}

// o <-> a ^ b
BvLit WordClausifier::bit_xor(BvLit a, BvLit b) {
  if (a == l_false) {
    return b;
  }
  if (a == l_true) {
    return -b;
  }
  if (b == l_false) {
    return a;
  }
  if (b == l_true) {
    return -a;
  }
  if (a == b) {
    return l_false;
  }
  if (a == -b) {
    return l_true;
  }
  BvLit o = fresh();
  d_sink->push(-a, -b, -o);
  d_sink->push(a, b, -o);
  d_sink->push(-a, b, o);
  d_sink->push(a, -b, o);
  return o;
}

// o <-> (c ? t : e)
BvLit WordClausifier::bit_ite(BvLit c, BvLit t, BvLit e) {
  if (c == l_false) {
    return e;
  }
  if (c == l_true) {
    return t;
  }
  if (t == e) {
    return e;
  }
  if (t == l_true && e == l_false) {
    return c;
  }
  if (t == l_false && e == l_true) {
    return -c;
  }
  if (t == c || t == l_true) {
    return bit_or(c, e);
  }
  if (t == -c || t == l_false) {
    return bit_and(-c, e);
  }
  if (e == -c || e == l_true) {
    return bit_or(-c, t);
  }
  if (e == c || e == l_false) {
    return bit_and(c, t);
  }
  BvLit o = fresh();
  d_sink->push(-c, -t, o);
  d_sink->push(-c, t, -o);
  d_sink->push(c, -e, o);
  d_sink->push(c, e, -o);
  return o;
}

// One position of a ripple-carry adder: sum and carry of three input
// bits. The case split on constant inputs is what makes addition of a
// constant (and multiplication by one) cheap.
void WordClausifier::add_position(
    BvLit x, BvLit y, BvLit z, BvLit& sum, BvLit& carry) {
  BvLit in[3] = {x, y, z};
  BvLit vars[3];
  int n = 0;
  int k = 0;  // inputs that are constant true
  for (BvLit l : in) {
    if (l == l_true) {
      ++k;
    } else if (l != l_false) {
      vars[n++] = l;
    }
  }
  if (n == 3) {
    BvLit a = vars[0];
    BvLit b = vars[1];
    BvLit c = vars[2];
    if (a == b || a == -b || a == c || a == -c || b == c || b == -c) {
      // Repeated inputs: the two-gate form folds them.
      BvLit t = bit_xor(a, b);
      sum = bit_xor(t, c);
      carry = bit_or(bit_and(a, b), bit_and(t, c));
      return;
    }
    BvLit s = fresh();
    d_sink->push(-a, -b, -c, s);
    d_sink->push(-a, b, c, s);
    d_sink->push(a, -b, c, s);
    d_sink->push(a, b, -c, s);
    d_sink->push(a, b, c, -s);
    d_sink->push(a, -b, -c, -s);
    d_sink->push(-a, b, -c, -s);
    d_sink->push(-a, -b, c, -s);
    BvLit o = fresh();
    d_sink->push(-a, -b, o);
    d_sink->push(-a, -c, o);
    d_sink->push(-b, -c, o);
    d_sink->push(a, b, -o);
    d_sink->push(a, c, -o);
    d_sink->push(b, c, -o);
    sum = s;
    carry = o;
    return;
  }
  if (n == 2) {
    BvLit a = vars[0];
    BvLit b = vars[1];
    if (k == 0) {
      sum = bit_xor(a, b);
      carry = bit_and(a, b);
    } else {
      sum = -bit_xor(a, b);
      carry = bit_or(a, b);
    }
    return;
  }
  if (n == 1) {
    BvLit a = vars[0];
    sum = k == 1 ? -a : a;
    carry = k == 0 ? l_false : k == 1 ? a : l_true;
    return;
  }
  sum = const_lit(k % 2 == 1);
  carry = const_lit(k >= 2);
}

// ---------------------------------------------------------------------------
// Word circuits
// ---------------------------------------------------------------------------

void WordClausifier::word_add(const BvLitList& a,
                              const BvLitList& b,
                              BvLit carry_in,
                              BvLitList& out) {
  out.resize(a.size());
  BvLit c = carry_in;
  for (size_t i = 0; i < a.size(); ++i) {
    add_position(a[i], b[i], c, out[i], c);
  }
}

// -a = ~a + 1: the carry-in is the 1.
void WordClausifier::word_neg(const BvLitList& a, BvLitList& out) {
  Temp inv(*this);
  for (BvLit l : a) {
    inv->push_back(-l);
  }
  Temp zero(*this);
  zero->assign(a.size(), l_false);
  word_add(*inv, *zero, l_true, out);
}

// a - b = a + ~b + 1.
void WordClausifier::word_sub(const BvLitList& a,
                              const BvLitList& b,
                              BvLitList& out) {
  Temp inv(*this);
  for (BvLit l : b) {
    inv->push_back(-l);
  }
  word_add(a, *inv, l_true, out);
}

// a < b (strict) or a <= b, from bit 0 upward: the running result r is
// kept where the bits agree and becomes b[i] where they differ. The top
// bit's gate is the proxy when there is one.
BvLit WordClausifier::word_cmp(const BvLitList& a,
                               const BvLitList& b,
                               bool strict,
                               BvLit proxy) {
  BvLit r = const_lit(!strict);
  size_t n = a.size();
  for (size_t i = 0; i < n; ++i) {
    BvLit x = a[i];
    BvLit y = b[i];
    if (x == y) {
      continue;
    }
    if (x == -y) {
      r = y;
    } else if (x == l_true) {
      r = bit_and(y, r);
    } else if (x == l_false) {
      r = bit_or(y, r);
    } else if (y == l_true) {
      r = bit_or(-x, r);
    } else if (y == l_false) {
      r = bit_and(-x, r);
    } else if (is_const(r)) {
      // r constant: r' = (x == y) ? r : y is y & ~x or y | ~x.
      r = r == l_true ? bit_or(y, -x) : bit_and(y, -x);
    } else {
      BvLit v = (i + 1 == n && proxy != l_undef) ? proxy : fresh();
      d_sink->push(-x, -y, -r, v);
      d_sink->push(-x, -y, r, -v);
      d_sink->push(-x, y, -v);
      d_sink->push(x, -y, v);
      d_sink->push(x, y, -r, v);
      d_sink->push(x, y, r, -v);
      r = v;
    }
  }
  return r;
}

// Signed: where the sign bits differ, a is below b exactly when a is
// negative; otherwise the unsigned comparison decides.
BvLit WordClausifier::word_signed_cmp(const BvLitList& a,
                                      const BvLitList& b,
                                      bool strict,
                                      BvLit proxy) {
  BvLit u = word_cmp(a, b, strict, l_undef);
  BvLit sa = a.back();
  BvLit sb = b.back();
  if (sa == sb) {
    return u;
  }
  if (sa == -sb) {
    return sa;
  }
  if (is_const(sa) || is_const(sb) || is_const(u)) {
    return bit_ite(bit_xor(sa, sb), sa, u);
  }
  BvLit s = proxy != l_undef ? proxy : fresh();
  d_sink->push(-sb, -sa, -u, s);
  d_sink->push(-sb, -sa, u, -s);
  d_sink->push(sb, sa, -u, s);
  d_sink->push(sb, sa, u, -s);
  d_sink->push(-sa, sb, s);
  d_sink->push(sa, -sb, -s);
  return s;
}

// a = b as a chain of conjunctions from bit 0; a complementary pair makes
// the whole word false.
BvLit WordClausifier::word_equal(const BvLitList& a,
                                 const BvLitList& b,
                                 BvLit proxy) {
  BvLit r = l_true;
  size_t n = a.size();
  for (size_t i = 0; i < n && r != l_false; ++i) {
    BvLit x = a[i];
    BvLit y = b[i];
    if (x == y) {
      continue;
    }
    if (x == -y) {
      return l_false;
    }
    if (is_const(x) || is_const(y)) {
      BvLit other = is_const(x) ? y : x;
      BvLit c = is_const(x) ? x : y;
      r = bit_and(c == l_true ? other : -other, r);
      continue;
    }
    BvLit v = (i + 1 == n && proxy != l_undef) ? proxy : fresh();
    d_sink->push(-x, y, -v);
    d_sink->push(x, -y, -v);
    if (r == l_true) {
      d_sink->push(-x, -y, v);
      d_sink->push(x, y, v);
    } else {
      d_sink->push(r, -v);
      d_sink->push(-x, -y, -r, v);
      d_sink->push(x, y, -r, v);
    }
    r = v;
  }
  return r;
}

void WordClausifier::word_ite(BvLit c,
                              const BvLitList& t,
                              const BvLitList& e,
                              BvLitList& out) {
  out.resize(t.size());
  for (size_t i = 0; i < t.size(); ++i) {
    out[i] = bit_ite(c, t[i], e[i]);
  }
}

}  // namespace bv
}  // namespace zenlo
