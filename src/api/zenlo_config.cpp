// Configuration functions of the C interface. None of them takes an
// environment, so failures leave no message behind, except a failed
// zenlo_set_option, whose text stays in the handle's record.
#include <cstdio>
#include <memory>
#include <sstream>

#include "api/capi.h"
#include "api/configrecord.h"

using namespace zenlo;
using capi::ConfigRecord;

namespace {

zenlo_config wrap(ConfigRecord* r) {
  zenlo_config c;
  c.repr = r;
  return c;
}

zenlo_config error_config() {
  return zenlo_config{nullptr};
}

// A fresh record holding the configuration text of `in`. The record is
// released again when the text is malformed.
zenlo_config parse_config_stream(std::istream& in) {
  auto rec = std::make_unique<ConfigRecord>();
  rec->setter.load(in, ConfigurationSetter::kFilePriority);
  return wrap(rec.release());
}

std::string read_all(FILE* f) {
  std::string text;
  char buf[8192];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) {
    text.append(buf, n);
  }
  if (std::ferror(f)) {
    throw Exception("error reading configuration file");
  }
  return text;
}

}  // namespace

extern "C" {

zenlo_config zenlo_create_config(void) {
  return capi::guarded_noenv(error_config(),
                             [] { return wrap(new ConfigRecord); });
}

zenlo_config zenlo_create_default_config(const char* logic) {
  if (logic == nullptr) {
    return error_config();
  }
  return capi::guarded_noenv(error_config(), [&] {
    auto rec = std::make_unique<ConfigRecord>();
    rec->setter.load_default();
    rec->setter.set_active_config(logic);
    return wrap(rec.release());
  });
}

zenlo_config zenlo_parse_config(const char* data) {
  if (data == nullptr) {
    return error_config();
  }
  return capi::guarded_noenv(error_config(), [&] {
    std::istringstream in(data);
    return parse_config_stream(in);
  });
}

zenlo_config zenlo_parse_config_file(FILE* f) {
  if (f == nullptr) {
    return error_config();
  }
  return capi::guarded_noenv(error_config(), [&] {
    std::istringstream in(read_all(f));
    return parse_config_stream(in);
  });
}

void zenlo_destroy_config(zenlo_config cfg) {
  delete capi::config_record(cfg);
}

int zenlo_set_option(zenlo_config cfg, const char* option, const char* value) {
  ConfigRecord* r = capi::config_record(cfg);
  if (r == nullptr || option == nullptr || value == nullptr) {
    return -1;
  }
  try {
    r->setter.set_option(option, value);
    return 0;
  } catch (const std::exception& ex) {
    r->last_error = ex.what();
    return -1;
  }
}

}  // extern "C"
