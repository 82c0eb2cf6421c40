// Unwrapping helpers of the term families of the C interface: arrays of
// handles, strings and GMP numbers become the internal values, with the
// same invalid-argument errors as the single handles of capi.h.
#ifndef ZENLO_API_CAPI_TERMS_H
#define ZENLO_API_CAPI_TERMS_H

#include <gmp.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "api/capi.h"
#include "env/environment.h"
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

// Requires: `ts` holds n handles (it may be null only when n is 0); `name`
// is the argument's name, for the error.
inline TermList terms_of(const zenlo_term* ts, size_t n, const char* name) {
  array_of(ts, n, name);
  TermList out;
  out.reserve(n);
  for (size_t i = 0; i < n; ++i) {
    out.push_back(term_of(ts[i]));
  }
  return out;
}

inline std::vector<const Type*> types_of(const zenlo_type* ts,
                                         size_t n,
                                         const char* name) {
  array_of(ts, n, name);
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

// Strings as one block: the pointer array followed by the characters, so
// the caller releases all of it with one zenlo_free.
inline char** alloc_string_block(const std::vector<std::string>& strings) {
  size_t bytes = strings.size() * sizeof(char*);
  for (const std::string& s : strings) {
    bytes += s.size() + 1;
  }
  char** block = static_cast<char**>(alloc(bytes));
  char* text = reinterpret_cast<char*>(block + strings.size());
  for (size_t i = 0; i < strings.size(); ++i) {
    block[i] = text;
    std::memcpy(text, strings[i].c_str(), strings[i].size() + 1);
    text += strings[i].size() + 1;
  }
  return block;
}

inline zenlo_term* alloc_terms(const TermList& terms) {
  zenlo_term* out =
      static_cast<zenlo_term*>(alloc(terms.size() * sizeof(zenlo_term)));
  for (size_t i = 0; i < terms.size(); ++i) {
    out[i] = wrap(terms[i]);
  }
  return out;
}

inline std::FILE* file_of(std::FILE* f) {
  if (f == nullptr) {
    throw invalid_handle("file");
  }
  return f;
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
