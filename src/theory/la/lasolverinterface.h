// LaSolverInterface: the adapter between the search's theory protocol and
// the simplex (la::Solver) for linear real arithmetic.
//
// Each arithmetic atom (an equality over numbers, or <=) becomes a bound
// on one solver variable through LinearTermMapper and ConstraintMapper: a
// constraint for the atom and, unless equalities are split, one for its
// negation. Assumed literals wait in a queue and are pushed at the next
// check, so the solver's stack is always a prefix of the queue in
// assignment order; levels cut both back.
//
// With theory.la.split_rat_eq a negated equality is never pushed: the
// lemma  a = b or not a <= b or not b <= a  hands the case split to the
// search. Implied constraints go back to the search as implied literals;
// explanations longer than theory.la.lazy_expl_threshold are built only
// when the search insists.
//
// Integer variables are relaxed to rationals. Atoms over integers only are
// rounded as they are read (x < 3 is x <= 2). When a complete check ends
// with an integer variable at a fractional value, the pushed equalities
// over integers are first tested for integer solutions (a refutation is a
// conflict over those equalities alone); otherwise the check passes with a
// branch lemma  x <= floor(v) or x >= floor(v) + 1  waiting, and the search
// splits on it. The answer sat comes only from an integral assignment.
//
// A term outside linear arithmetic is refused: tell_atom and every
// later check throw its message while the atom is told, so the check
// answers unknown and the caller may pop the atom away.
#ifndef ZENLO_THEORY_LA_LASOLVERINTERFACE_H
#define ZENLO_THEORY_LA_LASOLVERINTERFACE_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/configuration.h"
#include "terms/hashtable.h"
#include "theory/check/lafactchecker.h"
#include "theory/la/constraintmapper.h"
#include "theory/la/diophantinesystem.h"
#include "theory/la/gomorycut.h"
#include "theory/la/lasolver.h"
#include "theory/la/linearterm.h"
#include "theory/theorysolver.h"

namespace zenlo {

class LaSolverInterface : public TheorySolver {
 public:
  // Requires: config and tm outlive the solver.
  LaSolverInterface(const Configuration::Theory* config, TermManager* tm);
  ~LaSolverInterface() override;

  const char* get_name() const override { return "la"; }

  void set_termination_test(TerminationTest* test) override;

  std::pair<bool, bool> tell_atom(const Term_* atom) override;
  void retract_atom(const Term_* atom) override;
  bool took_back_facts() override;

  void new_decision_level() override;
  void push_backtrack_point() override;
  void pop_backtrack_point() override;
  void cancel_until(int level) override;

  bool assume(TheoryLit lit) override;
  bool assume(const TheoryEq* eq) override;
  bool check(bool approx) override;
  void get_conflict(std::vector<TheoryLit>& out) override;
  TheoryLit get_next_implied() override;
  bool get_explanation(TheoryLit lit,
                       bool force,
                       std::vector<TheoryLit>& out) override;

  bool has_lemmas() override;
  TheoryLemma get_lemma(std::vector<TheoryLit>& clause) override;
  void retract_lemma(void* data) override;

  void build_model() override;
  const Term_* get_model_value(const Term_* term) override;

  // The concrete model, which theory combination compares with EUF's.
  void build_abstract_model() override;

  lbool equal_in_model(const Term_* a, const Term_* b) override;
  bool is_alien(const Term_* term) override;
  void notify_interface_term(const Term_* term) override;
  void retract_interface_term(const Term_* term) override;

  Stats get_stats() const override;

  // The split behind the cut just given, once, for the fact checks.
  const FactCertificate* fact_certificate() const override;

  // Returns: whether the solver takes this atom: an equality between
  //   numeric terms, or <=.
  bool should_handle(const Term_* term) const;

  const la::Solver& get_solver() const { return d_solver; }

 private:
  // Per told atom, youngest last.
  struct AtomInfo {
    const Term_* atom;
    int pos = -1;  // constraint of the atom, -1 when none
    int neg = -1;  // constraint of its negation
    int first_constraint;
    int first_var;
    bool is_eq = false;
    bool split_pending = false;  // the split lemma is not asked for yet
  };

  // Fresh variables of the Diophantine system: numbers above every solver
  // variable, handed out afresh for each use of the scratch system.
  class FreshVars : public laz::FreshVarProvider {
   public:
    int new_var() override { return d_next++; }

    void free_var(int) override {}

    void restart(int first) { d_next = first; }

   private:
    int d_next = 1;
  };

  // A branch lemma waiting for the search: term <= floor or floor+1 <= term.
  struct Branch {
    const Term_* term;
    QNumber floor;
  };

  // A cut lemma waiting for the search: not all of `reason` (bound
  // constraints) hold, or the cut atom does.
  struct Cut {
    std::vector<int> reason;
    const Term_* atom;
    const Term_* below;  // the split that justifies it
    const Term_* above;
  };

  struct Level {
    size_t queue;
  };

  // ---- Atoms ---------------------------------------------------------------
  int new_constraint(TheoryLit lit, const la::LinearTerm& lin);
  bool wants_split_now(const Term_* atom) const;
  bool mixes_uf(const Term_* atom) const;
  // Whether EUF is beside, so that applications are shared terms.
  bool combining() const;
  // Returns: whether `t` is a linear term over known variables, with its
  //   value in the concrete model in `out`.
  bool model_value(const Term_* t, QNumber& out);
  void queue_split(AtomInfo& info);

  // ---- Checking ------------------------------------------------------------
  bool push_queue();
  void pop_queue_to(size_t size);
  void take_conflict();

  // ---- Integers ------------------------------------------------------------
  void note_int_equation(int c, const la::LinearTerm& lin);
  bool check_integers();
  bool check_diophantine();
  int pick_branch_var();
  void branch_floor(int x, QNumber& out) const;
  TheoryLemma branch_lemma(std::vector<TheoryLit>& clause);
  bool make_cut(int x);
  bool is_integral(int var) const;
  bool expand(const std::vector<std::pair<int, QNumber>>& sum,
              std::vector<std::pair<int, QNumber>>& out);
  const Term_* make_sum_term(const std::vector<std::pair<int, QNumber>>& sum);
  TheoryLemma cut_lemma(std::vector<TheoryLit>& clause);

  // ---- Model ---------------------------------------------------------------
  const Term_* eval_linear(const Term_* term);

  const Configuration::Theory* d_config;
  la::Solver d_solver;
  la::LinearTermMapper d_mapper;
  la::ConstraintMapper d_cmapper;

  std::vector<AtomInfo> d_atoms;
  hsh::HashMap<const Term_*, int> d_atom_index;
  std::vector<TheoryLit> d_lit_of;  // by constraint
  std::vector<uint8_t> d_queued;    // by constraint
  int d_num_constraints = 0;

  std::vector<int> d_queue;  // assumed constraints; a prefix is pushed
  std::vector<Level> d_levels;
  bool d_took_back = false;

  std::vector<const Term_*> d_splits;  // equalities to split
  // Split lemmas given so far, and their number at each backtrack point:
  // a pop takes the lemmas of its point away, so their equalities are
  // split again if they outlive it.
  std::vector<const Term_*> d_split_log;
  std::vector<size_t> d_split_marks;
  std::vector<TheoryLit> d_units;  // atoms without variables
  std::vector<TheoryLit> d_conflict;

  const Term_* d_refused = nullptr;
  std::string d_refusal;
  // Theory combination: how many numeric interface terms there are, and
  // the first that is not linear (the checks throw while it stays).
  int d_num_iface = 0;
  const Term_* d_iface_refused = nullptr;
  std::string d_iface_refusal;
  bool d_model_ok = false;
  la::LinearTerm d_lin;  // scratch

  // By constraint: whether it is an equality over integers, and then its
  // equation (variables shifted by one, the Diophantine system's
  // numbering).
  std::vector<uint8_t> d_is_int_eq;
  std::vector<la::Equation> d_int_eq;
  FreshVars d_fresh;
  laz::DiophantineSystem d_dio;
  std::vector<int> d_dio_ids;  // scratch
  std::vector<QNumber> d_dio_coeffs;
  std::optional<Branch> d_branch;
  size_t d_branch_cursor = 0;  // where in int_vars the next choice starts
  std::optional<Cut> d_cut;
  uint64_t d_int_rounds = 0;  // integer checks that found a fractional var
  la::GomoryCut d_gomory;
  std::vector<la::GomoryCut::Column> d_gomory_row;  // scratch
  std::vector<std::pair<int, QNumber>> d_expanded;  // scratch
  mutable LaSplitCertificate d_certificate;
  mutable bool d_certificate_fresh = false;

  uint64_t d_num_splits = 0;
  uint64_t d_num_branches = 0;
  uint64_t d_num_cuts = 0;
  uint64_t d_num_dio_conflicts = 0;
};

}  // namespace zenlo

#endif
