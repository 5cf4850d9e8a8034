#include "host/outputs/mqtt/announcer.h"

#include <utility>

#include "host/events/event_json.h"

namespace lm::host::outputs::mqtt {

void Announcer::introduce(const std::string& discovery) {
  discovery_ = discovery;
  if (!discovery.empty()) send_(motion_discovery(discovery, topics_));
  retain(topics_.availability(), kOnline);
  retain(topics_.motion(), kNoMotion);
}

void Announcer::camera(const source::SourceState& state) {
  if (!is_camera_ && !discovery_.empty()) send_(camera_discovery(discovery_, topics_));
  is_camera_ = true;
  retain(topics_.camera_state(), camera_payload(camera_text(state.camera), state.since, state.reason));
  const bool online = state.camera == source::CameraState::kConnected;
  retain(topics_.availability(), online ? kOnline : kOffline);
}

void Announcer::begun(const events::Event& event) {
  publish(MessageKind::kMilestone, "new", event);
  if (event.kind != events::EventKind::kMotion) return;
  if (moving_.empty()) retain(topics_.motion(), kMotion);
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
  if (moving_.erase(event.id) > 0 && moving_.empty()) retain(topics_.motion(), kNoMotion);
}

void Announcer::leave(const std::string& reason) {
  retain(topics_.motion(), kNoMotion);
  if (is_camera_) {
    const auto now = std::chrono::system_clock::now();
    retain(topics_.camera_state(), camera_payload(kUnknown, now, reason));
  }
  retain(topics_.availability(), kOffline);
}

void Announcer::retain(const std::string& topic, const std::string& state) {
  std::string& last = retained_[topic];
  if (std::exchange(last, state) != state) send_({MessageKind::kRetained, topic, state});
}

void Announcer::publish(MessageKind kind, const std::string& step, const events::Event& event) {
  send_({kind, topics_.event(step), events::event_json(event)});
  last_published_[event.id] = event.end;
}

}  // namespace lm::host::outputs::mqtt
