#include "host/events/listeners.h"

#include "host/events/events_file.h"
#include "host/events/explain.h"
#include "host/mqtt/mqtt_listener.h"
#include "host/report/report_listeners.h"

namespace lm::host {

std::vector<std::unique_ptr<EventListener>> make_listeners(const RunContext& context) {
  std::vector<std::unique_ptr<EventListener>> listeners;
  if (!context.options.events.file.empty()) listeners.push_back(std::make_unique<EventsFile>(context));
  if (!context.options.mqtt.address.empty()) {
    listeners.push_back(std::make_unique<MqttListener>(context.options.mqtt, context.options.source));
  }
  if (!context.options.events.explain.empty()) listeners.push_back(std::make_unique<Explainer>(context));
  add_report_listeners(context.options.report, context, listeners);
  return listeners;
}

}  // namespace lm::host
