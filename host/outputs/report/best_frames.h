// The frame of each event in which most of the picture was under boxes.
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
  std::vector<cv::Rect2d> boxes;  // those of the event's kind
  std::int64_t frame = 0;
  std::chrono::microseconds time{0};
  double share = 0;  // under the boxes
};

// An event is known some time after it began, so the frames that may turn out to be its best are kept that
// long: those that have a larger share under boxes than every later one, eight at most.
class BestFrames {
 public:
  // `lookback`: how long before it is announced an event can have begun. `kept`: the size of the images.
  BestFrames(std::chrono::microseconds lookback, cv::Size kept) : lookback_(lookback), kept_(kept) {}

  void frame(const cv::Mat& image, const events::Observation& seen);

  // The event has begun or gone on.
  void follow(const events::Event& event);

  // The best of an event that was followed, which is then forgotten. Its image is the caller's own.
  Still take(const events::Event& event);

 private:
  using Candidates = std::deque<Still>;
  static const Still& candidate(const Candidates& candidates, const events::Event& event);

  std::chrono::microseconds lookback_;
  cv::Size kept_;
  std::map<events::EventKind, Candidates> candidates_;
  std::map<std::string, Still> best_;  // by the event's id
};

}  // namespace lm::host::outputs::report
