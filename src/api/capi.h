// The frame shared by every exported function: the records behind the
// handles, and the protocol that turns an exception into the function's
// error value while keeping its text for zenlo_last_error_message().
//
// A function of the C interface reads as:
//
//   zenlo_term zenlo_make_not(zenlo_env e, zenlo_term t) {
//     return capi::guarded(e, capi::error_term(), [&](capi::EnvRecord& r) {
//       return capi::wrap(r.tm().make_not(capi::term_of(t)));
//     });
//   }
//
// No logic lives at this layer: unwrap, call one operation, wrap.
#ifndef ZENLO_API_CAPI_H
#define ZENLO_API_CAPI_H

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "base/exception.h"
#include "base/terminationtest.h"
#include "zenlo.h"

namespace zenlo {

class Environment;
class TermManager;
class Term_;
class Symbol;
class Type;

// Calls a C termination callback installed by zenlo_set_termination_test.
class CTerminationTest : public TerminationTest {
 public:
  bool should_terminate() override {
    return d_func != nullptr && d_func(d_user_data) != 0;
  }

  void set(zenlo_termination_test func, void* user_data) {
    d_func = func;
    d_user_data = user_data;
  }

 private:
  zenlo_termination_test d_func = nullptr;
  void* d_user_data = nullptr;
};

namespace capi {

// What a zenlo_env points to. Created only after the environment itself
// was built.
struct EnvRecord {
  explicit EnvRecord(Environment* e) : env(e) {}

  Environment* env;
  std::string last_error;
  CTerminationTest termination;

  TermManager& tm();
};

inline EnvRecord* record(zenlo_env e) {
  return static_cast<EnvRecord*>(e.repr);
}

// Raised for a handle whose repr is null.
struct invalid_handle : public Exception {
  explicit invalid_handle(const char* what)
      : Exception(std::string("invalid ") + what + " argument") {}
};

// The one check of every array argument: null passes only for an empty
// array. The message names the argument.
struct null_array : public Exception {
  null_array(const char* name, size_t n)
      : Exception(std::string("invalid array argument `") + name
                  + "': null, with " + std::to_string(n) + " elements") {}
};

template <class T>
inline T* array_of(T* p, size_t n, const char* name) {
  if (p == nullptr && n > 0) {
    throw null_array(name, n);
  }
  return p;
}

inline const Term_* term_of(zenlo_term t) {
  if (t.repr == nullptr) {
    throw invalid_handle("term");
  }
  return static_cast<const Term_*>(t.repr);
}

inline const Symbol* decl_of(zenlo_decl d) {
  if (d.repr == nullptr) {
    throw invalid_handle("declaration");
  }
  return static_cast<const Symbol*>(d.repr);
}

inline const Type* type_of(zenlo_type t) {
  if (t.repr == nullptr) {
    throw invalid_handle("type");
  }
  return static_cast<const Type*>(t.repr);
}

inline zenlo_term wrap(const Term_* t) {
  zenlo_term r;
  r.repr = const_cast<Term_*>(t);
  return r;
}

inline zenlo_decl wrap(const Symbol* s) {
  zenlo_decl r;
  r.repr = const_cast<Symbol*>(s);
  return r;
}

inline zenlo_type wrap(const Type* t) {
  zenlo_type r;
  r.repr = const_cast<Type*>(t);
  return r;
}

inline zenlo_term error_term() {
  return zenlo_term{nullptr};
}

inline zenlo_decl error_decl() {
  return zenlo_decl{nullptr};
}

inline zenlo_type error_type() {
  return zenlo_type{nullptr};
}

// The interface allocator: every array and string handed to the caller
// comes from here and goes back through zenlo_free.
inline void* alloc(size_t bytes) {
  void* p = std::malloc(bytes == 0 ? 1 : bytes);
  if (p == nullptr) {
    throw Exception("malloc() failed");
  }
  return p;
}

inline char* alloc_string(const std::string& s) {
  char* p = static_cast<char*>(alloc(s.size() + 1));
  std::memcpy(p, s.c_str(), s.size() + 1);
  return p;
}

// Runs `body` on the environment's record; an exception becomes `err`, with
// its text kept in the record. A null environment yields `err` at once.
template <class R, class F>
R guarded(zenlo_env e, R err, F&& body) {
  EnvRecord* r = record(e);
  if (r == nullptr) {
    return err;
  }
  try {
    return body(*r);
  } catch (const Exception& ex) {
    r->last_error = ex.message();
  } catch (const std::bad_alloc&) {
    r->last_error = "out of memory";
  } catch (const std::exception& ex) {
    r->last_error = ex.what();
  }
  return err;
}

// The same for functions that take no environment: no message is kept.
template <class R, class F>
R guarded_noenv(R err, F&& body) {
  try {
    return body();
  } catch (const std::exception&) {
    return err;
  }
}

}  // namespace capi
}  // namespace zenlo

#endif
