// The connection to the broker, and its thread.
#pragma once

#include <mosquitto.h>

#include <chrono>
#include <memory>
#include <string>

#include "host/base/back_off.h"
#include "host/outputs/mqtt/address.h"
#include "host/outputs/mqtt/mailbox.h"

namespace lm::host::outputs::mqtt {

struct LinkSettings {
  Address address;
  std::string authorities;  // CA certificates for encrypted connections; the system's if empty
  std::string client;       // the broker closes an older connection with the same name
  std::string will_topic;   // where the broker publishes `will` when the connection is lost
  std::string will;
};

// Sends the messages of a mailbox and reconnects as often as necessary. Only the thread in run() uses
// libmosquitto: its own thread gives up after some temporary errors, such as a failed TLS connection.
class Link {
 public:
  // Throws Failure (kRefused) for invalid settings.
  Link(const LinkSettings& settings, std::shared_ptr<Mailbox> mailbox);

  // Returns when the mailbox is closed and every message acknowledged, or when it is abandoned.
  void run();

 private:
  using Clock = std::chrono::steady_clock;
  struct Free {
    void operator()(mosquitto* client) const { mosquitto_destroy(client); }
  };
  void secure(const std::string& authorities);
  void connect();
  void connected(int refusal);
  void lost(int error);
  void hand_over();
  void wait();
  bool finished();
  Clock::time_point next_attempt();

  Address address_;
  std::shared_ptr<Mailbox> mailbox_;
  std::unique_ptr<mosquitto, Free> client_;
  base::BackOff back_off_{base::real_chance()};
  Clock::time_point last_attempt_{};
  Clock::time_point next_attempt_{};
  std::string refusal_;        // the broker's reason
  std::size_t in_flight_ = 0;  // messages passed to libmosquitto and not yet acknowledged
  bool open_ = false;          // connecting or connected
  bool ready_ = false;         // connected
  bool warned_ = false;        // about the current outage
};

}  // namespace lm::host::outputs::mqtt
