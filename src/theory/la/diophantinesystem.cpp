#include "theory/la/diophantinesystem.h"

#include <algorithm>
#include <sstream>

#include "base/terminationtest.h"

namespace zenlo {
namespace laz {

// ---------------------------------------------------------------------------
// Equations
// ---------------------------------------------------------------------------

void Equation::substitute_var(int var, const Equation& definition) {
  QNumber k = coeff(var);
  if (k.is_zero()) {
    return;
  }
  add(var, -k);
  add_multiple(definition, k);
}

bool Equation::infeasible() const {
  if (!d_const.is_integer()) {
    return true;
  }
  QNumber g(0);
  for (const Monomial& m : d_monos) {
    if (m.first > 0) {
      g = gcd(g, m.second);
    }
  }
  if (g.is_zero()) {
    return !d_const.is_zero();
  }
  return !g.divides(d_const);
}

void Equation::normalize() {
  QNumber g(0);
  for (const Monomial& m : d_monos) {
    if (m.first > 0) {
      g = gcd(g, m.second);
    }
  }
  if (g > QNumber(1) && d_const.is_integer() && g.divides(d_const)) {
    scale(QNumber(1) / g);
  }
}

// ---------------------------------------------------------------------------
// The system
// ---------------------------------------------------------------------------

namespace {

// Smallest coefficient first; ties by variable, then by equation, so that
// runs are repeatable.
bool heap_after(
    const QNumber& ca, int va, int ea, const QNumber& cb, int vb, int eb) {
  if (ca != cb) {
    return ca > cb;
  }
  if (va != vb) {
    return va > vb;
  }
  return ea > eb;
}

QNumber lcm(const QNumber& a, const QNumber& b) {
  return a * b / gcd(a, b);
}

}  // namespace

DiophantineSystem::DiophantineSystem(FreshVarProvider* vars, bool incremental)
    : d_vars(vars), d_incremental(incremental) {}

void DiophantineSystem::set_eq(int id, Equation eq) {
  auto it = d_working.find(id);
  if (d_incremental) {
    d_undo.push_back(Undo{Undo::SetEq,
                          id,
                          it == d_working.end()
                              ? std::nullopt
                              : std::optional<Equation>(it->second)});
  }
  d_working[id] = std::move(eq);
}

void DiophantineSystem::erase_eq(int id) {
  auto it = d_working.find(id);
  if (it == d_working.end()) {
    return;
  }
  if (d_incremental) {
    d_undo.push_back(Undo{Undo::EraseEq, id, it->second});
  }
  d_working.erase(it);
}

void DiophantineSystem::add_equation(int id, const la::Equation& given) {
  if (id <= 0 || has_equation(id)) {
    throw error("bad or repeated equation id: " + std::to_string(id));
  }
  la::Equation substituted;
  apply_substitution(given, substituted, nullptr, nullptr);
  Equation eq(substituted);
  eq.add(-id, QNumber(1));
  // Integer coefficients from here on; the tag scales along, so that the
  // multipliers of a refutation refer to the equation as given.
  QNumber l(1);
  for (const auto& [var, c] : eq.monomials()) {
    if (var > 0) {
      l = lcm(l, c.get_den());
    }
  }
  l = lcm(l, eq.constant().get_den());
  eq.scale(l);
  eq.normalize();
  d_stack.emplace_back(id, d_undo.size());
  set_eq(id, std::move(eq));
  d_last_check_ok = false;
}

bool DiophantineSystem::has_equation(int id) const {
  for (const auto& [i, pos] : d_stack) {
    if (i == id) {
      return true;
    }
  }
  return false;
}

int DiophantineSystem::get_last_added_equation() const {
  return d_stack.empty() ? 0 : d_stack.back().first;
}

void DiophantineSystem::pop_equation() {
  if (!d_incremental || d_stack.empty()) {
    throw error("no equation to pop");
  }
  size_t pos = d_stack.back().second;
  d_stack.pop_back();
  while (d_undo.size() > pos) {
    Undo u = std::move(d_undo.back());
    d_undo.pop_back();
    switch (u.kind) {
      case Undo::SetEq:
        if (u.old) {
          d_working[u.key] = std::move(*u.old);
        } else {
          d_working.erase(u.key);
        }
        break;
      case Undo::EraseEq: d_working[u.key] = std::move(*u.old); break;
      case Undo::Solved:
        d_subst.erase(u.key);
        d_solved_order.pop_back();
        break;
      case Undo::Fresh:
        d_artificial.erase(u.key);
        d_vars->free_var(u.key);
        break;
    }
  }
  d_infeasible.reset();
  d_heap.clear();
  d_model.clear();
  d_last_check_ok = false;
}

void DiophantineSystem::reset() {
  for (const auto& [var, eq] : d_artificial) {
    d_vars->free_var(var);
  }
  d_stack.clear();
  d_working.clear();
  d_subst.clear();
  d_solved_order.clear();
  d_artificial.clear();
  d_heap.clear();
  d_undo.clear();
  d_infeasible.reset();
  d_model.clear();
  d_last_check_ok = true;
}

void DiophantineSystem::push_var(const Equation& eq, int id) {
  const la::Equation::Monomial* best = nullptr;
  for (const auto& m : eq.monomials()) {
    if (m.first > 0 && (best == nullptr || abs(m.second) < abs(best->second))) {
      best = &m;
    }
  }
  if (best == nullptr) {
    return;
  }
  d_heap.push_back(HeapElem{abs(best->second), best->first, id});
  std::push_heap(
      d_heap.begin(), d_heap.end(), [](const HeapElem& a, const HeapElem& b) {
        return heap_after(a.abs_coeff, a.var, a.eq, b.abs_coeff, b.var, b.eq);
      });
}

void DiophantineSystem::init_var_queue() {
  d_heap.clear();
  for (const auto& [id, eq] : d_working) {
    push_var(eq, id);
  }
}

bool DiophantineSystem::check() {
  if (d_last_check_ok) {
    return true;
  }
  if (d_infeasible) {
    return false;
  }
  d_last_check_ok = do_check();
  return d_last_check_ok;
}

bool DiophantineSystem::do_check() {
  for (const auto& [id, eq] : d_working) {
    if (eq.infeasible()) {
      d_infeasible = eq;
      return false;
    }
  }
  init_var_queue();
  auto after = [](const HeapElem& a, const HeapElem& b) {
    return heap_after(a.abs_coeff, a.var, a.eq, b.abs_coeff, b.var, b.eq);
  };
  while (!d_heap.empty()) {
    if (d_termination != nullptr) {
      (*d_termination)();
    }
    std::pop_heap(d_heap.begin(), d_heap.end(), after);
    HeapElem top = d_heap.back();
    d_heap.pop_back();
    auto it = d_working.find(top.eq);
    if (has_substitution(top.var) || it == d_working.end()
        || it->second.coeff(top.var).is_zero()) {
      continue;
    }
    Equation eq = it->second;
    int fresh = 0;
    Equation definition = decompose(top.var, eq, &fresh);
    erase_eq(top.eq);
    if (fresh != 0) {
      // The equation goes on in terms of the fresh variable, with smaller
      // coefficients, and keeps the history of the inputs it came from.
      Equation rest = eq;
      rest.substitute_var(top.var, definition);
      rest.normalize();
      d_artificial[fresh] = -fresh;
      if (d_incremental) {
        d_undo.push_back(Undo{Undo::Fresh, fresh, std::nullopt});
      }
      set_eq(-fresh, rest);
      push_var(rest, -fresh);
    }
    if (!substitute(top.var, top.eq, definition)) {
      return false;
    }
  }
  return true;
}

// With a unit coefficient, var is the rest of the equation over -a, tags
// included: substituting it carries the equation's history along. Else
// var = t - sum floor(b/a) x - floor(c/a) for a fresh t: a definition of
// t, which no input takes part in.
Equation DiophantineSystem::decompose(int var, const Equation& eq, int* fresh) {
  QNumber a = eq.coeff(var);
  Equation def;
  if (abs(a) == QNumber(1)) {
    def = eq;
    def.add(var, -a);
    def.scale(-a);  // 1/a == a for a unit
    *fresh = 0;
    return def;
  }
  *fresh = d_vars->new_var();
  for (const auto& [x, b] : eq.monomials()) {
    if (x > 0 && x != var) {
      QNumber q = b / a;
      q.self_decompose();
      def.add(x, -q);
    }
  }
  QNumber qc = eq.constant() / a;
  qc.self_decompose();
  def.set_constant(-qc);
  def.add(*fresh, QNumber(1));
  return def;
}

bool DiophantineSystem::substitute(int var, int, const Equation& definition) {
  d_subst[var] = definition;
  d_solved_order.push_back(var);
  if (d_incremental) {
    d_undo.push_back(Undo{Undo::Solved, var, std::nullopt});
  }
  std::vector<int> touched;
  for (const auto& [id, eq] : d_working) {
    if (!eq.coeff(var).is_zero()) {
      touched.push_back(id);
    }
  }
  for (int id : touched) {
    Equation eq = d_working[id];
    eq.substitute_var(var, definition);
    bool bad = eq.infeasible();
    if (!bad) {
      eq.normalize();
    }
    set_eq(id, eq);
    if (bad) {
      d_infeasible = std::move(eq);
      d_heap.clear();
      return false;
    }
    push_var(d_working[id], id);
  }
  return true;
}

void DiophantineSystem::get_unsat_proof(
    std::vector<int>* constraints, std::vector<QNumber>* coefficients) const {
  if (!d_infeasible) {
    throw error("no refutation: the system is not known infeasible");
  }
  for (const auto& [var, c] : d_infeasible->monomials()) {
    if (var < 0 && !is_artificial_var(-var)) {
      if (constraints != nullptr) {
        constraints->push_back(-var);
      }
      if (coefficients != nullptr) {
        coefficients->push_back(c);
      }
    }
  }
}

bool DiophantineSystem::apply_substitution(const la::Equation& eq,
                                           la::Equation& out,
                                           std::vector<int>* used,
                                           la::Equation* proof) const {
  Equation work(eq);
  bool changed = false;
  for (bool again = true; again;) {
    again = false;
    for (const auto& [var, c] : work.monomials()) {
      auto it = d_subst.find(var);
      if (var > 0 && it != d_subst.end()) {
        work.substitute_var(var, it->second);
        changed = again = true;
        break;
      }
    }
  }
  out = la::Equation();
  out.set_constant(work.constant());
  for (const auto& [var, c] : work.monomials()) {
    if (var > 0) {
      out.add(var, c);
      continue;
    }
    if (used != nullptr) {
      used->push_back(-var);
    }
    if (proof != nullptr) {
      proof->add(var, c);
    }
  }
  return changed;
}

void DiophantineSystem::build_model() {
  d_model.clear();
  for (auto it = d_solved_order.rbegin(); it != d_solved_order.rend(); ++it) {
    la::Equation value;
    apply_substitution(d_subst.at(*it), value, nullptr, nullptr);
    d_model[*it] = Equation(value);
  }
}

bool DiophantineSystem::get_model_value(int var, la::Equation* out) const {
  auto it = d_model.find(var);
  if (it == d_model.end()) {
    return false;
  }
  if (out != nullptr) {
    *out = it->second;
  }
  return true;
}

void DiophantineSystem::apply_model(la::Equation& eq) const {
  Equation work(eq);
  for (const auto& [var, value] : d_model) {
    work.substitute_var(var, value);
  }
  eq = work;
}

std::string DiophantineSystem::dump_tableau() const {
  std::ostringstream out;
  out << "BEGIN DIOPHANTINE TABLEAU\n";
  for (const auto& [id, eq] : d_working) {
    out << id << ": " << eq.to_str() << "\n";
  }
  for (int var : d_solved_order) {
    out << "x" << var << " := " << d_subst.at(var).to_str() << "\n";
  }
  out << "END DIOPHANTINE TABLEAU";
  return out.str();
}

}  // namespace laz
}  // namespace zenlo
