#include "host/detector/clutter.h"

#include <algorithm>

namespace lm::host::detector {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

constexpr std::size_t kBefore = 3;  // frames in which a box may have a companion
constexpr std::size_t kAfter = 3;
constexpr double kNew = 1.0 / 20;  // weight of a frame in the rate
constexpr double kMany = 0.12;     // lonely boxes per frame: too many
constexpr double kFew = 0.02;      // so few that fewer layers are tried
constexpr auto kVain = 30s;        // patience after the first clutter, doubled by each
constexpr auto kLongest = 10min;
constexpr int kFewest = 1;
constexpr int kMost = 3;

// With half of its sides around it.
cv::Rect around(const cv::Rect& box) {
  return {box.x - box.width / 2, box.y - box.height / 2, 2 * box.width, 2 * box.height};
}

}  // namespace

// The boxes of the frame before the last kAfter that have no companion.
int ClutterRule::lonely() const {
  const std::size_t judged = kBefore;
  const auto alone = [&](const cv::Rect& box) {
    const cv::Rect place = around(box);
    for (std::size_t i = 0; i < frames_.size(); ++i) {
      if (i == judged) continue;
      if (std::ranges::any_of(frames_[i], [&](const cv::Rect& other) { return (other & place).area() > 0; }))
        return false;
    }
    return true;
  };
  return static_cast<int>(std::ranges::count_if(frames_[judged], alone));
}

int ClutterRule::change(int by, microseconds time) {
  peel_ += by;
  rate_ = 0;
  since_ = time;
  return peel_;
}

std::optional<int> ClutterRule::update(const std::vector<cv::Rect>& boxes, microseconds time) {
  if (!since_) since_ = time;
  frames_.push_back(boxes);
  if (frames_.size() > kBefore + 1 + kAfter) frames_.pop_front();
  if (frames_.size() < kBefore + 1 + kAfter) return std::nullopt;
  rate_ += kNew * (lonely() - rate_);
  if (rate_ > kFew) since_ = time;
  if (rate_ > kMany && peel_ < kMost) {
    patience_ = std::clamp<microseconds>(2 * patience_, kVain, kLongest);
    return change(1, time);
  }
  if (peel_ > kFewest && time - *since_ >= patience_) return change(-1, time);
  return std::nullopt;
}

}  // namespace lm::host::detector
