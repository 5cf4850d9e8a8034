// The figures of a run.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "host/run_options.h"
#include "host/source.h"

namespace lm::host {

struct Figures {
  std::int64_t frames = 0;
  std::int64_t frames_with_motion = 0;
  std::int64_t events = 0;
  std::chrono::microseconds video{0};  // from the first frame's start to the last frame's end
  std::chrono::microseconds work{0};   // what it took
  SourceCounts source;
};

// Frames per second of work; 0 when no time has passed.
double speed(const Figures& figures);

// Several lines, each with its line feed: the figures, and the names of the outputs.
std::string summary(const std::string& source, const Figures& figures, const RunOptions& options);

}  // namespace lm::host
