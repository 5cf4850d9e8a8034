#include <stdexcept>

#include "bench/peers/peer.h"

namespace lm::bench {

std::vector<Candidate> all_candidates(const Libraries& libraries) {
  std::vector<Candidate> list;
  const auto add_plugin = [&](const char* name, const std::string& library) {
    if (library.empty()) return;
    list.push_back(
        {name, false, [library](cv::Size frame) { return make_plugin(library, document_for(frame)); }});
  };
  add_plugin(kPlugin, libraries.plugin);
  add_plugin(kYardstick, libraries.yardstick);
  list.push_back({"MOG2", true, make_mog2});
  list.push_back({"KNN", true, make_knn});
  list.push_back({"CNT", true, make_cnt});
  list.push_back({kCopy, false, make_copy});
  return list;
}

const Candidate& named(const std::vector<Candidate>& candidates, const std::string& name) {
  for (const Candidate& candidate : candidates) {
    if (candidate.name == name) return candidate;
  }
  throw std::invalid_argument("no candidate " + name);
}

std::string peer_settings() {
  return "OpenCV " CV_VERSION
         ", defaults, without shadow detection (MOG2, KNN) and without threads (CNT); "
         "complete detector: mask, three 3x3 cross erosions, 4-connected components with statistics";
}

}  // namespace lm::bench
