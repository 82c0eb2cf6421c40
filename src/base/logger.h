// Leveled, sectioned log lines on the environment's output stream:
//
//   logger("DPLL") << loglevel(1) << "restarts: " << n << endlog;
//
// A line appears when its level is at least 0 and not above the verbosity,
// and its section is enabled. The empty section is always enabled. Text of
// a suppressed line is never formatted, so disabled logging costs one
// comparison per operator.
#ifndef ZENLO_BASE_LOGGER_H
#define ZENLO_BASE_LOGGER_H

#include <iosfwd>
#include <string>
#include <unordered_set>
#include <utility>

namespace zenlo {

struct loglevel {
  explicit loglevel(int l) : level(l) {}

  int level;
};

struct EndLog {};

extern const EndLog endlog;

class Logger {
 public:
  Logger();
  explicit Logger(std::ostream* out);

  void set_stream(std::ostream* out) { d_out = out; }

  std::ostream* stream() const { return d_out; }

  void set_verbosity(int v) { d_verbosity = v; }

  // Text written at the start of every line, so that log lines read as
  // comments of the output language ("; " for SMT-LIB, "c " for DIMACS).
  void set_line_prefix(std::string p) { d_prefix = std::move(p); }

  int verbosity() const { return d_verbosity; }

  void enable_section(const std::string& name);

  void enable_all_sections() { d_all_sections = true; }

  void disable_all_sections();
  bool section_enabled(const std::string& name) const;

  // Opens a line of the given section; its level follows as loglevel(n).
  Logger& operator()(const char* section);
  Logger& operator()(const std::string& section);

  Logger& operator<<(const loglevel& l);
  Logger& operator<<(const EndLog&);

  template <class T>
  Logger& operator<<(const T& value) {
    if (d_active) {
      write_prefix();
      *d_out << value;
    }
    return *this;
  }

  // Returns: true when a line of `section` at `level` would appear.
  bool would_log(const char* section, int level) const;

 private:
  void write_prefix();

  std::ostream* d_out;
  std::string d_prefix = "; ";
  int d_verbosity = 0;
  bool d_all_sections = false;
  std::unordered_set<std::string> d_sections;
  bool d_section_on = false;
  bool d_active = false;
  bool d_started = false;
};

}  // namespace zenlo

#endif
