#include "host/commands/run/figures.h"

#include <json/json.h>

#include <cmath>

#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/source/frame_clock.h"

namespace lm::host::commands::run {
namespace {

constexpr double kLongest = std::chrono::duration<double>(source::kFarthestTime).count();

}  // namespace

double speed(const Figures& figures) {
  const double seconds = std::chrono::duration<double>(figures.work).count();
  return seconds > 0 ? static_cast<double>(figures.frames) / seconds : 0;
}

void add_figures(Json::Value& value, const Figures& figures) {
  value["frames"] = Json::Int64(figures.frames);
  value["frames_with_boxes"] = Json::Int64(figures.frames_with_motion);
  value["event_count"] = Json::Int64(figures.events);
  value["length"] = base::seconds_number(figures.video);
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

void write_figures(const std::string& file, const Figures& figures) {
  Json::Value value;
  add_figures(value, figures);
  base::write_file(file, base::json_text(value) + "\n");
}

std::optional<Figures> read_figures(const std::string& file) {
  const std::optional<std::string> text = base::read_text(file);
  return text ? figures_from(base::parse_json(*text)) : std::nullopt;
}

}  // namespace lm::host::commands::run
