// The queue of messages to the broker, and what it drops when full.
#include "host/outputs/mqtt/outbox.h"

#include <gtest/gtest.h>

namespace {

using namespace lm::host::outputs::mqtt;
using Payloads = std::vector<std::string>;

Message milestone(const std::string& payload) { return {MessageKind::kMilestone, "event/new", payload}; }
Message update(const std::string& payload) { return {MessageKind::kUpdate, "event/update", payload}; }
Message retained(const std::string& topic, const std::string& payload) {
  return {MessageKind::kRetained, topic, payload};
}

Outbox connected_outbox(std::size_t capacity) {
  Outbox outbox(capacity);
  outbox.connected();
  return outbox;
}

Payloads all_of(Outbox& outbox) {
  Payloads payloads;
  while (const std::optional<Message> message = outbox.pop()) payloads.push_back(message->payload);
  return payloads;
}

TEST(Outbox, KeepsMessagesInOrder) {
  Outbox outbox = connected_outbox(10);
  for (const Message& message : {milestone("1"), update("2"), retained("a", "3"), milestone("4")})
    outbox.push(message);
  EXPECT_EQ(outbox.size(), 4U);
  EXPECT_EQ(outbox.pop(), milestone("1"));
  EXPECT_EQ(all_of(outbox), (Payloads{"2", "3", "4"}));
  EXPECT_EQ(outbox.pop(), std::nullopt);
}

TEST(Outbox, DropsTheOldestUpdateFirst) {
  Outbox outbox = connected_outbox(4);
  for (const Message& message :
       {milestone("new"), update("u1"), update("u2"), milestone("end"), update("u3"), milestone("new 2")})
    outbox.push(message);
  EXPECT_EQ(all_of(outbox), (Payloads{"new", "end", "u3", "new 2"}));
  EXPECT_EQ(outbox.drops().updates, 2);
  EXPECT_EQ(outbox.drops().milestones, 0);
}

TEST(Outbox, DropsTheOldestMilestoneIfThereAreNoUpdates) {
  Outbox outbox = connected_outbox(2);
  for (const Message& message : {milestone("1"), milestone("2"), milestone("3"), update("4"), milestone("5")})
    outbox.push(message);
  // "3" drops "1", "4" drops "2", "5" drops "4".
  EXPECT_EQ(all_of(outbox), (Payloads{"3", "5"}));
  EXPECT_EQ(outbox.drops().updates, 1);
  EXPECT_EQ(outbox.drops().milestones, 2);
}

TEST(Outbox, KeepsOnlyTheLastRetainedMessageOfATopic) {
  Outbox outbox(10);
  for (const Message& message :
       {retained("state", "ON"), milestone("new"), retained("other", "x"), retained("state", "OFF")})
    outbox.push(message);
  EXPECT_EQ(all_of(outbox), (Payloads{"new", "x", "OFF"}));
}

TEST(Outbox, NeverDropsOrCountsRetainedMessages) {
  Outbox outbox(1);
  for (const Message& message : {retained("a", "a"), retained("b", "b"), milestone("1"), milestone("2")})
    outbox.push(message);
  EXPECT_EQ(all_of(outbox), (Payloads{"a", "b", "2"}));
  EXPECT_EQ(outbox.drops().milestones, 1);
}

TEST(Outbox, RenewsRetainedMessagesBeforeOthers) {
  Outbox outbox(10);
  for (const Message& message : {retained("a", "a1"), retained("b", "b1")}) outbox.push(message);
  EXPECT_EQ(all_of(outbox), (Payloads{"a1", "b1"}));
  for (const Message& message : {milestone("new"), retained("a", "a2")}) outbox.push(message);
  outbox.connected();
  EXPECT_EQ(all_of(outbox), (Payloads{"a2", "b1", "new"}));
}

TEST(Outbox, KeepsNoUpdatesWithoutAConnection) {
  Outbox outbox(10);
  for (const Message& message : {milestone("new"), update("1")}) outbox.push(message);
  outbox.connected();
  outbox.push(update("2"));
  EXPECT_EQ(all_of(outbox), (Payloads{"new", "2"}));
  outbox.push(update("3"));
  outbox.disconnected({});
  outbox.push(update("4"));
  EXPECT_EQ(all_of(outbox), Payloads{});
}

TEST(Outbox, TakesBackWhatTheBrokerHasNotAcknowledged) {
  Outbox outbox = connected_outbox(10);
  for (const Message& message : {milestone("end 2"), retained("state", "OFF")}) outbox.push(message);
  outbox.disconnected({milestone("new 1"), update("1"), milestone("end 1"), milestone("new 2"),
                       retained("state", "ON"), retained("other", "x")});
  EXPECT_EQ(all_of(outbox), (Payloads{"new 1", "end 1", "new 2", "x", "end 2", "OFF"}));
}

}  // namespace
