// Version and memory functions of the C interface.
#include <cstdlib>
#include <string>

#include "api/capi.h"
#include "base/identity.h"

using namespace zenlo;

extern "C" {

void zenlo_free(void* mem) {
  std::free(mem);
}

char* zenlo_get_version(void) {
  return capi::guarded_noenv<char*>(
      nullptr, [] { return capi::alloc_string(program_version()); });
}

const char* zenlo_get_version_id(void) {
  static const std::string id = program_version_id();
  return id.c_str();
}

const char* zenlo_last_error_message(zenlo_env e) {
  capi::EnvRecord* r = capi::record(e);
  return r == nullptr ? "invalid environment" : r->last_error.c_str();
}

}  // extern "C"
