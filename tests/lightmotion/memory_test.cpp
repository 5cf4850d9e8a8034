// Every allocation fails once: an error, no leak, and a detector that goes on.
#include <gtest/gtest.h>

#include <array>

#include "tests/lightmotion/fixture.h"
#include "tests/support/failing_alloc.h"

namespace lm::test {
namespace {

constexpr compact::Shape shape{80, 60, 3};

const std::string document = documentOf(
    shape,
    R"("sensitivity": -1, "peel": 1, "extent": "full", "colour": 1, "roi": [{"name": "a region with a name",
              "points": [{"x": -1, "y": -1}, {"x": 2, "y": -1}, {"x": 2, "y": 2}, {"x": -1, "y": 2}]}])");

TEST(Memory, FailingInCreateGivesNull) {
  int failed = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    std::array<char, 300> message{};
    FailingAlloc alloc(failAt, Reach::all);
    const Detector detector(lightmotion_create(document.c_str(), message.data(), message.size()));
    const bool refused = alloc.refused() != Request::none;
    alloc.stopFailing();
    if (detector == nullptr) {
      ++failed;
      EXPECT_STREQ(message.data(), "out of memory");
    }
    if (!refused) {
      EXPECT_NE(detector, nullptr);
      break;
    }
  }
  EXPECT_GT(failed, 50);
}

TEST(Memory, FailingInTheFirstFrameLeavesItTheFirst) {
  const auto frames = framesOf({shape, Kind::passing, 2}, 10);
  const Detector expected = create(document).detector;
  std::vector<std::string> results;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    results.push_back(feed(expected, frames[i], 40 * static_cast<int>(i)));
  }
  int failed = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    const Detector detector = create(document).detector;
    int count = 0;
    bool refused = false;
    {
      FailingAlloc alloc(failAt, Reach::all);
      count = lightmotion_process(detector.get(), frames[1].data(), 0, 900, nullptr);
      refused = alloc.refused() != Request::none;
    }
    if (!refused) break;
    ++failed;
    EXPECT_EQ(count, LIGHTMOTION_ERROR_MEMORY);
    EXPECT_EQ(infoOf(detector).frames, 0);
    for (std::size_t i = 0; i < frames.size(); ++i) {
      EXPECT_EQ(feed(detector, frames[i], 40 * static_cast<int>(i)), results[i]);
    }
  }
  EXPECT_GT(failed, 10);
}

// The frame is learned, and its boxes are lost.
TEST(Memory, FailingInALaterFrameLosesItsBoxes) {
  const auto empty = picture(shape, 80, {});
  const auto two = picture(shape, 80, {{10, 10, 16, 16, 200}, {50, 30, 16, 16, 200}});
  int lost = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    const Detector detector = create(document).detector;
    feed(detector, empty, 40);
    feed(detector, empty, 80);
    const lightmotion_box* boxes = nullptr;
    int count = 0;
    bool refused = false;
    {
      FailingAlloc alloc(failAt, Reach::all);
      count = lightmotion_process(detector.get(), two.data(), 0, 120, &boxes);
      refused = alloc.refused() != Request::none;
    }
    if (!refused) {
      EXPECT_EQ(count, 2);
      break;
    }
    EXPECT_EQ(count, LIGHTMOTION_ERROR_MEMORY);
    EXPECT_EQ(boxes, nullptr);
    EXPECT_STREQ(lightmotion_json(detector.get(), nullptr), "");
    EXPECT_EQ(infoOf(detector).frames, 3);
    EXPECT_EQ(lightmotion_process(detector.get(), two.data(), 0, 160, nullptr), 2);
    ++lost;
  }
  EXPECT_GT(lost, 3);
}

TEST(Memory, FailingInChangeChangesNothing) {
  const auto empty = picture(shape, 80, {});
  const auto block = picture(shape, 80, {{10, 10, 20, 20, 200}});
  int failed = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    const Detector detector = create(document).detector;
    feed(detector, empty, 40);
    std::array<char, 300> message{};
    int outcome = 0;
    bool refused = false;
    {
      FailingAlloc alloc(failAt, Reach::all);
      outcome = lightmotion_change(
          detector.get(),
          R"({"extent": "core", "peel": 3, "roi": [{"name": "another name that is long", "points":
             [{"x": -1, "y": -1}, {"x": 0.5, "y": -1}, {"x": 0.5, "y": 2}, {"x": -1, "y": 2}]}]})",
          message.data(), message.size());
      refused = alloc.refused() != Request::none;
    }
    const std::string text = feed(detector, block, 80);
    if (outcome == LIGHTMOTION_OK) {
      EXPECT_EQ(text.substr(0, 11), "12 12 16 16") << failAt;
      EXPECT_STREQ(lightmotion_region_name(detector.get(), 0), "another name that is long");
    } else {
      ++failed;
      EXPECT_EQ(outcome, LIGHTMOTION_ERROR_MEMORY);
      EXPECT_STREQ(message.data(), "out of memory");
      EXPECT_EQ(text.substr(0, 9), "9 9 22 22") << failAt;
      EXPECT_STREQ(lightmotion_region_name(detector.get(), 0), "a region with a name");
    }
    if (!refused) break;
  }
  EXPECT_GT(failed, 50);
}

TEST(Memory, FailingInTheTextGivesNullAndKeepsTheBoxes) {
  const Detector detector = create(document).detector;
  feed(detector, picture(shape, 80, {}), 40);
  const auto block = picture(shape, 80, {{10, 10, 20, 20, 200}});
  const lightmotion_box* boxes = nullptr;
  ASSERT_EQ(lightmotion_process(detector.get(), block.data(), 0, 80, &boxes), 1);
  int failed = 0;
  for (std::uint64_t failAt = 1;; ++failAt) {
    const char* text = nullptr;
    std::size_t length = 7;
    bool refused = false;
    {
      FailingAlloc alloc(failAt, Reach::all);
      text = lightmotion_json(detector.get(), &length);
      refused = alloc.refused() != Request::none;
    }
    if (text != nullptr) {
      EXPECT_FALSE(refused);
      EXPECT_GT(length, 20U);
      break;
    }
    EXPECT_EQ(length, 0U);
    ++failed;
  }
  EXPECT_GT(failed, 5);
  EXPECT_EQ(boxes->x, 9);
}

TEST(Memory, IsReleased) {
  const auto frames = framesOf({shape, Kind::passing, 2}, 6);
  FailingAlloc alloc(0, Reach::all);
  const std::int64_t before = alloc.live();
  {
    const Detector detector = create(document).detector;
    for (std::size_t i = 0; i < frames.size(); ++i) {
      lightmotion_process(detector.get(), frames[i].data(), 0, 40 * static_cast<int>(i), nullptr);
      lightmotion_json(detector.get(), nullptr);
      lightmotion_change(detector.get(), i % 2 == 0 ? "{\"roi\": null}" : "{\"ror\": []}", nullptr, 0);
    }
    lightmotion_reset(detector.get());
    lightmotion_process(detector.get(), frames[0].data(), 0, 1, nullptr);
  }
  EXPECT_EQ(alloc.live(), before);
}

}  // namespace
}  // namespace lm::test
