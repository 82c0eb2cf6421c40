// Registration of the standard simplifications; values; the Boolean
// connectives, the term if-then-else and the equality of types other
// than Real and Int.
#include "terms/termsimplifications.h"

#include <utility>

#include "terms/termsimplifications_impl.h"

namespace zenlo {
namespace termsimpl {

void register_standard_simplifications(TermManager* /*tm*/,
                                       StdTermSimplifier* s) {
  register_bool_simplifications(*s);
  register_arith_simplifications(*s);
  register_bv_simplifications(*s);
  register_fp_simplifications(*s);
  register_bv_eq_rules(*s);
  register_bv_bit_rules(*s);
  register_bv_op_rules(*s);
}

// ----------------------------------------------------------------------
// Values
// ----------------------------------------------------------------------

namespace {

bool is_rounding_constant(const TermManager& tm, const Term_* t) {
  for (int k = 0; k < 4; ++k) {
    if (t->get_symbol()
        == tm.get_rounding_symbol(static_cast<RoundingMode>(k))) {
      return true;
    }
  }
  return false;
}

// A chain of writes is walked in a loop: chains of any length are values.
bool is_array_value(TermManager* tm, const Term_* t, bool with_abstract) {
  while (tag_of(*tm, t) == SymbolTag::ARRAY_WRITE) {
    if (!is_value(tm, t->get_child(1), with_abstract)
        || !is_value(tm, t->get_child(2), with_abstract)) {
      return false;
    }
    t = t->get_child(0);
  }
  return tag_of(*tm, t) == SymbolTag::ARRAY_CONST
         && is_value(tm, t->get_child(0), with_abstract);
}

}  // namespace

bool is_value(TermManager* tm, const Term_* t, bool with_abstract) {
  const Type* type = t->get_type();
  if (tm->is_bool_type(type)) {
    return t == tm->make_true() || t == tm->make_false();
  }
  if (tm->is_real_type(type) || tm->is_integer_type(type)
      || tm->is_bv_type(type) || tm->is_fp_type(type)) {
    return is_num(*tm, t);
  }
  if (tm->is_fprounding_type(type)) {
    return is_rounding_constant(*tm, t);
  }
  if (tm->is_array_type(type)) {
    return is_array_value(tm, t, with_abstract);
  }
  if (tm->is_enum_value(t->get_symbol())) {
    return true;
  }
  return with_abstract && t->get_arity() == 0
         && tm->is_constant(t->get_symbol())
         && t->get_symbol()->get_name().compare(0, 1, "@") == 0;
}

bool is_fp_nan_number(const TermManager& tm, const Term_* t) {
  size_t e = 0, m = 0;
  QNumber bits;
  if (!tm.is_fp_type(t->get_type(), &e, &m) || !num_value(tm, t, bits)) {
    return false;
  }
  // All exponent bits set and a non-zero significand.
  QNumber field;
  BVNumber::bit_right_shift(bits, m, field);
  QNumber ones = BVNumber::pow2(e) - QNumber(1L);
  return BVNumber::trim(field, e) == ones && !BVNumber::trim(bits, m).is_zero();
}

namespace {

// Whether two different terms that are both values of this kind are
// different values: numbers (but NaNs, of which there is one with many
// bit patterns), Booleans, enum values, rounding modes.
bool distinct_as_values(TermManager& tm, const Term_* t) {
  if (is_num(tm, t)) {
    return !is_fp_nan_number(tm, t);
  }
  return t == tm.make_true() || t == tm.make_false()
         || tm.is_enum_value(t->get_symbol()) || is_rounding_constant(tm, t);
}

struct ArrayEntries {
  TermMap at;  // index value to element value; the outermost write wins
  const Term_* fallback = nullptr;
  bool usable = true;
};

void read_array_value(TermManager& tm, const Term_* t, ArrayEntries& out) {
  while (tag_of(tm, t) == SymbolTag::ARRAY_WRITE) {
    const Term_* index = t->get_child(1);
    out.usable = out.usable && distinct_as_values(tm, index);
    if (!out.at.contains(index)) {
      out.at.insert(index, t->get_child(2));
    }
    t = t->get_child(0);
  }
  out.fallback = t->get_child(0);
}

const Term_* element_at(const ArrayEntries& a, const Term_* index) {
  const Term_* const* v = a.at.get(index);
  return v != nullptr ? *v : a.fallback;
}

// Two array values are equal when they agree at every written index and,
// unless the written indices cover the whole index type, on the default.
int eval_array_values(TermManager& tm, const Term_* a, const Term_* b) {
  ArrayEntries ea, eb;
  read_array_value(tm, a, ea);
  read_array_value(tm, b, eb);
  if (!ea.usable || !eb.usable) {
    return -1;
  }
  bool unknown = false;
  TermSet indices;
  for (const TermMap* m : {&ea.at, &eb.at}) {
    for (const auto& [index, unused] : *m) {
      if (!indices.insert(index).second) {
        continue;
      }
      int r = compare_values(tm, element_at(ea, index), element_at(eb, index));
      if (r == 0) {
        return 0;
      }
      unknown = unknown || r < 0;
    }
  }
  const Type* index_type = nullptr;
  tm.is_array_type(a->get_type(), &index_type);
  QNumber card;
  bool covered = tm.is_finite_domain_type(index_type, &card)
                 && card <= static_cast<long>(indices.size());
  if (!covered) {
    int r = compare_values(tm, ea.fallback, eb.fallback);
    if (r == 0) {
      return 0;
    }
    unknown = unknown || r < 0;
  }
  return unknown ? -1 : 1;
}

}  // namespace

int compare_values(TermManager& tm, const Term_* a, const Term_* b) {
  if (a == b) {
    return 1;
  }
  if (is_num(tm, a) && is_num(tm, b)) {
    // Number terms are unique per bit pattern or value; only the NaNs
    // share one value among several patterns.
    return is_fp_nan_number(tm, a) && is_fp_nan_number(tm, b) ? 1 : 0;
  }
  if (distinct_as_values(tm, a) && distinct_as_values(tm, b)) {
    return 0;
  }
  if (tm.is_array_type(a->get_type()) && is_value(&tm, a, false)
      && is_value(&tm, b, false)) {
    return eval_array_values(tm, a, b);
  }
  return -1;
}

// ----------------------------------------------------------------------
// Booleans
// ----------------------------------------------------------------------

namespace {

bool is_negation_of(const TermManager& tm, const Term_* a, const Term_* b) {
  return tag_of(tm, a) == SymbolTag::NOT && a->get_child(0) == b;
}

bool complementary(const TermManager& tm, const Term_* a, const Term_* b) {
  return is_negation_of(tm, a, b) || is_negation_of(tm, b, a);
}

void order_by_id(TermList& args) {
  if (args[1]->get_id() < args[0]->get_id()) {
    std::swap(args[0], args[1]);
  }
}

class AndSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    const Term_* a = args[0];
    const Term_* b = args[1];
    if (a == tm.make_false() || b == tm.make_false()
        || complementary(tm, a, b)) {
      return tm.make_false();
    }
    if (a == tm.make_true() || a == b) {
      return b;
    }
    if (b == tm.make_true()) {
      return a;
    }
    order_by_id(args);
    return tm.do_make_term(s, args);
  }
};

class OrSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    const Term_* a = args[0];
    const Term_* b = args[1];
    if (a == tm.make_true() || b == tm.make_true() || complementary(tm, a, b)) {
      return tm.make_true();
    }
    if (a == tm.make_false() || a == b) {
      return b;
    }
    if (b == tm.make_false()) {
      return a;
    }
    order_by_id(args);
    return tm.do_make_term(s, args);
  }
};

class NotSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    const Term_* a = args[0];
    if (a == tm.make_true()) {
      return tm.make_false();
    }
    if (a == tm.make_false()) {
      return tm.make_true();
    }
    if (tag_of(tm, a) == SymbolTag::NOT) {
      return a->get_child(0);
    }
    return tm.do_make_term(s, args);
  }
};

class IffSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    const Term_* a = args[0];
    const Term_* b = args[1];
    if (a == b) {
      return tm.make_true();
    }
    if (complementary(tm, a, b)) {
      return tm.make_false();
    }
    if (a == tm.make_true() || b == tm.make_true()) {
      return a == tm.make_true() ? b : a;
    }
    if (a == tm.make_false() || b == tm.make_false()) {
      return tm.make_not(a == tm.make_false() ? b : a);
    }
    order_by_id(args);
    return tm.do_make_term(s, args);
  }
};

class TermIteSimpl : public SimplFun {
 public:
  const Term_* operator()(TermManager& tm,
                          const Symbol* s,
                          TermList& args) override {
    if (args[0] == tm.make_true() || args[1] == args[2]) {
      return args[1];
    }
    if (args[0] == tm.make_false()) {
      return args[2];
    }
    return tm.do_make_term(s, args);
  }
};

}  // namespace

// ----------------------------------------------------------------------
// Equality of bit-vectors, floats, arrays, enums and uninterpreted sorts
// ----------------------------------------------------------------------

const Term_* GenericEqSimpl::operator()(TermManager& tm,
                                        const Symbol* s,
                                        TermList& args) {
  const Term_* a = args[0];
  const Term_* b = args[1];
  if (a == b) {
    return tm.make_true();
  }
  if (is_num(tm, a) && is_num(tm, b)) {
    int r = compare_values(tm, a, b);
    if (r >= 0) {
      return bool_term(tm, r == 1);
    }
  }
  if (tm.is_array_type(a->get_type())) {
    if (tag_of(tm, a) == SymbolTag::ARRAY_CONST
        && tag_of(tm, b) == SymbolTag::ARRAY_CONST) {
      return tm.make_eq(a->get_child(0), b->get_child(0));
    }
    if (is_value(&tm, a, false) && is_value(&tm, b, false)) {
      int r = compare_values(tm, a, b);
      if (r >= 0) {
        return bool_term(tm, r == 1);
      }
    }
  }
  if (is_num(tm, a)) {
    std::swap(args[0], args[1]);
  } else if (!is_num(tm, b)) {
    // Enum values and rounding modes are distinct constants.
    if (compare_values(tm, a, b) == 0) {
      return tm.make_false();
    }
    order_by_id(args);
  }
  // Unchecked construction may pair unrelated types; the symbol given then
  // stands.
  const Type* ta = a->get_type();
  const Type* tb = b->get_type();
  const Type* super = tm.is_subtype(ta, tb)   ? tb
                      : tm.is_subtype(tb, ta) ? ta
                                              : nullptr;
  return tm.do_make_term(super != nullptr ? tm.make_equal_symbol(super) : s,
                         args);
}

// ----------------------------------------------------------------------

void register_bool_simplifications(StdTermSimplifier& s) {
  s.register_simplification(SymbolTag::AND, new AndSimpl());
  s.register_simplification(SymbolTag::OR, new OrSimpl());
  s.register_simplification(SymbolTag::NOT, new NotSimpl());
  s.register_simplification(SymbolTag::IFF, new IffSimpl());
  s.register_simplification(SymbolTag::ITE, new TermIteSimpl());
}

}  // namespace termsimpl
}  // namespace zenlo
