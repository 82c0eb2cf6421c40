// The model of the last sat answer, in terms of what the user asserted.
//
// The engine's model speaks of the atoms that preprocessing left, and the
// theory solvers' models of their own terms; a user asks about the terms
// that were asserted, and about any ground term over their symbols. The
// ModelStore bridges the two in two phases:
//
//   compute()       (cheap, right after the check) reads the engine's
//                   values of the atoms of the added formulas and the
//                   theories' values of their terminals (constants and
//                   applications of uninterpreted functions);
//   compute_full()  (on the first question that the cheap phase cannot
//                   answer) puts those facts into a private congruence
//                   closure, gives each class of terms one value (a number,
//                   an enumeration value, or an abstract value "@N.S" of an
//                   uninterpreted sort S), walks the RewriteStack backwards
//                   so that the symbols preprocessing removed get values,
//                   and keeps the classes as a table from terms to values
//                   and from applications over values to values.
//
// get_value(t) then evaluates any ground term bottom-up: leaves by the
// table (a constant met nowhere gets its type's default and keeps it),
// interpreted operators by the construction-time simplifier over values,
// uninterpreted applications by their function table, whose missing points
// take the function's default (the value of its first point). The same
// default closes the function tables that an interpreter prints, so a
// printed model and get_value agree.
//
// Abstract values are constants whose names begin with "@" (the abstract
// values termsimpl::is_value accepts): "@" + counter + "." + the sort's
// name, distinct per class. They are plain symbols of the term store, so a
// printed model can be read back once they are declared.
//
// A store is reference counted (the count is its first field): the
// environment holds one reference to the current model and a C model
// handle another. When the environment drops its reference while a handle
// holds one, detach() finishes the computation and forgets the engine and
// the theories, so the handle stays usable across later checks. Term
// pointers stay valid as long as the term store is not collected.
#ifndef ZENLO_PREPROCESS_MODELSTORE_H
#define ZENLO_PREPROCESS_MODELSTORE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/exception.h"
#include "preprocess/adhoccalculator.h"
#include "terms/hashtable.h"
#include "terms/numbers.h"
#include "terms/symboltag.h"
#include "terms/term.h"
#include "terms/termsimplifier.h"

namespace zenlo {

class DpllSolver;
class Logger;
class PolarityChecker;
class RewriteStack;
class TermManager;
class TermNormalizer;
class TerminationTest;
class TheoryManager;

class ModelStore {
 public:
  ZENLO_DECLARE_ERROR;

  using Assignment = std::pair<const Term_*, const Term_*>;

  // Walks the pairs (term, value) of the model: the user's constants and
  // the applications of its functions, over values.
  class ModelIterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Assignment;
    using difference_type = std::ptrdiff_t;
    using pointer = const Assignment*;
    using reference = const Assignment&;

    ModelIterator(const std::vector<Assignment>* pairs, size_t pos)
        : d_pairs(pairs), d_pos(pos) {}

    const Assignment& operator*() const { return (*d_pairs)[d_pos]; }

    const Assignment* operator->() const { return &(*d_pairs)[d_pos]; }

    ModelIterator& operator++() {
      ++d_pos;
      return *this;
    }

    bool operator==(const ModelIterator& o) const { return d_pos == o.d_pos; }

    bool operator!=(const ModelIterator& o) const { return d_pos != o.d_pos; }

   private:
    const std::vector<Assignment>* d_pairs;
    size_t d_pos;
  };

  // Theory options that fix the value of operations left open by the
  // standard (division by zero and the like).
  struct Options {
    int na_div_by_zero_mode = 1;
    int bv_div_by_zero_mode = 0;
  };

  // - Requires: each non-null argument outlives the store or detach().
  //   `rewrites`, `dpll`, `theory`, `polarity` and `normalizer` may be
  //   null. With `full` false only the Boolean abstraction is of interest:
  //   a term without an engine value is its own value.
  // - After: reference count 1, nothing computed.
  ModelStore(TermManager* tm,
             RewriteStack* rewrites,
             DpllSolver* dpll,
             TheoryManager* theory,
             PolarityChecker* polarity,
             TermNormalizer* normalizer,
             bool full,
             const Options& options);
  ~ModelStore();
  ModelStore(const ModelStore&) = delete;
  ModelStore& operator=(const ModelStore&) = delete;

  // ---- References ----------------------------------------------------------

  void acquire() { ++d_refcount; }

  // Drops one reference; the store is destroyed at zero.
  static void release(ModelStore* m);

  int refcount() const { return d_refcount; }

  // ---- Building ------------------------------------------------------------

  // Requires: compute() has not run.
  // After: the symbols of `f` appear in the model.
  void add_formula(const Term_* f);

  // Reads the engine's and the theories' values (state 1).
  // - Requires: the engine still holds the model of the sat answer.
  void compute();

  // Finishes what the engine and theories are needed for, then forgets
  // them (and the rewrite stack and polarity checker).
  // - After: get_value and iteration work without them.
  void detach();

  // ---- Questions -----------------------------------------------------------

  // Returns: the value of the ground term `t`.
  // - Throws: error "Invalid model" when the facts of the answer contradict
  //   each other (an internal failure), "Impossible to assign a concrete
  //   model value to " + term.
  const Term_* get_value(const Term_* t);

  // Returns: the value that a term of `type` the model never met takes.
  const Term_* get_default_value(const Type* type) {
    return default_value(type);
  }

  // The pairs of the model, computed on first use.
  ModelIterator begin();
  ModelIterator end();
  const std::vector<Assignment>& assignments();

  // Returns: the value that the table of `f` gives to arguments it has no
  //   point for; null in the Boolean abstraction.
  const Term_* function_default(const Symbol* f);

  // Returns: whether `t` is a value a model may hold (true, false, numbers,
  //   enumeration and rounding values, array values, abstract values).
  bool is_good_model_value(const Term_* t) const;

  // Returns: the formulas given by add_formula that do not evaluate to
  //   true; empty for a correct model.
  TermList debug_check();

  int state() const { return d_state; }

  void set_logger(Logger* logger) { d_logger = logger; }

  void set_termination_test(TerminationTest* test) { d_termination = test; }

  // Takes ownership of `calc`, used for the ad-hoc rewrite steps whose
  // dst() has this tag.
  // - Throws: error "AdHoc calculations for " + tag + " already
  //   registered".
  void register_ad_hoc_rule(SymbolTag::tag tag,
                            adhoccalculator::AdHocCalculator* calc);

 private:
  friend class ModelTermSimplifier;

  // What compute() records for compute_full(): an atom with its truth
  // value (second null), or a term with its theory value (flag true).
  struct ModelData {
    const Term_* term;
    const Term_* second;
    bool flag;
  };

  // ---- compute() (modelstore.cpp) ----------------------------------------
  void find_terminals();
  void read_atom_values();
  void read_terminal_values();
  const Term_* theory_value(const Term_* t);
  void read_rewrite_steps();

  // ---- compute_full() (modelstore_classes.cpp) ---------------------------
  void check_compute_full();
  void compute_full();
  void build_classes(std::vector<TermList>& classes);
  void value_classes(const std::vector<TermList>& classes);
  const Term_* class_value(const TermList& members);
  const Term_* array_description(const TermList& members) const;
  size_t array_depth(const Type* type) const;
  void value_array_cells(const Term_* description);
  void apply_rewrite_steps();
  void collect_points(const std::vector<TermList>& classes);

  // ---- Values (modelstore_values.cpp) ------------------------------------
  const Term_* evaluate(const Term_* t);
  const Term_* evaluate_node(const Term_* t, TermList& args);
  const Term_* apply_point(const Term_* app);
  const Term_* default_value(const Type* type);
  const Term_* fresh_value(const Type* type, const TermList* members);
  const Term_* get_abstract_model_value(const Type* type);
  const Term_* fresh_number(const Type* type);
  const Term_* new_abstract_value(const Type* type);
  bool is_solver_made(const Term_* t) const;
  bool is_terminal(const Term_* t) const;
  void init_iter_terminals();

  // The simplifier of model evaluation is in force while a value is
  // computed; the store's own switches come back at the end, also by
  // exception.
  class SimplifierScope {
   public:
    explicit SimplifierScope(ModelStore& m);
    ~SimplifierScope();
    SimplifierScope(const SimplifierScope&) = delete;
    SimplifierScope& operator=(const SimplifierScope&) = delete;

   private:
    TermManager* d_tm;
    TermSimplifier* d_old;
    bool d_old_on;
  };

  // ---- Data ----------------------------------------------------------------
  int d_refcount = 1;     // first field: who stores a pointer adds one
  int d_state = 0;        // 0 nothing, 1 compute done, 2 compute_full done
  std::string d_failure;  // of a detach that could not finish
  TermManager* d_tm;
  RewriteStack* d_rewrites;
  DpllSolver* d_dpll;
  TheoryManager* d_theory;
  PolarityChecker* d_polarity;
  TermNormalizer* d_normalizer;
  bool d_full;
  Options d_options;
  Logger* d_logger = nullptr;
  TerminationTest* d_termination = nullptr;
  std::unique_ptr<TermSimplifier> d_simplifier;

  TermList d_formulas;
  TermMap d_values;  // term (or point) to value
  std::vector<ModelData> d_constraints;
  std::vector<ModelData> d_rewrite_list;
  TermList d_terminals;  // constants and applications, by first use
  TermList d_atoms;      // atoms with an engine variable
  TermSet d_seen;        // of find_terminals
  hsh::HashMap<const Type*, TermList> d_abstract;  // values handed out
  TermSet d_used_values;                           // values given to some class
  hsh::HashMap<const Type*, QNumber> d_counters;   // of fresh numbers
  uint64_t d_next_abstract = 1;
  hsh::HashMap<const Symbol*, const Term_*> d_function_defaults;
  std::array<std::unique_ptr<adhoccalculator::AdHocCalculator>,
             SymbolTag::num_tags>
      d_adhoc_rules;

  std::vector<Assignment> d_iter_pairs;
  bool d_iter_ready = false;

  // Scratch of evaluate().
  std::vector<std::pair<const Term_*, bool>> d_work;
  TermList d_args;
};

// The simplifier in force while a model evaluates: it closes the cases
// that the standard operators leave open (division by zero, equality of
// abstract values) and passes every other application on to the
// simplifier that was installed before it.
class ModelTermSimplifier : public TermSimplifier {
 public:
  ModelTermSimplifier(TermManager* tm, const ModelStore::Options& options)
      : d_tm(tm), d_options(options) {}

  void set_next(TermSimplifier* next) { d_next = next; }

  const Term_* operator()(const Symbol* symbol, TermList& args) override;

 private:
  const Term_* bv_div_by_zero(SymbolTag::tag tag, const TermList& args);

  TermManager* d_tm;
  ModelStore::Options d_options;
  TermSimplifier* d_next = nullptr;
  // Set while an array value is brought to its one form, whose writes
  // must not be brought to it again.
  bool d_in_canonical = false;
};

}  // namespace zenlo

#endif
