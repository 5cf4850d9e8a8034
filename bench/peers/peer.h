// What is raced: something that is handed frames and finds what moves. One file each; the list is in
// list.cpp.
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

  // One frame's work, as far as the foreground mask; the rest of the job follows in find_objects. A peer that
  // cannot be divided does all of it here.
  virtual void find_mask(const cv::Mat& frame, const std::string& time) = 0;
  virtual void find_objects() {}

  // Of the last frame, not timed: the mask, empty where it is not to be had, and the result document.
  virtual cv::Mat mask() const { return {}; }
  virtual std::string document() const { return {}; }
};

// A row of the list.
struct Candidate {
  std::string name;
  bool divided = false;  // the mask is timed on its own as well
  std::function<std::unique_ptr<Peer>(cv::Size)> make;
};

// The shared libraries to race; an empty path leaves its candidate out.
struct Libraries {
  std::string plugin;
  std::string yardstick;
};

std::vector<Candidate> all_candidates(const Libraries& libraries);
const Candidate& named(const std::vector<Candidate>& candidates, const std::string& name);

// What is set where the peers offer a choice, in a line.
std::string peer_settings();

// The names by which results are looked up.
inline constexpr const char* kPlugin = "lightmotion";
inline constexpr const char* kYardstick = "yardstick";
inline constexpr const char* kCopy = "memcpy";

// A region around the middle that covers `share` of the frame, as a configuration document; 1 covers all of
// it.
std::string document_for(cv::Size frame, double share = 1);

std::unique_ptr<Peer> make_plugin(const std::string& library, const std::string& document);
std::unique_ptr<Peer> make_mog2(cv::Size frame);
std::unique_ptr<Peer> make_knn(cv::Size frame);
std::unique_ptr<Peer> make_cnt(cv::Size frame);
std::unique_ptr<Peer> make_copy(cv::Size frame);

}  // namespace lm::bench
