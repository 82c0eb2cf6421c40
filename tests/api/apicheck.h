/* What the C interface tests share: a check that counts failures instead
 * of stopping, so one run reports every broken case, and the resident
 * size for the tests that watch memory over many rounds. */
#ifndef ZENLO_TESTS_API_APICHECK_H
#define ZENLO_TESTS_API_APICHECK_H

#include <stdio.h>

static int failures = 0;

#define CHECK(cond)                                                      \
  do {                                                                   \
    if (!(cond)) {                                                       \
      fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #cond); \
      ++failures;                                                        \
    }                                                                    \
  } while (0)

/* Pages resident now; 0 where /proc is not there. */
static inline long resident_pages(void) {
  long size = 0, resident = 0;
  FILE* f = fopen("/proc/self/statm", "r");
  if (f == NULL) {
    return 0;
  }
  if (fscanf(f, "%ld %ld", &size, &resident) != 2) {
    resident = 0;
  }
  fclose(f);
  return resident;
}

#endif
