#include "host/events/objects/confirmation.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::host::events::objects;
using namespace std::chrono_literals;
using enum Standing;

struct Seen {
  std::int64_t id;
  cv::Rect2d box;
  std::vector<std::int64_t> others{};
};

// A square frame, eight frames per second: times are exact in binary.
class Confirmed : public testing::Test {
 protected:
  static constexpr auto kFrame = 125ms;

  std::vector<Standing> see(const std::vector<Seen>& boxes, bool hidden = false) {
    time_ += kFrame;
    std::vector<cv::Rect2d> areas;
    std::vector<TrackedBox> objects;
    for (const Seen& seen : boxes) {
      areas.push_back(seen.box);
      objects.push_back({seen.id, seen.others});
    }
    return confirmation_.update(time_, areas, objects, hidden);
  }
  void see_nothing(std::chrono::milliseconds duration) {
    for (auto passed = 0ms; passed < duration; passed += kFrame) see({});
  }
  // The standing in each of the frames.
  std::vector<Standing> stand(const Seen& seen, int frames) { return walk(seen, {0, 0}, frames); }
  // ... moving by `step` after each frame.
  std::vector<Standing> walk(Seen seen, cv::Point2d step, int frames) {
    std::vector<Standing> result;
    for (int i = 0; i < frames; ++i) {
      result.push_back(see({seen}).front());
      seen.box += step;
    }
    return result;
  }
  // A box that vanishes after one frame, as another object each time.
  void flicker(const cv::Rect2d& box, int times, bool hidden = false) {
    for (int i = 0; i < times; ++i) {
      see({{next_++, box}});
      see({}, hidden);
    }
  }
  // From the left to the right in the middle.
  void clutter_across() {
    for (int i = 0; i < 10; ++i) flicker({0.1 * i, 0.4, 0.1, 0.1}, 3);
  }
  void know_the_scene() { see_nothing(6s); }
  // Sixteen flakes, one in each part of the picture, for one frame.
  std::vector<Seen> flakes() {
    std::vector<Seen> boxes;
    for (int i = 0; i < 16; ++i) {
      boxes.push_back({next_++, {0.1 + 0.25 * (i % 4), 0.1 + 0.25 * (i / 4), kFlake, kFlake}});
    }
    return boxes;
  }
  void snow(int frames) {
    for (int i = 0; i < frames; ++i) see(flakes());
  }
  // Walks through the snow.
  std::vector<Standing> walk_in_snow(Seen seen, cv::Point2d step, int frames) {
    std::vector<Standing> result;
    for (int i = 0; i < frames; ++i) {
      std::vector<Seen> boxes = flakes();
      boxes.push_back(seen);
      result.push_back(see(boxes).back());
      seen.box += step;
    }
    return result;
  }

  static constexpr double kFlake = 0.03;
  Confirmation confirmation_{1, 5s};
  std::chrono::microseconds time_{0};
  std::int64_t next_ = 1000;
};

const cv::Rect2d kPerson(0.4, 0.4, 0.1, 0.1);
// Half of the person's size in 4 frames and a little more.
const cv::Point2d kStep(0.013, 0);

TEST_F(Confirmed, WhereThereWasNoClutterABoxCountsAtOnceAndIsConfirmedWhenItHasMoved) {
  know_the_scene();
  EXPECT_EQ(walk({1, kPerson}, kStep, 6),
            (std::vector{kLikely, kLikely, kLikely, kLikely, kConfirmed, kConfirmed}));
}

TEST_F(Confirmed, NoMovementIsProvenInLessThanThreeTenthsOfASecond) {
  know_the_scene();
  EXPECT_EQ(walk({1, kPerson}, {0.06, 0}, 4), (std::vector{kLikely, kLikely, kLikely, kConfirmed}))
      << "0.06 after the first frame, but 0.375 s only after the third";
}

TEST_F(Confirmed, WhatStaysForTwoSecondsIsConfirmed) {
  know_the_scene();
  const auto standings = stand({1, kPerson}, 17);
  EXPECT_EQ(standings[15], kLikely);
  EXPECT_EQ(standings[16], kConfirmed) << "16 frames of 0.125 s after the first";
}

TEST_F(Confirmed, WhatComesAndGoesIsNot) {
  know_the_scene();
  for (int i = 0; i < 16; ++i) {
    EXPECT_NE(see({{1, kPerson + i * kStep}}).front(), kConfirmed) << i;
    see({});
  }
}

TEST_F(Confirmed, WhatJumpsToAndFroIsNot) {
  know_the_scene();
  for (int i = 0; i < 14; ++i) {
    const double jump = i % 2 == 0 ? 0 : 0.1;
    EXPECT_NE(see({{1, kPerson + i * kStep + cv::Point2d(0, jump)}}).front(), kConfirmed) << i;
  }
}

TEST_F(Confirmed, WhatSwellsAndShrinksIsNot) {
  know_the_scene();
  for (int i = 0; i < 14; ++i) {
    const double edge = i % 2 == 0 ? 0.05 : 0.1;
    const cv::Point2d centre = cv::Point2d(0.4, 0.4) + i * kStep;
    EXPECT_NE(see({{1, {centre.x - edge / 2, centre.y - edge / 2, edge, edge}}}).front(), kConfirmed) << i;
  }
}

TEST_F(Confirmed, StaysSoHoweverLongItStandsStill) {
  know_the_scene();
  walk({1, kPerson}, kStep, 8);
  const auto standings = stand({1, kPerson + 7 * kStep}, 8 * 120);
  EXPECT_EQ(std::ranges::count(standings, kConfirmed), 8 * 120);
}

TEST_F(Confirmed, StaysSoAmongClutterThatComesLater) {
  know_the_scene();
  walk({1, kPerson}, kStep, 8);
  flicker(kPerson, 20);
  EXPECT_EQ(see({{1, kPerson}}).front(), kConfirmed);
  EXPECT_EQ(see({{2, kPerson}}).front(), kClutter);
}

TEST_F(Confirmed, WhatIsThereFromTheStartAndNeverMovesIsClutterForEver) {
  const auto standings = stand({1, kPerson}, 8 * 60);
  EXPECT_EQ(std::ranges::count(standings, kClutter), 8 * 60);
}

TEST_F(Confirmed, WhoWalksAtTheStartIsConfirmedAfterASecond) {
  const auto standings = walk({1, kPerson}, {0.012, 0}, 60);
  EXPECT_EQ(std::ranges::count(standings, kClutter), 8);
  EXPECT_EQ(standings[8], kConfirmed) << "a second after the first";
  EXPECT_EQ(std::ranges::count(standings, kConfirmed), 52);
}

TEST_F(Confirmed, WhoMovesALittleAtTheStartIsLikelyWhenTheSceneIsKnown) {
  // 0.2 sizes per second.
  const auto standings = walk({1, kPerson}, {0.0025, 0}, 40);
  EXPECT_EQ(std::ranges::count(standings, kClutter), 24) << "3 s";
  EXPECT_EQ(standings[24], kLikely);
}

TEST_F(Confirmed, NothingAppearsWhereThereWasClutterOfLate) {
  know_the_scene();
  flicker(kPerson, 3);
  EXPECT_EQ(see({{1, kPerson}}).front(), kClutter) << "0.3 s of clutter";
  EXPECT_EQ(see({{2, {0.8, 0.8, 0.1, 0.1}}}).front(), kLikely) << "elsewhere";
}

TEST_F(Confirmed, LittleClutterDoesNotCount) {
  know_the_scene();
  flicker(kPerson, 2);
  EXPECT_EQ(see({{1, kPerson}}).front(), kLikely) << "0.2 s";
}

TEST_F(Confirmed, ClutterIsForgotten) {
  know_the_scene();
  flicker(kPerson, 3);
  see_nothing(24s);
  EXPECT_EQ(see({{2, kPerson}}).front(), kLikely)
      << "0.3 s fade to 0.25 s in 120 s * ln(0.3 / 0.25) = 21.9 s";
}

TEST_F(Confirmed, WhatIsMoreThanTwiceAsLargeIsNotTakenForIt) {
  know_the_scene();
  flicker({0.44, 0.44, 0.03, 0.03}, 20);
  EXPECT_EQ(see({{1, {0.44, 0.44, 0.04, 0.04}}}).front(), kClutter);
  EXPECT_EQ(see({{2, kPerson}}).front(), kLikely);
}

TEST_F(Confirmed, AmongClutterAnObjectCountsWhileItMovesFar) {
  know_the_scene();
  clutter_across();
  const auto standings = walk({1, {0.1, 0.4, 0.1, 0.1}}, {0.02, 0}, 20);
  EXPECT_EQ(std::ranges::count(standings, kClutter), 8) << "1.6 sizes and a second";
  EXPECT_EQ(standings[8], kConfirmed);
  EXPECT_EQ(stand({1, {0.48, 0.4, 0.1, 0.1}}, 16).back(), kClutter) << "no longer";
}

TEST_F(Confirmed, AmongClutterHalfItsSizeIsNotFarEnough) {
  know_the_scene();
  clutter_across();
  // 1.28 sizes in the window of two seconds.
  const auto standings = walk({1, {0.1, 0.4, 0.1, 0.1}}, {0.008, 0}, 32);
  EXPECT_EQ(std::ranges::count(standings, kClutter), 32);
}

TEST_F(Confirmed, AmongClutterLessThanASecondIsNotLongEnough) {
  know_the_scene();
  clutter_across();
  const auto standings = walk({1, {0.1, 0.4, 0.1, 0.1}}, {0.06, 0}, 10);
  EXPECT_EQ(std::ranges::count(standings, kClutter), 8);
  EXPECT_EQ(standings[8], kConfirmed) << "a second after the first";
}

TEST_F(Confirmed, AmongClutterAnUnsteadyWayIsNone) {
  know_the_scene();
  clutter_across();
  for (int i = 0; i < 25; ++i) {
    const cv::Rect2d box(0.1 + 0.02 * i + 0.1 * (i % 2), 0.4, 0.1, 0.1);
    EXPECT_EQ(see({{1, box}}).front(), kClutter) << i << ": off by 0.05, and 0.15 of 0.32 are 0.048";
  }
}

TEST_F(Confirmed, AmongClutterWhatSwellsAndShrinksIsNot) {
  know_the_scene();
  clutter_across();
  for (int i = 0; i < 25; ++i) {
    const double height = i % 2 == 0 ? 0.1 : 0.02;
    EXPECT_EQ(see({{1, {0.1 + 0.02 * i, 0.45 - height / 2, 0.1, height}}}).front(), kClutter) << i;
  }
}

TEST_F(Confirmed, WhoMovesAmongClutterIsNone) {
  walk({1, {0.1, 0.4, 0.1, 0.1}}, {0.02, 0}, 25);  // in the first seconds
  know_the_scene();
  EXPECT_EQ(see({{2, {0.3, 0.4, 0.1, 0.1}}}).front(), kLikely);
}

TEST_F(Confirmed, StayingCountsFromTheLastTimeAmongClutter) {
  know_the_scene();
  flicker(kPerson, 3);
  const cv::Rect2d calm(0.1, 0.1, 0.1, 0.1);
  stand({1, calm}, 12);
  stand({1, kPerson}, 3);
  EXPECT_EQ(stand({1, calm}, 8).back(), kLikely) << "1.5 s before, and 1 s now";
}

TEST_F(Confirmed, WhatComesAndGoesDoesNotStay) {
  know_the_scene();
  stand({1, kPerson}, 80);  // so there are more objects than clutter
  for (int i = 0; i < 24; ++i) {
    EXPECT_EQ(see({{2, kPerson}}).front(), kLikely) << i;
    see({});
  }
}

TEST_F(Confirmed, WhoLeavesTheClutterStaysConfirmed) {
  know_the_scene();
  for (int i = 0; i < 3; ++i) flicker({0.1 * i, 0.4, 0.1, 0.1}, 3);
  walk({1, {0.1, 0.4, 0.1, 0.1}}, {0.02, 0}, 25);
  EXPECT_EQ(stand({1, {0.6, 0.4, 0.1, 0.1}}, 40).back(), kConfirmed);
  EXPECT_EQ(stand({1, {0.1, 0.4, 0.1, 0.1}}, 40).back(), kConfirmed) << "back among it";
}

TEST_F(Confirmed, WhereObjectsAreMoreOftenThanClutterItDoesNotCount) {
  know_the_scene();
  walk({1, kPerson}, kStep, 8);
  stand({1, kPerson}, 40);
  see_nothing(10s);
  flicker(kPerson, 20);
  EXPECT_EQ(see({{2, kPerson}}).front(), kLikely);
}

TEST_F(Confirmed, WhatStayedWasAnObjectForItsPlace) {
  know_the_scene();
  stand({1, kPerson}, 48);
  flicker(kPerson, 20);
  EXPECT_EQ(see({{2, kPerson}}).front(), kLikely) << "4.8 s of objects, 2 s of clutter";
}

TEST_F(Confirmed, WhatALightingChangeHidesWasNoClutter) {
  know_the_scene();
  flicker(kPerson, 20, true);
  EXPECT_EQ(see({{1, kPerson}}).front(), kLikely);
}

TEST_F(Confirmed, InSnowFlakesAreClutterHoweverTheyMove) {
  snow(48);
  const auto standings = walk_in_snow({1, {0.05, 0.05, kFlake, kFlake}}, {0.005, 0.01}, 60);
  EXPECT_EQ(std::ranges::count(standings, kClutter), 60);
}

TEST_F(Confirmed, InSnowWhatIsLargerCountsAtTheThirdFrameAndIsConfirmedAfterASecond) {
  snow(48);
  const auto standings = walk_in_snow({1, kPerson}, kStep, 10);
  EXPECT_EQ(standings, (std::vector{kClutter, kClutter, kLikely, kLikely, kLikely, kLikely, kLikely, kLikely,
                                    kConfirmed, kConfirmed}));
}

TEST_F(Confirmed, SnowFromTheStartIsClutterFromTheFirstFrame) {
  for (int i = 0; i < 80; ++i) {
    for (const Standing standing : see(flakes())) EXPECT_EQ(standing, kClutter) << i;
  }
}

TEST_F(Confirmed, AnObjectWithSeveralBoxesIsOne) {
  know_the_scene();
  flicker({0.4, 0.43, 0.06, 0.03}, 3);
  EXPECT_EQ(see({{1, {0.4, 0.42, 0.09, 0.04}}}).front(), kClutter);
  EXPECT_EQ(see({{2, {0.4, 0.42, 0.09, 0.04}}, {2, {0.4, 0.47, 0.09, 0.04}}}),
            (std::vector{kLikely, kLikely}))
      << "together they are more than twice as large";
}

TEST_F(Confirmed, ABoxWithAConfirmedObjectIsConfirmed) {
  know_the_scene();
  walk({2, kPerson}, kStep, 8);
  EXPECT_EQ(see({{1, kPerson, {2}}}).front(), kConfirmed);
  EXPECT_EQ(see({{1, kPerson, {3}}}).front(), kLikely);
}

TEST_F(Confirmed, AnObjectThatWasOnlyLikelySaysNothingAboutABoxThatItShares) {
  know_the_scene();
  flicker(kPerson, 3);
  EXPECT_EQ(see({{2, {0.1, 0.1, 0.1, 0.1}}}).front(), kLikely);
  EXPECT_EQ(see({{1, kPerson, {2}}}).front(), kClutter);
}

TEST_F(Confirmed, ABoxWithoutAnObjectIsLeftAlone) {
  EXPECT_EQ(see({{0, {0.4, 0.4, 0, 0}}}).front(), kConfirmed);
}

TEST_F(Confirmed, AfterAnInterruptionTheSceneIsUnknown) {
  know_the_scene();
  confirmation_.forget();
  EXPECT_EQ(see({{1, kPerson}}).front(), kClutter);
}

// One frame per second.
TEST(ConfirmedSlowly, TwoLooksAreEnoughAndOneBoxIsNoHistory) {
  Confirmation confirmation(1, 5s);
  std::chrono::microseconds time = 0s;
  const auto see = [&](std::int64_t id, const cv::Rect2d& box) {
    time += 1s;
    return confirmation.update(time, {box}, {{id, {}}}).front();
  };
  for (int i = 0; i < 6; ++i) confirmation.update(time += 1s, {}, {});
  EXPECT_EQ(see(1, kPerson), kLikely);
  EXPECT_EQ(see(1, kPerson + cv::Point2d(0.1, 0)), kConfirmed);
  EXPECT_EQ(see(2, {0.1, 0.1, 0.1, 0.1}), kLikely);
  EXPECT_EQ(see(3, {0.1, 0.1, 0.1, 0.1}), kLikely) << "the other was there for one frame";
  time += 2s;
  EXPECT_EQ(see(4, {0.1, 0.7, 0.1, 0.1}), kLikely);
  time += 2s;
  EXPECT_EQ(see(4, {0.2, 0.7, 0.1, 0.1}), kConfirmed) << "three seconds apart";
}

}  // namespace
