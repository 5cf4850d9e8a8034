// The marker-based morphology: changed pixels hold a marker value until a pass over the whole mask replaces
// it.
#include <algorithm>

#include "base/integers.h"
#include "engine/kamble.h"

namespace {

// Whether `test` holds for the mask value of any direct neighbour of the pixel within the frame.
template <typename Test>
bool anyNeighbour(const kAMBLE& engine, const std::uint8_t* mask, std::int32_t pixel, Test test) {
  const int128_t& neighbours = engine.nbr4Idx[static_cast<std::size_t>(pixel)];
  for (const std::int32_t index : {neighbours.left, neighbours.right, neighbours.up, neighbours.down}) {
    if (index != -1 && test(mask[index])) return true;
  }
  return false;
}

// Gives `marker` to every pixel of value `set` that has a neighbour which passes `test`, in index order and
// at once, then turns every `marker` into `turned`: a byte that held the marker before is turned as well.
template <typename Test>
void markAndTurn(const kAMBLE& engine, std::uint8_t* mask, std::uint8_t set, std::uint8_t marker,
                 std::uint8_t turned, Test test) {
  for (std::int32_t pixel = 0; pixel < engine.numPixel; ++pixel) {
    if (mask[pixel] == set && anyNeighbour(engine, mask, pixel, test)) mask[pixel] = marker;
  }
  std::replace(mask, mask + lm::countOf(engine.numPixel), marker, turned);
}

}  // namespace

int kAMBLE::dilate_ncv(std::uint8_t* mask, std::uint8_t set, std::uint8_t relabel, int passes) {
  const std::size_t count = lm::countOf(numPixel);
  if (mask == nullptr || nbr4Idx.size() != count) return 0;
  const auto marker = static_cast<std::uint8_t>(set - 1);
  const auto notSet = [set](std::uint8_t value) { return value != set; };
  for (int pass = 0; pass < passes; ++pass) markAndTurn(*this, mask, set, marker, set, notSet);
  if (relabel != set) std::replace(mask, mask + count, set, relabel);
  return 1;
}

int kAMBLE::erode_ncv(std::uint8_t* mask, std::uint8_t set, std::uint8_t cleared, int passes) {
  if (mask == nullptr || nbr4Idx.size() != lm::countOf(numPixel)) return 0;
  auto marker = static_cast<std::uint8_t>(cleared + 1);
  if (marker == set) marker = static_cast<std::uint8_t>(cleared + 2);
  const auto isCleared = [cleared](std::uint8_t value) { return value == cleared; };
  for (int pass = 0; pass < passes; ++pass) markAndTurn(*this, mask, set, marker, cleared, isCleared);
  return 1;
}
