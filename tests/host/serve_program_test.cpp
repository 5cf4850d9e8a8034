// `lightmotion serve` as built.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "tests/host/live_camera.h"
#include "tests/host/program.h"
#include "tests/host/serve_page.h"

namespace {

using namespace std::chrono_literals;
using program::Folder;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr auto kLongest = 60s;

class ServeProgram : public testing::Test {
 protected:
  std::string errors() const { return program::read(folder_ / "errors"); }

  // Starts it on a free port; returns the address that it prints.
  std::string start(std::vector<std::string> more) {
    std::vector<std::string> words{LIGHTMOTION_PROGRAM, "serve", "--port", "0"};
    words.insert(words.end(), more.begin(), more.end());
    process_.emplace(words, folder_ / "errors");
    const std::string line = process_->line(kLongest);
    const std::string before = "lightmotion: ";
    EXPECT_TRUE(line.starts_with(before)) << line << errors();
    return line.substr(std::min(line.size(), before.size()));
  }

  static int port_of(const std::string& address) {
    return std::stoi(address.substr(address.find(':', address.find("//")) + 1));
  }

  Folder folder_;
  std::optional<stream::Process> process_;
};

TEST_F(ServeProgram, PrintsItsAddressAndEndsWithCtrlC) {
  const std::string address = start({});
  EXPECT_THAT(address, MatchesRegex("http://127\\.0\\.0\\.1:[0-9]+/"));
  httplib::Client client("127.0.0.1", port_of(address));
  client.set_read_timeout(60);
  ASSERT_EQ(client.Get("/api/frame?after=-1&viewer=a")->status, 200);
  process_->signal(SIGINT);
  EXPECT_EQ(process_->wait(), 0);
  EXPECT_EQ(errors(), "");
}

TEST_F(ServeProgram, EndsWhileARequestWaits) {
  const std::string address = start({});
  std::thread waiting([&] {
    httplib::Client client("127.0.0.1", port_of(address));
    client.set_read_timeout(60);
    for (httplib::Result answer = client.Get("/api/frame?after=-1&viewer=a");
         answer && answer->status == 200;) {
      answer = client.Get("/api/frame?viewer=a&after=" +
                          serve::json(answer->get_header_value("Lightmotion-Frame"))["sequence"].asString());
    }
  });
  process_->signal(SIGTERM);
  EXPECT_EQ(process_->wait(), 0);
  waiting.join();
}

TEST_F(ServeProgram, GeneratesATokenWhenNotOnLoopback) {
  const std::string address = start({"--host", "0.0.0.0"});
  EXPECT_THAT(address, MatchesRegex("http://0\\.0\\.0\\.0:[0-9]+/#token=[0-9a-f]{32}"));
  httplib::Client client("127.0.0.1", port_of(address));
  EXPECT_EQ(client.Get("/api/state")->status, 401);
  const std::string token = address.substr(address.find('=') + 1);
  EXPECT_EQ(client.Get("/api/state", {{"Authorization", "Bearer " + token}})->status, 200);
}

TEST_F(ServeProgram, BeginsWithTheDocumentNamed) {
  program::write(folder_ / "a.json", R"({"sensitivity":"3"})");
  const std::string address = start({"--config", folder_ / "a.json"});
  httplib::Client client("127.0.0.1", port_of(address));
  const Json::Value state = serve::json(client.Get("/api/state")->body);
  EXPECT_EQ(state["configuration"], R"({"sensitivity":"3"})");
  EXPECT_EQ(state["saved"], true);
  EXPECT_EQ(state["file"], folder_ / "a.json");
}

TEST_F(ServeProgram, BeginsWithThePresetAutoAndAdapts) {
  httplib::Client client("127.0.0.1", port_of(start({})));
  const Json::Value state = serve::json(client.Get("/api/state")->body);
  const std::string document = state["configuration"].asString();
  EXPECT_EQ(document, program::run({"presets", "auto"}).output);
  const Json::Value verdict = serve::json(client.Post("/api/check", document, "application/json")->body);
  EXPECT_EQ(verdict["effective"]["adapts"].size(), 2U);
  EXPECT_EQ(verdict["effective"]["frame_size"]["width"], 640);
}

TEST_F(ServeProgram, SaysWhyItCannotStart) {
  const int port = port_of(start({}));
  const program::Outcome taken = program::run({"serve", "--port", std::to_string(port)});
  EXPECT_EQ(taken.status, 1);
  EXPECT_THAT(taken.errors, HasSubstr("127.0.0.1:" + std::to_string(port)));
  EXPECT_EQ(taken.output, "");
  EXPECT_EQ(program::run({"serve", folder_ / "missing.mp4"}).status, 1);
  program::write(folder_ / "a.json", "{");
  const program::Outcome refused = program::run({"serve", "--config", folder_ / "a.json"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.errors, HasSubstr("a.json"));
  EXPECT_EQ(program::run({"serve", "--port", "70000"}).status, 2);
}

TEST(ServeHelp, DoesNotMentionTheDetectorProcess) {
  const program::Outcome help = program::run({"--help"});
  EXPECT_THAT(help.output, HasSubstr("serve"));
  EXPECT_THAT(help.output, testing::Not(HasSubstr("detect ")));
}

}  // namespace
