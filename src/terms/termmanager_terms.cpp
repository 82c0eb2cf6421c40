// Constructors of the Boolean, arithmetic, array, conversion and
// quantifier terms. Each picks its symbol, checks what the symbol's type
// cannot express, and ends in make_term.
#include <cctype>
#include <string>

#include "terms/termmanager.h"

namespace zenlo {

// ----------------------------------------------------------------------
// Booleans and arithmetic
// ----------------------------------------------------------------------

const Term_* TermManager::make_and(const Term_* a, const Term_* b) {
  return apply("make_and", d_and_sym, a, b);
}

const Term_* TermManager::make_or(const Term_* a, const Term_* b) {
  return apply("make_or", d_or_sym, a, b);
}

const Term_* TermManager::make_not(const Term_* a) {
  return apply("make_not", d_not_sym, a);
}

const Term_* TermManager::make_iff(const Term_* a, const Term_* b) {
  return apply("make_iff", d_iff_sym, a, b);
}

const Symbol* TermManager::arith_symbol(const Term_* a,
                                        const Term_* b,
                                        const Symbol* int_sym,
                                        const Symbol* rat_sym) const {
  return a->get_type() == d_int_type && b->get_type() == d_int_type ? int_sym
                                                                    : rat_sym;
}

const Term_* TermManager::make_leq(const Term_* a, const Term_* b) {
  return apply("make_leq", arith_symbol(a, b, d_leq_int, d_leq_rat), a, b);
}

const Term_* TermManager::make_plus(const Term_* a, const Term_* b) {
  return apply("make_plus", arith_symbol(a, b, d_plus_int, d_plus_rat), a, b);
}

const Term_* TermManager::make_times(const Term_* a, const Term_* b) {
  return apply(
      "make_times", arith_symbol(a, b, d_times_int, d_times_rat), a, b);
}

const Term_* TermManager::make_divide(const Term_* a, const Term_* b) {
  return apply("make_divide", d_divide_sym, a, b);
}

const Term_* TermManager::make_floor(const Term_* a) {
  return apply("make_floor", d_floor_sym, a);
}

const Term_* TermManager::make_pi() {
  return make_constant(d_pi_sym);
}

const Term_* TermManager::make_exp(const Term_* a) {
  return apply("make_exp", d_exp_sym, a);
}

const Term_* TermManager::make_sin(const Term_* a) {
  return apply("make_sin", d_sin_sym, a);
}

const Term_* TermManager::make_log(const Term_* a) {
  return apply("make_log", d_log_sym, a);
}

const Term_* TermManager::make_pow(const Term_* a, const Term_* b) {
  return apply("make_pow", d_pow_sym, a, b);
}

const Term_* TermManager::make_asin(const Term_* a) {
  return apply("make_asin", d_asin_sym, a);
}

// Int and Int compare as Int; mixing in Real compares as Real (the Int side
// is accepted by subtyping); any other type is its own.
const Type* TermManager::equality_type(const Term_* a, const Term_* b) const {
  const Type* ta = a->get_type();
  if (ta == d_int_type && b->get_type() == d_int_type) {
    return d_int_type;
  }
  if (is_subtype(ta, d_real_type)) {
    return d_real_type;
  }
  return ta;
}

const Term_* TermManager::make_equal(const Term_* a, const Term_* b) {
  if (a->get_type() == d_bool_type || b->get_type() == d_bool_type) {
    throw error("Equality arguments can't be Boolean");
  }
  return apply("make_equal", make_equal_symbol(equality_type(a, b)), a, b);
}

const Term_* TermManager::make_eq(const Term_* a, const Term_* b) {
  return a->get_type() == d_bool_type ? make_iff(a, b) : make_equal(a, b);
}

const Term_* TermManager::make_term_ite(const Term_* c,
                                        const Term_* a,
                                        const Term_* b) {
  if (a->get_type() == d_bool_type || b->get_type() == d_bool_type) {
    throw error("Term-ITE arguments can't be Boolean");
  }
  return apply(
      "make_term_ite", make_term_ite_symbol(equality_type(a, b)), c, a, b);
}

// ----------------------------------------------------------------------
// Arrays
// ----------------------------------------------------------------------

namespace {

[[noreturn]] void not_an_array(const Term_* t) {
  throw TermManager::error("type error. term " + t->to_shallow_str()
                           + " is not an array");
}

}  // namespace

const Term_* TermManager::make_array_read(const Term_* array,
                                          const Term_* index) {
  const Type* i = nullptr;
  const Type* e = nullptr;
  if (!is_array_type(array->get_type(), &i, &e)) {
    not_an_array(array);
  }
  return apply("make_array_read", make_array_read_symbol(i, e), array, index);
}

const Term_* TermManager::make_array_write(const Term_* array,
                                           const Term_* index,
                                           const Term_* element) {
  const Type* i = nullptr;
  const Type* e = nullptr;
  if (!is_array_type(array->get_type(), &i, &e)) {
    not_an_array(array);
  }
  return apply(
      "make_array_write", make_array_write_symbol(i, e), array, index, element);
}

const Term_* TermManager::make_array_const(const Type* array_type,
                                           const Term_* element) {
  const Type* i = nullptr;
  const Type* e = nullptr;
  if (!is_array_type(array_type, &i, &e)) {
    throw error("type error. type " + array_type->to_str()
                + " is not an array");
  }
  return apply("make_array_const", make_array_const_symbol(i, e), element);
}

// ----------------------------------------------------------------------
// Integers and bit-vectors
// ----------------------------------------------------------------------

const Term_* TermManager::make_int_to_bv(size_t width, const Term_* a) {
  get_bv_type(width);  // rejects width 0 before a symbol is named after it
  return apply("make_int_to_bv", make_int_to_bv_symbol(width), a);
}

const Term_* TermManager::int_from_bv(const char* ctor,
                                      SymbolTag::tag tag,
                                      const Term_* a) {
  size_t w = 0;
  if (!is_bv_type(a->get_type(), &w)) {
    throw error("type error. term " + a->to_shallow_str() + " is not a BV");
  }
  return apply(ctor, make_bv_symbol(tag, w), a);
}

const Term_* TermManager::make_int_from_ubv(const Term_* a) {
  return int_from_bv("make_int_from_ubv", SymbolTag::INT_FROM_UBV, a);
}

const Term_* TermManager::make_int_from_sbv(const Term_* a) {
  return int_from_bv("make_int_from_sbv", SymbolTag::INT_FROM_SBV, a);
}

const Term_* TermManager::make_int_modular_congruence(const QNumber& modulus,
                                                      const Term_* a,
                                                      const Term_* b) {
  return apply(
      "make_int_modular_congruence", make_int_mod_congr_symbol(modulus), a, b);
}

// ----------------------------------------------------------------------
// Quantifiers and variables
// ----------------------------------------------------------------------

const Term_* TermManager::make_quantifier(SymbolTag::tag tag,
                                          const Term_* var,
                                          const Term_* body) {
  if (tag != SymbolTag::FORALL && tag != SymbolTag::EXISTS) {
    throw error(SymbolTag::to_str(tag) + " is not a quantifier");
  }
  if (!is_variable(var->get_symbol())) {
    throw error("type error. term " + var->to_shallow_str()
                + " is not a variable");
  }
  const char* ctor = tag == SymbolTag::FORALL ? "make_forall" : "make_exists";
  return apply(ctor, typed(tag, var->get_type()), var, body);
}

void TermManager::check_variable_type(const Type* type) const {
  if (is_function_type(type)) {
    throw error("Higher-order variables are not supported");
  }
}

const Term_* TermManager::make_variable_term(const std::string& name,
                                             const Type* type) {
  const Symbol* s = d_signature.add_symbol(name, type);
  return d_bank.make_term(s, nullptr, 0);
}

const Term_* TermManager::make_fresh_variable(const Type* type) {
  check_variable_type(type);
  std::string name = "'" + std::to_string(d_fresh_var_counter++);
  if (d_signature.get_symbol(name) != nullptr) {
    throw error("impossible to create variable " + name
                + ", because there's already a symbol with the same name");
  }
  return make_variable_term(name, type);
}

const Term_* TermManager::make_named_variable(std::string_view name,
                                              const Type* type) {
  if (name.empty()) {
    throw error("Empty name for symbol");
  }
  if (std::isdigit(static_cast<unsigned char>(name[0]))) {
    throw error("Variable names can't start with a number");
  }
  check_variable_type(type);
  return make_variable_term(get_unused_symbol_name("'" + std::string(name)),
                            type);
}

}  // namespace zenlo
