// The command-line driver: read the command line, then hand the input to
// the front end of its language.
//
// Every message goes to the regular output channel (standard output),
// never to standard error, so that a run's whole answer is one stream.
//
// SIGINT leaves the run through siglongjmp to the driver, which prints the
// interruption (and the statistics when asked) and exits at once with the
// signal's number, without running destructors: the interrupted code may
// have left any data structure half changed.
#include <setjmp.h>
#include <signal.h>
#include <unistd.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "base/identity.h"
#include "driver/cmdline.h"
#include "frontend/dimacsinterface.h"
#include "frontend/smtlib2interface.h"
#include "frontend/toplevelinterface.h"
#include "zenlo.h"

using namespace zenlo;

namespace {

// A run that a signal ended; carries the signal's number.
class InterruptedException : public Exception {
 public:
  explicit InterruptedException(int signum)
      : Exception("Interrupted by signal: " + std::to_string(signum)),
        d_signum(signum) {}

  int signum() const { return d_signum; }

 private:
  int d_signum;
};

// The one process-wide jump target of the signal handler.
sigjmp_buf g_interrupt_jump;

extern "C" void on_interrupt(int signum) {
  siglongjmp(g_interrupt_jump, signum);
}

bool sigint_ignored() {
  struct sigaction old;
  return sigaction(SIGINT, nullptr, &old) == 0 && old.sa_handler == SIG_IGN;
}

// Installs the SIGINT handler for the length of a run (unless SIGINT is
// ignored, which stays so) and puts the caller's handler back afterwards:
// zenlo_main is a library function and may run more than once.
class SigintScope {
 public:
  SigintScope() : d_installed(!sigint_ignored()) {
    if (d_installed) {
      struct sigaction sa;
      sa.sa_handler = on_interrupt;
      sigfillset(&sa.sa_mask);
      sa.sa_flags = 0;
      sigaction(SIGINT, &sa, &d_old);
    }
  }

  ~SigintScope() {
    if (d_installed) {
      sigaction(SIGINT, &d_old, nullptr);
    }
  }

  SigintScope(const SigintScope&) = delete;
  SigintScope& operator=(const SigintScope&) = delete;

 private:
  bool d_installed;
  struct sigaction d_old;
};

void restore_sigint_default() {
  if (!sigint_ignored()) {
    signal(SIGINT, SIG_DFL);
  }
}

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

// Returns: the front end of the chosen language, or null (after printing
// why) when this build reads no such input.
std::unique_ptr<ToplevelInterface> make_interface(CmdLine& cmdline,
                                                  std::ostream& out) {
  switch (cmdline.get_mode()) {
    case CmdLine::Mode::Dimacs:
      return std::make_unique<DimacsInterface>(cmdline.get_config(), out);
    case CmdLine::Mode::SmtLib1:
      out << "ERROR: SMT-LIB 1 input is not supported; use SMT-LIB 2 "
             "(-input=smt2) or DIMACS (-input=dimacs)"
          << std::endl;
      return nullptr;
    default:
      return std::make_unique<SmtLib2Interface>(
          &cmdline.get_config(), &cmdline, cmdline.get_gc_period());
  }
}

// Opens the input: the named file, or standard input for an empty name.
// Throws: Exception for a file that cannot be opened.
std::istream& open_input(const std::string& name, std::ifstream& file) {
  if (name.empty()) {
    return std::cin;
  }
  file.open(name, std::ios::in | std::ios::binary);
  if (!file) {
    throw Exception("can't open file `" + name + "'");
  }
  return file;
}

void report_failure(ToplevelInterface& iface,
                    const CmdLine& cmdline,
                    const std::string& message,
                    double start,
                    std::ostream& out) {
  iface.print_error(out, message);
  if (cmdline.stats_enabled()) {
    iface.print_stats(out, get_cpu_time_sec() - start, get_mem_used_bytes());
  }
  out.flush();
}

// Solves the input with `iface` and returns the exit status.
int run(CmdLine& cmdline, ToplevelInterface& iface, std::ostream& out) {
  // Read again after a jump back from the signal handler, hence volatile.
  volatile double start = get_cpu_time_sec();
  std::ifstream file;
  SigintScope sigint;
  try {
    int signum = sigsetjmp(g_interrupt_jump, 1);
    if (signum != 0) {
      restore_sigint_default();
      throw InterruptedException(signum);
    }
    std::istream& in = open_input(cmdline.get_input_file(), file);
    start = get_cpu_time_sec();
    iface.solve(in,
                cmdline.model_enabled(),
                cmdline.get_timeout(),
                cmdline.get_mem_limit_mb());
    if (cmdline.stats_enabled()) {
      iface.print_stats(out, get_cpu_time_sec() - start, get_mem_used_bytes());
    }
  } catch (const InterruptedException& ex) {
    report_failure(iface, cmdline, ex.message(), start, out);
    _exit(ex.signum());
  } catch (const Exception& ex) {
    report_failure(iface, cmdline, ex.message(), start, out);
    return 1;
  } catch (const std::bad_alloc&) {
    iface.print_error(out, "out of memory");
    return 1;
  } catch (const std::exception& ex) {
    iface.print_error(out, ex.what());
    return 1;
  }
  out.flush();
  return 0;
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
  std::unique_ptr<ToplevelInterface> iface = make_interface(cmdline, out);
  if (iface == nullptr) {
    return 1;
  }
  return run(cmdline, *iface, out);
}
