// Learning a part of the frame anew.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <limits>

#include "compact/engine.h"
#include "lightmotion/lightmotion.hpp"
#include "tests/lightmotion/fixture.h"
#include "tests/plain/model.h"
#include "tests/support/failing_alloc.h"

namespace lm::test {
namespace {

using Mask = std::vector<std::uint8_t>;

int relearn(const Detector& detector, const compact::Area& area, const std::uint8_t* mask = nullptr,
            std::size_t stride = 0) {
  return lightmotion_relearn(detector.get(), area.x, area.y, area.width, area.height, mask, stride);
}

// ---- exactly ----------------------------------------------------------------------------------------------

// The documented rule on the plain model: in the next frame the pixels are not watched and their background
// is the frame; after it they are as after a first frame.
class Plain {
 public:
  explicit Plain(const compact::Shape& shape, const std::vector<std::string>& entries)
      : shape_(shape), model_(0) {
    std::vector<std::string> all = {"frmW " + std::to_string(shape.width),
                                    "frmH " + std::to_string(shape.height),
                                    "frmChn " + std::to_string(shape.channels)};
    all.insert(all.end(), entries.begin(), entries.end());
    const plain::Region whole{"",
                              {{-1, -1}, {shape.width, -1}, {shape.width, shape.height}, {-1, shape.height}}};
    model_.setParam(all, {whole}, {});
    std::srand(1);
  }

  void learn(const Mask& frame, std::int64_t time, const Mask& forgotten) {
    std::vector<std::size_t> pixels;
    for (std::size_t i = 0; i < forgotten.size(); ++i) {
      if (forgotten[i] != 0 && model_.frmCount > 0) pixels.push_back(i);
    }
    for (const std::size_t i : pixels) {
      model_.roiMask[i] = 0;
      takeBackground(frame, i);
    }
    model_.setTimestamp(std::to_string(time));
    model_.learnBg(frame.data(), shape_.width, shape_.height, shape_.channels);
    for (const std::size_t i : pixels) seed(frame, i);
  }

  const Mask& foreground() const { return model_.fgMask; }
  const Mask& background() const { return model_.bgImg; }

 private:
  std::size_t channels() const { return static_cast<std::size_t>(shape_.channels); }

  void takeBackground(const Mask& frame, std::size_t i) {
    for (std::size_t c = 0; c < channels(); ++c) model_.bgImg[i * channels() + c] = frame[i * channels() + c];
  }

  void seed(const Mask& frame, std::size_t i) {
    model_.roiMask[i] = 1;
    model_.prevFgMask[i] = 1;
    model_.fgLife[i] = 0;
    model_.absorbMask[i] = 0;
    model_.updTimer[i] = 0;
    model_.refreshCount[i] = 0;
    model_.sampleCursor[i] = 0;
    model_.nbrCursor[i] = 19;
    for (std::size_t slot = 0; slot < 20; ++slot) {
      const auto from = slot == 0 ? i : static_cast<std::size_t>(model_.nbrIdx[i][slot - 1]);
      for (std::size_t c = 0; c < channels(); ++c) model_.bgModel[i][slot][c] = frame[from * channels() + c];
    }
  }

  compact::Shape shape_;
  plain::Model model_;
};

// A rectangle and perhaps a mask of it, as bytes of the whole frame in `chosen` as well.
struct Part {
  compact::Area area;
  Mask mask;

  const std::uint8_t* bytes() const { return mask.empty() ? nullptr : mask.data(); }
  void addTo(Mask& chosen, const compact::Shape& shape) const {
    for (int y = 0; y < area.height; ++y) {
      for (int x = 0; x < area.width; ++x) {
        if (!mask.empty() && mask[static_cast<std::size_t>(y * area.width + x)] == 0) continue;
        chosen[static_cast<std::size_t>((area.y + y) * shape.width + area.x + x)] = 1;
      }
    }
  }
};

Part anyPart(const compact::Shape& shape, Dice& dice) {
  Part part{{dice.below(shape.width), dice.below(shape.height), 0, 0}, {}};
  part.area.width = dice.between(1, shape.width - part.area.x);
  part.area.height = dice.between(1, shape.height - part.area.y);
  if (dice.chance(30)) return part;
  part.mask.resize(static_cast<std::size_t>(part.area.width * part.area.height));
  for (std::uint8_t& byte : part.mask)
    byte = static_cast<std::uint8_t>(dice.chance(60) ? dice.below(256) : 0);
  return part;
}

struct Case {
  Scene scene;
  const char* members;
  std::vector<std::string> entries;
};

// 10 frames per second: still foreground is absorbed after 30 frames.
void expectTheRule(const Case& tested, std::uint32_t seed) {
  const compact::Shape& shape = tested.scene.shape;
  const auto frames = framesOf(tested.scene, 90, seed);
  const Detector detector = made(documentOf(shape, tested.members));
  Plain plain(shape, tested.entries);
  Dice dice(seed);
  int foreground = 0;
  for (std::size_t k = 0; k < frames.size(); ++k) {
    Mask forgotten(static_cast<std::size_t>(shape.width * shape.height), 0);
    for (int parts = dice.chance(25) ? dice.between(1, 3) : 0; parts > 0; --parts) {
      const Part part = anyPart(shape, dice);
      ASSERT_EQ(relearn(detector, part.area, part.bytes()), LIGHTMOTION_OK);
      part.addTo(forgotten, shape);
    }
    const auto time = static_cast<std::int64_t>(1000 + 100 * k);
    feed(detector, frames[k], time);
    plain.learn(frames[k], time, forgotten);
    ASSERT_EQ(backgroundOf(detector), plain.background()) << "frame " << k;
    if (k == 0) continue;
    ASSERT_EQ(foregroundOf(detector), plain.foreground()) << "frame " << k;
    for (const std::uint8_t pixel : plain.foreground()) foreground += pixel != 0 ? 1 : 0;
  }
  EXPECT_GT(foreground, 100);
}

TEST(Relearn, FollowsTheDocumentedRule) {
  expectTheRule({{{70, 30, 3}, Kind::passing, 2.5}, "", {}}, 1);
  expectTheRule({{{64, 24, 1}, Kind::stopping, 4}, "", {}}, 2);
  expectTheRule({{{33, 20, 3}, Kind::blinking, 6}, R"("sensitivity": 5)", {"sensitivity 5"}}, 3);
  expectTheRule({{{40, 9, 3}, Kind::brightening, 3}, "", {}}, 4);
  expectTheRule({{{97, 4, 1}, Kind::arbitrary, 0}, "", {}}, 5);
  expectTheRule({{{3, 40, 1}, Kind::arbitrary, 0}, "", {}}, 6);
}

// ---- what it is for ---------------------------------------------------------------------------------------

constexpr compact::Shape grey{100, 80, 1};

// Something stands there from the first frame on, leaves, and its place is learned anew. The foreground is
// smaller than it was, because samples at its outline are of the ground.
TEST(Relearn, TakesAGhostBack) {
  const Detector detector = made(documentOf(grey, R"("absorb_seconds": "forever", "extent": "full")"));
  for (int k = 0; k < 5; ++k) feed(detector, picture(grey, 90, {{30, 20, 20, 16, 200}}), 1000 + 40 * k);
  const auto empty = picture(grey, 90, {});
  for (int k = 5; k < 20; ++k) EXPECT_EQ(feed(detector, empty, 1000 + 40 * k).substr(0, 11), "31 21 19 14");
  const Mask mask = foregroundOf(detector);
  EXPECT_EQ(relearn(detector, {29, 19, 22, 18}, mask.data() + 19 * 100 + 29, 100), LIGHTMOTION_OK);
  for (int k = 20; k < 40; ++k) EXPECT_EQ(feed(detector, empty, 1000 + 40 * k), "");
}

TEST(Relearn, KeepsWhatIsOutsideTheMask) {
  const Detector detector = made(documentOf(grey, R"("absorb_seconds": "forever")"));
  feed(detector, picture(grey, 90, {}), 1000);
  const auto two = picture(grey, 90, {{10, 20, 20, 20, 200}, {40, 20, 20, 20, 200}});
  feed(detector, two, 1040);
  Mask mask = foregroundOf(detector);
  for (std::size_t i = 0; i < mask.size(); ++i) mask[i] = i % 100 < 35 ? mask[i] : 0;
  EXPECT_EQ(relearn(detector, {0, 0, 100, 80}, mask.data()), LIGHTMOTION_OK);
  for (int k = 2; k < 9; ++k) {
    feed(detector, two, 1000 + 40 * k);
    Mask expected(mask.size(), 0);
    for (std::size_t y = 20; y < 40; ++y)
      std::fill_n(expected.begin() + static_cast<int>(y * 100 + 40), 20, 255);
    ASSERT_EQ(foregroundOf(detector), expected) << k;
  }
}

// ---- beside other calls -----------------------------------------------------------------------------------

TEST(Relearn, LeavesTheLastResultsAlone) {
  const Detector detector = made(documentOf(grey));
  feed(detector, picture(grey, 90, {}), 1000);
  const auto block = picture(grey, 90, {{30, 20, 20, 20, 200}});
  const lightmotion_box* boxes = nullptr;
  ASSERT_EQ(lightmotion_process(detector.get(), block.data(), 0, 1040, &boxes), 1);
  const Mask mask = foregroundOf(detector);
  const Mask background = backgroundOf(detector);
  EXPECT_EQ(relearn(detector, {0, 0, 100, 80}), LIGHTMOTION_OK);
  EXPECT_EQ(boxes->x, 32);
  EXPECT_EQ(foregroundOf(detector), mask);
  EXPECT_EQ(backgroundOf(detector), background);
}

TEST(Relearn, OfAllPixelsLearnsAsAFirstFrame) {
  const auto frames = framesOf({grey, Kind::passing, 3}, 40);
  const Detector detector = made(documentOf(grey));
  const Detector fresh = made(documentOf(grey));
  for (std::size_t k = 0; k < frames.size(); ++k) {
    const auto time = static_cast<std::int64_t>(1000 + 40 * k);
    if (k == 10) {
      EXPECT_EQ(relearn(detector, {0, 0, 100, 80}), LIGHTMOTION_OK);
    }
    feed(detector, frames[k], time);
    if (k < 10) continue;
    feed(fresh, frames[k], time);
    ASSERT_EQ(foregroundOf(detector), foregroundOf(fresh)) << k;
  }
}

TEST(Relearn, HasNoEffectBeforeTheFirstFrameAndAfterAReset) {
  const auto frames = framesOf({grey, Kind::passing, 3}, 30);
  const Detector detector = made(documentOf(grey));
  const Detector fresh = made(documentOf(grey));
  EXPECT_EQ(relearn(detector, {0, 0, 100, 80}), LIGHTMOTION_OK);
  feed(detector, frames[5], 900);
  EXPECT_EQ(relearn(detector, {0, 0, 100, 80}), LIGHTMOTION_OK);
  lightmotion_reset(detector.get());
  for (std::size_t k = 0; k < frames.size(); ++k) {
    const auto time = static_cast<std::int64_t>(1000 + 40 * k);
    ASSERT_EQ(feed(detector, frames[k], time), feed(fresh, frames[k], time)) << k;
    ASSERT_EQ(foregroundOf(detector), foregroundOf(fresh)) << k;
  }
}

// Columns 0 to 49 are watched, then all, and those are learned anew in the frame that begins with the others.
TEST(Relearn, MayComeWithAChangeOfRegions) {
  const std::string west = R"("roi": [{"points": [{"x": -1, "y": -1}, {"x": 0.499, "y": -1},
                                                  {"x": 0.499, "y": 2}, {"x": -1, "y": 2}]}])";
  const auto frames = framesOf({grey, Kind::passing, 3}, 50);
  const Detector detector = made(documentOf(grey, west));
  const Detector fresh = made(documentOf(grey));
  for (std::size_t k = 0; k < frames.size(); ++k) {
    const auto time = static_cast<std::int64_t>(1000 + 40 * k);
    if (k == 10) {
      EXPECT_EQ(relearn(detector, {0, 0, 60, 80}), LIGHTMOTION_OK);
      EXPECT_EQ(lightmotion_change(detector.get(), "{\"roi\": null}", nullptr, 0), LIGHTMOTION_OK);
    }
    feed(detector, frames[k], time);
    if (k < 10) continue;
    feed(fresh, frames[k], time);
    ASSERT_EQ(foregroundOf(detector), foregroundOf(fresh)) << k;
  }
}

// In the frame after the one that seeded them, and of pixels that were never watched.
TEST(Relearn, MayBeRepeatedAndMayNameWhatIsNotWatched) {
  const std::string west = R"("roi": [{"points": [{"x": -1, "y": -1}, {"x": 0.499, "y": -1},
                                                  {"x": 0.499, "y": 2}, {"x": -1, "y": 2}]}])";
  const auto frames = framesOf({grey, Kind::passing, 3}, 50);
  const Detector detector = made(documentOf(grey, west));
  const Detector fresh = made(documentOf(grey, west));
  for (std::size_t k = 0; k < frames.size(); ++k) {
    const auto time = static_cast<std::int64_t>(1000 + 40 * k);
    if (k >= 10 && k < 13) {
      EXPECT_EQ(relearn(detector, {0, 0, 100, 80}), LIGHTMOTION_OK);
    }
    feed(detector, frames[k], time);
    if (k < 12) continue;
    feed(fresh, frames[k], time);
    ASSERT_EQ(foregroundOf(detector), foregroundOf(fresh)) << k;
  }
}

// ---- arguments and memory ---------------------------------------------------------------------------------

TEST(Relearn, RefusesPartsThatDoNotLieWithinTheFrame) {
  const Detector detector = made(documentOf(grey));
  feed(detector, picture(grey, 90, {}), 1000);
  constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
  for (const compact::Area& area :
       {compact::Area{-1, 0, 5, 5}, compact::Area{0, -1, 5, 5}, compact::Area{0, 0, 0, 5},
        compact::Area{0, 0, 5, 0}, compact::Area{0, 0, 101, 5}, compact::Area{0, 0, 5, 81},
        compact::Area{100, 0, 1, 1}, compact::Area{0, 80, 1, 1}, compact::Area{1, 0, most, 1},
        compact::Area{most, most, most, most}, compact::Area{0, 0, -5, 5}}) {
    EXPECT_EQ(relearn(detector, area), LIGHTMOTION_ERROR_ARGUMENT);
  }
  const Mask mask(100, 1);
  EXPECT_EQ(relearn(detector, {0, 0, 10, 10}, mask.data(), 9), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_relearn(nullptr, 0, 0, 1, 1, nullptr, 0), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(relearn(detector, {99, 79, 1, 1}), LIGHTMOTION_OK);
}

TEST(Relearn, ReadsExactlyTheMask) {
  const Detector detector = made(documentOf(grey));
  feed(detector, picture(grey, 90, {}), 1000);
  const auto exact = std::make_unique<std::uint8_t[]>(4 * 12 + 7);  // five rows of seven, 12 apart
  EXPECT_EQ(relearn(detector, {3, 4, 7, 5}, exact.get(), 12), LIGHTMOTION_OK);
}

TEST(Relearn, ChangesNothingWhenMemoryIsOut) {
  const auto block = picture(grey, 90, {{30, 20, 20, 20, 200}});
  int failed = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    const Detector detector = made(documentOf(grey));
    feed(detector, picture(grey, 90, {}), 1000);
    feed(detector, block, 1040);
    int outcome = 0;
    bool refused = false;
    {
      FailingAlloc alloc(failAt, Reach::all);
      outcome = relearn(detector, {0, 0, 100, 80});
      refused = alloc.refused() != Request::none;
    }
    EXPECT_EQ(outcome, refused ? LIGHTMOTION_ERROR_MEMORY : LIGHTMOTION_OK);
    EXPECT_EQ(feed(detector, block, 1080).empty(), !refused);
    if (!refused) break;
    ++failed;
  }
  EXPECT_EQ(failed, 2);
}

// The frame after the call needs no memory to learn.
TEST(Relearn, IsDoneInAFrameWhoseBoxesAreLost) {
  const auto two = picture(grey, 90, {{10, 20, 20, 20, 200}, {60, 20, 20, 20, 200}});
  int lost = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    const Detector detector = made(documentOf(grey));
    feed(detector, picture(grey, 90, {}), 1000);
    feed(detector, two, 1040);
    EXPECT_EQ(relearn(detector, {0, 0, 50, 80}), LIGHTMOTION_OK);
    int count = 0;
    bool refused = false;
    {
      FailingAlloc alloc(failAt, Reach::all);
      count = lightmotion_process(detector.get(), two.data(), 0, 1080, nullptr);
      refused = alloc.refused() != Request::none;
    }
    EXPECT_EQ(count, refused ? LIGHTMOTION_ERROR_MEMORY : 1);
    EXPECT_EQ(infoOf(detector).frames, 3);
    EXPECT_EQ(backgroundOf(detector)[20 * 100 + 10], 200);
    EXPECT_EQ(lightmotion_process(detector.get(), two.data(), 0, 1120, nullptr), 1);
    if (!refused) break;
    ++lost;
  }
  EXPECT_GT(lost, 0);
}

TEST(Relearn, InCppThrows) {
  lightmotion::Detector detector("{}", 100, 80, LIGHTMOTION_FORMAT_GREY);
  const auto block = picture(grey, 90, {{30, 20, 20, 20, 200}});
  detector.process(picture(grey, 90, {}).data(), 0, 1000);
  EXPECT_EQ(detector.process(block.data(), 0, 1040).size(), 1U);
  const Mask nothing(100 * 80, 0);
  detector.relearn(0, 0, 100, 80, nothing.data());
  EXPECT_EQ(detector.process(block.data(), 0, 1080).size(), 1U);
  detector.relearn(0, 0, 100, 80);
  EXPECT_TRUE(detector.process(block.data(), 0, 1120).empty());
  EXPECT_THROW(detector.relearn(0, 0, 101, 80), lightmotion::Error);
}

}  // namespace
}  // namespace lm::test
