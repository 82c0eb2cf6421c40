// The solver's option table: for each named option, the field of
// Configuration it fills, the limits that the field accepts and its help.
//
// One table serves the three readers that must agree on it: registration
// in the OptionParser, the copy of the parsed values into the record
// (ConfigurationSetter::update_config) and the dump, which walks the table
// in order. Nothing here parses text or reports errors.
#ifndef ZENLO_BASE_OPTIONTABLE_H
#define ZENLO_BASE_OPTIONTABLE_H

#include <cmath>
#include <string>
#include <variant>
#include <vector>

#include "base/configuration.h"

namespace zenlo {

struct OptionDef {
  // Accessors of the field an option fills; the alternative in use gives
  // the option's kind (Bool, Int, Int, Float, Str).
  using Field = std::variant<bool& (*)(Configuration&),
                             int& (*)(Configuration&),
                             long& (*)(Configuration&),
                             double& (*)(Configuration&),
                             std::string& (*)(Configuration&)>;

  // Inclusive bounds of a numeric field; a value outside fails when the
  // record is updated, not when the option is set.
  struct Range {
    double min = -HUGE_VAL;
    double max = HUGE_VAL;
  };

  std::string name;
  Field field;
  Range range;
  std::string help;
  bool dumped = true;  // listed by ConfigurationSetter::dump
};

struct OptionGroup {
  const char* title;
  std::vector<OptionDef> options;
};

// Returns: the registered options in their six help groups, in the fixed
// order of the dump and of update_config.
const std::vector<OptionGroup>& option_table();

// Returns: options that update_config reads but that are not registered by
// default (no help, no dump); a subclass of ConfigurationSetter may
// register them. `debug.log_sections` is not among them: its text is split
// into a list, which no plain field accessor expresses.
const std::vector<OptionDef>& unregistered_options();

}  // namespace zenlo

#endif
