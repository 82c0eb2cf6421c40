/* The command-line solver is a thin shell around the library's driver. */
#include "zenlo.h"

int main(int argc, const char** argv) {
  return zenlo_main(argc, argv);
}
