// Asserting and solving: the functions of the C interface on the road to
// an answer.
#include "api/capi.h"
#include "env/environment.h"

using namespace zenlo;

extern "C" {

int zenlo_assert_formula(zenlo_env e, zenlo_term formula) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    r.env->assert_formula(capi::term_of(formula));
    return 0;
  });
}

int zenlo_solve(zenlo_env e) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    switch (r.env->check()) {
      case 0: return static_cast<int>(ZENLO_UNSAT);
      case 1: return static_cast<int>(ZENLO_SAT);
      default: return static_cast<int>(ZENLO_UNKNOWN);
    }
  });
}

}  // extern "C"
