// The plug-in's result documents as boxes, and boxes as lines of output.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::host::outputs {

struct ReportedBox {
  cv::Rect2d box{};                    // in fractions of the frame, clipped to it
  std::vector<std::string> regions{};  // names of those that it touches
};

// One line for a frame with boxes, without a line feed at the end. `timestamp`: as the plug-in was given it.
std::string result_line(std::int64_t frame, std::chrono::microseconds time,
                        const std::vector<ReportedBox>& boxes, const std::string& timestamp);

// A line about something that happened to the source before this frame.
std::string note_line(const std::string& note, std::int64_t frame, std::chrono::microseconds time);

// The boxes of the plug-in's document in its order, in fractions of the frame and clipped to it: the
// plug-in's own reach past the right and the bottom border. Empty for an empty text and for one that holds no
// boxes; left out is what is no object with four numbers, and a box of which nothing lies in the frame.
std::vector<cv::Rect2d> boxes_of(const std::string& document);

}  // namespace lm::host::outputs
