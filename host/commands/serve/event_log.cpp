#include "host/commands/serve/event_log.h"

#include <algorithm>

#include "host/events/event_json.h"
#include "host/events/event_tracker.h"

namespace lm::host::commands::serve {
namespace {

// An event for the page; `id` increases across passes.
Json::Value entry_value(std::uint64_t number, const events::Event& event) {
  const Json::Value whole = events::event_value(event);
  Json::Value value;
  for (const char* key : {"kind", "start", "end", "peak", "peak_share", "regions", "started", "ended"})
    value[key] = whole[key];
  value["id"] = std::to_string(number);
  return value;
}

}  // namespace

// Tied to its pass: late events of a replaced detector do not change a later pass.
class EventLogWriter : public events::EventListener {
 public:
  EventLogWriter(EventLog& log, std::uint64_t pass) : log_(log), pass_(pass) {}

  void frame(const source::Frame&, const events::Observation& seen) override { log_.frame(pass_, seen); }
  void begun(const events::Event& event) override { log_.begun(pass_, event); }
  void changed(const events::Event& event) override { log_.changed(pass_, event); }
  void ended(const events::Event& event) override { log_.changed(pass_, event); }

 private:
  EventLog& log_;
  std::uint64_t pass_;
};

std::unique_ptr<events::EventListener> EventLog::begin_pass() {
  const std::scoped_lock lock(mutex_);
  events_ = 0;
  pass_start_.reset();
  return std::make_unique<EventLogWriter>(*this, ++pass_);
}

void EventLog::frame(std::uint64_t pass, const events::Observation& seen) {
  const std::scoped_lock lock(mutex_);
  forget_what_is_overtaken(pass, seen.time);
  Second& second = activity_[seen.time / std::chrono::seconds(1)];
  if (second.pass != pass) second = {pass, 0};
  second.share = std::max(second.share, events::share_under(seen.boxes));
  if (activity_.size() > kMostSeconds) activity_.erase(activity_.begin());
}

void EventLog::forget_what_is_overtaken(std::uint64_t pass, std::chrono::microseconds time) {
  if (!pass_start_) pass_start_ = time;
  std::erase_if(entries_, [&](const Entry& entry) {
    return entry.pass != pass && entry.event.start <= time && entry.event.end > *pass_start_;
  });
}

void EventLog::begun(std::uint64_t pass, const events::Event& event) {
  const std::scoped_lock lock(mutex_);
  ++events_;
  entries_.push_front({pass, ++last_number_, event});
  if (entries_.size() > kMostEvents) entries_.pop_back();
}

void EventLog::changed(std::uint64_t pass, const events::Event& event) {
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

}  // namespace lm::host::commands::serve
