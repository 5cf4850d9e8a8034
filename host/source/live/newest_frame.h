// A one-frame buffer between the reading and the analysing thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/source/source.h"

namespace lm::host::source::live {

// A frame not taken before the next one arrives is dropped; its note passes to that frame.
class NewestFrame {
 public:
  // What happened to the source: a message, a new state or both.
  struct News {
    std::string message;
    std::optional<SourceState> state{};
  };
  struct Taken {
    std::optional<Frame> frame;  // none yet, or already taken
    std::vector<News> news;      // in order, all from before the frame
    bool ended = false;          // no further frame will come
  };

  // Returns false if this dropped the previous frame.
  bool put(Frame frame);
  void put_news(News news);
  void end();

  // Waits for a change, at most `longest`.
  Taken take(std::chrono::milliseconds longest);

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::optional<Frame> frame_;
  std::vector<News> news_;
  std::size_t news_before_frame_ = 0;
  bool ended_ = false;
};

}  // namespace lm::host::source::live
