#include "host/commands/serve/viewers.h"

namespace lm::host::commands::serve {

void Viewers::forget_the_gone(Clock::time_point now) {
  std::erase_if(viewers_, [now](const auto& entry) {
    return entry.second.waiting == 0 && now - entry.second.seen > kGoneAfter;
  });
}

bool Viewers::enter(const std::string& id, Clock::time_point now) {
  const std::scoped_lock lock(mutex_);
  forget_the_gone(now);
  if (viewers_.size() >= kMost && viewers_.count(id) == 0) return false;
  Viewer& viewer = viewers_[id];
  if (viewer.waiting >= kMostWaiting) return false;
  viewer.seen = now;
  ++viewer.waiting;
  return true;
}

void Viewers::leave(const std::string& id, Clock::time_point now) {
  const std::scoped_lock lock(mutex_);
  Viewer& viewer = viewers_[id];
  viewer.seen = now;
  --viewer.waiting;
}

std::size_t Viewers::count(Clock::time_point now) {
  const std::scoped_lock lock(mutex_);
  forget_the_gone(now);
  return viewers_.size();
}

}  // namespace lm::host::commands::serve
