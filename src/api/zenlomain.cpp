// The command-line driver: read the command line, then hand the input to
// the front end of its language.
//
// Every message goes to the regular output channel (standard output),
// never to standard error, so that a run's whole answer is one stream.
#include <iostream>

#include "api/cmdline.h"
#include "zenlo.h"

using namespace zenlo;

namespace {

// Reads the command line into `cmdline`. Warnings are printed and the run
// goes on.
// Returns: false, after printing the error and the usage hint, when the
//   command line cannot be used.
bool read_command_line(CmdLine& cmdline,
                       int argc,
                       const char** argv,
                       std::ostream& out) {
  try {
    cmdline.parse(argc, argv);
  } catch (const ConfigurationSetter::warning& w) {
    out << "WARNING: " << w.message() << std::endl;
  } catch (const std::exception& ex) {
    const char* program = argc > 0 && argv[0] != nullptr ? argv[0] : "zenlo";
    out << "ERROR: " << ex.what() << '\n'
        << "Usage: " << program << " -help for help" << std::endl;
    return false;
  }
  return true;
}

const char* language_name(CmdLine::Mode mode) {
  switch (mode) {
    case CmdLine::Mode::SmtLib1: return "SMT-LIB 1";
    case CmdLine::Mode::Dimacs: return "DIMACS";
    default: return "SMT-LIB 2";
  }
}

// Solves the input in the language chosen on the command line and returns
// the exit status. No front end is part of the program yet.
int solve_input(CmdLine& cmdline, std::ostream& out) {
  out << "ERROR: reading " << language_name(cmdline.get_mode())
      << " input is not available yet" << std::endl;
  return 1;
}

}  // namespace

extern "C" int zenlo_main(int argc, const char** argv) {
  std::ostream& out = std::cout;
  CmdLine cmdline(out);
  if (!read_command_line(cmdline, argc, argv, out)) {
    return 1;
  }
  if (cmdline.show_version()) {
    out << program_version() << std::endl;
    return 0;
  }
  if (cmdline.show_license()) {
    out << program_license() << std::endl;
    return 0;
  }
  if (cmdline.get_mode() == CmdLine::Mode::Help) {
    cmdline.show_help(out);
    out.flush();
    return 0;
  }
  return solve_input(cmdline, out);
}
