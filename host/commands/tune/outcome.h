// The outcome of tuning, for all outputs.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "host/commands/tune/choice.h"

namespace lm::host::commands::tune {

struct Trial {
  Setting setting;
  Seen seen;
  Figures figures{};
};

struct Outcome {
  std::string source;
  std::int64_t frames = 0;
  std::chrono::microseconds length{0};
  Marks marks;
  std::int64_t quiet_frames = 0;   // total number in quiet spans
  std::int64_t motion_frames = 0;  // the same for motion spans
  Own own;                         // values of the starting configuration
  std::vector<MovingBox> moving;   // boxes of the starting configuration around what moves in motion spans
  std::vector<Trial> trials;       // the starting configuration first, then by what is changed
  std::size_t chosen = 0;          // index into `trials`
  std::string why;
  std::string document;  // proposed
};

// "0-2, 5.5-19.25 (assumed)"; "none".
std::string text_of(const Spans& spans, bool assumed);

}  // namespace lm::host::commands::tune
