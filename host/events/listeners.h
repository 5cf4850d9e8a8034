// Everyone who listens to the events of a run, from what the command line asks for.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/events/listener.h"
#include "host/run_options.h"
#include "host/source.h"

namespace lm::host {

// What a run is about. Outlives its listeners.
struct RunContext {
  const RunOptions& options;
  const SourceInfo& source;
  const std::string& document;  // that the plug-in was started with
};

// Throws Failure when an output cannot be begun.
std::vector<std::unique_ptr<EventListener>> make_listeners(const RunContext& context);

}  // namespace lm::host
