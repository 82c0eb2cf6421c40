// The records of the congruence closure: nodes of the curried term graph,
// and the cells of the per-class lists of disequalities and equality atoms.
//
// Every application f(a1, ..., an) is the node cons(sym f, cons(a1, cons(
// a2, ... cons(an, nil)))), and a constant c is cons(sym c, nil); only the
// outermost cell carries the term. Two cons nodes are congruent when their
// left children and their right children are in the same classes, so one
// binary signature table serves applications of every arity, and argument
// lists shared between applications are shared nodes.
//
// Classes are homogeneous: term nodes are only ever equal to term nodes
// (they are the left children of inner cells), inner cells to inner cells
// (right children). Symbol nodes and nil never merge.
//
// These are plain records owned by euf::Solver, which keeps all invariants;
// they come from memory pools and are never seen outside the solver.
#ifndef ZENLO_THEORY_EUF_EQNODE_H
#define ZENLO_THEORY_EUF_EQNODE_H

#include <cstdint>

#include "terms/term.h"
#include "theory/theorylit.h"

namespace zenlo {
namespace euf {

struct DiseqCell;
struct EqWatch;

struct EqNode {
  enum class NodeKind : uint8_t { Term = 0, Symbol = 1, Cons = 2 };

  // Key of the node in the signature table while it is a root. Two roots
  // swap keys on a merge so that only the shorter use list is rehashed.
  uint32_t id;
  // Fixed number, for the table of all cons cells and for tie-breaks.
  uint32_t orig_id;
  NodeKind kind;
  // Holds a number, an enumeration value, `true` or `false`: two such
  // classes never merge, and such a node stays the root of its class.
  bool is_value;
  // A Boolean atom whose truth value the search wants deduced.
  bool told;
  // A Boolean atom whose deduction the search has taken: deducing it again
  // (merges often do) is no news until that is undone.
  bool implied;
  // Number of members, meaningful at a root.
  uint32_t size;
  // Number of cons nodes on the use list, meaningful at a root.
  uint32_t use_count;
  // Number of equality-atom watches, meaningful at a root.
  uint32_t watch_count;
  // Visit mark of the proof-forest walk, and the number of the last
  // explanation that expanded the forest edge above this node.
  uint32_t mark;
  uint32_t explained;
  // Position on the path being explained, valid while `mark` is current.
  uint32_t path_pos;
  // At a root: the disequality cell that separates it from the class being
  // merged, valid while `diseq_stamp` is current.
  uint32_t diseq_stamp;
  // While `implied`: where the deduction's reason stands on the solver's
  // stack of reasons (fills what would be padding).
  uint32_t reason_index;
  DiseqCell* diseq_cell;

  EqNode* root;
  // Circular list of the members of the class.
  EqNode* next;
  // For a cons node: the node under which its signature stands in the
  // signature table; itself when it stands there itself.
  EqNode* canonical;
  // At a root: entry into the circular list of cons nodes that use the
  // class as left child (term classes) or right child (list classes).
  EqNode* use;
  EqNode* car;
  EqNode* cdr;
  EqNode* next_left_use;
  EqNode* next_right_use;
  const Term_* term;

  // Proof forest: a tree over the term nodes of each class whose edges are
  // the merges that made the class. The label is the asserted literal, or
  // undefined for an edge found by congruence.
  EqNode* forest_parent;
  TheoryLit forest_label;

  // At a root: circular lists of disequalities and of equality atoms with a
  // side in the class.
  DiseqCell* diseqs;
  EqWatch* watches;
  // The told equality atoms with this very node as a side (not its class),
  // linked through EqWatch::next_of_node.
  EqWatch* atoms;

  bool is_term() const { return kind == NodeKind::Term; }

  bool is_symbol() const { return kind == NodeKind::Symbol; }

  // The use-list link that a walk of this class follows.
  EqNode* next_use(const EqNode* user) const {
    return is_term() ? user->next_left_use : user->next_right_use;
  }
};

// One side of an asserted disequality a != b: the cell on a's class names
// a and b; its twin on b's class names b and a.
struct DiseqCell {
  EqNode* self;
  EqNode* other;
  TheoryLit lit;
  DiseqCell* next;
};

// One side of a told equality atom (= a b), on the class of `self`.
struct EqWatch {
  EqNode* self;
  EqNode* other;
  const Term_* atom;
  EqNode* atom_node;
  EqWatch* next;
  EqWatch* next_of_node;
};

}  // namespace euf
}  // namespace zenlo

#endif
