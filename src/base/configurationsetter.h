// The text side of the configuration: named options, configuration files
// with sections, and the step that turns both into a Configuration record.
//
// Values reach the setter as strings with a priority (lower is stronger):
// the caller's own settings, then files, then the built-in text. A file is
// only stored by `load`; its entries are applied at `update_config`, so
// that a value set directly always beats a file, in whatever order the two
// arrived. Sections let one file carry settings for several logics: the
// unnamed section applies always, the active section (chosen by the
// logic's name) on top of it.
//
// The record is written only by `update_config`, and only for options that
// were set, so fields that no option reaches keep what the caller put
// there.
#ifndef ZENLO_BASE_CONFIGURATIONSETTER_H
#define ZENLO_BASE_CONFIGURATIONSETTER_H

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "base/configuration.h"
#include "base/exception.h"
#include "base/optparse.h"

namespace zenlo {

// Writes one "name = value" line per option. Subclasses change the syntax
// (an API tracer writes the same list as its own commands).
class ConfigEntryPrinter {
 public:
  virtual ~ConfigEntryPrinter();

  virtual void print_bool(std::ostream& out, const std::string& name, bool v);
  virtual void print_int(std::ostream& out, const std::string& name, long v);
  virtual void print_unsigned(std::ostream& out,
                              const std::string& name,
                              unsigned long v);
  virtual void print_float(std::ostream& out,
                           const std::string& name,
                           double v);
  virtual void print_string(std::ostream& out,
                            const std::string& name,
                            const std::string& v);
};

// The configuration-file form, each line preceded by `prefix` (empty for a
// file that `load` reads back).
class ConfigFileEntryPrinter : public ConfigEntryPrinter {
 public:
  explicit ConfigFileEntryPrinter(std::string prefix = std::string());

  void print_bool(std::ostream& out, const std::string& name, bool v) override;
  void print_int(std::ostream& out, const std::string& name, long v) override;
  void print_unsigned(std::ostream& out,
                      const std::string& name,
                      unsigned long v) override;
  void print_float(std::ostream& out,
                   const std::string& name,
                   double v) override;
  void print_string(std::ostream& out,
                    const std::string& name,
                    const std::string& v) override;

 private:
  std::string d_prefix;
};

class ConfigurationSetter {
 public:
  // Errors that do not stop the work: options of a file that could not be
  // applied. The record is complete when it is thrown.
  struct warning : public Exception {
    explicit warning(std::string msg) : Exception(std::move(msg)) {}
  };

  struct OptEntry {
    std::string name;
    std::string value;
    int priority;
  };

  // Priorities of the sources of a value; the lowest number wins.
  static constexpr int kUserPriority = 0;
  static constexpr int kFilePriority = 2;
  static constexpr int kDefaultPriority = 3;

  ConfigurationSetter();
  virtual ~ConfigurationSetter();

  // Registers the solver's option table in its six help groups.
  void initialize_options();

  // Reads a configuration file and stores its entries at `priority`.
  // Throws: OptionParser::error "bad format of configuration file" on the
  //   first malformed line; nothing of the stream is kept then.
  void load(std::istream& in, int priority);
  // Loads the built-in configuration text at kDefaultPriority.
  void load_default();

  // Throws: OptionParser::error "unknown option" or "bad value for option".
  void set_option(const std::string& name,
                  const std::string& value,
                  int priority = kUserPriority);
  // Selects the section applied on top of the unnamed one ("default" is
  // the unnamed one itself).
  void set_active_config(const std::string& name);
  // Applies the stored entries of the unnamed and the active section.
  // Throws: warning listing every entry that failed, after all were tried.
  void parse_active_config();

  // Applies the sections, then copies every option that was set into
  // `config`, then the dependencies between options (interpolation or
  // cores turn off top-level propagation, and the like).
  // Throws: OptionParser::error "invalid value for option NAME" when a
  //   value is out of its field's range, at once; a warning for the
  //   entries of the sections that failed, once `config` is complete.
  void update_config(Configuration& config);

  // Writes the values of `config` for the options of the table, in table
  // order, in the configuration-file form; with a section name, under a
  // "[name]" header first.
  void dump(const Configuration& config, std::ostream& out) const;
  void dump(const Configuration& config,
            std::ostream& out,
            const std::string& section) const;
  void dump(const Configuration& config,
            std::ostream& out,
            ConfigEntryPrinter& printer) const;

  OptionParser& parser() { return d_parser; }

  const OptionParser& parser() const { return d_parser; }

  // Returns: the stored entries of section `name` ("" is the unnamed one),
  // or null.
  const std::vector<OptEntry>* section(const std::string& name) const;

 protected:
  OptionParser d_parser;

 private:
  void copy_options(Configuration& config) const;
  void apply_dependencies(Configuration& config) const;

  std::map<std::string, std::vector<OptEntry>> d_sections;
  std::string d_active;
};

// The setter behind a zenlo_config handle: the whole table, nothing more.
class CConfigurationSetter : public ConfigurationSetter {
 public:
  CConfigurationSetter() { initialize_options(); }
};

}  // namespace zenlo

#endif
