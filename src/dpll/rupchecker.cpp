#include "dpll/rupchecker.h"

#include <algorithm>

namespace zenlo {
namespace dpll {

int8_t RupChecker::value(Lit p) const {
  int8_t a = d_assign[var(p)];
  return sign(p) ? -a : a;
}

void RupChecker::grow(Var v) {
  if (static_cast<size_t>(v) >= d_assign.size()) {
    d_assign.resize(v + 1, 0);
    d_watches.resize(2 * (v + 1));
  }
}

void RupChecker::assign(Lit p) {
  d_assign[var(p)] = sign(p) ? -1 : 1;
  d_trail.push_back(p);
}

void RupChecker::attach(uint32_t index) {
  const std::vector<Lit>& c = d_clauses[index];
  d_watches[c[0]].push_back(index);
  d_watches[c[1]].push_back(index);
}

// Repeats and tautologies go; a clause that is unit or false under the
// top-level assignment makes that assignment stale, and the next check
// rebuilds it rather than patching watches here.
void RupChecker::add_axiom(const Lit* lits, size_t n) {
  d_scratch.assign(lits, lits + n);
  std::sort(d_scratch.begin(), d_scratch.end());
  d_scratch.erase(std::unique(d_scratch.begin(), d_scratch.end()),
                  d_scratch.end());
  for (size_t i = 1; i < d_scratch.size(); ++i) {
    if (d_scratch[i] == (d_scratch[i - 1] ^ 1)) {
      return;
    }
  }
  for (Lit p : d_scratch) {
    grow(var(p));
  }
  d_clauses.push_back(d_scratch);
  std::vector<Lit>& c = d_clauses.back();
  if (d_dirty || d_inconsistent) {
    return;
  }
  size_t open = 0;
  for (size_t i = 0; i < c.size() && open < 2; ++i) {
    if (value(c[i]) >= 0) {
      std::swap(c[open++], c[i]);
    }
  }
  if (open < 2) {
    d_dirty = true;
    return;
  }
  attach(static_cast<uint32_t>(d_clauses.size() - 1));
}

void RupChecker::rebuild() {
  d_dirty = false;
  d_inconsistent = false;
  std::fill(d_assign.begin(), d_assign.end(), 0);
  for (std::vector<uint32_t>& ws : d_watches) {
    ws.clear();
  }
  d_trail.clear();
  d_qhead = 0;
  for (uint32_t i = 0; i < d_clauses.size(); ++i) {
    const std::vector<Lit>& c = d_clauses[i];
    if (c.empty()) {
      d_inconsistent = true;
    } else if (c.size() == 1) {
      if (value(c[0]) < 0) {
        d_inconsistent = true;
      } else if (value(c[0]) == 0) {
        assign(c[0]);
      }
    } else {
      attach(i);
    }
  }
  if (!d_inconsistent && propagate()) {
    d_inconsistent = true;
  }
}

// Two watched literals per clause, at positions 0 and 1.
// Returns: true on a conflict.
bool RupChecker::propagate() {
  while (d_qhead < d_trail.size()) {
    Lit f = d_trail[d_qhead++] ^ 1;  // the literal that became false
    std::vector<uint32_t>& ws = d_watches[f];
    size_t i = 0;
    size_t j = 0;
    bool conflict = false;
    while (i < ws.size()) {
      uint32_t ci = ws[i++];
      std::vector<Lit>& c = d_clauses[ci];
      if (c[0] == f) {
        std::swap(c[0], c[1]);
      }
      if (conflict || value(c[0]) > 0) {
        ws[j++] = ci;
        continue;
      }
      size_t k = 2;
      while (k < c.size() && value(c[k]) < 0) {
        ++k;
      }
      if (k < c.size()) {
        std::swap(c[1], c[k]);
        d_watches[c[1]].push_back(ci);
        continue;
      }
      ws[j++] = ci;
      if (value(c[0]) < 0) {
        conflict = true;
      } else {
        assign(c[0]);
      }
    }
    ws.resize(j);
    if (conflict) {
      return true;
    }
  }
  return false;
}

void RupChecker::undo_to(size_t mark) {
  while (d_trail.size() > mark) {
    d_assign[var(d_trail.back())] = 0;
    d_trail.pop_back();
  }
  d_qhead = mark;
}

bool RupChecker::implied(const Lit* lits, size_t n) {
  if (d_dirty) {
    rebuild();
  }
  if (d_inconsistent) {
    return true;
  }
  const size_t mark = d_trail.size();
  bool result = false;
  for (size_t i = 0; i < n && !result; ++i) {
    grow(var(lits[i]));
    int8_t v = value(lits[i]);
    if (v > 0) {
      result = true;  // true at top level: implied as it stands
    } else if (v == 0) {
      assign(lits[i] ^ 1);
    }
  }
  if (!result) {
    result = propagate();
  }
  undo_to(mark);
  return result;
}

void RupChecker::forget_vars_from(Var v) {
  auto mentions = [v](const std::vector<Lit>& c) {
    return std::any_of(c.begin(), c.end(), [v](Lit p) { return var(p) >= v; });
  };
  d_clauses.erase(std::remove_if(d_clauses.begin(), d_clauses.end(), mentions),
                  d_clauses.end());
  if (static_cast<size_t>(v) < d_assign.size()) {
    d_assign.resize(v);
    d_watches.resize(2 * static_cast<size_t>(v));
  }
  d_dirty = true;
}

}  // namespace dpll
}  // namespace zenlo
