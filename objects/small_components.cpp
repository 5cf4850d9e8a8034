#include "objects/small_components.h"

#include <algorithm>
#include <cassert>

#include "base/integers.h"

namespace lm {
namespace {

constexpr std::int32_t holdFrames = 3;

std::int32_t wholeDistance(boxRect& a, boxRect& b) { return toInt32(calDist_ncv(a, b)); }

std::int32_t largestDistance(std::vector<boxRect>& entries) {
  std::int32_t largest = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    for (std::size_t j = i + 1; j < entries.size(); ++j) {
      largest = std::max(largest, wholeDistance(entries[i], entries[j]));
    }
  }
  return largest;
}

std::int32_t countDown(std::int32_t hold) { return hold >= 1 ? hold - 1 : hold; }

ComponentMinimum recover(ComponentMinimum minimum, std::int32_t configured) {
  if (minimum.working == configured || minimum.hold >= 1) return {minimum.working, countDown(minimum.hold)};
  return {std::min(wrapMul(2, minimum.working), configured), minimum.hold};
}

}  // namespace

void SmallComponents::add(std::int32_t x, std::int32_t y) {
  boxRect entry;
  entry.x = static_cast<float>(x);
  entry.y = static_cast<float>(y);
  entries_.push_back(entry);
  sumX_ += entry.x;
  sumY_ += entry.y;
}

bool SmallComponents::huddle(std::int32_t frameWidth) {
  assert(judgeable());
  const auto count = static_cast<float>(entries_.size());
  boxRect centre;
  centre.x = sumX_ / count;
  centre.y = sumY_ / count;
  std::int32_t farthest = wholeDistance(entries_.front(), centre);
  for (boxRect& entry : entries_) farthest = std::max(farthest, wholeDistance(entry, centre));
  if (static_cast<double>(farthest) > frameWidth * 0.25) return false;
  return !(static_cast<float>(farthest) > static_cast<float>(largestDistance(entries_)) * 0.75F);
}

ComponentMinimum adaptMinimum(ComponentMinimum minimum, std::int32_t configured, bool anyBox,
                              SmallComponents& small, std::int32_t frameWidth) {
  if (anyBox || !small.judgeable()) return recover(minimum, configured);
  if (!small.huddle(frameWidth)) return {minimum.working, countDown(minimum.hold)};
  return {std::max(1, toInt32(minimum.working * 0.25)), holdFrames};
}

}  // namespace lm
