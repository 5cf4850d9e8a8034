#include "host/events/event.h"

#include <algorithm>

namespace lm::host::events {

std::chrono::microseconds dwell(const Event& event) {
  std::chrono::microseconds longest{0};
  for (const EventObject& object : event.objects) longest = std::max(longest, object.end - object.start);
  return longest;
}

Boxes boxes_of_event(const Boxes& boxes, const Event& event) {
  Boxes some = boxes_of_kind(boxes, event.kind);
  const auto belongs = [&](std::int64_t id) {
    return std::ranges::find(event.objects, id, &EventObject::id) != event.objects.end();
  };
  std::erase_if(some, [&](const Box& box) {
    return box.id > 0 && !belongs(box.id) && std::ranges::none_of(box.others, belongs);
  });
  return some;
}

}  // namespace lm::host::events
