// How long to wait before the next attempt.
#pragma once

#include <chrono>
#include <functional>
#include <utility>

namespace lm::host::base {

// Twice as long after each attempt, up to a limit, and each time between half of that and all of it, by
// chance: the cameras behind a switch that was restarted are not all asked at the same moment.
class BackOff {
 public:
  using Time = std::chrono::milliseconds;
  using Chance = std::function<double()>;  // from 0 to 1

  static constexpr Time kFirst{500};
  static constexpr Time kLongest{30'000};

  explicit BackOff(Chance chance) : chance_(std::move(chance)) {}

  Time next();
  void reset() { next_ = kFirst; }

 private:
  Chance chance_;
  Time next_ = kFirst;
};

// From the system's source of random numbers.
BackOff::Chance real_chance();

}  // namespace lm::host::base
