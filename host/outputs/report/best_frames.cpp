#include "host/outputs/report/best_frames.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace lm::host::outputs::report {
namespace {

constexpr std::size_t kMostCandidates = 8;

}  // namespace

void BestFrames::frame(const cv::Mat& image, const events::Observation& seen) {
  image_ = image;
  copy_.release();
  latest_ = {{}, seen.boxes, seen.frame, seen.time, 0};
  for (const events::EventKind kind : {events::EventKind::kMotion, events::EventKind::kLight}) {
    Candidates& candidates = candidates_[kind];
    const double share = events::share_under(events::boxes_of_kind(seen.boxes, kind));
    while (!candidates.empty() && candidates.front().time < seen.time - lookback_) candidates.pop_front();
    while (!candidates.empty() && candidates.back().share < share) candidates.pop_back();
    if (candidates.size() == kMostCandidates) continue;
    candidates.push_back({copied(), seen.boxes, seen.frame, seen.time, share});
  }
}

// Copied once, and only if it is kept.
cv::Mat BestFrames::copied() {
  if (copy_.empty() && image_.size() == kept_) copy_ = image_.clone();
  if (copy_.empty()) cv::resize(image_, copy_, kept_, 0, 0, cv::INTER_AREA);
  return copy_;
}

// The frame at the event's peak; if it was not kept, the best of the others that were kept.
const Still& BestFrames::candidate(const events::Event& event) {
  const Still* best = &latest_;
  double most = -1;
  for (const Still& still : candidates_[event.kind]) {
    if (still.frame < event.first_frame || event.peak_frame == latest_.frame) continue;
    if (still.frame == event.peak_frame) return still;
    const double share = events::share_under(events::boxes_of_event(still.boxes, event));
    if (share > most) best = &still;
    most = std::max(most, share);
  }
  return *best;
}

void BestFrames::follow(const events::Event& event) {
  const auto [place, is_new] = best_.try_emplace(event.id);
  Still& best = place->second;
  if (!is_new && event.peak_frame != latest_.frame) return;
  best = candidate(event);
  if (best.image.empty()) best.image = copied();
  best.boxes = events::boxes_of_event(best.boxes, event);
  best.share = events::share_under(best.boxes);
}

Still BestFrames::take(const events::Event& event) {
  auto found = best_.extract(event.id);
  if (!found) return {};
  Still still = std::move(found.mapped());
  still.image = still.image.clone();  // another event may share the image
  return still;
}

}  // namespace lm::host::outputs::report
