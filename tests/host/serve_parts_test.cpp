// The server's parts that can be tested separately.
#include <gtest/gtest.h>

#include <filesystem>

#include "host/commands/serve/config_file.h"
#include "host/commands/serve/event_log.h"
#include "host/commands/serve/guard.h"
#include "host/commands/serve/pace.h"
#include "host/commands/serve/shot.h"
#include "host/commands/serve/showcase.h"
#include "host/commands/serve/viewers.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::commands::serve;
using namespace lm::host::events;
using namespace std::chrono_literals;

int status_of(const Gate& gate, const Credentials& shown) {
  const auto turned = turned_away(gate, shown, true);
  return turned ? turned->status : 200;
}

TEST(Guard, AcceptsAnyHostWithAToken) {
  const Gate gate{"0.0.0.0", 8420, "secret"};
  const std::string right = "Bearer secret";
  EXPECT_EQ(status_of(gate, {.host = "camera.lan:8420", .authorization = right}), 200);
  EXPECT_EQ(status_of(gate, {"camera.lan:8420", "http://camera.lan:8420", "same-origin", right}), 200);
  EXPECT_EQ(status_of(gate, {"camera.lan", "https://camera.lan", "same-origin", right}), 200);
  EXPECT_EQ(status_of(gate, {"camera.lan:8420", "http://other.lan:8420", "", right}), 403);
  EXPECT_EQ(status_of(gate, {.host = "camera.lan:8420"}), 401);
  EXPECT_FALSE(turned_away(gate, {.host = "camera.lan:8420"}, false)) << "the page itself";
}

TEST(Guard, ComparesTheWholeToken) {
  const Gate gate{"0.0.0.0", 8420, "secret"};
  for (const char* wrong : {"Bearer secretx", "Bearer secre", "Bearer secreT", "bearer secret", "secret", ""})
    EXPECT_EQ(status_of(gate, {.host = "camera.lan:8420", .authorization = wrong}), 401) << wrong;
}

TEST(Guard, AcceptsAProxyWithTheToken) {
  const Gate gate{"127.0.0.1", 8420, "secret"};
  EXPECT_EQ(status_of(gate, {"camera.lan", "https://camera.lan", "same-origin", "Bearer secret"}), 200);
  EXPECT_EQ(status_of({"127.0.0.1", 8420, ""}, {"camera.lan", "https://camera.lan", "same-origin", ""}), 403);
}

TEST(Guard, AcceptsPortEightyWithoutItsNumber) {
  const Gate gate{.port = 80};
  EXPECT_EQ(status_of(gate, {.host = "localhost"}), 200);
  EXPECT_EQ(status_of({.port = 81}, {.host = "localhost"}), 403);
}

TEST(Guard, RecognisesLoopbackAddresses) {
  for (const char* host : {"localhost", "127.0.0.1", "127.1.2.3", "::1"})
    EXPECT_TRUE(is_loopback(host)) << host;
  for (const char* host : {"0.0.0.0", "::", "192.168.1.2", "1270.example", "127.example"})
    EXPECT_FALSE(is_loopback(host)) << host;
  EXPECT_EQ(authority("::1", 8420), "[::1]:8420");
}

TEST(Guard, GeneratesDifferentTokens) {
  const std::string token = random_token();
  EXPECT_EQ(token.size(), 32U);  // 16 bytes
  EXPECT_EQ(token.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_NE(token, random_token());
}

TEST(Viewers, ExpireTenSecondsAfterTheirLastRequest) {
  Viewers viewers;
  const Viewers::Clock::time_point start{};
  for (std::size_t i = 0; i < Viewers::kMost; ++i) {
    ASSERT_TRUE(viewers.enter(std::to_string(i), start));
    viewers.leave(std::to_string(i), start + 5s);
  }
  EXPECT_FALSE(viewers.enter("late", start + 15s));
  EXPECT_EQ(viewers.count(start + 15s), Viewers::kMost);
  EXPECT_TRUE(viewers.enter("late", start + 15s + 1ms));
  EXPECT_EQ(viewers.count(start + 15s + 1ms), 1U);
}

TEST(Viewers, StayAsLongAsTheyWait) {
  Viewers viewers;
  ASSERT_TRUE(viewers.enter("a", {}));
  EXPECT_EQ(viewers.count(Viewers::Clock::time_point{} + 1h), 1U);
}

TEST(Viewers, MayWaitTwiceAtATime) {
  Viewers viewers;
  EXPECT_TRUE(viewers.enter("a", {}));
  EXPECT_TRUE(viewers.enter("a", {}));
  EXPECT_FALSE(viewers.enter("a", {}));
  viewers.leave("a", {});
  EXPECT_TRUE(viewers.enter("a", {}));
}

TEST(Pace, FollowsTheTimesOfTheVideo) {
  Pace pace;
  const Pace::Clock::time_point start{1h};
  EXPECT_EQ(pace.due(5s, start), start) << "the first one at once";
  EXPECT_EQ(pace.due(5s + 40ms, start + 10ms), start + 40ms);
  EXPECT_EQ(pace.due(5s + 80ms, start + 180ms), start + 80ms) << "100 ms late still counts";
}

TEST(Pace, SkipsLateFramesAndRestartsAfterALongWait) {
  Pace pace;
  const Pace::Clock::time_point start{1h};
  pace.due(0s, start);
  EXPECT_EQ(pace.due(40ms, start + 141ms), std::nullopt);
  EXPECT_EQ(pace.due(80ms, start + 141ms), start + 80ms);
  EXPECT_EQ(pace.due(120ms, start + 5s), start + 5s);
  EXPECT_EQ(pace.due(160ms, start + 5s), start + 5s + 40ms);
  pace.reset();
  EXPECT_EQ(pace.due(1h, start + 6s), start + 6s);
}

Observation box_at(std::chrono::microseconds time, double width) {
  Observation seen;
  seen.time = time;
  seen.boxes = {{{0, 0, width, 1}}};
  return seen;
}

Event event_of(const char* id, std::chrono::microseconds start, std::chrono::microseconds end) {
  Event event;
  event.id = id;
  event.start = start;
  event.end = end;
  return event;
}

TEST(EventLog, KeepsTheLargestShareOfEachSecond) {
  EventLog log;
  const auto pass = log.begin_pass();
  for (const auto& [time, width] : {std::pair{100ms, 0.25}, {900ms, 0.5}, {950ms, 0.125}, {2100ms, 0.75}}) {
    pass->frame({}, box_at(time, width));
  }
  const Json::Value activity = log.value()["activity"];
  ASSERT_EQ(activity.size(), 2U);
  EXPECT_EQ(activity[0][0], 0);
  EXPECT_EQ(activity[0][1].asDouble(), 0.5);
  EXPECT_EQ(activity[1][0], 2);
  EXPECT_EQ(activity[1][1].asDouble(), 0.75);
}

TEST(EventLog, KeepsWhatAnEarlierPassFoundUntilItIsOvertaken) {
  EventLog log;
  const auto first = log.begin_pass();
  first->frame({}, box_at(1s, 0.5));
  first->begun(event_of("0001", 1s, 2s));
  first->frame({}, box_at(5s, 0.5));
  first->begun(event_of("0002", 5s, 6s));
  EXPECT_EQ(log.events(), 2);
  const auto second = log.begin_pass();
  EXPECT_EQ(log.events(), 0);
  second->frame({}, box_at(0s, 0.125));
  EXPECT_EQ(log.value()["events"].size(), 2U);
  second->frame({}, box_at(1500ms, 0.25));
  second->begun(event_of("0001", 1200ms, 1500ms));
  const Json::Value now = log.value();
  ASSERT_EQ(now["events"].size(), 2U);
  EXPECT_EQ(now["events"][0]["start"].asDouble(), 1.2) << "the newest first";
  EXPECT_EQ(now["events"][1]["start"].asDouble(), 5);
  EXPECT_NE(now["events"][0]["id"], now["events"][1]["id"]);
  EXPECT_EQ(now["activity"][1][1].asDouble(), 0.25) << "of second 1";
  EXPECT_EQ(now["activity"][2][1].asDouble(), 0.5) << "of second 5, by the pass before";
}

TEST(EventLog, LeavesWhatLiesBeforeTheBeginningOfAPass) {
  EventLog log;
  const auto first = log.begin_pass();
  first->begun(event_of("0001", 1s, 2s));
  const auto second = log.begin_pass();
  second->frame({}, box_at(10s, 0.5));
  EXPECT_EQ(log.value()["events"].size(), 1U);
}

TEST(EventLog, LeavesWhatEndedWhereAPassBegins) {
  EventLog log;
  const auto first = log.begin_pass();
  first->begun(event_of("0001", 1s, 10s));
  const auto second = log.begin_pass();
  second->frame({}, box_at(10s, 0.5));
  EXPECT_EQ(log.value()["events"].size(), 1U) << "the detector was started anew in the middle of it";
  const auto third = log.begin_pass();
  third->frame({}, box_at(9900ms, 0.5));
  EXPECT_EQ(log.value()["events"].size(), 0U);
}

TEST(EventLog, FollowsAnEventToItsEnd) {
  EventLog log;
  const auto pass = log.begin_pass();
  Event event = event_of("0001", 1s, 2s);
  event.started = "It began.";
  pass->begun(event);
  EXPECT_EQ(log.value()["events"][0]["end"].asDouble(), 2);
  EXPECT_EQ(log.value()["events"][0]["ended"], "");
  event.end = 3s;
  event.ended = "It ended.";
  pass->ended(event);
  EXPECT_EQ(log.value()["events"][0]["end"].asDouble(), 3);
  EXPECT_EQ(log.value()["events"][0]["started"], "It began.");
  EXPECT_EQ(log.value()["events"][0]["ended"], "It ended.");
}

TEST(EventLog, KeepsFiveHundredEvents) {
  EventLog log;
  const auto pass = log.begin_pass();
  for (int i = 0; i < 501; ++i) pass->begun(event_of(std::to_string(i).c_str(), i * 1s, i * 1s));
  const Json::Value events = log.value()["events"];
  ASSERT_EQ(events.size(), 500U);
  EXPECT_EQ(events[0]["start"].asDouble(), 500);
  EXPECT_EQ(events[499]["start"].asDouble(), 1);
}

TEST(EventLog, KeepsTheActivityOfFourHours) {
  EventLog log;
  const auto pass = log.begin_pass();
  for (int second = 0; second < 14'402; ++second) pass->frame({}, box_at(second * 1s, 0.5));
  const Json::Value activity = log.value()["activity"];
  ASSERT_EQ(activity.size(), 14'400U);
  EXPECT_EQ(activity[0][0], 2) << "the oldest two are dropped";
  EXPECT_EQ(activity[14'399][0], 14'401);
}

TEST(Showcase, ShowsAnotherShotThanTheOneKnown) {
  Showcase showcase;
  EXPECT_EQ(showcase.wait(0, 0ms).shot, nullptr);
  Shot shot;
  shot.image = cv::Mat(8, 8, CV_8UC3, cv::Scalar(1, 2, 3));
  showcase.show(shot);
  const Showcase::View view = showcase.wait(0, 0ms);
  ASSERT_NE(view.shot, nullptr);
  EXPECT_EQ(view.shot->sequence, 1U);
  EXPECT_EQ(view.jpeg.substr(0, 2), "\xff\xd8");
  EXPECT_EQ(showcase.wait(1, 0ms).shot, nullptr);
  EXPECT_NE(showcase.wait(77, 0ms).shot, nullptr) << "from before the server was started anew";
  showcase.show_again(9);
  EXPECT_EQ(showcase.wait(1, 0ms).shot->state, 9U);
  showcase.close();
  EXPECT_EQ(showcase.wait(0, 1h).shot, nullptr);
}

TEST(PagePicture, HasNoSideAbove1280) {
  // The JPEG start-of-frame segment: ff c0, length (2), precision (1), height (2), width (2).
  const std::string jpeg = page_picture(cv::Mat(1080, 1920, CV_8UC3, cv::Scalar(9, 9, 9)), {1, 1});
  const std::size_t place = jpeg.find("\xff\xc0");
  ASSERT_NE(place, std::string::npos);
  const auto number = [&](std::size_t at) {
    return static_cast<unsigned char>(jpeg[place + at]) * 256 +
           static_cast<unsigned char>(jpeg[place + at + 1]);
  };
  EXPECT_EQ(number(5), 720);  // 1080 * 1280 / 1920
  EXPECT_EQ(number(7), 1280);
}

TEST(SaveDocument, KeepsPermissions) {
  namespace fs = std::filesystem;
  const program::Folder folder;
  const std::string file = folder / "a.json";
  program::write(file, "one");
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(save_document(file, "two"), file + ".bak");
  EXPECT_EQ(save_document(file, "three"), file + ".bak");
  EXPECT_EQ(program::read(file), "three");
  EXPECT_EQ(program::read(file + ".bak"), "two");
  for (const std::string& name : {file, file + ".bak"}) {
    EXPECT_EQ(fs::status(name).permissions(), fs::perms::owner_read | fs::perms::owner_write) << name;
  }
}

}  // namespace
