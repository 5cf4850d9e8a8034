#include "host/events/events_file.h"

#include <algorithm>
#include <iterator>

#include "host/base/csv.h"
#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/events/event_json.h"

namespace lm::host::events {
namespace {

// A column is a member of the event, or a member of such a member.
struct Column {
  const char* key;
  const char* within = nullptr;
};

constexpr Column kColumns[] = {
    {"id"},
    {"kind"},
    {"start"},
    {"end"},
    {"peak"},
    {"from"},
    {"to"},
    {"first_frame"},
    {"last_frame"},
    {"peak_frame"},
    {"frames_with_boxes"},
    {"most_boxes"},
    {"peak_share"},
    {"x", "envelope"},
    {"y", "envelope"},
    {"width", "envelope"},
    {"height", "envelope"},
    {"x", "largest"},
    {"y", "largest"},
    {"width", "largest"},
    {"height", "largest"},
    {"objects"},
    {"dwell"},
    {"crossings"},
    {"regions"},
    {"before", "light"},
    {"after", "light"},
    {"share", "light"},
    {"wall_start"},
    {"wall_end"},
    {"started"},
    {"ended"},
};

std::string heading(const Column& column) {
  return column.within == nullptr ? column.key : std::string(column.within).append("_").append(column.key);
}

std::string joined(const Json::Value& names) {
  std::string text;
  for (const Json::Value& item : names) {
    const Json::Value& name = !item.isObject() ? item : item.isMember("name") ? item["name"] : item["id"];
    text.append(text.empty() ? "" : ";").append(name.asString());
  }
  return text;
}

std::string cell(const Json::Value& event, const Column& column) {
  const Json::Value& object = column.within != nullptr ? event[column.within] : event;
  const Json::Value& value = object[column.key];
  if (value.isNull()) return "";
  if (value.isString()) return value.asString();
  return value.isArray() ? joined(value) : base::json_text(value, column.key);
}

}  // namespace

EventsFile::EventsFile(const RunContext& context)
    : rules_(context.options.rules), source_(context.source), pending_(context.options.file) {}

void EventsFile::frame(const source::Frame&, const Observation& seen) {
  ++frames_;
  last_ = seen.time;
}

void EventsFile::finish() {
  std::stable_sort(events_.begin(), events_.end(),
                   [](const Event& a, const Event& b) { return a.start < b.start; });
  for (Event& event : events_) event.to = std::min(event.to, last_);
  base::write_bytes(pending_, pending_.target().ends_with(".csv") ? csv() : json());
}

std::string EventsFile::csv() const {
  std::vector<std::string> cells;
  std::ranges::transform(kColumns, std::back_inserter(cells), heading);
  std::string text = base::csv_row(cells);
  for (const Event& event : events_) {
    const Json::Value value = event_value(event);
    std::ranges::transform(kColumns, cells.begin(),
                           [&](const Column& column) { return cell(value, column); });
    text += base::csv_row(cells);
  }
  return text;
}

// One line per event, for line-oriented tools.
std::string EventsFile::json() const {
  Json::Value source;
  source["name"] = source_.name;
  source["live"] = source_.live;
  source["width"] = source_.size.width;
  source["height"] = source_.size.height;
  source["frames"] = Json::Int64(frames_);
  source["last_time"] = base::seconds_number(last_);
  if (source_.start) source["wall_start"] = utc_text(*source_.start);
  Json::Value rules;
  rules["min_event"] = rules_.min_event;
  rules["gap"] = rules_.gap;
  rules["pre"] = rules_.pre;
  rules["post"] = rules_.post;
  std::string text =
      "{\"format\":\"lightmotion-events\",\"version\":1,\n\"source\":" + base::json_text(source) +
      ",\n\"rules\":" + base::json_text(rules) + ",\n\"events\":[";
  for (const Event& event : events_) text += (&event == &events_.front() ? "\n" : ",\n") + event_json(event);
  return text + "\n]}\n";
}

}  // namespace lm::host::events
