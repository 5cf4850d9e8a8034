// The compact engine gives what the open one gives, for frames of every width up to more than four blocks,
// and for some wide enough for the groups of eight blocks that are tested for work at once.
#include <gtest/gtest.h>

#include <array>

#include "tests/compact/pair.h"
#include "tests/compact/scenes.h"

namespace {

using lm::compact::Shape;

// Regions that begin and end near the borders of blocks.
polygon columnsOf(const Shape& shape, int left, int right) {
  return polygonOf({{left, -1}, {right, -1}, {right, shape.height}, {left, shape.height}});
}

// Three frames per second: what stays still is absorbed after ten frames, within the sequence.
std::string compareOver(const Scene& scene, const std::vector<polygon>& include, int level, int& boxes) {
  Dice dice(static_cast<std::uint32_t>(scene.shape.width));
  std::vector<std::string> entries = sizeEntries(scene.shape);
  constexpr std::array sensitivities = {"1", "2", "3", "4", "5", "-1"};
  entries.push_back(std::string("sensitivity ") +
                    sensitivities[static_cast<std::size_t>(scene.shape.width / 6 % 6)]);
  entries.emplace_back("minBoxW 0.01");
  Pair pair(scene.shape, entries, include, {}, level);
  if (!pair.suits()) return "the compact engine does not take it";
  for (int frame = 0; frame < 22; ++frame) {
    const std::string difference = pair.feed(draw(scene, frame, dice), std::to_string(1000 + 330 * frame));
    if (!difference.empty()) return "frame " + std::to_string(frame) + ": " + difference;
    boxes += static_cast<int>(pair.boxes());
  }
  return "";
}

class FramesOfEveryWidth : public ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(CompactEngine, FramesOfEveryWidth, ::testing::Values(1, 3, 4),
                         ::testing::PrintToStringParamName());

TEST_P(FramesOfEveryWidth, GiveWhatTheOpenEngineGives) {
  int boxes = 0;
  constexpr std::array heights = {7, 1, 12, 2, 5, 9, 3, 16, 4, 6};
  for (int width = 1; width <= 352; width += width < 132 ? 1 : 31) {
    const Shape shape{width, heights[static_cast<std::size_t>(width) % heights.size()], GetParam()};
    const Scene scene{shape, static_cast<Kind>(width % 6), 2.5};
    const std::vector<std::vector<polygon>> regions = {
        {wholeOf(shape)}, {columnsOf(shape, width / 2, width)}, {columnsOf(shape, -1, width * 2 / 3)}};
    const auto& include = regions[static_cast<std::size_t>(width) % regions.size()];
    for (const int level : levels()) {
      ASSERT_EQ(compareOver(scene, include, level, boxes), "")
          << width << " x " << shape.height << ", level " << level;
    }
  }
  EXPECT_GT(boxes, 200);
}

}  // namespace
