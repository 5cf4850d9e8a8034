#include "objects/region_names.h"

#include <algorithm>

#include "base/integers.h"
#include "simd/simd.h"

namespace {

constexpr std::uint8_t foreground = 255;

// Two planes of the same frame.
struct Planes {
  const std::uint8_t* fgMask;
  const std::uint8_t* regionMask;
  int width;
  int height;

  std::int64_t pixels() const { return std::int64_t{width} * height; }
};

// The part of a row before the first or after the last pixel of the frame must not be read: such a row is
// tested on a copy in which nothing there matches. Row: indices [start, start + columns).
bool edgeRowTouches(const Planes& planes, std::int64_t start, std::int64_t columns) {
  constexpr std::int64_t chunk =
      64;  // a multiple of the kernels' blocks, so that what is left out moves no block
  const std::int64_t skip = start < 0 ? -start / chunk * chunk : 0;
  start += skip;
  columns -= skip;
  const std::int64_t inside = planes.pixels() - start;
  const auto kept = std::min(columns, (inside + chunk - 1) / chunk * chunk);
  const std::int64_t from = std::max<std::int64_t>(0, -start);
  const std::int64_t to = std::min(kept, inside);
  if (from >= to) return false;

  std::vector<std::uint8_t> fg(static_cast<std::size_t>(kept));
  std::vector<std::uint8_t> region(static_cast<std::size_t>(kept));
  std::copy(planes.fgMask + start + from, planes.fgMask + start + to, fg.data() + from);
  std::copy(planes.regionMask + start + from, planes.regionMask + start + to, region.data() + from);
  const int width = static_cast<int>(kept);
  return simd::isTouch({0, 0, width, 1}, fg.data(), region.data(), width, 1);
}

// simd::isTouch on a box that may reach past the frame.
bool boxTouches(const boxRect& box, const Planes& planes) {
  const std::int64_t x = lm::toInt32(box.x);
  const std::int64_t y = lm::toInt32(box.y);
  const std::int64_t columns = lm::toInt32(box.width);
  const std::int64_t rows = lm::toInt32(box.height);
  if (columns < 1 || planes.width < 1 || planes.height < 1) return false;

  // Rows that end before the first pixel are skipped.
  std::int64_t row = std::max<std::int64_t>(0, -y - (x + columns) / planes.width);
  while (row < rows) {
    const std::int64_t start = (y + row) * planes.width + x;
    if (start >= planes.pixels()) return false;
    if (start < 0 || start + columns > planes.pixels()) {
      if (edgeRowTouches(planes, start, columns)) return true;
      ++row;
      continue;
    }
    const std::int64_t whole = std::min(rows - row, (planes.pixels() - columns - start) / planes.width + 1);
    const auto column = static_cast<int>(start % planes.width);
    const auto line = static_cast<int>(start / planes.width);
    if (simd::isTouch({column, line, static_cast<int>(columns), static_cast<int>(whole)}, planes.fgMask,
                      planes.regionMask, planes.width, planes.height)) {
      return true;
    }
    row += whole;
  }
  return false;
}

}  // namespace

void addRoiName2Obj(std::vector<boxRect>& boxes, const std::vector<polygon>& regions,
                    const std::uint8_t* fgMask, int width, int height) {
  if (fgMask == nullptr) return;
  for (boxRect& box : boxes) {
    for (const polygon& region : regions) {
      if (region.mask == nullptr ||
          !boxTouches(box, {.fgMask = fgMask, .regionMask = region.mask, .width = width, .height = height}))
        continue;
      box.names.push_back(region.name);
    }
  }
}

bool isTouch(const boxRect& box, const std::uint8_t* fgMask, const std::uint8_t* regionMask, int width,
             int height) {
  const int columnsEnd = std::min(width, lm::toInt32(box.x + box.width));
  const int rowsEnd = std::min(height, lm::toInt32(box.y + box.height));
  for (int row = 0; row < rowsEnd; ++row) {
    for (int column = 0; column < columnsEnd; ++column) {
      const std::ptrdiff_t pixel = std::ptrdiff_t{row} * width + column;
      if (static_cast<float>(column) >= box.x && static_cast<float>(row) >= box.y &&
          fgMask[pixel] == foreground && regionMask[pixel] == 1) {
        return true;
      }
    }
  }
  return false;
}
