// Publishes events.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "host/events/event.h"
#include "host/outputs/mqtt/topics.h"

namespace lm::host::outputs::mqtt {

// Reports when events begin, continue and end, and whether there is motion.
class Announcer {
 public:
  using Send = std::function<void(Message)>;

  // Minimum interval between updates on one event, in the source's time.
  static constexpr std::chrono::seconds kUpdateInterval{1};

  Announcer(Topics topics, Send send) : topics_(std::move(topics)), send_(std::move(send)) {}

  // Before the first event. `discovery`: topic prefix of home-automation discovery; empty for none.
  void introduce(const std::string& discovery);

  void begun(const events::Event& event);
  void changed(const events::Event& event);
  void ended(const events::Event& event);

  // Publishes the last message.
  void leave();

 private:
  void publish(MessageKind kind, const std::string& step, const events::Event& event);
  void state(const char* state) { send_({MessageKind::kRetained, topics_.motion(), state}); }

  Topics topics_;
  Send send_;
  std::map<std::string, std::chrono::microseconds> last_published_;  // by event id
  std::set<std::string> moving_;                                     // ids of motion events in progress
};

}  // namespace lm::host::outputs::mqtt
