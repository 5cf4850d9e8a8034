// The list-based morphology, which object extraction uses: passes touch only the pixels that change.
#include "engine/kamble.h"
#include "engine/rules.h"
#include "objects/neighbour_test.h"
#include "simd/simd.h"

int kAMBLE::dilate_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t relabel, int passes) {
  const std::size_t count = lm::countOf(numPixel);
  if (mask == nullptr || nbr4Idx.size() < count) return 0;
  const auto notSet = [set](std::uint8_t value) { return value != set; };
  // Kept: the passes mark border pixels of the set regions and set them back, so they leave the mask as it
  // was.
  for (int pass = 0; pass < passes; ++pass) {
    morphList.clear();
    for (std::int32_t pixel = 0; pixel < numPixel; ++pixel) {
      if (mask[pixel] != set || !lm::anyNeighbour(*this, mask, pixel, notSet)) continue;
      mask[pixel] = static_cast<std::uint8_t>(set - 1);
      morphList.push_back(pixel);
    }
    for (const int pixel : morphList) mask[pixel] = set;
  }
  if (relabel != set) simd::replace_if_u8(mask, mask + count, set, relabel);
  return 1;
}

int kAMBLE::erode_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t cleared, int passes) {
  if (mask == nullptr || nbr4Idx.size() < lm::countOf(numPixel)) return 0;
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
