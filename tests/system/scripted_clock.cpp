#include "tests/system/scripted_clock.h"

namespace {
timeval scripted{1700000000, 0};
}

timeval scriptedTime() { return scripted; }
void setScriptedTime(timeval time) { scripted = time; }

// Replaces the C library's function in this whole program.
extern "C" int gettimeofday(timeval* __restrict time, void* __restrict) noexcept {
  *time = scripted;
  return 0;
}
