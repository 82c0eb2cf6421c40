// arr::Solver: the theory of arrays with extensionality and constant
// arrays, as an extension of congruence closure. Reads, writes and
// constant arrays are ordinary terms of EUF, which owns their classes;
// this class only watches them and, once EUF has a model (a full
// assignment whose congruence is closed), adds instances of the array
// axioms that the model violates:
//
//   write      store(a, i, v)[i] = v
//   row        i = j  or  a[j] = store(a, i, v)[j]      (read over write)
//   ext        a = b  or  a[k] != b[k], k a fresh index  (extensionality)
//   const      K = m -> K's value = m[j], K a constant array
//
// It never reports a conflict: every violation becomes a lemma whose
// literals are EUF's reasons for the equalities it used, so the search
// learns the instance and goes on. Row instances are found through weak
// equivalence: from a read a[i], a breadth-first walk crosses array
// equalities (EUF's classes) and writes at indices other than i; any
// read at an index equal to i on a class reached must have a[i]'s value.
// The walk gives the exact path, so the lemma holds only the equalities
// and index disjuncts that path needs (mode 0). The frugal mode (2)
// instead instantiates read over write for each write and each read index
// on its base or on itself.
//
// Atoms come and go in stack order; the terms they bring are counted, so
// that a term shared by several atoms stays until the last one goes. The
// solver keeps no state per decision level: it looks at EUF only between
// set_ready(true) and the next backtrack.
#ifndef ZENLO_THEORY_ARR_ARRSOLVER_H
#define ZENLO_THEORY_ARR_ARRSOLVER_H

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/configuration.h"
#include "terms/hashtable.h"
#include "terms/term.h"
#include "theory/theorylit.h"

namespace zenlo {

class TermManager;
class TerminationTest;

namespace euf {
class Solver;
}

namespace arr {

// A read built as it stands: the simplifier would fold store(a, i, v)[i]
// to v, and the lemmas are about the read itself.
const Term_* make_read(TermManager& tm, const Term_* array, const Term_* index);

enum class LemmaKind : uint8_t { Write, Row, Ext, Const };

struct Lemma {
  std::vector<TheoryLit> clause;
  // What the instance is recorded under: the write, the read of a frugal
  // row instance, the equality of an ext instance; null for instances
  // found by a walk, which are looked for afresh each time.
  const Term_* key = nullptr;
  LemmaKind kind = LemmaKind::Row;
};

class Solver {
 public:
  struct Stats {
    uint64_t write_lemmas = 0;
    uint64_t row_lemmas = 0;
    uint64_t ext_lemmas = 0;
    uint64_t const_lemmas = 0;
    uint64_t checks = 0;
  };

  // Rewrites the reasons that EUF gives (equalities another solver
  // derived) into literals of the search. May be empty.
  using ReasonExpander = std::function<void(std::vector<TheoryLit>&)>;

  // Requires: every argument outlives the solver; `mode` is 0 (walks) or
  //   2 (frugal).
  Solver(TermManager* tm,
         euf::Solver* euf,
         const Configuration::Theory::Arr* config,
         int mode);

  virtual ~Solver() = default;

  void set_reason_expander(ReasonExpander f) { d_expand = std::move(f); }

  void set_termination_test(TerminationTest* t) { d_termination = t; }

  // With models wanted, arrays that no write connects still get their
  // extensionality instances when EUF keeps them apart, so that the
  // model can tell them apart.
  void set_model_generation(bool on) { d_model_generation = on; }

  // ---- Terms ---------------------------------------------------------------

  // Records the array terms below `atom` (not below an `ite`).
  // Returns: whether any was of interest.
  virtual bool tell_atom(const Term_* atom);

  // Requires: `atom` is the youngest told atom not yet retracted.
  virtual void retract_atom(const Term_* atom);

  // The search dropped a lemma: the instance may be given again.
  void retract_lemma(const Term_* key, LemmaKind kind);

  // ---- Checking ------------------------------------------------------------

  // With `on`, EUF's classes are those of a full assignment and lemmas
  // may be looked for; a backtrack clears it.
  void set_ready(bool on) { d_ready = on; }

  bool ready() const { return d_ready; }

  // Looks for violated instances when ready and no lemma is pending.
  void check(bool approx);

  bool has_lemmas() const { return !d_pending.empty(); }

  // Requires: has_lemmas().
  Lemma take_lemma();

  // ---- Models --------------------------------------------------------------

  // The pairs (index, element) that a model of the array class of `rep`
  // must hold, over terms: each read whose walk reaches the class, and the
  // constant array the class sits on (null when none). Requires: EUF holds
  // the model's classes, and a check found no lemma in them.
  struct ClassModel {
    std::vector<std::pair<const Term_*, const Term_*>> entries;
    const Term_* base = nullptr;
  };

  // After: `out` maps each array class representative to its model.
  void collect_model(hsh::HashMap<const Term_*, ClassModel>& out);

  // The array terms told and not retracted.
  const std::vector<const Term_*>& arrays() const { return d_arrays; }

  const Stats& stats() const { return d_stats; }

 protected:
  // How a walk reached a class: from class `prev` across the write `write`,
  // downwards (from the write to its base) or upwards (from a base to a
  // write on it). A null write marks the start.
  struct WriteEdge {
    const Term_* prev = nullptr;
    const Term_* write = nullptr;
    bool down = false;
  };

  // A pair of array class representatives, ordered by id.
  using ExtKey = std::pair<const Term_*, const Term_*>;

  struct ExtKeyHash {
    size_t operator()(const ExtKey& k) const {
      return std::hash<uint64_t>()((k.first->get_id() << 32)
                                   ^ k.second->get_id());
    }
  };

  // ---- Bookkeeping (arrsolver.cpp) -----------------------------------------
  void collect_terms(const Term_* atom);
  bool interesting(const Term_* t) const;
  void add_term(const Term_* t);
  void remove_term(const Term_* t);
  void drop_pending();
  void queue(Lemma lemma);
  void queue_write_lemma(const Term_* w);
  void poll() const;

  // ---- Lemma pieces (arrsolver.cpp) ----------------------------------------
  const Term_* rep(const Term_* t) const;
  bool known(const Term_* t) const;
  const Term_* equality(const Term_* a, const Term_* b);
  // The constant `name` of the index sort of `array`, made at first use,
  // so that an instance given again names the same index.
  const Term_* witness_index(const std::string& name, const Term_* array);
  // a = b as a literal; over Bool, a or its negation against a constant,
  // else (iff a b), which queue() splits into clauses over a and b.
  TheoryLit eq_lit(const Term_* a, const Term_* b);
  void add_reason(const Term_* a, const Term_* b, Lemma& lemma);
  void add_lit(TheoryLit lit, Lemma& lemma);

  // ---- Generators (arrsolver_check.cpp) ------------------------------------
  void prepare_classes();
  bool generate_write_lemmas();
  bool generate_const_lemmas();
  // The read over write instances of mode 0; another engine may find them
  // its own way.
  virtual bool generate_row_lemmas();
  bool generate_row_lemmas_frugal();

  // Whether the model must agree with read `r`: an engine that lets some
  // reads hold any value (they say nothing in the current model) keeps
  // them out of it.
  virtual bool read_in_model(const Term_* /*r*/) const { return true; }

  bool generate_ext_lemmas();
  bool generate_ext_lemmas(bool second);
  // Walks the weak equivalence of read `r`'s array at its index. With
  // `model` set, records r in each class reached instead of looking for
  // violations. Returns: false when a lemma was queued.
  bool check_propagate_read(const Term_* r,
                            hsh::HashMap<const Term_*, ClassModel>* model);
  bool check_propagate_const(const Term_* k);
  void follow_writes(const Term_* c, const Term_* index);
  void add_row_lemma(const Term_* c, const Term_* x, const Term_* r);
  bool add_consteq_lemma(const Term_* c, const Term_* k2, const Term_* k);
  // Adds the reasons of the walk's path from class `c`, left through the
  // term `exit`, back to the start entered through `start`. The index
  // disjuncts go in with `index` (may be null).
  void add_path(const Term_* c,
                const Term_* exit,
                const Term_* start,
                const Term_* index,
                Lemma& lemma);
  void row_lemma_frugal(const Term_* w, const Term_* j);
  bool ext_lemma(const Term_* a, const Term_* b);
  bool find_witness(const Term_* a, const Term_* b);
  bool check_ext_arg_condition(const Term_* a, const Term_* b);
  void compute_bowtie_relation();

  const Term_* bowtie_representative(const Term_* r) const {
    const Term_* const* b = d_bowtie.get(r);
    return b != nullptr ? *b : r;
  }

  // The array terms of class `c` (none for a class without them).
  const std::vector<const Term_*>& members(const Term_* c) const {
    const auto* m = d_members.get(c);
    return m != nullptr ? *m : d_no_terms;
  }

  bool finite_index(const Term_* array) const;
  bool is_read(const Term_* t) const;
  bool is_write(const Term_* t) const;
  bool is_const(const Term_* t) const;

  // ---- Data ----------------------------------------------------------------
  TermManager* d_tm;
  euf::Solver* d_euf;
  const Configuration::Theory::Arr* d_config;
  int d_mode;
  ReasonExpander d_expand;
  bool d_model_generation = false;
  TerminationTest* d_termination = nullptr;

  // How many told atoms hold each term of interest.
  hsh::HashMap<const Term_*, uint32_t> d_count;
  std::vector<const Term_*> d_arrays;
  std::vector<const Term_*> d_writes;
  std::vector<const Term_*> d_consts;
  std::vector<const Term_*> d_reads;
  // By array term: the reads on it, the writes whose base it is.
  hsh::HashMap<const Term_*, std::vector<const Term_*>> d_reads_on;
  hsh::HashMap<const Term_*, std::vector<const Term_*>> d_writes_on;
  // By array term: the applications that take it as an argument, with
  // the position.
  hsh::HashMap<const Term_*, std::vector<std::pair<const Term_*, uint32_t>>>
      d_arg_of;
  // The read each write's lemma is about.
  TermMap d_write_read;

  // Instances given and not dropped by the search.
  TermSet d_write_done;
  // The iff atoms eq_lit made, and queue()'s clauses of one instance.
  TermSet d_iffs;
  std::vector<std::vector<TheoryLit>> d_split;
  TermSet d_ext_done;
  TermSet d_row_done;

  std::deque<Lemma> d_pending;
  bool d_ready = false;

  // Per check: the array members of each class, the bowtie relation, and
  // the walks' edges.
  hsh::HashMap<const Term_*, std::vector<const Term_*>> d_members;
  std::vector<const Term_*> d_class_reps;
  TermMap d_bowtie;
  hsh::HashMap<const Term_*, WriteEdge> d_edges;
  std::vector<const Term_*> d_walk;

  // Scratch.
  const std::vector<const Term_*> d_no_terms;
  std::vector<const Term_*> d_visit;
  std::vector<TheoryLit> d_reasons;
  Stats d_stats;
};

}  // namespace arr
}  // namespace zenlo

#endif
