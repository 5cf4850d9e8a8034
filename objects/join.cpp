#include "objects/join.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "base/integers.h"

namespace {

// Boxes come in raster order of their components, so mostly sorted by y, and joining keeps that order. Then
// the search for a partner ends at the first box that begins too far below. Below `limit` the squares of the
// gaps fit 32 bits; above it a gap can come out as any number.
bool isSortedByTop(const std::vector<boxRect>& boxes) {
  constexpr float limit = 16384.0F;
  const auto inBounds = [](const boxRect& box) {
    return box.x >= 0.0F && box.width >= 0.0F && box.x + box.width < limit && box.y >= 0.0F &&
           box.height >= 0.0F && box.y + box.height < limit;
  };
  return std::all_of(boxes.begin(), boxes.end(), inBounds) &&
         std::is_sorted(boxes.begin(), boxes.end(),
                        [](const boxRect& a, const boxRect& b) { return a.y < b.y; });
}

// One pass; returns whether it joined anything. `reach`: a box that begins more than this below another's end
// is not related to it.
template <typename Related>
bool joinPass(std::vector<boxRect>& boxes, float reach, Related related) {
  std::vector<boxRect> joined;
  std::vector<bool> used(boxes.size());
  const bool sorted = isSortedByTop(boxes);
  const auto findPartner = [&](std::size_t i) {
    const float last = boxes[i].y + boxes[i].height + reach;
    for (std::size_t j = i + 1; j < boxes.size(); ++j) {
      if (sorted && boxes[j].y > last) break;
      if (!used[j] && related(boxes[i], boxes[j])) return j;
    }
    return boxes.size();
  };
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (used[i]) continue;
    const std::size_t j = findPartner(i);
    if (j == boxes.size()) {
      joined.push_back(std::move(boxes[i]));
      continue;
    }
    joined.push_back(uni_ncv(boxes[i], boxes[j]));
    used[i] = used[j] = true;
  }
  const bool any = joined.size() < boxes.size();
  boxes.swap(joined);
  return any;
}

template <typename Related>
void joinAll(std::vector<boxRect>& boxes, float reach, Related related) {
  while (boxes.size() >= 2 && joinPass(boxes, reach, related)) {
  }
}

// `position` and `extent` as fractions of `side`; false when the side is not a frame's.
bool scale(float& position, float& extent, std::int32_t side) {
  if (side < 1) {
    position = extent = 0.0F;
    return false;
  }
  position /= static_cast<float>(side);
  extent /= static_cast<float>(side);
  return true;
}

}  // namespace

namespace lm {

void joinNear(std::vector<boxRect>& boxes, float maxGap) {
  constexpr float margin = 2.0F;  // gaps are truncated to whole pixels
  joinAll(boxes, maxGap + margin, [maxGap](boxRect& a, boxRect& b) {
    return static_cast<float>(toInt32(calMinDist_ncv(a, b))) <= maxGap;
  });
}

void joinOverlapping(std::vector<boxRect>& boxes) { joinAll(boxes, 0.0F, isOverlap); }

void dropSmall(std::vector<boxRect>& boxes, std::int32_t minWidth, std::int32_t minHeight) {
  std::erase_if(boxes, [=](const boxRect& box) {
    return box.width < static_cast<float>(minWidth) && box.height < static_cast<float>(minHeight);
  });
}

void toFractions(std::vector<boxRect>& boxes, std::int32_t frameWidth, std::int32_t frameHeight) {
  for (boxRect& box : boxes) {
    if (!scale(box.x, box.width, frameWidth)) {
      std::fprintf(stderr, "Warn: invalid szImgX= %d \n", frameWidth);
    }
    if (!scale(box.y, box.height, frameHeight)) {
      std::fprintf(stderr, "Warn: invalid szImgY= %d \n", frameHeight);
    }
  }
}

}  // namespace lm
