// Delays between attempts.
#pragma once

#include <chrono>
#include <functional>
#include <utility>

namespace lm::host::base {

// Doubles after each attempt, up to a limit. Each delay is drawn at random between half of it and all of it,
// so that the cameras behind a restarted switch are not all contacted at the same moment.
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

// From the system's random number source.
BackOff::Chance real_chance();

}  // namespace lm::host::base
