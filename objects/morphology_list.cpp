// The list-based morphology: a pass changes only the pixels that it lists.
#include <algorithm>

#include "base/integers.h"
#include "engine/kamble.h"
#include "objects/scratch.h"
#include "simd/simd.h"

namespace {

bool isSized(const kAMBLE& engine) {
  return lm::stateOf(engine).nbrWidth >= 1 && engine.nbr4Idx.size() == lm::countOf(engine.numPixel);
}

// Whether any direct neighbour of the pixel at column `x` of the row that starts at `begin` is not `value`.
bool bordersOthers(const kAMBLE& engine, const std::uint8_t* mask, std::int32_t begin, std::int32_t x,
                   std::uint8_t value) {
  const std::int32_t width = lm::stateOf(engine).nbrWidth;
  const std::int32_t pixel = begin + x;
  const bool atEnd = x + 1 == width || pixel + 1 == engine.numPixel;
  return (x > 0 && mask[pixel - 1] != value) || (!atEnd && mask[pixel + 1] != value) ||
         (begin > 0 && mask[pixel - width] != value) ||
         (pixel < engine.numPixel - width && mask[pixel + width] != value);
}

}  // namespace

int kAMBLE::dilate_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t relabel, int passes) {
  if (mask == nullptr || !isSized(*this)) return 0;
  // Kept: a pass marks border pixels of the set regions and sets them back, so it leaves the mask as it was,
  // and every further pass does the same again.
  if (passes >= 1) {
    const std::int32_t width = lm::stateOf(*this).nbrWidth;
    morphList.clear();
    for (std::int32_t begin = 0; begin < numPixel; begin += width) {
      for (std::int32_t x = 0; x < std::min(width, numPixel - begin); ++x) {
        if (mask[begin + x] != set || !bordersOthers(*this, mask, begin, x, set)) continue;
        mask[begin + x] = static_cast<std::uint8_t>(set - 1);
        morphList.push_back(begin + x);
      }
    }
    for (const int pixel : morphList) mask[pixel] = set;
  }
  if (relabel != set) simd::replace_if_u8(mask, mask + lm::countOf(numPixel), set, relabel);
  return 1;
}

int kAMBLE::erode_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t cleared, int passes) {
  if (mask == nullptr || !isSized(*this)) return 0;
  if (passes < 1) return 1;
  lm::MaskBits& bits = lm::scratchOf(*this).mask;
  bits.read(mask, lm::countOf(lm::stateOf(*this).nbrWidth), lm::countOf(numPixel),
            {.set = set, .relabel = set, .cleared = cleared});
  bits.peel(passes, morphList);
  bits.write(mask);
  return 1;
}
