// The connection to the broker, and its thread.
#pragma once

#include <mosquitto.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/base/back_off.h"
#include "host/outputs/mqtt/address.h"
#include "host/outputs/mqtt/mailbox.h"
#include "host/outputs/mqtt/tls.h"

namespace lm::host::outputs::mqtt {

struct LinkSettings {
  Address address;
  std::string authorities;  // CA certificates for encrypted connections; the system's if empty
  std::string client;       // the broker closes an older connection with the same name
  std::string will_topic;   // where the broker publishes `will` when the connection is lost
  std::string will;
};

// Sends the messages of a mailbox and reconnects as often as necessary. Only the thread in run() uses
// libmosquitto: its own thread gives up after some temporary errors, such as a failed TLS connection. Each
// connection has a client of its own: a client would send again what it had in flight, out of date or not.
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
  void make_client();
  void connect();
  void connected(int refusal);
  void acknowledged(int id);
  void lost(int error);
  std::string cause_of(int error);
  void hand_over();
  void wait();
  bool finished();
  Clock::time_point next_attempt();

  LinkSettings settings_;
  std::shared_ptr<Mailbox> mailbox_;
  std::optional<Tls> tls_;
  std::unique_ptr<mosquitto, Free> client_;
  base::BackOff back_off_{base::real_chance()};
  Clock::time_point last_attempt_{};
  Clock::time_point next_attempt_{};
  std::string refusal_;                             // the broker's reason
  std::vector<std::pair<int, Message>> in_flight_;  // passed to libmosquitto and not yet acknowledged
  bool open_ = false;                               // connecting or connected
  bool ready_ = false;                              // connected
  bool warned_ = false;                             // about the current outage
};

}  // namespace lm::host::outputs::mqtt
