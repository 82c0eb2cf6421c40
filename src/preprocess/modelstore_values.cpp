// Values of a model: evaluation of ground terms, defaults and fresh values
// by type, abstract values, and the simplifier that closes the operators'
// open cases while a model evaluates.
#include <algorithm>
#include <string>

#include "preprocess/modelstore.h"
#include "terms/termmanager.h"
#include "terms/termsimplifications_impl.h"

namespace zenlo {

// ---------------------------------------------------------------------------
// The simplifier of model evaluation
// ---------------------------------------------------------------------------

ModelStore::SimplifierScope::SimplifierScope(ModelStore& m)
    : d_tm(m.d_tm),
      d_old(m.d_tm->get_simplifier()),
      d_old_on(m.d_tm->simplifications_enabled()) {
  auto* ours = static_cast<ModelTermSimplifier*>(m.d_simplifier.get());
  if (d_old != ours) {  // a nested scope must not chain ours to itself
    ours->set_next(d_old);
  }
  d_tm->set_simplifier(ours);
  d_tm->enable_simplifications(true);
}

ModelStore::SimplifierScope::~SimplifierScope() {
  d_tm->set_simplifier(d_old);
  d_tm->enable_simplifications(d_old_on);
}

namespace {

bool is_abstract(const TermManager& tm, const Term_* t) {
  return t->get_arity() == 0 && tm.is_constant(t->get_symbol())
         && t->get_symbol()->get_name().compare(0, 1, "@") == 0;
}

// 1 equal, 0 different, -1 unknown, for values of a model, where
// abstract values are distinct by name.
int model_compare(TermManager& tm, const Term_* a, const Term_* b);

// An array value as its cells (the outermost write wins) and its default.
bool array_cells(TermManager& tm,
                 const Term_* t,
                 std::vector<std::pair<const Term_*, const Term_*>>& cells,
                 const Term_*& fallback) {
  while (tm.get_tag(t->get_symbol()) == SymbolTag::ARRAY_WRITE) {
    cells.emplace_back(t->get_child(1), t->get_child(2));
    t = t->get_child(0);
  }
  if (tm.get_tag(t->get_symbol()) != SymbolTag::ARRAY_CONST) {
    return false;
  }
  fallback = t->get_child(0);
  return true;
}

// The element of an array value at a value index, or null.
const Term_* model_read(TermManager& tm, const Term_* a, const Term_* i) {
  for (;;) {
    SymbolTag::tag tag = tm.get_tag(a->get_symbol());
    if (tag == SymbolTag::ARRAY_CONST) {
      return a->get_child(0);
    }
    if (tag != SymbolTag::ARRAY_WRITE) {
      return nullptr;
    }
    int same = model_compare(tm, a->get_child(1), i);
    if (same == 1) {
      return a->get_child(2);
    }
    if (same != 0) {
      return nullptr;
    }
    a = a->get_child(0);
  }
}

int model_compare(TermManager& tm, const Term_* a, const Term_* b) {
  if (a == b) {
    return 1;
  }
  if (is_abstract(tm, a) && is_abstract(tm, b)) {
    return 0;
  }
  if (!tm.is_array_type(a->get_type())) {
    return termsimpl::compare_values(tm, a, b);
  }
  std::vector<std::pair<const Term_*, const Term_*>> ca, cb;
  const Term_* fa = nullptr;
  const Term_* fb = nullptr;
  if (!array_cells(tm, a, ca, fa) || !array_cells(tm, b, cb, fb)) {
    return -1;
  }
  // Every written index, and the default unless a finite index sort may
  // be covered (then unknown rather than a guess).
  for (const auto* cells : {&ca, &cb}) {
    for (const auto& [i, unused] : *cells) {
      (void)unused;
      const Term_* x = model_read(tm, a, i);
      const Term_* y = model_read(tm, b, i);
      if (x == nullptr || y == nullptr) {
        return -1;
      }
      int r = model_compare(tm, x, y);
      if (r != 1) {
        return r;
      }
    }
  }
  const Type* index = nullptr;
  tm.is_array_type(a->get_type(), &index);
  if (tm.is_finite_domain_type(index)) {
    return -1;
  }
  return model_compare(tm, fa, fb);
}

// An array value in one form per value: a cell per index, none equal to
// the default, in the order of the indices' ids (the outermost first), so
// that equal values are the same term and function tables keep one point
// per value. Null when some index cannot be told apart from another.
const Term_* canonical_array(TermManager& tm, const Term_* t) {
  std::vector<std::pair<const Term_*, const Term_*>> cells;
  const Term_* fallback = nullptr;
  if (!array_cells(tm, t, cells, fallback)) {
    return nullptr;
  }
  std::vector<std::pair<const Term_*, const Term_*>> kept;
  for (const auto& [i, v] : cells) {
    bool shadowed = false;
    for (const auto& [k, unused] : kept) {
      (void)unused;
      int r = model_compare(tm, i, k);
      if (r < 0) {
        return nullptr;
      }
      shadowed |= r == 1;
    }
    if (!shadowed) {
      kept.emplace_back(i, v);
    }
  }
  std::sort(kept.begin(), kept.end(), [](const auto& x, const auto& y) {
    return x.first->get_id() < y.first->get_id();
  });
  const Term_* out = t;
  while (tm.get_tag(out->get_symbol()) == SymbolTag::ARRAY_WRITE) {
    out = out->get_child(0);
  }
  for (auto it = kept.rbegin(); it != kept.rend(); ++it) {
    if (model_compare(tm, it->second, fallback) != 1) {
      out = tm.make_array_write(out, it->first, it->second);
    }
  }
  return out;
}

bool is_zero_number(const TermManager& tm, const Term_* t) {
  QNumber v;
  return tm.is_number(t->get_symbol(), &v) && v.is_zero();
}

}  // namespace

const Term_* ModelTermSimplifier::operator()(const Symbol* symbol,
                                             TermList& args) {
  SymbolTag::tag tag = d_tm->get_tag(symbol);
  if (tag == SymbolTag::EQ && args.size() == 2 && is_abstract(*d_tm, args[0])
      && is_abstract(*d_tm, args[1])) {
    // Abstract values are distinct by name: no theory need be asked.
    return args[0] == args[1] ? d_tm->make_true() : d_tm->make_false();
  }
  if (tag == SymbolTag::EQ && args.size() == 2
      && d_tm->is_array_type(args[0]->get_type())) {
    int r = model_compare(*d_tm, args[0], args[1]);
    if (r >= 0) {
      return r == 1 ? d_tm->make_true() : d_tm->make_false();
    }
  }
  if (tag == SymbolTag::ARRAY_READ && args.size() == 2) {
    if (const Term_* v = model_read(*d_tm, args[0], args[1])) {
      return v;
    }
  }
  if (tag == SymbolTag::ARRAY_WRITE && args.size() == 3 && !d_in_canonical) {
    const Term_* w = d_next != nullptr ? (*d_next)(symbol, args) : nullptr;
    if (w == nullptr) {
      w = d_tm->do_make_term(symbol, args);
    }
    d_in_canonical = true;
    const Term_* c = canonical_array(*d_tm, w);
    d_in_canonical = false;
    return c != nullptr ? c : w;
  }
  if (tag == SymbolTag::DIVIDE && d_options.na_div_by_zero_mode == 0
      && is_zero_number(*d_tm, args[1])) {
    return args[1];  // x / 0 is 0 in this mode
  }
  if (tag >= SymbolTag::BV_UDIV && tag <= SymbolTag::BV_SREM
      && d_options.bv_div_by_zero_mode == 0 && is_zero_number(*d_tm, args[1])) {
    if (const Term_* r = bv_div_by_zero(tag, args)) {
      return r;
    }
  }
  return d_next != nullptr ? (*d_next)(symbol, args) : nullptr;
}

// The values that SMT-LIB gives to division by zero:
//   bvudiv x 0 = ~0, bvurem x 0 = x, bvsrem x 0 = x,
//   bvsdiv x 0 = ~0 for x >= 0 and 1 for x < 0.
const Term_* ModelTermSimplifier::bv_div_by_zero(SymbolTag::tag tag,
                                                 const TermList& args) {
  size_t width = 0;
  d_tm->is_bv_type(args[0]->get_type(), &width);
  const QNumber ones = BVNumber::pow2(width) - QNumber(1L);
  switch (tag) {
    case SymbolTag::BV_UDIV: return d_tm->make_bv_number(ones, width);
    case SymbolTag::BV_UREM:
    case SymbolTag::BV_SREM: return args[0];
    case SymbolTag::BV_SDIV: {
      QNumber x;
      if (!d_tm->is_number(args[0]->get_symbol(), &x)) {
        return nullptr;
      }
      bool negative = x >= BVNumber::pow2(width - 1);
      return d_tm->make_bv_number(negative ? QNumber(1L) : ones, width);
    }
    default: return nullptr;
  }
}

// ---------------------------------------------------------------------------
// Questions
// ---------------------------------------------------------------------------

const Term_* ModelStore::get_value(const Term_* t) {
  if (!d_failure.empty()) {
    throw error(d_failure);
  }
  if (const Term_* const* v = d_values.get(t)) {
    return *v;
  }
  if (d_state == 0) {
    compute();
  }
  check_compute_full();
  SimplifierScope scope(*this);
  return evaluate(t);
}

const Term_* ModelStore::function_default(const Symbol* f) {
  if (!d_full) {
    return nullptr;
  }
  check_compute_full();
  if (const Term_* const* v = d_function_defaults.get(f)) {
    return *v;
  }
  const Term_* v = default_value(f->get_output_type());
  d_function_defaults.insert(f, v);
  return v;
}

// ---------------------------------------------------------------------------
// Evaluation
// ---------------------------------------------------------------------------

// Post-order over the term with an explicit stack; every node's value is
// kept in the value map, so shared subterms and later questions are
// answered at once.
const Term_* ModelStore::evaluate(const Term_* t) {
  if (const Term_* const* v = d_values.get(t)) {
    return *v;
  }
  d_work.clear();
  d_work.emplace_back(t, false);
  while (!d_work.empty()) {
    auto [n, expanded] = d_work.back();
    if (d_values.contains(n)) {
      d_work.pop_back();
      continue;
    }
    const bool opaque = d_tm->is_quantifier(n->get_symbol());
    if (!expanded && n->get_arity() > 0 && !opaque) {
      d_work.back().second = true;
      for (const Term_* c : *n) {
        if (!d_values.contains(c)) {
          d_work.emplace_back(c, false);
        }
      }
      continue;
    }
    d_work.pop_back();
    d_args.clear();
    if (!opaque) {
      for (const Term_* c : *n) {
        d_args.push_back(*d_values.get(c));
      }
    }
    const Term_* v = evaluate_node(n, d_args);
    d_values.insert(n, v);
  }
  return *d_values.get(t);
}

// Requires: `args` are the values of n's arguments.
const Term_* ModelStore::evaluate_node(const Term_* n, TermList& args) {
  const Symbol* s = n->get_symbol();
  if (n->get_arity() == 0) {
    if (is_good_model_value(n) || !d_full || !d_tm->is_constant(s)) {
      return n;
    }
    // A constant that occurs nowhere: the default, kept from now on.
    return default_value(n->get_type());
  }
  if (d_tm->is_quantifier(s)) {
    return n;
  }
  if (d_tm->is_uninterpreted_function(s)) {
    const Term_* point = d_tm->do_make_term(s, args);
    if (const Term_* const* v = d_values.get(point)) {
      return *v;
    }
    return d_full ? apply_point(point) : n;
  }
  const Term_* r = d_tm->make_term(s, args);
  if (!d_full || is_good_model_value(r)) {
    return r;
  }
  SymbolTag::tag tag = d_tm->get_tag(r->get_symbol());
  if (tag == SymbolTag::DIVIDE
      || (tag >= SymbolTag::BV_UDIV && tag <= SymbolTag::BV_SREM)) {
    // Division by zero left open: a function of its arguments like any
    // uninterpreted one.
    return apply_point(r);
  }
  return r;
}

// The value of a point of a function table that the classes did not
// give: the function's default, kept from now on.
const Term_* ModelStore::apply_point(const Term_* point) {
  if (const Term_* const* v = d_values.get(point)) {
    return *v;
  }
  const Symbol* f = point->get_symbol();
  const Term_* v = d_tm->is_uninterpreted_function(f)
                       ? function_default(f)
                       : default_value(point->get_type());
  d_values.insert(point, v);
  return v;
}

// ---------------------------------------------------------------------------
// Defaults and fresh values
// ---------------------------------------------------------------------------

const Term_* ModelStore::default_value(const Type* type) {
  const Type* index = nullptr;
  const Type* element = nullptr;
  size_t w = 0, e = 0, m = 0;
  if (d_tm->is_bool_type(type)) {
    return d_tm->make_false();
  }
  if (d_tm->is_integer_type(type) || d_tm->is_real_type(type)) {
    return d_tm->make_number(0L);
  }
  if (d_tm->is_bv_type(type, &w)) {
    return d_tm->make_bv_number(QNumber(0L), w);
  }
  if (d_tm->is_fp_type(type, &e, &m)) {
    return d_tm->make_fp_bits_number(QNumber(0L), e, m);  // +0
  }
  if (d_tm->is_fprounding_type(type)) {
    return d_tm->make_fp_rounding_mode(RoundingMode::NearestEven);
  }
  if (const std::vector<const Symbol*>* values = d_tm->get_enum_values(type)) {
    return d_tm->make_constant(values->front());
  }
  if (d_tm->is_array_type(type, &index, &element)) {
    return d_tm->make_array_const(type, default_value(element));
  }
  return get_abstract_model_value(type);
}

// Returns: a value of `type` that no class holds yet.
// Throws: "Impossible to assign a concrete model value to " + term when
//   the type's values are exhausted.
const Term_* ModelStore::fresh_value(const Type* type,
                                     const TermList* members) {
  const Type* index = nullptr;
  const Type* element = nullptr;
  if (d_tm->is_bool_type(type)) {
    return d_tm->make_true();
  }
  if (d_tm->is_array_type(type, &index, &element)) {
    return d_tm->make_array_const(type, fresh_value(element, members));
  }
  if (d_tm->is_fprounding_type(type)) {
    for (int k = 0; k < 4; ++k) {
      const Term_* v =
          d_tm->make_fp_rounding_mode(static_cast<RoundingMode>(k));
      if (!d_used_values.contains(v)) {
        return v;
      }
    }
  } else if (const auto* values = d_tm->get_enum_values(type)) {
    for (const Symbol* s : *values) {
      const Term_* v = d_tm->make_constant(s);
      if (!d_used_values.contains(v)) {
        return v;
      }
    }
  } else if (d_tm->is_integer_type(type) || d_tm->is_real_type(type)
             || d_tm->is_bv_type(type) || d_tm->is_fp_type(type)) {
    if (const Term_* v = fresh_number(type)) {
      return v;
    }
  } else {
    return new_abstract_value(type);
  }
  const Term_* witness = members != nullptr ? members->front() : nullptr;
  throw error("Impossible to assign a concrete model value to "
              + (witness != nullptr ? witness->to_str() : type->to_str()));
}

// Returns: the smallest number of the type (as a bit pattern for floats)
//   from the store's counter up that no class holds, or null when the
//   finite domain is exhausted.
const Term_* ModelStore::fresh_number(const Type* type) {
  size_t w = 0, e = 0, m = 0;
  QNumber size;
  const bool finite = d_tm->is_finite_domain_type(type, &size);
  QNumber& counter = d_counters[type];
  for (; !finite || counter < size; counter = counter + QNumber(1L)) {
    const Term_* v;
    if (d_tm->is_bv_type(type, &w)) {
      v = d_tm->make_bv_number(counter, w);
    } else if (d_tm->is_fp_type(type, &e, &m)) {
      v = d_tm->make_fp_bits_number(counter, e, m);
    } else {
      v = d_tm->make_number(counter);
    }
    if (!d_used_values.contains(v)) {
      counter = counter + QNumber(1L);
      return v;
    }
  }
  return nullptr;
}

// Returns: the first abstract value of `type` in this model (made if
//   there is none): what a constant met nowhere is worth.
const Term_* ModelStore::get_abstract_model_value(const Type* type) {
  if (const TermList* values = d_abstract.get(type)) {
    return values->front();
  }
  return new_abstract_value(type);
}

// A constant "@N.S" unused so far: neither a value of this model nor a
// symbol of the store with another type or meaning.
const Term_* ModelStore::new_abstract_value(const Type* type) {
  for (;;) {
    std::string name =
        "@" + std::to_string(d_next_abstract++) + "." + type->to_str();
    const Symbol* s = d_tm->find_symbol(name);
    if (s == nullptr) {
      s = d_tm->make_symbol(name, type);
    } else if (s->get_output_type() != type || s->get_arity() != 0) {
      continue;
    }
    const Term_* v = d_tm->make_constant(s);
    if (d_used_values.contains(v) || d_seen.contains(v)) {
      continue;  // a value of another class, or the user's own symbol
    }
    d_used_values.insert(v);
    d_abstract[type].push_back(v);
    return v;
  }
}

}  // namespace zenlo
