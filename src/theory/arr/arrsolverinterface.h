// ArrSolverInterface: the arrays solver as the TheoryManager sees it,
// slot 4, named "arr". An extension of EUF: reads, writes and constant
// arrays are EUF's terms, and this adapter hands arr::Solver EUF's classes
// and reasons, lets it look for violated instances once the manager says
// EUF holds a full assignment (build_abstract_model), and gives its
// lemmas to the search. The walk mode (0, the default) and the frugal one
// (2) share arr::Solver; mode 1 is arr::ArraySolverLOD, lemmas on demand.
//
// Models: an array class's value is its constant base (or a default one)
// with a write for each read whose walk reaches the class; the index and
// element values come from the combined model, through the value source
// the manager installs.
#ifndef ZENLO_THEORY_ARR_ARRSOLVERINTERFACE_H
#define ZENLO_THEORY_ARR_ARRSOLVERINTERFACE_H

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "base/configuration.h"
#include "terms/hashtable.h"
#include "theory/arr/arrsolver.h"
#include "theory/theorysolver.h"

namespace zenlo {

class EufSolverInterface;

class ArrSolverInterface : public TheorySolver {
 public:
  // The value of a term in the combined model, or null.
  using ValueSource = std::function<const Term_*(const Term_*)>;

  // Requires: all outlive the solver.
  // Throws: error when theory.arr.mode names no engine.
  ArrSolverInterface(const Configuration* config,
                     TermManager* tm,
                     EufSolverInterface* euf);

  const char* get_name() const override { return "arr"; }

  bool is_euf_extension() const override { return true; }

  void set_termination_test(TerminationTest* test) override;

  void set_value_source(ValueSource f) { d_value = std::move(f); }

  // Owns the atoms of the arrays theory (see theory_of); never wants a
  // value, since EUF hears them all.
  std::pair<bool, bool> tell_atom(const Term_* atom) override;
  void retract_atom(const Term_* atom) override;

  bool took_back_facts() override { return false; }

  void cancel_until(int level) override;
  bool check(bool approx) override;
  bool has_lemmas() override;
  TheoryLemma get_lemma(std::vector<TheoryLit>& clause) override;
  void retract_lemma(void* data) override;

  // EUF holds a full assignment: lemmas may be looked for.
  void build_abstract_model() override;
  lbool equal_in_model(const Term_* a, const Term_* b) override;

  void build_model() override;
  // An array value for a term of array type that the solver knows.
  const Term_* get_model_value(const Term_* term) override;

  bool is_alien(const Term_* term) override;

  Stats get_stats() const override;

  arr::Solver& engine() { return *d_solver; }

 private:
  const Term_* class_value(const Term_* rep);
  const Term_* default_element(const Type* array_type);

  const Configuration* d_config;
  EufSolverInterface* d_euf;
  std::unique_ptr<arr::Solver> d_solver;
  ValueSource d_value;

  // The lemmas the search holds, by the id their handle carries.
  struct Given {
    const Term_* key;
    arr::LemmaKind kind;
  };

  std::vector<Given> d_given;
  std::vector<uint32_t> d_free;

  hsh::HashMap<const Term_*, arr::Solver::ClassModel> d_model;
  TermMap d_values;
};

}  // namespace zenlo

#endif
