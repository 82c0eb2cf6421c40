// The concrete syntax of SMT-LIB 2: names, sorts, numbers and the names of
// interpreted symbols, each memoised per printer; and the printing of a
// whole term in one piece for values.
#include <sstream>

#include "frontend/termprinter.h"
#include "terms/ieeefloat.h"

namespace zenlo {

namespace {

struct TagName {
  SymbolTag::tag tag;
  const char* name;
};

// clang-format off
const TagName kTagNames[] = {
    {SymbolTag::TRUE, "true"}, {SymbolTag::FALSE, "false"},
    {SymbolTag::AND, "and"}, {SymbolTag::OR, "or"}, {SymbolTag::NOT, "not"},
    {SymbolTag::IFF, "="}, {SymbolTag::PLUS, "+"}, {SymbolTag::TIMES, "*"},
    {SymbolTag::DIVIDE, "/"}, {SymbolTag::LEQ, "<="},
    {SymbolTag::FLOOR, "to_int"}, {SymbolTag::PI, "pi"},
    {SymbolTag::EQ, "="}, {SymbolTag::ITE, "ite"},
    {SymbolTag::BV_CONCAT, "concat"}, {SymbolTag::BV_NOT, "bvnot"},
    {SymbolTag::BV_AND, "bvand"}, {SymbolTag::BV_OR, "bvor"},
    {SymbolTag::BV_XOR, "bvxor"}, {SymbolTag::BV_ULT, "bvult"},
    {SymbolTag::BV_SLT, "bvslt"}, {SymbolTag::BV_ULE, "bvule"},
    {SymbolTag::BV_SLE, "bvsle"}, {SymbolTag::BV_COMP, "bvcomp"},
    {SymbolTag::BV_NEG, "bvneg"}, {SymbolTag::BV_ADD, "bvadd"},
    {SymbolTag::BV_SUB, "bvsub"}, {SymbolTag::BV_MUL, "bvmul"},
    {SymbolTag::BV_UDIV, "bvudiv"}, {SymbolTag::BV_SDIV, "bvsdiv"},
    {SymbolTag::BV_UREM, "bvurem"}, {SymbolTag::BV_SREM, "bvsrem"},
    {SymbolTag::BV_LSHL, "bvshl"}, {SymbolTag::BV_LSHR, "bvlshr"},
    {SymbolTag::BV_ASHR, "bvashr"}, {SymbolTag::ARRAY_READ, "select"},
    {SymbolTag::ARRAY_WRITE, "store"}, {SymbolTag::FP_EQ, "fp.eq"},
    {SymbolTag::FP_LT, "fp.lt"}, {SymbolTag::FP_LE, "fp.leq"},
    {SymbolTag::FP_NEG, "fp.neg"}, {SymbolTag::FP_ADD, "fp.add"},
    {SymbolTag::FP_SUB, "fp.sub"}, {SymbolTag::FP_MUL, "fp.mul"},
    {SymbolTag::FP_DIV, "fp.div"}, {SymbolTag::FP_SQRT, "fp.sqrt"},
    {SymbolTag::FP_ABS, "fp.abs"}, {SymbolTag::FP_MIN, "fp.min"},
    {SymbolTag::FP_MAX, "fp.max"}, {SymbolTag::FP_AS_IEEEBV, "fp.as_ieee_bv"},
    {SymbolTag::FP_ISNAN, "fp.isNaN"}, {SymbolTag::FP_ISINF, "fp.isInfinite"},
    {SymbolTag::FP_ISZERO, "fp.isZero"},
    {SymbolTag::FP_ISSUBNORMAL, "fp.isSubnormal"},
    {SymbolTag::FP_ISNORMAL, "fp.isNormal"},
    {SymbolTag::FP_ISNEG, "fp.isNegative"},
    {SymbolTag::FP_ISPOS, "fp.isPositive"},
    {SymbolTag::FP_ROUND_TO_INT, "fp.roundToIntegral"},
    {SymbolTag::INT_FROM_SBV, "sbv_to_int"},
    {SymbolTag::INT_FROM_UBV, "ubv_to_int"}, {SymbolTag::EXP, "exp"},
    {SymbolTag::SIN, "sin"}, {SymbolTag::LOG, "log"}, {SymbolTag::POW, "pow"},
    {SymbolTag::ASIN, "asin"}, {SymbolTag::FORALL, "forall"},
    {SymbolTag::EXISTS, "exists"},
};
// clang-format on

const char* const kRoundingNames[] = {"RNE", "RTZ", "RTP", "RTN"};

// The exact decimal of a non-negative dyadic rational n / 2^k: n * 5^k
// with the point k digits from the right. Every finite float has one.
std::string exact_decimal(const QNumber& q) {
  QNumber den = q.get_den();
  QNumber scaled = q.get_num();
  size_t k = 0;
  for (; den != 1; ++k) {
    den /= 2;
    scaled *= 5;
  }
  std::string digits = scaled.to_str();
  if (digits.size() <= k) {
    digits.insert(0, k + 1 - digits.size(), '0');
  }
  if (k == 0) {
    return digits + ".0";
  }
  digits.insert(digits.size() - k, ".");
  return digits;
}

}  // namespace

SmtLibTermPrinter::SmtLibTermPrinter(TermManager* tm,
                                     const Configuration::Printer* config,
                                     std::string status,
                                     std::string logic)
    : TermPrinter(tm, config),
      d_status(std::move(status)),
      d_logic(std::move(logic)),
      d_tag_names(SymbolTag::num_tags, nullptr) {
  for (const TagName& t : kTagNames) {
    d_tag_names[t.tag] = t.name;
  }
}

SmtLibTermPrinter::~SmtLibTermPrinter() = default;

// ----------------------------------------------------------------------
// Names and numbers
// ----------------------------------------------------------------------

std::string SmtLibTermPrinter::to_smtlib(std::string_view name) {
  return quote_symbol(name);
}

std::string SmtLibTermPrinter::to_smtlib_bin(const QNumber& n, size_t width) {
  return "#b" + BVNumber::to_binary(n, width);
}

std::string SmtLibTermPrinter::to_smtlib_hex(const QNumber& n, size_t width) {
  return "#x" + BVNumber::to_hex(n, width);
}

std::string SmtLibTermPrinter::to_smtlib(const QNumber& n) const {
  if (n.sign() < 0) {
    return "(- " + to_smtlib(n.neg()) + ")";
  }
  if (n.is_integer()) {
    return n.to_str();
  }
  return "(/ " + n.get_num().to_str() + " " + n.get_den().to_str() + ")";
}

std::string SmtLibTermPrinter::bv_number_text(const QNumber& value,
                                              size_t width) const {
  int format = d_config == nullptr ? 1 : d_config->bv_number_format;
  if (format == 0) {
    return "(_ bv" + value.to_str() + " " + std::to_string(width) + ")";
  }
  if (format == 2 && width % 4 == 0) {
    return to_smtlib_hex(value, width);
  }
  return to_smtlib_bin(value, width);
}

// Every format prints the exact value. NaNs other than the one the store
// makes for (_ NaN e s) keep their bits, so they read back as themselves.
std::string SmtLibTermPrinter::fp_number_text(const QNumber& bits,
                                              size_t e,
                                              size_t m) const {
  IEEEFloat::Format f{e, m};
  IEEEFloat x = IEEEFloat::from_bits(f, bits);
  std::string tail = " " + std::to_string(e) + " " + std::to_string(m + 1);
  if (x.is_inf()) {
    return (x.is_negative() ? "(_ -oo" : "(_ +oo") + tail + ")";
  }
  bool canonical_nan = x.is_nan() && IEEEFloat::nan(f).get_bits() == bits;
  if (canonical_nan) {
    return "(_ NaN" + tail + ")";
  }
  int format = d_config == nullptr ? 1 : d_config->fp_number_format;
  std::string to_fp = "((_ to_fp" + tail + ") ";
  if (format == 0) {
    return to_fp + "(_ bv" + bits.to_str() + " " + std::to_string(e + m + 1)
           + "))";
  }
  if (format == 2 && !x.is_nan()) {
    if (x.is_zero()) {
      return (x.is_negative() ? "(_ -zero" : "(_ +zero") + tail + ")";
    }
    std::string d = exact_decimal(abs(x.to_rational()));
    return to_fp + "RNE " + (x.is_negative() ? "(- " + d + ")" : d) + ")";
  }
  QNumber exp, mant;
  BVNumber::bit_right_shift(bits, m, exp);
  mant = BVNumber::trim(bits, m);
  return std::string("(fp ") + (x.is_negative() ? "#b1 " : "#b0 ")
         + to_smtlib_bin(BVNumber::trim(exp, e), e) + " "
         + to_smtlib_bin(mant, m) + ")";
}

std::string SmtLibTermPrinter::number_text(const Symbol* s,
                                           const QNumber& value) {
  const Type* t = s->get_output_type();
  size_t w = 0, e = 0, m = 0;
  if (d_tm->is_bv_type(t, &w)) {
    return bv_number_text(value, w);
  }
  if (d_tm->is_fp_type(t, &e, &m)) {
    return fp_number_text(value, e, m);
  }
  return to_smtlib(value);
}

// ----------------------------------------------------------------------
// Symbols
// ----------------------------------------------------------------------

const std::string& SmtLibTermPrinter::to_smtlib(const Symbol* s) {
  if (const std::string* text = d_symbol_texts.get(s)) {
    return *text;
  }
  return d_symbol_texts.insert(s, symbol_text(s)).first->second;
}

std::string SmtLibTermPrinter::symbol_text(const Symbol* s) {
  if (d_tm->is_term_ite(s)) {
    return "ite";
  }
  if (d_tm->is_variable(s)) {
    return to_smtlib(std::string_view(s->get_name()).substr(1));
  }
  if (d_tm->is_interpreted(s)) {
    return interpreted_text(s);
  }
  return to_smtlib(s->get_name());
}

std::string SmtLibTermPrinter::interpreted_text(const Symbol* s) {
  if (const char* name = d_tag_names[d_tm->get_tag(s)]) {
    return name;
  }
  QNumber value;
  if (d_tm->is_number(s, &value)) {
    return number_text(s, value);
  }
  if (d_tm->is_enum_value(s)) {
    return "(as " + to_smtlib(s->get_name()) + " "
           + to_smtlib(s->get_output_type()) + ")";
  }
  for (int k = 0; k < 4; ++k) {
    if (s == d_tm->get_rounding_symbol(static_cast<RoundingMode>(k))) {
      return kRoundingNames[k];
    }
  }
  std::string text = family_text(s);
  if (text.empty()) {
    throw error("can't print interpreted symbol " + s->get_name()
                + " in SMT-LIB format");
  }
  return text;
}

// The indexed symbols: (_ name indices...), the store's mantissa widths
// printed with the hidden bit counted.
std::string SmtLibTermPrinter::family_text(const Symbol* s) {
  auto num = [](size_t n) { return std::to_string(n); };
  QNumber modulus;
  if (d_tm->is_int_mod_congr(s, &modulus)) {
    return "(_ divisible " + modulus.to_str() + ")";
  }
  const Type* element = nullptr;
  if (d_tm->is_array_const(s, nullptr, &element)) {
    return "(as const " + to_smtlib(s->get_output_type()) + ")";
  }
  const FamilyKey* k = d_tm->get_family_key(s);
  if (k == nullptr) {
    return std::string();
  }
  const size_t* n = k->n;
  switch (d_tm->get_tag(s)) {
    case SymbolTag::BV_EXTRACT:
      return "(_ extract " + num(n[0]) + " " + num(n[1]) + ")";
    case SymbolTag::BV_ROL: return "(_ rotate_left " + num(n[0]) + ")";
    case SymbolTag::BV_ROR: return "(_ rotate_right " + num(n[0]) + ")";
    case SymbolTag::BV_ZEXT: return "(_ zero_extend " + num(n[0]) + ")";
    case SymbolTag::BV_SEXT: return "(_ sign_extend " + num(n[0]) + ")";
    case SymbolTag::INT_TO_BV: return "(_ to_bv " + num(n[0]) + ")";
    case SymbolTag::FP_CAST:
      return "(_ to_fp " + num(n[2]) + " " + num(n[3] + 1) + ")";
    case SymbolTag::FP_FROM_SBV:
      return "(_ to_fp " + num(n[1]) + " " + num(n[2] + 1) + ")";
    case SymbolTag::FP_FROM_IEEEBV:
      return "(_ to_fp " + num(n[0]) + " " + num(n[1] + 1) + ")";
    case SymbolTag::FP_FROM_UBV:
      return "(_ to_fp_unsigned " + num(n[1]) + " " + num(n[2] + 1) + ")";
    case SymbolTag::FP_TO_SBV: return "(_ fp.to_sbv " + num(n[2]) + ")";
    case SymbolTag::FP_TO_UBV: return "(_ fp.to_ubv " + num(n[2]) + ")";
    default: return std::string();
  }
}

// ----------------------------------------------------------------------
// Sorts and declarations
// ----------------------------------------------------------------------

const std::string& SmtLibTermPrinter::to_smtlib(const Type* t) {
  if (const std::string* text = d_type_texts.get(t)) {
    return *text;
  }
  std::string text = type_text(t);
  return d_type_texts.insert(t, text).first->second;
}

std::string SmtLibTermPrinter::type_text(const Type* t) {
  TermManager& tm = *d_tm;
  size_t w = 0, e = 0, m = 0;
  const Type* index = nullptr;
  const Type* element = nullptr;
  if (tm.is_fprounding_type(t)) {
    return "RoundingMode";
  }
  if (t->is_simple()) {
    return to_smtlib(t->get_name());
  }
  if (tm.is_bv_type(t, &w)) {
    return "(_ BitVec " + std::to_string(w) + ")";
  }
  if (tm.is_fp_type(t, &e, &m)) {
    return "(_ FloatingPoint " + std::to_string(e) + " " + std::to_string(m + 1)
           + ")";
  }
  if (tm.is_array_type(t, &index, &element)) {
    return "(Array " + to_smtlib(index) + " " + to_smtlib(element) + ")";
  }
  // A function type lists its arguments and result; a sort of a
  // parametric declare-sort is its name applied to its parameters.
  const std::vector<const Type*>& comps = t->get_components();
  std::string text = "(";
  for (size_t i = 0; i < comps.size(); ++i) {
    if (i == 0 && tm.is_function_type(t)) {
      continue;
    }
    text += (text.size() > 1 ? " " : "") + to_smtlib(comps[i]);
  }
  return text + ")";
}

void SmtLibTermPrinter::print_type_declaration(std::ostream& out,
                                               const Type* t) {
  TermManager& tm = *d_tm;
  if (tm.is_bool_type(t) || tm.is_integer_type(t) || tm.is_real_type(t)
      || tm.is_fprounding_type(t) || tm.is_bv_type(t) || tm.is_fp_type(t)
      || tm.is_array_type(t) || tm.is_function_type(t)) {
    return;
  }
  if (!t->is_simple()) {
    // An instance of a parametric sort: its constructor is declared once.
    const Type* ctor = t->get_components()[0];
    if (!d_declared_ctors.contains(ctor)) {
      d_declared_ctors.insert(ctor);
      out << "(declare-sort " << to_smtlib(ctor) << " "
          << t->get_num_components() - 1 << ")\n";
    }
    return;
  }
  if (const std::vector<const Symbol*>* values = tm.get_enum_values(t)) {
    out << "(declare-enum-sort " << to_smtlib(t) << " (";
    for (size_t i = 0; i < values->size(); ++i) {
      out << (i > 0 ? " " : "") << to_smtlib((*values)[i]->get_name());
    }
    out << "))\n";
    return;
  }
  out << "(declare-sort " << to_smtlib(t) << " 0)\n";
}

void SmtLibTermPrinter::print_symbol_declaration(std::ostream& out,
                                                 const Symbol* s) {
  if (d_tm->is_interpreted(s) || d_tm->is_variable(s)) {
    return;
  }
  out << "(declare-fun " << to_smtlib(s) << " (";
  for (size_t i = 0; i < s->get_arity(); ++i) {
    out << (i > 0 ? " " : "") << to_smtlib(s->get_arg_type(i));
  }
  out << ") " << to_smtlib(s->get_output_type()) << ")\n";
}

// ----------------------------------------------------------------------
// Terms
// ----------------------------------------------------------------------

bool SmtLibTermPrinter::get_define_label(const Term_* t, std::string& label) {
  if (t->get_arity() == 0) {
    return false;
  }
  label = make_label(t);
  return true;
}

// The prefix and the term id, lengthened while a user symbol has the name.
std::string SmtLibTermPrinter::make_label(const Term_* t) const {
  const std::string& prefix =
      d_config == nullptr ? std::string() : d_config->defines_prefix;
  std::string label =
      (prefix.empty() ? ".def_" : prefix) + std::to_string(t->get_id());
  while (d_tm->find_symbol(label) != nullptr) {
    label += "_";
  }
  return to_smtlib(label);
}

void SmtLibTermPrinter::print_label_application(std::string& out,
                                                const std::string& label,
                                                const Term_*,
                                                const TermList& free_vars) {
  if (free_vars.empty()) {
    out += label;
    return;
  }
  out += "(" + label;
  for (const Term_* v : free_vars) {
    out += " " + to_smtlib(v->get_symbol());
  }
  out += ")";
}

void SmtLibTermPrinter::print_free_variable_list(std::string& out,
                                                 const TermList& vars) {
  for (size_t i = 0; i < vars.size(); ++i) {
    out += (i > 0 ? " (" : "(") + to_smtlib(vars[i]->get_symbol()) + " "
           + to_smtlib(vars[i]->get_type()) + ")";
  }
}

void SmtLibTermPrinter::print_term_and_children(std::string& out,
                                                const Term_* t,
                                                const ChildTexts& children) {
  const Symbol* s = t->get_symbol();
  const std::string& name = to_smtlib(s);
  if (t->get_arity() == 0) {
    out += name;
    return;
  }
  if (d_tm->is_quantifier(s)) {
    out += "(" + name + " ((" + *children[0] + " "
           + to_smtlib(t->get_child(0)->get_type()) + ")) " + *children[1]
           + ")";
    return;
  }
  if (d_tm->get_tag(s) == SymbolTag::INT_MOD_CONGR) {
    // A congruence with 0 is what ((_ divisible n) a) reads as.
    if (is_zero_number(t->get_child(1))) {
      out += "(" + name + " " + *children[0] + ")";
    } else {
      out += "(" + name + " (- " + *children[0] + " " + *children[1] + "))";
    }
    return;
  }
  out += "(" + name;
  append_children(out, t, children);
  out += ")";
}

// Where a parameter is Real and the argument Int, the argument is written
// as a Real, as SMT-LIB does not mix the two sorts: a number as a decimal,
// which also keeps the text inside the Reals of pure real logics, any
// other term inside to_real.
void SmtLibTermPrinter::append_children(std::string& out,
                                        const Term_* t,
                                        const ChildTexts& children) {
  const Symbol* s = t->get_symbol();
  for (size_t i = 0; i < children.size(); ++i) {
    out += " ";
    if (d_tm->is_real_type(s->get_arg_type(i))
        && d_tm->is_integer_type(t->get_child(i)->get_type())) {
      append_as_real(out, t->get_child(i), *children[i]);
    } else {
      out += *children[i];
    }
  }
}

void SmtLibTermPrinter::append_as_real(std::string& out,
                                       const Term_* c,
                                       const std::string& text) {
  QNumber v;
  if (c->get_arity() == 0 && d_tm->is_number(c->get_symbol(), &v)) {
    out += v.sign() < 0 ? "(- " + abs(v).to_str() + ".0)" : v.to_str() + ".0";
  } else {
    out += "(to_real " + text + ")";
  }
}

bool SmtLibTermPrinter::is_zero_number(const Term_* t) const {
  QNumber v;
  return t->get_arity() == 0 && d_tm->is_number(t->get_symbol(), &v)
         && v.is_zero() && d_tm->is_integer_type(t->get_type());
}

// ----------------------------------------------------------------------
// Whole terms in one piece
// ----------------------------------------------------------------------

std::string SmtLibTermPrinter::atom_to_string(const Term_* t) {
  std::ostringstream out;
  print_atom(out, t);
  return out.str();
}

// Writes straight to the stream with an explicit stack: each frame knows
// the next child to print and what closes the child before it.
void SmtLibTermPrinter::print_atom(std::ostream& out, const Term_* root) {
  struct Frame {
    const Term_* t;
    size_t next;
    const char* close;  // written after the child just printed
  };

  std::vector<Frame> stack{{root, 0, ""}};
  while (!stack.empty()) {
    Frame& f = stack.back();
    const Term_* t = f.t;
    const Symbol* s = t->get_symbol();
    size_t n = t->get_arity();
    out << f.close;
    f.close = "";
    if (n == 0) {
      out << to_smtlib(s);
      stack.pop_back();
      continue;
    }
    bool quantifier = d_tm->is_quantifier(s);
    bool congruence = d_tm->get_tag(s) == SymbolTag::INT_MOD_CONGR;
    if (f.next == 0) {
      out << "(" << to_smtlib(s);
    }
    if (congruence && f.next == 1 && is_zero_number(t->get_child(1))) {
      f.next = 2;
    }
    if (f.next == n) {
      out << (congruence && !is_zero_number(t->get_child(1)) ? "))" : ")");
      stack.pop_back();
      continue;
    }
    size_t i = f.next++;
    const Term_* c = t->get_child(i);
    if (quantifier && i == 0) {
      out << " ((" << to_smtlib(c->get_symbol()) << " "
          << to_smtlib(c->get_type()) << "))";
      continue;
    }
    if (congruence) {
      out << (i == 0 && !is_zero_number(t->get_child(1)) ? " (- " : " ");
    } else if (!quantifier && d_tm->is_real_type(s->get_arg_type(i))
               && d_tm->is_integer_type(c->get_type())) {
      if (c->get_arity() == 0) {
        std::string text;
        append_as_real(text, c, to_smtlib(c->get_symbol()));
        out << " " << text;
        continue;
      }
      out << " (to_real ";
      f.close = ")";
    } else {
      out << " ";
    }
    stack.push_back(Frame{c, 0, ""});
  }
}

}  // namespace zenlo
