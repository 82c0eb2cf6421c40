// euf::Solver: a backtrackable congruence closure over curried term nodes
// (see eqnode.h), with a proof forest for explanations. It decides
// conjunctions of equalities, disequalities and Boolean atoms over
// uninterpreted functions, deduces the truth values of the atoms it was
// told, and names, for each conflict and deduction, the asserted literals
// behind it.
//
// The class knows nothing of the search, of levels in the search's sense
// or of the TheoryManager: EufSolverInterface adapts it to the TheorySolver
// protocol, and the arrays solver and model building may use it directly.
// It runs the same with terms from any TermManager; every walk over terms
// and over the forest uses explicit stacks, so terms of any depth work.
//
// State changes go on an undo trail. A checkpoint marks a point to come
// back to; backtrack(n) undoes the last n checkpoints exactly. Atoms told
// after a checkpoint lose their nodes when it is undone; with keep-told on
// (the default) they are told again at once, so that a caller can tell
// atoms at any time and never has to repeat itself.
//
// Explanations rely on a property of the forest: it is a tree per class and
// edges are only added (until undone), so the path between two nodes that
// were equal at some moment is the path they had then. An implied literal
// is therefore explained in the current graph by facts that were asserted
// before it was implied, as a search needs for its implication graph.
#ifndef ZENLO_THEORY_EUF_EUFSOLVER_H
#define ZENLO_THEORY_EUF_EUFSOLVER_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/exception.h"
#include "terms/hashtable.h"
#include "terms/memorypool.h"
#include "terms/term.h"
#include "theory/euf/eqnode.h"
#include "theory/theorylit.h"
#include "theory/undostack.h"

namespace zenlo {

class TermManager;

namespace euf {

class Solver {
 public:
  ZENLO_DECLARE_ERROR;

  struct Stats {
    uint64_t asserted_eqs = 0;
    uint64_t asserted_neqs = 0;
    uint64_t merges = 0;
    uint64_t congruences = 0;
    uint64_t deductions = 0;
    uint64_t conflicts = 0;
    uint64_t explanations = 0;
    uint64_t explained_literals = 0;
    uint64_t atoms_retold = 0;
  };

  // A congruence that an explanation used: the two applications.
  struct UsedCongruence {
    const Term_* a;
    const Term_* b;
    // Found on the path of the explained equality itself, not inside the
    // explanation of another congruence.
    bool top_level;
  };

  // Two asserted equalities a = b and b = c that an explanation chained.
  struct UsedChain {
    const Term_* a;
    const Term_* b;
    const Term_* c;
    TheoryLit ab;
    TheoryLit bc;
  };

  explicit Solver(TermManager* tm);
  ~Solver();
  Solver(const Solver&) = delete;
  Solver& operator=(const Solver&) = delete;

  // ---- Atoms ---------------------------------------------------------------

  // Requires: `atom` is a Bool-typed term.
  // After: nodes exist for the atom and its subterms; its truth value is
  //   deduced from now on (an equality atom also from its two sides).
  void tell_atom(const Term_* atom);

  // Requires: `atom` was told and not retracted.
  // After: the atom and what was told after it are undone; the others are
  //   told again.
  // Returns: whether facts asserted after the atom (push_constraint,
  //   assert_equal, assert_distinct) went with it; the caller must assert
  //   them again.
  bool retract_atom(const Term_* atom);

  bool has_node(const Term_* t) const { return node_or_null(t) != nullptr; }

  // After: nodes exist for `t` and its subterms.
  void add_term(const Term_* t) { node_of(t); }

  // With reporting on, every term that gets a node is kept for
  // take_new_terms, so that a caller can look at each term once (for
  // Boolean arguments, for terms of other theories).
  void set_report_new_terms(bool on) { d_report_new_terms = on; }

  // After: `out` has the terms that got nodes since the last call (again
  // after a backtrack made them anew).
  void take_new_terms(std::vector<const Term_*>& out);

  // ---- Asserting -----------------------------------------------------------

  // Asserts a literal over a told (or new) atom: an equality merges or
  // separates its sides, any Boolean atom joins the class of `true` or of
  // `false`. The negation of a `<=` atom separates its sides too.
  // Returns: whether the solver is consistent.
  bool push_constraint(TheoryLit lit);

  // Asserts a = b (or a != b) with `reason` as its label in explanations.
  // Requires: a and b of compatible non-Boolean types.
  // Returns: whether the solver is consistent.
  bool assert_equal(const Term_* a, const Term_* b, TheoryLit reason);
  bool assert_distinct(const Term_* a, const Term_* b, TheoryLit reason);

  // Returns: false once a constraint failed, until backtracking.
  bool check() const { return d_consistent; }

  // ---- Checkpoints ---------------------------------------------------------

  void push_checkpoint();

  // Undoes the last n checkpoints (fewer if there are fewer).
  void backtrack(int n);

  int num_checkpoints() const { return d_undo.num_levels(); }

  void set_backtrack_keep_told(bool on) { d_keep_told = on; }

  // ---- Deductions and explanations -----------------------------------------

  // Returns: false when no deduction is pending; else the next implied
  //   literal of a told atom (it may already be known to the caller).
  bool get_next_implied(TheoryLit& lit);

  // Requires: check() is false.
  // After: `out` holds asserted literals that are jointly inconsistent.
  void get_conflict(std::vector<TheoryLit>& out);

  // Requires: `lit` came from get_next_implied since the last backtrack
  //   below the checkpoint at which it came.
  // After: `out` holds asserted literals, all asserted before `lit` was
  //   deduced, that imply it.
  void get_implied_reason(TheoryLit lit, std::vector<TheoryLit>& out);

  // Requires: a and b are in the same class.
  // After: `out` holds asserted literals that imply a = b.
  void get_congruence_reason(const Term_* a,
                             const Term_* b,
                             std::vector<TheoryLit>& out);

  // With recording on, explanations list the congruences they use.
  void set_record_congruences(bool on) { d_record_congruences = on; }

  // The congruences used by the last conflict or explanation.
  const std::vector<UsedCongruence>& used_congruences() const {
    return d_used_congruences;
  }

  // With recording on, explanations list the pairs of asserted equalities
  // that they chain by transitivity.
  void set_record_chains(bool on) { d_record_chains = on; }

  const std::vector<UsedChain>& used_chains() const { return d_used_chains; }

  // ---- Classes -------------------------------------------------------------

  // Returns: the term that stands for the class of `t`, or null when `t`
  //   has no node. A value (number, enumeration value, true, false) always
  //   stands for its class.
  const Term_* get_representative(const Term_* t) const;

  bool are_equal(const Term_* a, const Term_* b) const;

  // Returns: whether a and b are known to differ (asserted disequality
  //   between their classes, or two different values).
  bool are_disequal(const Term_* a, const Term_* b) const;

  // After: `out` holds the terms of the class of `t` (none without node).
  void get_congruence_class(const Term_* t,
                            std::vector<const Term_*>& out) const;

  // After: `out` holds one term per class of term nodes.
  void get_all_representatives(std::vector<const Term_*>& out) const;

  const Term_* true_term() const { return d_true_term; }

  const Term_* false_term() const { return d_false_term; }

  // ---- Misc ----------------------------------------------------------------

  // After: empty, as after construction.
  void reset();

  const Stats& stats() const { return d_stats; }

  // The classes and the undo trail, for debugging.
  std::string debug_dump() const;

 private:
  // What an implied literal rests on: a1 = b1, a2 = b2 (when a2 is set) and
  // `extra` (when defined).
  struct Reason {
    Reason() = default;

    Reason(EqNode* a, EqNode* b) : a1(a), b1(b) {}

    Reason(EqNode* x1, EqNode* y1, EqNode* x2, EqNode* y2, TheoryLit lit)
        : a1(x1), b1(y1), a2(x2), b2(y2), extra(lit) {}

    EqNode* a1 = nullptr;
    EqNode* b1 = nullptr;
    EqNode* a2 = nullptr;
    EqNode* b2 = nullptr;
    TheoryLit extra;
  };

  struct Implied {
    TheoryLit lit;
    Reason reason;
  };

  enum class UndoKind : uint8_t {
    Start,      // a: atom term; marks where its nodes begin
    Conflict,   // the solver became inconsistent
    Symbol,     // a: symbol node
    Cons,       // a: cons node
    Tell,       // a: atom node, b/c: watches, flag: told before
    Merge,      // a: winner, b: loser, c: list walked, flag: ids swapped
    Canon,      // a: cons node whose canonical cons was set
    Neq,        // a, b: the two disequality cells
    Proof,      // a, b: the two ends of a forest edge
    Implied,    // a: atom node whose reason was stored
    DropWatch,  // a: watch taken out, b: its predecessor, c: the class root,
                // flag: it was the head of the list
    Fact,       // an asserted fact begins; undoing it counts it lost
  };

  struct UndoCell {
    UndoKind kind;
    bool flag;
    void* a;
    void* b;
    void* c;
  };

  struct KeyHash {
    size_t operator()(uint64_t k) const {
      k ^= k >> 31;
      k *= 0x9E3779B97F4A7C15ull;
      return static_cast<size_t>(k ^ (k >> 29));
    }
  };

  using NodeTable = hsh::HashMap<uint64_t, EqNode*, KeyHash>;

  // ---- Nodes (eufsolver.cpp) -----------------------------------------------
  EqNode* node_or_null(const Term_* t) const {
    size_t i = t->get_id();
    return i < d_term_nodes.size() ? d_term_nodes[i] : nullptr;
  }

  EqNode* node_of(const Term_* t);
  EqNode* build_term_node(const Term_* t);
  EqNode* symbol_node(const Term_* t);
  bool is_opaque(const Term_* t) const;
  EqNode* cons(EqNode* left, EqNode* right, const Term_* term);
  EqNode* new_node(EqNode::NodeKind kind, const Term_* term);
  bool is_value_term(const Term_* t) const;
  void add_use(EqNode* cls, EqNode* user);
  void remove_use(EqNode* cls, EqNode* user);

  static uint64_t pair_key(uint32_t a, uint32_t b) {
    return (static_cast<uint64_t>(a) << 32) | b;
  }

  uint64_t signature(const EqNode* n) const {
    return pair_key(n->car->root->id, n->cdr->root->id);
  }

  void erase_signature_of(EqNode* n);

  // ---- Asserting (eufsolver_merge.cpp) -------------------------------------
  void assert_eq(EqNode* a, EqNode* b, TheoryLit hyp);
  void assert_neq(EqNode* a, EqNode* b, TheoryLit hyp);
  void become_inconsistent();
  bool unmergeable(EqNode* x, EqNode* y);
  void link_forest(EqNode* x, EqNode* y, TheoryLit label);
  void reroot_forest(EqNode* n);
  void merge(EqNode* x, EqNode* y);
  void rehash_uses(EqNode* s, bool insert_only);
  void deduce_on_merge(EqNode* winner, EqNode* loser);
  void deduce_class_value(EqNode* cls, EqNode* value);
  void deduce_separated(EqNode* cls, EqNode* sep);

  // An equality atom with a value has nothing more to deduce from its
  // watches until that value is undone. Deep in the search most atoms
  // have one, and the walks over long watch lists spent most of their time
  // on such watches: so a walk takes them out of the list as it meets them,
  // and backtracking puts them back (cells are undone in reverse order, so
  // the list is exactly as the walk left it when the cell is undone).
  bool is_dead_watch(const EqWatch* x) const {
    return x->atom_node->root == d_true_node
           || x->atom_node->root == d_false_node;
  }

  void drop_watch(EqNode* root, EqWatch* prev, EqWatch* x);
  void undo_drop_watch(const UndoCell& c);

  // Calls visit(x) on each watch of the root `r` whose atom has no value,
  // dropping the others.
  template <class Visit>
  void walk_live_watches(EqNode* r, Visit visit) {
    EqWatch* head = r->watches;
    if (head == nullptr) {
      return;
    }
    EqWatch* prev = head;
    EqWatch* x = head->next;
    for (;;) {
      EqWatch* next = x->next;
      const bool last = x == head;
      if (is_dead_watch(x)) {
        drop_watch(r, prev, x);
      } else {
        visit(x);
        prev = x;
      }
      if (last) {
        return;
      }
      x = next;
    }
  }

  // An atom in the class of `true` or `false` was asserted (or is being
  // asserted): deducing it is no news.
  bool has_value(const EqNode* atom_node) const {
    return atom_node == d_asserting || atom_node->root == d_true_node
           || atom_node->root == d_false_node;
  }

  void deduce_on_neq(EqNode* a, EqNode* b, TheoryLit hyp);
  void deduce_on_tell(EqNode* atom_node);
  DiseqCell* find_diseq(EqNode* ra, EqNode* rb) const;
  void add_watch(EqWatch* w);
  void queue_implied(EqNode* atom_node, bool value, const Reason& why);

  // ---- Explaining (eufsolver_explain.cpp) ----------------------------------
  void begin_explanation();
  void explain(EqNode* a, EqNode* b);
  void run_explanation();
  EqNode* forest_ancestor(EqNode* a, EqNode* b);
  void explain_path(EqNode* from, EqNode* to, uint32_t depth);
  void collect_path(EqNode* a, EqNode* b, EqNode* top);
  void record_chains();
  void explain_path_with_shortcuts(uint32_t depth);
  void explain_edge(EqNode* child, uint32_t depth);
  bool is_equality_edge(const EqNode* child) const;
  void explain_congruence(EqNode* n, uint32_t depth);
  void explain_reason(const Reason& r);
  void end_explanation(std::vector<TheoryLit>& out);

  // ---- Backtracking (eufsolver_undo.cpp) -----------------------------------
  void undo(const UndoCell& c);
  void undo_cons(EqNode* n);
  void undo_tell(const UndoCell& c);
  void undo_merge(EqNode* winner, EqNode* loser, EqNode* s, bool swapped);
  void undo_neq(DiseqCell* ca, DiseqCell* cb);
  void undo_proof(EqNode* x, EqNode* y);
  void after_backtrack();
  void retell();

  void push_undo(UndoKind k, void* a, void* b = nullptr, void* c = nullptr) {
    d_undo.push(UndoCell{k, false, a, b, c});
  }

  // ---- Data ----------------------------------------------------------------
  TermManager* d_tm;
  MemoryPool d_node_pool;
  MemoryPool d_diseq_pool;
  MemoryPool d_watch_pool;
  EqNode d_nil;
  uint32_t d_next_id = 1;

  const Term_* d_true_term;
  const Term_* d_false_term;
  EqNode* d_true_node = nullptr;
  EqNode* d_false_node = nullptr;

  std::vector<EqNode*> d_term_nodes;  // by term id
  hsh::HashMap<int64_t, EqNode*> d_symbol_nodes;
  NodeTable d_cons_map;    // by orig ids of the children
  NodeTable d_signatures;  // by ids of the children's roots

  std::vector<std::pair<EqNode*, EqNode*>> d_pending;
  UndoStack<UndoCell> d_undo;
  bool d_consistent = true;
  bool d_keep_told = true;
  std::vector<const Term_*> d_retell;

  // Deductions: the queue and where the taken ones rest.
  std::vector<Implied> d_implied;
  size_t d_implied_head = 0;
  // Reasons of the deductions the search took, in the order taken: undo
  // pops them in reverse, and each implied node knows its entry.
  std::vector<Reason> d_implied_reasons;
  // The atom node being asserted, whose own value is not news.
  const EqNode* d_asserting = nullptr;

  // The conflict: a = b must not hold, and `extra` when defined.
  Reason d_conflict;

  // Explanation scratch, reused.
  struct Work {
    EqNode* a;
    EqNode* b;
    uint32_t depth;
  };

  std::vector<Work> d_work;
  std::vector<TheoryLit> d_expl;
  uint32_t d_expl_stamp = 0;
  uint32_t d_mark_stamp = 0;
  uint32_t d_diseq_stamp = 0;
  bool d_record_congruences = false;
  std::vector<UsedCongruence> d_used_congruences;
  bool d_record_chains = false;
  std::vector<UsedChain> d_used_chains;
  // The path being explained, a .. top .. b, and the number of its nodes
  // on a's side below top.
  std::vector<EqNode*> d_path;
  size_t d_path_up = 0;
  bool d_shortcuts = false;

  std::vector<const Term_*> d_build_stack;
  bool d_report_new_terms = false;
  std::vector<const Term_*> d_new_terms;
  uint64_t d_facts_undone = 0;
  Stats d_stats;
};

}  // namespace euf
}  // namespace zenlo

#endif
