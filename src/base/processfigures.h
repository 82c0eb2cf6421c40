// Figures of the running process (CPU time, memory) that limits, the
// statistics and the driver read. They come from the operating system,
// so each says what it answers where the system cannot tell.
#ifndef ZENLO_BASE_PROCESSFIGURES_H
#define ZENLO_BASE_PROCESSFIGURES_H

#include <cstdint>

namespace zenlo {

// User plus system CPU time of the process, in seconds.
double get_cpu_time_sec();

// Resident memory of the process in bytes; 0 where it cannot be read.
uint64_t get_mem_used_bytes();

// Virtual size less resident and shared memory, in bytes; 0 where it
// cannot be read.
uint64_t get_mem_allocated_bytes();

// Physical memory of the machine in bytes; 0 where it cannot be read.
uint64_t get_total_system_memory_bytes();

}  // namespace zenlo

#endif
