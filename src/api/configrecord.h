// What a zenlo_config handle points to: the settings being prepared and the
// option table that fills them.
//
// The record gathers option strings (zenlo_set_option, configuration
// texts) until an environment is made from it. Only then are the strings
// turned into values, so a handle can keep changing and serve several
// environments, each of which copies the record's settings.
#ifndef ZENLO_API_CONFIGRECORD_H
#define ZENLO_API_CONFIGRECORD_H

#include <string>

#include "base/configuration.h"
#include "base/configurationsetter.h"
#include "zenlo.h"

namespace zenlo {
namespace capi {

struct ConfigRecord {
  Configuration config;
  CConfigurationSetter setter;
  // Text of the last failed zenlo_set_option on this handle.
  std::string last_error;

  // Brings `config` up to date with every option set so far and with the
  // loaded configuration texts (the section of the selected logic on top
  // of the unnamed one).
  //
  // - Requires: nothing; calling it again re-applies the same options.
  // - Returns: the text of the non-fatal problems (entries of a
  //   configuration text that name an unknown option or carry a bad
  //   value), empty when there were none. Those entries are skipped and
  //   `config` is complete all the same.
  // - Throws: OptionParser::error "invalid value for option NAME" when a
  //   value is out of its range; `config` may then be partly updated.
  // - After: `config` is what a new environment must copy.
  std::string update() {
    try {
      setter.update_config(config);
    } catch (const ConfigurationSetter::warning& w) {
      return w.message();
    }
    return std::string();
  }
};

// Returns: the record of `cfg`, or null for the error value.
inline ConfigRecord* config_record(zenlo_config cfg) {
  return static_cast<ConfigRecord*>(cfg.repr);
}

}  // namespace capi
}  // namespace zenlo

#endif
