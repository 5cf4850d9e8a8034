// Connected components by runs: each row is cut into runs of set pixels, runs that touch in neighbouring rows
// are united, and components are numbered in raster order of their first pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "objects/component.h"

namespace lm::compact {

// A component and the rows and columns that it spans.
struct SpannedComponent {
  ccObj component;
  std::int32_t left, top, right, bottom;
};

// Set pixels of a row: columns [begin, end).
struct Run {
  std::int32_t begin, end;
  std::uint32_t parent;  // index of an earlier run of the same component, or the run's own
};

// The runs of a row.
struct RunsOfRow {
  std::int32_t y;
  std::uint32_t begin, end;  // indices
};

// Its storage is kept from one map to the next.
class RunLabeller {
 public:
  // Forgets all runs. `width`: pixels in a row.
  void start(std::int32_t width);

  // Adds the runs of row `y`, `words` words of bits with a blank word before and after. Rows come in rising
  // order; rows without a run may be left out.
  void addRow(const std::uint64_t* bits, std::size_t words, std::int32_t y);

  // Lists the components in raster order of their first pixels; the runs' parents become components. Labels
  // count from 2.
  const std::vector<SpannedComponent>& number();
  const std::vector<SpannedComponent>& components() const { return components_; }

  // After number(): the index of the component that holds the pixel, which is in a run.
  std::size_t componentAt(std::int32_t x, std::int32_t y) const;

 private:
  std::uint32_t root(std::uint32_t run);
  void unite(std::uint32_t a, std::uint32_t b);
  void uniteWithRowAbove(const RunsOfRow& above, const RunsOfRow& below);

  std::int32_t width_ = 0;
  std::vector<std::uint64_t> edges_;  // 1 where a pixel and the one to its left differ
  std::vector<Run> runs_;
  std::vector<RunsOfRow> rows_;
  std::vector<SpannedComponent> components_;
};

}  // namespace lm::compact
