// Types and declarations of the C interface.
#include <string>
#include <vector>

#include "api/capi.h"
#include "api/capi_terms.h"

using namespace zenlo;
using capi::EnvRecord;

namespace {

zenlo_type make_type(zenlo_env e,
                     const Type* (*get)(TermManager&, EnvRecord&)) {
  return capi::guarded(e, capi::error_type(), [&](EnvRecord& r) {
    return capi::wrap(get(r.tm(), r));
  });
}

// Type tests answer 0 for null handles instead of failing: they have no
// error value of their own.
template <class Pred>
int test_type(zenlo_env e, zenlo_type t, Pred pred) {
  EnvRecord* r = capi::record(e);
  if (r == nullptr || t.repr == nullptr) {
    return 0;
  }
  return pred(r->tm(), static_cast<const Type*>(t.repr)) ? 1 : 0;
}

template <class T>
void store(T* out, T value) {
  if (out != nullptr) {
    *out = value;
  }
}

}  // namespace

extern "C" {

// ----------------------------------------------------------------------
// Types
// ----------------------------------------------------------------------

zenlo_type zenlo_get_bool_type(zenlo_env e) {
  return make_type(
      e, [](TermManager& tm, EnvRecord&) { return tm.get_bool_type(); });
}

zenlo_type zenlo_get_rational_type(zenlo_env e) {
  return make_type(
      e, [](TermManager& tm, EnvRecord&) { return tm.get_real_type(); });
}

zenlo_type zenlo_get_integer_type(zenlo_env e) {
  return make_type(
      e, [](TermManager& tm, EnvRecord&) { return tm.get_integer_type(); });
}

zenlo_type zenlo_get_fp_roundingmode_type(zenlo_env e) {
  return make_type(
      e, [](TermManager& tm, EnvRecord&) { return tm.get_fprounding_type(); });
}

zenlo_type zenlo_get_bv_type(zenlo_env e, size_t width) {
  return capi::guarded(e, capi::error_type(), [&](EnvRecord& r) {
    return capi::wrap(r.tm().get_bv_type(width));
  });
}

zenlo_type zenlo_get_array_type(zenlo_env e, zenlo_type itp, zenlo_type etp) {
  return capi::guarded(e, capi::error_type(), [&](EnvRecord& r) {
    return capi::wrap(
        r.tm().get_array_type(capi::type_of(itp), capi::type_of(etp)));
  });
}

zenlo_type zenlo_get_fp_type(zenlo_env e, size_t exp_w, size_t mant_w) {
  return capi::guarded(e, capi::error_type(), [&](EnvRecord& r) {
    return capi::wrap(r.tm().get_fp_type(exp_w, mant_w));
  });
}

zenlo_type zenlo_get_simple_type(zenlo_env e, const char* name) {
  return capi::guarded(e, capi::error_type(), [&](EnvRecord& r) {
    return capi::wrap(r.tm().get_simple_type(capi::string_of(name)));
  });
}

zenlo_type zenlo_get_function_type(zenlo_env e,
                                   zenlo_type* param_types,
                                   size_t num_params,
                                   zenlo_type return_type) {
  return capi::guarded(e, capi::error_type(), [&](EnvRecord& r) {
    return capi::wrap(r.tm().get_function_type(
        capi::types_of(param_types, num_params, "param_types"),
        capi::type_of(return_type)));
  });
}

zenlo_type zenlo_get_enum_type(zenlo_env e,
                               const char* name,
                               size_t num_values,
                               const char** values,
                               zenlo_decl* values_out) {
  return capi::guarded(e, capi::error_type(), [&](EnvRecord& r) {
    capi::array_of(values, num_values, "values");
    std::vector<std::string> names;
    for (size_t i = 0; i < num_values; ++i) {
      names.emplace_back(capi::string_of(values[i]));
    }
    const Type* t = r.tm().get_enum_type(capi::string_of(name), names);
    const std::vector<const Symbol*>* decls = r.tm().get_enum_values(t);
    for (size_t i = 0; values_out != nullptr && i < decls->size(); ++i) {
      values_out[i] = capi::wrap((*decls)[i]);
    }
    return capi::wrap(t);
  });
}

int zenlo_is_bool_type(zenlo_env e, zenlo_type t) {
  return test_type(e, t, [](TermManager& tm, const Type* tp) {
    return tm.is_bool_type(tp);
  });
}

int zenlo_is_rational_type(zenlo_env e, zenlo_type t) {
  return test_type(e, t, [](TermManager& tm, const Type* tp) {
    return tm.is_real_type(tp);
  });
}

int zenlo_is_integer_type(zenlo_env e, zenlo_type t) {
  return test_type(e, t, [](TermManager& tm, const Type* tp) {
    return tm.is_integer_type(tp);
  });
}

int zenlo_is_fp_roundingmode_type(zenlo_env e, zenlo_type t) {
  return test_type(e, t, [](TermManager& tm, const Type* tp) {
    return tm.is_fprounding_type(tp);
  });
}

int zenlo_is_enum_type(zenlo_env e, zenlo_type t) {
  return test_type(e, t, [](TermManager& tm, const Type* tp) {
    return tm.is_enum_type(tp);
  });
}

int zenlo_is_bv_type(zenlo_env e, zenlo_type t, size_t* out_width) {
  return test_type(e, t, [&](TermManager& tm, const Type* tp) {
    return tm.is_bv_type(tp, out_width);
  });
}

int zenlo_is_array_type(zenlo_env e,
                        zenlo_type t,
                        zenlo_type* out_itp,
                        zenlo_type* out_etp) {
  return test_type(e, t, [&](TermManager& tm, const Type* tp) {
    const Type* i = nullptr;
    const Type* el = nullptr;
    bool yes = tm.is_array_type(tp, &i, &el);
    if (yes) {
      store(out_itp, capi::wrap(i));
      store(out_etp, capi::wrap(el));
    }
    return yes;
  });
}

int zenlo_is_fp_type(zenlo_env e,
                     zenlo_type t,
                     size_t* out_exp_w,
                     size_t* out_mant_w) {
  return test_type(e, t, [&](TermManager& tm, const Type* tp) {
    return tm.is_fp_type(tp, out_exp_w, out_mant_w);
  });
}

int zenlo_type_equals(zenlo_type t1, zenlo_type t2) {
  return t1.repr != nullptr && t1.repr == t2.repr;
}

size_t zenlo_type_id(zenlo_type t) {
  return t.repr == nullptr ? 0 : capi::type_of(t)->get_id();
}

char* zenlo_type_repr(zenlo_type t) {
  return capi::guarded_noenv<char*>(
      nullptr, [&] { return capi::alloc_string(capi::type_of(t)->to_str()); });
}

// ----------------------------------------------------------------------
// Declarations
// ----------------------------------------------------------------------

zenlo_decl zenlo_declare_function(zenlo_env e, const char* name, zenlo_type t) {
  return capi::guarded(e, capi::error_decl(), [&](EnvRecord& r) {
    return capi::wrap(
        r.tm().make_symbol(capi::string_of(name), capi::type_of(t)));
  });
}

zenlo_decl zenlo_find_decl(zenlo_env e, const char* name) {
  return capi::guarded(e, capi::error_decl(), [&](EnvRecord& r) {
    return capi::wrap(r.tm().find_symbol(capi::string_of(name)));
  });
}

size_t zenlo_decl_id(zenlo_decl d) {
  return d.repr == nullptr ? 0 : capi::decl_of(d)->get_id();
}

int zenlo_decl_get_tag(zenlo_env e, zenlo_decl d) {
  return capi::guarded(e, -1, [&](EnvRecord& r) {
    return static_cast<int>(r.tm().get_tag(capi::decl_of(d)));
  });
}

size_t zenlo_decl_get_arity(zenlo_decl d) {
  return d.repr == nullptr ? 0 : capi::decl_of(d)->get_arity();
}

zenlo_type zenlo_decl_get_arg_type(zenlo_decl d, size_t i) {
  if (d.repr == nullptr || i >= capi::decl_of(d)->get_arity()) {
    return capi::error_type();
  }
  return capi::wrap(capi::decl_of(d)->get_arg_type(i));
}

zenlo_type zenlo_decl_get_return_type(zenlo_decl d) {
  if (d.repr == nullptr) {
    return capi::error_type();
  }
  return capi::wrap(capi::decl_of(d)->get_output_type());
}

char* zenlo_decl_get_name(zenlo_decl d) {
  return capi::guarded_noenv<char*>(nullptr, [&] {
    return capi::alloc_string(capi::decl_of(d)->get_name());
  });
}

char* zenlo_decl_repr(zenlo_decl d) {
  return capi::guarded_noenv<char*>(nullptr, [&] {
    const Symbol* s = capi::decl_of(d);
    return capi::alloc_string(s->get_name() + ":" + s->get_type()->to_str());
  });
}

}  // extern "C"
