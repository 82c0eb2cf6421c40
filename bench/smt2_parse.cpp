// Reads SMT-LIB 2 scripts through the library's reader and reports how
// fast: bytes, seconds, MB/s, assertions and terms made. Nothing is
// solved. Scopes, resets and queries are accepted and ignored, so any
// benchmark script reads; the first error ends a file.
//
//   smt2_parse [-q] FILE...
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "frontend/smtlib2parser.h"

using namespace zenlo;

namespace {

// Accepts every command a script may hold.
class AnyScript : public SmtLib2Parser {
 public:
  using SmtLib2Parser::SmtLib2Parser;

  void push(size_t) override {}

  void pop(size_t) override {}

  void generic_command(const std::string&) override {}

  void generic_command(const std::string&,
                       const std::vector<std::string>&) override {}
};

}  // namespace

int main(int argc, char** argv) {
  bool quiet = argc > 1 && std::strcmp(argv[1], "-q") == 0;
  int status = 0;
  for (int k = quiet ? 2 : 1; k < argc; ++k) {
    auto start = std::chrono::steady_clock::now();
    std::ifstream in(argv[k], std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "%s: cannot open\n", argv[k]);
      status = 1;
      continue;
    }
    TermManager tm;
    tm.set_forbid_bool_args(false);
    AnyScript parser(&tm);
    size_t asserted = 0;
    std::string error;
    try {
      asserted = parser.parse_list(in).size();
    } catch (const Exception& e) {
      error = e.message();
      status = 1;
    }
    double secs =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
            .count();
    in.clear();
    double mb = static_cast<double>(in.tellg()) / 1e6;
    if (!error.empty()) {
      std::printf("%s: error: %s\n", argv[k], error.c_str());
    } else if (!quiet) {
      std::printf(
          "%s: %.2f MB in %.3f s, %.1f MB/s, %zu assertions, %zu terms\n",
          argv[k],
          mb,
          secs,
          mb / secs,
          asserted,
          tm.num_terms());
    } else {
      std::printf("%.6f\n", secs);
    }
  }
  return status;
}
