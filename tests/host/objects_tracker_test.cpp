#include "host/events/objects/object_tracker.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/host/objects_identity.h"
#include "tests/host/objects_scenes.h"

namespace {

using namespace lm::host::events::objects;
using namespace std::chrono_literals;
using Boxes = std::vector<cv::Rect2d>;
using Ids = std::vector<std::int64_t>;

constexpr double kAspect = 16.0 / 9;

// Ten frames per second.
class Objects : public testing::Test {
 protected:
  Ids see(const Boxes& boxes, bool hidden = false) {
    time_ += 100ms;
    last_ = tracker_.update(time_, boxes, hidden);
    Ids ids;
    for (const TrackedBox& box : last_) ids.push_back(box.id);
    return ids;
  }
  void see_nothing(std::chrono::milliseconds duration, bool hidden = false) {
    for (auto time = 0ms; time < duration; time += 100ms) see({}, hidden);
  }
  // For a second.
  void stand(const Boxes& boxes) {
    for (int i = 0; i < 10; ++i) see(boxes);
  }

  ObjectTracker tracker_{kAspect, 5s};
  std::chrono::microseconds time_{0};
  std::vector<TrackedBox> last_;
};

const cv::Rect2d kLeft(0.1, 0.4, 0.1, 0.3);
const cv::Rect2d kRight(0.6, 0.4, 0.1, 0.3);

TEST_F(Objects, HaveIdsInTheOrderInWhichTheyAreSeen) {
  EXPECT_EQ(see({kLeft}), Ids({1}));
  EXPECT_EQ(see({kRight, kLeft}), Ids({2, 1}));
  EXPECT_EQ(see({}), Ids());
}

TEST_F(Objects, ABoxWithoutAnAreaIsNone) { EXPECT_EQ(see({{0.1, 0.1, 0, 0.1}, kLeft}), Ids({0, 1})); }

TEST_F(Objects, AreRememberedThreeTimesAsLongAsTheyWereSeen) {
  stand({kLeft});  // 0.9 s between the first frame and the last
  see_nothing(2700ms);
  EXPECT_EQ(see({kLeft}), Ids({1}));
  tracker_.forget();
  stand({kLeft});
  see_nothing(2800ms);
  EXPECT_EQ(see({kLeft}), Ids({3}));
}

TEST_F(Objects, AreNotRememberedLongerThanTheMemory) {
  for (int i = 0; i < 5; ++i) stand({kLeft});
  see_nothing(5s);
  EXPECT_EQ(see({kLeft}), Ids({1}));
  see_nothing(5100ms);
  EXPECT_EQ(see({kLeft}), Ids({2}));
}

TEST_F(Objects, WhatIsHiddenIsNotForgotten) {
  stand({kLeft});
  see_nothing(60s, true);
  EXPECT_EQ(see({kLeft}), Ids({1}));
}

TEST_F(Objects, WhoLeavesTheFrameIsForgottenSoon) {
  const cv::Rect2d border(0, 0.4, 0.1, 0.3);
  stand({border});
  see_nothing(500ms);
  EXPECT_EQ(see({border}), Ids({1}));
  stand({border});
  see_nothing(600ms);
  EXPECT_EQ(see({border}), Ids({2}));
}

TEST_F(Objects, SharedBoxesHaveTheIdOfTheLargestAndNameTheOthers) {
  const cv::Rect2d larger(0.6, 0.3, 0.15, 0.5);
  stand({kLeft, larger});
  EXPECT_EQ(see({kLeft | larger}), Ids({2}));
  EXPECT_EQ(last_[0].others, Ids({1}));
  EXPECT_EQ(see({larger, kLeft}), Ids({2, 1})) << "apart again";
  EXPECT_TRUE(last_[0].others.empty());
}

TEST_F(Objects, OfTheSameSizeShareABoxWithTheIdOfTheFirst) {
  stand({kRight, kLeft});
  EXPECT_EQ(see({kRight | kLeft}), Ids({1}));
}

TEST_F(Objects, WhatMergesBeforeItIsHalfASecondOldWasAPart) {
  stand({kLeft});
  see({kLeft, kRight});
  see({kLeft | kRight});
  EXPECT_TRUE(last_[0].others.empty());
}

TEST_F(Objects, WhatDoesNotPartForTenSecondsIsOneObject) {
  stand({kLeft, kRight});
  for (int i = 0; i < 10; ++i) stand({kLeft | kRight});
  EXPECT_EQ(last_[0].others, Ids({2}));
  stand({kLeft | kRight});
  EXPECT_TRUE(last_[0].others.empty());
}

TEST_F(Objects, PartsOfAnObjectHaveItsIdUntilTheyAreApart) {
  const cv::Rect2d whole(0.4, 0.3, 0.1, 0.4);
  stand({whole});
  const cv::Rect2d upper(0.4, 0.3, 0.1, 0.15);
  EXPECT_EQ(see({upper, {0.4, 0.5, 0.1, 0.2}}), Ids({1, 1}));
  // The lower one moves down. Its side is about the square root of 0.1 * 16 / 9 * 0.2, 0.19, half of that
  // 0.09.
  EXPECT_EQ(see({upper, {0.4, 0.52, 0.1, 0.2}}), Ids({1, 1})) << "0.07 apart";
  for (double y = 0.54; y < 0.6; y += 0.02) see({upper, {0.4, y, 0.1, 0.2}});
  const Ids ids = see({upper, {0.4, 0.62, 0.1, 0.2}});
  EXPECT_EQ(std::set<std::int64_t>(ids.begin(), ids.end()), (std::set<std::int64_t>{1, 2})) << "0.17 apart";
}

TEST_F(Objects, APartGoesOnAsTheObjectWhenTheRestIsGone) {
  stand({{0.4, 0.3, 0.1, 0.4}});
  see({{0.4, 0.3, 0.1, 0.15}, {0.4, 0.5, 0.1, 0.2}});
  EXPECT_EQ(see({{0.4, 0.3, 0.1, 0.15}}), Ids({1}));
  EXPECT_EQ(see({{0.4, 0.3, 0.1, 0.4}}), Ids({1}));
}

TEST_F(Objects, WhoCrossKeepTheirIds) {
  // They meet in the middle, where they have one box for a while.
  Ids ids;
  for (int i = 0; i <= 40; ++i) {
    const cv::Rect2d right(0.1 + 0.0175 * i, 0.4, 0.08, 0.3);
    const cv::Rect2d left(0.8 - 0.0175 * i, 0.42, 0.08, 0.3);
    ids = see((right & left).empty() ? Boxes{right, left} : Boxes{right | left});
  }
  EXPECT_EQ(ids, Ids({1, 2}));
}

// The boxes of walkers grow and shrink with their steps, so that either of two who cross can reach farther on
// both sides. Twelve frames per second.
TEST_F(Objects, WhoCrossKeepTheirIdsWhateverTheirWidths) {
  const double widths[] = {0.05, 0.09, 0.13, 0.1};
  for (std::size_t step = 0; step < 16; ++step) {
    tracker_.forget();
    Ids first;
    Ids last;
    for (std::size_t i = 0; i <= 40; ++i) {
      const double a = widths[(i + step) % 4];
      const double b = widths[(i + step / 4) % 4];
      const double moved = 0.015 * static_cast<double>(i);
      const cv::Rect2d right(0.2 + moved - a / 2, 0.4, a, 0.3);
      const cv::Rect2d left(0.8 - moved - b / 2, 0.45, b, 0.3);
      last = see((right & left).empty() ? Boxes{right, left} : Boxes{right | left});
      if (i == 0) first = last;
    }
    EXPECT_EQ(last, first) << "step " << step;
  }
}

TEST_F(Objects, WhatComesAfterASecondMustBeNear) {
  // A van drives away, some sizes per second, and is lost in the distance.
  for (int i = 0; i < 20; ++i) see({{0.5 - 0.005 * i, 0.3 - 0.01 * i, 0.05, 0.08}});
  see_nothing(2s);
  EXPECT_EQ(see({{0.3, 0.1, 0.05, 0.08}}), Ids({2})) << "another one comes, two sizes away";
}

TEST_F(Objects, ALargeOneThatComesBeforeASmallOneIsAnother) {
  const cv::Rect2d person(0.5, 0.2, 0.02, 0.06);
  stand({person});
  Ids ids;
  for (int i = 0; i < 10; ++i) {  // touches the person from its fourth frame on
    const cv::Rect2d car(0.65 - 0.05 * i, 0.25 - 0.01 * i, 0.15, 0.2);
    ids = see((car & person).empty() ? Boxes{person, car} : Boxes{person | car});
    if (i == 3) {
      EXPECT_EQ(last_[0].others, Ids({1}));
    }
  }
  EXPECT_EQ(ids, Ids({1, 2})) << "the car is past";
}

struct SceneCase {
  std::size_t scene;
  double rate;
};

class Identities : public testing::TestWithParam<SceneCase> {};

TEST_P(Identities, AreAlmostAsGoodAsTheBoxesAllow) {
  const auto [number, rate] = GetParam();
  for (std::uint32_t seed = 1; seed <= 3; ++seed) {
    const scenes::Played played = scenes::play(scenes::all()[number], rate, seed);
    ObjectTracker tracker(kAspect, 5s);
    identity::Frames reported;
    for (std::size_t i = 0; i < played.times.size(); ++i) {
      const std::vector<TrackedBox> boxes = tracker.update(played.times[i], played.boxes[i]);
      auto& frame = reported.emplace_back();
      for (std::size_t j = 0; j < boxes.size(); ++j) frame.push_back({boxes[j].id, played.boxes[i][j]});
    }
    const double best = identity::id_f1(played.truth, identity::best_named(played.truth, played.boxes));
    EXPECT_GE(identity::id_f1(played.truth, reported), best - 0.08)
        << "seed " << seed << ", possible " << best;
  }
}

std::vector<SceneCase> cases() {
  std::vector<SceneCase> all;
  for (std::size_t scene = 0; scene < scenes::all().size(); ++scene) {
    for (const double rate : {2.0, 5.0, 10.0, 25.0, 60.0}) all.push_back({scene, rate});
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(Of, Identities, testing::ValuesIn(cases()), [](const auto& test) {
  return scenes::all()[test.param.scene].name + "_at_" + std::to_string(std::lround(test.param.rate));
});

TEST(IdF1, CountsTheBestPairingOnly) {
  const cv::Rect2d box(0.1, 0.1, 0.2, 0.2);
  // Three frames as 1, one as 2: 2 * 3 by 4 + 4.
  const identity::Frames truth(4, {{7, box}});
  EXPECT_DOUBLE_EQ(identity::id_f1(truth, {{{1, box}}, {{1, box}}, {{2, box}}, {{1, box}}}), 0.75);
  EXPECT_DOUBLE_EQ(identity::id_f1(truth, truth), 1);
  EXPECT_DOUBLE_EQ(identity::id_f1(truth, {{}, {}, {}, {}}), 0);
}

}  // namespace
