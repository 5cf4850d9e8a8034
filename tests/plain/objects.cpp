// From the foreground mask to boxes: pruning, and the boxes of components.
#include <algorithm>

#include "tests/plain/model.h"

namespace plain {

bool Model::canExtract() const {
  const bool rowsFit = labelRows.empty() || (szImgY <= static_cast<std::int32_t>(labelRows.size()) &&
                                             szImgX <= static_cast<std::int32_t>(labelRows.front().size()));
  const bool sidesFit = !hasSides() || std::int64_t{szImgX} * szImgY <= numPixel;
  return numPixel >= 1 && rowsFit && sidesFit && !roiMask.empty() &&
         nbr4Idx.size() == static_cast<std::size_t>(numPixel);
}

std::vector<Box> Model::objects(std::vector<Byte>& mask) {
  if (!canExtract()) return {};
  dilate(mask, 255, 1, 2, false);
  erode(mask, 1, 0, 3, false);
  prune(mask);
  fillLabels(mask);
  const std::vector<Component> components = label(labelMap, 1);
  for (int y = 0; hasSides() && y < szImgY; ++y) {
    std::copy_n(labelMap.begin() + y * szImgX, szImgX, labelRows[static_cast<std::size_t>(y)].begin());
  }

  std::vector<Box> found;
  std::vector<Vertex> small;
  for (const Component& component : components) {
    markIf(component.count == thrCcPxl2, Branch::componentAtBound);
    if (component.count >= thrCcPxl2) {
      mark(Branch::componentLarge);
      found.push_back(boxOf(component));
    } else if (autoSensitivity) {
      mark(Branch::componentSmallNoted);
      small.push_back(firstPixel(component));
    } else {
      mark(Branch::componentDropped);
    }
  }

  const auto joinAll = [&](const std::function<bool(const Box&, const Box&)>& belong, Branch again) {
    for (bool joined = true, first = true; joined && found.size() >= 2; first = false) {
      markIf(!first, again);
      joined = joinOnce(found, belong);
    }
  };
  joinAll([this](const Box& a, const Box& b) { return near(a, b); }, Branch::gapSecondPass);
  std::erase_if(found, [this](const Box& box) { return !largeEnough(box); });
  joinAll([this](const Box& a, const Box& b) { return overlap(a, b); }, Branch::overlapSecondPass);

  for (Box& box : found) {
    const auto fraction = [](float pixels, int side) {
      return side < 1 ? 0.0F : pixels / static_cast<float>(side);
    };
    box = {fraction(box.x, szImgX), fraction(box.y, szImgY), fraction(box.width, szImgX),
           fraction(box.height, szImgY)};
  }
  adapt(!found.empty(), small);
  return found;
}

void Model::fillLabels(const std::vector<Byte>& mask) {
  if (labelMap.empty()) labelMap.resize(mask.size());
  std::copy(mask.begin(), mask.end(), labelMap.begin());
  if (!hasSides()) return;
  const std::vector<std::uint32_t> row(static_cast<std::size_t>(szImgX));
  if (labelRows.empty()) labelRows.assign(static_cast<std::size_t>(szImgY), row);
}

// The vector kernels skip whole blocks and test the rest with the first entries of the region mask; without
// vectors every pixel is tested with its own entry.
void Model::prune(std::vector<Byte>& mask) {
  const std::size_t block = level_ >= 8 ? 32 : 16;
  const std::size_t rest = level_ >= 2 ? mask.size() % block : mask.size();
  for (std::size_t k = 0; k < rest; ++k) {
    Byte& byte = mask[mask.size() - rest + k];
    if (byte == 0) continue;
    const bool usable = k < roiMask.size() && roiMask[k] == 1;
    mark(usable ? Branch::tailKept : Branch::tailPruned);
    if (!usable) byte = 0;
  }
}

Vertex Model::firstPixel(const Component& component) const {
  if (szImgX == 0) return {0, 0};
  return {component.first % szImgX, component.first / szImgX};
}

// The first empty row or column in every direction from the component's first pixel: a margin of one pixel on
// each side. There is none at the left and top border; if none is found to the right or below, the box gets
// the whole frame's width or height. There is nothing to find beside or below the frame, which a host may
// have made smaller.
Box Model::boxOf(const Component& component) {
  const auto holds = [&](int x, int y) {
    return labelRows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == component.label;
  };
  const auto emptyRow = [&](int y) {
    for (int x = 0; x < szImgX; ++x) {
      if (holds(x, y)) return false;
    }
    return true;
  };
  const auto emptyColumn = [&](int x) {
    for (int y = 0; y < szImgY; ++y) {
      if (holds(x, y)) return false;
    }
    return true;
  };
  const auto [x0, y0] = firstPixel(component);
  const bool inColumns = x0 >= 0 && x0 < szImgX, inRows = y0 >= 0 && y0 < szImgY;
  int top = inRows && szImgX >= 1 ? y0 : -1, bottom = inRows ? y0 : szImgY;
  int left = inColumns ? x0 : -1, right = inColumns ? x0 : szImgX;
  while (top >= 0 && !emptyRow(top)) --top;
  while (left >= 0 && !emptyColumn(left)) --left;
  while (bottom < szImgY && !emptyRow(bottom)) ++bottom;
  while (right < szImgX && !emptyColumn(right)) ++right;
  const bool atLeft = left < 0, atTop = top < 0, atRight = right == szImgX, atBottom = bottom == szImgY;
  markIf(atLeft, Branch::boxAtLeft);
  markIf(atTop, Branch::boxAtTop);
  markIf(atRight, Branch::boxAtRight);
  markIf(atBottom, Branch::boxAtBottom);
  markIf(!atLeft && !atTop && !atRight && !atBottom, Branch::boxInside);
  const int x = std::max(left, 0), y = std::max(top, 0);
  const int width = atRight ? szImgX : right - x + 1;
  const int height = atBottom ? szImgY : bottom - y + 1;
  return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(width),
          static_cast<float>(height)};
}

}  // namespace plain
