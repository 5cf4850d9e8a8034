// An MQTT broker on the loopback interface, and a client that reads every message.
#pragma once

#include <mosquitto.h>
#include <sys/types.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace broker {

// Debian's broker with a configuration for the test. Keeps its port when restarted.
class Broker {
 public:
  // `settings`: further configuration lines.
  explicit Broker(const std::string& settings = "allow_anonymous true\n");
  ~Broker() { kill(); }
  Broker(const Broker&) = delete;
  Broker& operator=(const Broker&) = delete;

  static bool installed();

  void start();   // returns when it accepts connections
  void kill();    // at once, without closing connections properly
  void freeze();  // keeps its connections but does nothing
  void save();    // makes its present state survive a restart

  int port() const { return port_; }
  std::string address() const { return "mqtt://127.0.0.1:" + std::to_string(port_); }
  const program::Folder& folder() const { return folder_; }

 private:
  program::Folder folder_;
  int port_;
  pid_t process_ = 0;
};

struct Message {
  std::string topic;
  std::string payload;
};

// Reconnects automatically; meanwhile the broker queues its messages if it saved the subscription.
class Subscriber {
 public:
  // `authority`: file with the trusted certificate, for an encrypting broker.
  explicit Subscriber(const Broker& broker, const std::string& authority = "");
  ~Subscriber();
  Subscriber(const Subscriber&) = delete;
  Subscriber& operator=(const Subscriber&) = delete;

  // Waits until `seen` accepts what was read so far. False after a long time.
  using Messages = std::vector<Message>;
  bool wait(const std::function<bool(const Messages&)>& seen);
  bool wait_for(const std::string& topic, const std::string& payload);

  Messages messages();
  std::vector<std::string> payloads(const std::string& topic);

 private:
  struct Free {
    void operator()(mosquitto* client) const { mosquitto_destroy(client); }
  };
  void note(const std::function<void()>& change);

  std::mutex mutex_;
  std::condition_variable changed_;
  Messages messages_;
  bool subscribed_ = false;
  std::unique_ptr<mosquitto, Free> client_;
};

}  // namespace broker
