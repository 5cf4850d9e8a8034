// The compact engine when allocations fail, through the entry points; and what it releases.
#include <gtest/gtest.h>
#include <json/json.h>

#include <array>
#include <cstdlib>
#include <new>

#include "compact/engine.h"
#include "engine/kamble.h"
#include "plugin/detector.h"
#include "plugin/entry_points.h"
#include "tests/support/capture.h"
#include "tests/support/failing_alloc.h"

namespace lm::test {
namespace {

constexpr int width = 70;
constexpr int height = 40;
constexpr const char* document =
    R"({"frmW":"70","frmH":"40","frmChn":"3","sensitivity":"3","minBoxW":"0.01","minBoxH":"0.01","roi":[)"
    R"({"points":[{"x":"-1","y":"-1"},{"x":"2","y":"-1"},{"x":"2","y":"2"},{"x":"-1","y":"2"}]}]})";

using Picture = std::vector<std::uint8_t>;

// A textured background, so that it matters which frame is learned first, and two rectangles that move.
Picture picture(int frame) {
  Picture pixels;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int at = x - 7 * frame;
      const bool inside = (at >= 4 && at < 20 && y >= 4 && y < 30) || (at >= 30 && at < 44 && y >= 14);
      pixels.insert(pixels.end(), 3, static_cast<std::uint8_t>(inside ? 200 : 60 + (x * 5 + y * 3) % 40));
    }
  }
  return pixels;
}

const std::array<Picture, 6> pictures = {picture(0), picture(1), picture(2),
                                         picture(3), picture(4), picture(5)};

std::string timeOf(std::size_t frame) { return std::to_string(1000 + 40 * frame); }

// Of the frame, from the entry points.
std::string feed(std::size_t frame) {
  int length = 0;
  std::srand(3);
  frameProc(pictures[frame].data(), timeOf(frame).c_str(), &length);
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  getRes(text.data());
  return text.c_str();
}

// Whether allocation number `failAt` of the frame failed.
bool feedFailing(std::size_t frame, std::uint64_t failAt) {
  std::srand(3);
  const std::string time = timeOf(frame);
  int length = 0;
  FailingAlloc alloc(failAt, Reach::all);
  try {
    frameProc(pictures[frame].data(), time.c_str(), &length);
  } catch (const std::bad_alloc&) {
  } catch (const Json::Exception&) {  // jsoncpp's exception when malloc fails
  }
  return alloc.refused() != Request::none;
}

// The results of the open engine. A frame 0 that is not learned moves clock and lock all the same.
std::array<std::string, 6> resultsOfTheOpenEngine(bool learnsFirst) {
  const Capture err(stderr);
  std::array<std::string, 6> texts;
  lightMotion open;
  open.init(document);
  for (std::size_t frame = 0; frame < texts.size(); ++frame) {
    if (frame == 0 && !learnsFirst) {
      open.engine->setTimestamp(timeOf(frame).c_str());
      open.engine->estFrameRate();
      open.engine->updateLock();
      continue;
    }
    std::srand(3);
    int length = 0;
    open.frameProc(pictures[frame].data(), timeOf(frame).c_str(), &length);
    texts[frame] = open.resText;
  }
  return texts;
}

class FailingAllocationsInFrame : public ::testing::TestWithParam<std::size_t> {
 protected:
  FailingAllocationsInFrame() { ::terminate(); }
  ~FailingAllocationsInFrame() override { ::terminate(); }
};
INSTANTIATE_TEST_SUITE_P(CompactEngine, FailingAllocationsInFrame, ::testing::Values(0, 2),
                         ::testing::PrintToStringParamName());

TEST_P(FailingAllocationsInFrame, LoseNoFrameButTheFirst) {
  const auto all = resultsOfTheOpenEngine(true);
  const auto fewer = resultsOfTheOpenEngine(false);
  ASSERT_NE(all[3], fewer[3]);
  int lost = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    ASSERT_TRUE(initialization(document));
    bool refused = false;
    bool learned = true;
    for (std::size_t frame = 0; frame < pictures.size(); ++frame) {
      Capture err(stderr);
      if (frame == GetParam()) {
        refused = feedFailing(frame, failAt);
        continue;
      }
      const std::string text = feed(frame);
      // The size is printed when a first frame is learned.
      if (frame == 1 && !err.text().empty()) learned = false;
      ASSERT_EQ(text, (learned ? all : fewer)[frame]) << "request " << failAt << ", frame " << frame;
    }
    ::terminate();
    lost += learned ? 0 : 1;
    if (!refused) {
      EXPECT_EQ(lost > 0, GetParam() == 0);
      EXPECT_GT(failAt, 5U);
      return;
    }
  }
}

TEST(CompactEngine, ReleasesTheMasksOfTheRegionsOnceTheyAreRead) {
  const Capture err(stderr);
  std::vector<std::string> entries = {"frmW 70", "frmH 40", "frmChn 3"};
  std::vector<polygon> include = {{"all", {{-1, -1}, {70, -1}, {70, 40}, {-1, 40}}, nullptr}};
  std::vector<polygon> exclude;
  kAMBLE settings;
  settings.setParam(entries, include, exclude);
  compact::Engine engine;
  ASSERT_TRUE(engine.learn(settings, pictures[0].data(), {width, height, 3}));
  EXPECT_EQ(settings.roiMask, nullptr);
  EXPECT_EQ(settings.roiInclude.at(0).mask, nullptr);
}

}  // namespace
}  // namespace lm::test
