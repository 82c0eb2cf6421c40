#include "theory/check/eufclosurechecker.h"

#include <unordered_set>
#include <utility>

#include "terms/termmanager.h"

namespace zenlo {

int EufClosureChecker::truth(int n) {
  int r = find(n);
  return r == find(kTrue) ? 1 : r == find(kFalse) ? 0 : -1;
}

// (= a b): true when a ~ b; merges a and b when true; for Boolean sides,
// false makes one side the negation of the other.
void EufClosureChecker::rule_eq(int n, int a, int b) {
  if (find(a) == find(b)) {
    set_truth(n, true);
  }
  int v = truth(n);
  if (v == 1) {
    join(a, b);
  } else if (v == 0) {
    if (truth(a) >= 0) {
      set_truth(b, truth(a) == 0);
    } else if (truth(b) >= 0) {
      set_truth(a, truth(b) == 0);
    }
  }
}

// and: true iff every argument is; or is its dual, with the values flipped.
void EufClosureChecker::rule_and_or(int n, bool is_and) {
  const Term_* t = d_terms[n];
  const int unit = is_and ? 1 : 0;  // the value that does not decide
  int open = -1;
  int num_open = 0;
  for (const Term_* c : *t) {
    int x = node(c);
    int v = truth(x);
    if (v == 1 - unit) {
      set_truth(n, !is_and);
      return;
    }
    if (v < 0) {
      open = x;
      ++num_open;
    }
  }
  int v = truth(n);
  if (num_open == 0) {
    set_truth(n, is_and);
  } else if (v == unit) {
    for (const Term_* c : *t) {
      set_truth(node(c), is_and);
    }
  } else if (v == 1 - unit && num_open == 1) {
    set_truth(open, !is_and);
  }
}

void EufClosureChecker::rule(int n) {
  const Term_* t = d_terms[n];
  auto child = [this, t](size_t i) { return node(t->get_child(i)); };
  switch (d_tm.get_tag(t->get_symbol())) {
    case SymbolTag::NOT: {
      int x = child(0);
      if (truth(x) >= 0) {
        set_truth(n, truth(x) == 0);
      } else if (truth(n) >= 0) {
        set_truth(x, truth(n) == 0);
      }
      break;
    }
    case SymbolTag::AND: rule_and_or(n, true); break;
    case SymbolTag::OR: rule_and_or(n, false); break;
    case SymbolTag::IFF:
    case SymbolTag::EQ:
      if (t->get_arity() == 2) {
        rule_eq(n, child(0), child(1));
      }
      break;
    case SymbolTag::ITE: {
      int c = truth(child(0));
      if (c >= 0) {
        join(n, child(c == 1 ? 1 : 2));
      }
      break;
    }
    default: break;
  }
}

bool EufClosureChecker::contradiction() {
  if (find(kTrue) == find(kFalse)) {
    return true;
  }
  // Numerals and the values of enumerated sorts are pairwise distinct.
  std::unordered_map<int, const Symbol*> value;
  for (size_t n = 2; n < d_terms.size(); ++n) {
    const Term_* t = d_terms[n];
    const Symbol* s = t->get_symbol();
    if (t->get_arity() != 0 || !(d_tm.is_number(s) || d_tm.is_enum_value(s))) {
      continue;
    }
    auto [it, fresh] = value.emplace(find(static_cast<int>(n)), s);
    if (!fresh && it->second != s) {
      return true;
    }
  }
  return domain_exhausted(value);
}

// A class of an enumerated sort that is unequal to every value of the
// sort has no value left.
bool EufClosureChecker::domain_exhausted(
    const std::unordered_map<int, const Symbol*>& value) {
  std::unordered_map<int, std::unordered_set<const Symbol*>> excluded;
  for (size_t n = 2; n < d_terms.size(); ++n) {
    const Term_* t = d_terms[n];
    if (d_tm.get_tag(t->get_symbol()) != SymbolTag::EQ
        || truth(static_cast<int>(n)) != 0
        || !d_tm.is_enum_type(t->get_child(0)->get_type())) {
      continue;
    }
    int a = find(node(t->get_child(0)));
    int b = find(node(t->get_child(1)));
    for (auto [x, y] : {std::pair<int, int>{a, b}, {b, a}}) {
      auto v = value.find(y);
      if (v == value.end()) {
        continue;
      }
      std::unordered_set<const Symbol*>& out = excluded[x];
      out.insert(v->second);
      if (out.size()
          == d_tm.get_enum_values(t->get_child(0)->get_type())->size()) {
        return true;
      }
    }
  }
  return false;
}

void EufClosureChecker::close() {
  do {
    d_changed = congruence();
    for (size_t n = 2; n < d_terms.size(); ++n) {
      rule(static_cast<int>(n));
    }
  } while (d_changed && find(kTrue) != find(kFalse));
}

std::string EufClosureChecker::check(const TheoryFact& fact) {
  clear_nodes();
  for (TheoryLit l : fact.lits) {
    add_subterms(l.atom());
  }
  for (TheoryLit l : fact.lits) {
    set_truth(node(l.atom()), !l.negated());
  }
  close();
  if (contradiction()) {
    return std::string();
  }
  return "the closure of its literals is consistent";
}

}  // namespace zenlo
