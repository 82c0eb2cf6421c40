#include "driver/cmdline.h"

#include <climits>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <vector>

namespace zenlo {

namespace {

using Kind = OptionParser::Kind;

// The unsigned settings of a run share the option kind of the table
// (non-negative decimal), but not its range.
template <class T>
bool read_unsigned(const OptionParser& parser, const char* name, T& out) {
  long v;
  if (!parser.get_int_option(name, v)) {
    return false;
  }
  if (static_cast<unsigned long>(v) > static_cast<uint64_t>(~T(0))) {
    throw OptionParser::error(std::string("invalid value for option ") + name);
  }
  out = static_cast<T>(v);
  return true;
}

}  // namespace

CmdLine::CmdLine(std::ostream& out) : d_out(&out) {
  add_driver_options();
  initialize_options();
}

void CmdLine::add_driver_options() {
  OptionParser& p = d_parser;
  p.set_cur_help_group("Command-line specific options:");
  p.add_option("input",
               Kind::Str,
               "Select input language. Can be `smt', `smt2', 'dimacs' or "
               "'fzn' (default is `smt2').");
  p.add_option(
      "config", Kind::Str, "Load settings from the given configuration file.");
  p.add_option("dump_config",
               Kind::Str,
               "Dump current configuration settings into the given file "
               "(use \"-\" for stdout).");
  p.add_option("help", Kind::Flag, "Displays this help message.");
  p.add_option(
      "stats", Kind::Flag, "Print statistics at the end of the search.");
  p.add_option("model", Kind::Flag, "Print model for satisfiable formulae.");
  p.add_option("unsat_core_tool",
               Kind::Str,
               "Path to an external group-oriented Boolean unsat-core "
               "extractor, which reads a GCNF formula on its standard input "
               "and answers on its standard output in the format of the MUS "
               "track of the SAT competition. Needs "
               "-unsat_core_generation=2.");
  p.add_option("gc_period",
               Kind::Int,
               "If nonzero, perform garbage collection after every INT pop "
               "commands (works only with -input=smt2).");
  p.add_option("timeout",
               Kind::Int,
               "Give up the search after the given number of seconds (0 "
               "means no limit).");
  p.add_option("memlimit",
               Kind::Int,
               "Give up the search when the memory in use passes the given "
               "number of megabytes (0 means no limit).");
  p.add_option("version", Kind::Flag, "Print version number and exit.");
  p.add_option("license", Kind::Flag, "Print license and exit.");
}

void CmdLine::parse(int argc, const char* const* argv) {
  std::vector<std::string> positional;
  d_parser.parse_args(argc, argv, positional, kUserPriority);
  if (positional.size() > 1) {
    throw error("more than 1 filename given");
  }
  if (positional.size() == 1) {
    d_input_file = positional[0];
  }
  if (d_parser.get_flag_option("help")) {
    d_mode = Mode::Help;
    return;
  }
  read_input_format();
  d_stats = d_parser.get_flag_option("stats");
  read_config_file();
  read_run_settings();
  // A dump is written even when some file entries were skipped; the
  // warning about them comes after it.
  std::string held;
  try {
    update_config(d_config);
  } catch (const warning& w) {
    held = w.message();
  }
  dump_config();
  if (!held.empty()) {
    throw warning(held);
  }
}

void CmdLine::read_input_format() {
  std::string lang;
  if (!d_parser.get_str_option("input", lang)) {
    return;
  }
  if (lang == "smt") {
    d_mode = Mode::SmtLib1;
  } else if (lang == "smt2") {
    d_mode = Mode::SmtLib2;
  } else if (lang == "dimacs") {
    d_mode = Mode::Dimacs;
  } else {
    throw error("unknown input format `" + lang + "'");
  }
}

void CmdLine::read_config_file() {
  std::string name;
  if (!d_parser.get_str_option("config", name)) {
    load_default();
    return;
  }
  if (name.empty()) {
    return;  // "-config=" asks for no settings at all, not even built-in
  }
  std::ifstream in(name);
  if (!in) {
    throw error("error reading config file `" + name + "'");
  }
  load(in, kFilePriority);
}

void CmdLine::read_run_settings() {
  if (d_parser.get_flag_option("model")) {
    d_model = true;
    d_config.model_generation = true;
  }
  read_unsigned(d_parser, "timeout", d_timeout);
  read_unsigned(d_parser, "memlimit", d_mem_limit_mb);
  read_unsigned(d_parser, "gc_period", d_gc_period);
  d_version = d_parser.get_flag_option("version");
  d_license = d_parser.get_flag_option("license");
  d_parser.get_str_option("unsat_core_tool", d_ext_unsat_core_extractor);
}

void CmdLine::dump_config() {
  std::string name;
  if (!d_parser.get_str_option("dump_config", name)) {
    return;
  }
  if (name == "-") {
    dump(d_config, *d_out);
    return;
  }
  std::ofstream file(name, std::ios::out | std::ios::trunc);
  if (!file) {
    throw error("Unable to open `" + name + "' for writing");
  }
  dump(d_config, file);
}

void CmdLine::show_help(std::ostream& out) const {
  out << "usage: zenlo [options] [FILENAME]\n\n"
         "If FILENAME is omitted, read from standard input.\n";
  d_parser.print_help(out, 4, 2);
}

}  // namespace zenlo
