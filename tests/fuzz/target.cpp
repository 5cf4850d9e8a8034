#include "tests/fuzz/target.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

// libFuzzer closes standard error for the tested code, whose messages would drown its reports.
const int reports = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();
std::size_t largest = unlimited;

}  // namespace

// Recursive parsers allocate from ever new stacks, each of which the address sanitizer would store.
extern "C" const char* __asan_default_options();  // NOLINT
const char* __asan_default_options() { return "malloc_context_size=2:quarantine_size_mb=16"; }

void fuzz::finding(const std::string& what) {
  dprintf(reports, "finding: %s\n", what.c_str());
  std::abort();
}

fuzz::MemoryLimit::MemoryLimit(std::size_t bytes) { largest = bytes; }
fuzz::MemoryLimit::~MemoryLimit() { largest = unlimited; }

// The linker redirects the program's calls here (--wrap); the sanitizers' functions are called from here.
extern "C" {

void* __real__Znwm(std::size_t size);                                              // NOLINT
void* __real__Znam(std::size_t size);                                              // NOLINT
int __real_posix_memalign(void** block, std::size_t alignment, std::size_t size);  // NOLINT

void* __wrap__Znwm(std::size_t size) {  // NOLINT
  if (size > largest) throw std::bad_alloc();
  return __real__Znwm(size);
}
void* __wrap__Znam(std::size_t size) {  // NOLINT
  if (size > largest) throw std::bad_alloc();
  return __real__Znam(size);
}
int __wrap_posix_memalign(void** block, std::size_t alignment, std::size_t size) {  // NOLINT
  return size > largest ? ENOMEM : __real_posix_memalign(block, alignment, size);
}

}  // extern "C"
