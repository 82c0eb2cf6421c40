// Unwrapping helpers of the term families of the C interface: arrays of
// handles, strings and GMP numbers become the internal values, with the
// same invalid-argument errors as the single handles of capi.h.
#ifndef ZENLO_API_CAPI_TERMS_H
#define ZENLO_API_CAPI_TERMS_H

#include <gmp.h>

#include <string>
#include <vector>

#include "api/capi.h"
#include "api/environment.h"
#include "terms/numbers.h"
#include "terms/termmanager.h"

namespace zenlo {
namespace capi {

inline const char* string_of(const char* s) {
  if (s == nullptr) {
    throw invalid_handle("string");
  }
  return s;
}

// Requires: `ts` holds n handles (it may be null only when n is 0).
inline TermList terms_of(const zenlo_term* ts, size_t n) {
  if (ts == nullptr && n > 0) {
    throw invalid_handle("term array");
  }
  TermList out;
  out.reserve(n);
  for (size_t i = 0; i < n; ++i) {
    out.push_back(term_of(ts[i]));
  }
  return out;
}

inline std::vector<const Type*> types_of(const zenlo_type* ts, size_t n) {
  if (ts == nullptr && n > 0) {
    throw invalid_handle("type array");
  }
  std::vector<const Type*> out;
  out.reserve(n);
  for (size_t i = 0; i < n; ++i) {
    out.push_back(type_of(ts[i]));
  }
  return out;
}

inline QNumber number_of(const char* text) {
  return QNumber::from_str(string_of(text));
}

inline QNumber number_of(const mpq_t q) {
  return QNumber(q);
}

inline QNumber number_of(const mpz_t z) {
  mpz_t one;
  mpz_init_set_ui(one, 1);
  QNumber n(z, one);
  mpz_clear(one);
  return n;
}

inline Environment& env_of(zenlo_env e) {
  EnvRecord* r = record(e);
  if (r == nullptr) {
    throw invalid_handle("environment");
  }
  return *r->env;
}

}  // namespace capi
}  // namespace zenlo

#endif
