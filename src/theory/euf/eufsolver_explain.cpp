// euf::Solver: explanations. An equality a = b is explained by the path
// between a and b in the proof forest: each edge is an asserted literal, or
// a congruence whose argument pairs are explained in turn. A work list
// replaces recursion, since congruences nest as deep as the terms; each
// forest edge is expanded once per explanation, which keeps the work
// linear in the size of the answer.
#include <algorithm>

#include "terms/termmanager.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace euf {

void Solver::begin_explanation() {
  ++d_stats.explanations;
  d_expl.clear();
  d_work.clear();
  d_used_congruences.clear();
  d_used_chains.clear();
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
    if (!d_record_chains && !d_shortcuts) {
      explain_path(w.a, top, w.depth);
      explain_path(w.b, top, w.depth);
      continue;
    }
    collect_path(w.a, w.b, top);
    if (d_record_chains) {
      record_chains();
    }
    if (d_shortcuts) {
      explain_path_with_shortcuts(w.depth);
    } else {
      explain_path(w.a, top, w.depth);
      explain_path(w.b, top, w.depth);
    }
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
    explain_edge(n, depth);
  }
}

// The forest edge above `child`.
void Solver::explain_edge(EqNode* child, uint32_t depth) {
  if (child->explained == d_expl_stamp) {
    return;
  }
  child->explained = d_expl_stamp;
  if (!child->forest_label.is_undef()) {
    d_expl.push_back(child->forest_label);
  } else {
    explain_congruence(child, depth);
  }
}

// How far an asserted equality may jump ahead on the path, at most: the
// atoms of a node are scanned up to this many.
static constexpr int kShortcutScan = 64;

// Walks the path from a to b; where a node has an asserted equality atom
// with a node further on, the atom replaces the stretch in between. On
// chains of equalities (diamonds) this lets conflicts speak of shortcuts
// that lemmas introduced, so the search learns about them.
void Solver::explain_path_with_shortcuts(uint32_t depth) {
  for (size_t i = 0; i < d_path.size(); ++i) {
    d_path[i]->path_pos = static_cast<uint32_t>(i);
  }
  size_t i = 0;
  while (i + 1 < d_path.size()) {
    size_t best = i + 1;
    const EqWatch* jump = nullptr;
    int scanned = 0;
    for (const EqWatch* w = d_path[i]->atoms;
         w != nullptr && scanned < kShortcutScan;
         w = w->next_of_node, ++scanned) {
      const EqNode* o = w->other;
      if (o->mark == d_mark_stamp && o->path_pos > best
          && o->path_pos < d_path.size() && d_path[o->path_pos] == o
          && w->atom_node->root == d_true_node) {
        best = o->path_pos;
        jump = w;
      }
    }
    if (jump != nullptr) {
      d_expl.push_back(TheoryLit(jump->atom));
    } else {
      explain_edge(i < d_path_up ? d_path[i] : d_path[i + 1], depth);
    }
    i = best;
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

// The forest edge above `child` is an asserted equality between its two
// ends (not, say, an atom joining the class of `true`).
bool Solver::is_equality_edge(const EqNode* child) const {
  TheoryLit l = child->forest_label;
  if (l.is_undef() || l.negated()) {
    return false;
  }
  const Term_* atom = l.atom();
  if (d_tm->get_tag(atom->get_symbol()) != SymbolTag::EQ) {
    return false;
  }
  const Term_* x = child->term;
  const Term_* y = child->forest_parent->term;
  return (atom->get_child(0) == x && atom->get_child(1) == y)
         || (atom->get_child(0) == y && atom->get_child(1) == x);
}

// The path a .. top .. b as a node sequence; edge i joins d_path[i] and
// d_path[i + 1] and belongs to the lower of the two in the forest. Every
// node of it gets the current mark, so that shortcuts can find it.
void Solver::collect_path(EqNode* a, EqNode* b, EqNode* top) {
  d_path.clear();
  for (EqNode* n = a; n != top; n = n->forest_parent) {
    d_path.push_back(n);
  }
  d_path_up = d_path.size();
  d_path.push_back(top);
  size_t mark = d_path.size();
  for (EqNode* n = b; n != top; n = n->forest_parent) {
    d_path.push_back(n);
  }
  std::reverse(d_path.begin() + static_cast<long>(mark), d_path.end());
  if (++d_mark_stamp == 0) {
    for (EqNode* n : d_term_nodes) {
      if (n != nullptr) {
        n->mark = 0;
      }
    }
    d_mark_stamp = 1;
  }
  for (EqNode* n : d_path) {
    n->mark = d_mark_stamp;
  }
}

// Lists each two consecutive asserted equalities on the path: a search
// that learns their shortcut as an atom of its own needs far fewer
// conflicts on chains of equalities.
void Solver::record_chains() {
  auto edge_child = [&](size_t i) {
    return i < d_path_up ? d_path[i] : d_path[i + 1];
  };
  for (size_t i = 0; i + 2 < d_path.size(); ++i) {
    EqNode* c1 = edge_child(i);
    EqNode* c2 = edge_child(i + 1);
    if (is_equality_edge(c1) && is_equality_edge(c2)) {
      d_used_chains.push_back(UsedChain{d_path[i]->term,
                                        d_path[i + 1]->term,
                                        d_path[i + 2]->term,
                                        c1->forest_label,
                                        c2->forest_label});
    }
  }
}

void Solver::end_explanation(std::vector<TheoryLit>& out) {
  std::sort(d_expl.begin(), d_expl.end());
  d_expl.erase(std::unique(d_expl.begin(), d_expl.end()), d_expl.end());
  d_stats.explained_literals += d_expl.size();
  out.insert(out.end(), d_expl.begin(), d_expl.end());
}

}  // namespace euf
}  // namespace zenlo
