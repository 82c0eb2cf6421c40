// Arithmetic: numbers fold, sums and products lose their neutral elements
// and order their arguments, and atoms over Real and Int take the linear
// normal form  p <= c,  c <= p  or  p = c, where p has coprime integer
// coefficients, a positive first one, and monomials in ascending id order.
// So atoms that differ by a positive factor or by the order of addends are
// one term, and an integer atom with a fractional bound is tightened.
#include <utility>

#include "terms/polynomial.h"
#include "terms/termsimplifications_impl.h"

namespace zenlo {
namespace termsimpl {

namespace {

bool both_int(const TermManager& tm, const Term_* a, const Term_* b) {
  return tm.is_integer_type(a->get_type()) && tm.is_integer_type(b->get_type());
}

void order_by_id(TermList& args) {
  if (args[1]->get_id() < args[0]->get_id()) {
    std::swap(args[0], args[1]);
  }
}

// Brings each sum or product argument to its polynomial normal form, so
// that f(x + (y + 1)) and f((x + 1) + y) are one term.
void normalize_arith_args(TermManager& tm, PolyPool& pool, TermList& args) {
  for (const Term_*& a : args) {
    SymbolTag::tag tag = tag_of(tm, a);
    if ((tag == SymbolTag::PLUS || tag == SymbolTag::TIMES)
        && is_arith(tm, a)) {
      PolyPool::Lease p(pool);
      poly_norm(tm, a, *p);
      a = poly_to_term(tm, *p, true);
    }
  }
}

// ----------------------------------------------------------------------
// Atoms
// ----------------------------------------------------------------------

class EqLeqSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    const Term_* a = args[0];
    const Term_* b = args[1];
    if (!is_arith(tm, a) || !is_arith(tm, b)) {
      return d_generic(tm, s, args);
    }
    bool eq = tm.get_tag(s) == SymbolTag::EQ;
    if (a == b) {
      return tm.make_true();
    }
    QNumber va, vb;
    bool na = num_value(tm, a, va);
    bool nb = num_value(tm, b, vb);
    if (na && nb) {
      return bool_term(tm, eq ? va == vb : va <= vb);
    }
    if (eq && (na || !tm.is_interpreted(a->get_symbol()))
        && (nb || !tm.is_interpreted(b->get_symbol()))) {
      return simple_equality(tm, args, na ? &va : nb ? &vb : nullptr);
    }
    return linear_atom(tm, eq, args);
  }

 private:
  // An equality between uninterpreted terms, or one of them and a number,
  // needs no polynomial: only the order of its sides is fixed.
  const Term_* simple_equality(TermManager& tm,
                               TermList& args,
                               const QNumber* number) {
    if (number == nullptr) {
      order_by_id(args);
    } else {
      if (is_num(tm, args[0])) {
        std::swap(args[0], args[1]);
      }
      if (tm.is_integer_type(args[0]->get_type()) && !number->is_integer()) {
        return tm.make_false();
      }
    }
    const Type* t = both_int(tm, args[0], args[1]) ? tm.get_integer_type()
                                                   : tm.get_real_type();
    return tm.do_make_term(tm.make_equal_symbol(t), args);
  }

  // a <= b (or a = b) as  p + k <= 0  with p = a - b.
  const Term_* linear_atom(TermManager& tm, bool eq, TermList& args) {
    PolyPool::Lease lease(d_pool);
    Polynomial& p = *lease;
    p.add(tm, args[0], QNumber(1L));
    p.add(tm, args[1], QNumber(-1L));
    p.canonicalize();
    if (p.monomials().empty()) {
      const QNumber& k = p.constant();
      return bool_term(tm, eq ? k.is_zero() : k.sign() <= 0);
    }
    p.scale(p.primitive_factor());
    bool flip = p.monomials()[0].coeff.sign() < 0;
    if (flip) {
      p.scale(QNumber(-1L));  // p >= -k from here on
    }
    QNumber c = -p.constant();
    if (p.all_int(tm) && !c.is_integer()) {
      if (eq) {
        return tm.make_false();
      }
      c = flip ? c.floor() + QNumber(1L) : c.floor();
    }
    const Term_* left = nullptr;
    if (p.monomials().size() == 1) {
      c /= p.monomials()[0].coeff;
      left = p.monomials()[0].term;
    } else {
      left = poly_to_term(tm, p, false);
    }
    const Term_* right = tm.make_number(c);
    bool ints = both_int(tm, left, right);
    const Symbol* s = eq ? tm.make_equal_symbol(ints ? tm.get_integer_type()
                                                     : tm.get_real_type())
                         : tm.get_leq_symbol(ints);
    args[0] = flip && !eq ? right : left;
    args[1] = flip && !eq ? left : right;
    return tm.do_make_term(s, args);
  }

  GenericEqSimpl d_generic;
  PolyPool d_pool;
};

// ----------------------------------------------------------------------
// Operations
// ----------------------------------------------------------------------

class PlusSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* /*s*/,
                          TermList& args) override {
    QNumber va, vb;
    bool na = num_value(tm, args[0], va);
    bool nb = num_value(tm, args[1], vb);
    if (na && nb) {
      return tm.make_number(va + vb);
    }
    if (na && va.is_zero()) {
      return args[1];
    }
    if (nb && vb.is_zero()) {
      return args[0];
    }
    order_by_id(args);
    return tm.do_make_term(tm.get_plus_symbol(both_int(tm, args[0], args[1])),
                           args);
  }
};

class TimesSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* /*s*/,
                          TermList& args) override {
    QNumber va, vb;
    bool na = num_value(tm, args[0], va);
    bool nb = num_value(tm, args[1], vb);
    if (na && nb) {
      return tm.make_number(va * vb);
    }
    if (na || nb) {
      const QNumber& c = na ? va : vb;
      if (c.is_zero()) {
        return tm.make_number(0L);
      }
      if (c == 1L) {
        return na ? args[1] : args[0];
      }
      if (nb) {
        std::swap(args[0], args[1]);  // the number stands first
      }
    } else {
      order_by_id(args);
    }
    return tm.do_make_term(tm.get_times_symbol(both_int(tm, args[0], args[1])),
                           args);
  }
};

// Division by a number is multiplication by its inverse; division by 0,
// or by a term, stays as it is: its meaning is the theory's business.
class DivideSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    QNumber va, vb;
    bool na = num_value(tm, args[0], va);
    bool nb = num_value(tm, args[1], vb);
    if (nb && !vb.is_zero()) {
      if (na) {
        return tm.make_number(va / vb);
      }
      if (vb == 1L) {
        return args[0];
      }
      return tm.make_times(tm.make_number(vb.inv()), args[0]);
    }
    return tm.do_make_term(s, args);
  }
};

class FloorSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    if (tm.is_integer_type(args[0]->get_type())) {
      return args[0];
    }
    QNumber v;
    if (num_value(tm, args[0], v)) {
      return tm.make_number(v.floor());
    }
    return tm.do_make_term(s, args);
  }
};

// a and b congruent modulo m: a - b divisible by m. Every integer is
// congruent to every other modulo 1 (the store admits no modulus below).
class IntModCongrSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    QNumber m, va, vb;
    tm.is_int_mod_congr(s, &m);
    if (m == 1L) {
      return tm.make_true();
    }
    if (num_value(tm, args[0], va) && num_value(tm, args[1], vb)
        && va.is_integer() && vb.is_integer() && !m.is_zero()) {
      return bool_term(tm, m.divides(va - vb));
    }
    normalize_arith_args(tm, d_pool, args);
    return tm.do_make_term(s, args);
  }

 private:
  PolyPool d_pool;
};

// The arguments of uninterpreted functions, and the index and element of
// array writes, in polynomial normal form. One class serves both tags; the
// names tell the registrations apart.
class ArgArithSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    normalize_arith_args(tm, d_pool, args);
    return tm.do_make_term(s, args);
  }

 private:
  PolyPool d_pool;
};

class ArrayWriteSimpl : public ArgArithSimpl {};

// Its arguments as ArgArithSimpl has them, then a read through writes at
// indices known to differ from its own, down to a write at the same index
// or a constant array: this is how a model answers a read, and it is valid
// on any terms.
class ArrayReadSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    normalize_arith_args(tm, d_pool, args);
    const Term_* a = args[0];
    for (;;) {
      SymbolTag::tag tag = tm.get_tag(a->get_symbol());
      if (tag == SymbolTag::ARRAY_CONST) {
        return a->get_child(0);
      }
      if (tag != SymbolTag::ARRAY_WRITE) {
        break;
      }
      int same = compare_values(tm, a->get_child(1), args[1]);
      if (same == 1) {
        return a->get_child(2);
      }
      if (same != 0) {
        break;
      }
      a = a->get_child(0);
    }
    args[0] = a;
    return tm.do_make_term(s, args);
  }

 private:
  PolyPool d_pool;
};

class UfArgArithSimpl : public ArgArithSimpl {};

// Integer powers of numbers. Base and exponent are bounded so that a
// literal like 2^1000000000 cannot stall term construction; such a power
// stays a term. 0 to a power of 0 or below stays a term as well.
class PowSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    QNumber base, exp;
    bool nb = num_value(tm, args[1], exp);
    if (nb && exp == 1L) {
      return args[0];
    }
    if (!num_value(tm, args[0], base) || !nb || !exp.is_integer()
        || (base.is_zero() && exp.sign() <= 0)) {
      return tm.do_make_term(s, args);
    }
    bool unit = abs(base) == 1L;
    if (!unit && (!base.fits(64) || !exp.fits(32) || abs(exp) > kMaxExponent)) {
      return tm.do_make_term(s, args);
    }
    if (unit) {
      bool odd = !QNumber(2L).divides(exp);
      return tm.make_number(base.sign() < 0 && odd ? -1L : 1L);
    }
    return tm.make_number(
        power(exp.sign() < 0 ? base.inv() : base, abs(exp).to_long()));
  }

 private:
  static constexpr long kMaxExponent = 4096;

  static QNumber power(QNumber b, long n) {
    QNumber r(1L);
    for (; n > 0; n >>= 1) {
      if (n & 1) {
        r *= b;
      }
      b *= b;
    }
    return r;
  }
};

}  // namespace

void register_arith_simplifications(StdTermSimplifier& s) {
  s.register_simplification(SymbolTag::EQ, new EqLeqSimpl());
  s.register_simplification(SymbolTag::LEQ, new EqLeqSimpl());
  s.register_simplification(SymbolTag::PLUS, new PlusSimpl());
  s.register_simplification(SymbolTag::TIMES, new TimesSimpl());
  s.register_simplification(SymbolTag::DIVIDE, new DivideSimpl());
  s.register_simplification(SymbolTag::FLOOR, new FloorSimpl());
  s.register_simplification(SymbolTag::INT_MOD_CONGR, new IntModCongrSimpl());
  s.register_simplification(SymbolTag::ARRAY_WRITE, new ArrayWriteSimpl());
  s.register_simplification(SymbolTag::ARRAY_READ, new ArrayReadSimpl());
  s.register_simplification(SymbolTag::UNKNOWN, new UfArgArithSimpl());
  s.register_simplification(SymbolTag::POW, new PowSimpl());
}

}  // namespace termsimpl
}  // namespace zenlo
