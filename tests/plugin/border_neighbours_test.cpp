// Neighbours of pixels near the border are drawn with the C library's rand(), which belongs to the host:
// results depend on its state when the first frame arrives.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "plugin/entry_points.h"
#include "tests/plugin/scene.h"
#include "tests/support/capture.h"

namespace lm::test {
namespace {

constexpr int width = 64;
constexpr int height = 32;

// Sparse bright pixels on a uniform background, so that it matters which neighbours a pixel near the border
// has.
Bytes background() {
  Bytes pixels(static_cast<std::size_t>(width * height));
  std::uint32_t state = 1;
  for (std::uint8_t& pixel : pixels) {
    state = state * 1664525U + 1013904223U;
    pixel = state >> 24U >= 32 ? 60 : 90;
  }
  return pixels;
}

// The background; from the second frame on with a block at the left border, which moves down. Its first two
// columns are as bright as the sparse pixels.
Bytes frame(int number) {
  Bytes pixels = background();
  for (int y = number; number > 0 && y < std::min(number + 14, height); ++y) {
    const auto row = pixels.begin() + y * width;
    std::fill(row, row + 2, std::uint8_t{90});
    std::fill(row + 2, row + 20, std::uint8_t{200});
  }
  return pixels;
}

// All result documents of one detector.
std::string results() {
  const Capture quiet(stderr);
  std::string all;
  EXPECT_TRUE(initialization(documentFor(smallGrey, R"(,"minBoxW":"0.01","minBoxH":"0.01")").c_str()));
  for (int number = 0; number < 20; ++number) {
    int length = 0;
    EXPECT_EQ(frameProc(frame(number).data(), std::to_string(1 + 40 * number).c_str(), &length), 1);
    std::string text(static_cast<std::size_t>(length), '\0');
    if (length > 0) getRes(text.data());
    all += text;
  }
  terminate();
  return all;
}

TEST(BorderNeighbours, TheSameStateOfRandGivesTheSameBytes) {
  std::srand(1);
  const std::string first = results();
  EXPECT_NE(first.find("\"width\""), std::string::npos);
  std::srand(1);
  EXPECT_EQ(results(), first);
}

TEST(BorderNeighbours, LaterDetectorsOfAProcessCanDiffer) {
  std::srand(1);
  const std::string first = results();
  bool differs = false;
  for (int detector = 2; detector <= 10; ++detector) differs = differs || results() != first;
  EXPECT_TRUE(differs);
}

TEST(BorderNeighbours, AHostThatCallsRandBetweenDetectorsCanGetOtherResults) {
  std::srand(1);
  const std::string first = results();
  bool differs = false;
  for (int draws = 100; draws <= 1000; draws += 100) {
    std::srand(1);
    for (int draw = 0; draw < draws; ++draw) std::rand();
    differs = differs || results() != first;
  }
  EXPECT_TRUE(differs);
}

TEST(BorderNeighbours, DiffersOnlyWithinTwoPixelsOfTheBorder) {
  const Capture quiet(stderr);
  std::srand(1);
  lightMotion first;
  lightMotion second;
  for (lightMotion* detector : {&first, &second}) {
    int length = 0;
    ASSERT_TRUE(detector->init(documentFor(smallGrey).c_str()));
    detector->frameProc(frame(0).data(), "1", &length);
  }
  bool borderDiffers = false;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto pixel = static_cast<std::size_t>(y * width + x);
      const int* entries = first.engine->nbrIdx.at(pixel);
      const bool same = std::equal(entries, entries + first.engine->numNbr, second.engine->nbrIdx.at(pixel));
      const bool inside = x >= 2 && y >= 2 && x < width - 2 && y < height - 2;
      EXPECT_TRUE(same || !inside) << x << ' ' << y;
      borderDiffers = borderDiffers || !same;
    }
  }
  EXPECT_TRUE(borderDiffers);
}

}  // namespace
}  // namespace lm::test
