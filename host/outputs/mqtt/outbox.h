// Messages that wait for the broker.
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
  kUpdate,     // an event goes on; the next one says it again
  kStanding,   // retained by the broker: what holds until the next one on its topic
};

struct Message {
  MessageKind kind = MessageKind::kMilestone;
  std::string topic;
  std::string payload;

  bool operator==(const Message&) const = default;
};

// First in, first out, with a limit. Where there is no room the oldest update goes, and the oldest milestone
// only when there are no updates. Of standing messages the last one of each topic counts; they are few and
// never dropped.
class Outbox {
 public:
  struct Drops {
    std::int64_t updates = 0;
    std::int64_t milestones = 0;
  };

  // `capacity`: how many messages other than standing ones may wait.
  explicit Outbox(std::size_t capacity) : capacity_(capacity) {}

  void push(Message message);
  std::optional<Message> pop();

  // A broker that was away may have forgotten what it retained: puts the last standing message of each topic
  // in front, in the order in which the topics were first used.
  void renew_standing();

  std::size_t size() const { return waiting_.size(); }
  const Drops& drops() const { return drops_; }

 private:
  void remember(const Message& message);
  void remove_standing(const std::string& topic);
  void make_room();

  std::size_t capacity_;
  std::deque<Message> waiting_;
  std::vector<Message> standing_;
  Drops drops_;
};

}  // namespace lm::host::outputs::mqtt
