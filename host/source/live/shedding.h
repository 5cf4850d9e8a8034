// Says from time to time how many frames had to be dropped.
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

  // Counts a frame. Returns what to say about the period that is over now; mostly nothing.
  std::string count(bool dropped, Time now);

 private:
  Time period_start_;
  std::int64_t frames_ = 0;
  std::int64_t dropped_ = 0;
};

}  // namespace lm::host::source::live
