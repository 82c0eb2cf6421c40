// euf::Solver: nodes, atoms, the entry points of asserting, and queries on
// classes. Merging is in eufsolver_merge.cpp, explanations in
// eufsolver_explain.cpp, backtracking in eufsolver_undo.cpp.
#include "theory/euf/eufsolver.h"

#include <algorithm>
#include <sstream>

#include "terms/termmanager.h"

namespace zenlo {
namespace euf {

namespace {

constexpr size_t kPoolFirstBlock = 256;
constexpr double kPoolGrowth = 2.0;
constexpr size_t kPoolMaxBlock = 16384;

}  // namespace

Solver::Solver(TermManager* tm)
    : d_tm(tm),
      d_node_pool(sizeof(EqNode), kPoolFirstBlock, kPoolGrowth, kPoolMaxBlock),
      d_diseq_pool(
          sizeof(DiseqCell), kPoolFirstBlock, kPoolGrowth, kPoolMaxBlock),
      d_watch_pool(
          sizeof(EqWatch), kPoolFirstBlock, kPoolGrowth, kPoolMaxBlock),
      d_nil(),
      d_true_term(tm->make_true()),
      d_false_term(tm->make_false()) {
  reset();
}

Solver::~Solver() = default;

// Nodes live in pools and hold no resources, so dropping the pools frees
// everything; the tables only point into them.
void Solver::reset() {
  d_node_pool.release_all();
  d_diseq_pool.release_all();
  d_watch_pool.release_all();
  d_term_nodes.clear();
  d_symbol_nodes.clear();
  d_cons_map.clear();
  d_signatures.clear();
  d_pending.clear();
  d_undo.clear();
  d_retell.clear();
  d_implied.clear();
  d_implied_head = 0;
  d_implied_reasons.clear();
  d_new_terms.clear();
  d_consistent = true;
  d_next_id = 1;
  d_nil = EqNode();
  d_nil.kind = EqNode::NodeKind::Cons;
  d_nil.id = d_nil.orig_id = 0;
  d_nil.root = d_nil.next = d_nil.canonical = &d_nil;
  d_nil.size = 1;
  // Made first, below every checkpoint, so they never go away.
  d_true_node = node_of(d_true_term);
  d_false_node = node_of(d_false_term);
}

// ---------------------------------------------------------------------------
// Nodes
// ---------------------------------------------------------------------------

// Builds the nodes of `t` and its subterms bottom-up with an explicit stack:
// terms may be nested far deeper than the call stack allows.
EqNode* Solver::node_of(const Term_* t) {
  if (EqNode* n = node_or_null(t)) {
    return n;
  }
  d_build_stack.clear();
  d_build_stack.push_back(t);
  while (!d_build_stack.empty()) {
    const Term_* u = d_build_stack.back();
    if (node_or_null(u) != nullptr) {
      d_build_stack.pop_back();
      continue;
    }
    bool ready = true;
    if (d_tm->get_tag(u->get_symbol()) != SymbolTag::ITE) {
      for (const Term_* c : *u) {
        if (node_or_null(c) == nullptr) {
          d_build_stack.push_back(c);
          ready = false;
        }
      }
    }
    if (ready) {
      d_build_stack.pop_back();
      build_term_node(u);
    }
  }
  return node_or_null(t);
}

// f(a1..an) is cons(sym f, cons(a1, ... cons(an, nil))), built right to
// left so that argument lists shared by applications are shared cells.
// A term-if is a constant of its own: its branches are not congruence
// arguments (the if-then-else is decided by the search). So is an
// equality atom: its value follows from its sides through the watches,
// and congruence between equality atoms would only repeat that, at the
// price of a merge for every pair of atoms over merged sides.
EqNode* Solver::build_term_node(const Term_* t) {
  EqNode* list = &d_nil;
  if (!is_opaque(t)) {
    for (size_t i = t->get_arity(); i-- > 0;) {
      list = cons(node_or_null(t->get_child(i)), list, nullptr);
    }
  }
  if (d_report_new_terms) {
    d_new_terms.push_back(t);
  }
  return cons(symbol_node(t), list, t);
}

void Solver::take_new_terms(std::vector<const Term_*>& out) {
  out.insert(out.end(), d_new_terms.begin(), d_new_terms.end());
  d_new_terms.clear();
}

bool Solver::is_opaque(const Term_* t) const {
  SymbolTag::tag tag = d_tm->get_tag(t->get_symbol());
  return tag == SymbolTag::ITE || tag == SymbolTag::EQ;
}

EqNode* Solver::symbol_node(const Term_* t) {
  const Symbol* s = t->get_symbol();
  int64_t key = is_opaque(t) ? -static_cast<int64_t>(t->get_id())
                             : static_cast<int64_t>(s->get_id());
  if (EqNode** n = d_symbol_nodes.get(key)) {
    return *n;
  }
  EqNode* n = new_node(EqNode::NodeKind::Symbol, nullptr);
  d_symbol_nodes.insert(key, n);
  // The key goes in the car slot, which a symbol node does not use.
  n->car = reinterpret_cast<EqNode*>(static_cast<intptr_t>(key));
  push_undo(UndoKind::Symbol, n);
  return n;
}

EqNode* Solver::new_node(EqNode::NodeKind kind, const Term_* term) {
  EqNode* n = static_cast<EqNode*>(d_node_pool.allocate());
  *n = EqNode();
  n->id = n->orig_id = d_next_id++;
  n->kind = kind;
  n->size = 1;
  n->root = n->next = n->canonical = n;
  n->term = term;
  n->is_value = term != nullptr && is_value_term(term);
  return n;
}

bool Solver::is_value_term(const Term_* t) const {
  const Symbol* s = t->get_symbol();
  return t == d_true_term || t == d_false_term
         || (s->get_arity() == 0
             && (d_tm->is_number(s) || d_tm->is_enum_value(s)));
}

EqNode* Solver::cons(EqNode* left, EqNode* right, const Term_* term) {
  uint64_t key = pair_key(left->orig_id, right->orig_id);
  if (term == nullptr) {
    if (EqNode** n = d_cons_map.get(key)) {
      return *n;
    }
  }
  EqNode* n = new_node(
      term != nullptr ? EqNode::NodeKind::Term : EqNode::NodeKind::Cons, term);
  n->car = left;
  n->cdr = right;
  if (left->is_term()) {
    add_use(left->root, n);
  }
  if (right != &d_nil) {
    add_use(right->root, n);
  }
  d_cons_map.insert(key, n);
  if (term != nullptr) {
    size_t i = term->get_id();
    if (i >= d_term_nodes.size()) {
      d_term_nodes.resize(std::max(i + 1, d_term_nodes.size() * 2), nullptr);
    }
    d_term_nodes[i] = n;
  }
  push_undo(UndoKind::Cons, n);
  uint64_t sig = signature(n);
  if (EqNode** e = d_signatures.get(sig)) {
    // Congruent to a node made earlier: the two join at once.
    n->canonical = *e;
    ++d_stats.congruences;
    assert_eq(n, *e, tlit_Undef);
  } else {
    d_signatures.insert(sig, n);
  }
  return n;
}

// A new user goes right behind the head of the class's use list, so that
// taking it out again (in reverse order of insertion) is one relink.
void Solver::add_use(EqNode* cls, EqNode* user) {
  EqNode* EqNode::*link =
      cls->is_term() ? &EqNode::next_left_use : &EqNode::next_right_use;
  if (cls->use == nullptr) {
    cls->use = user;
    user->*link = user;
  } else {
    user->*link = cls->use->*link;
    cls->use->*link = user;
  }
  ++cls->use_count;
}

void Solver::remove_use(EqNode* cls, EqNode* user) {
  EqNode* EqNode::*link =
      cls->is_term() ? &EqNode::next_left_use : &EqNode::next_right_use;
  if (cls->use == user) {
    cls->use = nullptr;
  } else {
    cls->use->*link = user->*link;
  }
  --cls->use_count;
}

void Solver::erase_signature_of(EqNode* n) {
  uint64_t sig = signature(n);
  EqNode** e = d_signatures.get(sig);
  if (e != nullptr && *e == n) {
    d_signatures.erase(sig);
  }
}

// ---------------------------------------------------------------------------
// Atoms
// ---------------------------------------------------------------------------

void Solver::tell_atom(const Term_* atom) {
  push_undo(UndoKind::Start, const_cast<Term_*>(atom));
  EqNode* n = node_of(atom);
  UndoCell cell{UndoKind::Tell, n->told, n, nullptr, nullptr};
  n->told = true;
  if (d_tm->get_tag(atom->get_symbol()) == SymbolTag::EQ) {
    EqNode* a = node_or_null(atom->get_child(0));
    EqNode* b = node_or_null(atom->get_child(1));
    auto* wa = static_cast<EqWatch*>(d_watch_pool.allocate());
    auto* wb = static_cast<EqWatch*>(d_watch_pool.allocate());
    *wa = EqWatch{a, b, atom, n, nullptr, a->atoms};
    *wb = EqWatch{b, a, atom, n, nullptr, b->atoms};
    a->atoms = wa;
    b->atoms = wb;
    add_watch(wa);
    add_watch(wb);
    cell.b = wa;
    cell.c = wb;
  }
  d_undo.push(cell);
  deduce_on_tell(n);
}

bool Solver::retract_atom(const Term_* atom) {
  size_t pos = d_undo.size();
  while (pos > 0) {
    const UndoCell& c = d_undo[pos - 1];
    if (c.kind == UndoKind::Start && c.a == atom) {
      break;
    }
    --pos;
  }
  if (pos == 0) {
    throw error("can't retract atom: " + atom->to_str());
  }
  const uint64_t facts_before = d_facts_undone;
  d_undo.cut_to(pos - 1, [this](const UndoCell& c) { undo(c); });
  // Only the atom itself is forgotten: whatever else was undone with it
  // comes back (the facts through the caller).
  d_retell.erase(std::remove(d_retell.begin(), d_retell.end(), atom),
                 d_retell.end());
  after_backtrack();
  return d_facts_undone != facts_before;
}

// ---------------------------------------------------------------------------
// Asserting
// ---------------------------------------------------------------------------

bool Solver::push_constraint(TheoryLit lit) {
  push_undo(UndoKind::Fact, nullptr);
  const Term_* atom = lit.atom();
  const bool positive = !lit.negated();
  EqNode* n = node_of(atom);
  d_asserting = n;
  SymbolTag::tag tag = d_tm->get_tag(atom->get_symbol());
  if (tag == SymbolTag::EQ) {
    EqNode* a = node_or_null(atom->get_child(0));
    EqNode* b = node_or_null(atom->get_child(1));
    if (positive) {
      assert_eq(a, b, lit);
    } else {
      assert_neq(a, b, lit);
    }
  } else if (tag == SymbolTag::LEQ && !positive) {
    // not (a <= b) entails a != b.
    assert_neq(node_or_null(atom->get_child(0)),
               node_or_null(atom->get_child(1)),
               lit);
  }
  // The atom's own node joins `true` or `false`, so that it can stand as a
  // Boolean argument of a function.
  assert_eq(n, positive ? d_true_node : d_false_node, lit);
  d_asserting = nullptr;
  return d_consistent;
}

bool Solver::assert_equal(const Term_* a, const Term_* b, TheoryLit reason) {
  push_undo(UndoKind::Fact, nullptr);
  EqNode* na = node_of(a);
  EqNode* nb = node_of(b);
  assert_eq(na, nb, reason);
  return d_consistent;
}

bool Solver::assert_distinct(const Term_* a, const Term_* b, TheoryLit reason) {
  push_undo(UndoKind::Fact, nullptr);
  EqNode* na = node_of(a);
  EqNode* nb = node_of(b);
  assert_neq(na, nb, reason);
  return d_consistent;
}

void Solver::push_checkpoint() {
  d_undo.new_level();
  d_implied.clear();
  d_implied_head = 0;
}

// ---------------------------------------------------------------------------
// Deductions
// ---------------------------------------------------------------------------

void Solver::queue_implied(EqNode* atom_node, bool value, const Reason& why) {
  ++d_stats.deductions;
  if (!atom_node->implied) {
    d_implied.push_back(Implied{TheoryLit(atom_node->term, !value), why});
  }
}

bool Solver::get_next_implied(TheoryLit& lit) {
  while (d_implied_head < d_implied.size()) {
    const Implied& imp = d_implied[d_implied_head++];
    // The first reason taken stays: the literal is implied from then on,
    // and a later deduction of it may rest on younger facts.
    EqNode* n = node_or_null(imp.lit.atom());
    if (n->implied) {
      continue;
    }
    n->implied = true;
    n->reason_index = static_cast<uint32_t>(d_implied_reasons.size());
    d_implied_reasons.push_back(imp.reason);
    push_undo(UndoKind::Implied, n);
    lit = imp.lit;
    return true;
  }
  d_implied.clear();
  d_implied_head = 0;
  return false;
}

void Solver::get_implied_reason(TheoryLit lit, std::vector<TheoryLit>& out) {
  const EqNode* n = node_or_null(lit.atom());
  if (n == nullptr || !n->implied) {
    throw error("no deduction of " + lit.atom()->to_str() + " to explain");
  }
  begin_explanation();
  explain_reason(d_implied_reasons[n->reason_index]);
  end_explanation(out);
}

// A conflict may name any literal that holds now, so it takes shortcuts
// over asserted equalities that an implication could not use.
void Solver::get_conflict(std::vector<TheoryLit>& out) {
  ++d_stats.conflicts;
  begin_explanation();
  d_shortcuts = true;
  explain_reason(d_conflict);
  d_shortcuts = false;
  end_explanation(out);
}

void Solver::get_congruence_reason(const Term_* a,
                                   const Term_* b,
                                   std::vector<TheoryLit>& out) {
  EqNode* na = node_or_null(a);
  EqNode* nb = node_or_null(b);
  if (na == nullptr || nb == nullptr || na->root != nb->root) {
    throw error("no congruence between " + a->to_str() + " and " + b->to_str());
  }
  begin_explanation();
  explain(na, nb);
  end_explanation(out);
}

// ---------------------------------------------------------------------------
// Classes
// ---------------------------------------------------------------------------

const Term_* Solver::get_representative(const Term_* t) const {
  EqNode* n = node_or_null(t);
  return n == nullptr ? nullptr : n->root->term;
}

bool Solver::are_equal(const Term_* a, const Term_* b) const {
  EqNode* na = node_or_null(a);
  EqNode* nb = node_or_null(b);
  return a == b || (na != nullptr && nb != nullptr && na->root == nb->root);
}

bool Solver::are_disequal(const Term_* a, const Term_* b) const {
  EqNode* na = node_or_null(a);
  EqNode* nb = node_or_null(b);
  if (na == nullptr || nb == nullptr || na->root == nb->root) {
    return false;
  }
  return (na->root->is_value && nb->root->is_value)
         || find_diseq(na->root, nb->root) != nullptr;
}

void Solver::get_congruence_class(const Term_* t,
                                  std::vector<const Term_*>& out) const {
  EqNode* n = node_or_null(t);
  if (n == nullptr) {
    return;
  }
  EqNode* m = n;
  do {
    out.push_back(m->term);
    m = m->next;
  } while (m != n);
}

void Solver::get_all_representatives(std::vector<const Term_*>& out) const {
  for (EqNode* n : d_term_nodes) {
    if (n != nullptr && n->root == n) {
      out.push_back(n->term);
    }
  }
}

std::string Solver::debug_dump() const {
  std::ostringstream out;
  out << "EUF: " << (d_consistent ? "consistent" : "inconsistent") << ", "
      << d_undo.size() << " undo cells, " << num_checkpoints()
      << " checkpoints\n";
  for (EqNode* n : d_term_nodes) {
    if (n == nullptr || n->root != n || n->size < 2) {
      continue;
    }
    out << "class of " << outterm(n->term) << ":";
    for (EqNode* m = n->next; m != n; m = m->next) {
      out << " " << outterm(m->term);
    }
    out << "\n";
  }
  return out.str();
}

}  // namespace euf
}  // namespace zenlo
