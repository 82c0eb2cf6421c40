// euf::Solver: backtracking. Every cell of the trail is undone by the exact
// reverse of the change that pushed it; since cells go in reverse order,
// each undo finds the structures exactly as the change left them (list
// heads, roots, ids), which is what makes single relinks enough.
#include <algorithm>
#include <utility>

#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace euf {

namespace {

// Reverse of the splice in eufsolver_merge.cpp.
template <class T>
void unsplice(T*& winner, T* loser, T* T::*link) {
  if (loser == nullptr) {
    return;
  }
  if (winner == loser) {
    winner = nullptr;
    return;
  }
  std::swap(winner->*link, loser->*link);
}

// Takes out a cell that was linked right behind the head of a circular
// list (or became the head of an empty one).
template <class T>
void unlink_behind_head(T*& head, T* cell, T* T::*link) {
  if (head == cell) {
    head = nullptr;
  } else {
    head->*link = cell->*link;
  }
}

}  // namespace

void Solver::backtrack(int n) {
  int target = std::max(0, num_checkpoints() - n);
  d_undo.cancel_until(target, [this](const UndoCell& c) { undo(c); });
  after_backtrack();
}

void Solver::after_backtrack() {
  d_pending.clear();
  d_implied.clear();
  d_implied_head = 0;
  retell();
}

// Atoms whose nodes went with the undone checkpoints are told again, oldest
// first, so that the caller's picture of what is told stays true.
void Solver::retell() {
  if (d_retell.empty()) {
    return;
  }
  std::vector<const Term_*> atoms;
  atoms.swap(d_retell);
  for (size_t i = atoms.size(); i-- > 0;) {
    ++d_stats.atoms_retold;
    tell_atom(atoms[i]);
  }
  atoms.clear();
  if (d_retell.empty()) {
    d_retell.swap(atoms);  // keep the capacity
  }
}

void Solver::undo(const UndoCell& c) {
  switch (c.kind) {
    case UndoKind::Start: break;
    case UndoKind::Fact: ++d_facts_undone; break;
    case UndoKind::Conflict: d_consistent = true; break;
    case UndoKind::Symbol: {
      auto* n = static_cast<EqNode*>(c.a);
      d_symbol_nodes.erase(
          static_cast<int64_t>(reinterpret_cast<intptr_t>(n->car)));
      d_node_pool.deallocate(n);
      break;
    }
    case UndoKind::Cons: undo_cons(static_cast<EqNode*>(c.a)); break;
    case UndoKind::Tell: undo_tell(c); break;
    case UndoKind::Merge:
      undo_merge(static_cast<EqNode*>(c.a),
                 static_cast<EqNode*>(c.b),
                 static_cast<EqNode*>(c.c),
                 c.flag);
      break;
    case UndoKind::Canon: {
      auto* n = static_cast<EqNode*>(c.a);
      n->canonical = n;
      break;
    }
    case UndoKind::Neq:
      undo_neq(static_cast<DiseqCell*>(c.a), static_cast<DiseqCell*>(c.b));
      break;
    case UndoKind::Proof:
      undo_proof(static_cast<EqNode*>(c.a), static_cast<EqNode*>(c.b));
      break;
    case UndoKind::DropWatch: undo_drop_watch(c); break;
    case UndoKind::Implied: {
      auto* n = static_cast<EqNode*>(c.a);
      n->implied = false;
      d_implied_reasons.pop_back();
      break;
    }
  }
}

void Solver::undo_cons(EqNode* n) {
  d_cons_map.erase(pair_key(n->car->orig_id, n->cdr->orig_id));
  if (n->canonical == n) {
    erase_signature_of(n);
  }
  if (n->cdr != &d_nil) {
    remove_use(n->cdr->root, n);
  }
  if (n->car->is_term()) {
    remove_use(n->car->root, n);
  }
  if (n->term != nullptr) {
    d_term_nodes[n->term->get_id()] = nullptr;
  }
  d_node_pool.deallocate(n);
}

void Solver::undo_tell(const UndoCell& c) {
  auto* n = static_cast<EqNode*>(c.a);
  n->told = c.flag;
  for (void* p : {c.c, c.b}) {
    if (p == nullptr) {
      continue;
    }
    auto* w = static_cast<EqWatch*>(p);
    w->self->atoms = w->next_of_node;
    EqNode* r = w->self->root;
    unlink_behind_head(r->watches, w, &EqWatch::next);
    --r->watch_count;
    d_watch_pool.deallocate(w);
  }
  if (d_keep_told) {
    d_retell.push_back(n->term);
  }
}

// The reverse of merge(): lists apart, the signatures of the rehashed users
// out under their merged keys, ids and roots back, and the signatures in
// again under the old keys. Users that the merge made non-canonical were
// made canonical again by their Canon cells, which are younger.
void Solver::undo_merge(EqNode* w, EqNode* l, EqNode* s, bool swapped) {
  w->watch_count -= l->watch_count;
  unsplice(w->watches, l->watches, &EqWatch::next);
  unsplice(w->diseqs, l->diseqs, &DiseqCell::next);
  EqNode* EqNode::*link =
      w->is_term() ? &EqNode::next_left_use : &EqNode::next_right_use;
  unsplice(w->use, l->use, link);
  w->use_count -= l->use_count;
  EqNode* first = s->use;
  if (first != nullptr) {
    EqNode* u = first;
    do {
      if (u->canonical == u) {
        erase_signature_of(u);
      }
      u = s->next_use(u);
    } while (u != first);
  }
  if (swapped) {
    std::swap(w->id, l->id);
  }
  std::swap(w->next, l->next);
  EqNode* m = l;
  do {
    m->root = l;
    m = m->next;
  } while (m != l);
  w->size -= l->size;
  if (first != nullptr) {
    EqNode* u = first;
    do {
      if (u->canonical == u) {
        d_signatures.insert(signature(u), u);
      }
      u = s->next_use(u);
    } while (u != first);
  }
}

// The list is as drop_watch left it: the watch goes back behind its
// predecessor, and its own link was never changed.
void Solver::undo_drop_watch(const UndoCell& c) {
  auto* x = static_cast<EqWatch*>(c.a);
  auto* prev = static_cast<EqWatch*>(c.b);
  auto* root = static_cast<EqNode*>(c.c);
  if (root->watches == nullptr) {
    root->watches = x;
  } else {
    prev->next = x;
    if (c.flag) {
      root->watches = x;
    }
  }
  ++root->watch_count;
}

void Solver::undo_neq(DiseqCell* ca, DiseqCell* cb) {
  for (DiseqCell* c : {cb, ca}) {
    unlink_behind_head(c->self->root->diseqs, c, &DiseqCell::next);
    d_diseq_pool.deallocate(c);
  }
}

// The edge may have been turned around by a later re-rooting, which no
// undo reverses; either way round it is the same edge.
void Solver::undo_proof(EqNode* x, EqNode* y) {
  if (x->forest_parent == y) {
    x->forest_parent = nullptr;
    x->forest_label = tlit_Undef;
  } else if (y->forest_parent == x) {
    y->forest_parent = nullptr;
    y->forest_label = tlit_Undef;
  }
}

}  // namespace euf
}  // namespace zenlo
