// The union-find that the independent fact checkers build their closures
// on: a node per term of a fact (children before parents), true and false
// as nodes 0 and 1, and congruence by signatures recomputed from scratch.
// Slow and simple on purpose, and shared with no solver, so that a fault
// in a solver's own closure cannot hide in its checker.
#ifndef ZENLO_THEORY_CHECK_TERMCLOSURE_H
#define ZENLO_THEORY_CHECK_TERMCLOSURE_H

#include <unordered_map>
#include <vector>

namespace zenlo {

class TermManager;
class Term_;

class TermClosure {
 protected:
  static constexpr int kTrue = 0;
  static constexpr int kFalse = 1;

  explicit TermClosure(const TermManager& tm) : d_nodes_tm(tm) {}

  // After: only the nodes of true and false.
  void clear_nodes();
  // The node of `t`, made when new; true and false are nodes 0 and 1.
  int node(const Term_* t);
  // Nodes for `t` and all its subterms, children first.
  void add_subterms(const Term_* t);
  int find(int n);
  // The smaller node stays the root, so true and false stay roots.
  // Returns: whether two classes became one.
  bool merge(int a, int b);
  // Terms with one symbol and arguments in the same classes become one
  // class, in one pass over the nodes. Returns: whether any merged.
  bool congruence();

  std::vector<const Term_*> d_terms;
  std::unordered_map<const Term_*, int> d_index;
  std::vector<int> d_parent;

 private:
  const TermManager& d_nodes_tm;
};

}  // namespace zenlo

#endif
