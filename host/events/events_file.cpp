#include "host/events/events_file.h"

#include <algorithm>

#include "host/base/json_text.h"
#include "host/base/time_text.h"
#include "host/base/whole_file.h"
#include "host/events/event_csv.h"
#include "host/events/event_json.h"

namespace lm::host::events {
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
  const std::string& name = pending_.target();
  base::write_bytes(pending_, name.ends_with(".csv") ? csv() : name.ends_with(".jsonl") ? lines() : json());
}

std::string EventsFile::csv() const {
  std::string text = csv_heading();
  for (const Event& event : events_) text += event_csv(event);
  return text;
}

std::string EventsFile::lines() const {
  std::string text;
  for (const Event& event : events_) text += event_json(event) + "\n";
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
  if (source_.start) source["wall_start"] = base::utc_text(*source_.start);
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
