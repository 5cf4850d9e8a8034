// Hands the newest shot to waiting viewers.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "host/commands/serve/shot.h"

namespace lm::host::commands::serve {

class Showcase {
 public:
  explicit Showcase(cv::Size pixel_aspect = {1, 1}) : pixel_aspect_(pixel_aspect) {}

  // Numbers the shot and shows it.
  void show(Shot shot);

  // Shows the last one again, because the state has changed.
  void show_again(std::uint64_t state);

  struct View {
    std::shared_ptr<const Shot> shot;  // null on timeout
    std::string jpeg;
  };
  // Waits for a shot with another number than this one (which may be from before a restart of the server).
  // Pictures are encoded once for all viewers, and only on request.
  View wait(std::uint64_t than, std::chrono::milliseconds longest);

  // The current shot, encoded or not; null before the first.
  std::shared_ptr<const Shot> newest();

  // Ends all waiting, now and later.
  void close();

 private:
  struct Shown {
    std::shared_ptr<const Shot> shot;
    std::once_flag once;
    std::string jpeg;
  };
  std::shared_ptr<Shown> other(std::uint64_t than, std::chrono::milliseconds longest);

  const cv::Size pixel_aspect_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::shared_ptr<Shown> shown_;
  bool closed_ = false;
};

}  // namespace lm::host::commands::serve
