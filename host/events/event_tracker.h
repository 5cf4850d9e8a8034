// Groups boxes into events.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/events/event_options.h"
#include "host/events/listener.h"

namespace lm::host::events {

// Boxes caused by moving objects form motion events; boxes caused by a lighting change form lighting events.
// An event ends after a quiet time longer than --gap. Boxes of a lighting change may hide motion, so their
// duration does not count as quiet time of a motion event.
class EventTracker {
 public:
  // `regions`: the names of the regions of interest in the document's order.
  explicit EventTracker(const EventRules& rules, std::vector<std::string> regions = {});

  // Listeners are called in the order in which they were added.
  void add(std::unique_ptr<EventListener> listener) { listeners_.push_back(std::move(listener)); }

  // The next frame, with its boxes.
  void observe(const source::Frame& frame, const Observation& seen);

  // The source was interrupted: ends all events. `why`: a sentence.
  void interrupt(const std::string& why);

  // After the last frame: ends all events and finishes the listeners. `why`: a sentence.
  void finish(const std::string& why);
  void commit();

  // Number of events so far that were long enough.
  std::int64_t events() const { return events_; }

 private:
  struct Track {
    EventKind kind;
    std::optional<Event> event{};
    std::chrono::microseconds quiet{0};   // since its last frame
    std::chrono::microseconds hidden{0};  // the same, while boxes of a lighting change lasted
    bool counts = false;
    std::optional<std::chrono::microseconds> last_end{};  // of the previous event
  };
  void advance(Track& track, const Observation& seen, Boxes boxes, bool hidden);
  void open(Track& track, const Observation& seen, const Boxes& boxes);
  void extend(Event& event, const Observation& seen, const Boxes& boxes) const;
  void add_regions(Event& event, const Boxes& boxes) const;
  void close(Track& track, const std::string& why);
  template <typename Call>
  void notify(Call call);

  std::chrono::microseconds min_event_, gap_, pre_, post_;
  std::vector<std::string> regions_;
  std::vector<std::unique_ptr<EventListener>> listeners_;
  std::array<Track, 2> tracks_{Track{.kind = EventKind::kMotion}, Track{.kind = EventKind::kLight}};
  std::optional<std::chrono::microseconds> last_time_;
  std::int64_t events_ = 0;
};

}  // namespace lm::host::events
