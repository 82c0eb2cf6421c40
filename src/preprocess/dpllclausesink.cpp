#include "preprocess/dpllclausesink.h"

#include <string>

#include "base/exception.h"
#include "dpll/dpllsolver.h"
#include "preprocess/polaritychecker.h"
#include "terms/termmanager.h"

namespace zenlo {

DpllClauseSink::DpllClauseSink(TermManager* tm,
                               DpllSolver* dpll,
                               PolarityChecker* polarity,
                               bool keep_dropped)
    : d_tm(tm),
      d_dpll(dpll),
      d_polarity(polarity),
      d_keep_dropped(keep_dropped) {}

DpllClauseSink::~DpllClauseSink() = default;

void DpllClauseSink::begin_clause(bool /*definition*/) {
  d_buffer.clear();
  ++d_clauses;
}

dpll::Clause* DpllClauseSink::end_clause() {
  if (d_buffer.size() > dpll::Clause::kMaxSize) {
    throw Exception("max clause size exceeded (size: "
                    + std::to_string(d_buffer.size())
                    + ", max: " + std::to_string(dpll::Clause::kMaxSize) + ")");
  }
  dpll::Clause* copy = nullptr;
  if (d_keep_dropped && !d_buffer.empty()) {
    // Taken before the engine sorts, shortens or guards the buffer.
    copy = dpll::Clause_new(false, -1, d_buffer, false, false);
  }
  try {
    d_dpll->add_clause_inplace(d_buffer, false, true);
  } catch (...) {
    if (copy != nullptr) {
      dpll::Clause::release(copy);
    }
    throw;
  }
  return copy;
}

dpll::Var DpllClauseSink::create_label(const Term_* t) {
  return proxy(t);
}

void DpllClauseSink::add_literal(const Term_* t, bool negated) {
  while (d_tm->get_tag(t->get_symbol()) == SymbolTag::NOT) {
    negated = !negated;
    t = t->get_child(0);
  }
  dpll::Var v = proxy(t);
  ++d_literals;
  d_buffer.push_back(dpll::mk_lit(v, negated));
}

dpll::Var DpllClauseSink::proxy(const Term_* t) {
  dpll::Var v;
  if (d_dpll->make_proxy(t, v)) {
    ++d_variables;
    if (d_phase_by_polarity && d_polarity != nullptr) {
      d_dpll->set_phase(v, (*d_polarity)(t) != 1);
    }
    switch (d_tm->get_tag(t->get_symbol())) {
      case SymbolTag::AND:
      case SymbolTag::OR:
      case SymbolTag::IFF: break;
      default:
        if (t->get_arity() > 0) {
          ++d_theory_atoms;
        }
    }
  }
  d_dpll->set_problem_var(v, true);
  return v;
}

}  // namespace zenlo
