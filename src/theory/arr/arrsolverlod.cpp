#include "theory/arr/arrsolverlod.h"

#include <algorithm>
#include <string>

#include "terms/termmanager.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace arr {

ArraySolverLOD::ArraySolverLOD(TermManager* tm,
                               euf::Solver* euf,
                               const Configuration::Theory::Arr* config)
    : Solver(tm, euf, config, 1) {}

// ---------------------------------------------------------------------------
// Equalities of arrays and their instances
// ---------------------------------------------------------------------------

bool ArraySolverLOD::tell_atom(const Term_* atom) {
  bool any = Solver::tell_atom(atom);
  if (d_tm->get_tag(atom->get_symbol()) == SymbolTag::EQ
      && d_tm->is_array_type(atom->get_child(0)->get_type())) {
    d_array_eqs.push_back(atom);
  }
  return any;
}

void ArraySolverLOD::retract_atom(const Term_* atom) {
  if (!d_array_eqs.empty() && d_array_eqs.back() == atom) {
    d_array_eqs.pop_back();
  }
  Solver::retract_atom(atom);
}

// (a = b) or a[k] != b[k], k the equality's own witness. The instance is
// the told atom's, not a rebuilt equality, so that its literal is the one
// the search assigns.
void ArraySolverLOD::queue_ext(const Term_* eq) {
  if (!d_ext_done.insert(eq).second) {
    return;
  }
  const Term_* k = witness_index(
      ".array_witness" + std::to_string(eq->get_id()), eq->get_child(0));
  const Term_* x = make_read(*d_tm, eq->get_child(0), k);
  const Term_* y = make_read(*d_tm, eq->get_child(1), k);
  d_witness_of[x] = eq;
  d_witness_of[y] = eq;
  d_witness_reads[eq] = {x, y};
  Lemma l;
  l.kind = LemmaKind::Ext;
  l.key = eq;
  add_lit(TheoryLit(eq), l);
  add_lit(~eq_lit(x, y), l);
  queue(std::move(l));
}

// A witness read says something only while its arrays differ: when they
// are equal, the other reads cross the equality anyway.
bool ArraySolverLOD::witness_needed(const Term_* r) const {
  const Term_* const* eq = d_witness_of.get(r);
  if (eq == nullptr) {
    return true;
  }
  const Term_* a = (*eq)->get_child(0);
  const Term_* b = (*eq)->get_child(1);
  return !known(a) || !known(b) || rep(a) != rep(b);
}

// ---------------------------------------------------------------------------
// Refinement
// ---------------------------------------------------------------------------

// The reads are spread in the order they were told, each to its end
// unless it meets a conflict. Then each equality of arrays that the model
// makes false, and that no two reads already witness, gets its instance:
// not at once when told, since the equalities that theory combination
// makes between shared arrays would each bring witness reads, which are
// shared terms again.
bool ArraySolverLOD::generate_row_lemmas() {
  bool made = false;
  d_items.clear();
  d_table.clear();
  for (const Term_* r : d_reads) {
    poll();
    if (!known(r) || !known(r->get_child(1)) || !witness_needed(r)) {
      continue;
    }
    if (!propagate(r)) {
      made = true;
      if (d_config->lazy_lemmas) {
        return true;
      }
    }
  }
  if (made) {
    return true;
  }
  compute_bowtie_relation();
  d_ext_pairs.clear();
  for (const Term_* eq : d_array_eqs) {
    const Term_* a = eq->get_child(0);
    const Term_* b = eq->get_child(1);
    if (!known(a) || !known(b) || rep(a) == rep(b)) {
      continue;
    }
    // Arrays that no chain of writes connects can differ at an index no
    // read names, unless the index sort runs out of them; only a model
    // that must show the difference needs the instance.
    if (bowtie_representative(rep(a)) != bowtie_representative(rep(b))
        && !d_model_generation && !finite_index(a)) {
      continue;
    }
    if (d_ext_done.contains(eq)) {
      // Given once, and given again when its witness reads are not kept
      // apart: then the instance went with a pop, or the search forgot it.
      const auto* xy = d_witness_reads.get(eq);
      if (xy != nullptr && known(xy->first) && known(xy->second)
          && d_euf->are_disequal(xy->first, xy->second)) {
        continue;
      }
      d_ext_done.erase(eq);
    } else if (d_config->enable_witness && find_witness(rep(a), rep(b))) {
      continue;
    }
    // One instance per pair of classes and check: the next check finds
    // its witness reads for the pair's other equalities.
    ExtKey pair =
        std::minmax(rep(a), rep(b), [](const Term_* x, const Term_* y) {
          return x->get_id() < y->get_id();
        });
    if (!d_ext_pairs.insert(pair).second) {
      continue;
    }
    queue_ext(eq);
    made = true;
  }
  return made;
}

bool ArraySolverLOD::propagate(const Term_* r) {
  const Term_* vi = rep(r->get_child(1));
  const Term_* vr = rep(r);
  d_queue.clear();
  d_items.push_back(Item{r, r->get_child(0), -1, Step::Init});
  d_queue.push_back(static_cast<int32_t>(d_items.size() - 1));
  auto push = [this, r](const Term_* array, int32_t from, Step step) {
    if (!known(array)) {
      return;
    }
    d_items.push_back(Item{r, array, from, step});
    d_queue.push_back(static_cast<int32_t>(d_items.size() - 1));
  };
  for (size_t head = 0; head < d_queue.size(); ++head) {
    const int32_t at = d_queue[head];
    const Term_* c = d_items[at].array;
    // A constant array holds its value at every index.
    if (is_const(c) && known(c->get_child(0)) && rep(c->get_child(0)) != vr) {
      Lemma l;
      l.kind = LemmaKind::Row;
      add_lit(eq_lit(c->get_child(0), r), l);
      add_chain(at, l);
      queue(std::move(l));
      return false;
    }
    auto [it, fresh] = d_table.emplace(std::make_pair(c, vi), at);
    if (!fresh) {
      const Term_* r2 = d_items[it->second].read;
      if (rep(r2) == vr) {
        continue;  // spread from here already, with this value
      }
      Lemma l;
      l.kind = LemmaKind::Row;
      add_lit(eq_lit(r2, r), l);
      add_lit(~eq_lit(r2->get_child(1), r->get_child(1)), l);
      add_chain(it->second, l);
      add_chain(at, l);
      queue(std::move(l));
      return false;
    }
    if (is_write(c) && rep(c->get_child(1)) != vi) {
      push(c->get_child(0), at, Step::Down);
    }
    if (const auto* writes = d_writes_on.get(c)) {
      for (const Term_* w : *writes) {
        if (known(w->get_child(1)) && rep(w->get_child(1)) != vi) {
          push(w, at, Step::Up);
        }
      }
    }
    for (const Term_* m : members(rep(c))) {
      if (m != c) {
        push(m, at, Step::Eq);
      }
    }
  }
  return true;
}

// The conditions under which the read's value holds at the item's array:
// each write crossed is at another index, each class crossed is EUF's.
void ArraySolverLOD::add_chain(int32_t item, Lemma& lemma) {
  const Term_* i = d_items[item].read->get_child(1);
  for (int32_t at = item; d_items[at].from >= 0; at = d_items[at].from) {
    const Item& it = d_items[at];
    const Term_* prev = d_items[it.from].array;
    switch (it.step) {
      case Step::Down: add_lit(eq_lit(i, prev->get_child(1)), lemma); break;
      case Step::Up: add_lit(eq_lit(i, it.array->get_child(1)), lemma); break;
      case Step::Eq: add_reason(prev, it.array, lemma); break;
      case Step::Init: break;
    }
  }
}

}  // namespace arr
}  // namespace zenlo
