// Room for one frame between the thread that reads and the one that analyses.
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

// A frame that is not taken before the next one comes is dropped, and what it had to tell goes to that one.
class NewestFrame {
 public:
  struct Taken {
    std::optional<Frame> frame;         // none yet, or none any more
    std::vector<std::string> messages;  // in their order
    bool ended = false;                 // and there will be no frame
  };

  // Returns false when the frame before was dropped for it.
  bool put(Frame frame);
  void put_message(std::string text);
  void end();

  // Waits for a change, for `longest` at most.
  Taken take(std::chrono::milliseconds longest);

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::optional<Frame> frame_;
  std::vector<std::string> messages_;
  bool ended_ = false;
};

}  // namespace lm::host::source::live
