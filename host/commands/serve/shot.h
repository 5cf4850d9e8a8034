// A picture with the detector's results, for all viewers.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <string>

#include "host/events/box.h"

namespace lm::host::commands::serve {

// One detector's results for a picture.
struct Found {
  events::Boxes boxes;  // fractions of the frame
  std::chrono::microseconds cost{0};
};

struct Shot {
  std::uint64_t sequence = 0;  // increases by one per shot
  std::int64_t frame = 0;
  std::chrono::microseconds time{0};
  cv::Mat image;
  Found found;
  std::optional<Found> old;  // with the settings to compare with
  double rate = 0;           // frames analysed per second
  std::int64_t events = 0;
  std::uint64_t state = 0;  // changes whenever the player's state does
};

// The picture as JPEG with square pixels, reduced to the page's size.
std::string page_picture(const cv::Mat& image, cv::Size pixel_aspect);

// A shot's metadata for the page, on one line.
std::string shot_json(const Shot& shot);

}  // namespace lm::host::commands::serve
