// The listeners of a run, one for each output that its options name.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/events/listener.h"
#include "host/events/run_context.h"
#include "host/outputs/mqtt/mqtt_options.h"
#include "host/outputs/report/report_options.h"

namespace lm::host::outputs {

// `source`: as on the command line. Throws Failure if an output cannot be opened.
std::vector<std::unique_ptr<events::EventListener>> make_listeners(const events::RunContext& context,
                                                                   const std::string& source,
                                                                   const mqtt::MqttOptions& mqtt,
                                                                   const report::ReportOptions& report);

}  // namespace lm::host::outputs
