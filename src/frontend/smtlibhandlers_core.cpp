// Built-in symbols of the Core, Ints and Reals theories, arrays, the
// transcendental functions and the quantifiers; the handler classes and
// the table that holds every theory's handlers.
//
// The store's constructors are binary, so n-ary SMT-LIB operators nest
// to the left, and the derived operators (div, mod, abs, distinct, ...)
// are spelled out in the store's primitives here, once, for all clients.
#include <string>

#include "frontend/smtlibhandlers.h"

namespace zenlo {

using perror = ParserInterface::error;

// ----------------------------------------------------------------------
// Handler classes and checks
// ----------------------------------------------------------------------

const Term_* SymbolHandler::operator()(TermManager&,
                                       std::string_view,
                                       const Type*,
                                       TermArgs) const {
  return nullptr;
}

const Term_* SymbolHandler::operator()(
    TermManager&, std::string_view, const Type*, IndexArgs, TermArgs) const {
  return nullptr;
}

void SymbolHandler::check_arity(std::string_view name,
                                size_t n,
                                TermArgs args,
                                bool exact) {
  if (exact ? args.size() == n : args.size() >= n) {
    return;
  }
  throw perror("ERROR: " + std::string(name) + " takes "
               + (exact ? "exactly " : "at least ") + std::to_string(n)
               + " arguments (" + std::to_string(args.size()) + " given)");
}

void SymbolHandler::check_idx_arity(std::string_view name,
                                    size_t n,
                                    IndexArgs indices) {
  if (indices.size() != n) {
    throw perror("ERROR: " + std::string(name) + " takes exactly "
                 + std::to_string(n) + " indices ("
                 + std::to_string(indices.size()) + " given)");
  }
}

size_t SymbolHandler::check_idx_int(std::string_view name,
                                    IndexArgs indices,
                                    size_t position) {
  std::string_view text = indices[position];
  size_t value = 0;
  bool ok = !text.empty() && text.size() <= 18;
  for (char c : text) {
    ok = ok && c >= '0' && c <= '9';
    value = value * 10 + static_cast<size_t>(c - '0');
  }
  if (ok && value <= kMaxIndex) {
    return value;
  }
  std::string where = "ERROR: index " + std::to_string(position + 1) + " of "
                      + std::string(name);
  if (!ok) {
    throw perror(where + " must be an integer (" + std::string(text)
                 + " given)");
  }
  throw perror(where + " is too large (" + std::string(text)
               + " given, at most " + std::to_string(kMaxIndex) + ")");
}

namespace {

class PlainHandler : public SymbolHandler {
 public:
  PlainHandler(size_t arity, bool exact, PlainFn fn)
      : d_arity(arity), d_exact(exact), d_fn(fn) {}

  using SymbolHandler::operator();

  const Term_* operator()(TermManager& tm,
                          std::string_view name,
                          const Type* sort,
                          TermArgs args) const override {
    check_arity(name, d_arity, args, d_exact);
    return d_fn(tm, sort, args);
  }

 private:
  size_t d_arity;
  bool d_exact;
  PlainFn d_fn;
};

class IndexedHandler : public SymbolHandler {
 public:
  explicit IndexedHandler(IndexedFn fn) : d_fn(fn) {}

  using SymbolHandler::operator();

  const Term_* operator()(TermManager& tm,
                          std::string_view name,
                          const Type* sort,
                          IndexArgs indices,
                          TermArgs args) const override {
    return d_fn(tm, name, sort, indices, args);
  }

 private:
  IndexedFn d_fn;
};

}  // namespace

void HandlerRegistry::plain(const char* name,
                            size_t arity,
                            bool exact,
                            PlainFn fn) {
  d_owned.push_back(std::make_unique<PlainHandler>(arity, exact, fn));
  d_table.insert(std::string_view(name), d_owned.back().get());
}

void HandlerRegistry::indexed(const char* name, IndexedFn fn) {
  d_owned.push_back(std::make_unique<IndexedHandler>(fn));
  d_table.insert(std::string_view(name), d_owned.back().get());
}

const HandlerTable& smtlib2_handlers() {
  // Built on first use and never destroyed: parsers may outlive static
  // destruction order in a program's exit path.
  static HandlerRegistry* registry = [] {
    auto* r = new HandlerRegistry();
    add_core_handlers(*r);
    add_bv_handlers(*r);
    add_fp_handlers(*r);
    return r;
  }();
  return registry->table();
}

bool is_rational_literal(TermManager& tm, const Term_* t, QNumber* value) {
  const Type* type = t->get_type();
  return t->get_arity() == 0
         && (type == tm.get_integer_type() || type == tm.get_real_type())
         && tm.is_number(t->get_symbol(), value);
}

bool is_bv_literal(TermManager& tm,
                   const Term_* t,
                   QNumber* value,
                   size_t* width) {
  return t->get_arity() == 0 && tm.is_bv_type(t->get_type(), width)
         && tm.is_number(t->get_symbol(), value);
}

const Term_* arith_negate(TermManager& tm, const Term_* t) {
  QNumber v;
  if (is_rational_literal(tm, t, &v)) {
    return tm.make_number(v.neg());
  }
  return tm.make_times(tm.make_number(-1), t);
}

// A quotient of two number literals is the number itself, so that a
// fraction printed as (/ 1 3) reads back as the constant it came from.
const Term_* divide(TermManager& tm, const Term_* a, const Term_* b) {
  QNumber n, d;
  if (is_rational_literal(tm, a, &n) && is_rational_literal(tm, b, &d)
      && !d.is_zero()) {
    return tm.make_number(n / d);
  }
  return tm.make_divide(a, b);
}

namespace {

// ----------------------------------------------------------------------
// Core
// ----------------------------------------------------------------------

const Term_* h_and(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = a[0];
  for (size_t i = 1; i < a.size(); ++i) {
    r = tm.make_and(r, a[i]);
  }
  return r;
}

const Term_* h_or(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = a[0];
  for (size_t i = 1; i < a.size(); ++i) {
    r = tm.make_or(r, a[i]);
  }
  return r;
}

const Term_* h_not(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_not(a[0]);
}

// a => b => c reads a => (b => c).
const Term_* h_implies(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = a.back();
  for (size_t i = a.size() - 1; i-- > 0;) {
    r = tm.make_or(tm.make_not(a[i]), r);
  }
  return r;
}

const Term_* h_xor(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = a[0];
  for (size_t i = 1; i < a.size(); ++i) {
    r = tm.make_not(tm.make_iff(r, a[i]));
  }
  return r;
}

const Term_* h_nand(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_not(tm.make_and(a[0], a[1]));
}

// Boolean branches: (c => a) and (not c => b).
const Term_* h_ite(TermManager& tm, const Type*, TermArgs a) {
  if (a[1]->get_type() == tm.get_bool_type()) {
    return tm.make_and(tm.make_or(tm.make_not(a[0]), a[1]),
                       tm.make_or(a[0], a[2]));
  }
  return tm.make_term_ite(a[0], a[1], a[2]);
}

// Chained: each neighbouring pair, conjoined.
const Term_* h_eq(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = tm.make_eq(a[0], a[1]);
  for (size_t i = 2; i < a.size(); ++i) {
    r = tm.make_and(r, tm.make_eq(a[i - 1], a[i]));
  }
  return r;
}

// All pairs differ.
const Term_* h_distinct(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = nullptr;
  for (size_t i = 0; i < a.size(); ++i) {
    for (size_t j = i + 1; j < a.size(); ++j) {
      const Term_* d = tm.make_not(tm.make_eq(a[i], a[j]));
      r = r == nullptr ? d : tm.make_and(r, d);
    }
  }
  return r;
}

// ----------------------------------------------------------------------
// Arithmetic
// ----------------------------------------------------------------------

void check_arith(TermManager& tm, const Term_* t, const char* op) {
  if (!tm.is_subtype(t->get_type(), tm.get_real_type())) {
    throw perror(std::string("ERROR: argument of ") + op
                 + " is not an arithmetic term: " + t->to_shallow_str());
  }
}

const Term_* h_plus(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = a[0];
  for (size_t i = 1; i < a.size(); ++i) {
    r = tm.make_plus(r, a[i]);
  }
  return r;
}

const Term_* h_times(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = a[0];
  for (size_t i = 1; i < a.size(); ++i) {
    r = tm.make_times(r, a[i]);
  }
  return r;
}

const Term_* h_divide(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = a[0];
  for (size_t i = 1; i < a.size(); ++i) {
    r = divide(tm, r, a[i]);
  }
  return r;
}

const Term_* h_minus(TermManager& tm, const Type*, TermArgs a) {
  if (a.size() == 1) {
    check_arith(tm, a[0], "-");
    return arith_negate(tm, a[0]);
  }
  const Term_* r = a[0];
  for (size_t i = 1; i < a.size(); ++i) {
    check_arith(tm, a[i], "-");
    r = tm.make_plus(r, arith_negate(tm, a[i]));
  }
  return r;
}

const Term_* h_leq(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = tm.make_leq(a[0], a[1]);
  for (size_t i = 2; i < a.size(); ++i) {
    r = tm.make_and(r, tm.make_leq(a[i - 1], a[i]));
  }
  return r;
}

const Term_* h_geq(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = tm.make_leq(a[1], a[0]);
  for (size_t i = 2; i < a.size(); ++i) {
    r = tm.make_and(r, tm.make_leq(a[i], a[i - 1]));
  }
  return r;
}

// a < b is not (b <= a).
const Term_* h_lt(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = nullptr;
  for (size_t i = 1; i < a.size(); ++i) {
    const Term_* c = tm.make_not(tm.make_leq(a[i], a[i - 1]));
    r = r == nullptr ? c : tm.make_and(r, c);
  }
  return r;
}

const Term_* h_gt(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = nullptr;
  for (size_t i = 1; i < a.size(); ++i) {
    const Term_* c = tm.make_not(tm.make_leq(a[i - 1], a[i]));
    r = r == nullptr ? c : tm.make_and(r, c);
  }
  return r;
}

const Term_* h_to_int(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_floor(a[0]);
}

const Term_* h_to_real(TermManager& tm, const Type*, TermArgs a) {
  check_arith(tm, a[0], "to_real");
  return a[0];
}

const Term_* h_is_int(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_equal(a[0], tm.make_floor(a[0]));
}

const Term_* h_abs(TermManager& tm, const Type*, TermArgs a) {
  const Term_* x = a[0];
  return tm.make_term_ite(
      tm.make_leq(tm.make_number(0), x), x, arith_negate(tm, x));
}

// Euclidean division: floor(a / d) for d >= 0, -floor(a / -d) otherwise.
const Term_* int_div(TermManager& tm, const Term_* a, const Term_* d) {
  const Term_* pos = tm.make_floor(divide(tm, a, d));
  const Term_* neg = tm.make_times(
      tm.make_number(-1), tm.make_floor(divide(tm, a, arith_negate(tm, d))));
  return tm.make_term_ite(tm.make_leq(tm.make_number(0), d), pos, neg);
}

// a mod d = a - d * (a div d)
const Term_* int_mod(TermManager& tm, const Term_* a, const Term_* d) {
  return tm.make_plus(a, arith_negate(tm, tm.make_times(d, int_div(tm, a, d))));
}

// SMT-LIB leaves division by zero open: (div a 0) and (mod a 0) are some
// values that depend on a alone, and not on each other. Fixing them by the
// formulas above (which give a mod 0 = a) would make satisfiable scripts
// unsatisfiable, so that case is an uninterpreted function of a, one for
// div and one for mod. A divisor that is a nonzero number needs no case.
const Term_* by_zero_guard(TermManager& tm,
                           const char* name,
                           const Term_* a,
                           const Term_* d,
                           const Term_* (*op)(TermManager&,
                                              const Term_*,
                                              const Term_*)) {
  QNumber v;
  bool literal = is_rational_literal(tm, d, &v);
  if (literal && !v.is_zero()) {
    return op(tm, a, d);
  }
  const Type* i = tm.get_integer_type();
  const Symbol* f = tm.make_symbol(name, tm.get_function_type({i}, i));
  const Term_* open = tm.make_uninterpreted_function(f, TermList{a});
  if (literal) {
    return open;
  }
  return tm.make_term_ite(
      tm.make_equal(d, tm.make_number(0)), open, op(tm, a, d));
}

const Term_* h_div(TermManager& tm, const Type*, TermArgs a) {
  const Term_* r = a[0];
  for (size_t i = 1; i < a.size(); ++i) {
    r = by_zero_guard(tm, ".div0", r, a[i], int_div);
  }
  return r;
}

const Term_* h_mod(TermManager& tm, const Type*, TermArgs a) {
  return by_zero_guard(tm, ".mod0", a[0], a[1], int_mod);
}

const Term_* h_divisible(TermManager& tm,
                         std::string_view name,
                         const Type*,
                         IndexArgs idx,
                         TermArgs a) {
  SymbolHandler::check_idx_arity(name, 1, idx);
  SymbolHandler::check_arity(name, 1, a, true);
  QNumber n = QNumber::from_str(std::string(idx[0]));
  if (n.sign() <= 0) {
    throw perror("ERROR: divisible needs a positive index ("
                 + std::string(idx[0]) + " given)");
  }
  return tm.make_int_modular_congruence(n, a[0], tm.make_number(0));
}

// ----------------------------------------------------------------------
// Arrays, transcendental functions, quantifiers
// ----------------------------------------------------------------------

const Term_* h_select(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_array_read(a[0], a[1]);
}

const Term_* h_store(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_array_write(a[0], a[1], a[2]);
}

const Term_* h_const(TermManager& tm, const Type* sort, TermArgs a) {
  if (sort == nullptr) {
    throw perror(
        "ERROR: const needs a sort, as in ((as const (Array Int "
        "Int)) 0)");
  }
  return tm.make_array_const(sort, a[0]);
}

const Term_* h_exp(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_exp(a[0]);
}

const Term_* h_sin(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_sin(a[0]);
}

const Term_* h_log(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_log(a[0]);
}

const Term_* h_asin(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_asin(a[0]);
}

const Term_* h_pow(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_pow(a[0], a[1]);
}

const Term_* h_forall(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_forall(a[0], a[1]);
}

const Term_* h_exists(TermManager& tm, const Type*, TermArgs a) {
  return tm.make_exists(a[0], a[1]);
}

}  // namespace

void add_core_handlers(HandlerRegistry& r) {
  const bool exact = true, least = false;
  r.plain("and", 1, least, h_and);
  r.plain("or", 1, least, h_or);
  r.plain("not", 1, exact, h_not);
  r.plain("=>", 2, least, h_implies);
  r.plain("xor", 2, least, h_xor);
  r.plain("nand", 2, exact, h_nand);
  r.plain("ite", 3, exact, h_ite);
  r.plain("=", 2, least, h_eq);
  r.plain("distinct", 2, least, h_distinct);
  r.plain("+", 2, least, h_plus);
  r.plain("*", 2, least, h_times);
  r.plain("/", 2, least, h_divide);
  r.plain("-", 1, least, h_minus);
  r.plain("~", 1, exact, h_minus);
  r.plain("<=", 2, least, h_leq);
  r.plain(">=", 2, least, h_geq);
  r.plain("<", 2, least, h_lt);
  r.plain(">", 2, least, h_gt);
  r.plain("to_int", 1, exact, h_to_int);
  r.plain("to_real", 1, exact, h_to_real);
  r.plain("is_int", 1, exact, h_is_int);
  r.plain("abs", 1, exact, h_abs);
  r.plain("div", 2, least, h_div);
  r.plain("mod", 2, exact, h_mod);
  r.indexed("divisible", h_divisible);
  r.plain("select", 2, exact, h_select);
  r.plain("store", 3, exact, h_store);
  r.plain("const", 1, exact, h_const);
  r.plain("exp", 1, exact, h_exp);
  r.plain("sin", 1, exact, h_sin);
  r.plain("log", 1, exact, h_log);
  r.plain("asin", 1, exact, h_asin);
  r.plain("pow", 2, exact, h_pow);
  r.plain("forall", 2, exact, h_forall);
  r.plain("exists", 2, exact, h_exists);
}

}  // namespace zenlo
