// What a run is about, for whatever watches and describes its events.
#pragma once

#include <string>

#include "host/events/event_options.h"
#include "host/source/source.h"

namespace lm::host::events {

// Refers to objects that outlive its users.
struct RunContext {
  const EventOptions& options;
  const source::SourceInfo& source;
  const std::string& document;  // the plug-in's configuration
};

}  // namespace lm::host::events
