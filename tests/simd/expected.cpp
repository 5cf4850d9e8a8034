#include "tests/simd/expected.h"

#include <algorithm>
#include <cstdlib>

namespace expected {

void replace(std::uint8_t* begin, std::uint8_t* end, std::uint8_t from, std::uint8_t to) {
  std::replace(begin, end, from, to);
}

void genRdDiff(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int width, int height,
               int channels, int channel) {
  const auto wrapped = static_cast<std::uint32_t>(width) * static_cast<std::uint32_t>(height) *
                       static_cast<std::uint32_t>(channels);
  const auto total = static_cast<std::int32_t>(wrapped);
  for (int k = channel; k < total; ++k) {
    if ((k - channel) % channels != 0) continue;
    out[(k - channel) / channels] = static_cast<std::uint8_t>(std::abs(int{a[k]} - int{b[k]}));
  }
}

int match(const std::uint8_t* pixel, const std::uint8_t* sample, int radius) {
  const int blue = std::abs(pixel[0] - sample[0]);
  const int green = std::abs(pixel[1] - sample[1]);
  const int red = std::abs(pixel[2] - sample[2]);
  return std::max({blue, green, red}) > radius ? -1 : blue + green + red;
}

void prune(std::uint8_t* mask, const std::uint8_t* roi, int count) {
  for (int i = 0; i < count; ++i) {
    if (mask[i] != 0 && roi[i] != 1) mask[i] = 0;
  }
}

bool touch(std::tuple<int, int, int, int> box, const std::uint8_t* first, const std::uint8_t* second,
           int stride, int /*height*/) {
  return touchBlocks(box, first, second, stride, 1);
}

void pruneBlocks(std::uint8_t* mask, const std::uint8_t* roi, int count, int block) {
  const int whole = count / block * block;
  for (int i = 0; i < count; ++i) {
    const bool inTail = i >= whole;
    if (inTail && roi[i - whole] != 1) mask[i] = 0;
  }
}

bool touchBlocks(const std::tuple<int, int, int, int>& box, const std::uint8_t* first,
                 const std::uint8_t* second, int stride, int block) {
  const auto [x, y, w, h] = box;
  bool found = false;
  for (int row = y; row < y + h; ++row) {
    for (int column = x; column < x + w / block * block; ++column) {
      const int i = row * stride + column;
      found = found || (first[i] == 255 && second[i] == 1);
    }
  }
  return found;
}

}  // namespace expected
