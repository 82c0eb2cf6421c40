// TheorySolver: the one protocol between a theory solver and the search.
// The TheoryManager owns one solver per theory and is its only caller; a
// solver never touches the clause database or the trail. Everything it
// learns goes back through the manager as one of four answers: a conflict
// (check returns false), an implied literal with a lazy explanation, a
// lemma (a clause, possibly over new atoms), or, for theory combination,
// facts about equalities between shared terms.
//
// Calls arrive in this rhythm: tell_atom once per atom that the search
// names; assume for each assigned literal whose atom the solver asked for,
// in trail order and in batches; then check(true) during the search and
// check(false) on a full assignment. new_decision_level and cancel_until
// follow the search's levels; a solver must accept a cancel_until to a
// level it has never seen as a no-op. Every base-class operation below
// states what a solver that does not override it does.
#ifndef ZENLO_THEORY_THEORYSOLVER_H
#define ZENLO_THEORY_THEORYSOLVER_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/exception.h"
#include "dpll/dplltypes.h"
#include "terms/term.h"
#include "theory/theoryeq.h"
#include "theory/theorylit.h"

namespace zenlo {

class Logger;
class PolarityChecker;
class TermManager;
class TerminationTest;
class TheoryEqPropagator;

namespace itp {
class AtomClassifier;
}

namespace proof {
class Proof;
}

class FactCertificate;

// The bits of TheoryLemma::flags; see TheoryManager::get_lemma for what
// each does to the search.
enum class LemmaFlag : uint32_t {
  // The search tells the clause to its ghost filter, and keeps it for good
  // unless Learnt is set too. Without it the clause is an ordinary learnt
  // clause that reduction may drop (and then retract_lemma follows).
  Kept = 1,
  // New atoms of the lemma are lemma atoms: no interface-term detection.
  LemmaAtoms = 2,
  // New variables follow the decision flag of the dependency's variable.
  DecisionDependency = 4,
  // New atoms join the interpolation groups of the dependency.
  ClassifierGroups = 8,
  // With Kept: the clause is learnt after all.
  Learnt = 16,
  // With model generation on, new variables are problem variables.
  ProblemVars = 32,
};

inline constexpr uint32_t operator|(LemmaFlag a, LemmaFlag b) {
  return static_cast<uint32_t>(a) | static_cast<uint32_t>(b);
}

inline constexpr uint32_t operator|(uint32_t a, LemmaFlag b) {
  return a | static_cast<uint32_t>(b);
}

inline constexpr bool has_flag(uint32_t flags, LemmaFlag f) {
  return (flags & static_cast<uint32_t>(f)) != 0;
}

// What get_lemma returns besides the clause.
struct TheoryLemma {
  // The solver's handle of this lemma; comes back in retract_lemma.
  void* data = nullptr;
  uint32_t flags = 0;
  // Used by DecisionDependency and ClassifierGroups.
  const Term_* dependency = nullptr;
};

class TheorySolver {
 public:
  ZENLO_DECLARE_ERROR;

  using Stats = std::vector<std::pair<std::string, std::string>>;

  // Requires: `tm` outlives the solver. The solver logs to a logger of its
  // own (to no stream) until set_logger gives it the environment's.
  explicit TheorySolver(TermManager* tm);
  virtual ~TheorySolver();
  TheorySolver(const TheorySolver&) = delete;
  TheorySolver& operator=(const TheorySolver&) = delete;

  // ---- Identity and set-up -----------------------------------------------

  // Returns: the short name ("euf", "la", ...) by which get_tsolver finds
  // the solver and statistics name it.
  virtual const char* get_name() const { return "theory"; }

  // Returns: whether the solver reasons about equalities the way EUF does,
  // so that theory combination treats it as EUF's partner.
  virtual bool is_euf_extension() const { return false; }

  // After: the solver logs to `logger`, which the caller keeps alive; an
  // owned logger is freed.
  virtual void set_logger(Logger* logger);

  virtual void set_termination_test(TerminationTest* test) {
    d_termination = test;
  }

  // Base: ignores the propagator.
  virtual void set_eq_propagator(TheoryEqPropagator*) {}

  virtual void set_polarity_checker(const PolarityChecker* pc) {
    d_polarity = pc;
  }

  virtual void set_classifier(itp::AtomClassifier* c) { d_classifier = c; }

  // ---- Atoms ---------------------------------------------------------------

  // Requires: `atom` is a Boolean theory atom not yet told (or retracted
  //   since).
  // Returns: (owns, wants): whether the atom belongs to this solver, and
  //   whether the solver wants to be told its truth value by assume.
  //   Base: (false, false).
  virtual std::pair<bool, bool> tell_atom(const Term_* atom);

  // Requires: `atom` is the most recently told atom not yet retracted.
  // After: the solver has forgotten it. Base: throws "can't retract atom: "
  //   followed by the atom.
  virtual void retract_atom(const Term_* atom);

  // Returns: whether a retract_atom since the last call took back, with
  //   the atom, literals assumed after it, which the search must then
  //   assume again; the mark is cleared. Base: true, which is always safe.
  virtual bool took_back_facts() { return true; }

  // ---- Levels and backtrack points -----------------------------------------

  // After: what is assumed from now on is undone by the matching
  // cancel_until.
  virtual void new_decision_level() {}

  // After: the state is what it was when level `level` + 1 was opened; a
  // level the solver has not seen is a no-op.
  virtual void cancel_until(int) {}

  virtual void push_backtrack_point() {}

  virtual void pop_backtrack_point() {}

  // ---- Asserting and checking ----------------------------------------------

  // Requires: the literal's atom was told and its value wanted.
  // Returns: false when the solver is inconsistent at once; then
  //   get_conflict answers. Base: true.
  virtual bool assume(TheoryLit lit);

  // An equality that another solver derived (theory combination). The
  // solver must accept one it cannot use, and copy it (new_copy) to keep it.
  // Returns: false when inconsistent at once. Base: true.
  virtual bool assume(const TheoryEq* eq);

  // Returns: false on a conflict. With `approx` the check may leave work
  //   undone; without, it is complete for the assumed literals. Base: true.
  virtual bool check(bool approx);

  // Requires: the last check or assume answered false.
  // After: `out` holds literals, all true now, that are jointly
  //   inconsistent in the theory. Base: throws "can't be in conflict".
  virtual void get_conflict(std::vector<TheoryLit>& out);

  // Returns: the next literal implied by what was assumed, or tlit_Undef.
  //   Each one is implied at the moment it is returned. Base: tlit_Undef.
  virtual TheoryLit get_next_implied();

  // Requires: `lit` was returned by get_next_implied and is still true.
  // Returns: false when no reason is given now (only allowed without
  //   `force`); true with literals in `out`, each true and assigned before
  //   `lit`, that imply `lit`. Base: throws "can't explain".
  virtual bool get_explanation(TheoryLit lit,
                               bool force,
                               std::vector<TheoryLit>& out);

  // ---- Lemmas --------------------------------------------------------------

  // Base: false.
  virtual bool has_lemmas();

  // Requires: has_lemmas().
  // Returns: the description of a lemma whose clause (a disjunction that
  //   is valid in the theory) is written to `clause`. Base: throws
  //   "can't generate lemmas".
  virtual TheoryLemma get_lemma(std::vector<TheoryLit>& clause);

  // Requires: `data` is the handle of a lemma the search holds.
  // After: the search has dropped it; the solver may give it again.
  //   Base: throws "can't retract lemmas".
  virtual void retract_lemma(void* data);

  // Returns: evidence for the conflict, explanation or lemma just handed
  //   out, for the theory's checker (-check.theory_facts); valid until the
  //   next call into the solver. Base: null, the literals alone must do.
  virtual const FactCertificate* fact_certificate() const { return nullptr; }

  // ---- Proofs --------------------------------------------------------------

  // Base: throw "can't produce proofs".
  virtual proof::Proof* get_conflict_proof();
  virtual proof::Proof* get_implied_proof(TheoryLit lit);
  virtual proof::Proof* get_lemma_proof(void* data);

  // ---- Models --------------------------------------------------------------

  // Requires: the last complete check succeeded.
  virtual void build_model() {}

  // Returns: a value term for `term` in the built model, or null.
  virtual const Term_* get_model_value(const Term_*) { return nullptr; }

  virtual int get_model_value_hint(const Term_*) { return -1; }

  // A cheap model that only needs to answer equal_in_model. Base: throws
  // "can't build abstract model".
  virtual void build_abstract_model();

  // Returns: l_True, l_False or l_Undef (the solver does not know a or b).
  //   Base: throws "can't check equality of " + a + " and " + b.
  virtual lbool equal_in_model(const Term_* a, const Term_* b);

  // ---- Theory combination --------------------------------------------------

  // Returns: whether `term` lies outside this solver's theory. Base: throws
  //   "can't detect alien terms".
  virtual bool is_alien(const Term_* term);

  virtual void notify_interface_term(const Term_*) {}

  virtual void retract_interface_term(const Term_*) {}

  virtual bool is_interesting_interface_equality(const Term_*, const Term_*) {
    return false;
  }

  // ---- Statistics ----------------------------------------------------------

  virtual Stats get_stats() const { return {}; }

 protected:
  Logger& logger() const { return *d_logger; }

  // Calls the termination test when one is installed.
  void poll_termination() const;

  TermManager* d_tm;
  Logger* d_logger;
  bool d_owns_logger = true;
  TerminationTest* d_termination = nullptr;
  const PolarityChecker* d_polarity = nullptr;
  itp::AtomClassifier* d_classifier = nullptr;
};

}  // namespace zenlo

#endif
