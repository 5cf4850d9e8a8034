// Where in the picture, and how large, the boxes were that turned out to be objects or clutter.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <opencv2/core.hpp>

namespace lm::host::events::objects {

// Seconds with boxes are summed up by place and size, and forgotten in some minutes. What counts for a box is
// what was at least half as large as it: small leaves say nothing about a person in front of them. Boxes are
// in fractions of the frame's height, in both directions.
class ClutterMap {
 public:
  enum class Kind { kClutter, kObject };

  // `aspect`: the frame's width by its height.
  explicit ClutterMap(double aspect) : aspect_(aspect) {}

  void add(Kind kind, const cv::Rect2d& box, double seconds);

  // Called for every frame.
  void pass(std::chrono::microseconds time);

  // Whether a box there would rather be clutter than an object. In weather only its size matters: what falls
  // comes to all places.
  bool expects_clutter(const cv::Rect2d& box) const;

  // Whether there is clutter nearly everywhere, as of rain and snow.
  bool is_weather() const { return is_everywhere(0); }

 private:
  static constexpr int kAcross = 16;
  static constexpr int kDown = 12;
  static constexpr int kAreas = 4;                           // in each direction
  static constexpr std::size_t kSizes = 16;                  // half octaves
  using Seconds = std::array<std::array<float, kSizes>, 2>;  // by kind and size

  static std::size_t size_of(const cv::Rect2d& box);
  static bool is_cluttered(const Seconds& place, std::size_t size);
  bool is_everywhere(std::size_t size) const;
  // Calls `call(place, area)` with the area that the box has in each place.
  template <typename Places, typename Call>
  void each_place(Places& places, const cv::Rect2d& box, Call call) const;

  double aspect_;
  std::array<Seconds, std::size_t{kAcross} * kDown> places_{};
  std::array<Seconds, std::size_t{kAreas} * kAreas> areas_{};  // larger places, by the boxes' centres
  std::chrono::microseconds faded_{0};
};

}  // namespace lm::host::events::objects
