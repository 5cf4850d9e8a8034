// A busy scene in every channel count and in sizes from one pixel up.
#include <array>

#include "tests/system/sequence.h"

namespace {

// Some of everything, scaled to the frame: a walker, a parked object that leaves again, a flickering object,
// and lighting changes of a part and of the whole.
scene::Scene busy(int w, int h, int channels) {
  const int third = (w + 2) / 3, half = (h + 1) / 2;
  return {.width = w,
          .height = h,
          .channels = channels,
          .seed = static_cast<std::uint32_t>(w * 100 + h),
          .noise = 7,
          .lights = {{{0, 0, third, h}, 10, 25, 9}, {{0, 0, w, h}, 40, scene::forever, 12}},
          .things = {{.area = {-third, 0, third, half}, .from = 3, .until = 60, .dx = 1},
                     {.area = {w - third, h - half, third, half}, .from = 5, .until = 50, .shade = 140},
                     {.area = {0, h - half, third, half}, .from = 52, .shade = 170, .flicker = 15}}};
}

}  // namespace

std::vector<Sequence> sizeSequences() {
  constexpr std::array<std::array<int, 2>, 16> sizes = {{{1, 1},
                                                         {1, 7},
                                                         {7, 1},
                                                         {2, 2},
                                                         {3, 3},
                                                         {4, 4},
                                                         {5, 5},
                                                         {1, 40},
                                                         {40, 1},
                                                         {17, 9},
                                                         {16, 16},
                                                         {31, 33},
                                                         {33, 31},
                                                         {64, 48},
                                                         {95, 67},
                                                         {50, 97}}};
  std::vector<Sequence> list;
  for (const int channels : {1, 3, 4}) {
    for (const auto& [w, h] : sizes) {
      // At five frames per second, still foreground is absorbed after fifteen frames.
      list.push_back({.name = "size_" + std::to_string(w) + "x" + std::to_string(h) + "_channels_" +
                              std::to_string(channels),
                      .width = w,
                      .height = h,
                      .frames = 80,
                      .frame = framesOf(busy(w, h, channels), 200),
                      .configuredBy = ConfiguredBy::document});
    }
  }
  return list;
}
