// Erosion of rows of bits, against a plain one.
#include "compact/erosion.h"

#include <gtest/gtest.h>

#include <random>

namespace {

struct Picture {
  int width, height;
  std::vector<int> pixels;
  int at(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
  bool clearedAt(int x, int y) const { return x >= 0 && x < width && y >= 0 && y < height && at(x, y) == 0; }
};

Picture peeled(const Picture& from) {
  Picture to = from;
  for (int y = 0; y < from.height; ++y) {
    for (int x = 0; x < from.width; ++x) {
      if (from.clearedAt(x - 1, y) || from.clearedAt(x + 1, y) || from.clearedAt(x, y - 1) ||
          from.clearedAt(x, y + 1)) {
        to.pixels[static_cast<std::size_t>(y * from.width + x)] = 0;
      }
    }
  }
  return to;
}

void read(lm::compact::Erosion& erosion, const Picture& picture) {
  const auto blocks = static_cast<std::size_t>((picture.width + 31) / 32);
  for (int y = 0; y < picture.height; ++y) {
    std::vector<std::uint32_t> words(blocks, 0);
    for (int x = 0; x < picture.width; ++x) {
      words[static_cast<std::size_t>(x / 32)] |= static_cast<std::uint32_t>(picture.at(x, y)) << (x % 32);
    }
    erosion.read(y, words.data(), blocks);
  }
}

// The same erosion reads one picture after the other, some of them empty.
TEST(CompactErosion, PeelsWhatAPlainOnePeels) {
  std::mt19937 random(3);
  for (const int width : {1, 2, 31, 32, 33, 63, 64, 65, 127, 128, 129}) {
    const int height = 12;
    lm::compact::Erosion erosion;
    erosion.make(width, height);
    for (const unsigned density : {97U, 100U, 0U, 90U, 99U}) {
      Picture picture{width, height, {}};
      for (int i = 0; i < width * height; ++i) picture.pixels.push_back(random() % 100 < density ? 1 : 0);
      read(erosion, picture);
      for (int pass = 0; pass < 3; ++pass) {
        erosion.peel(1);
        picture = peeled(picture);
        for (int y = 0; y < height; ++y) {
          bool any = false;
          for (int x = 0; x < width; ++x) {
            ASSERT_EQ(erosion.isSet(x, y), picture.at(x, y) == 1) << width << ": " << x << ", " << y;
            any = any || picture.at(x, y) == 1;
          }
          ASSERT_EQ(erosion.holds(y), any);
        }
      }
    }
  }
}

TEST(CompactErosion, LeavesAFullFrame) {
  lm::compact::Erosion erosion;
  erosion.make(70, 4);
  read(erosion, {70, 4, std::vector<int>(70 * 4, 1)});
  erosion.peel(3);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 70; ++x) EXPECT_TRUE(erosion.isSet(x, y));
  }
}

}  // namespace
