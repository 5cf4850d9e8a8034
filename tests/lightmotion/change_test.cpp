// Changing the configuration of a detector that has learned.
#include <gmock/gmock.h>

#include <array>

#include "tests/lightmotion/fixture.h"

namespace lm::test {
namespace {

using testing::HasSubstr;

// Columns from a share of the width on to another.
std::string strip(double from, double to) {
  const std::string left = std::to_string(from);
  const std::string right = std::to_string(to);
  return "\"roi\": [{\"name\": \"strip\", \"points\": [{\"x\": " + left + ", \"y\": -1}, {\"x\": " + right +
         ", \"y\": -1}, {\"x\": " + right + ", \"y\": 2}, {\"x\": " + left + ", \"y\": 2}]}]";
}
const std::string west = strip(-1, 0.4995);
const std::string east = strip(0.4995, 2);

int change(const Detector& detector, const std::string& changes, std::string* message = nullptr) {
  std::array<char, 500> text{};
  const int outcome =
      lightmotion_change(detector.get(), ("{" + changes + "}").c_str(), text.data(), text.size());
  if (message != nullptr) *message = text.data();
  return outcome;
}

// The columns [from, to) of a mask.
std::vector<std::uint8_t> columns(const std::vector<std::uint8_t>& mask, int width, int from, int to) {
  std::vector<std::uint8_t> part;
  for (std::size_t at = 0; at < mask.size(); at += static_cast<std::size_t>(width)) {
    part.insert(part.end(), mask.begin() + static_cast<std::ptrdiff_t>(at) + from,
                mask.begin() + static_cast<std::ptrdiff_t>(at) + to);
  }
  return part;
}

// ---- regions ----------------------------------------------------------------------------------------------

class WatchedArea : public ::testing::TestWithParam<compact::Shape> {
 protected:
  static constexpr int before = 12;  // frames until the change

  const compact::Shape shape_ = GetParam();
  const std::vector<std::vector<std::uint8_t>> frames_ = framesOf({shape_, Kind::passing, 2.5}, 60);

  std::string feed(const Detector& detector, int frame) {
    return test::feed(detector, frames_[static_cast<std::size_t>(frame)], 1000 + 40 * frame);
  }
  // The foreground away from the border between the halves, where neighbours of the other one are asked.
  std::vector<std::uint8_t> westOf(const Detector& detector) {
    return columns(foregroundOf(detector), shape_.width, 0, shape_.width / 2 - 8);
  }
  std::vector<std::uint8_t> eastOf(const Detector& detector) {
    return columns(foregroundOf(detector), shape_.width, shape_.width / 2 + 8, shape_.width);
  }
};

INSTANTIATE_TEST_SUITE_P(Shapes, WatchedArea,
                         testing::Values(compact::Shape{130, 60, 1}, compact::Shape{128, 40, 1},
                                         compact::Shape{300, 30, 1}));

TEST_P(WatchedArea, KeepsWhatWasLearnedAndLearnsWhatIsNewFromTheNextFrame) {
  const Detector changed = made(documentOf(shape_, west));
  const Detector unchanged = made(documentOf(shape_, west));
  const Detector fresh = made(documentOf(shape_));
  int foreground = 0;
  for (int frame = 0; frame < 60; ++frame) {
    if (frame == before) {
      EXPECT_EQ(change(changed, "\"roi\": null"), LIGHTMOTION_OK);
    }
    feed(changed, frame);
    feed(unchanged, frame);
    ASSERT_EQ(westOf(changed), westOf(unchanged)) << frame;
    if (frame < before) continue;
    feed(fresh, frame);
    ASSERT_EQ(eastOf(changed), eastOf(fresh)) << frame;
    for (const std::uint8_t pixel : eastOf(changed)) foreground += pixel != 0 ? 1 : 0;
  }
  EXPECT_GT(foreground, 100);
}

TEST_P(WatchedArea, ForgetsWhatIsNoLongerWatched) {
  const Detector changed = made(documentOf(shape_));
  const Detector fresh = made(documentOf(shape_));
  for (int frame = 0; frame < 60; ++frame) {
    if (frame == before) {
      EXPECT_EQ(change(changed, west), LIGHTMOTION_OK);
    }
    if (frame == 2 * before) {
      EXPECT_EQ(change(changed, "\"roi\": null"), LIGHTMOTION_OK);
    }
    feed(changed, frame);
    if (frame >= before && frame < 2 * before) {
      const std::vector<std::uint8_t> nothing(eastOf(changed).size(), 0);
      ASSERT_EQ(eastOf(changed), nothing) << frame;
    }
    if (frame < 2 * before) continue;
    feed(fresh, frame);
    ASSERT_EQ(eastOf(changed), eastOf(fresh)) << frame;
  }
}

// Only the last change before a frame counts, also directly after a frame that began another one.
TEST_P(WatchedArea, MayChangeAgainBeforeAndAfterTheNextFrame) {
  const Detector changed = made(documentOf(shape_, west));
  const Detector fresh = made(documentOf(shape_));
  for (int frame = 0; frame < 40; ++frame) {
    if (frame == before) {
      EXPECT_EQ(change(changed, east), LIGHTMOTION_OK);
      EXPECT_EQ(change(changed, "\"roi\": null"), LIGHTMOTION_OK);
    }
    if (frame == before + 1) {
      EXPECT_EQ(change(changed, west), LIGHTMOTION_OK);
      EXPECT_EQ(change(changed, east), LIGHTMOTION_OK);
    }
    feed(changed, frame);
    if (frame < before) continue;
    feed(fresh, frame);
    ASSERT_EQ(eastOf(changed), eastOf(fresh)) << frame;
  }
}

TEST_P(WatchedArea, IsLearnedAnewAfterAReset) {
  const Detector changed = made(documentOf(shape_, west));
  const Detector fresh = made(documentOf(shape_, east));
  for (int frame = 0; frame < 5; ++frame) feed(changed, frame);
  EXPECT_EQ(change(changed, east), LIGHTMOTION_OK);
  EXPECT_EQ(lightmotion_reset(changed.get()), LIGHTMOTION_OK);
  for (int frame = 5; frame < 40; ++frame) ASSERT_EQ(feed(changed, frame), feed(fresh, frame)) << frame;
}

TEST_P(WatchedArea, CanChangeBeforeTheFirstFrame) {
  const Detector changed = made(documentOf(shape_, west));
  const Detector fresh = made(documentOf(shape_, east + ", \"sensitivity\": 5"));
  EXPECT_EQ(change(changed, east + ", \"sensitivity\": \"5\""), LIGHTMOTION_OK);
  for (int frame = 0; frame < 40; ++frame) ASSERT_EQ(feed(changed, frame), feed(fresh, frame)) << frame;
}

// ---- settings ---------------------------------------------------------------------------------------------

constexpr compact::Shape grey{100, 80, 1};

TEST(Change, OfSensitivityKeepsWhatWasLearned) {
  const Detector detector = made(documentOf(grey, "\"sensitivity\": 1"));
  feed(detector, picture(grey, 80, {}), 40);
  feed(detector, picture(grey, 80, {}), 80);
  // 19 grey levels: above the change threshold, 18, and within the match radius, 20.
  const auto faint = picture(grey, 80, {{30, 30, 20, 20, 99}});
  EXPECT_EQ(feed(detector, faint, 120), "");
  EXPECT_EQ(change(detector, "\"sensitivity\": 5"), LIGHTMOTION_OK);
  feed(detector, picture(grey, 80, {}), 160);
  EXPECT_THAT(feed(detector, faint, 200), HasSubstr("32 32 16 16 in 0; "));
}

TEST(Change, OfTheMinimumBoxTakesEffect) {
  const Detector detector = made(documentOf(grey));
  feed(detector, picture(grey, 80, {}), 40);
  EXPECT_EQ(change(detector, R"("minBoxW": 0.5, "minBoxH": 0.5)"), LIGHTMOTION_OK);
  EXPECT_EQ(feed(detector, picture(grey, 80, {{30, 30, 20, 20, 200}}), 80), "");
  EXPECT_EQ(change(detector, R"("minBoxW": null, "minBoxH": null)"), LIGHTMOTION_OK);
  EXPECT_NE(feed(detector, picture(grey, 80, {{30, 30, 20, 20, 200}}), 120), "");
}

TEST(Change, OfAbsorptionCountsTheTimeThatHasPassed) {
  const Detector detector = made(documentOf(grey, R"("absorb_seconds": "forever")"));
  feed(detector, picture(grey, 80, {}), 40);
  const auto still = picture(grey, 80, {{30, 30, 20, 20, 200}});
  int time = 80;
  for (int i = 0; i < 200; ++i) EXPECT_NE(feed(detector, still, time += 40), "");
  EXPECT_EQ(change(detector, "\"absorb_seconds\": 9"), LIGHTMOTION_OK);
  EXPECT_NE(feed(detector, still, time += 40), "");
  EXPECT_EQ(change(detector, "\"absorb_seconds\": 7"), LIGHTMOTION_OK);
  EXPECT_EQ(feed(detector, still, time += 40), "");
}

TEST(Change, OfExtentAndPeelTakesEffect) {
  const Detector detector = made(documentOf(grey));
  feed(detector, picture(grey, 80, {}), 40);
  const auto block = picture(grey, 80, {{30, 30, 20, 20, 200}});
  EXPECT_THAT(feed(detector, block, 80), HasSubstr("32 32 16 16 in 0; "));
  EXPECT_EQ(change(detector, R"("extent": "full")"), LIGHTMOTION_OK);
  EXPECT_THAT(feed(detector, block, 120), HasSubstr("29 29 22 22 in 0; "));
  EXPECT_EQ(change(detector, R"("extent": null, "peel": 1)"), LIGHTMOTION_OK);
  EXPECT_THAT(feed(detector, block, 160), HasSubstr("30 30 20 20 in 0; "));
}

// ---- refusals ---------------------------------------------------------------------------------------------

TEST(Change, ThatIsRefusedChangesNothing) {
  const auto frames = framesOf({grey, Kind::passing, 2}, 30);
  const Detector detector = made(documentOf(grey, west));
  const Detector expected = made(documentOf(grey, west));
  std::string message;
  const auto refuse = [&](const std::string& changes) {
    EXPECT_EQ(change(detector, changes, &message), LIGHTMOTION_ERROR_CONFIGURATION) << changes;
    return message;
  };
  for (std::size_t i = 0; i < frames.size(); ++i) {
    EXPECT_EQ(refuse("\"frmW\": 640"), "\"frmW\": cannot be changed (create another detector)");
    EXPECT_EQ(refuse("\"format\": null"), "\"format\": cannot be changed (create another detector)");
    EXPECT_THAT(refuse("\"sensitivity\": 5, \"peel\": 7"), HasSubstr("\"peel\": 7 is out of range (0 to 3)"));
    EXPECT_THAT(refuse("\"roi\": []"), HasSubstr("\"roi\""));
    EXPECT_THAT(refuse("]"), HasSubstr("not JSON"));
    const int time = 40 + 40 * static_cast<int>(i);
    ASSERT_EQ(feed(detector, frames[i], time), feed(expected, frames[i], time));
  }
  EXPECT_STREQ(lightmotion_region_name(detector.get(), 0), "strip");
}

TEST(Change, GivesTheWarningsOfTheWholeConfiguration) {
  std::string message;
  const Detector detector = create(documentOf(grey, "\"sensitivity\": 9")).detector;
  EXPECT_EQ(change(detector, "\"sensitivty\": 3", &message), LIGHTMOTION_OK);
  EXPECT_THAT(message, HasSubstr("\"sensitivity\": 9 is out of range"));
  EXPECT_THAT(message, HasSubstr("\"sensitivty\": unknown key, ignored (did you mean \"sensitivity\"?)"));
  EXPECT_EQ(change(detector, "\"sensitivty\": null, \"sensitivity\": null", &message), LIGHTMOTION_OK);
  EXPECT_EQ(message, "");
}

TEST(Change, OfRegionsGivesNewNames) {
  const Detector detector = made(documentOf(grey));
  EXPECT_EQ(infoOf(detector).watched, 1);
  EXPECT_EQ(change(detector, west), LIGHTMOTION_OK);
  EXPECT_STREQ(lightmotion_region_name(detector.get(), 0), "strip");
  EXPECT_EQ(infoOf(detector).watched, 0.5F);  // columns 0 to 49: the right edge of a region is inside
}

}  // namespace
}  // namespace lm::test
