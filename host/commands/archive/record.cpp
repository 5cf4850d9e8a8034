#include "host/commands/archive/record.h"

#include <sys/stat.h>

#include <array>
#include <cstdio>

#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/source/frame_clock.h"

namespace lm::host::commands::archive {

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
  run::add_figures(value, record.figures);
  return base::json_text(value);
}

std::optional<Record> record_from(const std::string& json) {
  const Json::Value value = base::parse_json(json);
  const std::optional<run::Figures> figures = run::figures_from(value);
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

}  // namespace lm::host::commands::archive
