// Outlines that cross themselves.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "config/check/outlines.h"

namespace lm::check {

// Two edges, each by the index of its first corner.
struct Crossing {
  std::size_t first;
  std::size_t second;
};

// The first two edges of a closed outline that cross. Edges that only touch do not cross.
std::optional<Crossing> firstCrossing(const std::vector<Corner>& corners);

}  // namespace lm::check
