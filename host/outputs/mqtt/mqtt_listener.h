// Publishes events to an MQTT broker.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "host/events/listener.h"
#include "host/outputs/mqtt/announcer.h"
#include "host/outputs/mqtt/mailbox.h"
#include "host/outputs/mqtt/mqtt_options.h"

namespace lm::host::outputs::mqtt {

// The analysis never waits for the broker; only finish() does, for a limited time. An unreachable broker is
// reported as a warning and does not end the run.
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
  void begun(const events::Event& event) override { announcer_.begun(event); }
  void changed(const events::Event& event) override { announcer_.changed(event); }
  void ended(const events::Event& event) override { announcer_.ended(event); }
  void finish() override;

 private:
  void leave(std::chrono::milliseconds deadline);
  void report_news();
  void report_losses();

  std::chrono::milliseconds patience_;
  std::string broker_;  // for messages
  std::shared_ptr<Mailbox> mailbox_;
  Announcer announcer_;
  std::thread thread_;
};

}  // namespace lm::host::outputs::mqtt
