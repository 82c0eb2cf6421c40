// A table of named, typed options with help texts, filled from strings.
//
// The parser knows nothing of what the options mean: ConfigurationSetter
// registers the solver's table and copies the values into a Configuration,
// and the command-line driver adds its own options on top. Values arrive as
// text (from the C interface, a configuration file or argv) together with a
// priority; a lower number is the stronger source, so a value given by the
// caller survives a configuration file read afterwards.
//
// An option that was never set answers false from every getter, so the
// reader of the table can leave the corresponding field at its default.
#ifndef ZENLO_BASE_OPTPARSE_H
#define ZENLO_BASE_OPTPARSE_H

#include <iosfwd>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/exception.h"

namespace zenlo {

// How a Boolean option is written on a command line (and in the help).
enum class OptionBoolStyle {
  NoPrefix = 0,   // -name and -no_name
  PlusMinus = 1,  // +name and -name
  Value = 2,      // -name=true and -name=false
};

class OptionParser {
 public:
  // "unknown option", "bad value for option", "bad format of configuration
  // file" and "invalid value for option ..." travel as this error.
  ZENLO_DECLARE_ERROR;

  enum class Kind {
    Bool = 0,
    Int = 1,        // decimal digits only
    SignedInt = 2,  // decimal digits with an optional leading '-'
    Float = 3,
    Str = 4,
    Flag = 5,  // no value
    Enum = 6,
  };

  struct Option {
    std::string name;
    Kind kind = Kind::Bool;
    std::string help;
    int min = 0;  // a numeric range given at registration, not enforced
    int max = 0;
    int group = -1;  // index of the help group, -1 for none
    bool set = false;
    int priority = 0;  // of the setting that won
    bool bool_value = false;
    long int_value = 0;
    double float_value = 0;
    std::string str_value;  // Str and Enum
    std::vector<std::string> enum_values;
  };

  explicit OptionParser(OptionBoolStyle style);

  // Registers an option in the current help group. A name registered twice
  // replaces the first registration.
  void add_option(const std::string& name,
                  Kind kind,
                  const std::string& help,
                  int min = 0,
                  int max = 0);
  // Requires: `name` is a registered option of kind Enum.
  void add_enum_value(const std::string& name, const std::string& value);
  void del_option(const std::string& name);
  // Options added from now on are listed under `title` in the help.
  void set_cur_help_group(const std::string& title);

  // Sets option `name` from the text `value` at `priority`. The value is
  // checked first, so a malformed value fails even where it would lose;
  // it is then taken when the option was unset or `priority` is at most the
  // stored one. `raw` is the text quoted in error messages; when empty,
  // "name=value" stands for it.
  // Throws: error "unknown option" or "bad value for option".
  void parse_option(const std::string& name,
                    const std::string& value,
                    int priority,
                    const std::string& raw = std::string());

  // Reads argv[1..argc-1]: "-name=value" and "-name" set options at
  // `priority`, anything else (and "-" alone) is appended to `positional`.
  // A Boolean value is lowercased first. Reading stops right after an
  // option named "help", so that nothing following it can fail.
  void parse_args(int argc,
                  const char* const* argv,
                  std::vector<std::string>& positional,
                  int priority = 0);

  bool has_option(const std::string& name) const;
  // Returns: the option, or null when `name` is not registered.
  const Option* get_option(const std::string& name) const;

  // Each getter returns true and fills `out` only when the option is
  // registered with a matching kind and has been set.
  bool get_bool_option(const std::string& name, bool& out) const;
  bool get_int_option(const std::string& name, long& out) const;
  bool get_float_option(const std::string& name, double& out) const;
  bool get_str_option(const std::string& name, std::string& out) const;
  bool get_flag_option(const std::string& name) const;

  // Returns: the names of the options set so far, sorted.
  std::vector<std::string> get_options_set() const;
  std::string get_option_help(const std::string& name) const;
  void set_option_help(const std::string& name, const std::string& help);

  // Prints every option that belongs to a help group, group by group in
  // the order the groups were opened, by name within a group:
  //   " -name=KIND : help text"
  // wrapped at `width` columns, with continuation lines indented by
  // `indent` and the values of an enum by `enum_indent`.
  void print_help(std::ostream& out,
                  int indent,
                  int enum_indent,
                  int width = 80) const;

  // Forgets every value; the registrations stay.
  void reset();

 private:
  Option* find(const std::string& name);
  std::string parse_arg(const std::string& arg, int priority);
  std::string option_label(const Option& opt) const;

  OptionBoolStyle d_style;
  std::unordered_map<std::string, Option> d_options;
  std::vector<std::string> d_groups;
  int d_cur_group = -1;
};

}  // namespace zenlo

#endif
