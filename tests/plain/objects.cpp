// From the foreground mask to boxes: erosion, pruning, components and their boxes.
#include <algorithm>

#include "tests/plain/model.h"

namespace plain {

std::vector<Box> Model::objects(std::vector<Byte> mask) {
  for (Byte& byte : mask) byte = byte == 255 ? 1 : byte;
  erode(mask);
  prune(mask);
  labelMap.assign(mask.begin(), mask.end());

  std::vector<Box> found;
  std::vector<Vertex> small;
  for (const Component& component : label()) {
    markIf(component.count == thrCcPxl2, Branch::componentAtBound);
    if (component.count >= thrCcPxl2) {
      mark(Branch::componentLarge);
      found.push_back(boxOf(component));
    } else if (autoSensitivity) {
      mark(Branch::componentSmallNoted);
      small.push_back({component.first % szImgX, component.first / szImgX});
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
    box.x /= static_cast<float>(szImgX);
    box.width /= static_cast<float>(szImgX);
    box.y /= static_cast<float>(szImgY);
    box.height /= static_cast<float>(szImgY);
  }
  adapt(!found.empty(), small);
  return found;
}

// Three layers off every region where it borders background; the frame edge does not count as background.
void Model::erode(std::vector<Byte>& mask) {
  for (int pass = 0; pass < 3; ++pass) {
    const std::vector<Byte> before = mask;
    const auto cleared = [&](int x, int y) {
      const bool in = x >= 0 && x < szImgX && y >= 0 && y < szImgY;
      return in && before[static_cast<std::size_t>(y * szImgX + x)] == 0;
    };
    for (int y = 0; y < szImgY; ++y) {
      for (int x = 0; x < szImgX; ++x) {
        Byte& byte = mask[static_cast<std::size_t>(y * szImgX + x)];
        if (byte != 1) continue;
        if (!cleared(x - 1, y) && !cleared(x + 1, y) && !cleared(x, y - 1) && !cleared(x, y + 1)) continue;
        mark(Branch::pixelEroded);
        byte = 0;
      }
    }
  }
}

// The vector kernels leave whole blocks alone and judge the rest by the first entries of the region mask;
// without vectors every pixel is judged by its own entry.
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

// 4-connected regions of 1 in labelMap, in the order of their first pixels.
std::vector<Component> Model::label() {
  std::vector<Component> components;
  for (int start = 0; start < numPixel; ++start) {
    if (labelMap[static_cast<std::size_t>(start)] != 1) continue;
    const std::uint32_t number = static_cast<std::uint32_t>(components.size()) + 2;
    Component component{number, 0, start, szImgX, szImgY, -1, -1};
    std::vector<Vertex> open;
    const auto visit = [&](int x, int y) {
      if (x < 0 || x >= szImgX || y < 0 || y >= szImgY) return;
      std::uint32_t& pixel = labelMap[static_cast<std::size_t>(y * szImgX + x)];
      if (pixel != 1) return;
      pixel = number;
      open.push_back({x, y});
    };
    visit(start % szImgX, start / szImgX);
    while (!open.empty()) {
      const Vertex at = open.back();
      open.pop_back();
      ++component.count;
      component.left = std::min(component.left, at.x);
      component.right = std::max(component.right, at.x);
      component.top = std::min(component.top, at.y);
      component.bottom = std::max(component.bottom, at.y);
      visit(at.x, at.y - 1);
      visit(at.x + 1, at.y);
      visit(at.x, at.y + 1);
      visit(at.x - 1, at.y);
    }
    components.push_back(component);
  }
  return components;
}

// One pixel of margin all round. At the left and top border there is none; a component at the right or bottom
// border gets the whole frame's width or height.
Box Model::boxOf(const Component& component) {
  const bool atLeft = component.left == 0, atTop = component.top == 0;
  const bool atRight = component.right == szImgX - 1, atBottom = component.bottom == szImgY - 1;
  markIf(atLeft, Branch::boxAtLeft);
  markIf(atTop, Branch::boxAtTop);
  markIf(atRight, Branch::boxAtRight);
  markIf(atBottom, Branch::boxAtBottom);
  markIf(!atLeft && !atTop && !atRight && !atBottom, Branch::boxInside);
  const int x = atLeft ? 0 : component.left - 1;
  const int y = atTop ? 0 : component.top - 1;
  const int width = atRight ? szImgX : component.right + 1 - x + 1;
  const int height = atBottom ? szImgY : component.bottom + 1 - y + 1;
  return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(width),
          static_cast<float>(height)};
}

}  // namespace plain
