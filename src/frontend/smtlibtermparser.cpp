// Name resolution of the SMT-LIB reader: bindings, bound variables,
// declarations and the dispatch to the built-in handlers.
#include "frontend/smtlibtermparser.h"

#include <cctype>
#include <string>
#include <utility>

#include "frontend/smtlib2scanner.h"
#include "frontend/smtlibhandlers.h"
#include "terms/termvisitor.h"

namespace zenlo {

using perror = ParserInterface::error;

// The bindings of one name, innermost last. An entry records, for a let
// binding, the namespace depth it was made at, and for all, a stamp that
// orders let bindings and bound variables by when they were made.
struct SmtLibTermParser::NameStack {
  struct Entry {
    const Term_* term;
    uint32_t level;
    uint64_t stamp;
  };

  explicit NameStack(std::string_view n) : name(n) {}

  std::string name;
  std::vector<Entry> entries;
};

struct SmtLibTermParser::Definition {
  Definition(std::string_view n, TermList p, const Term_* b, bool builtin)
      : name(n), params(std::move(p)), body(b), builtin(builtin) {}

  std::string name;
  TermList params;
  const Term_* body;
  // Made by the constructor (pi, bit0, ...) rather than by the script.
  bool builtin;
};

namespace {

[[noreturn]] void bad_type(std::string_view name) {
  throw perror("bad type requested for symbol `" + std::string(name) + "'");
}

[[noreturn]] void unknown(std::string_view name) {
  throw perror("unknown symbol: " + std::string(name));
}

// Symbols of ours that the SMT-LIB 2 standard does not define: a script
// may declare its own symbol of such a name, which then takes the place
// of ours.
bool is_extension_name(std::string_view s) {
  static const char* const names[] = {"~",
                                      "nand",
                                      "pi",
                                      "bit0",
                                      "bit1",
                                      "exp",
                                      "sin",
                                      "log",
                                      "asin",
                                      "pow",
                                      "to_bv",
                                      "int2bv",
                                      "int_to_bv",
                                      "bv2nat",
                                      "ubv_to_int",
                                      "sbv_to_int",
                                      "bvredor",
                                      "bvredand",
                                      "fp.as_ieee_bv"};
  for (const char* n : names) {
    if (s == n) {
      return true;
    }
  }
  return false;
}

// "-5" and "-2.5" as some solvers read them: the negative numbers.
bool is_negative_literal(std::string_view s) {
  if (s.size() < 2 || s[0] != '-' || s[1] < '0' || s[1] > '9') {
    return false;
  }
  size_t dots = 0;
  for (size_t i = 1; i < s.size(); ++i) {
    if (s[i] == '.' && i + 1 < s.size() && dots == 0) {
      ++dots;
    } else if (s[i] < '0' || s[i] > '9') {
      return false;
    }
  }
  return true;
}

bool all_digits(std::string_view s) {
  for (char c : s) {
    if (c < '0' || c > '9') {
      return false;
    }
  }
  return !s.empty();
}

}  // namespace

SmtLibTermParser::SmtLibTermParser(TermManager* tm) : d_tm(tm) {
  define_builtin("bit0", tm->make_bv_number(QNumber(0), 1));
  define_builtin("bit1", tm->make_bv_number(QNumber(1), 1));
  const std::pair<const char*, RoundingMode> modes[] = {
      {"roundNearestTiesToEven", RoundingMode::NearestEven},
      {"RNE", RoundingMode::NearestEven},
      {"roundTowardZero", RoundingMode::Zero},
      {"RTZ", RoundingMode::Zero},
      {"roundTowardPositive", RoundingMode::PlusInf},
      {"RTP", RoundingMode::PlusInf},
      {"roundTowardNegative", RoundingMode::MinusInf},
      {"RTN", RoundingMode::MinusInf},
  };
  for (const auto& m : modes) {
    define_builtin(m.first, tm->make_fp_rounding_mode(m.second));
  }
  define_builtin("pi", tm->make_pi());
}

// A symbol of that name that an earlier script declared in the store (pi,
// say) keeps its place: the binding is left out.
void SmtLibTermParser::define_builtin(std::string_view name,
                                      const Term_* term) {
  if (find_user_symbol(name) == nullptr) {
    auto d = std::make_unique<Definition>(name, TermList(), term, true);
    d_defs.insert(std::string_view(d->name), d.get());
    d.release();
  }
}

SmtLibTermParser::~SmtLibTermParser() {
  for (auto& e : d_defs) {
    delete e.second;
  }
}

// ----------------------------------------------------------------------
// Terms
// ----------------------------------------------------------------------

const Term_* SmtLibTermParser::make_term(std::string_view name,
                                         const Type* sort,
                                         IndexArgs indices,
                                         TermArgs args) {
  if (!indices.empty()) {
    return make_indexed(name, sort, indices, args);
  }
  bool found = false;
  const Term_* t = apply_binding(name, sort, args, &found);
  return found ? t : apply_symbol(name, sort, args);
}

const Term_* SmtLibTermParser::make_indexed(std::string_view name,
                                            const Type* sort,
                                            IndexArgs indices,
                                            TermArgs args) {
  if (const SymbolHandler* const* h = smtlib2_handlers().get(name)) {
    if (const Term_* t = (**h)(*d_tm, name, sort, indices, args)) {
      return t;
    }
  } else if (name.size() > 2 && name.substr(0, 2) == "bv"
             && all_digits(name.substr(2)) && indices.size() == 1
             && args.empty()) {
    // (_ bv10 32): the number 10 of width 32.
    // A value of 2^width or more is read modulo 2^width.
    size_t width = SymbolHandler::check_idx_int(name, indices, 0);
    if (width > 0) {
      QNumber v = QNumber::from_str(std::string(name.substr(2)));
      const Term_* t = d_tm->make_bv_number(BVNumber::trim(v, width), width);
      if (sort != nullptr && sort != t->get_type()) {
        bad_type(name);
      }
      return t;
    }
  }
  throw perror("unknown indexed symbol: " + std::string(name));
}

// The innermost binder of a name wins: a let binding or a bound variable,
// whichever was made last, and only then a global definition, so that
// (forall ((x Int)) ...) means its own x even where x is defined.
const Term_* SmtLibTermParser::apply_binding(std::string_view name,
                                             const Type* sort,
                                             TermArgs args,
                                             bool* found) {
  *found = true;
  NameStack* const* let = d_lets.get(name);
  NameStack* const* bound = d_bound.get(name);
  const NameStack::Entry* e = nullptr;
  if (let != nullptr && !(*let)->entries.empty()) {
    e = &(*let)->entries.back();
  }
  if (bound != nullptr && !(*bound)->entries.empty()
      && (e == nullptr || (*bound)->entries.back().stamp > e->stamp)) {
    e = &(*bound)->entries.back();
  }
  if (e == nullptr) {
    if (Definition* const* d = d_defs.get(name)) {
      return apply_definition(**d, name, sort, args);
    }
    *found = false;
    return nullptr;
  }
  const Term_* t = e->term;
  if (sort != nullptr && sort != t->get_type()) {
    bad_type(name);
  }
  if (!args.empty()) {
    throw perror("wrong number of arguments for symbol `" + std::string(name)
                 + "'");
  }
  return t;
}

const Term_* SmtLibTermParser::apply_definition(const Definition& d,
                                                std::string_view name,
                                                const Type* sort,
                                                TermArgs args) {
  if (sort != nullptr && sort != d.body->get_type()) {
    bad_type(name);
  }
  if (args.size() != d.params.size()) {
    throw perror("wrong number of arguments for symbol `" + std::string(name)
                 + "'");
  }
  if (args.empty()) {
    return d.body;
  }
  for (size_t i = 0; i < args.size(); ++i) {
    const Type* want = d.params[i]->get_type();
    if (!d_tm->is_subtype(args[i]->get_type(), want)) {
      throw perror("type error. argument " + std::to_string(i + 1) + " of `"
                   + std::string(name) + "' has type "
                   + args[i]->get_type()->to_str() + ", but " + want->to_str()
                   + " was expected");
    }
  }
  return instantiate(d, args);
}

namespace {

// Rebuilds a definition's body with the arguments in place of the
// parameters. Symbols whose choice depends on argument types (Int or Real
// arithmetic) are chosen again, and literals fold as the reader folds
// them, so an application gives the very term its expansion, written out,
// would read as.
class Instantiator : public TermVisitorCallback {
 public:
  Instantiator(TermManager& tm, TermMap& map) : d_tm(tm), d_map(map) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (preorder) {
      return d_map.contains(t) ? VisitResult::Skip : VisitResult::Process;
    }
    if (d_map.contains(t)) {
      return VisitResult::Process;
    }
    if (t->get_arity() == 0) {
      d_map.insert(t, t);
      return VisitResult::Process;
    }
    d_args.clear();
    for (const Term_* c : *t) {
      d_args.push_back(*d_map.get(c));
    }
    d_map.insert(t, remake(t));
    return VisitResult::Process;
  }

 private:
  const Term_* remake(const Term_* t) {
    const TermList& a = d_args;
    size_t e = 0, m = 0;
    switch (d_tm.get_tag(t->get_symbol())) {
      case SymbolTag::PLUS: return d_tm.make_plus(a[0], a[1]);
      case SymbolTag::TIMES: return d_tm.make_times(a[0], a[1]);
      case SymbolTag::LEQ: return d_tm.make_leq(a[0], a[1]);
      case SymbolTag::EQ: return d_tm.make_equal(a[0], a[1]);
      case SymbolTag::ITE: return d_tm.make_term_ite(a[0], a[1], a[2]);
      case SymbolTag::DIVIDE: return divide(d_tm, a[0], a[1]);
      case SymbolTag::FP_FROM_IEEEBV:
        d_tm.is_fp_type(t->get_type(), &e, &m);
        return fp_from_bits(d_tm, e, m, a[0]);
      default: return d_tm.make_term(t->get_symbol(), a);
    }
  }

  TermManager& d_tm;
  TermMap& d_map;
  TermList d_args;
};

}  // namespace

const Term_* SmtLibTermParser::instantiate(const Definition& d, TermArgs args) {
  TermMap map;
  for (size_t i = 0; i < args.size(); ++i) {
    map.insert(d.params[i], args[i]);
  }
  Instantiator cb(*d_tm, map);
  TermVisitor<Instantiator> visitor(*d_tm, cb);
  visitor.visit(d.body);
  return *map.get(d.body);
}

// A symbol of the term store that a user may name: neither interpreted
// (enumeration values excepted) nor a bound variable.
const Symbol* SmtLibTermParser::find_user_symbol(std::string_view name) const {
  const Symbol* s = d_tm->find_symbol(name);
  if (s == nullptr || d_tm->is_variable(s)) {
    return nullptr;
  }
  if (d_tm->is_interpreted(s) && !d_tm->is_enum_value(s)) {
    return nullptr;
  }
  return s;
}

const Term_* SmtLibTermParser::apply_symbol(std::string_view name,
                                            const Type* sort,
                                            TermArgs args) {
  const Symbol* s = find_user_symbol(name);
  if (!args.empty()) {
    if (s != nullptr) {
      if (sort != nullptr && sort != s->get_output_type()) {
        bad_type(name);
      }
      d_scratch.assign(args.begin(), args.end());
      return d_tm->make_uninterpreted_function(s, d_scratch);
    }
    const SymbolHandler* const* h = smtlib2_handlers().get(name);
    const Term_* t = h == nullptr ? nullptr : (**h)(*d_tm, name, sort, args);
    if (t == nullptr) {
      unknown(name);
    }
    return t;
  }
  if (name == "true" || name == "false") {
    if (sort != nullptr && sort != d_tm->get_bool_type()) {
      bad_type(name);
    }
    return name == "true" ? d_tm->make_true() : d_tm->make_false();
  }
  if (s == nullptr) {
    if (is_negative_literal(name)) {
      if (d_refused_number_names.count(name) != 0) {
        throw perror("`" + std::string(name)
                     + "' reads as a symbol, whose declaration was refused");
      }
      return make_number_term(name);
    }
    unknown(name);
  }
  if (sort != nullptr && sort != s->get_output_type()) {
    bad_type(name);
  }
  if (s->get_arity() != 0) {
    throw perror("symbol `" + std::string(name) + "' has non-zero arity");
  }
  return d_tm->make_constant(s);
}

const Term_* SmtLibTermParser::make_number_term(std::string_view text) {
  return d_tm->make_number(QNumber::from_str(std::string(text)));
}

const Term_* SmtLibTermParser::make_number_term(std::string_view digits,
                                                size_t width,
                                                int base) {
  if (base != 2 && base != 10 && base != 16) {
    throw perror("unsupported base for number: " + std::to_string(base));
  }
  for (char c : digits) {
    bool ok = base == 2    ? (c == '0' || c == '1')
              : base == 10 ? (c >= '0' && c <= '9')
                           : std::isxdigit(static_cast<unsigned char>(c));
    if (!ok) {
      throw perror("bad value for number in base " + std::to_string(base) + ": "
                   + std::string(digits));
    }
  }
  return d_tm->make_bv_number(std::string(digits), width, base);
}

const Term_* SmtLibTermParser::make_quantifier_term(bool forall,
                                                    const TermList& vars,
                                                    const Term_* body) {
  const SymbolHandler& h =
      **smtlib2_handlers().get(forall ? "forall" : "exists");
  std::string_view name = forall ? "forall" : "exists";
  for (size_t i = vars.size(); i-- > 0;) {
    const Term_* pair[2] = {vars[i], body};
    body = h(*d_tm, name, nullptr, TermArgs(pair, 2));
  }
  return body;
}

// ----------------------------------------------------------------------
// Bindings
// ----------------------------------------------------------------------

SmtLibTermParser::NameStack* SmtLibTermParser::name_stack(
    hsh::HashMap<std::string_view, NameStack*>& table, std::string_view name) {
  if (NameStack* const* s = table.get(name)) {
    return *s;
  }
  d_stacks.push_back(std::make_unique<NameStack>(name));
  NameStack* s = d_stacks.back().get();
  table.insert(std::string_view(s->name), s);
  return s;
}

void SmtLibTermParser::push_let_namespace() {
  d_let_names.push_back(nullptr);
  ++d_let_depth;
}

void SmtLibTermParser::pop_let_namespace() {
  while (!d_let_names.empty() && d_let_names.back() != nullptr) {
    d_let_names.back()->entries.pop_back();
    d_let_names.pop_back();
  }
  if (!d_let_names.empty()) {
    d_let_names.pop_back();
    --d_let_depth;
  }
}

// A let may shadow anything, declared symbols and definitions included:
// bindings are looked up first. Only one let binding a name twice is an
// error.
void SmtLibTermParser::define_let_binding(std::string_view name,
                                          const Term_* term,
                                          bool is_function_argument) {
  (void)is_function_argument;
  NameStack* s = name_stack(d_lets, name);
  if (!s->entries.empty() && s->entries.back().level == d_let_depth) {
    throw perror("symbol `" + std::string(name) + "' already defined");
  }
  s->entries.push_back(NameStack::Entry{term, d_let_depth, ++d_stamp});
  d_let_names.push_back(s);
}

void SmtLibTermParser::push_bound_variable(std::string_view name,
                                           const Term_* var) {
  NameStack* s = name_stack(d_bound, name);
  s->entries.push_back(NameStack::Entry{var, 0, ++d_stamp});
  d_bound_names.push_back(s);
}

void SmtLibTermParser::pop_bound_variables(size_t n) {
  if (n > d_bound_names.size()) {
    throw perror("pop_bound_variables: not enough variables to pop");
  }
  for (; n > 0; --n) {
    d_bound_names.back()->entries.pop_back();
    d_bound_names.pop_back();
  }
}

void SmtLibTermParser::clear_scopes() {
  while (!d_let_names.empty()) {
    pop_let_namespace();
  }
  d_let_depth = 0;
  pop_bound_variables(d_bound_names.size());
}

void SmtLibTermParser::define_binding(std::string_view name,
                                      const Term_* term) {
  define_binding(name, TermList(), term);
}

void SmtLibTermParser::define_binding(std::string_view name,
                                      const TermList& params,
                                      const Term_* body) {
  drop_extension_binding(name);
  if (d_defs.contains(name) || find_user_symbol(name) != nullptr
      || is_builtin(name)) {
    throw perror("symbol `" + std::string(name) + "' already defined");
  }
  Definition* d = new Definition(name, params, body, false);
  d_defs.insert(std::string_view(d->name), d);
}

bool SmtLibTermParser::undefine_binding(std::string_view name) {
  Definition* const* d = d_defs.get(name);
  if (d == nullptr) {
    return false;
  }
  Definition* owned = *d;
  d_defs.erase(name);
  delete owned;
  return true;
}

void SmtLibTermParser::drop_extension_binding(std::string_view name) {
  Definition* const* d = d_defs.get(name);
  if (d != nullptr && (*d)->builtin && is_extension_name(name)) {
    undefine_binding(name);
  }
}

bool SmtLibTermParser::has_binding(std::string_view name) const {
  return d_defs.contains(name);
}

// ----------------------------------------------------------------------
// Declarations
// ----------------------------------------------------------------------

bool SmtLibTermParser::is_builtin(std::string_view name) const {
  return name == "true" || name == "false"
         || (smtlib2_handlers().contains(name) && !is_extension_name(name));
}

const Symbol* SmtLibTermParser::declare_function(std::string_view name,
                                                 const Type* type) {
  std::string quoted = "`" + std::string(name) + "'";
  if (is_builtin(name)) {
    throw perror(quoted + " is a built-in function");
  }
  drop_extension_binding(name);
  if (d_defs.contains(name)) {
    throw perror(quoted + " is already defined");
  }
  if (is_number_name(name)) {
    d_refused_number_names.emplace(name);
    throw perror(quoted + " is reserved for numbers");
  }
  return d_tm->make_symbol(name, type);
}

void SmtLibTermParser::collect_terms_to_keep(TermList& out) const {
  for (const auto& e : d_defs) {
    out.push_back(e.second->body);
    out.insert(out.end(), e.second->params.begin(), e.second->params.end());
  }
  for (const auto& s : d_stacks) {
    for (const NameStack::Entry& e : s->entries) {
      out.push_back(e.term);
    }
  }
}

}  // namespace zenlo
