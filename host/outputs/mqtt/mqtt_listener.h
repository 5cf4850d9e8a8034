// Publishes events to an MQTT broker.
#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <map>
#include <string>

#include "host/events/listener.h"
#include "host/outputs/mqtt/announcer.h"
#include "host/outputs/mqtt/channel.h"
#include "host/outputs/mqtt/mqtt_options.h"

namespace lm::host::outputs::mqtt {

// The analysis never waits for the broker; only finish() does, for a limited time. An unreachable broker is
// reported as a warning and does not end the run.
//
// A connection has one will. So each state that must not outlast the program has a connection of its own:
// availability (with the events), motion and, of a camera, its state.
class MqttListener : public events::EventListener {
 public:
  static constexpr std::chrono::milliseconds kPatience{5000};

  // `source`: as the user wrote it. `patience`: time limit of finish(). Throws Failure (kRefused).
  MqttListener(const MqttOptions& options, const std::string& source,
               std::chrono::milliseconds patience = kPatience);
  ~MqttListener() override;
  MqttListener(const MqttListener&) = delete;
  MqttListener& operator=(const MqttListener&) = delete;

  void frame(const source::Frame& frame, const events::Observation& seen) override;
  void source_changed(const source::SourceState& state) override;
  void begun(const events::Event& event) override { announcer_.begun(event); }
  void changed(const events::Event& event) override { announcer_.changed(event); }
  void ended(const events::Event& event) override { announcer_.ended(event); }
  void finish() override;

 private:
  Channel& open_channel(const std::string& topic);
  void send(Message message);
  void leave(const std::string& reason, std::chrono::milliseconds patience);
  void report_news();
  void report_losses();

  std::chrono::milliseconds patience_;
  LinkSettings settings_;
  Topics topics_;
  std::string broker_;     // for messages
  std::string last_news_;  // the connections have the same
  std::list<Channel> channels_;
  std::map<std::string, Channel*> by_topic_;  // those beside the first
  Announcer announcer_;
  bool left_ = false;
};

}  // namespace lm::host::outputs::mqtt
