// Which messages are published about events, and when.
#include "host/outputs/mqtt/announcer.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <sstream>

#include "host/events/event_json.h"
#include "tests/host/schemas.h"

namespace {

using namespace lm::host::events;
using namespace lm::host::outputs::mqtt;
using lm::host::source::CameraState;
using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

Json::Value parsed(const std::string& text) {
  Json::Value value;
  std::istringstream(text) >> value;
  return value;
}

Event event(const std::string& id, std::chrono::microseconds end, EventKind kind = EventKind::kMotion) {
  Event made;
  made.id = id;
  made.kind = kind;
  made.end = end;
  return made;
}

// Messages as "topic=payload", events by their id.
class AnnouncerTest : public testing::Test {
 protected:
  Lines published() {
    Lines lines;
    for (const Message& message : messages_) {
      const Json::Value value =
          message.payload.starts_with('{') ? parsed(message.payload)["id"] : Json::Value();
      lines.push_back(message.topic + "=" + (value.isString() ? value.asString() : message.payload));
    }
    messages_.clear();
    return lines;
  }

  std::vector<Message> messages_;
  Announcer announcer_{Topics("p", "cam"),
                       [this](Message message) { messages_.push_back(std::move(message)); }};
};

TEST_F(AnnouncerTest, AnnouncesThatItIsOnlineWithoutMotion) {
  announcer_.introduce("");
  EXPECT_EQ(published(), (Lines{"p/cam/availability=online", "p/cam/motion=OFF"}));
  announcer_.leave("The video ended.");
  EXPECT_EQ(published(), (Lines{"p/cam/availability=offline"}));
}

constexpr WallTime kNoon{std::chrono::sys_days(2026y / 11 / 22) + 12h};

TEST_F(AnnouncerTest, PublishesTheStateOfACameraAndIsAvailableWhileThereArePictures) {
  announcer_.introduce("");
  published();
  announcer_.camera({CameraState::kConnected, kNoon});
  EXPECT_EQ(published(), (Lines{R"(p/cam/camera={"camera":"connected","since":"2026-11-22T12:00:00.000Z",)"
                                R"("reason":""})"}));
  announcer_.camera({CameraState::kLost, kNoon + 1s, "no data"});
  EXPECT_EQ(published(), (Lines{R"(p/cam/camera={"camera":"lost","since":"2026-11-22T12:00:01.000Z",)"
                                R"("reason":"no data"})",
                                "p/cam/availability=offline"}));
  announcer_.camera({CameraState::kReconnecting, kNoon + 1s, "no data"});
  EXPECT_EQ(published().size(), 1U) << "still offline";
  announcer_.camera({CameraState::kConnected, kNoon + 2s});
  EXPECT_EQ(published().back(), "p/cam/availability=online");
  announcer_.camera({CameraState::kFrozen, kNoon + 2s, "no change"});
  EXPECT_EQ(published().back(), "p/cam/availability=offline");
}

TEST_F(AnnouncerTest, LeavesNoStateBehindAsIfItWereWatching) {
  announcer_.introduce("");
  announcer_.camera({CameraState::kConnected, kNoon});
  announcer_.begun(event("a", 2s));
  published();
  announcer_.leave("The program failed.");
  const Lines last = published();
  ASSERT_EQ(last.size(), 3U);
  EXPECT_EQ(last[0], "p/cam/motion=OFF");
  EXPECT_NE(last[1].find(R"("camera":"unknown")"), std::string::npos) << last[1];
  EXPECT_NE(last[1].find(R"("reason":"The program failed.")"), std::string::npos) << last[1];
  EXPECT_EQ(last[2], "p/cam/availability=offline");
}

TEST_F(AnnouncerTest, FollowsTheSchemaOfCameras) {
  if (!schemas::available()) GTEST_SKIP() << "needs python3-jsonschema";
  Lines texts{camera_payload(kUnknown, std::nullopt, "The program is not running.")};
  for (const CameraState state :
       {CameraState::kConnected, CameraState::kLost, CameraState::kReconnecting, CameraState::kFrozen})
    texts.push_back(camera_payload(camera_text(state), kNoon, ""));
  EXPECT_EQ(schemas::fault("camera", texts), "");
}

TEST_F(AnnouncerTest, SendsAnEventAsTheEventsFileHasIt) {
  if (!schemas::available()) GTEST_SKIP() << "needs python3-jsonschema";
  Event light = event("0001", 2s, EventKind::kLight);
  light.frames = light.most_boxes = 1;
  light.light = LightChange{1, 2, 0.5};
  light.started = "The light became brighter.";
  announcer_.begun(light);
  ASSERT_EQ(messages_.size(), 1U);
  EXPECT_EQ(messages_[0].payload, event_json(light));
  EXPECT_EQ(schemas::fault("events", {messages_[0].payload}, "event"), "");
}

TEST_F(AnnouncerTest, PublishesTheCourseOfAnEvent) {
  announcer_.begun(event("a", 2s));
  announcer_.changed(event("a", 3s));
  announcer_.ended(event("a", 3s));
  EXPECT_EQ(published(), (Lines{"p/cam/event/new=a", "p/cam/motion=ON", "p/cam/event/update=a",
                                "p/cam/event/end=a", "p/cam/motion=OFF"}));
}

TEST_F(AnnouncerTest, HasStatesRetainedAndDropsUpdatesFirst) {
  announcer_.begun(event("a", 2s));
  announcer_.changed(event("a", 3s));
  ASSERT_EQ(messages_.size(), 3U);
  EXPECT_EQ(messages_[0].kind, MessageKind::kMilestone);
  EXPECT_EQ(messages_[1].kind, MessageKind::kRetained);
  EXPECT_EQ(messages_[2].kind, MessageKind::kUpdate);
}

TEST_F(AnnouncerTest, UpdatesAtMostOncePerSecondOfTheSource) {
  announcer_.begun(event("a", 10s));
  published();
  for (const auto time : {10'040ms, 10'999ms, 11'000ms, 11'900ms, 12'100ms, 13'000ms, 13'100ms})
    announcer_.changed(event("a", time));
  // At 11.0, then at least a second after 11.0: 12.1, then 13.1.
  ASSERT_EQ(messages_.size(), 3U);
  const auto end = [this](std::size_t i) { return parsed(messages_[i].payload)["end"].asDouble(); };
  EXPECT_DOUBLE_EQ(end(0), 11.0);
  EXPECT_DOUBLE_EQ(end(1), 12.1);
  EXPECT_DOUBLE_EQ(end(2), 13.1);
}

TEST_F(AnnouncerTest, CountsTheSecondPerEvent) {
  announcer_.begun(event("a", 10s));
  announcer_.begun(event("b", 10'500ms, EventKind::kLight));
  published();
  announcer_.changed(event("a", 11s));
  announcer_.changed(event("b", 11s, EventKind::kLight));
  EXPECT_EQ(published(), (Lines{"p/cam/event/update=a"}));
}

TEST_F(AnnouncerTest, ALightingChangeIsPublishedButIsNoMotion) {
  announcer_.begun(event("light", 1s, EventKind::kLight));
  announcer_.ended(event("light", 1s, EventKind::kLight));
  EXPECT_EQ(published(), (Lines{"p/cam/event/new=light", "p/cam/event/end=light"}));
}

TEST_F(AnnouncerTest, MotionEndsWithItsLastEvent) {
  announcer_.begun(event("a", 1s));
  announcer_.begun(event("b", 1s));
  published();
  announcer_.ended(event("a", 2s));
  EXPECT_EQ(published(), (Lines{"p/cam/event/end=a"}));
  announcer_.ended(event("b", 2s));
  EXPECT_EQ(published(), (Lines{"p/cam/event/end=b", "p/cam/motion=OFF"}));
}

TEST_F(AnnouncerTest, AnnouncesItselfToHomeAutomation) {
  announcer_.introduce("homeassistant");
  ASSERT_EQ(messages_.size(), 3U);
  EXPECT_EQ(messages_[0].kind, MessageKind::kRetained);
  EXPECT_EQ(messages_[0].topic, "homeassistant/binary_sensor/p_cam/config");
  const Json::Value sensor = parsed(messages_[0].payload);
  EXPECT_EQ(sensor["unique_id"], "p_cam");
  EXPECT_EQ(sensor["device_class"], "motion");
  EXPECT_EQ(sensor["state_topic"], "p/cam/motion");
  EXPECT_EQ(sensor["payload_on"], "ON");
  EXPECT_EQ(sensor["payload_off"], "OFF");
  EXPECT_EQ(sensor["availability_topic"], "p/cam/availability");
  EXPECT_EQ(sensor["payload_available"], "online");
  EXPECT_EQ(sensor["payload_not_available"], "offline");
  EXPECT_EQ(sensor["device"]["name"], "cam");
}

TEST_F(AnnouncerTest, AnnouncesACameraAsASensorOfTheSameDevice) {
  announcer_.introduce("homeassistant");
  const Json::Value motion = parsed(messages_[0].payload);
  messages_.clear();
  announcer_.camera({CameraState::kConnected, kNoon});
  ASSERT_EQ(messages_.size(), 2U);
  EXPECT_EQ(messages_[0].topic, "homeassistant/sensor/p_cam/config");
  const Json::Value camera = parsed(messages_[0].payload);
  EXPECT_EQ(camera["device"], motion["device"]);
  EXPECT_NE(camera["unique_id"], motion["unique_id"]);
  EXPECT_EQ(camera["state_topic"], "p/cam/camera");
  EXPECT_EQ(camera["value_template"], "{{ value_json.camera }}");
  EXPECT_EQ(camera["options"].size(), 5U);
  EXPECT_FALSE(camera.isMember("availability_topic")) << "it is about what makes the other unavailable";
}

}  // namespace
