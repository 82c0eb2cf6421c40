// Start, the door of every application, and the symbol classification.
#include "terms/termmanager.h"

#include <string>

#include "terms/termvisitor.h"

namespace zenlo {

// Lends one argument vector per nesting depth of constructor calls.
class TermManager::ScratchArgs {
 public:
  explicit ScratchArgs(TermManager& tm) : d_tm(tm) {
    if (tm.d_scratch_depth == tm.d_scratch.size()) {
      tm.d_scratch.push_back(std::make_unique<TermList>());
      tm.d_scratch.back()->reserve(8);
    }
    d_list = tm.d_scratch[tm.d_scratch_depth++].get();
    d_list->clear();
  }

  ~ScratchArgs() { --d_tm.d_scratch_depth; }

  ScratchArgs(const ScratchArgs&) = delete;
  ScratchArgs& operator=(const ScratchArgs&) = delete;

  TermList& get() { return *d_list; }

 private:
  TermManager& d_tm;
  TermList* d_list;
};

TermManager::TermManager() : d_signature(d_universe.get_application_type()) {
  make_base_types();
  initialize_standard_signature();
}

TermManager::~TermManager() {
  for (VisitScratch* s : d_visit_free) {
    delete s;
  }
}

const Symbol* TermManager::add_interpreted_symbol(std::string_view name,
                                                  const Type* type,
                                                  SymbolTag::tag tag) {
  std::string stored;
  stored.reserve(name.size() + 2);
  stored += '`';
  stored += name;
  stored += '`';
  const Symbol* s = d_signature.add_symbol(stored, type);
  const_cast<Symbol*>(s)->d_tag = tag;
  return s;
}

void TermManager::initialize_standard_signature() {
  using T = SymbolTag;
  const Type* b = d_bool_type;
  const Type* r = d_real_type;
  const Type* i = d_int_type;
  auto fn = [this](std::vector<const Type*> args, const Type* ret) {
    return function_type_unchecked(args, ret);
  };
  auto add = [this](const char* name, const Type* type, SymbolTag::tag tag) {
    const Symbol* s = add_interpreted_symbol(name, type, tag);
    d_standard.push_back(s);
    return s;
  };
  d_true_sym = add("true", b, T::TRUE);
  d_false_sym = add("false", b, T::FALSE);
  d_true = d_bank.make_term(d_true_sym, nullptr, 0);
  d_false = d_bank.make_term(d_false_sym, nullptr, 0);
  d_not_sym = add("not", fn({b}, b), T::NOT);
  d_and_sym = add("and", fn({b, b}, b), T::AND);
  d_or_sym = add("or", fn({b, b}, b), T::OR);
  d_iff_sym = add("iff", fn({b, b}, b), T::IFF);
  d_plus_rat = add("+_rat", fn({r, r}, r), T::PLUS);
  d_times_rat = add("*_rat", fn({r, r}, r), T::TIMES);
  d_divide_sym = add("/_rat", fn({r, r}, r), T::DIVIDE);
  d_leq_rat = add("<=_rat", fn({r, r}, b), T::LEQ);
  d_standard.push_back(make_equal_symbol(r));
  d_plus_int = add("+_int", fn({i, i}, i), T::PLUS);
  d_times_int = add("*_int", fn({i, i}, i), T::TIMES);
  d_leq_int = add("<=_int", fn({i, i}, b), T::LEQ);
  d_standard.push_back(make_equal_symbol(i));
  d_floor_sym = add("floor", fn({r}, i), T::FLOOR);
  d_pi_sym = add("pi", r, T::PI);
  d_exp_sym = add("exp", fn({r}, r), T::EXP);
  d_sin_sym = add("sin", fn({r}, r), T::SIN);
  d_log_sym = add("log", fn({r}, r), T::LOG);
  d_asin_sym = add("asin", fn({r}, r), T::ASIN);
  d_pow_sym = add("pow", fn({r, r}, r), T::POW);
  const char* const rounding[4] = {"fprounding_even",
                                   "fprounding_zero",
                                   "fprounding_plus_inf",
                                   "fprounding_minus_inf"};
  for (int k = 0; k < 4; ++k) {
    d_rounding_sym[k] = add(rounding[k], d_fprounding_type, T::UNKNOWN);
  }
}

// ----------------------------------------------------------------------
// Making terms
// ----------------------------------------------------------------------

const Term_* TermManager::make_term(const Symbol* symbol,
                                    const TermList& args) {
  if (d_typecheck) {
    typecheck(symbol, args);
  } else {
    d_constructor = nullptr;
    // Even unchecked, the node must have as many children as its symbol
    // says: everything reads the children by the symbol's arity.
    if (args.size() != symbol->get_arity()) {
      typecheck(symbol, args);
    }
  }
  if (d_simplify && d_simplifier != nullptr && !args.empty()) {
    ScratchArgs scratch(*this);
    TermList& copy = scratch.get();
    copy.assign(args.begin(), args.end());
    if (const Term_* r = (*d_simplifier)(symbol, copy)) {
      return r;
    }
  }
  return d_bank.make_term(symbol, args.data(), args.size());
}

const Term_* TermManager::do_make_term(const Symbol* symbol,
                                       const TermList& args) {
  return d_bank.make_term(symbol, args.data(), args.size());
}

void TermManager::typecheck(const Symbol* s, const TermList& args) {
  const char* ctor = d_constructor;
  d_constructor = nullptr;
  if (args.size() != s->get_arity()) {
    throw error("wrong arity for symbol " + s->get_name() + ". expected "
                + std::to_string(s->get_arity()) + ", got "
                + std::to_string(args.size()));
  }
  for (size_t i = 0; i < args.size(); ++i) {
    const Type* expected = s->get_arg_type(i);
    const Type* actual = args[i]->get_type();
    if (actual != expected && !d_universe.is_subtype(actual, expected)) {
      throw error("type error. term " + args[i]->to_shallow_str() + " has type "
                  + actual->to_str() + ", but " + expected->to_str()
                  + " was expected. ("
                  + (ctor != nullptr ? std::string(ctor) : s->get_name())
                  + ")");
    }
  }
}

const Term_* TermManager::apply(const char* ctor,
                                const Symbol* s,
                                const Term_* a) {
  ScratchArgs scratch(*this);
  TermList& args = scratch.get();
  args.push_back(a);
  d_constructor = ctor;
  return make_term(s, args);
}

const Term_* TermManager::apply(const char* ctor,
                                const Symbol* s,
                                const Term_* a,
                                const Term_* b) {
  ScratchArgs scratch(*this);
  TermList& args = scratch.get();
  args.push_back(a);
  args.push_back(b);
  d_constructor = ctor;
  return make_term(s, args);
}

const Term_* TermManager::apply(const char* ctor,
                                const Symbol* s,
                                const Term_* a,
                                const Term_* b,
                                const Term_* c) {
  ScratchArgs scratch(*this);
  TermList& args = scratch.get();
  args.push_back(a);
  args.push_back(b);
  args.push_back(c);
  d_constructor = ctor;
  return make_term(s, args);
}

const Term_* TermManager::make_constant(const Symbol* s) {
  ScratchArgs scratch(*this);
  d_constructor = "make_constant";
  return make_term(s, scratch.get());
}

const Term_* TermManager::make_uninterpreted_function(const Symbol* s,
                                                      const TermList& args) {
  d_constructor = "make_uninterpreted_function";
  return make_term(s, args);
}

// ----------------------------------------------------------------------
// Symbols
// ----------------------------------------------------------------------

namespace {

void check_user_name(std::string_view name) {
  if (name.empty()) {
    throw TermManager::error("Empty name for symbol");
  }
  if (name[0] == '`' || name[0] == '\'') {
    throw TermManager::error(std::string("Symbols can't start with the \"")
                             + name[0] + "\" character");
  }
}

}  // namespace

const Symbol* TermManager::make_symbol(std::string_view name,
                                       const Type* type) {
  check_user_name(name);
  return d_signature.add_symbol(name, type);
}

const Symbol* TermManager::make_unique_symbol(std::string_view name,
                                              const Type* type) {
  check_user_name(name);
  return d_signature.add_symbol(get_unused_symbol_name(name), type);
}

std::string TermManager::get_unused_symbol_name(std::string_view name) const {
  std::string candidate(name);
  for (size_t k = 0; d_signature.get_symbol(candidate) != nullptr; ++k) {
    candidate = std::string(name) + "_" + std::to_string(k);
  }
  return candidate;
}

bool TermManager::is_number(const Symbol* s, QNumber* value) const {
  const QNumber* v = d_number_values.get(s);
  if (v == nullptr) {
    return false;
  }
  if (value != nullptr) {
    *value = *v;
  }
  return true;
}

const QNumber& TermManager::get_number_value(const Term_* t) const {
  const QNumber* v = d_number_values.get(t->get_symbol());
  if (v == nullptr) {
    throw error("term " + t->to_shallow_str() + " is not a number");
  }
  return *v;
}

bool TermManager::is_variable(const Symbol* s) const {
  return s->get_arity() == 0 && !s->get_name().empty()
         && s->get_name()[0] == '\'';
}

bool TermManager::is_interpreted(const Symbol* s) const {
  bool backtick = !s->get_name().empty() && s->get_name()[0] == '`';
  if (s->get_arity() > 0) {
    return backtick;
  }
  return backtick || d_number_values.contains(s) || is_enum_value(s);
}

bool TermManager::is_constant(const Symbol* s) const {
  return s->get_arity() == 0 && !is_interpreted(s) && !is_variable(s);
}

bool TermManager::is_uninterpreted_function(const Symbol* s) const {
  return s->get_arity() > 0 && !is_interpreted(s);
}

bool TermManager::is_enum_value(const Symbol* s) const {
  return !d_enum_of_value.empty() && d_enum_of_value.contains(s);
}

RoundingMode TermManager::get_rounding_mode(const Term_* t) const {
  for (int k = 0; k < 4; ++k) {
    if (t->get_symbol() == d_rounding_sym[k]) {
      return static_cast<RoundingMode>(k);
    }
  }
  throw error("unsupported rounding mode: " + t->to_shallow_str());
}

// ----------------------------------------------------------------------
// Walk scratch
// ----------------------------------------------------------------------

VisitScratch* TermManager::acquire_visit_scratch() {
  if (d_visit_free.empty()) {
    return new VisitScratch();
  }
  VisitScratch* s = d_visit_free.back();
  d_visit_free.pop_back();
  return s;
}

void TermManager::release_visit_scratch(VisitScratch* s) {
  d_visit_free.push_back(s);
}

}  // namespace zenlo
