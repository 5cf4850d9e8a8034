// The detector's results on the sample with one setting.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "host/events/event.h"
#include "host/events/event_options.h"

namespace lm::host::commands::tune {

// One frame: the number of boxes, and how many of them a lighting change caused.
struct Look {
  std::int64_t time = 0;  // microseconds
  std::int32_t boxes = 0;
  std::int32_t by_light = 0;
};

struct Happening {
  std::int64_t start = 0;  // microseconds
  std::int64_t end = 0;    // of its last frame
  events::EventKind kind = events::EventKind::kMotion;
};

struct Seen {
  std::vector<Look> looks;            // all frames
  std::vector<Happening> happenings;  // the events that count
};

// From the first time up to, but not including, the second.
using Spans = std::vector<events::TimeSpan>;

bool contains(const Spans& spans, std::int64_t time);

// The two kinds of spans of the sample.
struct Marks {
  Spans quiet;   // nothing moves
  Spans motion;  // motion
  bool quiet_assumed = false;
  bool motion_assumed = false;
};

// The results of a setting.
struct Figures {
  std::int64_t frames = 0;  // with boxes, in the whole sample
  std::size_t events = 0;
  std::int64_t quiet_frames = 0;   // with boxes, in quiet spans
  std::size_t quiet_events = 0;    // overlapping a quiet span
  std::int64_t motion_frames = 0;  // with boxes, in spans of motion
  std::size_t motion_events = 0;   // overlapping a motion span
  std::size_t found = 0;           // motion spans with boxes and a motion event
};

Figures figures_of(const Seen& seen, const Marks& marks);

}  // namespace lm::host::commands::tune
