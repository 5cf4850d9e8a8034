#include "host/archive/record.h"

#include <sys/stat.h>

#include <array>
#include <cstdio>

#include "host/archive/text_file.h"
#include "host/frame_clock.h"
#include "host/json_text.h"

namespace lm::host {
namespace {

std::string text_of(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "  ";
  return Json::writeString(builder, value);
}

Json::Value json_of(const Figures& figures) {
  Json::Value value;
  value["frames"] = Json::Int64(figures.frames);
  value["framesWithMotion"] = Json::Int64(figures.frames_with_motion);
  value["events"] = Json::Int64(figures.events);
  value["milliseconds"] = Json::Int64(std::chrono::round<std::chrono::milliseconds>(figures.video).count());
  return value;
}

std::optional<Figures> figures_from(const Json::Value& value) {
  Figures figures;
  if (!value.isObject()) return std::nullopt;
  for (const char* name : {"frames", "framesWithMotion", "events", "milliseconds"}) {
    if (!value[name].isInt64()) return std::nullopt;
  }
  figures.frames = value["frames"].asInt64();
  figures.frames_with_motion = value["framesWithMotion"].asInt64();
  figures.events = value["events"].asInt64();
  const std::chrono::milliseconds video(value["milliseconds"].asInt64());
  if (video.count() < 0 || video > std::chrono::floor<std::chrono::milliseconds>(kFarthestTime))
    return std::nullopt;
  figures.video = video;
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
  value["source"] = record.path;
  value["size"] = Json::Int64(record.source.size);
  value["modified"] = record.source.modified;
  value["options"] = Json::Value(Json::arrayValue);
  for (const std::string& option : record.options) value["options"].append(option);
  value["settings"] = record.settings;
  value["status"] = record.status;
  value["why"] = record.why;
  value["figures"] = json_of(record.figures);
  return text_of(value);
}

std::optional<Record> record_from(const std::string& json) {
  const Json::Value value = parse_json(json);
  if (!value.isObject() || !value["size"].isInt64() || !value["status"].isInt()) return std::nullopt;
  for (const char* name : {"source", "modified", "settings", "why"}) {
    if (!value[name].isString()) return std::nullopt;
  }
  const std::optional<Figures> figures = figures_from(value["figures"]);
  if (!figures) return std::nullopt;
  Record record;
  record.path = value["source"].asString();
  record.source = {value["size"].asInt64(), value["modified"].asString()};
  for (const Json::Value& option : value["options"]) {
    if (option.isString()) record.options.push_back(option.asString());
  }
  record.settings = value["settings"].asString();
  record.status = value["status"].asInt();
  record.why = value["why"].asString();
  record.figures = *figures;
  return record;
}

void write_figures(const std::string& file, const Figures& figures) {
  write_lines(file, {text_of(json_of(figures))});
}

std::optional<Figures> read_figures(const std::string& file) {
  const std::optional<std::string> text = read_text(file);
  return text ? figures_from(parse_json(*text)) : std::nullopt;
}

}  // namespace lm::host
