// Definitions of Boolean arguments. The congruence closure needs the truth
// value of every Boolean argument of a function, which the search gives
// for atoms it has named. A compound argument such as (and p q) that no
// formula names has no variable and no clauses behind it; here it gets its
// Tseitin definition, as permanent lemmas, and with it a variable whose
// value then follows the formula.
#include <utility>

#include "terms/termmanager.h"
#include "theory/euf/eufsolverinterface.h"

namespace zenlo {

namespace {

bool is_compound(const TermManager& tm, const Term_* t) {
  switch (tm.get_tag(t->get_symbol())) {
    case SymbolTag::NOT:
    case SymbolTag::AND:
    case SymbolTag::OR:
    case SymbolTag::IFF: return true;
    default: return false;
  }
}

}  // namespace

void EufSolverInterface::define_bool_term(const Term_* term) {
  if (!d_defined.insert(term).second) {
    return;
  }
  // Subformulas are defined along with it. They are not remembered across
  // calls: a backtrack point that takes the clauses away takes their
  // variables too, and a later definition must not skip them.
  TermSet seen;
  std::vector<const Term_*> stack{term};
  while (!stack.empty()) {
    const Term_* t = stack.back();
    stack.pop_back();
    if (!is_compound(*d_tm, t) || !seen.insert(t).second) {
      continue;
    }
    add_definition(t);
    for (const Term_* c : *t) {
      stack.push_back(c);
    }
  }
}

TheoryLit EufSolverInterface::bool_lit(const Term_* t) const {
  return TheoryLit(t);
}

// The Tseitin clauses of one connective, with p standing for `t`:
//   not x:   (-p -x) (p x)
//   and xs:  (-p xi) for each i, (p -x1 ... -xn)
//   or xs:   (p -xi) for each i, (-p x1 ... xn)
//   iff x y: (-p -x y) (-p x -y) (p x y) (p -x -y)
void EufSolverInterface::add_definition(const Term_* t) {
  ++d_counters.lemma(LemmaKind::Definition);
  TheoryLit p = bool_lit(t);
  std::vector<TheoryLit> xs;
  for (const Term_* c : *t) {
    xs.push_back(bool_lit(c));
  }
  switch (d_tm->get_tag(t->get_symbol())) {
    case SymbolTag::NOT:
      add_def_clause({~p, ~xs[0]});
      add_def_clause({p, xs[0]});
      break;
    case SymbolTag::AND:
    case SymbolTag::OR: {
      // or is and with every literal flipped.
      bool is_and = d_tm->get_tag(t->get_symbol()) == SymbolTag::AND;
      TheoryLit q = is_and ? p : ~p;
      std::vector<TheoryLit> big{q};
      for (TheoryLit x : xs) {
        TheoryLit y = is_and ? x : ~x;
        add_def_clause({~q, y});
        big.push_back(~y);
      }
      add_def_clause(std::move(big));
      break;
    }
    case SymbolTag::IFF:
      add_def_clause({~p, ~xs[0], xs[1]});
      add_def_clause({~p, xs[0], ~xs[1]});
      add_def_clause({p, xs[0], xs[1]});
      add_def_clause({p, ~xs[0], ~xs[1]});
      break;
    default: break;
  }
}

// The constants `true` and `false` are not atoms: a clause with a true
// literal is dropped, a false literal is left out.
void EufSolverInterface::add_def_clause(std::vector<TheoryLit> clause) {
  size_t j = 0;
  for (TheoryLit l : clause) {
    const Term_* a = l.atom();
    bool is_const = a == d_tm->make_true() || a == d_tm->make_false();
    if (!is_const) {
      clause[j++] = l;
    } else if ((a == d_tm->make_true()) != l.negated()) {
      return;
    }
  }
  clause.resize(j);
  d_def_lemmas.push_back(std::move(clause));
}

}  // namespace zenlo
