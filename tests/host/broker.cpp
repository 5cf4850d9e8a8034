#include "tests/host/broker.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

namespace broker {
namespace {

using namespace std::chrono_literals;

constexpr const char* kProgram = "/usr/sbin/mosquitto";
constexpr std::chrono::seconds kLong = 60s;

sockaddr_in loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int free_port() {
  const int handle = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = loopback(0);
  socklen_t length = sizeof address;
  bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  getsockname(handle, reinterpret_cast<sockaddr*>(&address), &length);
  close(handle);
  return ntohs(address.sin_port);
}

bool takes_connections(int port) {
  const int handle = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = loopback(port);
  const bool taken = connect(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(handle);
  return taken;
}

void wait_until(const std::function<bool()>& condition, const char* what) {
  const auto deadline = std::chrono::steady_clock::now() + kLong;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) throw std::runtime_error(what);
    std::this_thread::yield();
  }
}

}  // namespace

Broker::Broker(const std::string& settings) : port_(free_port()) {
  const std::string here = folder_ / "";
  program::write(folder_ / "conf",
                 "listener " + std::to_string(port_) + " 127.0.0.1\n" +
                     "user root\nmax_queued_messages 0\npersistence true\npersistence_location " + here +
                     "\n" + settings);
}

bool Broker::installed() { return access(kProgram, X_OK) == 0; }

void Broker::start() {
  const std::string file = folder_ / "conf";
  const std::string log = folder_ / "log";
  process_ = fork();
  if (process_ == 0) {
    const int output = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    execl(kProgram, kProgram, "-c", file.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  wait_until([this] { return takes_connections(port_); }, "the broker does not start");
}

void Broker::kill() {
  if (process_ == 0) return;
  ::kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  process_ = 0;
}

void Broker::freeze() { ::kill(process_, SIGSTOP); }

void Broker::save() {
  ::kill(process_, SIGUSR1);
  const std::string file = folder_ / "mosquitto.db";
  wait_until([&file] { return std::filesystem::exists(file); }, "the broker does not save");
}

Subscriber::Subscriber(const Broker& broker, const std::string& authority)
    : client_(mosquitto_new("subscriber", false, this)) {
  if (!authority.empty())
    mosquitto_tls_set(client_.get(), authority.c_str(), nullptr, nullptr, nullptr, nullptr);
  mosquitto_connect_callback_set(
      client_.get(), [](mosquitto* client, void*, int) { mosquitto_subscribe(client, nullptr, "#", 1); });
  mosquitto_subscribe_callback_set(client_.get(), [](mosquitto*, void* self, int, int, const int*) {
    auto* reader = static_cast<Subscriber*>(self);
    reader->note([reader] { reader->subscribed_ = true; });
  });
  mosquitto_message_callback_set(client_.get(), [](mosquitto*, void* self, const mosquitto_message* message) {
    auto* reader = static_cast<Subscriber*>(self);
    const auto length = static_cast<std::size_t>(message->payloadlen);
    reader->note([reader, message, length] {
      reader->messages_.push_back(
          {message->topic, std::string(static_cast<const char*>(message->payload), length)});
    });
  });
  mosquitto_reconnect_delay_set(client_.get(), 1, 1, false);
  mosquitto_connect(client_.get(), "127.0.0.1", broker.port(), 60);
  mosquitto_loop_start(client_.get());
  std::unique_lock lock(mutex_);
  if (!changed_.wait_for(lock, kLong, [this] { return subscribed_; }))
    throw std::runtime_error("the broker does not answer");
}

Subscriber::~Subscriber() {
  mosquitto_disconnect(client_.get());
  mosquitto_loop_stop(client_.get(), true);
}

bool Subscriber::wait(const std::function<bool(const Messages&)>& seen) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, kLong, [&] { return seen(messages_); });
}

bool Subscriber::wait_for(const std::string& topic, const std::string& payload) {
  return wait([&](const Messages& messages) {
    return std::ranges::any_of(messages, [&](const Message& message) {
      return message.topic == topic && message.payload.find(payload) != std::string::npos;
    });
  });
}

Subscriber::Messages Subscriber::messages() {
  const std::lock_guard lock(mutex_);
  return messages_;
}

std::vector<std::string> Subscriber::payloads(const std::string& topic) {
  std::vector<std::string> payloads;
  for (const Message& message : messages()) {
    if (message.topic == topic) payloads.push_back(message.payload);
  }
  return payloads;
}

void Subscriber::note(const std::function<void()>& change) {
  const std::lock_guard lock(mutex_);
  change();
  changed_.notify_all();
}

}  // namespace broker
