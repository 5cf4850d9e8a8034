// The listeners that write outputs for people.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/events/listener.h"
#include "host/events/run_context.h"
#include "host/outputs/report/report_options.h"

namespace lm::host::outputs::report {

// Throws Failure if an output cannot be opened.
void add_report_listeners(const ReportOptions& options, const std::string& source,
                          const events::RunContext& context,
                          std::vector<std::unique_ptr<events::EventListener>>& listeners);

}  // namespace lm::host::outputs::report
