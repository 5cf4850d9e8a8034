// The list-based morphology, which object extraction uses: a pass changes only the pixels that it lists.
#include "base/integers.h"
#include "engine/kamble.h"
#include "objects/neighbour_test.h"
#include "simd/simd.h"

int kAMBLE::dilate_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t relabel, int passes) {
  if (mask == nullptr || !lm::hasDirectNeighbours(*this)) return 0;
  const auto notSet = [set](std::uint8_t value) { return value != set; };
  // Kept: a pass marks border pixels of the set regions and sets them back, so it leaves the mask as it was.
  for (int pass = 0; pass < passes; ++pass) {
    morphList.clear();
    for (std::int32_t pixel = 0; pixel < numPixel; ++pixel) {
      if (mask[pixel] != set || !lm::anyNeighbour(*this, mask, pixel, notSet)) continue;
      mask[pixel] = static_cast<std::uint8_t>(set - 1);
      morphList.push_back(pixel);
    }
    for (const int pixel : morphList) mask[pixel] = set;
  }
  if (relabel != set) simd::replace_if_u8(mask, mask + lm::countOf(numPixel), set, relabel);
  return 1;
}

int kAMBLE::erode_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t cleared, int passes) {
  if (mask == nullptr || !lm::hasDirectNeighbours(*this)) return 0;
  const auto isCleared = [cleared](std::uint8_t value) { return value == cleared; };
  for (int pass = 0; pass < passes; ++pass) {
    morphList.clear();
    for (std::int32_t pixel = 0; pixel < numPixel; ++pixel) {
      if (mask[pixel] == set && lm::anyNeighbour(*this, mask, pixel, isCleared)) morphList.push_back(pixel);
    }
    for (const int pixel : morphList) mask[pixel] = cleared;
  }
  return 1;
}
