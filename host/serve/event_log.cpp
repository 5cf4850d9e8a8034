#include "host/serve/event_log.h"

#include <algorithm>

#include "host/events/event_json.h"
#include "host/events/event_tracker.h"

namespace lm::host {
namespace {

double seconds(std::chrono::microseconds time) { return std::chrono::duration<double>(time).count(); }

Json::Value names_value(const std::vector<std::string>& names) {
  Json::Value list(Json::arrayValue);
  for (const std::string& name : names) list.append(name);
  return list;
}

Json::Value entry_value(std::uint64_t number, const Event& event) {
  Json::Value value;
  value["id"] = std::to_string(number);
  value["kind"] = kind_text(event.kind);
  value["start"] = seconds(event.start);
  value["end"] = event.ended.empty() ? Json::Value() : Json::Value(seconds(event.end));
  value["peak"] = seconds(event.peak);
  value["share"] = event.peak_share;
  value["regions"] = names_value(event.regions);
  value["why"] = event.ended.empty() ? event.started : event.started + " " + event.ended;
  return value;
}

}  // namespace

// Keeps to its pass: what a detector that was replaced still has to say changes nothing of a later one.
class EventLogWriter : public EventListener {
 public:
  EventLogWriter(EventLog& log, std::uint64_t pass) : log_(log), pass_(pass) {}

  void frame(const Frame&, const Observation& seen) override { log_.frame(pass_, seen); }
  void begun(const Event& event) override { log_.begun(pass_, event); }
  void changed(const Event& event) override { log_.changed(pass_, event); }
  void ended(const Event& event) override { log_.changed(pass_, event); }

 private:
  EventLog& log_;
  std::uint64_t pass_;
};

std::unique_ptr<EventListener> EventLog::begin_pass() {
  const std::scoped_lock lock(mutex_);
  events_ = 0;
  pass_start_.reset();
  return std::make_unique<EventLogWriter>(*this, ++pass_);
}

void EventLog::frame(std::uint64_t pass, const Observation& seen) {
  const std::scoped_lock lock(mutex_);
  forget_what_is_overtaken(pass, seen.time);
  Second& second = activity_[seen.time / std::chrono::seconds(1)];
  if (second.pass != pass) second = {pass, 0};
  second.share = std::max(second.share, share_under(seen.boxes));
  if (activity_.size() > kMostSeconds) activity_.erase(activity_.begin());
}

void EventLog::forget_what_is_overtaken(std::uint64_t pass, std::chrono::microseconds time) {
  if (!pass_start_) pass_start_ = time;
  std::erase_if(entries_, [&](const Entry& entry) {
    return entry.pass != pass && entry.event.start <= time && entry.event.end > *pass_start_;
  });
}

void EventLog::begun(std::uint64_t pass, const Event& event) {
  const std::scoped_lock lock(mutex_);
  ++events_;
  entries_.push_front({pass, ++last_number_, event});
  if (entries_.size() > kMostEvents) entries_.pop_back();
}

void EventLog::changed(std::uint64_t pass, const Event& event) {
  const std::scoped_lock lock(mutex_);
  const auto entry = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& one) {
    return one.pass == pass && one.event.id == event.id;
  });
  if (entry != entries_.end()) entry->event = event;
}

Json::Value EventLog::value() const {
  const std::scoped_lock lock(mutex_);
  Json::Value value;
  value["events"] = value["activity"] = Json::Value(Json::arrayValue);
  for (const Entry& entry : entries_) value["events"].append(entry_value(entry.number, entry.event));
  for (const auto& [second, activity] : activity_) {
    Json::Value pair(Json::arrayValue);
    pair.append(Json::Int64(second));
    pair.append(activity.share);
    value["activity"].append(pair);
  }
  return value;
}

std::int64_t EventLog::events() const {
  const std::scoped_lock lock(mutex_);
  return events_;
}

}  // namespace lm::host
