// The event listeners of a run, as the command line requests them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/events/listener.h"
#include "host/run_options.h"
#include "host/source.h"

namespace lm::host {

// The context of a run. Outlives its listeners.
struct RunContext {
  const RunOptions& options;
  const SourceInfo& source;
  const std::string& document;  // that the plug-in was started with
};

// Throws Failure when an output cannot be created.
std::vector<std::unique_ptr<EventListener>> make_listeners(const RunContext& context);

}  // namespace lm::host
