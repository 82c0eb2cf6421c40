// EufSolverInterface: the EUF solver as the TheoryManager sees it, solver
// 0, named "euf". A thin adapter around euf::Solver, which does the
// reasoning: it queues the assumed literals and feeds them to the
// congruence closure at each check, maps the search's decision levels to
// checkpoints, explains lazily (only when the search insists), translates
// equalities received from other solvers, and produces two kinds of lemma:
//
// - dynamic Ackermann lemmas (theory.euf.dyn_ack): when a congruence
//   between f(a1..an) and f(b1..bn) keeps appearing in conflicts, the
//   clause a1 != b1 or ... or f(a) = f(b) gives the search its atoms;
// - transitivity lemmas (theory.euf.transitivity_lemmas): likewise for
//   a = b and b = c chained in conflicts, a != b or b != c or a = c.
//   Conflicts then take the shortcut a = c where it holds, so that on
//   chains of equalities (diamonds) the search learns clauses over the
//   shortcuts instead of one clause per combination of paths;
// - definitions of Boolean arguments: an argument p of Bool type in f(p)
//   is sound only if p's node sits in the class of `true` or `false`. The
//   interface asks the manager for the truth value of every such argument
//   (take_bool_arg_requests); a compound argument such as (and p q) that
//   the search has never named gets its Tseitin clauses as permanent
//   lemmas (define_bool_term), which give it a variable.
#ifndef ZENLO_THEORY_EUF_EUFSOLVERINTERFACE_H
#define ZENLO_THEORY_EUF_EUFSOLVERINTERFACE_H

#include <cstdint>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

#include "base/configuration.h"
#include "terms/hashtable.h"
#include "terms/symboltag.h"
#include "theory/euf/eufmodel.h"
#include "theory/euf/eufsolver.h"
#include "theory/theorysolver.h"

namespace zenlo {

class EufSolverInterface : public TheorySolver {
 public:
  // Requires: `config` and `tm` outlive the solver.
  EufSolverInterface(const Configuration::Theory::Euf* config, TermManager* tm);
  ~EufSolverInterface() override;

  const char* get_name() const override { return "euf"; }

  bool is_euf_extension() const override { return true; }

  // Every atom is told to the congruence closure; see owns_atom for the
  // first answer. The value is wanted for the atoms owned, equalities,
  // Boolean arguments, and all atoms when dynamic Ackermann is on.
  std::pair<bool, bool> tell_atom(const Term_* atom) override;
  void retract_atom(const Term_* atom) override;
  bool took_back_facts() override;
  void new_decision_level() override;
  void cancel_until(int level) override;
  bool assume(TheoryLit lit) override;
  bool assume(const TheoryEq* eq) override;
  bool check(bool approx) override;
  void get_conflict(std::vector<TheoryLit>& out) override;
  TheoryLit get_next_implied() override;
  // Lazy: answers false unless `force`.
  bool get_explanation(TheoryLit lit,
                       bool force,
                       std::vector<TheoryLit>& out) override;
  bool has_lemmas() override;
  TheoryLemma get_lemma(std::vector<TheoryLit>& clause) override;
  void retract_lemma(void* data) override;
  void build_model() override;
  const Term_* get_model_value(const Term_* term) override;

  void build_abstract_model() override {}

  lbool equal_in_model(const Term_* a, const Term_* b) override;

  bool is_alien(const Term_* term) override;

  Stats get_stats() const override;

  // ---- EUF's own operations ------------------------------------------------

  // Returns: whether EUF is the atom's theory (see theory_of).
  bool owns_atom(const Term_* atom) const;

  euf::Solver& get_solver() { return d_solver; }

  // Returns: the representative of the class of `term`, or null.
  const Term_* get_representative(const Term_* term) const {
    return d_solver.get_representative(term);
  }

  // Looks at the terms that got nodes since the last call.
  // After: `bool_args` has the Boolean arguments among them not asked for
  //   before, whose truth values the solver needs (see the header note);
  //   `foreign` has those that EUF alone cannot decide: applications of
  //   other theories' symbols, and terms of finite types other than Bool.
  void take_requests(std::vector<const Term_*>& bool_args,
                     std::vector<const Term_*>& foreign);

  // Returns: whether congruence closure alone decides `t`'s symbol and
  //   type (Boolean connectives, equality, if-then-else, uninterpreted
  //   symbols and values of infinite types).
  bool is_own_term(const Term_* t) const;

  // Requires: `term` is a compound Boolean formula without a variable.
  // After: its Tseitin definition is queued as permanent lemmas.
  void define_bool_term(const Term_* term);

  // Dynamic Ackermann lemmas are also made for applications of
  // interpreted symbols with this tag.
  void add_dyn_ack_tag(SymbolTag::tag tag) { d_dyn_ack_tags.insert(tag); }

  // Builds the model with `interface_terms` preferred as standing terms.
  void build_model(const TermSet* interface_terms);

  const euf::Model& model() const { return d_model; }

  // Replaces, in reasons the closure gave, each equality that another
  // solver derived by that solver's reasons.
  void expand_reasons(std::vector<TheoryLit>& lits);

  // Returns: the members of the model class of `term`, or null.
  const TermList* get_model_congruence_class(const Term_* term) const;

 private:
  // f(..) = f(..) for a congruence (mid null); a = c from a = b, b = c for
  // a chain.
  struct DynAckLemma {
    const Term_* a;
    const Term_* b;
    const Term_* mid = nullptr;
    TheoryLit ab;
    TheoryLit bc;
  };

  // A dynamic Ackermann clause made and not yet handed out.
  struct ReadyLemma {
    std::vector<TheoryLit> clause;
    uint32_t id;
  };

  // ---- Dynamic Ackermann (eufdynack.cpp) -----------------------------------
  void enqueue_dyn_ack_lemmas();
  bool dyn_ack_symbol_ok(const Term_* t) const;
  bool make_dyn_ack_lemma(const DynAckLemma& pair);
  bool prepare_dyn_ack_lemma();
  uint32_t new_dyn_ack_id(const DynAckLemma& pair);

  static uint64_t pair_key(const Term_* a, const Term_* b) {
    return (a->get_id() << 32) ^ b->get_id();
  }

  // Chains count apart from congruences.
  static uint64_t key_of(const DynAckLemma& l) {
    uint64_t k = pair_key(l.a, l.b);
    return l.mid == nullptr ? k : k ^ (uint64_t(1) << 63);
  }

  static uint64_t reverse_key_of(const DynAckLemma& l) {
    return key_of(DynAckLemma{l.b, l.a, l.mid, l.ab, l.bc});
  }

  void count_dyn_ack_use(const DynAckLemma& l);

  // ---- Boolean arguments (eufboolargs.cpp) ---------------------------------
  void add_definition(const Term_* t);
  TheoryLit bool_lit(const Term_* t) const;
  void add_def_clause(std::vector<TheoryLit> clause);

  const Configuration::Theory::Euf* d_config;
  euf::Solver d_solver;
  euf::Model d_model;
  int d_level = 0;

  // Literals assumed and not yet given to the congruence closure.
  std::vector<TheoryLit> d_queue;
  size_t d_queue_head = 0;

  // Equality atoms that came from other solvers, with the equality that
  // justifies them.
  hsh::HashMap<const Term_*, TheoryEq*> d_teqs;

  // Boolean arguments: those the manager was asked about, and clauses of
  // definitions to hand out.
  TermSet d_bool_args;
  TermSet d_defined;
  std::vector<const Term_*> d_rerequests;  // arguments whose variable went
  bool d_took_back_facts = false;
  std::vector<const Term_*> d_new_terms;
  std::deque<std::vector<TheoryLit>> d_def_lemmas;

  // Dynamic Ackermann.
  hsh::HashSet<int> d_dyn_ack_tags;
  hsh::HashMap<uint64_t, uint32_t> d_dyn_ack_hits;
  hsh::HashSet<uint64_t> d_dyn_ack_done;
  std::deque<DynAckLemma> d_dyn_ack_queue;
  hsh::HashMap<uint32_t, DynAckLemma> d_dyn_ack_ids;
  std::vector<uint32_t> d_dyn_ack_free;
  uint32_t d_dyn_ack_next = 1;
  uint64_t d_dyn_ack_live = 0;
  // Clauses made from the queue; a Bool-valued function gives two.
  std::deque<ReadyLemma> d_ready;

  // Scratch of explanations, reused: reasons, and those of one TheoryEq.
  std::vector<TheoryLit> d_reasons;
  std::vector<TheoryLit> d_scratch;

  // The lemmas this solver gives, each with its counter.
  enum class LemmaKind { Definition, Congruence, Transitivity, Count };

  struct Counters {
    uint64_t checks = 0;
    uint64_t conflicts = 0;
    uint64_t implications = 0;
    uint64_t lemmas[static_cast<int>(LemmaKind::Count)] = {};
    uint64_t dyn_ack_deleted = 0;

    uint64_t& lemma(LemmaKind k) { return lemmas[static_cast<int>(k)]; }

    uint64_t lemma(LemmaKind k) const { return lemmas[static_cast<int>(k)]; }
  } d_counters;
};

}  // namespace zenlo

#endif
