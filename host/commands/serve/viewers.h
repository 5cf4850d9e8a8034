// The viewers of the page, and their limits.
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>

namespace lm::host::commands::serve {

class Viewers {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t kMost = 8;
  // Waiting requests per viewer: one, and one that the browser has abandoned.
  static constexpr int kMostWaiting = 2;
  static constexpr std::chrono::seconds kGoneAfter{10};

  // Whether the viewer may wait for a picture; if so, `leave` must follow.
  bool enter(const std::string& id, Clock::time_point now);
  void leave(const std::string& id, Clock::time_point now);

  std::size_t count(Clock::time_point now);

 private:
  struct Viewer {
    Clock::time_point seen;
    int waiting = 0;
  };
  void forget_the_gone(Clock::time_point now);

  std::mutex mutex_;
  std::map<std::string, Viewer> viewers_;
};

}  // namespace lm::host::commands::serve
