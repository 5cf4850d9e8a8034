// Those who write what a run leaves behind for people.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/events/listener.h"
#include "host/events/run_context.h"
#include "host/outputs/report/report_options.h"

namespace lm::host::outputs::report {

// Throws Failure when an output cannot be begun.
void add_report_listeners(const ReportOptions& options, const std::string& source,
                          const events::RunContext& context,
                          std::vector<std::unique_ptr<events::EventListener>>& listeners);

}  // namespace lm::host::outputs::report
