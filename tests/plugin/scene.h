// Small scenes with a known result: bright rectangles on a dark, uniform background.
#pragma once

#include <string>
#include <vector>

#include "tests/support/mask_art.h"

namespace lm::test {

struct Rect {
  int x, y, width, height;
};

struct FrameSize {
  int width, height, channels;
};

inline constexpr FrameSize smallGrey{64, 32, 1};

// A region larger than the frame, so that every pixel is inside.
inline const std::string wholeFrame =
    R"({"name":"all","points":[{"x":"-1","y":"-1"},{"x":"2","y":"-1"},{"x":"2","y":"2"},{"x":"-1","y":"2"}]})";

// A document for frames of `size`; `more` holds further members, each with a leading comma.
std::string documentFor(const FrameSize& size, const std::string& more = "",
                        const std::string& regions = wholeFrame);

// A frame with the rectangles of `objects`, which are clipped to it.
Bytes frameWith(const FrameSize& size, const std::vector<Rect>& objects);

// The object of most tests, and its box in a 64 x 32 frame after an empty first frame.
// Three layers are peeled off: columns 19 to 32, rows 11 to 20. The box has one pixel of margin: x 18, y 10,
// width 16, height 12. As fractions: 18/64 = 0.28125, 10/32 = 0.3125, 16/64 = 0.25, 12/32 = 0.375.
inline constexpr Rect block{16, 8, 20, 16};
inline const std::string blockBox = R"({"height":0.375,"inRoi":[],"width":0.25,"x":0.28125,"y":0.3125})";

// The result document with the given boxes.
std::string resultOf(const std::string& boxes, const std::string& timestamp);

}  // namespace lm::test
