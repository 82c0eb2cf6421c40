// The frames of the term constructors of the C interface: unwrap the
// handles, call one TermManager constructor, wrap the term. Shared by the
// construction files, one per family group.
#ifndef ZENLO_API_CAPI_MAKE_H
#define ZENLO_API_CAPI_MAKE_H

#include "api/capi.h"
#include "api/capi_terms.h"
#include "terms/termmanager.h"

namespace zenlo {
namespace capi {

using Nullary = const Term_* (TermManager::*)();
using Unary = const Term_* (TermManager::*)(const Term_*);
using Binary = const Term_* (TermManager::*)(const Term_*, const Term_*);
using Ternary = const Term_* (TermManager::*)(const Term_*,
                                              const Term_*,
                                              const Term_*);
using Indexed = const Term_* (TermManager::*)(size_t, const Term_*);

template <class F>
zenlo_term make(zenlo_env e, F&& body) {
  return guarded(
      e, error_term(), [&](EnvRecord& r) { return wrap(body(r.tm())); });
}

inline zenlo_term make0(zenlo_env e, Nullary op) {
  return make(e, [&](TermManager& tm) { return (tm.*op)(); });
}

inline zenlo_term make1(zenlo_env e, zenlo_term a, Unary op) {
  return make(e, [&](TermManager& tm) { return (tm.*op)(term_of(a)); });
}

inline zenlo_term make2(zenlo_env e, zenlo_term a, zenlo_term b, Binary op) {
  return make(
      e, [&](TermManager& tm) { return (tm.*op)(term_of(a), term_of(b)); });
}

inline zenlo_term make3(
    zenlo_env e, zenlo_term a, zenlo_term b, zenlo_term c, Ternary op) {
  return make(e, [&](TermManager& tm) {
    return (tm.*op)(term_of(a), term_of(b), term_of(c));
  });
}

inline zenlo_term make_indexed(zenlo_env e,
                               size_t index,
                               zenlo_term a,
                               Indexed op) {
  return make(e, [&](TermManager& tm) { return (tm.*op)(index, term_of(a)); });
}

}  // namespace capi
}  // namespace zenlo

#endif
