// laz::DiophantineSystem: whether linear equations with integer
// coefficients have an integer solution. It solves the equations one
// variable at a time, always for the variable with the smallest absolute
// coefficient: a unit coefficient gives a definition at once; any other
// splits the coefficients by it and introduces a fresh variable, which
// makes the coefficients strictly smaller, so the process ends. An
// equation whose coefficients' gcd does not divide its constant refutes
// the system.
//
// Each input equation carries a tag, the monomial 1 * x(-id): all
// arithmetic keeps it, so the tags of any derived equation are the
// multipliers of the inputs it came from, and a refutation names its
// inputs with their coefficients. Positive variables are the problem's,
// negative ones are tags and never count for feasibility.
//
// The incremental form follows a stack of equations: pop_equation undoes
// exactly what adding the last one led to, fresh variables included.
#ifndef ZENLO_THEORY_LA_DIOPHANTINESYSTEM_H
#define ZENLO_THEORY_LA_DIOPHANTINESYSTEM_H

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/exception.h"
#include "theory/la/equation.h"

namespace zenlo {

class TerminationTest;

namespace laz {

class Equation : public la::Equation {
 public:
  Equation() = default;

  explicit Equation(const la::Equation& e) : la::Equation(e) {}

  // this := this + c * other.
  void comb_with(const Equation& other, const QNumber& c) {
    add_multiple(other, c);
  }

  // this := a * this + b * other.
  void comb_with(const QNumber& a, const Equation& other, const QNumber& b) {
    scale(a);
    add_multiple(other, b);
  }

  // Replaces `var` by `definition` (an expression for var: its monomials
  // and constant, var itself absent).
  void substitute_var(int var, const Equation& definition);

  // The gcd of the coefficients of the positive variables does not divide
  // the constant (a constant other than 0 with no such variables).
  bool infeasible() const;

  // Divides by the gcd of the positive variables' coefficients when it
  // divides the constant: without it, 2t = 0 would split into 2t' = 0
  // forever.
  void normalize();
};

// Where fresh variables come from: the solver's numbering.
class FreshVarProvider {
 public:
  virtual ~FreshVarProvider() = default;
  virtual int new_var() = 0;
  virtual void free_var(int var) = 0;
};

class DiophantineSystem {
 public:
  ZENLO_DECLARE_ERROR;

  DiophantineSystem(FreshVarProvider* vars, bool incremental);

  // Requires: id > 0 and not in the system; `eq` over positive variables
  //   with rational coefficients (scaled to integers here, the tag with
  //   them, so multipliers refer to `eq` as given).
  void add_equation(int id, const la::Equation& eq);

  // Requires: the incremental form and an equation on the stack.
  // After: the state before the last add_equation.
  void pop_equation();

  bool has_equation(int id) const;
  int get_last_added_equation() const;

  size_t size() const { return d_stack.size(); }

  // Returns: false when the equations have no integer solution; then
  //   get_unsat_proof answers.
  bool check();

  // Forgets everything (the scratch form, between uses).
  void reset();

  // The input equations of the refutation, and their multipliers: their
  // combination has integer coefficients whose gcd does not divide its
  // constant.
  void get_unsat_proof(std::vector<int>* constraints,
                       std::vector<QNumber>* coefficients) const;

  bool has_substitution(int var) const { return d_subst.count(var) != 0; }

  // Copies `eq` into `out` with every solved variable replaced, until none
  // is left. `used` (may be null) gets the ids of the input equations
  // involved; `proof` (may be null) the combination of their tags.
  // Returns: whether anything was replaced.
  bool apply_substitution(const la::Equation& eq,
                          la::Equation& out,
                          std::vector<int>* used,
                          la::Equation* proof) const;

  // After a successful check: each solved variable as an expression over
  // free variables (fresh ones included).
  void build_model();
  bool get_model_value(int var, la::Equation* out) const;
  void apply_model(la::Equation& eq) const;

  bool is_artificial_var(int var) const { return d_artificial.count(var) != 0; }

  void set_termination_test(TerminationTest* test) { d_termination = test; }

  std::string dump_tableau() const;

 private:
  struct HeapElem {
    QNumber abs_coeff;
    int var;
    int eq;
  };

  struct Undo {
    enum Kind { SetEq, EraseEq, Solved, Fresh } kind;

    int key;
    std::optional<Equation> old;
  };

  bool do_check();
  void push_var(const Equation& eq, int id);
  void init_var_queue();
  Equation decompose(int var, const Equation& eq, int* fresh);
  bool substitute(int var, int id, const Equation& definition);
  void set_eq(int id, Equation eq);
  void erase_eq(int id);

  FreshVarProvider* d_vars;
  bool d_incremental;
  TerminationTest* d_termination = nullptr;
  // Input ids in order of addition, with the undo position of each.
  std::vector<std::pair<int, size_t>> d_stack;
  std::map<int, Equation> d_working;
  std::unordered_map<int, Equation> d_subst;
  std::vector<int> d_solved_order;
  std::unordered_map<int, int> d_artificial;  // var -> equation id
  std::vector<HeapElem> d_heap;
  std::vector<Undo> d_undo;
  std::optional<Equation> d_infeasible;
  bool d_last_check_ok = true;
  std::unordered_map<int, Equation> d_model;
};

}  // namespace laz
}  // namespace zenlo

#endif
