// IDF1: how well reported identities follow true ones (Ristani et al. 2016).
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

namespace identity {

struct Named {
  std::int64_t id = 0;
  cv::Rect2d box;
};
using Frames = std::vector<std::vector<Named>>;

// The one-to-one pairing of true and reported identities with the most frames in common gives the true
// positives; a frame is in common when the boxes overlap (IoU) by half. IDF1 is twice these by the number of
// true and reported boxes. Tries all pairings, so for a few true identities only.
double id_f1(const Frames& truth, const Frames& reported);

// The same boxes, each with the true identity that it overlaps most: no tracker does better.
Frames best_named(const Frames& truth, const std::vector<std::vector<cv::Rect2d>>& boxes);

}  // namespace identity
