#include "theory/euf/eufmodel.h"

#include <algorithm>

#include "terms/termmanager.h"
#include "theory/euf/eufsolver.h"

namespace zenlo {
namespace euf {

namespace {

// Rank of a member as the term that stands for its class; lower is
// better.
int standing_rank(const Term_* t, TermManager& tm) {
  const Symbol* s = t->get_symbol();
  if (t == tm.make_true() || t == tm.make_false()
      || (s->get_arity() == 0 && (tm.is_number(s) || tm.is_enum_value(s)))) {
    return 0;
  }
  if (s->get_arity() == 0) {
    return 2;
  }
  return tm.get_tag(s) == SymbolTag::ITE ? 3 : 4;
}

}  // namespace

void Model::clear() {
  d_value.clear();
  d_members.clear();
  d_classes.clear();
  d_functions.clear();
}

const Term_* Model::choose_standing(const TermList& members,
                                    TermManager& tm,
                                    const TermSet* preferred) const {
  const Term_* best = nullptr;
  int best_rank = 0;
  for (const Term_* t : members) {
    int rank = standing_rank(t, tm);
    if (rank > 0 && preferred != nullptr && preferred->contains(t)) {
      rank = 1;
    }
    if (best == nullptr || rank < best_rank
        || (rank == best_rank && t->get_id() < best->get_id())) {
      best = t;
      best_rank = rank;
    }
  }
  return best;
}

void Model::build(const Solver& solver,
                  TermManager& tm,
                  const TermSet* preferred) {
  clear();
  TermList reps;
  solver.get_all_representatives(reps);
  TermList members;
  for (const Term_* r : reps) {
    members.clear();
    solver.get_congruence_class(r, members);
    const Term_* value = choose_standing(members, tm, preferred);
    for (const Term_* m : members) {
      d_value.insert(m, value);
    }
    d_members.insert(value, members);
    d_classes.push_back(value);
  }
  std::sort(d_classes.begin(), d_classes.end(), [](auto* a, auto* b) {
    return a->get_id() < b->get_id();
  });
  for (const auto& [term, value] : d_value) {
    const Symbol* f = term->get_symbol();
    if (!tm.is_uninterpreted_function(f)) {
      continue;
    }
    FunctionEntry e{TermList(), value};
    for (const Term_* a : *term) {
      e.args.push_back(value_of(a));
    }
    d_functions[f].push_back(std::move(e));
  }
  // Congruent applications give the same point; keep one, in a stable
  // order.
  for (auto& [f, entries] : d_functions) {
    auto by_args = [](const FunctionEntry& a, const FunctionEntry& b) {
      return std::lexicographical_compare(
          a.args.begin(),
          a.args.end(),
          b.args.begin(),
          b.args.end(),
          [](auto* x, auto* y) { return x->get_id() < y->get_id(); });
    };
    std::sort(entries.begin(), entries.end(), by_args);
    entries.erase(
        std::unique(entries.begin(),
                    entries.end(),
                    [](const FunctionEntry& a, const FunctionEntry& b) {
                      return a.args == b.args;
                    }),
        entries.end());
  }
}

const Term_* Model::value_of(const Term_* t) const {
  const Term_* const* v = d_value.get(t);
  return v == nullptr ? nullptr : *v;
}

const TermList* Model::members_of(const Term_* value) const {
  return d_members.get(value);
}

const std::vector<Model::FunctionEntry>* Model::function_table(
    const Symbol* f) const {
  return d_functions.get(f);
}

}  // namespace euf
}  // namespace zenlo
