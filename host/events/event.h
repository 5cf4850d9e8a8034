// What happened in a video, as spans of time instead of frames.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

namespace lm::host::events {

using WallTime = std::chrono::system_clock::time_point;

// How the light changed while it did.
struct LightChange {
  double before = 0;  // mean of the picture's grey values, 0 to 255
  double after = 0;
  double share = 0;  // of the watched part of the frame, 0 to 1
};

// A frame that was analysed, as far as events are concerned.
struct Observation {
  std::int64_t frame = 0;             // its number; the first is 0
  std::chrono::microseconds time{0};  // since the first frame
  std::vector<cv::Rect2d> boxes;      // fractions of the frame, in the plug-in's order
  double brightness = 0;              // mean of the picture's grey values, 0 to 255
  std::vector<bool> by_light;         // for each box: a change of light made it, nothing that moves
  std::optional<LightChange> light;   // the latest change, while its boxes last
  std::optional<WallTime> wall;       // when the frame came, for live sources
};

enum class EventKind {
  kMotion,
  kLight,  // a change of light
};

// Times are those of the source. While an event goes on, its end is that of the last frame that belongs to
// it.
struct Event {
  std::string id;  // unique within a run and between runs of a live source; fit for a file's name
  EventKind kind = EventKind::kMotion;
  std::chrono::microseconds start{0};
  std::chrono::microseconds end{0};
  std::chrono::microseconds peak{0};  // when most of the frame was under boxes
  std::chrono::microseconds from{0};  // what to show of it: start - --pre, not before the first frame
  std::chrono::microseconds to{0};    // end + --post; may lie past the last frame
  std::int64_t first_frame = 0;
  std::int64_t last_frame = 0;
  std::int64_t peak_frame = 0;
  std::int64_t frames = 0;           // how many had boxes that belong to it
  std::size_t most_boxes = 0;        // in one frame
  double peak_share = 0;             // of the frame under boxes at the peak, 0 to 1
  cv::Rect2d envelope;               // around all boxes, within the frame, in fractions of it
  cv::Rect2d largest;                // the largest box, likewise
  std::vector<std::string> regions;  // names of the regions touched, in the document's order
  std::optional<LightChange> light;  // for changes of light
  std::optional<WallTime> wall_start;
  std::optional<WallTime> wall_end;
  std::string started;  // why it started, in a sentence
  std::string ended;    // why it ended; empty while it goes on
};

}  // namespace lm::host::events
