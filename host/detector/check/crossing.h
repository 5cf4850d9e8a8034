// Outlines that cross themselves.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "host/detector/check/outlines.h"

namespace lm::host::detector::check {

// Two edges, each by the index of its first corner.
struct Crossing {
  std::size_t first;
  std::size_t second;
};

// The first two edges of a closed outline that cross. Edges that only touch do not cross.
std::optional<Crossing> first_crossing(const std::vector<Corner>& corners);

}  // namespace lm::host::detector::check
