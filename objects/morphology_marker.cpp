// The marker-based morphology: changed pixels hold a marker value until a pass over the whole mask replaces
// it.
#include <algorithm>

#include "base/integers.h"
#include "engine/kamble.h"
#include "objects/neighbour_test.h"

namespace {

// Gives `marker` to every pixel of value `set` that has a neighbour which passes `test`, in index order and
// at once, then turns every `marker` into `turned`: a byte that held the marker before is turned as well.
template <typename Test>
void markAndTurn(const kAMBLE& engine, std::uint8_t* mask, std::uint8_t set, std::uint8_t marker,
                 std::uint8_t turned, Test test) {
  for (std::int32_t pixel = 0; pixel < engine.numPixel; ++pixel) {
    if (mask[pixel] == set && lm::anyNeighbour(engine, mask, pixel, test)) mask[pixel] = marker;
  }
  std::replace(mask, mask + lm::countOf(engine.numPixel), marker, turned);
}

}  // namespace

int kAMBLE::dilate_ncv(std::uint8_t* mask, std::uint8_t set, std::uint8_t relabel, int passes) {
  if (mask == nullptr || !lm::hasDirectNeighbours(*this)) return 0;
  const auto marker = static_cast<std::uint8_t>(set - 1);
  const auto notSet = [set](std::uint8_t value) { return value != set; };
  for (int pass = 0; pass < passes; ++pass) markAndTurn(*this, mask, set, marker, set, notSet);
  if (relabel != set) std::replace(mask, mask + lm::countOf(numPixel), set, relabel);
  return 1;
}

int kAMBLE::erode_ncv(std::uint8_t* mask, std::uint8_t set, std::uint8_t cleared, int passes) {
  if (mask == nullptr || !lm::hasDirectNeighbours(*this)) return 0;
  auto marker = static_cast<std::uint8_t>(cleared + 1);
  if (marker == set) marker = static_cast<std::uint8_t>(cleared + 2);
  const auto isCleared = [cleared](std::uint8_t value) { return value == cleared; };
  for (int pass = 0; pass < passes; ++pass) markAndTurn(*this, mask, set, marker, cleared, isCleared);
  return 1;
}
