// Checks EUF facts by a closure of its own over the fact's literals only:
// a plain union-find over the terms that occur in them, congruence by
// signatures recomputed until nothing changes, equalities and the Boolean
// connectives evaluated by unit rules. It is slow and simple on purpose; it
// shares no code with euf::Solver, so a fault there cannot hide here.
//
// Sound for any symbols (everything it does not know is uninterpreted); a
// fact that needs another theory's meaning is that theory's to check.
#ifndef ZENLO_THEORY_CHECK_EUFCLOSURECHECKER_H
#define ZENLO_THEORY_CHECK_EUFCLOSURECHECKER_H

#include <string>
#include <unordered_map>
#include <vector>

#include "theory/check/termclosure.h"
#include "theory/check/theoryfact.h"

namespace zenlo {

class TermManager;
class Symbol;
class Term_;

class EufClosureChecker : public TheoryFactChecker, TermClosure {
 public:
  explicit EufClosureChecker(const TermManager& tm)
      : TermClosure(tm), d_tm(tm) {}

  // Returns: empty when true and false, or two different numerals, end up
  //   in one class; otherwise why the literals stay consistent.
  std::string check(const TheoryFact& fact) override;

 private:
  // Merges, and notes that the closure moved.
  void join(int a, int b) { d_changed |= merge(a, b); }

  int truth(int n);  // 1 true, 0 false, -1 unknown

  void set_truth(int n, bool value) { join(n, value ? kTrue : kFalse); }

  void close();
  void rule(int n);
  void rule_eq(int n, int a, int b);
  void rule_and_or(int n, bool is_and);
  bool contradiction();
  bool domain_exhausted(const std::unordered_map<int, const Symbol*>& value);

  const TermManager& d_tm;
  bool d_changed = false;
};

}  // namespace zenlo

#endif
