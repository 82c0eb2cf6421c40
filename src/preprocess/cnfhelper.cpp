#include "preprocess/cnfhelper.h"

#include "terms/termmanager.h"

namespace zenlo {

void CnfHelper::Parents::add(const Term_* t, int delta) {
  uint64_t id = t->get_id();
  if (id >= d_count.size()) {
    // Doubling keeps a conversion over ever newer terms at amortised
    // constant cost per term.
    d_count.resize(std::max<size_t>(id + 1, 2 * d_count.size()), 0);
  }
  d_count[id] =
      static_cast<uint32_t>(static_cast<int64_t>(d_count[id]) + delta);
}

void CnfHelper::ShapeMemo::set(const Term_* t, Value v) {
  uint64_t id = t->get_id();
  if (id >= d_value.size()) {
    d_value.resize(std::max<size_t>(id + 1, 2 * d_value.size()),
                   Value::Unknown);
  }
  d_value[id] = v;
}

CnfHelper::Kind CnfHelper::kind(const Term_* t) const {
  switch (d_tm.get_tag(t->get_symbol())) {
    case SymbolTag::AND: return Kind::And;
    case SymbolTag::OR: return Kind::Or;
    case SymbolTag::NOT: return Kind::Not;
    case SymbolTag::IFF: return Kind::Iff;
    case SymbolTag::TRUE: return Kind::True;
    case SymbolTag::FALSE: return Kind::False;
    case SymbolTag::FORALL:
    case SymbolTag::EXISTS: return Kind::Quantifier;
    default: break;
  }
  return d_tm.is_bool_type(t->get_type()) ? Kind::Atom : Kind::NonBool;
}

const Term_* CnfHelper::strip_not(const Term_* t, bool& negated) const {
  while (kind(t) == Kind::Not) {
    negated = !negated;
    t = t->get_child(0);
  }
  return t;
}

void CnfHelper::find_parents(const Term_* f, Parents& parents, bool add) {
  const int delta = add ? 1 : -1;
  d_stack.clear();
  d_stack.emplace_back(f, false);
  first_visit(f, false);
  while (!d_stack.empty()) {
    const Term_* t = d_stack.back().first;
    d_stack.pop_back();
    Kind k = kind(t);
    if (k != Kind::And && k != Kind::Or && k != Kind::Not && k != Kind::Iff) {
      continue;
    }
    for (const Term_* a : *t) {
      parents.add(a, delta);
      if (first_visit(a, false)) {
        d_stack.emplace_back(a, false);
      }
    }
  }
  d_seen.clear();
}

bool CnfHelper::is_literal_iff(const Term_* t) const {
  if (kind(t) != Kind::Iff) {
    return false;
  }
  bool ignored = false;
  return is_atom(strip_not(t->get_child(0), ignored))
         && is_atom(strip_not(t->get_child(1), ignored));
}

bool CnfHelper::check_clause(const Term_* t, ShapeMemo& memo) {
  if (is_literal_iff(t)
      || (kind(t) == Kind::Not && is_literal_iff(t->get_child(0)))) {
    return true;
  }
  return disjunction_shape(t, memo);
}

// The polarity walk: `or` at positive and `and` at negative polarity keep
// the disjunction going, `not` flips, atoms end a branch; anything else
// (an iff, a conjunction, a constant) needs a definition. Each (term,
// polarity) pair is walked once, so heavy sharing stays linear.
bool CnfHelper::disjunction_shape(const Term_* t, ShapeMemo& memo) {
  ShapeMemo::Value known = memo.get(t);
  if (known != ShapeMemo::Value::Unknown) {
    return known == ShapeMemo::Value::Yes;
  }
  bool ok = true;
  d_positive.clear();
  d_stack.clear();
  d_stack.emplace_back(t, false);
  first_visit(t, false);
  while (ok && !d_stack.empty()) {
    auto [s, negative] = d_stack.back();
    d_stack.pop_back();
    if (!negative) {
      known = memo.get(s);
      if (known != ShapeMemo::Value::Unknown) {
        ok = known == ShapeMemo::Value::Yes;
        continue;
      }
      d_positive.push_back(s);
    }
    Kind k = kind(s);
    if (k == Kind::Atom) {
      continue;
    }
    bool flip = k == Kind::Not;
    if (!flip && !(k == Kind::Or && !negative)
        && !(k == Kind::And && negative)) {
      ok = false;
      break;
    }
    for (const Term_* a : *s) {
      bool na = negative != flip;
      if (first_visit(a, na)) {
        d_stack.emplace_back(a, na);
      }
    }
  }
  d_seen.clear();
  if (ok) {
    // Every node met at positive polarity heads a disjunction itself.
    for (const Term_* s : d_positive) {
      memo.set(s, ShapeMemo::Value::Yes);
    }
  } else {
    memo.set(t, ShapeMemo::Value::No);
  }
  return ok;
}

}  // namespace zenlo
