// A time limit for waiting.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <utility>

namespace lm::host::base {

class Deadline {
 public:
  using Clock = std::chrono::steady_clock;
  using Now = std::function<Clock::time_point()>;

  explicit Deadline(Now now = Clock::now) : now_(std::move(now)) {}

  // Starts the time limit. Before the first call there is none.
  void allow(Clock::duration time) { end_ = now_() + time; }

  bool passed() const { return end_ && now_() >= *end_; }

 private:
  Now now_;
  std::optional<Clock::time_point> end_;
};

}  // namespace lm::host::base
