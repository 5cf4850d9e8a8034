// Groups boxes into events.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/detector/lines.h"
#include "host/events/event_options.h"
#include "host/events/listener.h"
#include "host/events/trajectory.h"

namespace lm::host::events {

// Boxes caused by a lighting change form a lighting event. Those of moving objects form motion events, one
// for each object or group: an object that appears close to where an object of an event in progress is, or
// was when it was last seen within --gap and the frame, belongs to that event; every other one begins an
// event. So boxes without ids form one event. Objects that merely pass each other keep their events.
//
// An event counts when it is long enough and one of its objects is confirmed. It ends after a quiet time
// longer than --gap. Boxes of a lighting change may hide motion, so their duration does not count as quiet
// time of a motion event.
class EventTracker {
 public:
  // `regions`: the names of the regions of interest in the document's order.
  explicit EventTracker(const EventRules& rules, std::vector<std::string> regions = {},
                        std::vector<detector::Line> lines = {});

  // Listeners are called in the order in which they were added.
  void add(std::unique_ptr<EventListener> listener) { listeners_.push_back(std::move(listener)); }

  // The next frame, with its boxes.
  void observe(const source::Frame& frame, const Observation& seen);

  // The source was interrupted: ends all events. `why`: a sentence.
  void interrupt(const std::string& why);

  void source_changed(const source::SourceState& state);

  // After the last frame: ends all events and finishes the listeners. `why`: a sentence.
  void finish(const std::string& why);
  void commit();

  // Number of events so far that count.
  std::int64_t events() const { return events_; }

 private:
  struct LastSeen {
    cv::Rect2d area;
    std::chrono::microseconds time{0};
  };
  // An event in progress.
  struct Track {
    Event event;
    Trajectories trajectories;
    std::map<std::int64_t, LastSeen> objects{};  // of motion, by id
    std::chrono::microseconds quiet{0};          // since its last frame
    std::chrono::microseconds hidden{0};         // the same, while boxes of a lighting change lasted
    bool confirmed = false;                      // one of its objects
    bool counts = false;
    Boxes boxes{};   // of this frame
    Boxes shared{};  // ... that have objects of other events too
  };
  void wait(const Observation& seen);
  bool continues(const Track& track, const Observation& seen) const;
  void distribute(const Observation& seen);
  Track& event_of(std::int64_t object, const Box& box, const Observation& seen);
  Track& open(EventKind kind, const Observation& seen);
  bool is_close(const Track& track, const cv::Rect2d& area, std::chrono::microseconds time) const;
  void take(Track& track, const Observation& seen);
  void extend(Track& track, const Observation& seen) const;
  void follow_objects(Track& track, std::chrono::microseconds time) const;
  void add_regions(Event& event, const Boxes& boxes) const;
  void close(Track& track, const std::string& why);
  template <typename Call>
  void notify(Call call);

  std::chrono::microseconds min_event_, gap_, pre_, post_;
  std::vector<std::string> regions_;
  std::vector<detector::Line> lines_;
  std::vector<std::unique_ptr<EventListener>> listeners_;
  std::list<Track> tracks_;  // in the order of their starts
  std::map<EventKind, std::chrono::microseconds> last_end_;
  std::chrono::microseconds last_time_{0};
  std::int64_t events_ = 0;
};

}  // namespace lm::host::events
