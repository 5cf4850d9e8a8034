#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "tests/simd/expected.h"
#include "tests/simd/sweep.h"

namespace {

simd::TouchFn touchInBlocks;
bool touchInBlocks(std::tuple<int, int, int, int> box, const std::uint8_t* first, const std::uint8_t* second,
                   int stride, int /*height*/) {
  return expected::touchBlocks(box, first, second, stride, 16);
}

simd::TouchFn* expectedOf(const lm::Version<simd::TouchFn>& version) {
  return version.level == simd::level::none ? expected::touch : touchInBlocks;
}

class Touch : public VersionTest<simd::TouchFn> {};
INSTANTIATE_TEST_SUITE_P(EveryVersion, Touch, ::testing::ValuesIn(lm::touchVersions), VersionName());

struct Rectangle {
  int x, y, w, h, stride;

  std::tuple<int, int, int, int> box() const { return {x, y, w, h}; }
  // From the images' first byte to the rectangle's last.
  std::size_t bytes() const {
    return w < 1 || h < 1 ? 0 : static_cast<std::size_t>((y + h - 1) * stride + x + w);
  }
};

std::ostream& operator<<(std::ostream& stream, const Rectangle& r) {
  return stream << "(" << r.x << ", " << r.y << ", " << r.w << ", " << r.h << ") with stride " << r.stride;
}

// Two images that end where the rectangle ends.
struct Images {
  GuardedBuffer first{8192}, second{8192};

  bool touches(simd::TouchFn* version, const Rectangle& r) const {
    return version(r.box(), first.begin(), second.begin(), r.stride, r.y + r.h);
  }
};

// Strides above, equal to and below the width; in the last case rows overlap.
std::vector<Rectangle> rectanglesOfWidth(int w) {
  return {{0, 0, w, 1, w + 3}, {3, 1, w, 2, w + 5}, {0, 0, w, 3, w}, {1, 2, w, 3, 7}, {0, 0, w, 2, 0}};
}

TEST_P(Touch, FindsASingleTouchExactlyWhereThePlainVersionDoes) {
  Images images;
  for (int w = 0; w <= 100; ++w) {
    for (const auto& r : rectanglesOfWidth(w)) {
      images.first.place(r.bytes(), static_cast<std::size_t>(w) % 32, GuardedBuffer::Against::back);
      images.second.place(r.bytes(), static_cast<std::size_t>(w) * 7 % 32, GuardedBuffer::Against::back);
      std::fill(images.first.begin(), images.first.end(), std::uint8_t{254});
      std::fill(images.second.begin(), images.second.end(), std::uint8_t{1});
      ASSERT_FALSE(images.touches(GetParam().function, r)) << r;
      for (std::size_t i = 0; i < r.bytes(); ++i) {
        images.first.begin()[i] = 255;
        ASSERT_EQ(images.touches(GetParam().function, r), images.touches(expectedOf(GetParam()), r))
            << r << ", touch at " << i;
        images.first.begin()[i] = 254;
      }
    }
  }
}

TEST_P(Touch, EqualsThePlainVersionAtEveryWidthAndOffset) {
  Images images;
  Filler firstValues({0, 1, 254, 254, 254, 255});
  Filler secondValues({0, 0, 0, 1, 2, 255});
  forEveryPlacement([&](const Placement& at) {
    for (const auto& r : rectanglesOfWidth(static_cast<int>(std::min<std::size_t>(at.length, 1024)))) {
      at.put(images.first, r.bytes(), 0);
      at.put(images.second, r.bytes(), 1);
      firstValues(images.first);
      secondValues(images.second);
      const auto first = copyOf(images.first);
      const auto second = copyOf(images.second);
      ASSERT_EQ(images.touches(GetParam().function, r), images.touches(expectedOf(GetParam()), r))
          << at << ", " << r;
      ASSERT_EQ(mismatch(images.first, first) + mismatch(images.second, second), "") << at << ", " << r;
    }
  });
}

TEST_P(Touch, OnlyTheValues255And1Touch) {
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const std::vector<std::uint8_t> first(16, static_cast<std::uint8_t>(a));
      const std::vector<std::uint8_t> second(16, static_cast<std::uint8_t>(b));
      ASSERT_EQ(GetParam().function({0, 0, 16, 1}, first.data(), second.data(), 16, 1), a == 255 && b == 1)
          << a << " and " << b;
    }
  }
}

TEST_P(Touch, NoRowsOrNoColumnsNeverTouchAndReadNothing) {
  for (const auto& [w, h] :
       {std::pair{16, 0}, {16, -1}, {32, INT_MIN}, {0, 3}, {-16, 3}, {-33, 3}, {INT_MIN, 3}}) {
    EXPECT_FALSE(GetParam().function({5, 5, w, h}, nullptr, nullptr, 100, 100)) << w << " x " << h;
  }
}

TEST_P(Touch, TheHeightArgumentIsNotUsed) {
  const std::vector<std::uint8_t> first(32, 255), second(32, 1);
  for (const int height : {INT_MIN, 0, INT_MAX}) {
    EXPECT_TRUE(GetParam().function({0, 1, 16, 1}, first.data(), second.data(), 16, height));
  }
}

TEST_P(Touch, RectanglesAreNotClippedToTheStride) {
  // Column 20 of row 0 is column 4 of row 1 in images of 16 columns.
  std::vector<std::uint8_t> first(48), second(48, 1);
  first[20] = 255;
  EXPECT_TRUE(GetParam().function({8, 0, 16, 1}, first.data(), second.data(), 16, 3));
}

TEST_P(Touch, SixteenColumnsFindATouchInAnyColumn) {
  for (std::size_t column = 0; column < 16; ++column) {
    std::vector<std::uint8_t> first(16), second(16, 1);
    first[column] = 255;
    EXPECT_TRUE(GetParam().function({0, 0, 16, 1}, first.data(), second.data(), 16, 1)) << column;
  }
}

TEST(TouchSse2, AnEightColumnRectangleNeverTouches) {
  const std::vector<std::uint8_t> first(64, 255), second(64, 1);
  EXPECT_FALSE(simd::isTouch_sse2({0, 0, 8, 4}, first.data(), second.data(), 16, 4));
  EXPECT_TRUE(simd::isTouch_c({0, 0, 8, 4}, first.data(), second.data(), 16, 4));
}

TEST(TouchSse2, TheColumnsAfterTheLastBlockNeverTouch) {
  std::vector<std::uint8_t> first(31), second(31, 1);
  std::fill(first.begin() + 16, first.end(), std::uint8_t{255});
  EXPECT_FALSE(simd::isTouch_sse2({0, 0, 31, 1}, first.data(), second.data(), 31, 1));
  EXPECT_TRUE(simd::isTouch_c({0, 0, 31, 1}, first.data(), second.data(), 31, 1));
}

}  // namespace
