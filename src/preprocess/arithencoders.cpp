#include "preprocess/arithencoders.h"

#include <string>
#include <utility>
#include <vector>

#include "terms/termmanager.h"

namespace zenlo {

namespace {

const Term_* num(TermManager& tm, long v) {
  return tm.make_number(v);
}

// a < b as the negation of b <= a: the only order the store keeps.
const Term_* less(TermManager& tm, const Term_* a, const Term_* b) {
  return tm.make_not(tm.make_leq(b, a));
}

const Term_* implies(TermManager& tm, const Term_* a, const Term_* b) {
  return tm.make_or(tm.make_not(a), b);
}

const Term_* minus(TermManager& tm, const Term_* a, const Term_* b) {
  return tm.make_plus(a, tm.make_times(num(tm, -1), b));
}

// The leaves of a case split over numbers, each with the conjunction of
// the conditions that lead to it; false when a leaf is no number.
bool number_leaves(TermManager& tm,
                   const Term_* t,
                   std::vector<std::pair<const Term_*, const Term_*>>& out) {
  std::vector<std::pair<const Term_*, const Term_*>> stack{{t, tm.make_true()}};
  while (!stack.empty()) {
    auto [u, cond] = stack.back();
    stack.pop_back();
    if (tm.get_tag(u->get_symbol()) == SymbolTag::ITE) {
      const Term_* c = u->get_child(0);
      stack.emplace_back(u->get_child(2), tm.make_and(cond, tm.make_not(c)));
      stack.emplace_back(u->get_child(1), tm.make_and(cond, c));
    } else if (tm.is_number_term(u)) {
      out.emplace_back(cond, u);
    } else {
      return false;
    }
  }
  return true;
}

// The name of an operator's symbol as SMT-LIB writes it.
std::string op_name(const Term_* t) {
  std::string n = t->get_symbol()->get_name();
  return !n.empty() && n[0] == '`' ? n.substr(1) : n;
}

}  // namespace

bool FloorEncoder::operator()(TermManager& tm,
                              const Term_* t,
                              const Term_*& replacement,
                              TermList& side,
                              TermList&) {
  const Term_* a = t->get_child(0);
  side.push_back(tm.make_leq(t, a));
  side.push_back(less(tm, a, tm.make_plus(t, num(tm, 1))));
  replacement = t;
  return true;
}

bool IntModCongrEncoder::operator()(TermManager& tm,
                                    const Term_* t,
                                    const Term_*& replacement,
                                    TermList& side,
                                    TermList& added) {
  QNumber m;
  if (!tm.is_int_mod_congr(t->get_symbol(), &m)) {
    return false;
  }
  std::string id = std::to_string(t->get_id());
  const Type* i = tm.get_integer_type();
  const Term_* x = fresh(tm, "int_mod_x_" + id, i, added);
  const Term_* y = fresh(tm, "int_mod_y_" + id, i, added);
  // A Boolean of the search's own takes the atom's place: no solver needs
  // to know congruences, only the linear facts below.
  const Term_* k = fresh(tm, "int_mod_k_" + id, tm.get_bool_type(), added);
  const Term_* diff = minus(tm, t->get_child(0), t->get_child(1));
  const Term_* mx = tm.make_times(tm.make_number(m), x);
  side.push_back(implies(tm, k, tm.make_equal(diff, mx)));
  side.push_back(
      implies(tm, tm.make_not(k), tm.make_equal(diff, tm.make_plus(mx, y))));
  side.push_back(implies(tm, tm.make_not(k), tm.make_leq(num(tm, 1), y)));
  side.push_back(implies(
      tm, tm.make_not(k), tm.make_leq(y, tm.make_number(m - QNumber(1)))));
  replacement = k;
  return true;
}

bool TimesIteEncoder::operator()(TermManager& tm,
                                 const Term_* t,
                                 const Term_*& replacement,
                                 TermList& side,
                                 TermList& added) {
  if (t->get_arity() != 2) {
    return false;
  }
  std::vector<std::pair<const Term_*, const Term_*>> leaves;
  const Term_* other = nullptr;
  for (int i = 0; i < 2 && other == nullptr; ++i) {
    const Term_* f = t->get_child(i);
    leaves.clear();
    if (tm.get_tag(f->get_symbol()) == SymbolTag::ITE
        && number_leaves(tm, f, leaves)) {
      other = t->get_child(1 - i);
    }
  }
  if (other == nullptr) {
    return false;
  }
  const Term_* k =
      fresh(tm, ".times" + std::to_string(t->get_id()), t->get_type(), added);
  for (const auto& [cond, leaf] : leaves) {
    side.push_back(
        implies(tm, cond, tm.make_equal(k, tm.make_times(leaf, other))));
  }
  replacement = k;
  return true;
}

bool TimesZeroLineEncoder::operator()(
    TermManager& tm, const Term_* t, const Term_*&, TermList& side, TermList&) {
  if (t->get_arity() != 2 || tm.is_number_term(t->get_child(0))
      || tm.is_number_term(t->get_child(1))) {
    return false;
  }
  const Term_* a = t->get_child(0);
  const Term_* b = t->get_child(1);
  const Term_* zero = num(tm, 0);
  auto is_zero = [&](const Term_* x) { return tm.make_equal(x, zero); };
  auto is_pos = [&](const Term_* x) { return less(tm, zero, x); };
  auto is_neg = [&](const Term_* x) { return less(tm, x, zero); };
  side.push_back(tm.make_iff(is_zero(t), tm.make_or(is_zero(a), is_zero(b))));
  side.push_back(tm.make_iff(is_pos(t),
                             tm.make_or(tm.make_and(is_pos(a), is_pos(b)),
                                        tm.make_and(is_neg(a), is_neg(b)))));
  side.push_back(tm.make_iff(is_neg(t),
                             tm.make_or(tm.make_and(is_pos(a), is_neg(b)),
                                        tm.make_and(is_neg(a), is_pos(b)))));
  // The product itself stays: the lemmas only help whoever decides it.
  return false;
}

bool DivideEncoder::operator()(TermManager& tm,
                               const Term_* t,
                               const Term_*& replacement,
                               TermList& side,
                               TermList& added) {
  const Term_* a = t->get_child(0);
  const Term_* b = t->get_child(1);
  if (tm.is_number_term(b)) {
    return false;
  }
  const Term_* c =
      fresh(tm, ".div" + std::to_string(t->get_id()), t->get_type(), added);
  const Term_* b_zero = tm.make_equal(b, num(tm, 0));
  side.push_back(tm.make_or(b_zero, tm.make_equal(tm.make_times(c, b), a)));
  const Term_* by_zero = num(tm, 0);
  if (d_uf_by_zero) {
    std::string name = "uf." + op_name(t);
    const Type* ft = tm.get_function_type({a->get_type()}, t->get_type());
    const Symbol* f = tm.find_symbol(name);
    if (f == nullptr || f->get_type() != ft) {
      f = tm.make_unique_symbol(name, ft);
    }
    by_zero = tm.make_uninterpreted_function(f, {a});
  }
  side.push_back(implies(tm, b_zero, tm.make_equal(c, by_zero)));
  replacement = c;
  return true;
}

bool PowEncoder::operator()(TermManager& tm,
                            const Term_* t,
                            const Term_*& replacement,
                            TermList& side,
                            TermList& added) {
  const Term_* a = t->get_child(0);
  QNumber n;
  if (!tm.is_number(t->get_child(1)->get_symbol(), &n) || !n.is_integer()
      || n.sign() < 0 || n > QNumber(64)) {
    return false;  // other exponents stay for the nonlinear solver
  }
  long e = n.to_long();
  const Term_* c =
      fresh(tm, ".pow" + std::to_string(t->get_id()), t->get_type(), added);
  if (e == 0) {
    side.push_back(tm.make_equal(c, num(tm, 1)));
  } else {
    const Term_* p = a;
    for (long i = 1; i < e; ++i) {
      p = tm.make_times(p, a);
    }
    side.push_back(tm.make_equal(c, p));
    if (e % 2 == 0) {
      side.push_back(tm.make_leq(num(tm, 0), c));
    }
  }
  replacement = c;
  return true;
}

bool LogEncoder::operator()(TermManager& tm,
                            const Term_* t,
                            const Term_*& replacement,
                            TermList& side,
                            TermList& added) {
  const Term_* a = t->get_child(0);
  const Term_* c =
      fresh(tm, ".log" + std::to_string(t->get_id()), t->get_type(), added);
  side.push_back(less(tm, num(tm, 0), a));
  side.push_back(tm.make_equal(tm.make_exp(c), a));
  replacement = c;
  return true;
}

bool ASinEncoder::operator()(TermManager& tm,
                             const Term_* t,
                             const Term_*& replacement,
                             TermList& side,
                             TermList& added) {
  const Term_* a = t->get_child(0);
  const Term_* c =
      fresh(tm, ".asin" + std::to_string(t->get_id()), t->get_type(), added);
  const Term_* half_pi =
      tm.make_times(tm.make_number(QNumber(1, 2)), tm.make_pi());
  side.push_back(tm.make_leq(num(tm, -1), a));
  side.push_back(tm.make_leq(a, num(tm, 1)));
  side.push_back(tm.make_equal(tm.make_sin(c), a));
  side.push_back(tm.make_leq(tm.make_times(num(tm, -1), half_pi), c));
  side.push_back(tm.make_leq(c, half_pi));
  replacement = c;
  return true;
}

}  // namespace zenlo
