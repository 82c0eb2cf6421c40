// Environment functions of the C interface: creation, destruction, reset
// and the termination test.
#include <memory>

#include "api/capi.h"
#include "api/configrecord.h"
#include "env/environment.h"
#include "frontend/tlemmadump.h"

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

// Theory facts go to numbered files when -debug.dump_theory_lemmas asks.
Environment* with_fact_writer(Environment* env) {
  env->set_theory_fact_sink(std::make_unique<TlemmaFileWriter>());
  return env;
}

}  // namespace

extern "C" {

zenlo_env zenlo_create_env(zenlo_config cfg) {
  return capi::guarded_noenv(zenlo_env{nullptr}, [&] {
    return wrap_env(with_fact_writer(new Environment(settings_of(cfg))));
  });
}

zenlo_env zenlo_create_shared_env(zenlo_config cfg, zenlo_env sibling) {
  return capi::guarded_noenv(zenlo_env{nullptr}, [&] {
    capi::EnvRecord* other = capi::record(sibling);
    if (other == nullptr) {
      throw capi::invalid_handle("environment");
    }
    return wrap_env(
        with_fact_writer(new Environment(settings_of(cfg), &other->tm())));
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

int zenlo_reset_env(zenlo_env e) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    r.env->reset_assertions();
    return 0;
  });
}

int zenlo_set_termination_test(zenlo_env e,
                               zenlo_termination_test func,
                               void* user_data) {
  return capi::guarded(e, -1, [&](capi::EnvRecord& r) {
    r.termination.set(func, user_data);
    // With no callback nothing is installed, so long loops poll nothing.
    r.env->set_termination_test(func != nullptr ? &r.termination : nullptr);
    return 0;
  });
}

}  // extern "C"
