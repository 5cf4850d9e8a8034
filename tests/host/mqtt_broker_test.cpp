// MQTT output as subscribers receive it, with Debian's broker on the loopback interface.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <sstream>

#include "host/base/failure.h"
#include "host/base/standard_streams.h"
#include "host/outputs/mqtt/mqtt_listener.h"
#include "tests/host/broker.h"

namespace {

using namespace lm::host::base;
using namespace lm::host::events;
using namespace lm::host::outputs::mqtt;
using namespace std::chrono_literals;
using broker::Broker;
using broker::Subscriber;
using Lines = std::vector<std::string>;

Event event(const std::string& id, std::chrono::microseconds end) {
  Event made;
  made.id = id;
  made.end = end;
  return made;
}

std::vector<std::string> ids(const Lines& payloads) {
  std::vector<std::string> found;
  for (const std::string& payload : payloads) {
    Json::Value value;
    std::istringstream(payload) >> value;
    found.push_back(value["id"].asString());
  }
  return found;
}

// At least once: a message in flight when the broker died may arrive twice.
std::vector<std::string> without_repetitions(std::vector<std::string> list) {
  list.erase(std::unique(list.begin(), list.end()), list.end());
  return list;
}

class Mqtt : public testing::Test {
 protected:
  void SetUp() override {
    if (!Broker::installed()) GTEST_SKIP() << "mosquitto is not installed";
  }

  MqttOptions options(const std::string& prefix = "/home") const {
    return {.address = broker_.address() + prefix, .camera = "hall"};
  }

  Broker broker_;
};

TEST_F(Mqtt, PublishesEventsAndTheCamerasState) {
  broker_.start();
  Subscriber reader(broker_);
  MqttListener listener(options(), "");
  ASSERT_TRUE(reader.wait_for("home/hall/availability", "online"));
  ASSERT_TRUE(reader.wait_for("home/hall/motion", "OFF"));
  ASSERT_TRUE(reader.wait_for("homeassistant/binary_sensor/home_hall/config", "\"device_class\":\"motion\""));
  listener.begun(event("a", 1s));
  ASSERT_TRUE(reader.wait_for("home/hall/event/new", "\"a\""));
  ASSERT_TRUE(reader.wait_for("home/hall/motion", "ON"));
  listener.changed(event("a", 2s));
  listener.ended(event("a", 3s));
  listener.finish();
  ASSERT_TRUE(reader.wait_for("home/hall/availability", "offline"));
  EXPECT_EQ(ids(reader.payloads("home/hall/event/update")), Lines{"a"});
  EXPECT_EQ(ids(reader.payloads("home/hall/event/end")), Lines{"a"});
  EXPECT_EQ(reader.payloads("home/hall/motion"), (Lines{"OFF", "ON", "OFF"}));
  EXPECT_EQ(reader.payloads("home/hall/availability"), (Lines{"online", "offline"}));
}

TEST_F(Mqtt, RetainsStatesForLaterSubscribers) {
  broker_.start();
  {
    MqttListener listener(options(), "");
    listener.begun(event("a", 1s));
    listener.finish();
  }
  Subscriber late(broker_);
  EXPECT_TRUE(late.wait_for("home/hall/availability", "offline"));
  EXPECT_TRUE(late.wait_for("home/hall/motion", "OFF"));
  EXPECT_TRUE(late.wait_for("homeassistant/binary_sensor/home_hall/config", "motion"));
  EXPECT_EQ(late.payloads("home/hall/event/new"), Lines{}) << "an event is no state";
}

TEST_F(Mqtt, LosesNothingWhenTheBrokerIsKilledAndRestarted) {
  broker_.start();
  Subscriber reader(broker_);
  broker_.save();
  MqttListener listener(options(), "");
  listener.begun(event("a", 1s));
  ASSERT_TRUE(reader.wait_for("home/hall/event/new", "\"a\""));
  // More than are sent before the first is acknowledged, to a broker that acknowledges none.
  broker_.freeze();
  Lines all{"a"};
  for (int i = 0; i < 50; ++i) {
    all.push_back(std::string("b").append(std::to_string(i)));
    listener.ended(event(all[all.size() - 2], 2s));
    listener.begun(event(all.back(), 2s));
  }
  broker_.kill();
  listener.ended(event(all.back(), 3s));
  broker_.start();
  ASSERT_TRUE(reader.wait_for("home/hall/event/end", "\"b49\""));
  listener.finish();
  EXPECT_EQ(without_repetitions(ids(reader.payloads("home/hall/event/new"))), all);
  EXPECT_EQ(without_repetitions(ids(reader.payloads("home/hall/event/end"))), all);
}

TEST_F(Mqtt, RepublishesStatesToABrokerThatLostThem) {
  broker_.start();
  Subscriber reader(broker_);
  broker_.save();
  MqttListener listener(options(), "");
  ASSERT_TRUE(reader.wait_for("home/hall/motion", "OFF"));
  broker_.kill();
  broker_.start();
  const auto twice = [](const Subscriber::Messages& messages) {
    return std::ranges::count(messages, "OFF", &broker::Message::payload) >= 2;
  };
  EXPECT_TRUE(reader.wait(twice));
  Subscriber late(broker_);
  EXPECT_TRUE(late.wait_for("home/hall/availability", "online"));
  EXPECT_TRUE(late.wait_for("homeassistant/binary_sensor/home_hall/config", "motion"));
}

TEST_F(Mqtt, KeepsBeginningsAndEndsForABrokerThatStartsLate) {
  CapturedStream errors(stderr);
  broker_.start();
  Subscriber reader(broker_);
  broker_.save();
  broker_.kill();
  MqttListener listener(options(), "", 60s);
  listener.begun(event("a", 0s));
  for (int i = 1; i <= 1100; ++i) listener.changed(event("a", std::chrono::seconds(i)));
  listener.ended(event("a", 1100s));
  listener.begun(event("b", 1101s));
  broker_.start();
  listener.finish();
  ASSERT_TRUE(reader.wait_for("home/hall/event/end", "\"a\""));
  ASSERT_TRUE(reader.wait_for("home/hall/event/new", "\"b\""));
  EXPECT_EQ(without_repetitions(ids(reader.payloads("home/hall/event/new"))), (Lines{"a", "b"}));
  EXPECT_EQ(without_repetitions(ids(reader.payloads("home/hall/event/end"))), Lines{"a"});
  EXPECT_EQ(reader.payloads("home/hall/event/update"), Lines{}) << "out of date";
  EXPECT_EQ(errors.text().find("queue full"), std::string::npos) << errors.text();
}

TEST_F(Mqtt, SendsOnlyTheCurrentStateAfterAnOutage) {
  broker_.start();
  Subscriber reader(broker_);
  broker_.save();
  MqttListener listener(options(), "");
  ASSERT_TRUE(reader.wait_for("home/hall/motion", "OFF"));
  broker_.freeze();  // what is sent now is in flight when the connection breaks
  for (int i = 0; i < 5; ++i) {
    const std::string id(1, static_cast<char>('a' + i));
    listener.begun(event(id, 1s));
    for (int end = 2; end < 20; ++end) listener.changed(event(id, std::chrono::seconds(end)));
    listener.ended(event(id, 20s));
  }
  broker_.kill();
  broker_.start();
  ASSERT_TRUE(reader.wait_for("home/hall/event/end", "\"e\""));
  listener.finish();
  ASSERT_TRUE(reader.wait_for("home/hall/availability", "offline"));
  EXPECT_EQ(without_repetitions(ids(reader.payloads("home/hall/event/new"))).size(), 5U);
  EXPECT_EQ(reader.payloads("home/hall/event/update"), Lines{});
  const Lines motion = reader.payloads("home/hall/motion");
  EXPECT_EQ(std::ranges::count(motion, "ON"), 0) << "there was motion, but there is none";
}

TEST_F(Mqtt, ReportsAnUnreachableBrokerOnceAndDoesNotStopTheRun) {
  CapturedStream errors(stderr);
  MqttListener listener(options(), "", 100ms);
  listener.begun(event("a", 1s));
  listener.finish();
  const std::string broker = "lightmotion: warning: " + broker_.address() + ": ";
  // Discovery, availability, motion and the event.
  EXPECT_EQ(errors.text(), broker + "Connection refused; retrying\n" + broker + "4 messages not sent\n");
}

TEST_F(Mqtt, TakesThePasswordFromAFile) {
  Broker guarded("allow_anonymous false\npassword_file " + (broker_.folder() / "users") + "\n");
  const std::string command = "mosquitto_passwd -b -c " + (broker_.folder() / "users") + " me 'p@ss word'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  program::write(broker_.folder() / "password", "p@ss word\n");
  guarded.start();
  const std::string address = "mqtt://me@127.0.0.1:" + std::to_string(guarded.port());
  CapturedStream errors(stderr);
  {
    MqttListener listener({.address = address, .password_file = broker_.folder() / "password"}, "", 60s);
    listener.finish();
  }
  EXPECT_EQ(errors.text(), "");
  {
    MqttListener listener({.address = address}, "", 100ms);
    listener.finish();
  }
  EXPECT_NE(errors.text().find("not authorised"), std::string::npos) << errors.text();
}

TEST_F(Mqtt, IsPublishedByTheProgram) {
  broker_.start();
  Subscriber reader(broker_);
  const program::Outcome outcome =
      program::run({"run", "-o", "/dev/null", "--quiet", "--mqtt", broker_.address()});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  ASSERT_TRUE(reader.wait_for("lightmotion/builtin/availability", "offline"));
  const Lines begun = ids(reader.payloads("lightmotion/builtin/event/new"));
  EXPECT_FALSE(begun.empty());
  EXPECT_EQ(ids(reader.payloads("lightmotion/builtin/event/end")).size(), begun.size());
  EXPECT_EQ(reader.payloads("lightmotion/builtin/motion").back(), "OFF");
}

TEST_F(Mqtt, PublishesTheWillWhenTheProgramIsKilled) {
  broker_.start();
  Subscriber reader(broker_);
  // Nobody reads its results, so it does not reach its end.
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  const pid_t process = program::start(
      {"run", "--plugin", LIGHTMOTION_FAKE_PLUGIN, "--mqtt", broker_.address()}, ends[1], nowhere);
  ASSERT_TRUE(reader.wait_for("lightmotion/builtin/availability", "online"));
  kill(process, SIGKILL);
  program::wait_for(process);
  EXPECT_TRUE(reader.wait_for("lightmotion/builtin/availability", "offline"));
  for (const int handle : {ends[0], ends[1], nowhere}) close(handle);
}

TEST_F(Mqtt, PublishesTheEndOfEventsWhenTheProgramIsStopped) {
  broker_.start();
  Subscriber reader(broker_);
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  const pid_t process = program::start(
      {"run", "--plugin", LIGHTMOTION_FAKE_PLUGIN, "--mqtt", broker_.address()}, ends[1], nowhere);
  close(ends[1]);
  ASSERT_TRUE(reader.wait_for("lightmotion/builtin/event/new", "{"));
  kill(process, SIGINT);
  char piece[4096];
  while (read(ends[0], piece, sizeof piece) > 0) {
  }
  EXPECT_EQ(program::wait_for(process), 130);
  EXPECT_TRUE(reader.wait_for("lightmotion/builtin/availability", "offline"));
  EXPECT_EQ(ids(reader.payloads("lightmotion/builtin/event/end")),
            ids(reader.payloads("lightmotion/builtin/event/new")));
  EXPECT_EQ(reader.payloads("lightmotion/builtin/motion").back(), "OFF");
  for (const int handle : {ends[0], nowhere}) close(handle);
}

TEST(MqttTopic, ThatIsNoTextIsRefused) {
  try {
    MqttListener listener({.address = "mqtt://127.0.0.1/\xff"}, "", 0ms);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), kRefused);
    EXPECT_TRUE(std::string(failure.what()).starts_with("MQTT: topic ")) << failure.what();
  }
}

}  // namespace
