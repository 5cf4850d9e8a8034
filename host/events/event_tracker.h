// From boxes in frames to events.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "host/events/event_options.h"
#include "host/events/listener.h"

namespace lm::host::events {

// Boxes that things that move made become events of motion, those that a change of light made events of
// light. An event goes on until it was quiet for longer than --gap. While boxes of a change of light last,
// they may hide what moves, so that time is not held against an event of motion.
class EventTracker {
 public:
  // Adds the names of the regions that the box touches to a list in the document's order.
  using Touch = std::function<void(const cv::Rect2d& box, std::vector<std::string>& names)>;

  explicit EventTracker(const EventRules& rules, Touch touch = {});

  // They are told about everything in the order in which they were added.
  void add(std::unique_ptr<EventListener> listener) { listeners_.push_back(std::move(listener)); }

  // The next frame, with its boxes.
  void observe(const source::Frame& frame, const Observation& seen);

  // What comes next has nothing to do with what came before: events end here. `why`: a sentence.
  void interrupt(const std::string& why);

  // The last frame was seen: events end, listeners finish. `why`: a sentence.
  void finish(const std::string& why);
  void commit();

  // How many events there were so far that count.
  std::int64_t events() const { return events_; }

 private:
  struct Track {
    EventKind kind;
    std::optional<Event> event{};
    std::chrono::microseconds quiet{0};   // since its last frame
    std::chrono::microseconds hidden{0};  // likewise, while boxes of a change of light lasted
    bool counts = false;
    std::optional<std::chrono::microseconds> last_end{};  // of the event before
  };
  void advance(Track& track, const Observation& seen, std::vector<cv::Rect2d> boxes, bool hidden);
  void open(Track& track, const Observation& seen, const std::vector<cv::Rect2d>& boxes);
  void extend(Event& event, const Observation& seen, const std::vector<cv::Rect2d>& boxes) const;
  void close(Track& track, const std::string& why);
  template <typename Call>
  void tell(Call call);

  std::chrono::microseconds min_event_, gap_, pre_, post_;
  Touch touch_;
  std::vector<std::unique_ptr<EventListener>> listeners_;
  std::array<Track, 2> tracks_{Track{.kind = EventKind::kMotion}, Track{.kind = EventKind::kLight}};
  std::optional<std::chrono::microseconds> last_time_;
  std::int64_t events_ = 0;
};

// The part of the frame under boxes, 0 to 1. Boxes may overlap each other and reach past the frame.
double share_under(const std::vector<cv::Rect2d>& boxes);

}  // namespace lm::host::events
