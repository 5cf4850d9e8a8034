// A detector under comparison. One file each; the list is in list.cpp.
#pragma once

#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace lm::bench {

class Peer {
 public:
  virtual ~Peer() = default;

  // Processes a frame up to the foreground mask; the rest is done in find_objects. A detector without
  // separate steps does everything here.
  virtual void find_mask(const cv::Mat& frame, const std::string& time) = 0;
  virtual void find_objects() {}

  // For the last frame, not timed: the mask, empty if not available, and the result document.
  virtual cv::Mat mask() const { return {}; }
  virtual std::string document() const { return {}; }
};

// An entry of the list.
struct Candidate {
  std::string name;
  bool divided = false;  // the mask is also timed separately
  bool grey = false;     // gets frames of one channel
  std::function<std::unique_ptr<Peer>(cv::Size)> make;
};

// The shared libraries to compare; an empty path omits its candidate.
struct Libraries {
  std::string plugin;
  std::string yardstick;
};

std::vector<Candidate> all_candidates(const Libraries& libraries);
const Candidate& named(const std::vector<Candidate>& candidates, const std::string& name);

// The peers' optional settings, in one line.
std::string peer_settings();

// The names of candidates in the results.
inline constexpr const char* kPlugin = "lightmotion";
inline constexpr const char* kYardstick = "yardstick";
inline constexpr const char* kMog2 = "MOG2";
inline constexpr const char* kCnt = "CNT mask";

// A configuration with a centred region that covers `share` of the frame; 1: the whole frame.
std::string document_for(cv::Size frame, double share = 1, int channels = 3);

std::unique_ptr<Peer> make_plugin(const std::string& library, const std::string& document);
std::unique_ptr<Peer> make_mog2(cv::Size frame);
std::unique_ptr<Peer> make_cnt(cv::Size frame);

}  // namespace lm::bench
