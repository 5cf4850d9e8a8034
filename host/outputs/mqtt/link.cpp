#include "host/outputs/mqtt/link.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "host/base/failure.h"

namespace lm::host::outputs::mqtt {
namespace {

using namespace std::chrono_literals;

constexpr int kKeepAlive = 20;  // seconds; the broker publishes the will after one and a half times this
constexpr int kAtLeastOnce = 1;
constexpr std::size_t kWindow = 20;  // as many as libmosquitto sends before the first is acknowledged
constexpr std::chrono::milliseconds kLongestWait = 1s;  // libmosquitto must be called regularly
constexpr std::chrono::milliseconds kHastyInterval =
    200ms;  // between attempts while the program waits to exit
// To a broker that is not there. What it retains is out of date from its return until the program's.
constexpr std::chrono::milliseconds kLongestAbsence = 2s;

std::string reason(int error) {
  std::string text =
      error == MOSQ_ERR_ERRNO ? std::generic_category().message(errno) : mosquitto_strerror(error);
  if (text.ends_with('.')) text.pop_back();
  return text;
}

void check(int error, const std::string& what) {
  if (error != MOSQ_ERR_SUCCESS) throw base::Failure(base::kRefused, "MQTT: " + what + ": " + reason(error));
}

}  // namespace

Link::Link(const LinkSettings& settings, std::shared_ptr<Mailbox> mailbox)
    : settings_(settings), mailbox_(std::move(mailbox)) {
  static const int once = mosquitto_lib_init();
  static_cast<void>(once);
  if (settings.address.encrypted) tls_.emplace(settings.address.host, settings.authorities);
  make_client();
}

void Link::make_client() {
  client_.reset(mosquitto_new(settings_.client.c_str(), true, this));
  if (!client_) throw base::Failure(base::kRefused, "MQTT: " + std::generic_category().message(errno));
  mosquitto_connect_callback_set(client_.get(), [](mosquitto*, void* self, int refusal) {
    static_cast<Link*>(self)->connected(refusal);
  });
  mosquitto_publish_callback_set(
      client_.get(), [](mosquitto*, void* self, int id) { static_cast<Link*>(self)->acknowledged(id); });
  check(
      mosquitto_will_set(client_.get(), settings_.will_topic.c_str(), static_cast<int>(settings_.will.size()),
                         settings_.will.data(), kAtLeastOnce, true),
      "topic " + settings_.will_topic);
  const Address& address = settings_.address;
  if (!address.user.empty()) {
    check(mosquitto_username_pw_set(client_.get(), address.user.c_str(), address.password.c_str()), "user");
  }
  if (!tls_) return;
  check(mosquitto_int_option(client_.get(), MOSQ_OPT_SSL_CTX_WITH_DEFAULTS, 0), "TLS");
  check(mosquitto_opts_set(client_.get(), MOSQ_OPT_SSL_CTX, tls_->context()), "TLS");
}

void Link::run() {
  while (!finished()) {
    if (!open_ && Clock::now() >= next_attempt()) connect();
    if (ready_) hand_over();
    wait();
    if (!open_) continue;
    const int error = mosquitto_loop(client_.get(), 0, 1);
    if (error != MOSQ_ERR_SUCCESS) lost(error);
  }
  // Without a disconnect the broker publishes the will.
  if (ready_ && !mailbox_->abandoned()) mosquitto_disconnect(client_.get());
  mailbox_->done(in_flight_.size());
}

void Link::connect() {
  last_attempt_ = Clock::now();
  open_ = true;
  const Address& address = settings_.address;
  const int error = mosquitto_connect_async(client_.get(), address.host.c_str(), address.port, kKeepAlive);
  if (error != MOSQ_ERR_SUCCESS) lost(error);
}

void Link::connected(int refusal) {
  if (refusal != 0) {
    refusal_ = mosquitto_connack_string(refusal);
    return;
  }
  ready_ = true;
  back_off_.reset();
  mailbox_->connected();
  if (std::exchange(warned_, false)) mailbox_->report("connected");
}

void Link::acknowledged(int id) {
  std::erase_if(in_flight_, [id](const auto& sent) { return sent.first == id; });
}

void Link::lost(int error) {
  const bool refused = !refusal_.empty() || (tls_ && !tls_->established());
  const std::string why = cause_of(error);
  if (!std::exchange(warned_, true)) mailbox_->report(why + "; retrying");
  open_ = false;
  ready_ = false;
  const auto delay = back_off_.next();
  next_attempt_ = Clock::now() + (refused ? delay : std::min(delay, kLongestAbsence));
  std::vector<Message> unacknowledged;
  for (auto& sent : std::exchange(in_flight_, {})) unacknowledged.push_back(std::move(sent.second));
  mailbox_->disconnected(unacknowledged);
  make_client();
}

std::string Link::cause_of(int error) {
  if (!refusal_.empty()) return std::exchange(refusal_, "");
  const std::string failure = tls_ ? tls_->take_failure() : "";
  return failure.empty() ? reason(error) : failure;
}

void Link::hand_over() {
  while (in_flight_.size() < kWindow) {
    std::optional<Message> message = mailbox_->pop();
    if (!message) return;
    int id = 0;
    // A connection lost here is noticed by the next loop: the message is in flight until then.
    mosquitto_publish(client_.get(), &id, message->topic.c_str(), static_cast<int>(message->payload.size()),
                      message->payload.data(), kAtLeastOnce, message->kind == MessageKind::kRetained);
    in_flight_.emplace_back(id, std::move(*message));
  }
}

void Link::wait() {
  std::chrono::milliseconds longest = kLongestWait;
  if (!open_) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next_attempt() - Clock::now());
    longest = std::clamp(left, 0ms, kLongestWait);
  }
  const int more = mosquitto_want_write(client_.get()) ? POLLOUT : 0;
  std::array<pollfd, 2> handles{
      pollfd{mailbox_->wake_handle(), POLLIN, 0},
      pollfd{open_ ? mosquitto_socket(client_.get()) : -1, static_cast<short>(POLLIN | more), 0}};
  poll(handles.data(), handles.size(), static_cast<int>(longest.count()));
  mailbox_->woken();
}

bool Link::finished() {
  if (mailbox_->abandoned()) return true;
  return ready_ && in_flight_.empty() && mailbox_->closing() && mailbox_->empty();
}

Link::Clock::time_point Link::next_attempt() {
  return mailbox_->closing() ? std::min(next_attempt_, last_attempt_ + kHastyInterval) : next_attempt_;
}

}  // namespace lm::host::outputs::mqtt
