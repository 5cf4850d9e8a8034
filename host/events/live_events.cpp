#include "host/events/live_events.h"

#include "host/events/event_csv.h"
#include "host/events/event_json.h"

namespace lm::host::events {

LiveEvents::LiveEvents(const RunContext& context)
    : csv_(context.options.file.ends_with(".csv")),
      journal_(context.options.file, csv_ ? csv_heading() : "{\"id\":", context.rotation) {}

void LiveEvents::ended(const Event& event) {
  journal_.append(csv_ ? event_csv(event) : event_json(event) + "\n");
  journal_.tick();  // no frame may follow for long
}

}  // namespace lm::host::events
