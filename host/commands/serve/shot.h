// A picture with what the detector found in it, for everybody who watches.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

namespace lm::host::commands::serve {

// What one detector makes of a picture.
struct Found {
  std::vector<cv::Rect2d> boxes;  // fractions of the frame
  std::chrono::microseconds cost{0};
};

struct Shot {
  std::uint64_t sequence = 0;  // one more than that of the shot before
  std::int64_t frame = 0;
  std::chrono::microseconds time{0};
  cv::Mat image;
  Found found;
  std::optional<Found> old;  // by the settings to compare with
  double rate = 0;           // frames analysed a second
  std::int64_t events = 0;
  std::uint64_t state = 0;  // changes whenever the player's state does
};

// The picture as a JPEG file with square pixels, small enough for a page.
std::string page_picture(const cv::Mat& image, cv::Size pixel_aspect);

// The page's account of a shot, on one line.
std::string shot_json(const Shot& shot);

}  // namespace lm::host::commands::serve
