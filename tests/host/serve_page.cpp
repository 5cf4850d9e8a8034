#include "tests/host/serve_page.h"

#include <sstream>

namespace serve {
namespace {

using namespace lm::host::commands::serve;

constexpr int kMostPictures = 1000;
constexpr int kMostEmpty = 5;  // polls without a picture, of five seconds each

PlayerPlan plan_of(const Setup& setup) {
  PlayerPlan plan;
  plan.source = setup.source;
  plan.detector = {.plugin = setup.plugin, .program = LIGHTMOTION_PROGRAM, .patience = setup.patience};
  return plan;
}

Answer answer_of(const httplib::Result& result) {
  if (!result) return {};
  return {result->status, result->body, json(result->body),
          json(result->get_header_value("Lightmotion-Frame")), result->headers};
}

}  // namespace

Json::Value json(const std::string& text) {
  Json::Value value;
  std::istringstream in(text);
  std::string ignored;
  if (!Json::parseFromStream(Json::CharReaderBuilder(), in, &value, &ignored)) return {};
  return value;
}

Page::Page(const Setup& setup)
    : plan_(plan_of(setup)),
      player_(plan_, setup.document),
      api_(player_, plan_, setup.config),
      server_(api_, {.host = "127.0.0.1", .port = 0, .token = setup.token}),
      answering_([this] { server_.work(); }) {}

Page::~Page() { stop(); }

void Page::stop() {
  player_.stop();
  server_.stop();
  if (answering_.joinable()) answering_.join();
}

Answer Page::get(const std::string& path, const httplib::Headers& headers) {
  httplib::Client client("127.0.0.1", port());
  client.set_read_timeout(60);
  return answer_of(client.Get(path, headers));
}

Answer Page::post(const std::string& path, const std::string& body, const httplib::Headers& headers) {
  httplib::Client client("127.0.0.1", port());
  client.set_read_timeout(60);
  return answer_of(client.Post(path, headers, body, "application/json"));
}

Answer Page::next_picture() {
  const Answer answer = get("/api/frame?viewer=test&after=" + std::to_string(seen_));
  if (answer.status == 200) seen_ = answer.about["sequence"].asInt64();
  return answer;
}

Json::Value Page::picture_with(const Wanted& wanted) {
  int empty = 0;
  for (int i = 0; i < kMostPictures && empty < kMostEmpty; ++i) {
    const Answer answer = next_picture();
    empty += answer.status == 204 ? 1 : 0;
    if (answer.status == 200 && wanted(answer.about)) return answer.about;
    if (answer.status != 200 && answer.status != 204) break;
  }
  return {};
}

Json::Value Page::state_with(const Wanted& wanted) {
  Json::Value number;
  int empty = 0;
  for (int i = 0; i < kMostPictures && empty < kMostEmpty; ++i) {
    const Answer answer = next_picture();
    empty += answer.status == 204 ? 1 : 0;
    if (answer.about["state"] != number) {
      number = answer.about["state"];
      const Json::Value now = state();
      if (wanted(now)) return now;
    }
    if (answer.status != 200 && answer.status != 204) break;
  }
  return {};
}

}  // namespace serve
