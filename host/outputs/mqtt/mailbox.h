// Between the thread that analyses and the one that talks to the broker.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

#include "host/outputs/mqtt/outbox.h"

namespace lm::host::outputs::mqtt {

// Nobody waits for the other side here, but for wait_done.
class Mailbox {
 public:
  // Throws Failure where the system gives no handle for waking.
  explicit Mailbox(std::size_t capacity);
  ~Mailbox();
  Mailbox(const Mailbox&) = delete;
  Mailbox& operator=(const Mailbox&) = delete;

  // For the thread that analyses.
  void push(Message message);
  void close();                                        // everything is in: send it and end
  void abandon();                                      // end at once
  bool wait_done(std::chrono::milliseconds deadline);  // false when it passed
  std::string take_news();                             // what happened since it was last asked; may be empty
  Outbox::Drops drops();
  std::size_t unsent();  // once done

  // For the thread that sends.
  std::optional<Message> pop();
  void renew_standing();
  bool empty();
  bool closing();
  bool abandoned();
  void report(const std::string& news);
  void done(std::size_t in_flight);
  int wake_handle() const { return wake_; }  // readable when something is new
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
