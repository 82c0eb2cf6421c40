// Version and memory functions of the C interface.
#include <gmp.h>

#include <cstdlib>
#include <string>

#include "api/capi.h"

using namespace zenlo;

namespace {

std::string version_id() {
  return std::string(ZENLO_VERSION_STRING) + " (" + ZENLO_REVISION + ")";
}

}  // namespace

extern "C" {

void zenlo_free(void* mem) {
  std::free(mem);
}

char* zenlo_get_version(void) {
  return capi::guarded_noenv<char*>(nullptr, [] {
    std::string v =
        "Zenlo5 version " + version_id() + " (" + __DATE__ + " " + __TIME__
        + ", gmp " + gmp_version + ", gcc " + std::to_string(__GNUC__) + "."
        + std::to_string(__GNUC_MINOR__) + "."
        + std::to_string(__GNUC_PATCHLEVEL__) + ", 64-bit, reentrant)";
    return capi::alloc_string(v);
  });
}

const char* zenlo_get_version_id(void) {
  static const std::string id = version_id();
  return id.c_str();
}

const char* zenlo_last_error_message(zenlo_env e) {
  capi::EnvRecord* r = capi::record(e);
  return r == nullptr ? "invalid environment" : r->last_error.c_str();
}

}  // extern "C"
