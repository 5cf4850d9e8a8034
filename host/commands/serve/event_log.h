// Events and timeline of a video that is played in a loop.
#pragma once

#include <json/json.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "host/events/listener.h"

namespace lm::host::commands::serve {

// Entries of an earlier pass over the video stay until the current pass reaches them.
class EventLog {
 public:
  static constexpr std::size_t kMostEvents = 500;
  static constexpr std::size_t kMostSeconds = 14'400;  // four hours

  // Starts a new pass over the video. The returned listener writes to this log, which must outlive it.
  std::unique_ptr<events::EventListener> begin_pass();

  // {"events":[...],"activity":[...]}, the newest event first.
  Json::Value value() const;

  // Events of the current pass.
  std::int64_t events() const;

 private:
  friend class EventLogWriter;
  struct Entry {
    std::uint64_t pass = 0;
    std::uint64_t number = 0;
    events::Event event;
  };
  struct Second {
    std::uint64_t pass = 0;
    double share = 0;
  };
  void frame(std::uint64_t pass, const events::Observation& seen);
  void begun(std::uint64_t pass, const events::Event& event);
  void changed(std::uint64_t pass, const events::Event& event);
  void forget_what_is_overtaken(std::uint64_t pass, std::chrono::microseconds time);

  mutable std::mutex mutex_;
  std::uint64_t pass_ = 0;
  std::uint64_t last_number_ = 0;
  std::int64_t events_ = 0;
  std::optional<std::chrono::microseconds> pass_start_;  // time of the current pass's first frame
  std::deque<Entry> entries_;
  std::map<std::int64_t, Second> activity_;
};

}  // namespace lm::host::commands::serve
