// Very small and very large frame sizes, through the entry points.
#include <gtest/gtest.h>

#include <new>
#include <ostream>

#include "plugin/entry_points.h"
#include "tests/plugin/scene.h"
#include "tests/support/capture.h"
#include "tests/support/failing_alloc.h"

namespace lm::test {
namespace {

class OnePixelFrames : public ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Of, OnePixelFrames, ::testing::Values(1, 3, 4), ::testing::PrintToStringParamName());

TEST_P(OnePixelFrames, AreLearnedAndHaveNoBoxes) {
  const Capture err(stderr);
  ASSERT_TRUE(initialization(documentFor({1, 1, GetParam()}).c_str()));
  for (int i = 0; i < 300; ++i) {
    const Bytes pixel(static_cast<std::size_t>(GetParam()), static_cast<std::uint8_t>(i * 97));
    int length = -1;
    EXPECT_EQ(frameProc(pixel.data(), std::to_string(1 + 40 * i).c_str(), &length), 1);
    EXPECT_EQ(length, 0) << "erosion leaves nothing of a pixel";
  }
  ::terminate();
}

struct Side {
  int width, height;
  std::int64_t pixels;  // product of the sides in 32-bit arithmetic
};
void PrintTo(const Side& size, std::ostream* out) { *out << size.width << " x " << size.height; }

class OverflowingSize : public ::testing::TestWithParam<Side> {};

// 65536 x 65536 is 2^32; 65537 x 65537 is 2^32 + 2^17 + 1; (2^31 - 1)^2 is 2^62 - 2^32 + 1; 46341 x 46341 is
// 2147488281, 2^32 less 2147479015.
INSTANTIATE_TEST_SUITE_P(Of, OverflowingSize,
                         ::testing::Values(Side{65536, 65536, 0}, Side{65537, 65537, 131073},
                                           Side{65536, 65537, 65536}, Side{2147483647, 2147483647, 1},
                                           Side{46341, 46341, -2147479015}, Side{2147483647, 2, -2}));

// No machine has that many pixels, so initialization may run out of memory or frames may have no results, but
// nothing is written outside the buffers. A frame has as many pixels as the product in 32-bit arithmetic.
TEST_P(OverflowingSize, IsSurvived) {
  const auto [width, height, pixels] = GetParam();
  const FailingAlloc absurdRequestsThrow;
  const Capture err(stderr);
  bool stands = false;
  try {
    stands = initialization(documentFor({width, height, 1}).c_str());
  } catch (const std::bad_alloc&) {
  }
  EXPECT_EQ(stands, pixels >= 0) << "a product below zero is more than there can be";
  const Bytes frame(static_cast<std::size_t>(pixels > 0 ? pixels : 1), 50);
  for (int i = 0; stands && i < 3; ++i) {
    int length = -1;
    try {
      EXPECT_EQ(frameProc(frame.data(), "1", &length), 1);
    } catch (const std::bad_alloc&) {
    }
    EXPECT_EQ(length, 0);
  }
  EXPECT_EQ(::terminate(), 1);
}

}  // namespace
}  // namespace lm::test
