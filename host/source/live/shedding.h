// Reports dropped frames periodically.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace lm::host::source::live {

class Shedding {
 public:
  using Time = std::chrono::steady_clock::time_point;

  static constexpr std::chrono::seconds kPeriod{30};

  explicit Shedding(Time start) : period_start_(start) {}

  // Counts a frame. Returns the message on the period that has just ended; usually empty.
  std::string count(bool dropped, Time now);

 private:
  Time period_start_;
  std::int64_t frames_ = 0;
  std::int64_t dropped_ = 0;
};

}  // namespace lm::host::source::live
