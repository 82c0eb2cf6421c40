// Term services of the C interface: walking a term with a user callback,
// and substitution.
#include "api/capi.h"
#include "api/capi_terms.h"
#include "terms/termvisitor.h"

using namespace zenlo;
using capi::EnvRecord;

namespace zenlo {

// Runs a C callback as a visitor callback. The callback's answers
// (ZENLO_VISIT_PROCESS, _SKIP, _ABORT) map onto the walk's; any other
// answer stops the walk, since an unknown answer must not be read as
// "go on".
class CTermVisitorCallback : public TermVisitorCallback {
 public:
  CTermVisitorCallback(zenlo_env env,
                       zenlo_visit_term_callback func,
                       void* user_data)
      : d_env(env), d_func(func), d_user_data(user_data) {}

  VisitResult visit(const Term_* t, bool preorder) override {
    switch (d_func(d_env, capi::wrap(t), preorder ? 1 : 0, d_user_data)) {
      case ZENLO_VISIT_PROCESS: return VisitResult::Process;
      case ZENLO_VISIT_SKIP: return VisitResult::Skip;
      default: return VisitResult::Abort;
    }
  }

 private:
  zenlo_env d_env;
  zenlo_visit_term_callback d_func;
  void* d_user_data;
};

}  // namespace zenlo

extern "C" {

int zenlo_visit_term(zenlo_env e,
                     zenlo_term t,
                     zenlo_visit_term_callback func,
                     void* user_data) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    if (func == nullptr) {
      throw capi::invalid_handle("callback");
    }
    CTermVisitorCallback cb(e, func, user_data);
    TermVisitor<CTermVisitorCallback> visitor(r.tm(), cb);
    visitor.visit(capi::term_of(t));
    return 0;
  });
}

zenlo_term zenlo_apply_substitution(zenlo_env e,
                                    zenlo_term t,
                                    size_t num_to_subst,
                                    zenlo_term* to_subst,
                                    zenlo_term* values) {
  return capi::guarded(e, capi::error_term(), [&](EnvRecord& r) {
    TermList from = capi::terms_of(to_subst, num_to_subst, "to_subst");
    TermList to = capi::terms_of(values, num_to_subst, "values");
    return capi::wrap(r.env->apply_substitution(
        capi::term_of(t), from.data(), to.data(), num_to_subst));
  });
}

}  // extern "C"
