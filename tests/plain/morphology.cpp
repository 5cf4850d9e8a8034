// Erosion, dilation and labelling, using the table of direct neighbours.
#include <algorithm>

#include "tests/plain/model.h"

namespace plain {

// Whether `test` holds for any of the pixel's direct neighbours inside the frame.
bool Model::anyNeighbour(std::size_t pixel, const std::function<bool(std::size_t)>& test) const {
  const FourNeighbours& around = nbr4Idx[pixel];
  for (const std::int32_t index : {around.left, around.right, around.up, around.down}) {
    if (index != -1 && test(static_cast<std::size_t>(index))) return true;
  }
  return false;
}

// A pass marks pixels of the regions and resets them: only pixels that held the marker before keep the new
// value.
int Model::dilate(std::vector<Byte>& mask, Byte set, Byte relabel, int passes, bool marked) {
  if (nbr4Idx.size() != static_cast<std::size_t>(numPixel)) return 0;
  const Byte marker = static_cast<Byte>(set - 1);
  if (marked && passes >= 1) std::replace(mask.begin(), mask.end(), marker, set);
  std::replace(mask.begin(), mask.end(), set, relabel);
  return 1;
}

// Each pass removes one layer of every region of `set` where it borders `cleared`; the frame edge does not
// count.
int Model::erode(std::vector<Byte>& mask, Byte set, Byte cleared, int passes, bool marked) {
  if (nbr4Idx.size() != static_cast<std::size_t>(numPixel)) return 0;
  const Byte next = static_cast<Byte>(cleared + 1);
  const Byte marker = next == set ? static_cast<Byte>(cleared + 2) : next;
  for (int pass = 0; pass < passes; ++pass) {
    const std::vector<Byte> before = mask;
    for (std::size_t i = 0; i < mask.size(); ++i) {
      if (before[i] != set) continue;
      if (!anyNeighbour(i, [&](std::size_t n) { return before[n] == cleared; })) continue;
      mark(Branch::pixelEroded);
      mask[i] = cleared;
    }
    if (marked) std::replace(mask.begin(), mask.end(), marker, cleared);
  }
  return 1;
}

// Connected regions of `value`, ordered by their first pixels; they get the labels 2, 3, ..., skipping
// `value`.
std::vector<Component> Model::label(std::vector<std::uint32_t>& labels, Byte value) {
  std::vector<Component> components;
  if (nbr4Idx.size() != static_cast<std::size_t>(numPixel)) return components;
  std::uint32_t number = value == 2 ? 3 : 2;
  for (int start = 0; start < numPixel; ++start) {
    if (labels[static_cast<std::size_t>(start)] != value) continue;
    Component component{number, 0, start};
    std::vector<std::int32_t> open;
    const auto visit = [&](std::int32_t pixel) {
      if (pixel == -1 || labels[static_cast<std::size_t>(pixel)] != value) return;
      labels[static_cast<std::size_t>(pixel)] = number;
      open.push_back(pixel);
    };
    visit(start);
    while (!open.empty()) {
      const FourNeighbours& around = nbr4Idx[static_cast<std::size_t>(open.back())];
      open.pop_back();
      ++component.count;
      for (const std::int32_t pixel : {around.up, around.right, around.down, around.left}) visit(pixel);
    }
    components.push_back(component);
    ++number;
    if (number == value) ++number;
  }
  return components;
}

}  // namespace plain
