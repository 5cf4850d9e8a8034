// Single pictures of a video at any time.
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "host/source/source.h"

namespace lm::host::commands::serve {

// Reads the source separately, so that playback is not disturbed. Thread-safe.
class Still {
 public:
  Still(std::string source, source::Reading reading) : name_(std::move(source)), reading_(reading) {}

  // The first frame not earlier than `time`, or the last one. Throws Failure if there is none.
  source::Frame at(std::chrono::microseconds time);

 private:
  bool read_to(std::chrono::microseconds from, std::chrono::microseconds time, source::Frame& frame);

  const std::string name_;
  const source::Reading reading_;
  std::mutex mutex_;
  std::unique_ptr<source::Source> source_;
};

}  // namespace lm::host::commands::serve
