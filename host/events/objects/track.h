// One object as it is followed from frame to frame.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>

#include "host/events/objects/coordinate_filter.h"

namespace lm::host::events::objects {

// Lengths are fractions of the frame's height, in both directions.
class Track {
 public:
  Track(const cv::Rect2d& box, std::chrono::microseconds time);

  // The estimated place.
  cv::Rect2d box() const;
  // Edge of a square of the same area.
  double size() const;

  void predict(double seconds);
  void correct(const cv::Rect2d& box, std::chrono::microseconds time);

  // The object is one of several in a box. Only edges of the box that are its own say where it is; its size
  // stays.
  struct Edges {
    bool left = false;
    bool right = false;
    bool top = false;
    bool bottom = false;
  };
  void correct_within(const cv::Rect2d& box, const Edges& own, std::chrono::microseconds time);

  // The object has no box in this frame.
  void lose(std::chrono::microseconds passed);

  // The cost of the box being this object, from 0; none if it cannot be.
  std::optional<double> cost(const cv::Rect2d& box) const;

  std::int64_t id = 0;
  std::optional<std::int64_t> part_of;  // the object of which it seems to be a part
  bool over = false;

  enum class State {
    kSeen,    // has a box of its own
    kMerged,  // shares a box with others
    kLost,
  };
  State state() const { return state_; }
  std::chrono::microseconds age() const { return seen_ - first_; }
  std::chrono::microseconds merged_for() const { return seen_ - merged_; }
  std::chrono::microseconds lost_for() const { return lost_; }
  int lost_frames() const { return lost_frames_; }
  const cv::Rect2d& last_box() const { return last_box_; }

 private:
  bool is_near(const cv::Rect2d& box) const;
  bool fits(const cv::Rect2d& box) const;
  void seen(State state, std::chrono::microseconds time);

  std::array<CoordinateFilter, 4> filters_;  // centre x and y, width, height
  State state_ = State::kSeen;
  std::chrono::microseconds first_;
  std::chrono::microseconds seen_;
  std::chrono::microseconds merged_{0};
  std::chrono::microseconds lost_{0};
  int lost_frames_ = 0;
  cv::Rect2d last_box_;  // estimated if it was shared
};

// The share of `part` that lies in `whole`, 0 to 1.
double share_within(const cv::Rect2d& part, const cv::Rect2d& whole);

}  // namespace lm::host::events::objects
