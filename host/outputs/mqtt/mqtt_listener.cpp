#include "host/outputs/mqtt/mqtt_listener.h"

#include <csignal>

#include "host/base/notice.h"
#include "host/outputs/mqtt/link.h"

namespace lm::host::outputs::mqtt {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kCapacity = 1000;
constexpr std::chrono::milliseconds kLittlePatience = 1s;  // after a failed run

Topics topics_of(const MqttOptions& options, const std::string& source) {
  return {parse_address(options.address).prefix,
          options.camera.empty() ? camera_name(source) : options.camera};
}

// Signals are handled by the analysing thread.
std::thread start_without_signals(std::unique_ptr<Link> link) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread([own = std::move(link)] { own->run(); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}

std::string count(std::int64_t number, const char* what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

}  // namespace

MqttListener::MqttListener(const MqttOptions& options, const std::string& source,
                           std::chrono::milliseconds patience)
    : patience_(patience),
      mailbox_(std::make_shared<Mailbox>(kCapacity)),
      announcer_(topics_of(options, source),
                 [this](Message message) { mailbox_->push(std::move(message)); }) {
  const Topics topics = topics_of(options, source);
  const Address address = broker_address(options);
  broker_ = shown(address);
  announcer_.introduce(options.discovery);
  auto link = std::make_unique<Link>(
      LinkSettings{address, options.authorities, topics.unique_id(), topics.availability(), kOffline},
      mailbox_);
  thread_ = start_without_signals(std::move(link));
}

MqttListener::~MqttListener() {
  if (thread_.joinable()) leave(kLittlePatience);
}

void MqttListener::frame(const source::Frame&, const events::Observation&) { report_news(); }

void MqttListener::finish() {
  leave(patience_);
  report_news();
  report_losses();
}

void MqttListener::leave(std::chrono::milliseconds deadline) {
  announcer_.leave();
  mailbox_->close();
  bool done = mailbox_->wait_done(deadline);
  if (!done) {
    mailbox_->abandon();
    done = mailbox_->wait_done(kLittlePatience);
  }
  // Name resolution can take very long, so the thread is detached; it owns everything that it uses.
  if (done) {
    thread_.join();
  } else {
    thread_.detach();
  }
}

void MqttListener::report_news() {
  if (const std::string news = mailbox_->take_news(); !news.empty()) base::warn(broker_ + ": " + news);
}

void MqttListener::report_losses() {
  const auto [updates, milestones] = mailbox_->drops();
  if (updates + milestones > 0) {
    base::warn(broker_ + ": queue full, dropped " + count(updates, "update message") + " and " +
               count(milestones, "begin or end message"));
  }
  if (const std::size_t left = mailbox_->unsent(); left > 0) {
    base::warn(broker_ + ": " + count(static_cast<std::int64_t>(left), "message") + " not sent");
  }
}

}  // namespace lm::host::outputs::mqtt
