// The queue of messages to the broker.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace lm::host::outputs::mqtt {

enum class MessageKind {
  kMilestone,  // an event begins or ends
  kUpdate,     // an event continues; superseded by the next update
  kRetained,   // retained by the broker: valid until the next one on its topic
};

struct Message {
  MessageKind kind = MessageKind::kMilestone;
  std::string topic;
  std::string payload;

  bool operator==(const Message&) const = default;
};

// First in, first out, with a limit. When full, the oldest update is dropped, or the oldest milestone if
// there are no updates. Of the retained messages, only the last one per topic is kept; these are few and
// never dropped. Without a connection, as at the start, updates are not kept: they are out of date when there
// is one again.
class Outbox {
 public:
  struct Drops {
    std::int64_t updates = 0;
    std::int64_t milestones = 0;
  };

  // `capacity`: maximum number of messages, not counting retained ones.
  explicit Outbox(std::size_t capacity) : capacity_(capacity) {}

  void push(Message message);
  std::optional<Message> pop();

  // Connected. Puts the last retained message of each topic at the front, in the order in which the topics
  // were first used, because a restarted broker may have lost them.
  void connected();

  // Drops the updates, and takes back messages that the broker has not acknowledged, in their order.
  void disconnected(const std::vector<Message>& unacknowledged);

  std::size_t size() const { return waiting_.size(); }
  const Drops& drops() const { return drops_; }

 private:
  void remember(const Message& message);
  void remove_retained(const std::string& topic);
  void make_room();
  bool is_waiting(const std::string& topic) const;

  std::size_t capacity_;
  bool connected_ = false;
  std::deque<Message> waiting_;
  std::vector<Message> retained_;
  Drops drops_;
};

}  // namespace lm::host::outputs::mqtt
