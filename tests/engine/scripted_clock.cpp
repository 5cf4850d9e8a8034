#include "tests/engine/scripted_clock.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace lm::test {
namespace {
ScriptedClock* installed = nullptr;
}

ScriptedClock::ScriptedClock(std::vector<timeval> times) : times_(std::move(times)) { installed = this; }
ScriptedClock::~ScriptedClock() { installed = nullptr; }

timeval ScriptedClock::next() { return times_.at(std::min(taken_++, times_.size() - 1)); }

}  // namespace lm::test

// Replaces the C library's function in this test program.
extern "C" int gettimeofday(timeval* time, void* /*zone*/) noexcept {
  if (lm::test::installed != nullptr) {
    *time = lm::test::installed->next();
    return 0;
  }
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  *time = {now.tv_sec, now.tv_nsec / 1000};
  return 0;
}
