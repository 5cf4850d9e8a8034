#include "host/outputs/mqtt/mailbox.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "host/base/failure.h"

namespace lm::host::outputs::mqtt {

using Lock = std::lock_guard<std::mutex>;

Mailbox::Mailbox(std::size_t capacity) : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), outbox_(capacity) {
  if (wake_ < 0) {
    throw base::Failure(base::kTrouble,
                        "MQTT: cannot create eventfd: " + std::generic_category().message(errno));
  }
}

Mailbox::~Mailbox() { ::close(wake_); }

void Mailbox::push(Message message) {
  const Lock lock(mutex_);
  outbox_.push(std::move(message));
  wake();
}

void Mailbox::close() {
  const Lock lock(mutex_);
  closing_ = true;
  wake();
}

void Mailbox::abandon() {
  const Lock lock(mutex_);
  abandoned_ = true;
  wake();
}

bool Mailbox::wait_done(std::chrono::milliseconds deadline) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, deadline, [this] { return done_; });
}

std::string Mailbox::take_news() {
  const Lock lock(mutex_);
  return std::exchange(news_, "");
}

Outbox::Drops Mailbox::drops() {
  const Lock lock(mutex_);
  return outbox_.drops();
}

std::size_t Mailbox::unsent() {
  const Lock lock(mutex_);
  return outbox_.size() + in_flight_;
}

std::optional<Message> Mailbox::pop() {
  const Lock lock(mutex_);
  return outbox_.pop();
}

void Mailbox::connected() {
  const Lock lock(mutex_);
  outbox_.connected();
}

void Mailbox::disconnected(const std::vector<Message>& unacknowledged) {
  const Lock lock(mutex_);
  outbox_.disconnected(unacknowledged);
}

bool Mailbox::empty() {
  const Lock lock(mutex_);
  return outbox_.size() == 0;
}

bool Mailbox::closing() {
  const Lock lock(mutex_);
  return closing_;
}

bool Mailbox::abandoned() {
  const Lock lock(mutex_);
  return abandoned_;
}

void Mailbox::report(const std::string& news) {
  const Lock lock(mutex_);
  news_ = news;
}

void Mailbox::done(std::size_t in_flight) {
  const Lock lock(mutex_);
  in_flight_ = in_flight;
  done_ = true;
  changed_.notify_all();
}

void Mailbox::woken() const {
  eventfd_t count = 0;
  eventfd_read(wake_, &count);
}

void Mailbox::wake() const { eventfd_write(wake_, 1); }

}  // namespace lm::host::outputs::mqtt
