#include "host/commands/serve/api.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>

#include "host/base/failure.h"
#include "host/base/json_text.h"
#include "host/base/shown_address.h"
#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/commands/serve/config_file.h"
#include "host/detector/adapt.h"
#include "host/detector/presets/presets.h"

namespace lm::host::commands::serve {
namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;

constexpr auto kLongestPoll = 5s;
constexpr std::size_t kLongestId = 64;

Reply json_reply(const Json::Value& value, int status = 200) {
  return {.status = status, .body = base::json_text(value)};
}

// None for implausible times. The program rounds times to thousandths, so half a millisecond is subtracted:
// the frame whose time was rounded up to this one must be found.
std::optional<microseconds> time_of(double value) {
  if (!(value >= 0 && value < 1e9)) return std::nullopt;
  return std::max(microseconds(0), microseconds(std::llround(value * 1e6)) - 500us);
}

std::optional<microseconds> time_of(const std::string& text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return time_of(value);
}

std::string parameter(const Query& query, const std::string& name) {
  const auto found = query.parameters.find(name);
  return found == query.parameters.end() ? "" : found->second;
}

Json::Value presets_value() {
  Json::Value list(Json::arrayValue);
  for (const detector::presets::Preset& preset : detector::presets::all()) {
    Json::Value value;
    value["name"] = preset.name;
    value["about"] = preset.about;
    value["configuration"] = preset.document;
    list.append(value);
  }
  return list;
}

Json::Value source_value(const source::SourceInfo& source) {
  Json::Value value;
  value["name"] = base::shown_address(source.name);
  value["width"] = source.size.width;
  value["height"] = source.size.height;
  if (source.duration) value["duration"] = base::seconds_number(*source.duration);
  value["live"] = source.live;
  value["frame_rate"] = source.rate;
  return value;
}

// The first error among the findings on a configuration.
Reply refusal(const detector::check::Verdict& verdict) {
  Json::Value value = base::parse_json(detector::check::to_json(verdict));
  value.removeMember("effective");
  for (const detector::check::Finding& finding : verdict.findings) {
    if (finding.severity != detector::check::Severity::error) continue;
    value["error"] = finding.key.empty() ? finding.text : finding.key + ": " + finding.text;
    break;
  }
  return json_reply(value, 422);
}

}  // namespace

Reply error_reply(int status, const std::string& text) {
  Json::Value value;
  value["error"] = text;
  return json_reply(value, status);
}

Api::Api(Player& player, const PlayerPlan& plan, std::string config)
    : player_(player),
      scale_(plan.reading.scale),
      config_(std::move(config)),
      still_(plan.source, plan.reading.reading) {
  gets_ = {{"/api/state", [this](const Query&) { return state(); }},
           {"/api/frame", [this](const Query& query) { return frame(query); }},
           {"/api/still", [this](const Query& query) { return still(query); }},
           {"/api/events", [this](const Query&) { return events(); }},
           {"/api/configuration", [this](const Query&) { return document(); }}};
  posts_ = {{"/api/play", [this](const Query& query) { return play(query); }},
            {"/api/check", [this](const Query& query) { return check(query); }},
            {"/api/apply", [this](const Query& query) { return apply(query); }},
            {"/api/compare", [this](const Query& query) { return compare(query); }},
            {"/api/save", [this](const Query& query) { return save(query); }}};
}

Reply Api::state() {
  const PlayerState now = player_.state();
  Json::Value value;
  value["program_version"] = LIGHTMOTION_PROGRAM_VERSION;
  value["source"] = source_value(now.source);
  value["time"] = base::seconds_number(now.time);
  value["playing"] = now.playing;
  value["loop"] = Json::Int64(now.loop);
  value["configuration"] = now.document;
  value["saved"] = !config_.empty() && base::read_text(config_) == now.document;
  value["file"] = config_.empty() ? Json::Value() : Json::Value(config_);
  value["problem"] = now.problem;
  value["comparing"] = now.comparing;
  value["viewers"] = Json::UInt64(viewers_.count(Viewers::Clock::now()));
  value["presets"] = presets_value();
  return json_reply(value);
}

Reply Api::frame(const Query& query) {
  const std::string viewer = parameter(query, "viewer");
  if (viewer.empty() || viewer.size() > kLongestId)
    return error_reply(400, "\"viewer\" must be 1 to 64 characters");
  const long long after = std::strtoll(parameter(query, "after").c_str(), nullptr, 10);
  if (!viewers_.enter(viewer, Viewers::Clock::now())) {
    return error_reply(503, "too many viewers; the limit is " + std::to_string(Viewers::kMost));
  }
  const std::shared_ptr<void> until_the_end(nullptr,
                                            [&](void*) { viewers_.leave(viewer, Viewers::Clock::now()); });
  Showcase::View view = player_.showcase().wait(static_cast<std::uint64_t>(after), kLongestPoll);
  if (!view.shot) return nothing_new();
  return {.type = "image/jpeg",
          .body = std::move(view.jpeg),
          .headers = {{"Lightmotion-Frame", shot_json(*view.shot)}}};
}

// The state may have changed without a new picture.
Reply Api::nothing_new() const {
  Json::Value value;
  value["state"] = Json::UInt64(player_.state().number);
  return {.status = 204, .headers = {{"Lightmotion-Frame", base::json_text(value)}}};
}

Reply Api::still(const Query& query) {
  const std::optional<microseconds> time = time_of(parameter(query, "time"));
  if (!time) return error_reply(400, "\"time\" must be a time in seconds");
  const source::SourceInfo source = player_.state().source;
  source::Frame frame;
  if (source.live) {
    const std::shared_ptr<const Shot> newest = player_.showcase().newest();
    if (!newest) return error_reply(503, "no picture yet");
    frame.image = newest->image;
    frame.time = newest->time;
  } else {
    frame = still_.at(*time);
  }
  Json::Value value;
  value["time"] = base::seconds_number(frame.time);
  return {.type = "image/jpeg",
          .body = page_picture(frame.image, source.pixel_aspect),
          .headers = {{"Lightmotion-Frame", base::json_text(value)}}};
}

Reply Api::events() const {
  const PlayerState now = player_.state();
  Json::Value value = player_.log().value();
  value["loop"] = Json::Int64(now.loop);
  if (now.source.duration) value["duration"] = base::seconds_number(*now.source.duration);
  return json_reply(value);
}

Reply Api::document() const {
  std::string name =
      config_.empty() ? "lightmotion.json" : std::filesystem::path(config_).filename().string();
  for (char& c : name) {
    if (c < ' ' || c > '~' || c == '"' || c == '\\') c = '_';
  }
  return {.body = player_.state().document,
          .headers = {{"Content-Disposition", "attachment; filename=\"" + name + "\""}}};
}

Reply Api::play(const Query& query) {
  const Json::Value wish = base::parse_json(query.body);
  if (!wish.isObject()) return error_reply(400, "expected {\"playing\":true or false,\"time\":seconds}");
  const Json::Value& playing = wish["playing"];
  const Json::Value& time = wish["time"];
  const std::optional<microseconds> moment = time_of(time.isNumeric() ? time.asDouble() : -1);
  if (!playing.isNull() && !playing.isBool()) return error_reply(400, "\"playing\" must be true or false");
  if (!time.isNull() && !moment) return error_reply(400, "\"time\" must be a time in seconds");
  if (moment && player_.state().source.live) return error_reply(409, "a live source cannot seek");
  if (moment) player_.seek(*moment);
  if (playing.isBool()) player_.play(playing.asBool());
  return state();
}

detector::check::Verdict Api::verdict(const std::string& document) const {
  return detector::check::check_document(
      document, detector::analysed_size(document, player_.state().source.size, scale_));
}

Reply Api::check(const Query& query) const { return {.body = detector::check::to_json(verdict(query.body))}; }

Reply Api::apply(const Query& query) {
  const detector::check::Verdict judged = verdict(query.body);
  if (judged.refused()) return refusal(judged);
  player_.apply(query.body);
  Json::Value value;
  value["findings"] = base::parse_json(detector::check::to_json(judged))["findings"];
  return json_reply(value);
}

Reply Api::compare(const Query& query) {
  const Json::Value wish = base::parse_json(query.body);
  if (!wish.isObject() || !(wish["configuration"].isNull() || wish["configuration"].isString())) {
    return error_reply(400, "expected {\"configuration\":text or null}");
  }
  const std::string document = wish["configuration"].asString();
  if (!document.empty()) {
    const detector::check::Verdict judged = verdict(document);
    if (judged.refused()) return refusal(judged);
  }
  player_.compare(document);
  return state();
}

Reply Api::save(const Query& query) {
  if (config_.empty()) {
    return error_reply(409, "no file to save to: start lightmotion serve with --config FILE");
  }
  const detector::check::Verdict judged = verdict(query.body);
  if (judged.refused()) return refusal(judged);
  const std::string backup = save_document(config_, query.body);
  player_.announce();
  Json::Value value;
  value["file"] = config_;
  value["backup"] = backup.empty() ? Json::Value() : Json::Value(backup);
  return json_reply(value);
}

}  // namespace lm::host::commands::serve
