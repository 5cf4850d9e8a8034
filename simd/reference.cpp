// The reference versions, one element at a time. They define what the other versions compute.
#include <cassert>

#include "simd/rest.h"
#include "simd/simd.h"

int lm::imageBytes(int width, int height, int channels) {
  return static_cast<int>(static_cast<unsigned>(width) * static_cast<unsigned>(height) *
                          static_cast<unsigned>(channels));
}

void lm::stridedDiff(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::ptrdiff_t begin,
                     std::ptrdiff_t end, std::ptrdiff_t step) {
  assert(begin >= 0);
  if (step < 1) return;
  for (std::ptrdiff_t k = begin; k < end; k += step) {
    *out++ = static_cast<std::uint8_t>(a[k] > b[k] ? a[k] - b[k] : b[k] - a[k]);
  }
}

void lm::pruneTail(std::uint8_t* mask, const std::uint8_t* roi, int count, int block) {
  if (count < 1) return;
  const int tail = count % block;
  simd::pruneFgByRoi_c(mask + (count - tail), roi, tail);
}

namespace simd {

void replace_if_u8_c(std::uint8_t* begin, std::uint8_t* end, std::uint8_t from, std::uint8_t to) {
  assert(begin <= end);
  for (; begin != end; ++begin) {
    if (*begin == from) *begin = to;
  }
}

void genRdDiff_c(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, int width, int height,
                 int channels, int channel) {
  lm::stridedDiff(a, b, out, channel, lm::imageBytes(width, height, channels), channels);
}

void pruneFgByRoi_c(std::uint8_t* mask, const std::uint8_t* roi, int count) {
  for (int i = 0; i < count; ++i) {
    if (roi[i] != 1) mask[i] = 0;
  }
}

int isMatchVal_bgr24_c(const std::uint8_t* pixel, const std::uint8_t* sample, int radius) {
  int sum = 0;
  for (int c = 0; c < 3; ++c) {
    const int difference = pixel[c] > sample[c] ? pixel[c] - sample[c] : sample[c] - pixel[c];
    if (difference > radius) return -1;
    sum += difference;
  }
  return sum;
}

bool isTouch_c(std::tuple<int, int, int, int> box, const std::uint8_t* first, const std::uint8_t* second,
               int stride, int /*height*/) {
  const auto [x, y, w, h] = box;
  for (int r = 0; r < h; ++r) {
    const std::ptrdiff_t row = (std::ptrdiff_t{y} + r) * stride + x;
    for (int c = 0; c < w; ++c) {
      if (first[row + c] == 255 && second[row + c] == 1) return true;
    }
  }
  return false;
}

void cvt_u8_to_u32(const std::uint8_t* src, std::uint32_t* dst, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) dst[i] = src[i];
}

}  // namespace simd
