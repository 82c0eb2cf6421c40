#include "theory/check/termclosure.h"

#include <map>
#include <utility>

#include "terms/termmanager.h"

namespace zenlo {

void TermClosure::clear_nodes() {
  d_terms.assign(2, nullptr);
  d_index.clear();
  d_parent = {kTrue, kFalse};
}

int TermClosure::node(const Term_* t) {
  switch (d_nodes_tm.get_tag(t->get_symbol())) {
    case SymbolTag::TRUE: return kTrue;
    case SymbolTag::FALSE: return kFalse;
    default: break;
  }
  auto it = d_index.find(t);
  if (it != d_index.end()) {
    return it->second;
  }
  int n = static_cast<int>(d_terms.size());
  d_terms.push_back(t);
  d_parent.push_back(n);
  d_index.emplace(t, n);
  return n;
}

// Without recursion: terms may be deep. With children first, one round of
// congruence() settles a whole chain f(f(...a)) = f(f(...b)) once a = b.
void TermClosure::add_subterms(const Term_* t) {
  std::vector<std::pair<const Term_*, bool>> stack{{t, false}};
  while (!stack.empty()) {
    auto [u, expanded] = stack.back();
    stack.pop_back();
    if (d_index.count(u) != 0) {
      continue;
    }
    if (expanded) {
      node(u);
      continue;
    }
    stack.emplace_back(u, true);
    for (const Term_* c : *u) {
      if (d_index.count(c) == 0) {
        stack.emplace_back(c, false);
      }
    }
  }
}

int TermClosure::find(int n) {
  while (d_parent[n] != n) {
    d_parent[n] = d_parent[d_parent[n]];
    n = d_parent[n];
  }
  return n;
}

bool TermClosure::merge(int a, int b) {
  a = find(a);
  b = find(b);
  if (a == b) {
    return false;
  }
  if (a < b) {
    std::swap(a, b);
  }
  d_parent[a] = b;
  return true;
}

bool TermClosure::congruence() {
  bool merged = false;
  std::map<std::vector<uintptr_t>, int> table;
  std::vector<uintptr_t> sig;
  for (size_t n = 2; n < d_terms.size(); ++n) {
    const Term_* t = d_terms[n];
    if (t->get_arity() == 0) {
      continue;
    }
    sig.assign(1, reinterpret_cast<uintptr_t>(t->get_symbol()));
    for (const Term_* c : *t) {
      sig.push_back(static_cast<uintptr_t>(find(node(c))));
    }
    auto [it, fresh] = table.emplace(sig, static_cast<int>(n));
    if (!fresh) {
      merged |= merge(it->second, static_cast<int>(n));
    }
  }
  return merged;
}

}  // namespace zenlo
