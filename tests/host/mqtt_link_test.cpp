// The connection to a simulated broker, whose answers the test controls.
#include "host/outputs/mqtt/link.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>

namespace {

using namespace lm::host::outputs::mqtt;
using namespace std::chrono_literals;

Message milestone(const std::string& payload) { return {MessageKind::kMilestone, "event/new", payload}; }

TEST(Mailbox, CountsWhatWaitsAndWhatIsInFlightAsUnsent) {
  Mailbox mailbox(10);
  for (const char* payload : {"1", "2", "3", "4", "5"}) mailbox.push(milestone(payload));
  for (int i = 0; i < 3; ++i) mailbox.pop();
  mailbox.done(2);  // one of the three taken was acknowledged
  EXPECT_EQ(mailbox.unsent(), 4U);
}

// Accepts a connection and acknowledges nothing else.
class SilentBroker {
 public:
  SilentBroker() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    bind(socket_, reinterpret_cast<sockaddr*>(&address), length);
    listen(socket_, 1);
    getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
  }
  ~SilentBroker() {
    if (client_ >= 0) close(client_);
    close(socket_);
  }
  SilentBroker(const SilentBroker&) = delete;
  SilentBroker& operator=(const SilentBroker&) = delete;

  int port() const { return port_; }

  void accept_client() {
    client_ = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    const char accepted[] = {0x20, 2, 0, 0};
    send(client_, accepted, sizeof accepted, MSG_NOSIGNAL);
  }

  // Reads until the text has arrived; false if the connection ends before.
  bool read_until(const std::string& text) {
    while (read_.find(text) == std::string::npos) {
      char piece[4096];
      const ssize_t length = recv(client_, piece, sizeof piece, 0);
      if (length <= 0) return false;
      read_.append(piece, static_cast<std::size_t>(length));
    }
    return true;
  }

 private:
  int socket_;
  int client_ = -1;
  int port_ = 0;
  std::string read_;
};

TEST(Link, CountsMessagesAsUnsentThatTheBrokerHasNotAcknowledged) {
  SilentBroker broker;
  const auto mailbox = std::make_shared<Mailbox>(100);
  for (const char* payload : {"first", "second", "third"}) mailbox->push(milestone(payload));
  Address address;
  address.host = "127.0.0.1";
  address.port = broker.port();
  Link link(LinkSettings{address, "", "client", "availability", "offline"}, mailbox);
  std::thread thread([&] { link.run(); });
  broker.accept_client();
  EXPECT_TRUE(broker.read_until("third"));
  mailbox->abandon();
  EXPECT_TRUE(mailbox->wait_done(30s));
  thread.join();
  EXPECT_EQ(mailbox->unsent(), 3U);
}

}  // namespace
