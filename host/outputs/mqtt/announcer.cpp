#include "host/outputs/mqtt/announcer.h"

#include "host/events/event_json.h"

namespace lm::host::outputs::mqtt {

void Announcer::introduce(const std::string& discovery) {
  if (!discovery.empty()) send_(discovery_message(discovery, topics_));
  send_({MessageKind::kRetained, topics_.availability(), kOnline});
  state(kNoMotion);
}

void Announcer::begun(const events::Event& event) {
  publish(MessageKind::kMilestone, "new", event);
  if (event.kind != events::EventKind::kMotion) return;
  if (moving_.empty()) state(kMotion);
  moving_.insert(event.id);
}

void Announcer::changed(const events::Event& event) {
  const auto last = last_published_.find(event.id);
  if (last != last_published_.end() && event.end - last->second < kUpdateInterval) return;
  publish(MessageKind::kUpdate, "update", event);
}

void Announcer::ended(const events::Event& event) {
  publish(MessageKind::kMilestone, "end", event);
  last_published_.erase(event.id);
  if (moving_.erase(event.id) > 0 && moving_.empty()) state(kNoMotion);
}

void Announcer::leave() { send_({MessageKind::kRetained, topics_.availability(), kOffline}); }

void Announcer::publish(MessageKind kind, const std::string& step, const events::Event& event) {
  send_({kind, topics_.event(step), events::event_json(event)});
  last_published_[event.id] = event.end;
}

}  // namespace lm::host::outputs::mqtt
