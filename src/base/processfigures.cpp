#include "base/processfigures.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>

namespace zenlo {

namespace {

// Reads the first `n` fields of /proc/self/statm (pages).
bool read_statm(uint64_t* fields, int n) {
  std::FILE* f = std::fopen("/proc/self/statm", "r");
  if (f == nullptr) {
    return false;
  }
  int got = 0;
  unsigned long long v;
  while (got < n && std::fscanf(f, "%llu", &v) == 1) {
    fields[got++] = v;
  }
  std::fclose(f);
  return got == n;
}

}  // namespace

double get_cpu_time_sec() {
  struct rusage ru;
  if (getrusage(RUSAGE_SELF, &ru) != 0) {
    return 0.0;
  }
  return static_cast<double>(ru.ru_utime.tv_sec + ru.ru_stime.tv_sec)
         + static_cast<double>(ru.ru_utime.tv_usec + ru.ru_stime.tv_usec) / 1e6;
}

uint64_t get_mem_used_bytes() {
  uint64_t f[2];
  if (!read_statm(f, 2)) {
    return 0;
  }
  return f[1] * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
}

uint64_t get_mem_allocated_bytes() {
  uint64_t f[3];
  if (!read_statm(f, 3)) {
    return 0;
  }
  uint64_t pages = f[0] > f[1] + f[2] ? f[0] - f[1] - f[2] : 0;
  return pages * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
}

uint64_t get_total_system_memory_bytes() {
  std::FILE* f = std::fopen("/proc/meminfo", "r");
  if (f == nullptr) {
    return 0;
  }
  unsigned long long kb = 0;
  char line[256];
  while (std::fgets(line, sizeof line, f) != nullptr) {
    if (std::sscanf(line, "MemTotal: %llu kB", &kb) == 1) {
      break;
    }
  }
  std::fclose(f);
  return static_cast<uint64_t>(kb) * 1024;
}

}  // namespace zenlo
