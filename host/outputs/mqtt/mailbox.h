// Between the analysing thread and the thread that talks to the broker.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

#include "host/outputs/mqtt/outbox.h"

namespace lm::host::outputs::mqtt {

// No call waits for the other side, except wait_done.
class Mailbox {
 public:
  // Throws Failure if the system cannot create the eventfd.
  explicit Mailbox(std::size_t capacity);
  ~Mailbox();
  Mailbox(const Mailbox&) = delete;
  Mailbox& operator=(const Mailbox&) = delete;

  // For the analysing thread.
  void push(Message message);
  void close();                                        // no further messages: send the rest and end
  void abandon();                                      // end at once
  bool wait_done(std::chrono::milliseconds deadline);  // false on timeout
  std::string take_news();                             // messages since the last call; may be empty
  Outbox::Drops drops();
  std::size_t unsent();  // valid after wait_done

  // For the sending thread.
  std::optional<Message> pop();
  void connected();
  void disconnected(const std::vector<Message>& unacknowledged);
  bool empty();
  bool closing();
  bool abandoned();
  void report(const std::string& news);
  void done(std::size_t in_flight);
  int wake_handle() const { return wake_; }  // readable when there is news
  void woken() const;                        // resets it

 private:
  void wake() const;

  int wake_;
  std::mutex mutex_;
  std::condition_variable changed_;
  Outbox outbox_;
  std::string news_;
  std::size_t in_flight_ = 0;
  bool closing_ = false;
  bool abandoned_ = false;
  bool done_ = false;
};

}  // namespace lm::host::outputs::mqtt
