// A test server, and the requests of a page.
#pragma once

#include <httplib.h>
#include <json/json.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "host/commands/serve/api.h"
#include "host/commands/serve/web_server.h"

namespace serve {

struct Setup {
  std::string source{};  // the built-in scene
  std::string document = R"({"sensitivity":"4","minBoxW":"0.02","minBoxH":"0.05"})";
  std::string config{};  // file to save to
  std::string plugin = LIGHTMOTION_PLUGIN;
  std::string token{};
  std::chrono::milliseconds patience{20'000};  // for the detector
};

struct Answer {
  int status = 0;  // 0: no answer
  std::string body{};
  Json::Value json{};   // the body
  Json::Value about{};  // the header Lightmotion-Frame
  httplib::Headers headers{};
};

Json::Value json(const std::string& text);

class Page {
 public:
  explicit Page(const Setup& setup = {});
  ~Page();
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  Answer get(const std::string& path, const httplib::Headers& headers = {});
  Answer post(const std::string& path, const std::string& body, const httplib::Headers& headers = {});

  Json::Value state() { return get("/api/state").json; }

  // Waits for another picture than the last one that this page received.
  Answer next_picture();

  // Reads pictures until one of them (its Lightmotion-Frame), or the state, is as wanted; null after too
  // many.
  using Wanted = std::function<bool(const Json::Value&)>;
  Json::Value picture_with(const Wanted& wanted);
  Json::Value state_with(const Wanted& wanted);

  lm::host::commands::serve::Player& player() { return player_; }
  int port() const { return server_.port(); }
  void stop();  // like Ctrl-C

 private:
  lm::host::commands::serve::PlayerPlan plan_;
  lm::host::commands::serve::Player player_;
  lm::host::commands::serve::Api api_;
  lm::host::commands::serve::WebServer server_;
  std::thread answering_;
  long long seen_ = -1;
};

}  // namespace serve
