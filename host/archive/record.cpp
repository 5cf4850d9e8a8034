#include "host/archive/record.h"

#include <sys/stat.h>

#include <array>
#include <cmath>
#include <cstdio>

#include "host/frame_clock.h"
#include "host/json_text.h"
#include "host/time_text.h"
#include "host/whole_file.h"

namespace lm::host {
namespace {

constexpr double kLongest = std::chrono::duration<double>(kFarthestTime).count();

void add_figures(Json::Value& value, const Figures& figures) {
  value["frames"] = Json::Int64(figures.frames);
  value["frames_with_boxes"] = Json::Int64(figures.frames_with_motion);
  value["event_count"] = Json::Int64(figures.events);
  value["length"] = seconds_number(figures.video);
}

std::optional<Figures> figures_from(const Json::Value& value) {
  Figures figures;
  if (!value.isObject()) return std::nullopt;
  for (const char* name : {"frames", "frames_with_boxes", "event_count"}) {
    if (!value[name].isInt64()) return std::nullopt;
  }
  const double length = value["length"].isNumeric() ? value["length"].asDouble() : -1;
  if (!(length >= 0 && length <= kLongest)) return std::nullopt;
  figures.frames = value["frames"].asInt64();
  figures.frames_with_motion = value["frames_with_boxes"].asInt64();
  figures.events = value["event_count"].asInt64();
  figures.video = std::chrono::milliseconds(std::llround(length * 1000));
  return figures;
}

}  // namespace

std::optional<SourceState> source_state(const std::string& path) {
  struct stat state {};
  if (stat(path.c_str(), &state) != 0) return std::nullopt;
  std::array<char, 40> time{};
  std::snprintf(time.data(), time.size(), "%lld.%09ld", static_cast<long long>(state.st_mtim.tv_sec),
                state.st_mtim.tv_nsec);
  return SourceState{state.st_size, time.data()};
}

std::string to_json(const Record& record) {
  Json::Value value;
  value["source"]["name"] = record.path;
  value["source"]["size"] = Json::Int64(record.source.size);
  value["source"]["modified"] = record.source.modified;
  value["options"] = Json::Value(Json::arrayValue);
  for (const std::string& option : record.options) value["options"].append(option);
  value["settings_digest"] = record.settings;
  value["exit_status"] = record.status;
  value["error"] = record.why;
  add_figures(value, record.figures);
  return json_text(value);
}

std::optional<Record> record_from(const std::string& json) {
  const Json::Value value = parse_json(json);
  const std::optional<Figures> figures = figures_from(value);
  if (!figures) return std::nullopt;
  const Json::Value& source = value["source"];
  const bool whole = source.isObject() && source["name"].isString() && source["size"].isInt64() &&
                     source["modified"].isString() && value["settings_digest"].isString() &&
                     value["exit_status"].isInt() && value["error"].isString();
  if (!whole) return std::nullopt;
  Record record;
  record.path = source["name"].asString();
  record.source = {source["size"].asInt64(), source["modified"].asString()};
  for (const Json::Value& option : value["options"]) {
    if (option.isString()) record.options.push_back(option.asString());
  }
  record.settings = value["settings_digest"].asString();
  record.status = value["exit_status"].asInt();
  record.why = value["error"].asString();
  record.figures = *figures;
  return record;
}

void write_figures(const std::string& file, const Figures& figures) {
  Json::Value value;
  add_figures(value, figures);
  write_file(file, json_text(value) + "\n");
}

std::optional<Figures> read_figures(const std::string& file) {
  const std::optional<std::string> text = read_text(file);
  return text ? figures_from(parse_json(*text)) : std::nullopt;
}

}  // namespace lm::host
