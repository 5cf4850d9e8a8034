// Labelling the 4-connected regions of a map.
#include <algorithm>
#include <vector>

#include "base/integers.h"
#include "engine/kamble.h"
#include "objects/component.h"
#include "objects/neighbour_test.h"

namespace {

// The pixel's first direct neighbour that still holds `value`, or -1.
std::int32_t nextUnlabelled(const int128_t& neighbours, const std::uint32_t* labels, std::uint32_t value) {
  for (const std::int32_t index : {neighbours.up, neighbours.right, neighbours.down, neighbours.left}) {
    if (index != -1 && labels[index] == value) return index;
  }
  return -1;
}

// Labels the region around `seed`, depth first. The stack is not the call stack, which a region as large as
// the frame would exhaust. Returns the number of pixels.
std::int32_t fillRegion(const kAMBLE& engine, std::uint32_t* labels, std::uint32_t value, std::uint32_t label,
                        std::int32_t seed, std::vector<std::int32_t>& stack) {
  std::int32_t count = 1;
  labels[seed] = label;
  stack.push_back(seed);
  while (!stack.empty()) {
    const auto top = static_cast<std::size_t>(stack.back());
    const std::int32_t next = nextUnlabelled(engine.nbr4Idx[top], labels, value);
    if (next == -1) {
      stack.pop_back();
      continue;
    }
    labels[next] = label;
    stack.push_back(next);
    ++count;
  }
  return count;
}

// Labels count from 2 and never take the value that is searched.
std::uint32_t skipValue(std::uint32_t label, std::uint32_t value) {
  return label == value ? label + 1 : label;
}

}  // namespace

std::vector<ccObj> kAMBLE::connectedComponent(std::uint32_t* labels, std::uint8_t value) {
  std::vector<ccObj> components;
  if (labels == nullptr || !lm::hasDirectNeighbours(*this)) return components;
  const std::uint32_t searched = value;
  std::uint32_t* const end = labels + lm::countOf(numPixel);
  std::vector<std::int32_t> stack;
  std::uint32_t label = skipValue(2, searched);
  for (std::uint32_t* at = std::find(labels, end, searched); at != end; at = std::find(at, end, searched)) {
    const auto seed = static_cast<std::int32_t>(at - labels);
    const std::int32_t count = fillRegion(*this, labels, searched, label, seed, stack);
    components.push_back({label, count, seed});
    label = skipValue(label + 1, searched);
  }
  return components;
}
