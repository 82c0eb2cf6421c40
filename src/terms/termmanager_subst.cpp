// Substitution, existential binding and free variables: bottom-up walks
// with the TermVisitor, memoised per walk.
#include <algorithm>
#include <iterator>
#include <string>

#include "terms/termmanager.h"
#include "terms/termvisitor.h"
#include "terms/typecheckscope.h"

namespace zenlo {

namespace {

// Rebuilds each visited term from its children's images; a key of the map
// is replaced whole and not descended into.
class SubstituteCallback : public TermVisitorCallback {
 public:
  SubstituteCallback(TermManager& tm, const TermMap& map)
      : d_tm(tm), d_map(map) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (preorder) {
      return d_map.contains(t) ? VisitResult::Skip : VisitResult::Process;
    }
    if (const Term_* const* v = d_map.get(t)) {
      d_result.insert(t, *v);
    } else if (t->get_arity() == 0) {
      d_result.insert(t, t);
    } else {
      d_args.clear();
      for (const Term_* c : *t) {
        d_args.push_back(*d_result.get(c));
      }
      d_result.insert(t, d_tm.make_term(t->get_symbol(), d_args));
    }
    return VisitResult::Process;
  }

  const Term_* image(const Term_* t) const { return *d_result.get(t); }

 private:
  TermManager& d_tm;
  const TermMap& d_map;
  TermMap d_result;
  TermList d_args;
};

}  // namespace

void TermManager::substitute(const TermList& terms,
                             const TermMap& map,
                             TermList& out,
                             bool typecheck) {
  if (typecheck) {
    for (const auto& kv : map) {
      if (!is_subtype(kv.second->get_type(), kv.first->get_type())) {
        throw error("substitution between terms of incompatible types");
      }
    }
  }
  TypecheckScope scope(*this, typecheck);
  SubstituteCallback cb(*this, map);
  TermVisitor<SubstituteCallback> visitor(*this, cb);
  out.clear();
  for (const Term_* t : terms) {
    // Keeping the visitor's marks between roots shares the memo of
    // common subterms.
    visitor.visit(t, false);
    out.push_back(cb.image(t));
  }
}

const Term_* TermManager::substitute(const Term_* term,
                                     const TermMap& map,
                                     bool typecheck) {
  if (map.empty()) {
    return term;
  }
  TermList in(1, term);
  TermList out;
  substitute(in, map, out, typecheck);
  return out[0];
}

const Term_* TermManager::substitute(const Term_* term,
                                     const TermList& from,
                                     const TermList& to,
                                     TermMap& out_map,
                                     bool typecheck) {
  if (from.size() != to.size()) {
    throw error("Incompatible arguments to substitute");
  }
  for (size_t i = 0; i < from.size(); ++i) {
    out_map[from[i]] = to[i];
  }
  return substitute(term, out_map, typecheck);
}

const Term_* TermManager::substitute(const Term_* term,
                                     const TermList& from,
                                     const TermList& to,
                                     bool typecheck) {
  TermMap map;
  return substitute(term, from, to, map, typecheck);
}

const Term_* TermManager::substitute(const Term_* term,
                                     const Term_* const* from,
                                     const Term_* const* to,
                                     size_t n,
                                     bool typecheck) {
  TermMap map;
  for (size_t i = 0; i < n; ++i) {
    map[from[i]] = to[i];
  }
  return substitute(term, map, typecheck);
}

const Term_* TermManager::existentially_quantify(const Term_* term,
                                                 const TermList& vars) {
  if (vars.empty()) {
    return term;
  }
  TermList bound;
  for (const Term_* v : vars) {
    if (v->get_arity() != 0 || is_variable(v->get_symbol())) {
      throw error("type error. term " + v->to_shallow_str()
                  + " is not a constant");
    }
    bound.push_back(
        make_named_variable(v->get_symbol()->get_name(), v->get_type()));
  }
  const Term_* body = substitute(term, vars, bound);
  for (size_t i = bound.size(); i-- > 0;) {
    body = make_exists(bound[i], body);
  }
  return body;
}

// ----------------------------------------------------------------------
// Free variables
// ----------------------------------------------------------------------

namespace {

const TermList& empty_list() {
  static const TermList empty;
  return empty;
}

bool by_id(const Term_* a, const Term_* b) {
  return a->get_id() < b->get_id();
}

}  // namespace

const TermList& FreeVariableMap::get(const Term_* t) const {
  const TermList* const* l = d_map.get(t);
  return l == nullptr || *l == nullptr ? empty_list() : **l;
}

bool FreeVariableMap::is_free_in(const Term_* var, const Term_* t) const {
  const TermList& l = get(t);
  return std::binary_search(l.begin(), l.end(), var, by_id);
}

// Each subterm's set is the union of its children's, minus the bound
// variable at a quantifier. When a node's set equals a child's, the list is
// shared, not copied: a deep chain over one variable holds one list.
class FreeVariableVisitorCallback : public TermVisitorCallback {
 public:
  FreeVariableVisitorCallback(TermManager& tm, FreeVariableMap& out)
      : d_tm(tm), d_out(out) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    if (!preorder) {
      d_out.d_map.insert(t, compute(t));
    }
    return VisitResult::Process;
  }

 private:
  const TermList* compute(const Term_* t) {
    if (t->get_arity() == 0) {
      return d_tm.is_variable(t->get_symbol()) ? intern(TermList(1, t))
                                               : nullptr;
    }
    const TermList* first = nullptr;
    bool several = false;
    for (const Term_* c : *t) {
      const TermList* l = *d_out.d_map.get(c);
      if (l != nullptr && l != first) {
        several = several || first != nullptr;
        first = first == nullptr ? l : first;
      }
    }
    const TermList* result = first;
    if (several) {
      TermList merged;
      for (const Term_* c : *t) {
        if (const TermList* l = *d_out.d_map.get(c)) {
          merged.insert(merged.end(), l->begin(), l->end());
        }
      }
      std::sort(merged.begin(), merged.end(), by_id);
      merged.erase(std::unique(merged.begin(), merged.end()), merged.end());
      result = intern(std::move(merged));
    }
    if (result != nullptr && d_tm.is_quantifier(t->get_symbol())) {
      const Term_* var = t->get_child(0);
      if (std::binary_search(result->begin(), result->end(), var, by_id)) {
        TermList rest;
        std::remove_copy(
            result->begin(), result->end(), std::back_inserter(rest), var);
        result = rest.empty() ? nullptr : intern(std::move(rest));
      }
    }
    return result;
  }

  const TermList* intern(TermList l) {
    d_out.d_sets.push_back(std::make_unique<TermList>(std::move(l)));
    return d_out.d_sets.back().get();
  }

  TermManager& d_tm;
  FreeVariableMap& d_out;
};

FreeVariableMap TermManager::get_free_variable_map(const Term_* term) {
  FreeVariableMap result;
  FreeVariableVisitorCallback cb(*this, result);
  TermVisitor<FreeVariableVisitorCallback> visitor(*this, cb);
  visitor.visit(term);
  return result;
}

FreeVariableMap TermManager::get_free_variable_set_map(const Term_* term) {
  return get_free_variable_map(term);
}

}  // namespace zenlo
