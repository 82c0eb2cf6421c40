// The command line of the zenlo program: the whole option table as
// "-name=value", plus the driver's own options (input language, files,
// flags and limits of the run).
//
// CmdLine only reads and records; what runs afterwards (which front end,
// with which limits) is the driver's business, and it asks the accessors.
// All settings are final once `parse` returns.
#ifndef ZENLO_DRIVER_CMDLINE_H
#define ZENLO_DRIVER_CMDLINE_H

#include <cstdint>
#include <iosfwd>
#include <string>

#include "base/configuration.h"
#include "base/configurationsetter.h"
#include "base/exception.h"

namespace zenlo {

class CmdLine : public ConfigurationSetter {
 public:
  ZENLO_DECLARE_ERROR;

  enum class Mode { SmtLib1 = 0, SmtLib2 = 1, Dimacs = 2, Help = 3 };

  // `out` is the driver's regular output channel, which "-dump_config=-"
  // writes to.
  explicit CmdLine(std::ostream& out);

  // Reads argv: options, at most one input file name, the configuration
  // file (or the built-in settings), then fills the configuration and
  // writes the dump asked for. With -help nothing after it is looked at.
  // Throws: error, OptionParser::error for a bad command line or
  //   configuration file; ConfigurationSetter::warning, last of all, for
  //   entries of the configuration file that were skipped (everything
  //   else is done then).
  void parse(int argc, const char* const* argv);
  // Prints the usage line and the help of every option.
  void show_help(std::ostream& out) const;

  Configuration& get_config() { return d_config; }

  // Returns: the input file; empty for the standard input.
  const std::string& get_input_file() const { return d_input_file; }

  Mode get_mode() const { return d_mode; }

  bool stats_enabled() const { return d_stats; }

  bool model_enabled() const { return d_model; }

  bool show_version() const { return d_version; }

  bool show_license() const { return d_license; }

  // Returns: the time limit in seconds, 0 for none.
  uint64_t get_timeout() const { return d_timeout; }

  // Returns: the memory limit in megabytes, 0 for none.
  uint64_t get_mem_limit_mb() const { return d_mem_limit_mb; }

  const std::string& get_ext_unsat_core_extractor() const {
    return d_ext_unsat_core_extractor;
  }

  uint32_t get_gc_period() const { return d_gc_period; }

 private:
  void add_driver_options();
  void read_input_format();
  void read_config_file();
  void read_run_settings();
  void dump_config();

  std::ostream* d_out;
  Configuration d_config;
  std::string d_input_file;
  Mode d_mode = Mode::SmtLib2;
  bool d_stats = false;
  bool d_model = false;
  bool d_version = false;
  bool d_license = false;
  uint64_t d_timeout = 0;
  uint64_t d_mem_limit_mb = 0;
  std::string d_ext_unsat_core_extractor;
  uint32_t d_gc_period = 0;
};

}  // namespace zenlo

#endif
