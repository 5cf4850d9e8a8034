// What happened in a video, as spans of time instead of frames.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::host {

// A frame that was analysed, as far as events are concerned.
struct Observation {
  std::int64_t frame = 0;             // its number; the first is 0
  std::chrono::microseconds time{0};  // since the first frame
  std::vector<cv::Rect2d> boxes;      // fractions of the frame, in the plug-in's order
  double brightness = 0;              // mean of the picture's grey values, 0 to 255
};

enum class EventKind {
  kMotion,
  kLight,  // a change of light over most of the frame
};

// Times are those of the source. While an event goes on, its end is that of the last frame that belongs to
// it.
struct Event {
  std::string id;  // unique within a run and between runs of a live source
  EventKind kind = EventKind::kMotion;
  std::chrono::microseconds start{0};
  std::chrono::microseconds end{0};
  std::chrono::microseconds peak{0};  // when most of the frame was under boxes
  std::int64_t first_frame = 0;
  std::int64_t last_frame = 0;
  std::int64_t peak_frame = 0;
  double peak_share = 0;             // of the frame under boxes at the peak, 0 to 1
  cv::Rect2d envelope;               // around all boxes, fractions of the frame
  cv::Rect2d largest;                // the largest box
  std::vector<std::string> regions;  // names of the regions touched, in the document's order
  std::string started;               // why it started, in a sentence
  std::string ended;                 // why it ended; empty while it goes on
};

}  // namespace lm::host
