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

// Reports when events begin, continue and end, whether there is motion, and whether the camera delivers
// pictures. Available: the program is running, and the camera, if it is one, delivers pictures.
class Announcer {
 public:
  using Send = std::function<void(Message)>;

  // Minimum interval between updates on one event, in the source's time.
  static constexpr std::chrono::seconds kUpdateInterval{1};

  Announcer(Topics topics, Send send) : topics_(std::move(topics)), send_(std::move(send)) {}

  // Before all others. `discovery`: topic prefix of home-automation discovery; empty for none.
  void introduce(const std::string& discovery);

  // Of a camera.
  void camera(const source::SourceState& state);

  void begun(const events::Event& event);
  void changed(const events::Event& event);
  void ended(const events::Event& event);

  // Publishes the last messages: nobody watches any more. `reason`: a sentence.
  void leave(const std::string& reason);

 private:
  void publish(MessageKind kind, const std::string& step, const events::Event& event);
  void retain(const std::string& topic, const std::string& state);

  Topics topics_;
  Send send_;
  std::string discovery_;
  bool is_camera_ = false;
  std::map<std::string, std::string> retained_;                      // last state by topic
  std::map<std::string, std::chrono::microseconds> last_published_;  // by event id
  std::set<std::string> moving_;                                     // ids of motion events in progress
};

}  // namespace lm::host::outputs::mqtt
