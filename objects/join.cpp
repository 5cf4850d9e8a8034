#include "objects/join.h"

#include <cstdio>

#include "engine/rules.h"

namespace {

// One pass; returns whether it joined anything.
template <typename Related>
bool joinPass(std::vector<boxRect>& boxes, Related related) {
  std::vector<boxRect> joined;
  std::vector<bool> used(boxes.size());
  const auto findPartner = [&](std::size_t i) {
    std::size_t j = i + 1;
    while (j < boxes.size() && (used[j] || !related(boxes[i], boxes[j]))) ++j;
    return j;
  };
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (used[i]) continue;
    const std::size_t j = findPartner(i);
    if (j == boxes.size()) {
      joined.push_back(boxes[i]);
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
void joinAll(std::vector<boxRect>& boxes, Related related) {
  while (boxes.size() >= 2 && joinPass(boxes, related)) {
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
  joinAll(boxes, [maxGap](boxRect& a, boxRect& b) {
    return static_cast<float>(toInt32(calMinDist_ncv(a, b))) <= maxGap;
  });
}

void joinOverlapping(std::vector<boxRect>& boxes) { joinAll(boxes, isOverlap); }

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
