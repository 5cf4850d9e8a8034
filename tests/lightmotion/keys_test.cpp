// The keys that only handles know. Frames are 100 x 100 grey pixels of 80 with blocks of 200.
#include <gtest/gtest.h>

#include "tests/lightmotion/fixture.h"

namespace lm::test {
namespace {

constexpr compact::Shape shape{100, 100, 1};

std::vector<std::uint8_t> scene(const std::vector<Block>& blocks) { return picture(shape, 80, blocks); }

// The boxes, without the JSON text, of a frame with blocks after an empty one.
std::string boxesOf(const std::string& members, const std::vector<Block>& blocks) {
  const Detector detector = made(documentOf(shape, members));
  feed(detector, scene({}), 40);
  const std::string text = feed(detector, scene(blocks), 80);
  return text.substr(0, text.find('{'));
}

// ---- absorb_seconds ---------------------------------------------------------------------------------------

struct Rest {
  std::string members;
  int interval;  // milliseconds between frames
};

// In how many frames a block that appears and rests has a box; at most `limit`.
int framesWithBoxes(const Rest& rest, int limit) {
  const Detector detector = made(documentOf(shape, rest.members));
  const auto still = scene({{30, 30, 20, 20, 200}});
  std::int64_t time = 1000;
  for (int i = 0; i < 3; ++i) feed(detector, scene({}), time += rest.interval);
  for (int frames = 0; frames < limit; ++frames) {
    if (lightmotion_process(detector.get(), still.data(), 0, time += rest.interval, nullptr) == 0) {
      return frames;
    }
  }
  return limit;
}

// One frame in which it appears, one for each frame of the time, one until its life exceeds that.
TEST(AbsorbSeconds, IsHowLongAThingAtRestStaysForeground) {
  EXPECT_EQ(framesWithBoxes({"\"absorb_seconds\": 2", 40}, 500), 52);
  EXPECT_EQ(framesWithBoxes({"\"absorb_seconds\": 10", 40}, 500), 252);
  EXPECT_EQ(framesWithBoxes({"\"absorb_seconds\": \"0.4\"", 40}, 500), 12);
}

TEST(AbsorbSeconds, FollowsEveryFrameRate) {
  EXPECT_EQ(framesWithBoxes({"\"absorb_seconds\": 60", 1000}, 500), 62);
  EXPECT_EQ(framesWithBoxes({"\"absorb_seconds\": 60", 5000}, 500), 14);
  EXPECT_EQ(framesWithBoxes({"\"absorb_seconds\": 1", 8}, 500), 127);
  EXPECT_EQ(framesWithBoxes({"\"absorb_seconds\": 0.1", 1000}, 500), 3) << "at least one frame";
}

TEST(AbsorbSeconds, ForeverKeepsWhatRests) {
  EXPECT_EQ(framesWithBoxes({"\"absorb_seconds\": \"forever\"", 40}, 2000), 2000);
  EXPECT_EQ(framesWithBoxes({"", 40}, 500), 77) << "3 seconds without it";
}

// Absorption writes one sample, and two must match: until there are more, the pixel's life keeps it in the
// background, also when its value changes.
TEST(AbsorbSeconds, EndsOnce) {
  const Detector detector = made(documentOf(shape, "\"absorb_seconds\": 10"));
  const auto still = scene({{30, 30, 20, 20, 200}});
  std::int64_t time = 1000;
  for (int i = 0; i < 3; ++i) feed(detector, scene({}), time += 40);
  for (int i = 0; i < 252; ++i) EXPECT_NE(feed(detector, still, time += 40), "");
  EXPECT_EQ(feed(detector, still, time += 40), "");
  EXPECT_EQ(feed(detector, scene({{30, 30, 20, 20, 220}}), time += 40), "");
}

// The momentary rate would be 1 frame per second, and 2 seconds two frames.
TEST(AbsorbSeconds, IsHardlyChangedByAGap) {
  const Detector detector = made(documentOf(shape, "\"absorb_seconds\": 2"));
  const auto still = scene({{30, 30, 20, 20, 200}});
  std::int64_t time = 1000;
  for (int i = 0; i < 3; ++i) feed(detector, scene({}), time += 40);
  for (int i = 0; i < 40; ++i) feed(detector, still, time += 40);
  EXPECT_EQ(lightmotion_process(detector.get(), still.data(), 0, time += 1000, nullptr), 1);
}

// ---- extent and peel --------------------------------------------------------------------------------------

// A block of 20 x 20 with a mast of 2 x 20, and a thing of its own of 5 x 5.
const std::vector<Block> mast = {{30, 40, 20, 20, 200}, {39, 20, 2, 20, 200}, {80, 80, 5, 5, 200}};

// Three layers off each side and a margin of one: 30 + 2, 40 + 2, 20 - 4. Below the mast one layer less.
TEST(Extent, CoreIsTheBoxOfWhatIsLeftAfterPeeling) {
  EXPECT_EQ(boxesOf("", mast), "32 41 16 17 in 0; ");
  EXPECT_EQ(boxesOf("\"extent\": \"core\"", mast), "32 41 16 17 in 0; ");
}

TEST(Extent, FullIsTheBoxOfTheWholeComponentThatHasACore) {
  EXPECT_EQ(boxesOf("\"extent\": \"full\"", mast), "29 19 22 42 in 0; ");
}

// Two cores, one component: the mast joins them, and they are far enough apart for two boxes without it.
TEST(Extent, FullHasOneBoxForAComponentWithSeveralCores) {
  const std::vector<Block> joined = {
      {10, 10, 15, 15, 200}, {70, 70, 15, 15, 200}, {16, 24, 2, 54, 200}, {16, 76, 55, 2, 200}};
  EXPECT_EQ(boxesOf("", joined), "12 12 11 12 in 0; 71 72 12 11 in 0; ");
  EXPECT_EQ(boxesOf("\"extent\": \"full\"", joined), "9 9 77 77 in 0; ");
}

TEST(Peel, TakesThatManyLayersOff) {
  const std::vector<Block> block = {{30, 30, 12, 12, 200}};
  EXPECT_EQ(boxesOf("\"peel\": 0", block), "29 29 14 14 in 0; ");
  EXPECT_EQ(boxesOf("\"peel\": 1", block), "30 30 12 12 in 0; ");
  EXPECT_EQ(boxesOf("\"peel\": \"2\"", block), "31 31 10 10 in 0; ");
  EXPECT_EQ(boxesOf("\"peel\": 3", block), "32 32 8 8 in 0; ");
  EXPECT_EQ(boxesOf("", block), "32 32 8 8 in 0; ");
}

// 25 pixels are enough for a component; with one layer less there are 9.
TEST(Peel, DecidesWhichSmallThingsAreLeft) {
  EXPECT_EQ(boxesOf("\"peel\": 0", {{80, 80, 5, 5, 200}}), "79 79 7 7 in 0; ");
  EXPECT_EQ(boxesOf("\"peel\": 1", {{80, 80, 5, 5, 200}}), "");
}

// ---- join_gap ---------------------------------------------------------------------------------------------

// The box of a block of 20 pixels has 16: from 22 to 38, and the other one begins at 52. A joined box is one
// pixel wider and higher than both.
TEST(JoinGap, BoxesUpToThatFarApartBecomeOne) {
  const std::vector<Block> apart = {{20, 30, 20, 20, 200}, {50, 30, 20, 20, 200}};
  EXPECT_EQ(boxesOf("", apart), "22 32 16 16 in 0; 52 32 16 16 in 0; ");
  EXPECT_EQ(boxesOf("\"join_gap\": 0.13", apart), "22 32 16 16 in 0; 52 32 16 16 in 0; ");
  EXPECT_EQ(boxesOf("\"join_gap\": 0.14", apart), "22 32 47 17 in 0; ");
}

// Without peeling, boxes are 22 pixels wide: 3 percent of 100 are 3 pixels, and 2 lie between these.
const std::vector<Block> close = {{20, 30, 20, 20, 200}, {44, 30, 20, 20, 200}};

TEST(JoinGap, KeepsApartWhatTheDefaultJoins) {
  EXPECT_EQ(boxesOf("\"peel\": 0", close), "19 29 47 23 in 0; ");
  EXPECT_EQ(boxesOf("\"peel\": 0, \"join_gap\": \"0.01\"", close), "19 29 22 22 in 0; 43 29 22 22 in 0; ");
}

TEST(JoinGap, ChangesBackToTheDefault) {
  const Detector detector = made(documentOf(shape, "\"peel\": 0, \"join_gap\": 0"));
  feed(detector, scene({}), 40);
  EXPECT_EQ(lightmotion_process(detector.get(), scene(close).data(), 0, 80, nullptr), 2);
  ASSERT_EQ(lightmotion_change(detector.get(), "{\"join_gap\": null}", nullptr, 0), LIGHTMOTION_OK);
  EXPECT_EQ(lightmotion_process(detector.get(), scene(close).data(), 0, 120, nullptr), 1);
}

// ---- format -----------------------------------------------------------------------------------------------

TEST(Format, LumaPlanesAreGrey) {
  const Scene moving{{96, 64, 1}, Kind::passing, 2};
  const auto frames = framesOf(moving, 12);
  const Detector grey = made("{\"frmW\": 96, \"frmH\": 64, \"format\": \"grey\"}");
  const Detector i420 = made("{\"frmW\": 96, \"frmH\": 64, \"format\": \"i420\"}");
  const Detector nv12 = made("{\"frmW\": 96, \"frmH\": 64, \"format\": \"nv12\"}");
  std::size_t length = 0;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const std::string expected = feed(grey, frames[i], 40 + 40 * static_cast<int>(i));
    EXPECT_EQ(feed(i420, frames[i], 40 + 40 * static_cast<int>(i)), expected);
    EXPECT_EQ(feed(nv12, frames[i], 40 + 40 * static_cast<int>(i)), expected);
    length += expected.size();
  }
  EXPECT_GT(length, 0U);
}

TEST(Format, SaysHowManyBytesAPixelHas) {
  for (const auto& [name, bytes, format] : {std::tuple{"grey", 1, LIGHTMOTION_FORMAT_GREY},
                                            {"bgr", 3, LIGHTMOTION_FORMAT_BGR},
                                            {"rgb", 3, LIGHTMOTION_FORMAT_RGB},
                                            {"bgrx", 4, LIGHTMOTION_FORMAT_BGRX},
                                            {"rgbx", 4, LIGHTMOTION_FORMAT_RGBX},
                                            {"i420", 1, LIGHTMOTION_FORMAT_I420},
                                            {"nv12", 1, LIGHTMOTION_FORMAT_NV12}}) {
    const auto info = infoOf(made(std::string("{\"frmW\": 9, \"frmH\": 5, \"format\": \"") + name + "\"}"));
    EXPECT_EQ(info.bytes_per_pixel, bytes) << name;
    EXPECT_EQ(info.format, format) << name;
  }
}

}  // namespace
}  // namespace lm::test
