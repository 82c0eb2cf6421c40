// Dynamic Ackermann lemmas. A congruence that conflicts use again and
// again is worth giving to the search as a clause: its argument equalities
// become atoms that the search can decide and learn about, instead of
// rediscovering the same congruence behind each conflict.
#include <utility>

#include "terms/termmanager.h"
#include "theory/euf/eufsolverinterface.h"

namespace zenlo {

namespace {

// Equalities of the lemmas are built with the lower term id first, so that
// both orders of a pair name the same atom.
const Term_* ordered_equal(TermManager& tm, const Term_* a, const Term_* b) {
  return a->get_id() < b->get_id() ? tm.make_equal(a, b) : tm.make_equal(b, a);
}

}  // namespace

// Counts the congruences (and chains of equalities) of the conflict just
// explained; a pair becomes a lemma exactly when its count reaches the
// threshold.
void EufSolverInterface::enqueue_dyn_ack_lemmas() {
  const uint64_t limit = static_cast<uint64_t>(d_config->dyn_ack_limit);
  if (limit > 0 && d_dyn_ack_live >= limit) {
    return;
  }
  const bool all = d_config->dyn_ack >= 2;
  for (const euf::Solver::UsedCongruence& u : d_solver.used_congruences()) {
    if ((all || u.top_level) && dyn_ack_symbol_ok(u.a)) {
      count_dyn_ack_use(DynAckLemma{u.a, u.b, nullptr, tlit_Undef, tlit_Undef});
    }
  }
  for (const euf::Solver::UsedChain& c : d_solver.used_chains()) {
    if (c.a == c.c) {
      continue;
    }
    DynAckLemma l{c.a, c.c, c.b, c.ab, c.bc};
    if (l.a->get_id() > l.b->get_id()) {
      std::swap(l.a, l.b);
    }
    count_dyn_ack_use(l);
  }
}

void EufSolverInterface::count_dyn_ack_use(const DynAckLemma& l) {
  uint64_t key = key_of(l);
  if (d_dyn_ack_done.contains(key)) {
    return;
  }
  uint32_t& hits = d_dyn_ack_hits[key];
  if (++hits == static_cast<uint32_t>(d_config->dyn_ack_threshold)) {
    d_dyn_ack_queue.push_back(l);
  }
}

bool EufSolverInterface::dyn_ack_symbol_ok(const Term_* t) const {
  const Symbol* f = t->get_symbol();
  if (!d_tm->is_uninterpreted_function(f)
      && !d_dyn_ack_tags.contains(d_tm->get_tag(f))) {
    return false;
  }
  // A Boolean argument has no equality atom to state.
  for (const Term_* a : *t) {
    if (d_tm->is_bool_type(a->get_type())) {
      return false;
    }
  }
  return true;
}

// Makes the clauses of the pair at the front of the queue ready, unless the
// pair is done or gives no useful clause.
bool EufSolverInterface::prepare_dyn_ack_lemma() {
  DynAckLemma pair = d_dyn_ack_queue.front();
  d_dyn_ack_queue.pop_front();
  if (d_dyn_ack_done.contains(key_of(pair))) {
    return false;
  }
  if (!make_dyn_ack_lemma(pair)) {
    return false;
  }
  d_dyn_ack_done.insert(key_of(pair));
  d_dyn_ack_done.insert(reverse_key_of(pair));
  const uint64_t limit = static_cast<uint64_t>(d_config->dyn_ack_limit);
  if (limit > 0 && d_dyn_ack_live >= limit) {
    d_dyn_ack_queue.clear();
  }
  return true;
}

// For t1 = f(a1..an), t2 = f(b1..bn):
//   a1 != b1 or ... or an != bn or t1 = t2
// and for a Bool-valued f the two clauses
//   a1 != b1 or ... or not t1 or t2,   a1 != b1 or ... or not t2 or t1.
bool EufSolverInterface::make_dyn_ack_lemma(const DynAckLemma& pair) {
  if (pair.mid != nullptr) {
    // not (a = b) or not (b = c) or a = c
    const Term_* ac = ordered_equal(*d_tm, pair.a, pair.b);
    if (ac == d_tm->make_true() || ac == d_tm->make_false()) {
      return false;
    }
    d_ready.push_back(
        ReadyLemma{{~pair.ab, ~pair.bc, TheoryLit(ac)}, new_dyn_ack_id(pair)});
    return true;
  }
  const Term_* t1 = pair.a;
  const Term_* t2 = pair.b;
  std::vector<TheoryLit> clause;
  for (size_t i = 0; i < t1->get_arity(); ++i) {
    const Term_* a = t1->get_child(i);
    const Term_* b = t2->get_child(i);
    if (a == b) {
      continue;
    }
    const Term_* e = ordered_equal(*d_tm, a, b);
    if (e == d_tm->make_false()) {
      return false;  // the clause would be valid: nothing to learn
    }
    if (e != d_tm->make_true()) {
      clause.push_back(TheoryLit(e, true));
    }
  }
  if (d_tm->is_bool_type(t1->get_type())) {
    std::vector<TheoryLit> second = clause;
    clause.push_back(TheoryLit(t1, true));
    clause.push_back(TheoryLit(t2));
    second.push_back(TheoryLit(t2, true));
    second.push_back(TheoryLit(t1));
    d_ready.push_back(ReadyLemma{std::move(clause), new_dyn_ack_id(pair)});
    d_ready.push_back(ReadyLemma{std::move(second), new_dyn_ack_id(pair)});
  } else {
    clause.push_back(TheoryLit(ordered_equal(*d_tm, t1, t2)));
    d_ready.push_back(ReadyLemma{std::move(clause), new_dyn_ack_id(pair)});
  }
  return true;
}

uint32_t EufSolverInterface::new_dyn_ack_id(const DynAckLemma& pair) {
  uint32_t id;
  if (!d_dyn_ack_free.empty()) {
    id = d_dyn_ack_free.back();
    d_dyn_ack_free.pop_back();
  } else {
    id = d_dyn_ack_next++;
  }
  d_dyn_ack_ids.insert(id, pair);
  ++d_dyn_ack_live;
  ++d_counters.lemma(pair.mid == nullptr ? LemmaKind::Congruence
                                         : LemmaKind::Transitivity);
  return id;
}

// The search dropped the clause: the pair may become a lemma again.
void EufSolverInterface::retract_lemma(void* data) {
  if (data == nullptr) {
    return;  // a definition: nothing to forget
  }
  auto id = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(data));
  DynAckLemma* pair = d_dyn_ack_ids.get(id);
  if (pair == nullptr) {
    throw error("unknown dynamic ackermann lemma " + std::to_string(id));
  }
  d_dyn_ack_done.erase(key_of(*pair));
  d_dyn_ack_done.erase(reverse_key_of(*pair));
  d_dyn_ack_hits.erase(key_of(*pair));
  d_dyn_ack_ids.erase(id);
  d_dyn_ack_free.push_back(id);
  --d_dyn_ack_live;
  ++d_counters.dyn_ack_deleted;
}

}  // namespace zenlo
