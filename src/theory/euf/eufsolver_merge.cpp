// euf::Solver: merging classes, disequalities, and the deductions that
// merges and disequalities allow.
#include <utility>

#include "terms/termmanager.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace euf {

namespace {

// Joins two circular lists given by their entries; undone by the same swap
// (see eufsolver_undo.cpp).
template <class T>
void splice(T*& winner, T* loser, T* T::*link) {
  if (loser == nullptr) {
    return;
  }
  if (winner == nullptr) {
    winner = loser;
    return;
  }
  std::swap(winner->*link, loser->*link);
}

}  // namespace

// ---------------------------------------------------------------------------
// Equalities
// ---------------------------------------------------------------------------

// Merges the classes of a and b, and then every pair of cons nodes that
// becomes congruent, from a stack: a merge never recurses, whatever the
// depth of the terms.
void Solver::assert_eq(EqNode* a, EqNode* b, TheoryLit hyp) {
  ++d_stats.asserted_eqs;
  if (!d_consistent || a->root == b->root) {
    return;
  }
  d_pending.emplace_back(a, b);
  TheoryLit label = hyp;
  while (!d_pending.empty()) {
    auto [x, y] = d_pending.back();
    d_pending.pop_back();
    if (x->root == y->root) {
      continue;
    }
    // The merge is carried out even when it is inconsistent, so that the
    // forest holds the path that explains the conflict.
    if (unmergeable(x, y)) {
      become_inconsistent();
    }
    if (x->is_term()) {
      link_forest(x, y, label);
    }
    label = tlit_Undef;
    merge(x->root, y->root);
    if (!d_consistent) {
      d_pending.clear();
      return;
    }
  }
}

// Inconsistency is a state change like any other: undoing its cell, and
// nothing else, makes the solver consistent again.
void Solver::become_inconsistent() {
  d_consistent = false;
  push_undo(UndoKind::Conflict, nullptr);
}

// Two classes must not merge when both hold values, or a disequality
// separates them. Records the conflict.
bool Solver::unmergeable(EqNode* x, EqNode* y) {
  EqNode* rx = x->root;
  EqNode* ry = y->root;
  if (rx->is_value && ry->is_value) {
    d_conflict = Reason{rx, ry, nullptr, nullptr, tlit_Undef};
    return true;
  }
  if (DiseqCell* c = find_diseq(rx, ry)) {
    d_conflict = Reason{c->self, c->other, nullptr, nullptr, c->lit};
    return true;
  }
  return false;
}

// Walks the two disequality lists in step, so the cost is that of the
// shorter one.
DiseqCell* Solver::find_diseq(EqNode* ra, EqNode* rb) const {
  DiseqCell* ca = ra->diseqs;
  DiseqCell* cb = rb->diseqs;
  if (ca == nullptr || cb == nullptr) {
    return nullptr;
  }
  DiseqCell* a = ca;
  DiseqCell* b = cb;
  do {
    if (a->other->root == rb) {
      return a;
    }
    if (b->other->root == ra) {
      return b;
    }
    a = a->next;
    b = b->next;
  } while (a != ca && b != cb);
  return nullptr;
}

// The forest gains the edge x - y. One of the two becomes the root of its
// tree first, by reversing its path; the smaller class pays for that.
void Solver::link_forest(EqNode* x, EqNode* y, TheoryLit label) {
  if (x->forest_parent != nullptr && y->forest_parent != nullptr) {
    if (x->root->size > y->root->size) {
      std::swap(x, y);
    }
    reroot_forest(x);
  } else if (x->forest_parent != nullptr) {
    std::swap(x, y);
  }
  x->forest_parent = y;
  x->forest_label = label;
  push_undo(UndoKind::Proof, x, y);
}

void Solver::reroot_forest(EqNode* n) {
  EqNode* prev = nullptr;
  TheoryLit prev_label;
  while (n != nullptr) {
    EqNode* up = n->forest_parent;
    TheoryLit label = n->forest_label;
    n->forest_parent = prev;
    n->forest_label = prev_label;
    prev = n;
    prev_label = label;
    n = up;
  }
}

// Merges the classes of the roots x and y. The smaller class loses, except
// that a value always stays the root. Signatures of the cons nodes that use
// one of the classes must move; thanks to the swap of ids below only the
// shorter use list is rehashed.
void Solver::merge(EqNode* x, EqNode* y) {
  ++d_stats.merges;
  EqNode* w = x;
  EqNode* l = y;
  if (l->size > w->size || (l->size == w->size && l->orig_id < w->orig_id)) {
    std::swap(w, l);
  }
  if (l->is_value && !w->is_value) {
    std::swap(w, l);
  }
  deduce_on_merge(w, l);
  const bool swapped = l->use_count > w->use_count;
  EqNode* s = swapped ? w : l;
  rehash_uses(s, false);
  EqNode* m = l;
  do {
    m->root = w;
    m = m->next;
  } while (m != l);
  std::swap(w->next, l->next);
  w->size += l->size;
  if (swapped) {
    // The keys of the loser's (longer) use list stay valid under the
    // winner.
    std::swap(w->id, l->id);
  }
  d_undo.push(UndoCell{UndoKind::Merge, swapped, w, l, s});
  rehash_uses(s, true);
  EqNode* EqNode::*link =
      w->is_term() ? &EqNode::next_left_use : &EqNode::next_right_use;
  splice(w->use, l->use, link);
  w->use_count += l->use_count;
  splice(w->diseqs, l->diseqs, &DiseqCell::next);
  splice(w->watches, l->watches, &EqWatch::next);
  w->watch_count += l->watch_count;
}

// First pass (before the roots change): the canonical users of `s` leave
// the signature table. Second pass (after): they come back under their new
// signatures, or join the node that stands there already.
void Solver::rehash_uses(EqNode* s, bool insert) {
  EqNode* first = s->use;
  if (first == nullptr) {
    return;
  }
  EqNode* u = first;
  do {
    if (u->canonical == u) {
      if (!insert) {
        d_signatures.erase(signature(u));
      } else if (EqNode** e = d_signatures.get(signature(u))) {
        u->canonical = *e;
        push_undo(UndoKind::Canon, u);
        ++d_stats.congruences;
        d_pending.emplace_back(u, *e);
      } else {
        d_signatures.insert(signature(u), u);
      }
    }
    u = s->next_use(u);
  } while (u != first);
}

// ---------------------------------------------------------------------------
// Disequalities
// ---------------------------------------------------------------------------

void Solver::assert_neq(EqNode* a, EqNode* b, TheoryLit hyp) {
  ++d_stats.asserted_neqs;
  if (!d_consistent) {
    return;
  }
  EqNode* ra = a->root;
  EqNode* rb = b->root;
  if (ra == rb) {
    become_inconsistent();
    d_conflict = Reason{a, b, nullptr, nullptr, hyp};
    return;
  }
  if ((ra->is_value && rb->is_value) || find_diseq(ra, rb) != nullptr) {
    return;  // known already
  }
  auto* ca = static_cast<DiseqCell*>(d_diseq_pool.allocate());
  auto* cb = static_cast<DiseqCell*>(d_diseq_pool.allocate());
  *ca = DiseqCell{a, b, hyp, nullptr};
  *cb = DiseqCell{b, a, hyp, nullptr};
  for (DiseqCell* c : {ca, cb}) {
    EqNode* r = c->self->root;
    if (r->diseqs == nullptr) {
      r->diseqs = c;
      c->next = c;
    } else {
      c->next = r->diseqs->next;
      r->diseqs->next = c;
    }
  }
  push_undo(UndoKind::Neq, ca, cb);
  deduce_on_neq(a, b, hyp);
}

// ---------------------------------------------------------------------------
// Deductions
// ---------------------------------------------------------------------------

void Solver::add_watch(EqWatch* w) {
  EqNode* r = w->self->root;
  if (r->watches == nullptr) {
    r->watches = w;
    w->next = w;
  } else {
    w->next = r->watches->next;
    r->watches->next = w;
  }
  ++r->watch_count;
}

// Called before the loser joins the winner. An equality atom becomes true
// when its sides meet, and each side's class has a watch of it, so looking
// at the shorter watch list finds them all. Boolean atoms take the value
// of a class of `true` or `false` that they join.
void Solver::deduce_on_merge(EqNode* w, EqNode* l) {
  if (w->is_value && l->is_value) {
    return;  // inconsistent: nothing to deduce
  }
  EqNode* shorter = w->watch_count <= l->watch_count ? w : l;
  EqNode* other = shorter == w ? l : w;
  walk_live_watches(shorter, [this, other](EqWatch* x) {
    if (x->other->root == other && x->atom_node != d_asserting) {
      queue_implied(x->atom_node, true, Reason{x->self, x->other});
    }
  });
  if (w == d_true_node || w == d_false_node) {
    deduce_class_value(l, w);
  }
  // The joined class is separated from whatever either part was: equality
  // atoms between one part and what the other part is separated from are
  // false now.
  if (l->watches != nullptr && (w->diseqs != nullptr || w->is_value)) {
    deduce_separated(l, w);
  }
  if (w->watches != nullptr && l->diseqs != nullptr) {
    deduce_separated(w, l);
  }
}

// Equality atoms with a side in `cls` and the other in a class that `sep`
// is separated from (by a disequality, or both holding values) are false.
void Solver::deduce_separated(EqNode* cls, EqNode* sep) {
  if (++d_diseq_stamp == 0) {
    for (EqNode* n : d_term_nodes) {
      if (n != nullptr) {
        n->diseq_stamp = 0;
      }
    }
    d_diseq_stamp = 1;
  }
  if (DiseqCell* first = sep->diseqs) {
    DiseqCell* c = first;
    do {
      EqNode* r = c->other->root;
      r->diseq_stamp = d_diseq_stamp;
      r->diseq_cell = c;
      c = c->next;
    } while (c != first);
  }
  walk_live_watches(cls, [this, sep](EqWatch* x) {
    EqNode* r = x->other->root;
    if (x->atom_node == d_asserting) {
      // known already
    } else if (r->diseq_stamp == d_diseq_stamp) {
      DiseqCell* c = r->diseq_cell;
      queue_implied(x->atom_node,
                    false,
                    Reason{x->self, c->self, x->other, c->other, c->lit});
    } else if (sep->is_value && r->is_value && r != sep) {
      queue_implied(
          x->atom_node, false, Reason{x->self, sep, x->other, r, tlit_Undef});
    }
  });
}

void Solver::drop_watch(EqNode* root, EqWatch* prev, EqWatch* x) {
  const bool was_head = root->watches == x;
  if (x->next == x) {
    root->watches = nullptr;
  } else {
    prev->next = x->next;
    if (was_head) {
      root->watches = prev;
    }
  }
  --root->watch_count;
  d_undo.push(UndoCell{UndoKind::DropWatch, was_head, x, prev, root});
}

void Solver::deduce_class_value(EqNode* cls, EqNode* value) {
  EqNode* m = cls;
  do {
    if (m->told && m != d_asserting) {
      queue_implied(m, value == d_true_node, Reason{m, value});
    }
    m = m->next;
  } while (m != cls);
}

// An equality atom whose sides lie in the two classes just separated is
// false.
void Solver::deduce_on_neq(EqNode* a, EqNode* b, TheoryLit hyp) {
  EqNode* ra = a->root;
  EqNode* rb = b->root;
  EqNode* shorter = ra->watch_count <= rb->watch_count ? ra : rb;
  EqNode* other = shorter == ra ? rb : ra;
  walk_live_watches(shorter, [&](EqWatch* x) {
    if (x->other->root == other && x->atom_node != d_asserting) {
      // Sides in the order of a and b.
      bool a_side = x->self->root == ra;
      EqNode* sa = a_side ? x->self : x->other;
      EqNode* sb = a_side ? x->other : x->self;
      queue_implied(x->atom_node, false, Reason{sa, a, sb, b, hyp});
    }
  });
}

void Solver::deduce_on_tell(EqNode* n) {
  EqNode* r = n->root;
  if (r == d_true_node || r == d_false_node) {
    queue_implied(n, r == d_true_node, Reason{n, r});
    return;
  }
  const Term_* atom = n->term;
  if (d_tm->get_tag(atom->get_symbol()) != SymbolTag::EQ) {
    return;
  }
  EqNode* a = node_or_null(atom->get_child(0));
  EqNode* b = node_or_null(atom->get_child(1));
  if (a->root == b->root) {
    queue_implied(n, true, Reason{a, b});
  } else if (DiseqCell* c = find_diseq(a->root, b->root)) {
    bool a_side = c->self->root == a->root;
    EqNode* ca = a_side ? c->self : c->other;
    EqNode* cb = a_side ? c->other : c->self;
    queue_implied(n, false, Reason{a, ca, b, cb, c->lit});
  } else if (a->root->is_value && b->root->is_value) {
    queue_implied(n, false, Reason{a, a->root, b, b->root, tlit_Undef});
  }
}

}  // namespace euf
}  // namespace zenlo
