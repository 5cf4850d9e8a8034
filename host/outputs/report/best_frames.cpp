#include "host/outputs/report/best_frames.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

#include "host/events/event_tracker.h"

namespace lm::host::outputs::report {
namespace {

constexpr std::size_t kMostCandidates = 8;

}  // namespace

void BestFrames::frame(const cv::Mat& image, const events::Observation& seen) {
  cv::Mat copy;  // copied once, and only if it is kept
  for (const events::EventKind kind : {events::EventKind::kMotion, events::EventKind::kLight}) {
    Candidates& candidates = candidates_[kind];
    Still still{{}, events::boxes_of_kind(seen.boxes, kind), seen.frame, seen.time, 0};
    still.share = events::share_under(still.boxes);
    while (!candidates.empty() && candidates.front().time < seen.time - lookback_) candidates.pop_front();
    while (!candidates.empty() && candidates.back().share < still.share) candidates.pop_back();
    if (candidates.size() == kMostCandidates) continue;
    if (copy.empty() && image.size() == kept_) copy = image.clone();
    if (copy.empty()) cv::resize(image, copy, kept_, 0, 0, cv::INTER_AREA);
    still.image = copy;
    candidates.push_back(std::move(still));
  }
}

// The frame at the event's peak; if it was not kept, the next best of the event.
const Still& BestFrames::candidate(const Candidates& candidates, const events::Event& event) {
  const auto from = std::find_if(candidates.begin(), candidates.end(),
                                 [&](const Still& still) { return still.frame >= event.first_frame; });
  const auto peak = std::find_if(from, candidates.end(),
                                 [&](const Still& still) { return still.frame == event.peak_frame; });
  if (peak != candidates.end()) return *peak;
  return from != candidates.end() ? *from : candidates.back();
}

void BestFrames::follow(const events::Event& event) {
  const Candidates& candidates = candidates_[event.kind];
  const auto [place, is_new] = best_.try_emplace(event.id);
  Still& best = place->second;
  if (candidates.empty() || (!is_new && best.frame == event.peak_frame)) return;
  const Still& still = candidate(candidates, event);
  if (is_new || still.share > best.share) best = still;
}

Still BestFrames::take(const events::Event& event) {
  auto found = best_.extract(event.id);
  if (!found) return {};
  Still still = std::move(found.mapped());
  still.image = still.image.clone();  // another event may share the image
  return still;
}

}  // namespace lm::host::outputs::report
