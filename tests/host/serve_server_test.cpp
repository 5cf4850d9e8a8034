// The server's answers and access control.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <opencv2/core.hpp>

#include "tests/host/clips.h"
#include "tests/host/program.h"
#include "tests/host/serve_page.h"

namespace {

using program::Folder;
using serve::Answer;
using serve::Page;
using testing::HasSubstr;

bool has_boxes(const Json::Value& about) { return !about["boxes"].empty(); }

TEST(ServePage, IsThereWithItsModulesAndAPolicyForThem) {
  Page page;
  const Answer index = page.get("/");
  EXPECT_EQ(index.status, 200);
  EXPECT_THAT(index.body, HasSubstr("<!doctype html>"));
  EXPECT_THAT(index.headers.find("Content-Security-Policy")->second, HasSubstr("default-src 'self'"));
  EXPECT_EQ(index.headers.find("X-Content-Type-Options")->second, "nosniff");
  EXPECT_EQ(page.get("/style.css").headers.find("Content-Type")->second, "text/css; charset=utf-8");
  EXPECT_EQ(page.get("/main.js").headers.find("Content-Type")->second, "text/javascript; charset=utf-8");
}

TEST(ServePage, HasNothingElse) {
  Page page;
  for (const char* path : {"/page", "/../etc/passwd", "/%2e%2e/%2e%2e/etc/passwd", "//etc/passwd", "/api",
                           "/api/", "/api/states", "/index.html/"}) {
    const Answer answer = page.get(path);
    EXPECT_EQ(answer.status, 404) << path;
    EXPECT_TRUE(answer.json["error"].isString()) << path;
  }
  EXPECT_EQ(page.get("/" + std::string(7000, 'a')).status, 404);
  EXPECT_EQ(page.get("/api/play").status, 404);
  EXPECT_EQ(page.post("/api/state", "{}").status, 405);
}

TEST(ServeState, DescribesTheSourceAndTheDocument) {
  Page page;
  const Json::Value state = page.state();
  EXPECT_EQ(state["source"]["name"], "built-in scene");
  EXPECT_EQ(state["source"]["width"], 640);
  EXPECT_EQ(state["source"]["height"], 360);
  EXPECT_EQ(state["source"]["duration"].asDouble(), 20);
  EXPECT_EQ(state["source"]["frame_rate"].asDouble(), 25);
  EXPECT_EQ(state["source"]["live"], false);
  EXPECT_EQ(state["playing"], true);
  EXPECT_EQ(state["loop"], 1);
  EXPECT_EQ(state["configuration"], serve::Setup().document);
  EXPECT_EQ(state["saved"], false);
  EXPECT_TRUE(state["file"].isNull());
  EXPECT_EQ(state["problem"], "");
  EXPECT_EQ(state["comparing"], false);
  EXPECT_FALSE(state["presets"].empty());
}

TEST(ServeFrame, ReturnsEachPictureWithItsBoxes) {
  Page page;
  const Answer first = page.next_picture();
  ASSERT_EQ(first.status, 200);
  EXPECT_EQ(first.headers.find("Content-Type")->second, "image/jpeg");
  EXPECT_EQ(first.body.substr(0, 2), "\xff\xd8");
  const Answer second = page.next_picture();
  EXPECT_GT(second.about["sequence"].asInt64(), first.about["sequence"].asInt64());
  EXPECT_GT(second.about["time"].asDouble(), first.about["time"].asDouble());
  const Json::Value moving = page.picture_with(has_boxes);
  EXPECT_EQ(moving["boxes"][0].getMemberNames(),
            (std::vector<std::string>{"height", "id", "width", "x", "y"}));
  EXPECT_GT(moving["plugin_ms"].asDouble(), 0);
  EXPECT_FALSE(moving.isMember("baseline"));
}

TEST(ServeFrame, RequiresAViewer) {
  Page page;
  EXPECT_EQ(page.get("/api/frame?after=-1").status, 400);
  EXPECT_EQ(page.get("/api/frame?viewer=" + std::string(65, 'a')).status, 400);
}

TEST(ServeFrame, AcceptsEightViewers) {
  Page page;
  for (int i = 0; i < 8; ++i)
    EXPECT_EQ(page.get("/api/frame?after=-1&viewer=v" + std::to_string(i)).status, 200);
  EXPECT_EQ(page.state()["viewers"], 8);
  const Answer ninth = page.get("/api/frame?after=-1&viewer=v8");
  EXPECT_EQ(ninth.status, 503);
  EXPECT_THAT(ninth.json["error"].asString(), HasSubstr("8"));
  EXPECT_EQ(page.get("/api/frame?after=-1&viewer=v3").status, 200);
}

TEST(ServePlay, ShowsTheRequestedTimeWithATrainedDetector) {
  Page page;
  EXPECT_EQ(page.post("/api/play", R"({"playing":false,"time":6})").json["playing"], false);
  const Json::Value about =
      page.picture_with([](const Json::Value& one) { return one["time"].asDouble() == 6; });
  EXPECT_EQ(about["frame"], 150);
  EXPECT_TRUE(has_boxes(about)) << "people walk by at 6 s";
  EXPECT_EQ(page.state()["time"].asDouble(), 6);
}

TEST(ServePlay, ContinuesAfterwards) {
  Page page;
  page.post("/api/play", R"({"playing":false,"time":6})");
  page.picture_with([](const Json::Value& one) { return one["time"].asDouble() == 6; });
  page.post("/api/play", R"({"playing":true})");
  EXPECT_FALSE(page.picture_with([](const Json::Value& one) { return one["time"].asDouble() > 6; }).isNull());
}

TEST(ServePlay, StartsOverAtTheEnd) {
  Page page;
  page.post("/api/play", R"({"time":19.8})");
  const Json::Value state = page.state_with([](const Json::Value& one) { return one["loop"] == 2; });
  EXPECT_LT(state["time"].asDouble(), 20);
  EXPECT_FALSE(page.picture_with([](const Json::Value& one) { return one["time"].asDouble() < 1; }).isNull());
}

TEST(ServePlay, RefusesWhatItDoesNotUnderstand) {
  Page page;
  for (const char* body : {"", "{", "[]", "7", R"({"playing":1})", R"({"time":"soon"})", R"({"time":-1})",
                           R"({"time":1e300})"}) {
    const Answer answer = page.post("/api/play", body);
    EXPECT_EQ(answer.status, 400) << body;
    EXPECT_TRUE(answer.json["error"].isString()) << body;
  }
  EXPECT_EQ(page.state()["playing"], true);
}

TEST(ServeStill, ShowsAnyMomentWithoutDisturbingThePlayer) {
  Page page;
  page.post("/api/play", R"({"playing":false,"time":6})");
  page.picture_with([](const Json::Value& one) { return one["time"].asDouble() == 6; });
  const Answer still = page.get("/api/still?time=13.21");
  EXPECT_EQ(still.status, 200);
  EXPECT_EQ(still.body.substr(0, 2), "\xff\xd8");
  EXPECT_EQ(still.about["time"].asDouble(), 13.24);  // frames are 40 ms apart
  EXPECT_EQ(page.get("/api/still?time=2").about["time"].asDouble(), 2);
  EXPECT_EQ(page.get("/api/still?time=20").about["time"].asDouble(), 19.96) << "the last picture";
  EXPECT_EQ(page.state()["time"].asDouble(), 6);
  for (const char* time : {"", "soon", "-1", "nan", "1e300"}) {
    EXPECT_EQ(page.get(std::string("/api/still?time=") + time).status, 400) << time;
  }
}

// The frames at 33.367 and 66.733 ms are shown as 0.033 and 0.067 s.
TEST(ServeStill, FindsTheFrameWhoseTimeWasRounded) {
  const Folder folder;
  clips::Times times;
  for (int i = 0; i < 10; ++i) times.emplace_back(i * 1'001'000'000LL / 30'000);
  clips::write(folder / "a.mp4", {64, 48}, times);
  Page page({.source = folder / "a.mp4"});
  for (const auto& [asked, shown] : {std::pair{"0.033", 0.033}, {"0.034", 0.067}, {"0.067", 0.067}})
    EXPECT_EQ(page.get(std::string("/api/still?time=") + asked).about["time"].asDouble(), shown) << asked;
}

TEST(ServeEvents, ListsWhatHappenedAndWhen) {
  Page page;
  page.post("/api/play", R"({"time":5})");
  page.picture_with([](const Json::Value& one) { return one["event_count"].asInt() > 0; });
  const Json::Value events = page.get("/api/events").json;
  EXPECT_EQ(events["duration"].asDouble(), 20);
  ASSERT_GE(events["events"].size(), 1U);
  const Json::Value& event = events["events"][0];
  EXPECT_EQ(event["kind"], "motion");
  EXPECT_GE(event["start"].asDouble(), 5);
  EXPECT_GE(event["end"].asDouble(), event["start"].asDouble());
  EXPECT_EQ(event["ended"], "") << "it goes on";
  EXPECT_EQ(event["regions"][0], "frame");
  EXPECT_GT(event["peak_share"].asDouble(), 0);
  ASSERT_FALSE(events["activity"].empty());
  EXPECT_EQ(events["activity"][0].size(), 2U);
}

TEST(ServeCheck, ReportsHowThePluginInterpretsADocument) {
  Page page;
  const Answer answer = page.post("/api/check", R"({"sensitivty":"3"})");
  EXPECT_EQ(answer.status, 200);
  ASSERT_EQ(answer.json["findings"].size(), 1U);
  EXPECT_EQ(answer.json["findings"][0]["key"], "sensitivty");
  EXPECT_TRUE(answer.json["effective"].isObject());
}

TEST(ServeApply, RestartsTheDetectorWithTheDocument) {
  Page page;
  const std::string huge = R"({"minBoxW":"1","minBoxH":"1"})";  // no box is as large as the frame
  page.post("/api/play", R"({"playing":false,"time":6})");
  ASSERT_FALSE(page.picture_with(has_boxes).isNull());
  EXPECT_EQ(page.post("/api/apply", huge).status, 200);
  EXPECT_EQ(page.state()["configuration"], huge);
  const Json::Value about = page.picture_with([](const Json::Value& one) { return one["boxes"].empty(); });
  EXPECT_EQ(about["time"].asDouble(), 6) << "the same moment";
}

TEST(ServeApply, ChangesNothingWhenTheDocumentIsRefused) {
  Page page;
  for (const char* document :
       {"", "{", "[]", R"({"frmW":"100"})", R"({"sensitivity":"high"})", R"({"roi":[]})"}) {
    const Answer answer = page.post("/api/apply", document);
    EXPECT_EQ(answer.status, 422) << document;
    EXPECT_FALSE(answer.json["error"].asString().empty()) << document;
    EXPECT_FALSE(answer.json["findings"].empty()) << document;
  }
  EXPECT_EQ(page.state()["configuration"], serve::Setup().document);
  EXPECT_FALSE(page.picture_with(has_boxes).isNull());
}

TEST(ServeCompare, ShowsTheSameMomentsWithTheOtherDocument) {
  Page page;
  page.post("/api/play", R"({"playing":false,"time":6})");
  const std::string huge = R"({"minBoxW":"1","minBoxH":"1"})";
  EXPECT_EQ(page.post("/api/compare",
                      Json::valueToQuotedString(huge.c_str()).insert(0, "{\"configuration\":") + "}")
                .status,
            200);
  EXPECT_EQ(page.state()["comparing"], true);
  const Json::Value about =
      page.picture_with([](const Json::Value& one) { return one.isMember("baseline"); });
  EXPECT_TRUE(has_boxes(about));
  EXPECT_TRUE(about["baseline"]["boxes"].empty()) << "no box is as large as the frame";
  EXPECT_EQ(page.post("/api/compare", R"({"configuration":null})").status, 200);
  EXPECT_EQ(page.state()["comparing"], false);
  EXPECT_FALSE(page.picture_with([](const Json::Value& one) { return !one.isMember("baseline"); }).isNull());
  EXPECT_EQ(page.post("/api/compare", R"({"configuration":"{"})").status, 422);
  EXPECT_EQ(page.post("/api/compare", R"({"configuration":7})").status, 400);
}

TEST(ServeSave, WritesTheFileAndKeepsTheOneBefore) {
  const Folder folder;
  const std::string file = folder / "street.json";
  program::write(file, "{ }");
  Page page({.config = file});
  const std::string document = "{\"sensitivity\":  \"5\"}\n";
  const Answer answer = page.post("/api/save", document);
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.json["file"], file);
  EXPECT_EQ(answer.json["backup"], file + ".bak");
  EXPECT_EQ(program::read(file), document);
  EXPECT_EQ(program::read(file + ".bak"), "{ }");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"street.json", "street.json.bak"}));
  EXPECT_EQ(page.state()["saved"], false) << "what is in force is another";
  page.post("/api/apply", document);
  EXPECT_EQ(page.state()["saved"], true);
}

TEST(ServeSave, CreatesAMissingFile) {
  const Folder folder;
  Page page({.config = folder / "new.json"});
  EXPECT_TRUE(page.post("/api/save", "{}").json["backup"].isNull());
  EXPECT_EQ(program::read(folder / "new.json"), "{}");
}

TEST(ServeSave, RefusesWhatCannotWorkAndWhatHasNoPlace) {
  const Folder folder;
  program::write(folder / "a.json", "{}");
  Page page({.config = folder / "a.json"});
  EXPECT_EQ(page.post("/api/save", "{").status, 422);
  EXPECT_EQ(program::read(folder / "a.json"), "{}");
  EXPECT_EQ(Page().post("/api/save", "{}").status, 409);
  EXPECT_EQ(Page({.config = folder / "missing/a.json"}).post("/api/save", "{}").status, 500);
}

TEST(ServeDocument, IsADownload) {
  Page page({.config = "/nowhere/my \"street\".json"});
  const Answer answer = page.get("/api/configuration");
  EXPECT_EQ(answer.body, serve::Setup().document);
  EXPECT_EQ(answer.headers.find("Content-Disposition")->second, "attachment; filename=\"my _street_.json\"");
}

struct Stranger {
  const char* name;
  httplib::Headers headers;
};

class Intruders : public testing::TestWithParam<Stranger> {};

TEST_P(Intruders, AreRefusedWithAReason) {
  Page page;
  for (const char* path : {"/", "/main.js", "/api/state", "/api/frame?viewer=a", "/api/configuration"}) {
    const Answer answer = page.get(path, GetParam().headers);
    EXPECT_EQ(answer.status, 403) << path;
    EXPECT_FALSE(answer.json["error"].asString().empty()) << path;
  }
  EXPECT_EQ(page.post("/api/play", R"({"playing":false})", GetParam().headers).status, 403);
  EXPECT_EQ(page.state()["playing"], true);
}

INSTANTIATE_TEST_SUITE_P(All, Intruders,
                         testing::Values(Stranger{"ForeignHost", {{"Host", "evil.example:8420"}}},
                                         Stranger{"HostWithAnotherPort", {{"Host", "127.0.0.1:1"}}},
                                         Stranger{"ForeignOrigin", {{"Origin", "http://evil.example"}}},
                                         Stranger{"OriginOfAnotherPort", {{"Origin", "http://127.0.0.1:1"}}},
                                         Stranger{"NoOrigin", {{"Origin", "null"}}},
                                         Stranger{"CrossSite", {{"Sec-Fetch-Site", "cross-site"}}},
                                         Stranger{"AnotherServerHere", {{"Sec-Fetch-Site", "same-site"}}}),
                         [](const auto& stranger) { return std::string(stranger.param.name); });

TEST(ServeAccess, AcceptsItsOwnPage) {
  Page page;
  const std::string port = std::to_string(page.port());
  for (const std::string name : {"localhost:", "127.0.0.1:", "[::1]:", "LOCALHOST:"}) {
    const httplib::Headers own{
        {"Host", name + port}, {"Origin", "http://" + name + port}, {"Sec-Fetch-Site", "same-origin"}};
    EXPECT_EQ(page.get("/api/state", own).status, 200) << name;
  }
}

TEST(ServeAccess, RequiresTheTokenForAllData) {
  Page page({.token = "open sesame"});
  EXPECT_EQ(page.get("/").status, 200);
  for (const char* wrong : {"", "open sesame", "Bearer", "Bearer open", "Bearer open sesamf"}) {
    const httplib::Headers headers{{"Authorization", wrong}};
    EXPECT_EQ(page.get("/api/state", headers).status, 401) << wrong;
    EXPECT_EQ(page.post("/api/apply", "{}", headers).status, 401) << wrong;
  }
  EXPECT_EQ(page.get("/api/state", {{"Authorization", "Bearer open sesame"}}).status, 200);
}

// Sends these bytes and returns everything received until the server closes the connection.
std::string answer_to(int port, const std::string& bytes) {
  const int file = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<in_port_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  std::string answer;
  if (connect(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    send(file, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    char piece[4096];
    ssize_t length = 0;
    while ((length = recv(file, piece, sizeof piece, 0)) > 0)
      answer.append(piece, static_cast<std::size_t>(length));
  }
  close(file);
  return answer;
}

TEST(ServeAccess, NeverTreatsABodyAsTheNextRequest) {
  Page page;
  const std::string host = "Host: 127.0.0.1:" + std::to_string(page.port()) + "\r\n";
  const std::string hidden =
      "POST /api/play HTTP/1.1\r\n" + host + "Content-Length: 17\r\n\r\n{\"playing\":false}";
  for (const std::string path : {"/api/play", "/api/nothing", "/"}) {
    const std::string answer = answer_to(
        page.port(), "POST " + path + " HTTP/1.1\r\n" + host +
                         "Origin: http://evil.example\r\nContent-Length: " + std::to_string(hidden.size()) +
                         "\r\n\r\n" + hidden);
    EXPECT_THAT(answer, testing::StartsWith("HTTP/1.1 403")) << path;
    EXPECT_THAT(answer, testing::Not(HasSubstr("200 OK"))) << path;
  }
  EXPECT_EQ(page.state()["playing"], true);
}

TEST(ServeAccess, RefusesBodiesAboveAMebibyteHoweverEncoded) {
  Page page;
  const std::string large(1'048'577, ' ');  // 1024 * 1024 + 1
  EXPECT_EQ(page.post("/api/check", large).status, 413);
  EXPECT_EQ(page.post("/api/check", large.substr(1)).status, 200);
  const std::string host = "Host: 127.0.0.1:" + std::to_string(page.port()) + "\r\n";
  std::string chunks;
  for (int i = 0; i < 20; ++i) chunks += "10000\r\n" + std::string(0x10000, ' ') + "\r\n";  // 20 * 64 KiB
  EXPECT_THAT(answer_to(page.port(), "POST /api/check HTTP/1.1\r\n" + host +
                                         "Transfer-Encoding: chunked\r\n\r\n" + chunks + "0\r\n\r\n"),
              testing::StartsWith("HTTP/1.1 413"));
  httplib::Client packing("127.0.0.1", page.port());
  packing.set_compress(true);
  const httplib::Result packed = packing.Post("/api/check", large, "application/json");
  ASSERT_TRUE(packed);
  EXPECT_EQ(packed->status, 413);
}

TEST(ServeAccess, DoesNotSupportRangeRequests) {
  Page page;
  EXPECT_EQ(page.get("/", {{"Range", "bytes=0-1,0-1,0-1"}}).status, 416);
}

TEST(ServeStop, WakesAllWaitingRequests) {
  Page page;
  page.post("/api/play", R"({"playing":false})");
  Answer last = page.next_picture();
  std::vector<std::thread> waiting;
  std::vector<Answer> answers(4);
  for (Answer& answer : answers) {
    waiting.emplace_back([&page, &answer, &answers] {
      answer = page.get("/api/frame?after=999999&viewer=w" + std::to_string(&answer - answers.data()));
    });
  }
  page.stop();
  for (std::thread& thread : waiting) thread.join();
}

}  // namespace
