#include "theory/la/lasolverinterface.h"

#include <algorithm>

#include "base/logger.h"
#include "preprocess/polaritychecker.h"
#include "terms/termmanager.h"

namespace zenlo {

namespace {
constexpr const char* kSection = "LA_SOLVER";
}  // namespace

LaSolverInterface::LaSolverInterface(const Configuration::Theory* config,
                                     TermManager* tm)
    : TheorySolver(tm),
      d_config(config),
      d_solver(config->la.deduction_enabled ? 2 : 0,
               config->la.pivoting_greedy_threshold),
      d_mapper(tm, &d_solver),
      d_cmapper(&d_solver),
      d_dio(&d_fresh, false) {}

LaSolverInterface::~LaSolverInterface() = default;

void LaSolverInterface::set_termination_test(TerminationTest* test) {
  TheorySolver::set_termination_test(test);
  d_solver.set_termination_test(test);
  d_dio.set_termination_test(test);
}

// ---------------------------------------------------------------------------
// Atoms
// ---------------------------------------------------------------------------

bool LaSolverInterface::should_handle(const Term_* term) const {
  switch (d_tm->get_tag(term->get_symbol())) {
    case SymbolTag::LEQ:
    case SymbolTag::INT_MOD_CONGR: return true;
    case SymbolTag::EQ: {
      return d_tm->is_arithmetic_type(term->get_child(0)->get_type());
    }
    default: return false;
  }
}

int LaSolverInterface::new_constraint(TheoryLit lit,
                                      const la::LinearTerm& lin) {
  int c = d_num_constraints++;
  la::ConstraintMapper::Bound b = d_cmapper.map_constraint(lin);
  d_solver.tell_bound(c, b.var, b.kind, b.value);
  if (d_lit_of.size() <= static_cast<size_t>(c)) {
    d_lit_of.resize(std::max<size_t>(c + 1, 2 * d_lit_of.size()));
    d_queued.resize(d_lit_of.size(), 0);
    d_is_int_eq.resize(d_lit_of.size(), 0);
    d_int_eq.resize(d_lit_of.size());
  }
  d_lit_of[c] = lit;
  d_queued[c] = 0;
  note_int_equation(c, lin);
  return c;
}

// Whether an uninterpreted application in `atom` takes or gives a number.
bool LaSolverInterface::mixes_uf(const Term_* atom) const {
  auto numeric = [this](const Term_* t) {
    return d_tm->is_real_type(t->get_type())
           || d_tm->is_integer_type(t->get_type());
  };
  TermSet seen;
  std::vector<const Term_*> stack{atom};
  while (!stack.empty()) {
    const Term_* t = stack.back();
    stack.pop_back();
    if (!seen.insert(t).second) {
      continue;
    }
    SymbolTag::tag tag = d_tm->get_tag(t->get_symbol());
    if (t->get_arity() > 0
        && (tag == SymbolTag::UNKNOWN || tag == SymbolTag::ARRAY_READ)) {
      if (numeric(t) || std::any_of(t->begin(), t->end(), numeric)) {
        return true;
      }
    }
    stack.insert(stack.end(), t->begin(), t->end());
  }
  return false;
}

// An equality that only occurs positively never needs its negation: with
// pure-equality filtering its split waits until a negative occurrence
// shows up at an assume.
bool LaSolverInterface::wants_split_now(const Term_* atom) const {
  bool filtering =
      d_config->la.pure_equality_filtering || d_config->pure_literal_filtering;
  // Between shared terms, a disequality that EUF holds must hold here as
  // well, or the two models could never agree.
  return !filtering || d_polarity == nullptr || d_num_iface > 0
         || (*d_polarity)(atom) != PolarityChecker::kPositive;
}

void LaSolverInterface::queue_split(AtomInfo& info) {
  info.split_pending = false;
  d_splits.push_back(info.atom);
}

// A refused atom stays told (so that its retraction clears the refusal)
// but gets no constraint; every check throws until it is gone.
std::pair<bool, bool> LaSolverInterface::tell_atom(const Term_* atom) {
  bool handle = should_handle(atom);
  // With EUF beside, an application is a variable here and theory
  // combination makes the two agree on it.
  bool alone = !combining();
  if (!handle && !(alone && mixes_uf(atom))) {
    return {false, false};
  }
  AtomInfo info;
  info.atom = atom;
  info.first_constraint = d_num_constraints;
  info.first_var = d_solver.num_vars();
  d_atom_index.insert(atom, static_cast<int>(d_atoms.size()));
  try {
    if (!handle || d_tm->get_tag(atom->get_symbol()) == SymbolTag::INT_MOD_CONGR
        || (alone && mixes_uf(atom))) {
      // Congruences reach the solver encoded; arithmetic under
      // uninterpreted functions needs EUF beside.
      throw la::LinearTermMapper::error("unsupported term: " + atom->to_str());
    }
    d_mapper.make_linear(atom, false, d_lin);
  } catch (const la::LinearTermMapper::error& e) {
    d_mapper.free_vars_upto(info.first_var);
    d_atoms.push_back(info);
    if (d_refused == nullptr) {
      d_refused = atom;
      d_refusal = e.message();
    }
    return {true, true};
  }
  if (d_lin.monomials.empty()) {
    d_units.push_back(TheoryLit(atom, d_lin.is_false()));
    d_atoms.push_back(info);
    return {true, true};
  }
  info.is_eq = d_lin.op == la::LinearTerm::kEqual;
  info.pos = new_constraint(TheoryLit(atom, false), d_lin);
  if (!info.is_eq || !d_config->la.split_rat_eq) {
    d_mapper.make_linear(atom, true, d_lin);
    info.neg = new_constraint(TheoryLit(atom, true), d_lin);
  } else if (wants_split_now(atom)) {
    d_splits.push_back(atom);
  } else {
    info.split_pending = true;
  }
  d_atoms.push_back(info);
  return {true, true};
}

// Atoms go youngest first. Their constraints may sit in the queue (at
// level 0 they stay there across checks): the queue is cut back before
// the first of them, which takes back older facts too, and the search
// sends them again.
void LaSolverInterface::retract_atom(const Term_* atom) {
  // Every atom told is retracted, those declined too: nothing to undo.
  if (!d_atom_index.contains(atom)) {
    return;
  }
  if (d_atoms.empty() || d_atoms.back().atom != atom) {
    throw error("la: retracting an atom out of order: " + atom->to_str());
  }
  AtomInfo info = d_atoms.back();
  d_atoms.pop_back();
  d_branch.reset();
  d_cut.reset();
  d_atom_index.erase(atom);
  if (d_refused == atom) {
    d_refused = nullptr;
    d_refusal.clear();
  }
  size_t cut = d_queue.size();
  for (int c : {info.pos, info.neg}) {
    if (c >= 0 && d_queued[c]) {
      auto it = std::find(d_queue.begin(), d_queue.end(), c);
      cut = std::min(cut, static_cast<size_t>(it - d_queue.begin()));
    }
  }
  if (cut < d_queue.size()) {
    pop_queue_to(cut);
    d_took_back = true;
  }
  for (int c : {info.neg, info.pos}) {
    if (c >= 0) {
      d_solver.retract_bound(c);
      d_lit_of[c] = tlit_Undef;
    }
  }
  d_num_constraints = info.first_constraint;
  d_cmapper.remove_vars_upto(info.first_var);
  d_mapper.free_vars_upto(info.first_var);
  d_splits.erase(std::remove(d_splits.begin(), d_splits.end(), atom),
                 d_splits.end());
  d_units.erase(
      std::remove_if(d_units.begin(),
                     d_units.end(),
                     [atom](TheoryLit l) { return l.atom() == atom; }),
      d_units.end());
}

bool LaSolverInterface::took_back_facts() {
  bool took = d_took_back;
  d_took_back = false;
  return took;
}

// ---------------------------------------------------------------------------
// Levels
// ---------------------------------------------------------------------------

void LaSolverInterface::new_decision_level() {
  d_levels.push_back(Level{d_queue.size()});
}

void LaSolverInterface::push_backtrack_point() {
  d_split_marks.push_back(d_split_log.size());
}

void LaSolverInterface::pop_backtrack_point() {
  if (d_split_marks.empty()) {
    return;
  }
  size_t mark = d_split_marks.back();
  d_split_marks.pop_back();
  d_branch.reset();
  d_cut.reset();
  for (size_t i = mark; i < d_split_log.size(); ++i) {
    const Term_* eq = d_split_log[i];
    if (std::find(d_splits.begin(), d_splits.end(), eq) == d_splits.end()) {
      d_splits.push_back(eq);
    }
  }
  d_split_log.resize(mark);
}

void LaSolverInterface::cancel_until(int level) {
  if (level < 0 || level >= static_cast<int>(d_levels.size())) {
    return;
  }
  pop_queue_to(std::min(d_levels[level].queue, d_queue.size()));
  d_levels.resize(level);
}

void LaSolverInterface::pop_queue_to(size_t size) {
  while (d_solver.num_pushed() > size) {
    d_solver.pop_constraint();
  }
  for (size_t i = size; i < d_queue.size(); ++i) {
    d_queued[d_queue[i]] = 0;
  }
  d_queue.resize(size);
}

// ---------------------------------------------------------------------------
// Asserting and checking
// ---------------------------------------------------------------------------

// A literal that arrives twice (the search sends level 0 again after a
// retraction) is queued once.
bool LaSolverInterface::assume(TheoryLit lit) {
  const int* i = d_atom_index.get(lit.atom());
  if (i == nullptr) {
    return true;
  }
  AtomInfo& info = d_atoms[*i];
  int c = lit.negated() ? info.neg : info.pos;
  if (c < 0) {
    if (lit.negated() && info.split_pending && wants_split_now(info.atom)) {
      queue_split(info);
    }
    return true;
  }
  if (!d_queued[c]) {
    d_queued[c] = 1;
    d_queue.push_back(c);
  }
  return true;
}

// Equalities from other theories are not taken: arithmetic with shared
// terms is out of this solver's reach so far.
bool LaSolverInterface::assume(const TheoryEq*) {
  return true;
}

bool LaSolverInterface::push_queue() {
  while (d_solver.num_pushed() < d_queue.size()) {
    if (!d_solver.push_constraint(d_queue[d_solver.num_pushed()])) {
      return false;
    }
  }
  return true;
}

void LaSolverInterface::take_conflict() {
  d_conflict.clear();
  for (int c : d_solver.get_conflict()) {
    d_conflict.push_back(d_lit_of[c]);
  }
}

bool LaSolverInterface::check(bool approx) {
  if (d_refused != nullptr) {
    throw error(d_refusal);
  }
  if (d_iface_refused != nullptr) {
    throw error(d_iface_refusal);
  }
  d_model_ok = false;
  if (!push_queue() || !d_solver.check(approx)) {
    take_conflict();
    if (logger().would_log(kSection, 4)) {
      logger()(kSection) << loglevel(4) << "conflict of " << d_conflict.size()
                         << " literals" << endlog;
    }
    return false;
  }
  if (!approx) {
    int c = d_solver.unresolved_diseq();
    if (c >= 0) {
      // Values could not be moved off every excluded point: the search
      // splits the equality instead.
      const int* i = d_atom_index.get(d_lit_of[c].atom());
      if (i == nullptr || !d_atoms[*i].is_eq) {
        throw error("la: unresolved disequality");
      }
      if (std::find(d_splits.begin(), d_splits.end(), d_atoms[*i].atom)
          == d_splits.end()) {
        d_splits.push_back(d_atoms[*i].atom);
      }
    }
    if (!check_integers()) {
      if (logger().would_log(kSection, 4)) {
        logger()(kSection) << loglevel(4) << "no integer solution, conflict of "
                           << d_conflict.size() << " literals" << endlog;
      }
      return false;
    }
    // A relaxed solution with a fractional integer is no model: the
    // branch lemma waits and the search goes on.
    d_model_ok = !d_branch.has_value() && !d_cut.has_value();
  }
  return true;
}

void LaSolverInterface::get_conflict(std::vector<TheoryLit>& out) {
  out.insert(out.end(), d_conflict.begin(), d_conflict.end());
}

TheoryLit LaSolverInterface::get_next_implied() {
  int c;
  if (d_solver.next_implied(c)) {
    return d_lit_of[c];
  }
  return tlit_Undef;
}

bool LaSolverInterface::get_explanation(TheoryLit lit,
                                        bool force,
                                        std::vector<TheoryLit>& out) {
  const int* i = d_atom_index.get(lit.atom());
  if (i == nullptr) {
    throw error("la: explanation for an unknown atom");
  }
  int c = lit.negated() ? d_atoms[*i].neg : d_atoms[*i].pos;
  const std::vector<int>& reason = d_solver.implication_reason(c);
  if (!force
      && reason.size()
             > static_cast<size_t>(d_config->la.lazy_expl_threshold)) {
    return false;
  }
  for (int r : reason) {
    out.push_back(d_lit_of[r]);
  }
  return true;
}

// ---------------------------------------------------------------------------
// Lemmas
// ---------------------------------------------------------------------------

bool LaSolverInterface::has_lemmas() {
  // Equalities retracted since they were queued need no split.
  d_splits.erase(std::remove_if(d_splits.begin(),
                                d_splits.end(),
                                [this](const Term_* eq) {
                                  return !d_atom_index.contains(eq);
                                }),
                 d_splits.end());
  return !d_units.empty() || !d_splits.empty() || d_branch.has_value()
         || d_cut.has_value();
}

//   unit:   the value of an atom without variables, e.g. 1 <= 2
//   split:  a = b  or  not a <= b  or  not b <= a
//   branch: x <= f  or  f + 1 <= x
//   cut:    not all of the row's bounds, or the cut
TheoryLemma LaSolverInterface::get_lemma(std::vector<TheoryLit>& clause) {
  if (d_branch) {
    return branch_lemma(clause);
  }
  if (d_cut) {
    return cut_lemma(clause);
  }
  if (!d_units.empty()) {
    TheoryLit l = d_units.back();
    d_units.pop_back();
    clause.push_back(l);
    return TheoryLemma{reinterpret_cast<void*>(l.bits()), 0, l.atom()};
  }
  const Term_* eq = d_splits.back();
  d_splits.pop_back();
  d_split_log.push_back(eq);
  const Term_* a = eq->get_child(0);
  const Term_* b = eq->get_child(1);
  const Term_* ab = nullptr;
  const Term_* ba = nullptr;
  {
    SimplificationScope raw(*d_tm, false);
    ab = d_tm->make_leq(a, b);
    ba = d_tm->make_leq(b, a);
  }
  clause.push_back(TheoryLit(eq, false));
  clause.push_back(TheoryLit(ab, true));
  clause.push_back(TheoryLit(ba, true));
  ++d_num_splits;
  uint32_t flags = LemmaFlag::Kept | LemmaFlag::LemmaAtoms
                   | LemmaFlag::DecisionDependency
                   | LemmaFlag::ClassifierGroups;
  return TheoryLemma{nullptr, flags, eq};
}

// A dropped unit comes back while its atom is told; a dropped split is
// kept for good and never retracted.
void LaSolverInterface::retract_lemma(void* data) {
  if (data == nullptr) {
    return;
  }
  TheoryLit l = TheoryLit::from_bits(reinterpret_cast<uintptr_t>(data));
  if (d_atom_index.contains(l.atom())) {
    d_units.push_back(l);
  }
}

bool LaSolverInterface::is_alien(const Term_* term) {
  const Symbol* s = term->get_symbol();
  switch (d_tm->get_tag(s)) {
    case SymbolTag::LEQ: return false;
    case SymbolTag::EQ:
      return is_alien(term->get_child(0)) || is_alien(term->get_child(1));
    case SymbolTag::ITE: return false;
    case SymbolTag::ARRAY_READ:
    case SymbolTag::EXP:
    case SymbolTag::SIN:
    case SymbolTag::LOG: return true;
    default: break;
  }
  const Type* t = term->get_type();
  if (!d_tm->is_real_type(t) && !d_tm->is_integer_type(t)) {
    return true;
  }
  if (term->get_arity() == 0) {
    return false;
  }
  return !d_tm->is_interpreted(s);
}

TheorySolver::Stats LaSolverInterface::get_stats() const {
  const la::Solver::Stats& s = d_solver.stats();
  const la::Tableau& t = d_solver.tableau();
  return {
      {"num pivot operations", std::to_string(s.pivots)},
      {"num tableau rows", std::to_string(t.num_rows())},
      {"num tableau variables", std::to_string(t.num_vars())},
      {"max tableau row length", std::to_string(t.max_row_length())},
      {"num checks", std::to_string(s.checks)},
      {"num conflicts", std::to_string(s.conflicts)},
      {"num implications", std::to_string(s.implications)},
      {"num disequality splits", std::to_string(s.diseq_splits)},
      {"num equalities split", std::to_string(d_num_splits)},
      {"num branch and bound lemmas", std::to_string(d_num_branches)},
      {"num cuts", std::to_string(d_num_cuts)},
      {"num equational conflicts", std::to_string(d_num_dio_conflicts)},
  };
}

}  // namespace zenlo
