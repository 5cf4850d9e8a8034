// What happened in a video that is shown again and again: its events and a timeline.
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

// What an earlier pass over the video left stays until the present one gets there.
class EventLog {
 public:
  static constexpr std::size_t kMostEvents = 500;
  static constexpr std::size_t kMostSeconds = 14'400;  // four hours

  // A new pass over the video begins. Its listener writes to this log, which outlives it.
  std::unique_ptr<events::EventListener> begin_pass();

  // {"events":[...],"activity":[...]}, the newest event first.
  Json::Value value() const;

  // Events of the present pass.
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
  std::optional<std::chrono::microseconds> pass_start_;  // time of the present pass's first frame
  std::deque<Entry> entries_;
  std::map<std::int64_t, Second> activity_;
};

}  // namespace lm::host::commands::serve
