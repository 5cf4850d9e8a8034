// The compact engine gives what the open one gives at the ends of its ranges: of thresholds, of counters and
// of regions.
#include <gtest/gtest.h>

#include <array>

#include "tests/compact/pair.h"
#include "tests/compact/scenes.h"

namespace {

using lm::compact::Shape;

struct Edge {
  Shape shape;
  std::vector<std::string> entries;
  std::vector<polygon> include;
  int interval = 40;  // milliseconds
};

// What differs first over frames 0, 1, 2, ... of `pixels`.
template <typename Pixels>
std::string compareOver(const Edge& edge, int frames, const Pixels& pixels) {
  for (const int level : levels()) {
    std::vector<std::string> entries = sizeEntries(edge.shape);
    entries.insert(entries.end(), edge.entries.begin(), edge.entries.end());
    Pair pair(edge.shape, entries, edge.include, {}, level);
    if (!pair.suits()) return "the compact engine does not take it";
    for (int frame = 0; frame < frames; ++frame) {
      const std::string difference =
          pair.feed(pixels(pair, frame), std::to_string(1000 + edge.interval * frame));
      if (!difference.empty())
        return "level " + std::to_string(level) + ", frame " + std::to_string(frame) + ": " + difference;
    }
  }
  return "";
}

std::vector<std::uint8_t> filled(const Shape& shape, std::uint8_t value) {
  return std::vector<std::uint8_t>(static_cast<std::size_t>(shape.height) * shape.rowBytes(), value);
}

// A change of 255 is not more than a limit of 255.
TEST(CompactEngine, GivesWhatTheOpenEngineGivesForTheLargestDifference) {
  const Shape shape{40, 12, 1};
  const auto blinking = [&](Pair&, int frame) { return filled(shape, frame % 2 == 0 ? 0 : 255); };
  for (const char* limit : {"254", "255", "256"}) {
    const Edge edge{shape, {std::string("THR_DIFF_HEURISTIC ") + limit}, {wholeOf(shape)}};
    EXPECT_EQ(compareOver(edge, 8, blinking), "") << limit;
    const Edge still{shape, {edge.entries[0], "ILLUMINATION_CHANGE 0"}, {wholeOf(shape)}};
    EXPECT_EQ(compareOver(still, 8, blinking), "") << limit << ", without lighting changes";
  }
}

// In steps of at most 254 a pixel stays background without being compared, 255 away from the background
// image. That is no lighting change when those are ignored: nothing was written when 255 is compared at last.
TEST(CompactEngine, GivesWhatTheOpenEngineGivesForTheLargestDifferenceToTheBackground) {
  const Shape shape{40, 12, 1};
  constexpr std::array<std::uint8_t, 6> values = {0, 0, 128, 255, 0, 255};
  const auto stepping = [&](Pair&, int frame) {
    return filled(shape, values[static_cast<std::size_t>(frame)]);
  };
  const std::vector<std::string> entries = {"THR_DIFF_HEURISTIC 254", "ILLUMINATION_CHANGE 0",
                                            "MIN_MATCH_NUM 1"};
  EXPECT_EQ(compareOver({shape, entries, {wholeOf(shape)}}, 6, stepping), "");
}

// Distances of 90 to 110 in each of three channels add up to more than 255 and more than the radius, so the
// pixels are refreshed: what comes close to the new sample afterwards is background.
TEST(CompactEngine, GivesWhatTheOpenEngineGivesForDistancesBeyondAByte) {
  const Shape shape{40, 12, 3};
  const auto far = [&](Pair&, int frame) {
    if (frame == 0) return filled(shape, 50);
    return filled(shape, frame == 10 ? 250 : frame % 2 == 0 ? 140 : 160);
  };
  const std::vector<std::string> entries = {"MIN_MATCH_DIST 120", "MIN_MATCH_NUM 1", "ILLUMINATION_CHANGE 0"};
  EXPECT_EQ(compareOver({shape, entries, {wholeOf(shape)}}, 11, far), "");
}

// A pixel that was refreshed rests, also while nothing changes. Two frames bring the first refresh; after
// `still` frames, sixteen more bring the second, if the rest is over by then: its sample, 82, makes 100
// background. All values but 100 match within the radius of 20 per channel, and exceed it over three
// channels.
TEST(CompactEngine, GivesWhatTheOpenEngineGivesForARestInStillFrames) {
  const Shape shape{300, 6, 3};
  const std::vector<std::string> entries = {"MIN_MATCH_DIST 20", "MIN_MATCH_NUM 1", "ILLUMINATION_CHANGE 0"};
  for (const int still : {0, 1, 12, 13, 14, 15, 16, 40}) {
    const auto pixels = [&](Pair&, int frame) {
      if (frame == 0) return filled(shape, 50);
      if (frame == 1) return filled(shape, 58);
      const int moving = frame - 2 - still;
      if (moving <= 0) return filled(shape, 70);
      if (moving == 17) return filled(shape, 100);
      return filled(shape, moving % 2 == 0 ? 82 : 58);
    };
    EXPECT_EQ(compareOver({shape, entries, {wholeOf(shape)}}, 20 + still, pixels), "") << still;
  }
}

// The life of what was foreground decays, also while nothing changes: what comes back is absorbed later.
TEST(CompactEngine, GivesWhatTheOpenEngineGivesForLifeInStillFrames) {
  const Shape shape{300, 6, 3};
  for (const int still : {1, 2, 5, 9}) {
    const auto pixels = [&](Pair&, int frame) {
      const bool gone = frame == 0 || (frame > 7 && frame <= 7 + still);
      return filled(shape, gone ? 50 : 200);
    };
    const Edge edge{shape, {"ILLUMINATION_CHANGE 0"}, {wholeOf(shape)}, 330};
    EXPECT_EQ(compareOver(edge, 30 + still, pixels), "") << still;
  }
}

// The counter of frames wraps around from the largest to the smallest number.
TEST(CompactEngine, GivesWhatTheOpenEngineGivesAfter2To31Frames) {
  const Shape shape{70, 60, 3};
  Dice dice(5);
  std::size_t boxes = 0;
  const auto passing = [&](Pair& pair, int frame) {
    if (frame == 6) pair.setFrameCount(2147483645);
    if (frame > 10) boxes += pair.boxes();
    return draw({shape, Kind::passing, 1.0}, frame, dice);
  };
  EXPECT_EQ(compareOver({shape, {"sensitivity 4", "minBoxW 0.01"}, {wholeOf(shape)}}, 14, passing), "");
  EXPECT_GT(boxes, 0U);
}

// A host may change the bands of the life of still foreground, between frames too.
TEST(CompactEngine, GivesWhatTheOpenEngineGivesForOtherBandsOfLife) {
  const std::int32_t x2 = THRESH_SAME_PIXEL_x2;
  const std::int32_t x3 = THRESH_SAME_PIXEL_x3;
  const Shape shape{70, 20, 3};
  Dice dice(9);
  const auto noisy = [&](Pair&, int frame) {
    if (frame == 0) THRESH_SAME_PIXEL_x2 = x2;
    if (frame == 0) THRESH_SAME_PIXEL_x3 = x3;
    if (frame == 12) THRESH_SAME_PIXEL_x2 = 5;
    if (frame == 24) THRESH_SAME_PIXEL_x3 = 300;
    if (frame == 36) THRESH_SAME_PIXEL_x2 = THRESH_SAME_PIXEL_x3 = -1;
    return draw({shape, Kind::stopping, 12.0}, frame, dice);
  };
  const std::vector<std::string> entries = {"sensitivity 5", "minBoxW 0.01"};
  EXPECT_EQ(compareOver({shape, entries, {wholeOf(shape)}, 330}, 48, noisy), "");
  THRESH_SAME_PIXEL_x2 = x2;
  THRESH_SAME_PIXEL_x3 = x3;
}

// Pixels of the columns and rows, ends included: the left and the bottom edge of a polygon are outside.
polygon regionOf(int left, int top, int right, int bottom) {
  return polygonOf({{left - 1, top}, {right, top}, {right, bottom + 1}, {left - 1, bottom + 1}});
}

// One pixel in twelve is brighter or darker than before by what counts as a lighting change and not as
// motion.
std::vector<std::uint8_t> flickering(const Shape& shape, Dice& dice) {
  std::vector<std::uint8_t> pixels = filled(shape, 100);
  for (std::uint8_t& value : pixels) value = static_cast<std::uint8_t>(value + (dice.below(12) == 0 ? 8 : 0));
  return pixels;
}

// A pixel asks neighbours outside the regions, in other blocks and in rows above and below.
TEST(CompactEngine, GivesWhatTheOpenEngineGivesForRegionsThatEndWhereBlocksDo) {
  const Shape shape{130, 40, 1};
  const std::vector<std::vector<polygon>> regions = {
      {regionOf(32, 0, 63, 39)},
      {regionOf(64, 5, 64, 30)},
      {regionOf(31, 5, 31, 30)},
      {regionOf(33, 0, 62, 39)},
      {regionOf(96, 0, 127, 39)},
      {regionOf(128, 0, 129, 39)},
      {regionOf(0, 0, 31, 39)},
      {regionOf(30, 2, 99, 2)},
      {regionOf(30, 37, 99, 37)},
      {regionOf(40, 0, 50, 1), regionOf(100, 17, 110, 18), regionOf(40, 38, 50, 39)},
      {regionOf(64, 8, 95, 8), regionOf(0, 10, 31, 10)},
      {regionOf(200, 0, 210, 39)}};
  for (std::size_t i = 0; i < regions.size(); ++i) {
    Dice dice(1);
    const auto next = [&](Pair&, int) { return flickering(shape, dice); };
    EXPECT_EQ(compareOver({shape, {"sensitivity 3"}, regions[i]}, 12, next), "") << "regions " << i;
  }
}

}  // namespace
