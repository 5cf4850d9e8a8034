// The list-based morphology, which object extraction uses: passes touch only the pixels that change.
#include <algorithm>

#include "engine/kamble.h"
#include "engine/rules.h"
#include "objects/runs.h"
#include "simd/simd.h"

namespace {

// Calls `act` with the index of every pixel of value `set` that has a direct neighbour in the frame whose
// value passes `test`, in index order. `act` may change that pixel.
template <typename Test, typename Act>
void forEachBorderPixel(const kAMBLE& engine, const std::uint8_t* mask, std::uint8_t set, Test test,
                        Act act) {
  const std::int32_t width = engine.szImgX;
  for (std::int32_t begin = 0; begin < engine.numPixel; begin += width) {
    const std::uint8_t* row = mask + begin;
    const std::int32_t pixels = std::min(width, engine.numPixel - begin);
    const std::int32_t below = std::min(width, engine.numPixel - begin - pixels);  // pixels of the next row
    for (std::int32_t x = lm::findPixel(row, 0, pixels, set, true); x < pixels;
         x = lm::findPixel(row, x + 1, pixels, set, true)) {
      if ((x > 0 && test(row[x - 1])) || (x + 1 < pixels && test(row[x + 1])) ||
          (begin > 0 && test(row[x - width])) || (x < below && test(row[x + width]))) {
        act(begin + x);
      }
    }
  }
}

// Clears the neighbours of value `set` of the listed pixels from `from` on, and lists them behind.
void clearNeighbours(const kAMBLE& engine, std::uint8_t* mask, std::size_t from, std::uint8_t set,
                     std::uint8_t cleared, std::vector<int>& list) {
  const std::size_t end = list.size();
  for (std::size_t i = from; i < end; ++i) {
    const int128_t& neighbours = engine.nbr4Idx[static_cast<std::size_t>(list[i])];
    for (const std::int32_t index : {neighbours.left, neighbours.right, neighbours.up, neighbours.down}) {
      if (index == -1 || mask[index] != set) continue;
      mask[index] = cleared;
      list.push_back(index);
    }
  }
}

bool isSized(const kAMBLE& engine) {
  return engine.szImgX >= 1 && engine.nbr4Idx.size() >= lm::countOf(engine.numPixel);
}

}  // namespace

int kAMBLE::dilate_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t relabel, int passes) {
  if (mask == nullptr || !isSized(*this)) return 0;
  // Kept: a pass marks border pixels of the set regions and sets them back, so it leaves the mask as it was,
  // and every further pass does the same again.
  if (passes >= 1) {
    morphList.clear();
    forEachBorderPixel(
        *this, mask, set, [set](std::uint8_t value) { return value != set; },
        [&](std::int32_t pixel) {
          mask[pixel] = static_cast<std::uint8_t>(set - 1);
          morphList.push_back(pixel);
        });
    for (const int pixel : morphList) mask[pixel] = set;
  }
  if (relabel != set) simd::replace_if_u8(mask, mask + lm::countOf(numPixel), set, relabel);
  return 1;
}

int kAMBLE::erode_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t cleared, int passes) {
  if (mask == nullptr || !isSized(*this)) return 0;
  if (passes < 1) return 1;
  morphList.clear();
  forEachBorderPixel(
      *this, mask, set, [cleared](std::uint8_t value) { return value == cleared; },
      [&](std::int32_t pixel) { morphList.push_back(pixel); });
  for (const int pixel : morphList) mask[pixel] = cleared;
  if (set == cleared) return 1;

  // From the second pass on a pixel that borders cleared ones borders one that the pass before cleared.
  std::size_t from = 0;
  for (int pass = 1; pass < passes && from < morphList.size(); ++pass) {
    const std::size_t next = morphList.size();
    clearNeighbours(*this, mask, from, set, cleared, morphList);
    from = next;
  }
  // The list ends as a scan in index order leaves it: with the pixels of the last pass.
  morphList.erase(morphList.begin(), morphList.begin() + static_cast<std::ptrdiff_t>(from));
  std::sort(morphList.begin(), morphList.end());
  return 1;
}
