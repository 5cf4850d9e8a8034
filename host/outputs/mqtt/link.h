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
  std::string
      authorities;     // file of certificates that an encrypted connection trusts; the system's when empty
  std::string client;  // the broker ends an older connection of the same name
  std::string will_topic;  // where the broker says `will` when the connection is lost
  std::string will;
};

// Sends what is in a mailbox, connecting again as often as it takes. libmosquitto is used by the one thread
// that is in run(): its own thread gives up on some errors that pass, such as a broken encrypted connection.
class Link {
 public:
  // Throws Failure (kRefused) when the settings cannot be used.
  Link(const LinkSettings& settings, std::shared_ptr<Mailbox> mailbox);

  // Returns when the mailbox is closed and everything in it was acknowledged, or when it is abandoned.
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
  std::size_t in_flight_ = 0;  // messages that libmosquitto has and the broker did not acknowledge
  bool open_ = false;          // being connected, or connected
  bool ready_ = false;         // the broker takes messages
  bool complained_ = false;    // about the present outage
};

}  // namespace lm::host::outputs::mqtt
