// euf::Solver: explanations. An equality a = b is explained by the path
// between a and b in the proof forest: each edge is an asserted literal, or
// a congruence whose argument pairs are explained in turn. A work list
// replaces recursion, since congruences nest as deep as the terms; each
// forest edge is expanded once per explanation, which keeps the work
// linear in the size of the answer.
#include <algorithm>

#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace euf {

void Solver::begin_explanation() {
  ++d_stats.explanations;
  d_expl.clear();
  d_work.clear();
  d_used_congruences.clear();
  if (++d_expl_stamp == 0) {
    // The stamp wrapped around: old marks could look current.
    for (EqNode* n : d_term_nodes) {
      if (n != nullptr) {
        n->explained = 0;
      }
    }
    d_expl_stamp = 1;
  }
}

void Solver::explain(EqNode* a, EqNode* b) {
  d_work.push_back(Work{a, b, 0});
  run_explanation();
}

void Solver::explain_reason(const Reason& r) {
  if (r.a1 != nullptr) {
    explain(r.a1, r.b1);
  }
  if (r.a2 != nullptr) {
    explain(r.a2, r.b2);
  }
  if (!r.extra.is_undef()) {
    d_expl.push_back(r.extra);
  }
}

void Solver::run_explanation() {
  while (!d_work.empty()) {
    Work w = d_work.back();
    d_work.pop_back();
    if (w.a == w.b) {
      continue;
    }
    EqNode* top = forest_ancestor(w.a, w.b);
    explain_path(w.a, top, w.depth);
    explain_path(w.b, top, w.depth);
  }
}

// The nearest common ancestor of a and b in their tree: mark a's path to
// the root, then climb from b to the first mark.
EqNode* Solver::forest_ancestor(EqNode* a, EqNode* b) {
  if (++d_mark_stamp == 0) {
    for (EqNode* n : d_term_nodes) {
      if (n != nullptr) {
        n->mark = 0;
      }
    }
    d_mark_stamp = 1;
  }
  for (EqNode* n = a; n != nullptr; n = n->forest_parent) {
    n->mark = d_mark_stamp;
  }
  EqNode* n = b;
  while (n != nullptr && n->mark != d_mark_stamp) {
    n = n->forest_parent;
  }
  if (n == nullptr) {
    throw error("internal error: explaining an equality that does not hold");
  }
  return n;
}

void Solver::explain_path(EqNode* from, EqNode* to, uint32_t depth) {
  for (EqNode* n = from; n != to; n = n->forest_parent) {
    if (n->explained == d_expl_stamp) {
      continue;
    }
    n->explained = d_expl_stamp;
    if (!n->forest_label.is_undef()) {
      d_expl.push_back(n->forest_label);
    } else {
      explain_congruence(n, depth);
    }
  }
}

// The edge from n to its parent is a congruence: both are applications of
// the same symbol with pairwise equal arguments.
void Solver::explain_congruence(EqNode* n, uint32_t depth) {
  EqNode* p = n->forest_parent;
  if (d_record_congruences) {
    const Term_* a = n->term;
    const Term_* b = p->term;
    if (a->get_id() > b->get_id()) {
      std::swap(a, b);
    }
    d_used_congruences.push_back(UsedCongruence{a, b, depth == 0});
  }
  for (EqNode *x = n->cdr, *y = p->cdr; x != &d_nil; x = x->cdr, y = y->cdr) {
    if (x->car != y->car) {
      d_work.push_back(Work{x->car, y->car, depth + 1});
    }
  }
}

void Solver::end_explanation(std::vector<TheoryLit>& out) {
  std::sort(d_expl.begin(), d_expl.end());
  d_expl.erase(std::unique(d_expl.begin(), d_expl.end()), d_expl.end());
  out.insert(out.end(), d_expl.begin(), d_expl.end());
}

}  // namespace euf
}  // namespace zenlo
