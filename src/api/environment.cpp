#include "api/environment.h"

#include <cstdio>
#include <string>

#include "frontend/smtlib2io.h"

namespace zenlo {

namespace {

// Standard output through C stdio with our own 8192-byte buffer: output of
// the environment and of a caller's printf calls stays in order because
// every flush goes through stdout.
class StdoutBuf : public std::streambuf {
 public:
  StdoutBuf() { setp(d_buf, d_buf + sizeof d_buf); }

  ~StdoutBuf() override { sync(); }

 protected:
  int_type overflow(int_type c) override {
    if (flush_buffer() != 0) {
      return traits_type::eof();
    }
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
      *pptr() = traits_type::to_char_type(c);
      pbump(1);
    }
    return traits_type::not_eof(c);
  }

  int sync() override {
    int r = flush_buffer();
    std::fflush(stdout);
    return r;
  }

 private:
  int flush_buffer() {
    size_t n = static_cast<size_t>(pptr() - pbase());
    if (n > 0 && std::fwrite(pbase(), 1, n, stdout) != n) {
      return -1;
    }
    setp(d_buf, d_buf + sizeof d_buf);
    return 0;
  }

  char d_buf[8192];
};

}  // namespace

Environment::Environment(const Configuration& config)
    : d_outbuf(new StdoutBuf()), d_out(d_outbuf.get()), d_logger(&d_out) {
  d_tm = new TermManager();
  d_owns_tm = true;
  d_config = config;
  // The standard simplifier is installed here once it exists; until then
  // the store builds terms as they are given, whatever
  // `term_simplifications` says.
  d_tm->set_forbid_bool_args(!d_config.allow_bool_function_args);
  configure_logger();
  init();
  // API call tracing starts here, after init().
}

Environment::Environment(const Configuration& config, TermManager* shared)
    : d_outbuf(new StdoutBuf()), d_out(d_outbuf.get()), d_logger(&d_out) {
  d_tm = shared;
  d_owns_tm = false;
  d_config = config;
  if (!d_config.term_simplifications) {
    d_tm->enable_simplifications(false);
  }
  configure_logger();
  init();
}

Environment::~Environment() {
  // Reverse order of building: the parts of init() (none yet), the
  // simplifier and the store, then stream and logger.
  if (d_owns_tm) {
    d_tm->set_simplifier(nullptr);
    delete d_simplifier;
    delete d_tm;
  }
  d_out.flush();
}

void Environment::configure_logger() {
  d_logger.set_verbosity(d_config.verbosity);
  bool any = false;
  for (const std::string& s : d_config.log_sections) {
    if (s == "ALL") {
      d_logger.enable_all_sections();
    } else if (!s.empty()) {
      d_logger.enable_section(s);
    }
    any = any || !s.empty();
  }
  if (!any) {
    d_logger.enable_all_sections();
  }
}

void Environment::init() {
  d_unsat_mark = -1;
  d_unsat_mark_group = -1;
  d_last_result = -1;
  // The engine, the theory manager and the pipeline are created here.
}

const Term_* Environment::apply_substitution(const Term_* term,
                                             const Term_* const* from,
                                             const Term_* const* to,
                                             size_t n) {
  return d_tm->substitute(term, from, to, n, true);
}

const Term_* Environment::from_smt2(const std::string& text) {
  return read_smtlib2_string(*d_tm, text);
}

}  // namespace zenlo
