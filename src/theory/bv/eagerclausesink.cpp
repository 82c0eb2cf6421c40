#include "theory/bv/eagerclausesink.h"

#include "dpll/dpllsolver.h"

namespace zenlo {
namespace bv {
namespace eager {

BvLit EagerClauseSink::new_atom() {
  return from_var(d_dpll->new_var());
}

bool EagerClauseSink::get_proxy(const Term_* term, BvLit* out) {
  dpll::Var v = d_dpll->proxy_for_term(term);
  if (v == dpll::var_Undef) {
    return false;
  }
  *out = from_var(v);
  return true;
}

void EagerClauseSink::add_clause() {
  d_lits.clear();
  for (BvLit l : d_clause) {
    if (l == l_true) {
      d_clause.clear();
      return;
    }
    if (l != l_false) {
      d_lits.push_back(to_dpll(l));
    }
  }
  d_clause.clear();
  ++d_clauses;
  d_dpll->add_clause_inplace(d_lits);
}

bool EagerClauseSink::value(BvLit l) const {
  if (is_const(l)) {
    return l == l_true;
  }
  dpll::Var x = var_of(l);
  lbool a = d_dpll->value(x);
  bool v = (a != l_Undef ? a : d_dpll->get_model_value(x)) == l_True;
  return l > 0 ? v : !v;
}

}  // namespace eager
}  // namespace bv
}  // namespace zenlo
