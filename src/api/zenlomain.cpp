// The command-line driver.
#include <cstdio>
#include <cstring>

#include "zenlo.h"

extern "C" int zenlo_main(int argc, const char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "-version") == 0) {
      char* v = zenlo_get_version();
      std::printf("%s\n", v);
      zenlo_free(v);
      return 0;
    }
  }
  std::fprintf(stderr, "usage: %s [options] [FILE]\n", argv[0]);
  return 1;
}
