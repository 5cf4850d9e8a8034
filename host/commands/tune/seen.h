// The detector's results on the sample with one setting.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

#include "host/events/event.h"
#include "host/events/event_options.h"

namespace lm::host::commands::tune {

// A box of motion, with the object in it and further ones (Box in host/events/box.h).
struct MotionBox {
  cv::Rect2d area;
  std::int64_t id = 0;
  std::vector<std::int64_t> others;
};

// One frame.
struct Look {
  std::int64_t time = 0;  // microseconds
  std::vector<MotionBox> boxes;
  std::int32_t by_light = 0;  // number of boxes that a lighting change caused

  bool has_boxes() const { return !boxes.empty() || by_light > 0; }
};

struct Happening {
  std::int64_t start = 0;  // microseconds
  std::int64_t end = 0;    // of its last frame
  events::EventKind kind = events::EventKind::kMotion;
};

struct Seen {
  std::vector<Look> looks;            // all frames: the same for every setting
  std::vector<Happening> happenings;  // the events that count
  double aspect = 1;                  // the frame's width by its height, as seen
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

// A box around something that moves, of the starting configuration.
struct MovingBox {
  std::size_t look = 0;
  cv::Rect2d area;
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
  std::int64_t kept = 0;           // moving boxes that it has too: intersection over union of at least 0.5
};

Figures figures_of(const Seen& seen, const Marks& marks, const std::vector<MovingBox>& moving = {});

}  // namespace lm::host::commands::tune
