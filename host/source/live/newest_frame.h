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
  struct Taken {
    std::optional<Frame> frame;         // none yet, or already taken
    std::vector<std::string> messages;  // in order
    bool ended = false;                 // no further frame will come
  };

  // Returns false if this dropped the previous frame.
  bool put(Frame frame);
  void put_message(std::string text);
  void end();

  // Waits for a change, at most `longest`.
  Taken take(std::chrono::milliseconds longest);

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::optional<Frame> frame_;
  std::vector<std::string> messages_;
  bool ended_ = false;
};

}  // namespace lm::host::source::live
