#include <stdexcept>

#include "bench/peers/peer.h"

namespace lm::bench {

std::vector<Candidate> all_candidates(const Libraries& libraries) {
  std::vector<Candidate> list;
  const auto add_plugin = [&](const char* name, const std::string& library) {
    if (library.empty()) return;
    list.push_back({.name = name,
                    .make = [library](cv::Size frame) { return make_plugin(library, document_for(frame)); }});
  };
  add_plugin(kPlugin, libraries.plugin);
  add_plugin(kYardstick, libraries.yardstick);
  list.push_back({.name = kMog2, .divided = true, .make = make_mog2});
  list.push_back({.name = kCnt, .make = make_cnt});
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
         ", defaults, without shadow detection (MOG2) and without threads (CNT); CNT: mask alone; "
         "complete MOG2: mask, three 3x3 cross erosions, 4-connected components with statistics";
}

}  // namespace lm::bench
