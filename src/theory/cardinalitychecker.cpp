#include "theory/cardinalitychecker.h"

#include "terms/termmanager.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {

CardinalityChecker::CardinalityChecker(TermManager* tm, const euf::Solver* euf)
    : d_tm(tm), d_euf(euf) {}

bool CardinalityChecker::check() {
  d_pending.clear();
  d_next = 0;
  // Most problems have no enumerated sort: no walk over EUF's classes.
  if (!d_tm->has_enum_types()) {
    return false;
  }
  d_reps.clear();
  d_euf->get_all_representatives(d_reps);
  for (const Term_* r : d_reps) {
    if (!d_tm->is_enum_type(r->get_type()) || d_done.contains(r)) {
      continue;
    }
    d_members.clear();
    d_euf->get_congruence_class(r, d_members);
    bool has_value = false;
    for (const Term_* m : d_members) {
      if (m->get_arity() == 0 && d_tm->is_enum_value(m->get_symbol())) {
        has_value = true;
        break;
      }
    }
    if (!has_value) {
      d_pending.push_back(r);
    }
  }
  return has_lemmas();
}

TheoryLemma CardinalityChecker::get_lemma(std::vector<TheoryLit>& out) {
  const Term_* t = d_pending[d_next++];
  d_done.insert(t);
  d_done_order.push_back(t);
  for (const Symbol* v : *d_tm->get_enum_values(t->get_type())) {
    out.push_back(TheoryLit(d_tm->make_equal(t, d_tm->make_constant(v))));
  }
  ++d_lemmas;
  TheoryLemma lemma;
  lemma.flags =
      LemmaFlag::Kept | LemmaFlag::LemmaAtoms | LemmaFlag::ClassifierGroups;
  return lemma;
}

void CardinalityChecker::push_backtrack_point() {
  d_frames.push_back(d_done_order.size());
}

void CardinalityChecker::pop_backtrack_point() {
  size_t keep = d_frames.back();
  d_frames.pop_back();
  while (d_done_order.size() > keep) {
    d_done.erase(d_done_order.back());
    d_done_order.pop_back();
  }
  d_pending.clear();
  d_next = 0;
}

}  // namespace zenlo
