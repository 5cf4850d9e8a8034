// The plug-in's result documents, as lines of output and as boxes to draw.
#pragma once

#include <chrono>
#include <cstdint>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::host {

// `document` on one line with the members "frame" and "time" (seconds) put in front. Its own text is kept
// byte for byte but for line feeds, so no number changes. Without a line feed at the end.
std::string result_line(const std::string& document, std::int64_t frame, std::chrono::microseconds time);

// A line that tells of something that happened to the source before this frame.
std::string note_line(const std::string& note, std::int64_t frame, std::chrono::microseconds time);

// The boxes in fractions of the frame's size, in the document's order. Empty for an empty text and for one
// that holds no boxes; what is no object with four numbers is left out.
std::vector<cv::Rect2d> boxes_of(const std::string& document);

}  // namespace lm::host
