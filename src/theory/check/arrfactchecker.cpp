#include "theory/check/arrfactchecker.h"

#include <set>

#include "terms/termmanager.h"

namespace zenlo {

namespace {

// Splits per fact: the solver's lemmas need none, since their index
// disjuncts are literals of the fact.
constexpr int kMaxSplits = 8;

SymbolTag::tag tag_of(const TermManager& tm, const Term_* t) {
  return tm.get_tag(t->get_symbol());
}

}  // namespace

std::string ArrFactChecker::check(const TheoryFact& fact) {
  if (is_witness_instance(fact)) {
    return "";
  }
  std::vector<Split> splits;
  int budget = kMaxSplits;
  if (refute(fact, splits, budget)) {
    return "";
  }
  return budget > 0 ? "the array axioms over its terms leave it consistent"
                    : "undecided within the splits allowed";
}

// not (a = b), a[k] = b[k], with k the witness named after a = b. Over
// Bool the solver states a[k] = b[k] as two clauses, so the fact is also
// not (a = b) with a[k] and b[k] of one sign.
bool ArrFactChecker::is_witness_instance(const TheoryFact& fact) const {
  const size_t n = fact.lits.size();
  if (n != 2 && n != 3) {
    return false;
  }
  auto is_array_diseq = [this](TheoryLit l) {
    return l.negated() && tag_of(d_tm, l.atom()) == SymbolTag::EQ
           && d_tm.is_array_type(l.atom()->get_child(0)->get_type());
  };
  size_t at = 0;
  while (at < n && !is_array_diseq(fact.lits[at])) {
    ++at;
  }
  if (at == n) {
    return false;
  }
  const Term_* ne = fact.lits[at].atom();
  const Term_* x = nullptr;
  const Term_* y = nullptr;
  if (n == 2) {
    TheoryLit eq = fact.lits[1 - at];
    SymbolTag::tag tag = tag_of(d_tm, eq.atom());
    if (eq.negated() || (tag != SymbolTag::EQ && tag != SymbolTag::IFF)) {
      return false;
    }
    x = eq.atom()->get_child(0);
    y = eq.atom()->get_child(1);
  } else {
    TheoryLit l1 = fact.lits[at == 0 ? 1 : 0];
    TheoryLit l2 = fact.lits[at == 2 ? 1 : 2];
    if (l1.negated() != l2.negated()) {
      return false;
    }
    x = l1.atom();
    y = l2.atom();
  }
  if (tag_of(d_tm, x) != SymbolTag::ARRAY_READ
      || tag_of(d_tm, y) != SymbolTag::ARRAY_READ
      || x->get_child(1) != y->get_child(1)) {
    return false;
  }
  const Term_* k = x->get_child(1);
  const Term_* a = ne->get_child(0);
  const Term_* b = ne->get_child(1);
  // Either engine's name for the witness of a = b.
  const std::string id = std::to_string(ne->get_id());
  const std::string& name = k->get_symbol()->get_name();
  return k->get_arity() == 0
         && (name == ".idx" + id || name == ".array_witness" + id)
         && ((x->get_child(0) == a && y->get_child(0) == b)
             || (x->get_child(0) == b && y->get_child(0) == a));
}

bool ArrFactChecker::refute(const TheoryFact& fact,
                            std::vector<Split>& splits,
                            int& budget) {
  clear();
  for (TheoryLit l : fact.lits) {
    add_subterms(l.atom());
  }
  for (const Split& s : splits) {
    add_subterms(s.a);
    add_subterms(s.b);
  }
  // The index terms by sort, one more apart from all over an infinite
  // sort, and a read of each array term at each of them.
  const size_t n_terms = d_terms.size();
  for (size_t n = 2; n < n_terms; ++n) {
    const Term_* t = d_terms[n];
    SymbolTag::tag tag = tag_of(d_tm, t);
    if (tag == SymbolTag::ARRAY_READ || tag == SymbolTag::ARRAY_WRITE) {
      const Term_* i = t->get_child(1);
      auto& list = d_indices[i->get_type()];
      if (std::find(list.begin(), list.end(), i) == list.end()) {
        list.push_back(i);
      }
    }
  }
  // Arrays read nowhere still have the index apart from all.
  for (size_t n = 2; n < n_terms; ++n) {
    const Type* index = nullptr;
    if (d_tm.is_array_type(d_terms[n]->get_type(), &index)) {
      d_indices[index];
    }
  }
  for (auto& [type, list] : d_indices) {
    if (d_tm.is_finite_domain_type(type)) {
      continue;
    }
    std::string name = ".arrcheck.apart." + type->to_str();
    const Symbol* s = d_tm.find_symbol(name);
    if (s == nullptr) {
      s = d_tm.make_symbol(name, type);
    }
    const Term_* apart = d_tm.make_constant(s);
    d_apart[type] = apart;
    list.push_back(apart);
  }
  {
    SimplificationScope raw(d_tm, false);
    for (size_t n = 2; n < n_terms; ++n) {
      const Term_* x = d_terms[n];
      const Type* index = nullptr;
      if (!d_tm.is_array_type(x->get_type(), &index)) {
        continue;
      }
      auto it = d_indices.find(index);
      if (it == d_indices.end()) {
        continue;
      }
      for (const Term_* j : it->second) {
        add_subterms(d_tm.make_array_read(x, j));
      }
    }
  }
  for (TheoryLit l : fact.lits) {
    merge(node(l.atom()), l.negated() ? kFalse : kTrue);
  }
  for (const Split& s : splits) {
    if (s.equal) {
      merge(node(s.a), node(s.b));
    } else {
      d_diseqs.emplace_back(node(s.a), node(s.b));
    }
  }
  std::pair<const Term_*, const Term_*> undecided{nullptr, nullptr};
  for (;;) {
    close();
    if (contradiction()) {
      return true;
    }
    undecided = {nullptr, nullptr};
    if (!instantiate(undecided)) {
      break;
    }
  }
  if (undecided.first == nullptr || budget <= 0) {
    return false;
  }
  --budget;
  splits.push_back(Split{undecided.first, undecided.second, true});
  bool refuted = refute(fact, splits, budget);
  if (refuted) {
    splits.back().equal = false;
    refuted = refute(fact, splits, budget);
  }
  splits.pop_back();
  return refuted;
}

// ---------------------------------------------------------------------------
// The closure
// ---------------------------------------------------------------------------

void ArrFactChecker::clear() {
  clear_nodes();
  d_diseqs.clear();
  d_indices.clear();
  d_apart.clear();
}

// Congruence and the equality atoms, until nothing changes.
bool ArrFactChecker::close() {
  bool any = false;
  std::set<std::pair<int, int>> seen;
  for (bool changed = true; changed;) {
    changed = congruence();
    for (size_t n = 2; n < d_terms.size(); ++n) {
      const Term_* t = d_terms[n];
      SymbolTag::tag tag = tag_of(d_tm, t);
      if (tag == SymbolTag::NOT) {
        int x = node(t->get_child(0));
        int v = find(static_cast<int>(n));
        if (v == find(kTrue) || v == find(kFalse)) {
          changed |= merge(x, v == find(kTrue) ? kFalse : kTrue);
        } else if (find(x) == find(kTrue) || find(x) == find(kFalse)) {
          changed |= merge(static_cast<int>(n),
                           find(x) == find(kTrue) ? kFalse : kTrue);
        }
      }
      // Over Bool, iff is the equality.
      if (tag == SymbolTag::EQ || tag == SymbolTag::IFF) {
        int a = node(t->get_child(0));
        int b = node(t->get_child(1));
        int v = find(static_cast<int>(n));
        if (v == find(kTrue)) {
          changed |= merge(a, b);
        } else if (v == find(kFalse)) {
          if (seen.emplace(a, b).second) {
            d_diseqs.emplace_back(a, b);
          }
        } else if (find(a) == find(b)) {
          changed |= merge(static_cast<int>(n), kTrue);
        } else if (tag == SymbolTag::IFF && disequal(a, b)) {
          changed |= merge(static_cast<int>(n), kFalse);
        }
      }
    }
    any |= changed;
  }
  return any;
}

// Whether two classes hold different values: numerals, enumeration values,
// or the index apart from all others against any other index term.
bool ArrFactChecker::disequal(int a, int b) {
  a = find(a);
  b = find(b);
  if (a == b) {
    return false;
  }
  for (auto [x, y] : d_diseqs) {
    x = find(x);
    y = find(y);
    if ((x == a && y == b) || (x == b && y == a)) {
      return true;
    }
  }
  const int t = find(kTrue);
  const int f = find(kFalse);
  if ((a == t && b == f) || (a == f && b == t)) {
    return true;
  }
  const Term_* va = nullptr;
  const Term_* vb = nullptr;
  bool apart_a = false, apart_b = false;
  for (size_t n = 2; n < d_terms.size(); ++n) {
    const Term_* t = d_terms[n];
    int r = find(static_cast<int>(n));
    if (r != a && r != b) {
      continue;
    }
    bool value =
        d_tm.is_number_term(t)
        || (t->get_arity() == 0 && d_tm.is_enum_value(t->get_symbol()));
    auto ap = d_apart.find(t->get_type());
    bool apart = ap != d_apart.end() && ap->second == t;
    (r == a ? va : vb) = value ? t : (r == a ? va : vb);
    (r == a ? apart_a : apart_b) |= apart;
  }
  return (va != nullptr && vb != nullptr && va != vb) || apart_a || apart_b;
}

bool ArrFactChecker::contradiction() {
  if (find(kTrue) == find(kFalse)) {
    return true;
  }
  for (auto [x, y] : d_diseqs) {
    if (find(x) == find(y)) {
      return true;
    }
  }
  std::unordered_map<int, const Term_*> value;
  for (size_t n = 2; n < d_terms.size(); ++n) {
    const Term_* t = d_terms[n];
    if (!d_tm.is_number_term(t)
        && !(t->get_arity() == 0 && d_tm.is_enum_value(t->get_symbol()))) {
      continue;
    }
    auto [it, fresh] = value.emplace(find(static_cast<int>(n)), t);
    if (!fresh && it->second != t) {
      return true;
    }
  }
  return false;
}

// One round of instances over the reads made up front. Returns: whether
// any merged; `undecided` names a read over write split left open.
bool ArrFactChecker::instantiate(
    std::pair<const Term_*, const Term_*>& undecided) {
  SimplificationScope raw(d_tm, false);
  bool changed = false;
  auto read = [this](const Term_* a, const Term_* j) {
    return node(d_tm.make_array_read(a, j));
  };
  const size_t n_terms = d_terms.size();
  for (size_t n = 2; n < n_terms; ++n) {
    const Term_* t = d_terms[n];
    SymbolTag::tag tag = tag_of(d_tm, t);
    if (tag != SymbolTag::ARRAY_WRITE && tag != SymbolTag::ARRAY_CONST) {
      continue;
    }
    const Type* index = nullptr;
    d_tm.is_array_type(t->get_type(), &index);
    auto it = d_indices.find(index);
    if (it == d_indices.end()) {
      continue;
    }
    if (tag == SymbolTag::ARRAY_CONST) {
      for (const Term_* j : it->second) {
        changed |= merge(read(t, j), node(t->get_child(0)));
      }
      continue;
    }
    const Term_* a = t->get_child(0);
    const Term_* i = t->get_child(1);
    changed |= merge(read(t, i), node(t->get_child(2)));
    for (const Term_* j : it->second) {
      if (find(node(i)) == find(node(j))) {
        continue;
      }
      if (disequal(node(i), node(j))) {
        changed |= merge(read(a, j), read(t, j));
      } else if (undecided.first == nullptr) {
        undecided = {i, j};
      }
    }
  }
  return changed;
}

}  // namespace zenlo
