#include "gst/outline.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace lm::gst {
namespace {

constexpr int thickness = 2;
constexpr int white = 255;

void fill(GstVideoFrame& frame, int x, int y, int width, int height) {
  const std::ptrdiff_t pixel = GST_VIDEO_FRAME_COMP_PSTRIDE(&frame, 0);
  auto* const top = static_cast<std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
  for (int row = y; row < y + height; ++row) {
    std::uint8_t* const begin =
        top + row * std::ptrdiff_t{GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0)} + x * pixel;
    std::memset(begin, white, static_cast<std::size_t>(width * pixel));
  }
}

}  // namespace

void drawOutlines(GstVideoFrame& frame, const std::vector<lightmotion_box>& boxes) {
  for (const lightmotion_box& box : boxes) {
    const int across = std::min(thickness, box.width);
    const int down = std::min(thickness, box.height);
    fill(frame, box.x, box.y, box.width, down);
    fill(frame, box.x, box.y + box.height - down, box.width, down);
    fill(frame, box.x, box.y, across, box.height);
    fill(frame, box.x + box.width - across, box.y, across, box.height);
  }
}

}  // namespace lm::gst
