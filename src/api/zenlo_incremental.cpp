// Assert and solve, incrementally: backtrack points, assumptions,
// preferred branching, and what the environment can tell about its
// assertions and its search.
#include <sstream>
#include <vector>

#include "api/capi.h"
#include "api/capi_terms.h"
#include "env/environment.h"

using namespace zenlo;

namespace {

// An array of the interface allocator, with its length in `*size`.
zenlo_term* term_array(const TermList& ts, size_t* size) {
  auto* out =
      static_cast<zenlo_term*>(capi::alloc(ts.size() * sizeof(zenlo_term)));
  for (size_t i = 0; i < ts.size(); ++i) {
    out[i] = capi::wrap(ts[i]);
  }
  if (size != nullptr) {
    *size = ts.size();
  }
  return out;
}

int result_code(int r) {
  return r == 1 ? ZENLO_SAT : r == 0 ? ZENLO_UNSAT : ZENLO_UNKNOWN;
}

}  // namespace

extern "C" {

// ---------------------------------------------------------------------------
// Backtrack points
// ---------------------------------------------------------------------------

int zenlo_push_backtrack_point(zenlo_env e) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    r.env->push_backtrack_point();
    return 0;
  });
}

int zenlo_pop_backtrack_point(zenlo_env e) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    r.env->pop_backtrack_point();
    return 0;
  });
}

int zenlo_num_backtrack_points(zenlo_env e) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    return static_cast<int>(r.env->num_backtrack_points());
  });
}

// ---------------------------------------------------------------------------
// Assumptions
// ---------------------------------------------------------------------------

int zenlo_solve_with_assumptions(zenlo_env e,
                                 zenlo_term* assumptions,
                                 size_t n) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    return result_code(r.env->check_with_assumptions(
        capi::terms_of(assumptions, n, "assumptions")));
  });
}

zenlo_term* zenlo_get_unsat_assumptions(zenlo_env e, size_t* size) {
  return capi::guarded(
      e, static_cast<zenlo_term*>(nullptr), [&](capi::EnvRecord& r) {
        return term_array(r.env->get_unsat_assumptions(), size);
      });
}

// ---------------------------------------------------------------------------
// Branching
// ---------------------------------------------------------------------------

int zenlo_add_preferred_for_branching(zenlo_env e, zenlo_term atom, int value) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    r.env->add_preferred_for_branching(capi::term_of(atom), value);
    return 0;
  });
}

int zenlo_clear_preferred_for_branching(zenlo_env e) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    r.env->clear_preferred_for_branching();
    return 0;
  });
}

// ---------------------------------------------------------------------------
// Inspection
// ---------------------------------------------------------------------------

zenlo_term* zenlo_get_asserted_formulas(zenlo_env e, size_t* size) {
  return capi::guarded(
      e, static_cast<zenlo_term*>(nullptr), [&](capi::EnvRecord& r) {
        return term_array(r.env->get_asserted_formulas(), size);
      });
}

zenlo_term* zenlo_get_theory_lemmas(zenlo_env e, size_t* size) {
  return capi::guarded(
      e, static_cast<zenlo_term*>(nullptr), [&](capi::EnvRecord& r) {
        return term_array(r.env->get_theory_lemmas(), size);
      });
}

char* zenlo_get_search_stats(zenlo_env e) {
  return capi::guarded(e, static_cast<char*>(nullptr), [&](capi::EnvRecord& r) {
    std::ostringstream out;
    r.env->print_stats(out, "");
    return capi::alloc_string(out.str());
  });
}

// ---------------------------------------------------------------------------
// Garbage collection
// ---------------------------------------------------------------------------

int zenlo_gc_env(zenlo_env e, zenlo_term* tokeep, size_t num) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    r.env->gc(capi::terms_of(tokeep, num, "tokeep"), nullptr);
    return 0;
  });
}

}  // extern "C"
