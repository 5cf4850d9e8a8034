// A detector that adapts: against the truth, and against what a configuration sets.
#include "host/detector/adaptive.h"

#include <gmock/gmock.h>

#include "host/base/failure.h"
#include "tests/adaptive/scene.h"

namespace lm::host::detector {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const cv::Size kFrame(320, 240);
const cv::Size kAnalysed(640, 480);

class Watched {
 public:
  explicit Watched(double sigma, const std::string& document = "{}", cv::Size analysed = kAnalysed)
      : camera_(sigma, 3), adaptive_({"", document}, analysed) {
    adaptive_.set_listener([this](const std::string& line) { lines_.push_back(line); });
  }
  // The boxes of the last frame, and how many frames had some.
  int frames(const cv::Mat& scene, int count) {
    int with_boxes = 0;
    for (; count > 0; --count) {
      boxes_ = adaptive_.process(camera_.picture(scene), time_ += 40);
      if (!boxes_.empty()) ++with_boxes;
    }
    return with_boxes;
  }
  const Boxes& boxes() const { return boxes_; }
  std::string chosen() const { return adaptive_.chosen(); }
  const std::vector<std::string>& lines() const { return lines_; }
  Adaptive& adaptive() { return adaptive_; }
  void noisier(double sigma) { camera_ = test::Camera(sigma, 4); }

 private:
  test::Camera camera_;
  Adaptive adaptive_;
  std::int64_t time_ = 1000;
  Boxes boxes_;
  std::vector<std::string> lines_;
};

class Quiet : public ::testing::TestWithParam<double> {};
INSTANTIATE_TEST_SUITE_P(Noise, Quiet, testing::Values(0, 1.5, 3, 6, 9, 14));

TEST_P(Quiet, HasNoBoxAndPeopleAreFound) {
  const cv::Mat empty = test::ground(kFrame, 5);
  Watched watched(GetParam(), "{}", kFrame);
  EXPECT_EQ(watched.frames(empty, 150), 0) << watched.chosen();
  int found = 0;
  const test::Thing person = test::person(16, 3);
  for (int k = 0; k < 20; ++k) {
    cv::Mat scene = empty.clone();
    test::draw(scene, person, {20 + 3 * k, 100}, 60);
    found += watched.frames(scene, 1);
  }
  EXPECT_GE(found, 18) << watched.chosen();
}

TEST(Adaptive, ChoosesBySceneAndSaysSo) {
  const cv::Mat empty = test::ground(kFrame, 5);
  Watched watched(1, "{}", kFrame);
  watched.frames(empty, 150);
  EXPECT_THAT(watched.chosen(), HasSubstr("analysed in 320x240, noise 1.0, sensitivity 4, peel 1"));
  EXPECT_EQ(watched.lines().size(), 2U);  // peel 2, peel 1
  watched.noisier(7);
  watched.frames(empty, 220);
  EXPECT_THAT(watched.chosen(), HasSubstr("sensitivity 2"));
  EXPECT_THAT(watched.lines().back(), HasSubstr("sensitivity 2"));
}

TEST(Adaptive, SmoothsAPictureOfStrongNoiseAndSaysSo) {
  const cv::Mat empty = test::ground(kFrame, 5);
  Watched watched(12, "{}", kFrame);
  watched.frames(empty, 75);
  EXPECT_THAT(watched.chosen(), HasSubstr(", smoothed, sensitivity 3"));
  watched.noisier(1);
  watched.frames(empty, 400);
  EXPECT_THAT(watched.chosen(), Not(HasSubstr("smoothed")));
  Watched given(12, R"({"sensitivity": "1"})", kFrame);
  given.frames(empty, 75);
  EXPECT_THAT(given.chosen(), Not(HasSubstr("smoothed")));
}

TEST(Adaptive, LeavesAloneWhatTheConfigurationSets) {
  const cv::Mat empty = test::ground(kFrame, 5);
  Watched watched(6.5, R"({"sensitivity": "5", "peel": 3})", kFrame);
  watched.frames(empty, 150);
  EXPECT_THAT(watched.lines(), IsEmpty());
  EXPECT_THAT(watched.chosen(), Not(HasSubstr("sensitivity")));
  EXPECT_THAT(watched.chosen(), Not(HasSubstr("peel")));
}

TEST(Adaptive, LeavesTheMinimumBoxAlone) {
  const cv::Mat empty = test::ground(kFrame, 5);
  cv::Mat scene = empty.clone();
  test::draw(scene, test::person(24, 3), {100, 80}, 60);
  Watched chosen(1);
  chosen.frames(empty, 10);
  EXPECT_EQ(chosen.frames(scene, 5), 5);
  Watched given(1, R"({"minBoxW": 0.5, "minBoxH": 0.6})");
  given.frames(empty, 10);
  EXPECT_EQ(given.frames(scene, 5), 0);
}

TEST(Adaptive, BoxesAreFractionsWithTheirRegions) {
  const cv::Mat empty = test::ground(kFrame, 5);
  cv::Mat scene = empty.clone();
  test::draw(scene, test::car({80, 48}, 3), {160, 120}, 60);
  Watched watched(1);
  watched.frames(empty, 10);
  watched.frames(scene, 3);
  ASSERT_EQ(watched.boxes().size(), 1U);
  const Box& box = watched.boxes()[0];
  EXPECT_NEAR(box.area.x, 0.5, 0.02);
  EXPECT_NEAR(box.area.y, 0.5, 0.03);
  EXPECT_NEAR(box.area.width, 0.25, 0.03);
  EXPECT_NEAR(box.area.height, 0.2, 0.03);
  EXPECT_THAT(box.regions, testing::ElementsAre("frame"));
}

TEST(Adaptive, KeepsWhatStandsForMostOfAMinuteAndTakesBackWhatLeft) {
  const cv::Mat empty = test::ground(kFrame, 5);
  cv::Mat scene = empty.clone();
  test::draw(scene, test::car({80, 48}, 3), {160, 120}, 60);
  Watched watched(1);
  watched.frames(scene, 10);
  EXPECT_EQ(watched.frames(empty, 10), 10);
  watched.frames(empty, 40);
  EXPECT_THAT(watched.boxes(), IsEmpty());
  watched.frames(scene, 500);  // 20 s
  EXPECT_EQ(watched.boxes().size(), 1U);
}

// A lamp that stays on: brighter by 30 in a part of the picture, where the texture stays.
TEST(Adaptive, TakesBackLightThatStays) {
  const cv::Mat dark = test::ground(kFrame, 5);
  cv::Mat lit = dark.clone();
  lit(cv::Rect(60, 60, 120, 100)) += cv::Scalar::all(30);
  Watched watched(1);
  watched.frames(dark, 60);
  EXPECT_EQ(watched.frames(lit, 5), 5);
  watched.frames(lit, 60);
  EXPECT_THAT(watched.boxes(), IsEmpty());
}

// The same lamp: it is light from the first frame on, and learned half a second later.
TEST(Adaptive, ALampMakesBoxesOfLightOnly) {
  const cv::Mat dark = test::ground(kFrame, 5);
  cv::Mat lit = dark.clone();
  lit(cv::Rect(60, 60, 120, 100)) *= 1.4;
  Watched watched(1);
  watched.frames(dark, 60);
  for (int i = 0; i < 12; ++i) {
    watched.frames(lit, 1);
    ASSERT_THAT(watched.boxes(), Not(IsEmpty())) << i;
    for (const Box& box : watched.boxes()) EXPECT_TRUE(box.by_light && box.examined) << i;
  }
  watched.frames(lit, 4);
  EXPECT_THAT(watched.boxes(), IsEmpty());
}

// Somebody of 16 x 41 pixels with a shadow of 60 x 12 at the foot.
TEST(Adaptive, AShadowIsNoPartOfABox) {
  const cv::Mat empty = test::ground(kFrame, 5);
  const test::Thing person = test::person(16, 3);
  Watched watched(1);
  watched.frames(empty, 60);
  for (int k = 0; k < 10; ++k) {
    cv::Mat scene = empty.clone();
    const cv::Point at(60 + 5 * k, 100);
    scene(cv::Rect(at.x + 14, at.y + 29, 60, 12)) *= 0.6;
    test::draw(scene, person, at, 70);
    watched.frames(scene, 1);
    ASSERT_EQ(watched.boxes().size(), 1U) << k;
    const cv::Rect2d& box = watched.boxes()[0].area;
    EXPECT_FALSE(watched.boxes()[0].by_light);
    EXPECT_NEAR(box.x * kFrame.width, at.x, 3) << k;
    EXPECT_NEAR(box.width * kFrame.width, 16, 8) << k;
    EXPECT_NEAR(box.height * kFrame.height, 41, 5) << k;
  }
}

// Somebody walks while everything becomes brighter by a third.
TEST(Adaptive, APersonInChangingLightHasABoxOfTheirOwn) {
  const cv::Mat empty = test::ground(kFrame, 5);
  const test::Thing person = test::person(24, 3);
  Watched watched(1);
  watched.frames(empty, 60);
  int found = 0;
  for (int k = 0; k < 20; ++k) {
    cv::Mat scene = empty.clone();
    test::draw(scene, person, {40 + 5 * k, 100}, 60);
    scene *= 1 + 0.03 * std::min(k, 11);
    watched.frames(scene, 1);
    for (const Box& box : watched.boxes())
      found += !box.by_light && box.area.width < 0.2 && box.area.height < 0.4;
  }
  EXPECT_GE(found, 18);
}

TEST(Adaptive, RestartsWithAFirstFrame) {
  const cv::Mat empty = test::ground(kFrame, 5);
  const cv::Mat other = test::ground(kFrame, 6);
  Watched watched(1);
  watched.frames(empty, 60);
  watched.adaptive().restart();
  EXPECT_EQ(watched.frames(other, 20), 0);
}

TEST(Adaptive, RefusesAConfigurationWithTheLibrarysReason) {
  EXPECT_THAT(
      [] {
        Adaptive({"own.json", R"({"peel": 9})"}, kFrame);
      },
      testing::ThrowsMessage<base::Failure>(testing::AllOf(HasSubstr("own.json"), HasSubstr("\"peel\": 9"))));
}

}  // namespace
}  // namespace lm::host::detector
