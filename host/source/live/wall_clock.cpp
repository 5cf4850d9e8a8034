#include "host/source/live/wall_clock.h"

#include <algorithm>
#include <ctime>

namespace lm::host::source::live {
namespace {

using namespace std::chrono_literals;

constexpr WallClock::Time kWindow = 30s;
constexpr WallClock::Time kLeastStep = 500ms;

}  // namespace

WallClock::Now WallClock::now() {
  timespec time{};
  clock_gettime(CLOCK_BOOTTIME, &time);
  const auto running = std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
  return {std::chrono::duration_cast<Time>(running), std::chrono::system_clock::now()};
}

WallClock::Wall WallClock::start(Time time, bool anew, const Now& now) {
  const Time arrival = now.running - time;
  const bool paused = now.running - last_arrival_ > kWindow;  // such as suspended
  if (anew || paused || !window_) window_ = Window{now.running, arrival, arrival};
  if (now.running - window_->begin > kWindow) window_ = Window{now.running, arrival, window_->earliest};
  window_->earliest = std::min(window_->earliest, arrival);
  last_arrival_ = now.running;
  last_taken_ = std::max(last_taken_, std::min(window_->earliest, window_->before) + time);

  const Wall boot = now.wall - now.running;
  const Time step = last_boot_ ? std::chrono::duration_cast<Time>(boot - *last_boot_) : Time{0};
  step_ = std::chrono::abs(step) < kLeastStep ? Time{0} : step;
  last_boot_ = boot;
  return boot + last_taken_ - time;
}

}  // namespace lm::host::source::live
