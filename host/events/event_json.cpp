#include "host/events/event_json.h"

#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/events/box_json.h"
#include "host/events/trajectory.h"

namespace lm::host::events {
namespace {

Json::Value light_value(const LightChange& light) {
  Json::Value value;
  value["before"] = light.before;
  value["after"] = light.after;
  value["share"] = light.share;
  return value;
}

Json::Value object_value(const EventObject& object) {
  Json::Value value;
  value["id"] = Json::Int64(object.id);
  value["start"] = base::seconds_number(object.start);
  value["end"] = base::seconds_number(object.end);
  for (const PathPoint& point : simplified(object.path, kPathTolerance)) {
    Json::Value place;
    place["time"] = base::seconds_number(point.time);
    place["x"] = point.place.x;
    place["y"] = point.place.y;
    value["path"].append(std::move(place));
  }
  return value;
}

Json::Value visit_value(const Visit& visit) {
  Json::Value value;
  value["name"] = visit.region;
  value["object"] = Json::Int64(visit.object);
  value["start"] = base::seconds_number(visit.start);
  value["end"] = base::seconds_number(visit.end);
  return value;
}

Json::Value crossing_value(const Crossing& crossing) {
  Json::Value value;
  value["name"] = crossing.line;
  value["object"] = Json::Int64(crossing.object);
  value["time"] = base::seconds_number(crossing.time);
  value["direction"] = detector::name_of(crossing.to);
  return value;
}

}  // namespace

const char* kind_text(EventKind kind) { return kind == EventKind::kLight ? "light" : "motion"; }

Json::Value event_value(const Event& event) {
  Json::Value value;
  value["id"] = event.id;
  value["kind"] = kind_text(event.kind);
  value["start"] = base::seconds_number(event.start);
  value["end"] = base::seconds_number(event.end);
  value["peak"] = base::seconds_number(event.peak);
  value["from"] = base::seconds_number(event.from);
  value["to"] = base::seconds_number(event.to);
  value["first_frame"] = Json::Int64(event.first_frame);
  value["last_frame"] = Json::Int64(event.last_frame);
  value["peak_frame"] = Json::Int64(event.peak_frame);
  value["frames_with_boxes"] = Json::Int64(event.frames);
  value["most_boxes"] = Json::UInt64(event.most_boxes);
  value["peak_share"] = event.peak_share;
  value["envelope"] = box_value(event.envelope);
  value["largest"] = box_value(event.largest);
  value["regions"] = Json::Value(Json::arrayValue);
  for (const std::string& region : event.regions) value["regions"].append(region);
  for (const EventObject& object : event.objects) value["objects"].append(object_value(object));
  if (!event.objects.empty()) value["dwell"] = base::seconds_number(dwell(event));
  for (const Visit& visit : event.visits) value["visits"].append(visit_value(visit));
  for (const Crossing& crossing : event.crossings) value["crossings"].append(crossing_value(crossing));
  if (event.light) value["light"] = light_value(*event.light);
  if (event.wall_start) value["wall_start"] = base::utc_text(*event.wall_start);
  if (event.wall_end) value["wall_end"] = base::utc_text(*event.wall_end);
  value["started"] = event.started;
  value["ended"] = event.ended;
  return value;
}

std::string event_json(const Event& event) { return base::json_text(event_value(event)); }

}  // namespace lm::host::events
