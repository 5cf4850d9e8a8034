#include "host/outputs/mqtt/outbox.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace lm::host::outputs::mqtt {

void Outbox::push(Message message) {
  if (message.kind == MessageKind::kUpdate && !connected_) return;
  if (message.kind == MessageKind::kRetained) {
    remember(message);
    remove_retained(message.topic);
  } else {
    make_room();
  }
  waiting_.push_back(std::move(message));
}

std::optional<Message> Outbox::pop() {
  if (waiting_.empty()) return std::nullopt;
  Message message = std::move(waiting_.front());
  waiting_.pop_front();
  return message;
}

void Outbox::connected() {
  connected_ = true;
  for (const Message& message : retained_) remove_retained(message.topic);
  waiting_.insert(waiting_.begin(), retained_.begin(), retained_.end());
}

void Outbox::disconnected(const std::vector<Message>& unacknowledged) {
  connected_ = false;
  std::vector<Message> again;
  std::ranges::copy_if(unacknowledged, std::back_inserter(again), [this](const Message& message) {
    return message.kind != MessageKind::kRetained || !is_waiting(message.topic);
  });
  waiting_.insert(waiting_.begin(), again.begin(), again.end());
  std::erase_if(waiting_, [](const Message& message) { return message.kind == MessageKind::kUpdate; });
}

bool Outbox::is_waiting(const std::string& topic) const {
  return std::ranges::find(waiting_, topic, &Message::topic) != waiting_.end();
}

void Outbox::remember(const Message& message) {
  const auto known = std::ranges::find(retained_, message.topic, &Message::topic);
  if (known == retained_.end()) {
    retained_.push_back(message);
  } else {
    known->payload = message.payload;
  }
}

void Outbox::remove_retained(const std::string& topic) {
  std::erase_if(waiting_, [&topic](const Message& message) {
    return message.kind == MessageKind::kRetained && message.topic == topic;
  });
}

void Outbox::make_room() {
  const auto retained = std::ranges::count(waiting_, MessageKind::kRetained, &Message::kind);
  if (waiting_.size() - static_cast<std::size_t>(retained) < capacity_) return;
  auto victim = std::ranges::find(waiting_, MessageKind::kUpdate, &Message::kind);
  if (victim == waiting_.end()) victim = std::ranges::find(waiting_, MessageKind::kMilestone, &Message::kind);
  ++(victim->kind == MessageKind::kUpdate ? drops_.updates : drops_.milestones);
  waiting_.erase(victim);
}

}  // namespace lm::host::outputs::mqtt
