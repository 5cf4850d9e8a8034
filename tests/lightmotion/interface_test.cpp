// The contract of lightmotion.h: arguments, errors, messages, results.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "engine/kamble.h"
#include "tests/lightmotion/fixture.h"
#include "tests/support/capture.h"
#include "tests/support/locale_scope.h"

namespace lm::test {
namespace {

using testing::HasSubstr;

constexpr compact::Shape shape{96, 64, 3};

std::vector<std::string> texts(const Detector& detector,
                               const std::vector<std::vector<std::uint8_t>>& frames) {
  std::vector<std::string> results;
  results.reserve(frames.size());
  std::int64_t time = 0;
  for (const auto& frame : frames) results.push_back(feed(detector, frame, time += 40));
  return results;
}

const std::vector<std::vector<std::uint8_t>>& frames() {
  static const auto drawn = framesOf({shape, Kind::passing, 3}, 24);
  return drawn;
}

// ---- life -------------------------------------------------------------------------------------------------

TEST(Interface, DetectorsShareNothing) {
  const std::vector<std::string> expected = texts(made(documentOf(shape)), frames());
  EXPECT_GT(std::count_if(expected.begin(), expected.end(), [](const auto& text) { return !text.empty(); }),
            5);
  const Detector first = made(documentOf(shape));
  const Detector second = made(documentOf(shape));
  const Detector other = made(documentOf({40, 30, 1}, "\"sensitivity\": 5"));
  const auto noise = framesOf({{40, 30, 1}, Kind::arbitrary, 0}, 24);
  for (std::size_t i = 0; i < frames().size(); ++i) {
    std::srand(static_cast<unsigned>(i));
    const auto time = static_cast<std::int64_t>(40 + 40 * i);
    EXPECT_EQ(feed(first, frames()[i], time), expected[i]);
    feed(other, noise[i], time * 3);
    EXPECT_EQ(feed(second, frames()[i], time), expected[i]);
  }
}

TEST(Interface, LeavesTheProcessAlone) {
  std::srand(99);
  const int next = std::rand();
  std::srand(99);
  hostLog().clear();
  const Printed printed = printedBy([] {
    texts(made(documentOf(shape, "\"sensitivity\": -1")), frames());
    create("{");
  });
  EXPECT_EQ(printed, Printed{});
  EXPECT_EQ(std::rand(), next);
  EXPECT_TRUE(hostLog().empty());
}

// Noise of 12 moves life through all bands.
TEST(Interface, DoesNotReadTheBandsThatAHostMayChange) {
  const auto noisy = framesOf({shape, Kind::stopping, 12}, 70);
  const std::string document = documentOf(shape, "\"absorb_seconds\": 0.5, \"sensitivity\": 5");
  const std::vector<std::string> expected = texts(made(document), noisy);
  const std::int32_t band = THRESH_SAME_PIXEL_x3;
  THRESH_SAME_PIXEL_x3 = -1;
  EXPECT_EQ(texts(made(document), noisy), expected);
  THRESH_SAME_PIXEL_x3 = band;
}

TEST(Interface, ResetForgetsEverything) {
  const Detector detector = made(documentOf(shape, "\"sensitivity\": -1"));
  const std::vector<std::string> expected = texts(detector, frames());
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(lightmotion_reset(detector.get()), LIGHTMOTION_OK);
    EXPECT_EQ(infoOf(detector).frames, 0);
    EXPECT_STREQ(lightmotion_json(detector.get(), nullptr), "");
    EXPECT_EQ(texts(detector, frames()), expected);
  }
}

TEST(Interface, NullIsRefusedEverywhere) {
  lightmotion_info info{};
  info.struct_size = sizeof info;
  std::uint8_t byte = 0;
  lightmotion_destroy(nullptr);
  EXPECT_EQ(lightmotion_create(nullptr, nullptr, 0), nullptr);
  EXPECT_EQ(lightmotion_reset(nullptr), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_change(nullptr, "{}", nullptr, 0), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_process(nullptr, &byte, 0, 1, nullptr), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_json(nullptr, nullptr), nullptr);
  EXPECT_EQ(lightmotion_foreground(nullptr, &byte, 0), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_background(nullptr, &byte, 0), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_region_name(nullptr, 0), nullptr);
  EXPECT_EQ(lightmotion_get_info(nullptr, &info), LIGHTMOTION_ERROR_ARGUMENT);
  const Detector detector = made(documentOf(shape));
  EXPECT_EQ(lightmotion_change(detector.get(), nullptr, nullptr, 0), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_process(detector.get(), nullptr, 0, 1, nullptr), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_foreground(detector.get(), nullptr, 0), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_background(detector.get(), nullptr, 0), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_get_info(detector.get(), nullptr), LIGHTMOTION_ERROR_ARGUMENT);
}

// ---- messages ---------------------------------------------------------------------------------------------

TEST(Messages, AreCutBetweenCharacters) {
  // "\"ü\": unknown key, ignored (...": the character takes bytes 1 and 2.
  const std::string document = documentOf(shape, "\"\xC3\xBC\": 1");
  std::array<char, 300> whole{};
  lightmotion_destroy(lightmotion_create(document.c_str(), whole.data(), whole.size()));
  ASSERT_THAT(whole.data(), HasSubstr("\"\xC3\xBC\": unknown key"));
  for (std::size_t size = 0; size <= 6; ++size) {
    std::array<char, 8> part{};
    part.fill('#');
    lightmotion_destroy(lightmotion_create(document.c_str(), part.data(), size));
    const std::array<const char*, 7> expected = {
        "", "", "\"", "\"", "\"\xC3\xBC", "\"\xC3\xBC\"", "\"\xC3\xBC\":"};
    if (size > 0) {
      EXPECT_STREQ(part.data(), expected[size]) << size;
    }
    EXPECT_TRUE(std::all_of(part.begin() + static_cast<std::ptrdiff_t>(size), part.end(),
                            [](char c) { return c == '#'; }));
  }
}

TEST(Messages, OfErrorsAreKnownForEveryNumber) {
  for (int error = 3; error > -10; --error) EXPECT_GT(std::strlen(lightmotion_error_text(error)), 5U);
  EXPECT_STREQ(lightmotion_error_text(LIGHTMOTION_ERROR_MEMORY), "out of memory");
}

TEST(Messages, AreEmptyWithoutFindings) { EXPECT_EQ(create(documentOf(shape)).message, ""); }

// ---- frames -----------------------------------------------------------------------------------------------

TEST(Frames, NeedAStrideThatHoldsARow) {
  const Detector detector = made(documentOf(shape));
  const std::vector<std::uint8_t>& frame = frames()[0];
  const auto process = [&](std::size_t stride) {
    return lightmotion_process(detector.get(), frame.data(), stride, 1, nullptr);
  };
  EXPECT_EQ(process(shape.rowBytes() - 1), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(process(1), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(process(SIZE_MAX), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(process(SIZE_MAX / 64), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(infoOf(detector).frames, 0);
  EXPECT_EQ(process(shape.rowBytes()), 0);
  EXPECT_EQ(process(0), 0);
  EXPECT_EQ(infoOf(detector).frames, 2);
}

TEST(Frames, FromTimeZeroAreLikeLaterOnes) {
  const Detector early = made(documentOf(shape));
  const Detector late = made(documentOf(shape));
  for (int i = 0; i < 10; ++i) {
    feed(early, frames()[0], std::int64_t{40} * i);
    feed(late, frames()[0], 1'700'000'000'000 + std::int64_t{40} * i);
    EXPECT_EQ(infoOf(early).frame_rate, infoOf(late).frame_rate);
  }
  EXPECT_EQ(infoOf(early).frame_rate, 25);
  feed(early, frames()[0], INT64_MAX);
  feed(early, frames()[0], INT64_MIN);
}

TEST(Frames, NegativeTimesAreUnknown) {
  const Detector detector = made(documentOf(shape));
  for (int i = 0; i < 5; ++i) EXPECT_EQ(feed(detector, frames()[0], -1 - i), "");
  EXPECT_GT(infoOf(detector).frame_rate, 0);
}

// Boxes at the right and bottom border are as large as the frame before they are clipped.
TEST(Frames, HaveBoxesWithinTheFrame) {
  constexpr compact::Shape grey{100, 80, 1};
  const Detector detector = made(documentOf(grey));
  feed(detector, picture(grey, 80, {}), 40);
  const auto frame = picture(grey, 80, {{70, 60, 40, 40, 200}});
  const lightmotion_box* boxes = nullptr;
  ASSERT_EQ(lightmotion_process(detector.get(), frame.data(), 0, 80, &boxes), 1);
  EXPECT_EQ(described(1, boxes), "72 62 28 18 in 0; ");
  EXPECT_FLOAT_EQ(boxes->rel_x, 0.72F);
  EXPECT_FLOAT_EQ(boxes->rel_y, 0.775F);
  EXPECT_FLOAT_EQ(boxes->rel_width, 0.28F);
  EXPECT_FLOAT_EQ(boxes->rel_height, 0.225F);
  EXPECT_EQ(boxes->reserved[0], 0U);
  EXPECT_THAT(lightmotion_json(detector.get(), nullptr), HasSubstr("\"width\":1.0"));
}

TEST(Frames, NamesOfRegionsAreThoseThatForegroundTouches) {
  constexpr compact::Shape grey{100, 80, 1};
  const auto region = [](const std::string& name, double left, double right) {
    const std::string from = std::to_string(left);
    const std::string to = std::to_string(right);
    return "{\"name\": \"" + name + "\", \"points\": [{\"x\": " + from + ", \"y\": -1}, {\"x\": " + to +
           ", \"y\": -1}, {\"x\": " + to + ", \"y\": 2}, {\"x\": " + from + ", \"y\": 2}]}";
  };
  const Detector detector =
      made(documentOf(grey, "\"roi\": [" + region("west", -1, 0.3) + ", " + region("middle", 0.295, 0.7) +
                                ", " + region("", 0.6, 1) + "]"));
  feed(detector, picture(grey, 80, {}), 40);
  // Columns 20 to 34, and 62 to 76; one pixel of the first box's margin is in neither.
  const std::string text =
      feed(detector, picture(grey, 80, {{20, 20, 15, 15, 200}, {62, 50, 15, 15, 200}}), 80);
  EXPECT_EQ(text.substr(0, text.find('{')), "22 22 11 11 in 0 1; 64 52 11 11 in 1 2; ");
  // Two things side by side, in the same 32 columns.
  const Detector beside = made(
      documentOf(grey, "\"roi\": [" + region("west", -1, 0.155) + ", " + region("east", 0.155, 2) + "]"));
  feed(beside, picture(grey, 80, {}), 40);
  const std::string two = feed(beside, picture(grey, 80, {{1, 20, 12, 12, 200}, {19, 20, 12, 12, 200}}), 80);
  EXPECT_EQ(two.substr(0, two.find('{')), "3 22 8 8 in 0; 21 22 8 8 in 1; ");
  EXPECT_STREQ(lightmotion_region_name(detector.get(), 0), "west");
  EXPECT_STREQ(lightmotion_region_name(detector.get(), 1), "middle");
  EXPECT_STREQ(lightmotion_region_name(detector.get(), 2), "");
  EXPECT_EQ(lightmotion_region_name(detector.get(), 3), nullptr);
  EXPECT_EQ(lightmotion_region_name(detector.get(), -1), nullptr);
  EXPECT_STREQ(lightmotion_region_name(made(documentOf(shape)).get(), 0), "frame");
}

// ---- pictures ---------------------------------------------------------------------------------------------

TEST(Pictures, NeedAFrame) {
  const Detector detector = made(documentOf(shape));
  std::vector<std::uint8_t> picture(static_cast<std::size_t>(shape.height) * shape.rowBytes());
  EXPECT_EQ(lightmotion_foreground(detector.get(), picture.data(), 0), LIGHTMOTION_ERROR_NO_FRAME);
  EXPECT_EQ(lightmotion_background(detector.get(), picture.data(), 0), LIGHTMOTION_ERROR_NO_FRAME);
  EXPECT_EQ(lightmotion_foreground(detector.get(), picture.data(), 95), LIGHTMOTION_ERROR_ARGUMENT);
  EXPECT_EQ(lightmotion_background(detector.get(), picture.data(), 287), LIGHTMOTION_ERROR_ARGUMENT);
}

TEST(Pictures, AreForegroundBeforePeelingAndBackgroundWithoutIt) {
  for (const int channels : {1, 3, 4}) {
    const compact::Shape any{70, 40, channels};
    const Detector detector = made(documentOf(any));
    const auto empty = picture(any, 80, {});
    feed(detector, empty, 40);
    EXPECT_EQ(foregroundOf(detector), std::vector<std::uint8_t>(2800, 0));
    feed(detector, picture(any, 80, {{30, 10, 20, 20, 200}}), 80);
    EXPECT_EQ(foregroundOf(detector), picture({70, 40, 1}, 0, {{30, 10, 20, 20, 255}}));
    std::vector<std::uint8_t> expected = empty;
    for (std::size_t i = 3; channels == 4 && i < expected.size(); i += 4) expected[i] = 0;
    EXPECT_EQ(backgroundOf(detector), expected);
  }
}

// Parts whose sides lie on, beside and across the borders of 32 pixels, with the half of the frame watched.
TEST(Pictures, OfAPartAreThatPartOfTheWhole) {
  for (const int channels : {1, 3, 4}) {
    const compact::Shape any{100, 12, channels};
    const Detector detector = made(documentOf(
        any,
        R"("roi": [{"points": [{"x": 0.2, "y": -1}, {"x": 0.7, "y": -1}, {"x": 0.7, "y": 2}, {"x": 0.2, "y": 2}]}])"));
    feed(detector, picture(any, 80, {{0, 0, 50, 5, 40}}), 40);
    feed(detector, picture(any, 80, {{31, 2, 34, 7, 200}, {25, 10, 1, 1, 200}}), 80);
    const std::vector<std::uint8_t> mask = foregroundOf(detector);
    const std::vector<std::uint8_t> background = backgroundOf(detector);
    for (const auto& [x, y, width, height] : {std::array{0, 0, 100, 12},
                                              {32, 0, 32, 12},
                                              {31, 3, 2, 9},
                                              {0, 11, 26, 1},
                                              {65, 2, 35, 3},
                                              {99, 0, 1, 1}}) {
      const auto bytes = static_cast<std::size_t>(width * channels);
      std::vector<std::uint8_t> of_mask(static_cast<std::size_t>(width * height), 7);
      std::vector<std::uint8_t> of_background(bytes * static_cast<std::size_t>(height) + 3, 7);
      ASSERT_EQ(lightmotion_foreground_part(detector.get(), x, y, width, height, of_mask.data(), 0),
                LIGHTMOTION_OK);
      ASSERT_EQ(lightmotion_background_part(detector.get(), x, y, width, height, of_background.data(), bytes),
                LIGHTMOTION_OK);
      for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
          const auto here = static_cast<std::size_t>(row * width + column);
          const auto there = static_cast<std::size_t>((y + row) * 100 + x + column);
          ASSERT_EQ(of_mask[here], mask[there]) << x + column << ' ' << y + row;
          for (std::size_t c = 0; c < static_cast<std::size_t>(channels); ++c) {
            const auto n = static_cast<std::size_t>(channels);
            ASSERT_EQ(of_background[here * n + c], background[there * n + c]) << x + column << ' ' << y + row;
          }
        }
      }
      EXPECT_EQ(of_background.back(), 7);
    }
  }
}

TEST(Pictures, OfAPartThatDoesNotLieWithinTheFrameAreRefused) {
  const Detector detector = made(documentOf(shape));
  feed(detector, frames()[0], 40);
  const auto [width, height] = std::pair(shape.width, shape.height);
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(height) * shape.rowBytes());
  for (const auto& [x, y, w, h] : {std::array{-1, 0, 2, 2},
                                   {0, -1, 2, 2},
                                   {0, 0, 0, 2},
                                   {0, 0, 2, 0},
                                   {width - 1, 0, 2, 2},
                                   {0, height - 1, 2, 2},
                                   {1, 0, std::numeric_limits<std::int32_t>::max(), 1}}) {
    EXPECT_EQ(lightmotion_foreground_part(detector.get(), x, y, w, h, bytes.data(), 0),
              LIGHTMOTION_ERROR_ARGUMENT);
    EXPECT_EQ(lightmotion_background_part(detector.get(), x, y, w, h, bytes.data(), 0),
              LIGHTMOTION_ERROR_ARGUMENT);
  }
}

TEST(Pictures, LeaveThePaddingAlone) {
  constexpr compact::Shape grey{10, 3, 1};
  const Detector detector = made(documentOf(grey));
  feed(detector, picture(grey, 80, {}), 40);
  std::vector<std::uint8_t> rows(12 * 2 + 10, 7);
  EXPECT_EQ(lightmotion_background(detector.get(), rows.data(), 12), LIGHTMOTION_OK);
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i], i % 12 < 10 ? 80 : 7) << i;
}

TEST(Pictures, AreBlackWhereNothingIsWatched) {
  constexpr compact::Shape grey{100, 4, 1};
  const Detector detector = made(documentOf(
      grey,
      R"("roi": [{"name": "a", "points": [{"x": 0.495, "y": -1}, {"x": 2, "y": -1}, {"x": 2, "y": 2}, {"x": 0.495, "y": 2}]}])"));
  feed(detector, picture(grey, 80, {}), 40);
  EXPECT_EQ(backgroundOf(detector), picture(grey, 0, {{50, 0, 50, 4, 80}}));
}

// ---- queries ----------------------------------------------------------------------------------------------

TEST(Info, FillsInWhatFits) {
  const Detector detector = made(documentOf(shape));
  feed(detector, frames()[0], 40);
  lightmotion_info info;
  std::memset(&info, 0x55, sizeof info);
  info.struct_size = offsetof(lightmotion_info, format);
  EXPECT_EQ(lightmotion_get_info(detector.get(), &info), LIGHTMOTION_OK);
  EXPECT_EQ(info.width, 96);
  EXPECT_EQ(info.height, 64);
  EXPECT_EQ(info.format, 0x55555555);
  info.struct_size = sizeof(std::size_t) - 1;
  EXPECT_EQ(lightmotion_get_info(detector.get(), &info), LIGHTMOTION_ERROR_ARGUMENT);
  std::array<std::uint8_t, sizeof info + 16> larger{};
  const std::size_t size = larger.size();
  std::memcpy(larger.data(), &size, sizeof size);
  EXPECT_EQ(lightmotion_get_info(detector.get(), reinterpret_cast<lightmotion_info*>(larger.data())),
            LIGHTMOTION_OK);
  EXPECT_EQ(larger[sizeof info], 0);
}

TEST(Info, KnowsTheDetector) {
  const Detector detector = made(documentOf(shape));
  const std::uint64_t before = infoOf(detector).memory;
  EXPECT_LT(before, 96U * 64U);
  feed(detector, frames()[0], 40);
  feed(detector, frames()[1], 90);
  const lightmotion_info info = infoOf(detector);
  EXPECT_EQ(info.struct_size, sizeof info);
  EXPECT_EQ(info.frames, 2);
  EXPECT_EQ(info.frame_rate, 20);
  EXPECT_EQ(info.watched, 1);
  EXPECT_EQ(info.region_count, 1);
  EXPECT_GT(info.memory, 70U * 96U * 64U);
}

TEST(Version, IsThatOfTheHeader) {
  EXPECT_EQ(lightmotion_version(), LIGHTMOTION_VERSION);
  EXPECT_STREQ(lightmotion_version_text(), PROJECT_VERSION);
}

// ---- locale -----------------------------------------------------------------------------------------------

TEST(Locale, HasNoEffect) {
  const std::string document =
      documentOf(shape, R"("minBoxW": 0.125, "minBoxH": "0.125", "absorb_seconds": 1.5)");
  const std::vector<std::string> expected = texts(made(document), frames());
  const std::string message = create(documentOf(shape, R"("minBoxW": 1.5)")).message;
  const CommaCLocale locale;
  if (!locale.active()) GTEST_SKIP() << "needs localedef";
  const CommaCppLocale streams;
  EXPECT_EQ(texts(made(document), frames()), expected);
  EXPECT_EQ(create(documentOf(shape, R"("minBoxW": 1.5)")).message, message);
  EXPECT_THAT(message, HasSubstr("1.5"));
}

}  // namespace
}  // namespace lm::test
