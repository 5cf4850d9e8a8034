// Events as messages.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "host/events/event.h"
#include "host/outputs/mqtt/topics.h"

namespace lm::host::outputs::mqtt {

// Says when events begin, go on and end, and whether there is motion just now.
class Announcer {
 public:
  using Send = std::function<void(Message)>;

  // How much of the source's time lies between updates on one event at least.
  static constexpr std::chrono::seconds kUpdateInterval{1};

  Announcer(Topics topics, Send send) : topics_(std::move(topics)), send_(std::move(send)) {}

  // Before the first event. `discovery`: the topic that home-automation software watches; empty for none.
  void introduce(const std::string& discovery);

  void begun(const events::Event& event);
  void changed(const events::Event& event);
  void ended(const events::Event& event);

  // The last message: nothing more comes.
  void leave();

 private:
  void say(MessageKind kind, const std::string& step, const events::Event& event);
  void state(const char* state) { send_({MessageKind::kStanding, topics_.motion(), state}); }

  Topics topics_;
  Send send_;
  std::map<std::string, std::chrono::microseconds> last_said_;  // by the event's id
  std::set<std::string> moving_;                                // ids of events of motion that go on
};

}  // namespace lm::host::outputs::mqtt
