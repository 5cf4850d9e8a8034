// The frame of each event with the largest share under boxes.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "host/events/event.h"

namespace lm::host::outputs::report {

struct Still {
  cv::Mat image;
  events::Boxes boxes;  // of the event's kind
  std::int64_t frame = 0;
  std::chrono::microseconds time{0};
  double share = 0;  // of the frame under these boxes
};

// Events are announced some time after they begin, so candidate frames are kept for that long: those with a
// larger share under boxes than every later one, eight at most.
class BestFrames {
 public:
  // `lookback`: maximum time between the start and the announcement of an event. `kept`: image size.
  BestFrames(std::chrono::microseconds lookback, cv::Size kept) : lookback_(lookback), kept_(kept) {}

  void frame(const cv::Mat& image, const events::Observation& seen);

  // The event has begun or changed.
  void follow(const events::Event& event);

  // Returns and forgets the best frame of a followed event. Its image is not shared.
  Still take(const events::Event& event);

 private:
  using Candidates = std::deque<Still>;
  static const Still& candidate(const Candidates& candidates, const events::Event& event);

  std::chrono::microseconds lookback_;
  cv::Size kept_;
  std::map<events::EventKind, Candidates> candidates_;
  std::map<std::string, Still> best_;  // by event id
};

}  // namespace lm::host::outputs::report
