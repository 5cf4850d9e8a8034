#include "tests/host/objects_identity.h"

#include <algorithm>
#include <map>
#include <set>

namespace identity {
namespace {

using Common = std::map<std::int64_t, std::map<std::int64_t, int>>;  // frames by true and reported id

double overlap(const cv::Rect2d& a, const cv::Rect2d& b) {
  const double common = (a & b).area();
  return common / (a.area() + b.area() - common);
}

Common in_common(const Frames& truth, const Frames& reported) {
  Common common;
  for (std::size_t i = 0; i < truth.size(); ++i) {
    for (const Named& object : truth[i]) {
      std::set<std::int64_t> ids;
      for (const Named& box : reported[i]) {
        if (overlap(object.box, box.box) >= 0.5) ids.insert(box.id);
      }
      for (const std::int64_t id : ids) ++common[object.id][id];
    }
  }
  return common;
}

int most_in_common(Common::const_iterator from, Common::const_iterator end, std::set<std::int64_t>& taken) {
  if (from == end) return 0;
  int most = most_in_common(std::next(from), end, taken);
  for (const auto& [id, frames] : from->second) {
    if (!taken.insert(id).second) continue;
    most = std::max(most, frames + most_in_common(std::next(from), end, taken));
    taken.erase(id);
  }
  return most;
}

std::size_t count(const Frames& frames) {
  std::size_t boxes = 0;
  for (const auto& frame : frames) boxes += frame.size();
  return boxes;
}

}  // namespace

double id_f1(const Frames& truth, const Frames& reported) {
  const Common common = in_common(truth, reported);
  std::set<std::int64_t> taken;
  const int positives = most_in_common(common.begin(), common.end(), taken);
  return 2.0 * positives / static_cast<double>(count(truth) + count(reported));
}

Frames best_named(const Frames& truth, const std::vector<std::vector<cv::Rect2d>>& boxes) {
  Frames frames(boxes.size());
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    for (const cv::Rect2d& box : boxes[i]) {
      Named best{-1, box};
      double most = 0;
      for (const Named& object : truth[i]) {
        const double common = overlap(object.box, box);
        if (common > most) best.id = object.id;
        most = std::max(most, common);
      }
      frames[i].push_back(best);
    }
  }
  return frames;
}

}  // namespace identity
