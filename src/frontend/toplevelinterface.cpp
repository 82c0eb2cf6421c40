#include "frontend/toplevelinterface.h"

#include <ctime>

#include "base/exception.h"

namespace zenlo {

namespace {

constexpr uint64_t kMemCheckIntervalMs = 100;

}  // namespace

// ---------------------------------------------------------------------------
// TimeMemLimitTest
// ---------------------------------------------------------------------------

ToplevelInterface::TimeMemLimitTest::TimeMemLimitTest(uint64_t timeout_sec,
                                                      uint64_t mem_limit_bytes)
    : d_timeout_ms(timeout_sec * 1000), d_mem_limit(mem_limit_bytes) {
  if (d_mem_limit != 0 && get_mem_used_bytes() == 0) {
    throw Exception("Memory limit not supported on this platform!");
  }
  reset();
}

void ToplevelInterface::TimeMemLimitTest::reset() {
  d_start = std::clock();
  d_last_mem_check_ms = 0;
  d_query_start_ms = 0;
}

uint64_t ToplevelInterface::TimeMemLimitTest::elapsed_ms() const {
  std::clock_t now = std::clock();
  return static_cast<uint64_t>(now - d_start) * 1000 / CLOCKS_PER_SEC;
}

bool ToplevelInterface::TimeMemLimitTest::should_terminate() {
  uint64_t elapsed = elapsed_ms();
  if ((d_timeout_ms != 0 && elapsed > d_timeout_ms)
      || (d_query_limit_ms != 0
          && elapsed - d_query_start_ms > d_query_limit_ms)) {
    throw terminated("timeout");
  }
  if (d_mem_limit != 0 && elapsed - d_last_mem_check_ms > kMemCheckIntervalMs) {
    d_last_mem_check_ms = elapsed;
    if (get_mem_used_bytes() > d_mem_limit) {
      throw terminated("memory limit exceeded");
    }
  }
  return false;
}

}  // namespace zenlo
