#include "host/outputs/mqtt/outbox.h"

#include <algorithm>
#include <utility>

namespace lm::host::outputs::mqtt {

void Outbox::push(Message message) {
  if (message.kind == MessageKind::kStanding) {
    remember(message);
    remove_standing(message.topic);
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

void Outbox::renew_standing() {
  for (const Message& message : standing_) remove_standing(message.topic);
  waiting_.insert(waiting_.begin(), standing_.begin(), standing_.end());
}

void Outbox::remember(const Message& message) {
  const auto known = std::ranges::find(standing_, message.topic, &Message::topic);
  if (known == standing_.end()) {
    standing_.push_back(message);
  } else {
    known->payload = message.payload;
  }
}

void Outbox::remove_standing(const std::string& topic) {
  std::erase_if(waiting_, [&topic](const Message& message) {
    return message.kind == MessageKind::kStanding && message.topic == topic;
  });
}

void Outbox::make_room() {
  const auto standing = std::ranges::count(waiting_, MessageKind::kStanding, &Message::kind);
  if (waiting_.size() - static_cast<std::size_t>(standing) < capacity_) return;
  auto victim = std::ranges::find(waiting_, MessageKind::kUpdate, &Message::kind);
  if (victim == waiting_.end()) victim = std::ranges::find(waiting_, MessageKind::kMilestone, &Message::kind);
  ++(victim->kind == MessageKind::kUpdate ? drops_.updates : drops_.milestones);
  waiting_.erase(victim);
}

}  // namespace lm::host::outputs::mqtt
