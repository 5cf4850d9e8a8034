// The newest shot, and whoever waits for it.
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

  // Gives the shot its number and shows it.
  void show(Shot shot);

  // Shows the last one once more, because the state has changed.
  void show_again(std::uint64_t state);

  struct View {
    std::shared_ptr<const Shot> shot;  // none when nothing new came in time
    std::string jpeg;
  };
  // Waits for another shot than the one of that number (which may be from before the server was started
  // anew). The picture is encoded once for all, and only when somebody asks.
  View wait(std::uint64_t than, std::chrono::milliseconds longest);

  // What is shown now, encoded or not; none before the first.
  std::shared_ptr<const Shot> newest();

  // Nobody waits any more, now or later.
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
