// Those who write what a run leaves behind for people.
#pragma once

#include <memory>
#include <vector>

#include "host/events/listeners.h"

namespace lm::host {

// Throws Failure when an output cannot be begun.
void add_report_listeners(const ReportOptions& options, const RunContext& context,
                          std::vector<std::unique_ptr<EventListener>>& listeners);

}  // namespace lm::host
