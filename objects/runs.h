// Connected components by runs: each row is cut into runs of the searched value, runs that touch in
// neighbouring rows are united, and components are numbered in raster order of their first pixels.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "objects/component.h"

namespace lm {

// A component and the rows and columns that it spans.
struct SpannedComponent {
  ccObj component;
  std::int32_t left, top, right, bottom;
};

class RunLabeller {
 public:
  // `width`: pixels in a row.
  explicit RunLabeller(std::int32_t width) : width_(width) {}

  // Takes the runs of `value` in row `y` of `pixels` pixels. Rows come in rising order; rows without a run
  // may be left out.
  template <typename Pixel>
  void addRow(const Pixel* row, std::int32_t y, std::int32_t pixels, Pixel value);

  // Writes every run's label into `labels` (the whole map) and lists the components in raster order of their
  // first pixels. Labels count from 2 and leave out `value`.
  std::vector<SpannedComponent> label(std::uint32_t* labels, std::uint32_t value);

 private:
  struct Run {
    std::int32_t row;
    std::int32_t begin, end;  // columns [begin, end)
    std::uint32_t parent;     // index of an earlier run of the same component, or the run's own
  };

  std::uint32_t root(std::uint32_t run);
  void unite(std::uint32_t a, std::uint32_t b);
  void uniteWithRowAbove(std::size_t rowBegin);

  std::int32_t width_;
  std::vector<Run> runs_;
  std::size_t aboveBegin_ = 0;  // the runs of the row that was added last
  std::size_t aboveEnd_ = 0;
};

// First position in [from, end) where `row` holds `value` (or does not, for `same` false); `end` when there
// is none.
template <typename Pixel>
std::int32_t findPixel(const Pixel* row, std::int32_t from, std::int32_t end, Pixel value, bool same) {
  if constexpr (sizeof(Pixel) == 1) {
    if (same) {
      if (from < end && row[from] == value) return from;  // a run goes on: no search
      const void* found = std::memchr(row + from, value, static_cast<std::size_t>(end - from));
      return found == nullptr ? end : static_cast<std::int32_t>(static_cast<const Pixel*>(found) - row);
    }
  }
  while (from < end && (row[from] == value) != same) ++from;
  return from;
}

template <typename Pixel>
void RunLabeller::addRow(const Pixel* row, std::int32_t y, std::int32_t pixels, Pixel value) {
  const std::size_t rowBegin = runs_.size();
  for (std::int32_t at = findPixel(row, 0, pixels, value, true); at < pixels;) {
    const std::int32_t end = findPixel(row, at + 1, pixels, value, false);
    runs_.push_back({y, at, end, static_cast<std::uint32_t>(runs_.size())});
    at = findPixel(row, end, pixels, value, true);
  }
  uniteWithRowAbove(rowBegin);
}

}  // namespace lm
