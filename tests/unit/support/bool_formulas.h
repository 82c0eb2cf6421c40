// Test helpers over Boolean formulas in a TermManager: random formulas
// with shared subformulas, and evaluation under an assignment of the
// atoms, with explicit stacks so that deep formulas work too.
#ifndef ZENLO_TESTS_UNIT_BOOL_FORMULAS_H
#define ZENLO_TESTS_UNIT_BOOL_FORMULAS_H

#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "terms/termmanager.h"

namespace zenlo_test {

using zenlo::Term_;
using zenlo::TermManager;

inline std::vector<const Term_*> make_atoms(TermManager& tm,
                                            const std::string& prefix,
                                            int n) {
  std::vector<const Term_*> atoms;
  for (int i = 0; i < n; ++i) {
    atoms.push_back(tm.make_constant(
        tm.make_symbol(prefix + std::to_string(i), tm.get_bool_type())));
  }
  return atoms;
}

// Random formulas over `atoms` with and/or/not/iff; earlier subformulas
// are reused with some probability, so the results are DAGs with sharing.
class RandomFormulas {
 public:
  RandomFormulas(TermManager& tm,
                 std::vector<const Term_*> atoms,
                 uint32_t seed)
      : d_tm(tm), d_atoms(std::move(atoms)), d_rng(seed) {}

  const Term_* make(int depth) {
    int r = pick(100);
    if (depth <= 0 || r < 15) {
      const Term_* a = d_atoms[pick(static_cast<int>(d_atoms.size()))];
      return pick(2) == 0 ? a : d_tm.make_not(a);
    }
    if (r < 30 && !d_made.empty()) {
      return d_made[pick(static_cast<int>(d_made.size()))];
    }
    const Term_* a = make(depth - 1);
    const Term_* t = nullptr;
    if (r < 45) {
      t = d_tm.make_not(a);
    } else {
      const Term_* b = make(depth - 1);
      t = r < 65   ? d_tm.make_and(a, b)
          : r < 85 ? d_tm.make_or(a, b)
                   : d_tm.make_iff(a, b);
    }
    d_made.push_back(t);
    return t;
  }

  int pick(int n) {
    return std::uniform_int_distribution<int>(0, n - 1)(d_rng);
  }

 private:
  TermManager& d_tm;
  std::vector<const Term_*> d_atoms;
  std::mt19937 d_rng;
  std::vector<const Term_*> d_made;
};

// The value of `f` under `atom_value`, which must cover its atoms.
// Iterative post-order with a memo, so depth and sharing cost nothing.
inline bool evaluate(TermManager& tm,
                     const Term_* f,
                     const std::unordered_map<const Term_*, bool>& atom_value) {
  std::unordered_map<const Term_*, bool> value;
  std::vector<std::pair<const Term_*, bool>> stack{{f, false}};
  while (!stack.empty()) {
    auto [t, expanded] = stack.back();
    stack.pop_back();
    if (value.count(t) != 0) {
      continue;
    }
    auto av = atom_value.find(t);
    if (av != atom_value.end()) {
      value[t] = av->second;
      continue;
    }
    zenlo::SymbolTag::tag tag = tm.get_tag(t->get_symbol());
    if (tag == zenlo::SymbolTag::TRUE || tag == zenlo::SymbolTag::FALSE) {
      value[t] = tag == zenlo::SymbolTag::TRUE;
      continue;
    }
    if (!expanded) {
      stack.emplace_back(t, true);
      for (const Term_* c : *t) {
        stack.emplace_back(c, false);
      }
      continue;
    }
    bool v;
    switch (tag) {
      case zenlo::SymbolTag::NOT: v = !value[t->get_child(0)]; break;
      case zenlo::SymbolTag::AND:
        v = value[t->get_child(0)] && value[t->get_child(1)];
        break;
      case zenlo::SymbolTag::OR:
        v = value[t->get_child(0)] || value[t->get_child(1)];
        break;
      case zenlo::SymbolTag::IFF:
        v = value[t->get_child(0)] == value[t->get_child(1)];
        break;
      default: throw std::runtime_error("no value for " + t->to_str());
    }
    value[t] = v;
  }
  return value[f];
}

}  // namespace zenlo_test

#endif
