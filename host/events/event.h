// Events: spans of time with motion or a lighting change.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/base/time_text.h"
#include "host/detector/lines.h"
#include "host/events/box.h"

namespace lm::host::events {

using base::WallTime;

// A lighting change, from its start to its end.
struct LightChange {
  double before = 0;  // mean of the picture's grey values, 0 to 255
  double after = 0;
  double share = 0;  // of the watched part of the frame, 0 to 1
};

// An analysed frame, as input for events.
struct Observation {
  std::int64_t frame = 0;             // its number; the first is 0
  std::chrono::microseconds time{0};  // since the first frame
  Boxes boxes;                        // in the detector's order, without clutter
  std::int64_t clutter = 0;           // boxes left out
  double brightness = 0;              // mean of the picture's grey values, 0 to 255
  std::optional<LightChange> light;   // the latest lighting change, while its boxes last
  std::optional<WallTime> wall;       // arrival time, for live sources
};

// Where an object was: the middle of its box's lower edge, smoothed, in fractions of the frame.
struct PathPoint {
  std::chrono::microseconds time{0};
  cv::Point2d place;
};

// Objects are named by the ids of their boxes.
struct EventObject {
  std::int64_t id = 0;
  std::chrono::microseconds start{0};
  std::chrono::microseconds end{0};
  std::vector<PathPoint> path;  // while it has a box of its own
};

// An object touched a region.
struct Visit {
  std::string region;
  std::int64_t object = 0;
  std::chrono::microseconds start{0};
  std::chrono::microseconds end{0};
};

// An object's path crossed a line.
struct Crossing {
  std::string line;
  std::int64_t object = 0;
  std::chrono::microseconds time{0};
  detector::Side to = detector::Side::kRight;
};

// Times are the source's. While an event is in progress, its end is the last frame that belongs to it.
struct Event {
  std::string id;  // unique within a run and between runs of a live source; valid in a file name
  EventKind kind = EventKind::kMotion;
  std::chrono::microseconds start{0};
  std::chrono::microseconds end{0};
  std::chrono::microseconds peak{0};  // frame with the largest share under boxes
  std::chrono::microseconds from{0};  // start of the span to show: start - --pre, not before the first frame
  std::chrono::microseconds to{0};    // end + --post; may be after the last frame
  std::int64_t first_frame = 0;
  std::int64_t last_frame = 0;
  std::int64_t peak_frame = 0;
  std::int64_t frames = 0;           // frames with boxes that belong to it
  std::size_t most_boxes = 0;        // in one frame
  double peak_share = 0;             // of the frame under boxes at the peak, 0 to 1
  cv::Rect2d envelope;               // around all boxes, within the frame, in fractions of it
  cv::Rect2d largest;                // the largest box, likewise
  std::vector<std::string> regions;  // names of the regions touched, in the document's order
  std::vector<EventObject> objects;  // of motion, in the order of their ids
  std::vector<Visit> visits;         // in the order of their starts
  std::vector<Crossing> crossings;   // in the order of time
  std::optional<LightChange> light;  // for lighting changes
  std::optional<WallTime> wall_start;
  std::optional<WallTime> wall_end;
  std::string started;  // why it started, in a sentence
  std::string ended;    // why it ended; empty while in progress
};

// How long the object that stayed longest was there.
std::chrono::microseconds dwell(const Event& event);

// The boxes of the event's kind; of motion, those of its objects if they have ids.
Boxes boxes_of_event(const Boxes& boxes, const Event& event);

}  // namespace lm::host::events
