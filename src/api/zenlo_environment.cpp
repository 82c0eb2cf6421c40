// Environment functions of the C interface: creation and destruction.
#include <memory>

#include "api/capi.h"
#include "api/configrecord.h"
#include "api/environment.h"

using namespace zenlo;

namespace zenlo {
namespace capi {

TermManager& EnvRecord::tm() {
  return env->get_term_manager();
}

}  // namespace capi
}  // namespace zenlo

namespace {

zenlo_env wrap_env(Environment* env) {
  // The record exists only once the environment is complete.
  std::unique_ptr<Environment> owned(env);
  zenlo_env e;
  e.repr = new capi::EnvRecord(owned.get());
  owned.release();
  return e;
}

// The settings of `cfg`, with every pending option applied.
const Configuration& settings_of(zenlo_config cfg) {
  capi::ConfigRecord* rec = capi::config_record(cfg);
  if (rec == nullptr) {
    throw capi::invalid_handle("configuration");
  }
  rec->update();
  return rec->config;
}

}  // namespace

extern "C" {

zenlo_env zenlo_create_env(zenlo_config cfg) {
  return capi::guarded_noenv(zenlo_env{nullptr}, [&] {
    return wrap_env(new Environment(settings_of(cfg)));
  });
}

zenlo_env zenlo_create_shared_env(zenlo_config cfg, zenlo_env sibling) {
  return capi::guarded_noenv(zenlo_env{nullptr}, [&] {
    capi::EnvRecord* other = capi::record(sibling);
    if (other == nullptr) {
      throw capi::invalid_handle("environment");
    }
    return wrap_env(new Environment(settings_of(cfg), &other->tm()));
  });
}

void zenlo_destroy_env(zenlo_env e) {
  capi::EnvRecord* r = capi::record(e);
  if (r == nullptr) {
    return;
  }
  delete r->env;
  delete r;
}

}  // extern "C"
