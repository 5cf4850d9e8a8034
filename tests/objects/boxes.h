// Boxes in tests: a short constructor, comparison and printing.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "objects/box.h"
#include "tests/support/by_name.h"

inline bool operator==(const boxRect& a, const boxRect& b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height && a.names == b.names;
}

inline void PrintTo(const boxRect& box, std::ostream* out) {
  *out << "(" << box.x << ", " << box.y << ", " << box.width << ", " << box.height << ")";
  for (const std::string& name : box.names) {
    *out << " " << name;
  }
}

namespace lm::test {

using Boxes = std::vector<boxRect>;

inline boxRect box(float x, float y, float width, float height) { return {x, y, width, height, {}}; }

}  // namespace lm::test
