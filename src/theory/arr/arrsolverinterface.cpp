#include "theory/arr/arrsolverinterface.h"

#include <algorithm>
#include <string>

#include "terms/termmanager.h"
#include "theory/arr/arrsolverlod.h"
#include "theory/euf/eufsolverinterface.h"
#include "theory/theoryowner.h"

namespace zenlo {

ArrSolverInterface::ArrSolverInterface(const Configuration* config,
                                       TermManager* tm,
                                       EufSolverInterface* euf)
    : TheorySolver(tm), d_config(config), d_euf(euf) {
  const int mode = config->theory.arr.mode;
  if (mode == 1) {
    d_solver = std::make_unique<arr::ArraySolverLOD>(
        tm, &euf->get_solver(), &config->theory.arr);
  } else if (mode == 0 || mode == 2) {
    d_solver = std::make_unique<arr::Solver>(
        tm, &euf->get_solver(), &config->theory.arr, mode);
  } else {
    throw error("theory.arr.mode " + std::to_string(mode)
                + " is not supported");
  }
  d_solver->set_reason_expander(
      [euf](std::vector<TheoryLit>& lits) { euf->expand_reasons(lits); });
  d_solver->set_model_generation(config->model_generation);
}

void ArrSolverInterface::set_termination_test(TerminationTest* test) {
  TheorySolver::set_termination_test(test);
  d_solver->set_termination_test(test);
}

std::pair<bool, bool> ArrSolverInterface::tell_atom(const Term_* atom) {
  d_solver->tell_atom(atom);
  return {theory_of(*d_tm, atom) == TheoryId::Arr, false};
}

void ArrSolverInterface::retract_atom(const Term_* atom) {
  d_solver->retract_atom(atom);
}

void ArrSolverInterface::cancel_until(int) {
  d_solver->set_ready(false);
}

bool ArrSolverInterface::check(bool approx) {
  d_solver->check(approx);
  return true;
}

void ArrSolverInterface::build_abstract_model() {
  d_solver->set_ready(true);
}

bool ArrSolverInterface::has_lemmas() {
  return d_solver->has_lemmas();
}

TheoryLemma ArrSolverInterface::get_lemma(std::vector<TheoryLit>& clause) {
  arr::Lemma l = d_solver->take_lemma();
  clause.insert(clause.end(), l.clause.begin(), l.clause.end());
  TheoryLemma out;
  // An ordinary learnt clause: the search may drop it, and the instance
  // comes back when a model violates it again.
  if (l.key != nullptr) {
    uint32_t id;
    if (!d_free.empty()) {
      id = d_free.back();
      d_free.pop_back();
      d_given[id] = Given{l.key, l.kind};
    } else {
      id = static_cast<uint32_t>(d_given.size());
      d_given.push_back(Given{l.key, l.kind});
    }
    out.data = reinterpret_cast<void*>(static_cast<uintptr_t>(id) + 1);
  }
  return out;
}

void ArrSolverInterface::retract_lemma(void* data) {
  if (data == nullptr) {
    return;
  }
  uint32_t id = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(data) - 1);
  d_solver->retract_lemma(d_given[id].key, d_given[id].kind);
  d_given[id].key = nullptr;
  d_free.push_back(id);
}

// EUF holds the classes of array terms, whichever engine reads them.
lbool ArrSolverInterface::equal_in_model(const Term_* a, const Term_* b) {
  return d_euf->equal_in_model(a, b);
}

bool ArrSolverInterface::is_alien(const Term_* term) {
  if (d_tm->is_array_type(term->get_type())) {
    return false;
  }
  return d_tm->get_tag(term->get_symbol()) != SymbolTag::ARRAY_READ;
}

// ---------------------------------------------------------------------------
// Models
// ---------------------------------------------------------------------------

void ArrSolverInterface::build_model() {
  d_model.clear();
  d_values.clear();
  d_solver->collect_model(d_model);
}

const Term_* ArrSolverInterface::get_model_value(const Term_* term) {
  if (!d_tm->is_array_type(term->get_type())) {
    return nullptr;
  }
  const Term_* rep = d_euf->get_representative(term);
  if (rep == nullptr || !d_model.contains(rep)) {
    return nullptr;
  }
  if (const Term_* const* v = d_values.get(rep)) {
    return *v;
  }
  const Term_* v = class_value(rep);
  d_values.insert(rep, v);
  return v;
}

// The element an array without a constant base holds where nothing was
// written: any value will do, since every cell a formula reads is written.
const Term_* ArrSolverInterface::default_element(const Type* array_type) {
  const Type* element = nullptr;
  d_tm->is_array_type(array_type, nullptr, &element);
  if (d_tm->is_arithmetic_type(element)) {
    return d_tm->make_number(0L);
  }
  size_t w = 0;
  if (d_tm->is_bv_type(element, &w)) {
    return d_tm->make_bv_number(QNumber(0L), w);
  }
  if (d_tm->is_array_type(element)) {
    return d_tm->make_array_const(element, default_element(element));
  }
  if (d_tm->is_bool_type(element)) {
    return d_tm->make_false();
  }
  // A constant the model gives a value of its sort.
  std::string name = ".model-arr-const-elem." + element->to_str();
  const Symbol* s = d_tm->find_symbol(name);
  if (s == nullptr) {
    s = d_tm->make_symbol(name, element);
  }
  return d_tm->make_constant(s);
}

const Term_* ArrSolverInterface::class_value(const Term_* rep) {
  const arr::Solver::ClassModel& cm = *d_model.get(rep);
  auto value = [this](const Term_* t) {
    const Term_* v = d_value ? d_value(t) : nullptr;
    return v != nullptr ? v : t;
  };
  const Type* type = rep->get_type();
  const Term_* base_elem =
      cm.base != nullptr ? value(cm.base->get_child(0)) : default_element(type);
  std::vector<std::pair<const Term_*, const Term_*>> cells;
  for (const auto& [i, r] : cm.entries) {
    cells.emplace_back(value(i), value(r));
  }
  // One cell per index value: the walks found no two reads that differ.
  std::stable_sort(
      cells.begin(), cells.end(), [](const auto& x, const auto& y) {
        return x.first->get_id() < y.first->get_id();
      });
  cells.erase(std::unique(cells.begin(),
                          cells.end(),
                          [](const auto& x, const auto& y) {
                            return x.first == y.first;
                          }),
              cells.end());
  const Term_* v = d_tm->make_array_const(type, base_elem);
  for (auto it = cells.rbegin(); it != cells.rend(); ++it) {
    if (it->second != base_elem) {
      v = d_tm->make_array_write(v, it->first, it->second);
    }
  }
  return v;
}

// ---------------------------------------------------------------------------
// Statistics
// ---------------------------------------------------------------------------

TheorySolver::Stats ArrSolverInterface::get_stats() const {
  const arr::Solver::Stats& s = d_solver->stats();
  return {
      {"write lemmas added", std::to_string(s.write_lemmas)},
      {d_config->theory.arr.mode == 1 ? "refinement lemmas added"
                                      : "row lemmas added",
       std::to_string(s.row_lemmas)},
      {"ext lemmas added", std::to_string(s.ext_lemmas)},
      {"const lemmas added", std::to_string(s.const_lemmas)},
  };
}

}  // namespace zenlo
