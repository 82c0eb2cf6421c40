#include "theory/la/linearterm.h"

#include <algorithm>

#include "terms/termmanager.h"
#include "theory/la/lasolver.h"

namespace zenlo {
namespace la {

int LinearTerm::invert_op(int op) {
  switch (op) {
    case kNumeric: return kNumeric;
    case kBelow: return kAtLeast;
    case kAtMost: return kAbove;
    case kEqual: return kDifferent;
    case kDifferent: return kEqual;
    case kAtLeast: return kBelow;
    case kAbove: return kAtMost;
    default: return kEqual;
  }
}

int LinearTerm::flip_op(int op) {
  switch (op) {
    case kBelow: return kAbove;
    case kAtMost: return kAtLeast;
    case kAtLeast: return kAtMost;
    case kAbove: return kBelow;
    default: return op == kDifferent ? kDifferent : kEqual;
  }
}

bool LinearTerm::is_true() const {
  int c = QNumber::zero().compare(k);
  switch (op) {
    case kBelow: return c < 0;
    case kAtMost: return c <= 0;
    case kEqual: return c == 0;
    case kDifferent: return c != 0;
    case kAtLeast: return c >= 0;
    case kAbove: return c > 0;
    default: return false;
  }
}

bool LinearTerm::is_dl() const {
  return monomials.size() == 2
         && ((monomials[0].second == 1L && monomials[1].second == -1L)
             || (monomials[0].second == -1L && monomials[1].second == 1L));
}

LinearTermMapper::LinearTermMapper(TermManager* tm, Solver* solver)
    : d_tm(tm), d_solver(solver) {}

int LinearTermMapper::num_vars() const {
  return d_solver->num_vars();
}

int LinearTermMapper::variable(const Term_* t, bool only_lookup) {
  if (const int* v = d_var_of.get(t)) {
    return *v;
  }
  if (only_lookup) {
    return -1;
  }
  int v = d_solver->new_var();
  set_variable(v, t);
  return v;
}

void LinearTermMapper::set_variable(int var, const Term_* t) {
  if (static_cast<int>(d_term_of.size()) <= var) {
    d_term_of.resize(var + 1, nullptr);
  }
  d_term_of[var] = t;
  if (static_cast<int>(d_is_int.size()) <= var) {
    d_is_int.resize(var + 1, 0);
  }
  d_is_int[var] = 0;
  if (t != nullptr) {
    d_var_of.insert(t, var);
    if (d_tm->is_integer_type(t->get_type())) {
      d_int_vars.push_back(var);
      d_is_int[var] = 1;
    }
  }
}

void LinearTermMapper::free_vars_upto(int var) {
  while (d_solver->num_vars() > var) {
    int x = d_solver->num_vars() - 1;
    if (x < static_cast<int>(d_term_of.size())) {
      if (d_term_of[x] != nullptr) {
        d_var_of.erase(d_term_of[x]);
      }
      d_term_of.resize(x);
    }
    if (x < static_cast<int>(d_is_int.size())) {
      d_is_int.resize(x);
    }
    if (!d_int_vars.empty() && d_int_vars.back() == x) {
      d_int_vars.pop_back();
    }
    d_solver->remove_last_var();
  }
}

int LinearTermMapper::get_op(const Term_* t) const {
  switch (d_tm->get_tag(t->get_symbol())) {
    case SymbolTag::EQ: return LinearTerm::kEqual;
    case SymbolTag::LEQ: return LinearTerm::kAtMost;
    default: break;
  }
  const Type* type = t->get_type();
  if (d_tm->is_real_type(type) || d_tm->is_integer_type(type)) {
    return LinearTerm::kNumeric;
  }
  throw error("unsupported symbol: " + t->get_symbol()->get_name());
}

void LinearTermMapper::unsupported(const Term_* t) const {
  throw error("unsupported term: " + t->to_str());
}

// Monomials are kept sorted by variable; coefficients that cancel drop out.
void LinearTermMapper::add_monomial(int var, const QNumber& a, LinearSum& sum) {
  auto it =
      std::lower_bound(sum.begin(), sum.end(), var, [](const auto& m, int v) {
        return m.first < v;
      });
  if (it != sum.end() && it->first == var) {
    it->second += a;
    if (it->second.is_zero()) {
      sum.erase(it);
    }
  } else {
    sum.insert(it, {var, a});
  }
}

// An explicit stack of (term, coefficient): an atom a op b starts with
// (a, 1) and (b, -1), so that a <= b reads a - b <= 0; numbers move to the
// right-hand side.
void LinearTermMapper::make_linear(const Term_* t,
                                   bool negated,
                                   LinearTerm& out) {
  out.term = t;
  out.negated = negated;
  out.op = get_op(t);
  if (negated) {
    out.op = LinearTerm::invert_op(out.op);
  }
  out.monomials.clear();
  out.k = QNumber::zero();
  d_stack.clear();
  if (out.op == LinearTerm::kNumeric) {
    d_stack.emplace_back(t, QNumber::one());
  } else {
    d_stack.emplace_back(t->get_child(0), QNumber::one());
    d_stack.emplace_back(t->get_child(1), QNumber(-1L));
  }
  QNumber value;
  while (!d_stack.empty()) {
    auto [s, a] = std::move(d_stack.back());
    d_stack.pop_back();
    const Type* type = s->get_type();
    if (!d_tm->is_real_type(type) && !d_tm->is_integer_type(type)) {
      unsupported(s);
    }
    if (d_tm->is_number(s->get_symbol(), &value)) {
      out.k.self_addmul(value, a.neg());
      continue;
    }
    switch (d_tm->get_tag(s->get_symbol())) {
      case SymbolTag::PLUS:
        for (const Term_* c : *s) {
          d_stack.emplace_back(c, a);
        }
        break;
      case SymbolTag::TIMES: {
        // Only a product with at most one non-number factor is linear.
        const Term_* other = nullptr;
        QNumber factor = a;
        for (const Term_* c : *s) {
          if (d_tm->is_number(c->get_symbol(), &value)) {
            factor *= value;
          } else if (other == nullptr) {
            other = c;
          } else {
            unsupported(s);
          }
        }
        if (other == nullptr) {
          out.k.self_addmul(factor, QNumber(-1L));
        } else if (!factor.is_zero()) {
          d_stack.emplace_back(other, factor);
        }
        break;
      }
      case SymbolTag::DIVIDE:
        if (!d_tm->is_number(s->get_child(1)->get_symbol(), &value)
            || value.is_zero()) {
          unsupported(s);
        }
        d_stack.emplace_back(s->get_child(0), a / value);
        break;
      // (floor a) is an integer of its own: the encoder ties it to a by
      // k <= a < k + 1, so the relaxation never needs to look inside.
      case SymbolTag::FLOOR:
      case SymbolTag::UNKNOWN:
      case SymbolTag::ARRAY_READ:
      case SymbolTag::ITE:
        add_monomial(variable(s, false), a, out.monomials);
        break;
      default: unsupported(s);
    }
  }
  tighten_integer(out);
}

// Integer variables under a relaxation only ever meet bounds that are
// already integral over their own coefficients: rounding here makes the
// simplex see x <= 2 for x < 3, lets atoms that differ only in rounding
// share one bound, and refutes 2x + 2y = 1 before any search.
void LinearTermMapper::tighten_integer(LinearTerm& lin) const {
  if (lin.op == LinearTerm::kNumeric || lin.monomials.empty()) {
    return;
  }
  QNumber lcm = QNumber::one();
  for (const auto& [x, a] : lin.monomials) {
    if (!is_int_var(x)) {
      return;
    }
    if (!a.is_integer()) {
      QNumber den = a.get_den();
      lcm = lcm * den / gcd(lcm, den);
    }
  }
  QNumber g = QNumber::zero();
  for (const auto& m : lin.monomials) {
    g = gcd(g, m.second * lcm);
  }
  // Both factors are positive: the relation keeps its direction.
  QNumber factor = lcm / g;
  if (factor != 1L) {
    for (auto& m : lin.monomials) {
      m.second *= factor;
    }
    lin.k *= factor;
  }
  QNumber& k = lin.k;
  switch (lin.op) {
    case LinearTerm::kBelow:  // sum < k  is  sum <= ceil(k) - 1
      k = k.ceil() - QNumber::one();
      lin.op = LinearTerm::kAtMost;
      break;
    case LinearTerm::kAtMost: k = k.floor(); break;
    case LinearTerm::kAbove:  // sum > k  is  sum >= floor(k) + 1
      k = k.floor() + QNumber::one();
      lin.op = LinearTerm::kAtLeast;
      break;
    case LinearTerm::kAtLeast: k = k.ceil(); break;
    case LinearTerm::kEqual:
    case LinearTerm::kDifferent:
      if (!k.is_integer()) {
        lin.monomials.clear();
        k = QNumber::one();
      }
      break;
    default: break;
  }
}

}  // namespace la
}  // namespace zenlo
