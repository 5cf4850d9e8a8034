// The neighbours of border pixels are those of the open engine's tables.
#include "compact/border.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "engine/kamble.h"

namespace {

TEST(CompactBorder, DrawsTheNeighboursOfTheOpenEngine) {
  constexpr int stride = 1000;
  for (const int width : {1, 2, 3, 4, 5, 6, 40}) {
    for (const int height : {1, 2, 3, 4, 5, 6, 9}) {
      kAMBLE open;
      open.szImgX = width;
      open.szImgY = height;
      open.frmChn = 1;
      std::srand(5);
      ASSERT_TRUE(open.initBuffer_ncv());
      const int next = std::rand();

      lm::compact::Border border;
      std::srand(5);
      ASSERT_TRUE(border.draw({width, height, 1}, stride, std::rand));
      EXPECT_EQ(std::rand(), next);
      int pixels = 0;
      for (int y = 0; y < height; ++y) {
        border.forEach(y, [&](int x, const std::int32_t* entries) {
          ++pixels;
          for (int k = 0; k < 25; ++k) {
            const int index = open.nbrIdx[static_cast<std::size_t>(y * width + x)][k];
            ASSERT_EQ(entries[k], index / width * stride + index % width) << x << ", " << y << ", " << k;
          }
        });
      }
      const int inner = width > 4 && height > 4 ? (width - 4) * (height - 4) : 0;
      EXPECT_EQ(pixels, width * height - inner);
    }
  }
}

}  // namespace
