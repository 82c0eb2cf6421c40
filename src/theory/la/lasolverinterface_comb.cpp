// LaSolverInterface: models, and the side of theory combination. EUF's
// classes are compared with the concrete model (the delta chosen), since
// that is what the values of shared terms will be.
#include "terms/termmanager.h"
#include "theory/la/lasolverinterface.h"

namespace zenlo {

bool LaSolverInterface::combining() const {
  return d_config->euf.enabled && d_config->interface_eq_policy != 3;
}

void LaSolverInterface::build_model() {
  if (d_model_ok) {
    d_solver.build_model();
  }
}

void LaSolverInterface::build_abstract_model() {
  build_model();
}

bool LaSolverInterface::model_value(const Term_* t, QNumber& out) {
  if (d_tm->is_number(t->get_symbol(), &out)) {
    return true;
  }
  int v = d_mapper.variable(t, true);
  if (v >= 0) {
    out = d_solver.get_value(v);
    return true;
  }
  QNumber k;
  switch (d_tm->get_tag(t->get_symbol())) {
    case SymbolTag::PLUS:
      out = QNumber::zero();
      for (const Term_* c : *t) {
        if (!model_value(c, k)) {
          return false;
        }
        out += k;
      }
      return true;
    case SymbolTag::TIMES:
      out = QNumber::one();
      for (const Term_* c : *t) {
        if (!model_value(c, k)) {
          return false;
        }
        out *= k;
      }
      return true;
    case SymbolTag::DIVIDE:
      if (t->get_arity() != 2 || !model_value(t->get_child(0), out)
          || !d_tm->is_number(t->get_child(1)->get_symbol(), &k)
          || k.is_zero()) {
        return false;
      }
      out /= k;
      return true;
    default: return false;
  }
}

const Term_* LaSolverInterface::get_model_value(const Term_* term) {
  if (!d_model_ok) {
    return nullptr;
  }
  if (!d_tm->is_arithmetic_type(term->get_type())) {
    return nullptr;
  }
  QNumber value;
  if (!model_value(term, value)) {
    return nullptr;  // evaluated from its arguments' values
  }
  return d_tm->make_number(value);
}

lbool LaSolverInterface::equal_in_model(const Term_* a, const Term_* b) {
  QNumber x, y;
  if (!d_model_ok || !model_value(a, x) || !model_value(b, y)) {
    return l_Undef;
  }
  return x == y ? l_True : l_False;
}

// A shared term gets variables for its leaves, so that its value is known
// even where no atom of this solver constrains them. Those variables stay
// until the atoms told before them go; unconstrained, they cost nothing.
void LaSolverInterface::notify_interface_term(const Term_* term) {
  if (!d_tm->is_arithmetic_type(term->get_type())) {
    return;
  }
  if (d_num_iface++ == 0) {
    // Splits that waited for a negative occurrence cannot wait any longer.
    for (AtomInfo& info : d_atoms) {
      if (info.split_pending) {
        queue_split(info);
      }
    }
  }
  try {
    la::LinearTerm lin;
    d_mapper.make_linear(term, false, lin);
  } catch (const la::LinearTermMapper::error& e) {
    if (d_iface_refused == nullptr) {
      d_iface_refused = term;
      d_iface_refusal = e.message();
    }
  }
}

void LaSolverInterface::retract_interface_term(const Term_* term) {
  if (!d_tm->is_arithmetic_type(term->get_type())) {
    return;
  }
  --d_num_iface;
  if (d_iface_refused == term) {
    d_iface_refused = nullptr;
    d_iface_refusal.clear();
  }
}

}  // namespace zenlo
