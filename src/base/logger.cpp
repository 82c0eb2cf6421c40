#include "base/logger.h"

#include <iostream>

namespace zenlo {

const EndLog endlog{};

Logger::Logger() : d_out(&std::cout) {}

Logger::Logger(std::ostream* out) : d_out(out) {}

void Logger::enable_section(const std::string& name) {
  d_sections.insert(name);
}

void Logger::disable_all_sections() {
  d_all_sections = false;
  d_sections.clear();
}

bool Logger::section_enabled(const std::string& name) const {
  return name.empty() || d_all_sections || d_sections.count(name) > 0;
}

Logger& Logger::operator()(const char* section) {
  d_section_on = (section == nullptr || section[0] == '\0' || d_all_sections
                  || (!d_sections.empty() && d_sections.count(section) > 0));
  d_active = false;
  d_started = false;
  return *this;
}

Logger& Logger::operator()(const std::string& section) {
  return (*this)(section.c_str());
}

Logger& Logger::operator<<(const loglevel& l) {
  d_active = d_section_on && d_out != nullptr && l.level >= 0
             && l.level <= d_verbosity;
  return *this;
}

Logger& Logger::operator<<(const EndLog&) {
  if (d_active) {
    write_prefix();
    *d_out << '\n';
    d_out->flush();
  }
  d_active = false;
  d_started = false;
  return *this;
}

bool Logger::would_log(const char* section, int level) const {
  return d_out != nullptr && level >= 0 && level <= d_verbosity
         && (section == nullptr || section[0] == '\0' || d_all_sections
             || d_sections.count(section) > 0);
}

void Logger::write_prefix() {
  // Log lines are comments in every output language of the solver.
  if (!d_started) {
    *d_out << d_prefix;
    d_started = true;
  }
}

}  // namespace zenlo
