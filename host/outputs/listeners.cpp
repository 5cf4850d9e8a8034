#include "host/outputs/listeners.h"

#include "host/base/journal.h"
#include "host/events/events_file.h"
#include "host/events/explain.h"
#include "host/events/live_events.h"
#include "host/outputs/mqtt/mqtt_listener.h"
#include "host/outputs/report/report_listeners.h"

namespace lm::host::outputs {

std::vector<std::unique_ptr<events::EventListener>> make_listeners(const events::RunContext& context,
                                                                   const std::string& source,
                                                                   const mqtt::MqttOptions& mqtt,
                                                                   const report::ReportOptions& report) {
  std::vector<std::unique_ptr<events::EventListener>> listeners;
  const std::string& file = context.options.file;
  if (!file.empty() && context.source.live && base::Journal::takes(file)) {
    listeners.push_back(std::make_unique<events::LiveEvents>(context));
  } else if (!file.empty()) {
    listeners.push_back(std::make_unique<events::EventsFile>(context));
  }
  if (!mqtt.address.empty()) listeners.push_back(std::make_unique<mqtt::MqttListener>(mqtt, source));
  if (!context.options.explain.empty()) listeners.push_back(std::make_unique<events::Explainer>(context));
  report::add_report_listeners(report, source, context, listeners);
  return listeners;
}

}  // namespace lm::host::outputs
