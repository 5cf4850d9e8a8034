// A connection to the broker with a queue and a thread.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "host/outputs/mqtt/link.h"
#include "host/outputs/mqtt/mailbox.h"

namespace lm::host::outputs::mqtt {

// The number of messages that wait for an unreachable broker, not counting states.
inline constexpr std::size_t kCapacity = 1000;

// No call waits for the broker, except wait_done.
class Channel {
 public:
  // Throws Failure (kRefused) for invalid settings.
  explicit Channel(const LinkSettings& settings);
  // Detaches the thread if it is still running: name resolution can take very long.
  ~Channel();
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;

  Mailbox& mailbox() { return *mailbox_; }

  // Waits until everything is sent and the thread has ended, at most until the deadline.
  void wait_done(std::chrono::steady_clock::time_point deadline);

 private:
  std::shared_ptr<Mailbox> mailbox_;
  std::thread thread_;
};

}  // namespace lm::host::outputs::mqtt
