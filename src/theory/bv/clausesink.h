// The bit-blaster's output: where the clauses of a circuit go. A sink
// stands for one SAT engine (the main search, or a bit-vector solver's
// inner engine) and knows how to make its variables; the clausifier knows
// nothing of engines and speaks only BvLit.
//
// A BvLit is a signed literal: 0 undefined, 1 the constant true, -1 the
// constant false, and for a variable v (v >= 2) v positive and -v
// negative. Negation is arithmetic negation, so the constants need no
// special case in a circuit: -l_true is l_false.
#ifndef ZENLO_THEORY_BV_CLAUSESINK_H
#define ZENLO_THEORY_BV_CLAUSESINK_H

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "dpll/dplltypes.h"

namespace zenlo {

class Logger;
class Term_;
class TerminationTest;

namespace bv {

using BvLit = int32_t;
using BvLitList = std::vector<BvLit>;

constexpr BvLit l_undef = 0;
constexpr BvLit l_true = 1;
constexpr BvLit l_false = -1;

inline bool is_const(BvLit l) {
  return l == l_true || l == l_false;
}

inline BvLit const_lit(bool value) {
  return value ? l_true : l_false;
}

// The engine variable of a BvLit: the first variable is BvLit 2.
inline dpll::Var var_of(BvLit l) {
  return std::abs(l) - 2;
}

inline dpll::Lit to_dpll(BvLit l) {
  return dpll::mk_lit(var_of(l), l < 0);
}

inline BvLit from_var(dpll::Var v) {
  return static_cast<BvLit>(v) + 2;
}

class ClauseSink {
 public:
  virtual ~ClauseSink();

  virtual void set_logger(Logger*) {}

  virtual void set_termination_test(TerminationTest*) {}

  // Returns: a fresh variable.
  virtual BvLit new_atom() = 0;

  // Returns: true with `out` set when the sink already has a literal that
  //   must stand for the Boolean term `term` (the search's own name of an
  //   atom); the circuit then ends in that literal.
  virtual bool get_proxy(const Term_* term, BvLit* out) = 0;

  // Requires: clause() holds the clause; constants may occur in it.
  // After: the clause is in the engine and clause() is consumed.
  virtual void add_clause() = 0;

  BvLitList& clause() { return d_clause; }

  void push(BvLit a, BvLit b) {
    d_clause.assign({a, b});
    add_clause();
  }

  void push(BvLit a, BvLit b, BvLit c) {
    d_clause.assign({a, b, c});
    add_clause();
  }

  void push(BvLit a, BvLit b, BvLit c, BvLit d) {
    d_clause.assign({a, b, c, d});
    add_clause();
  }

  void push_unit(BvLit a) {
    d_clause.assign({a});
    add_clause();
  }

 protected:
  BvLitList d_clause;
};

}  // namespace bv
}  // namespace zenlo

#endif
