// Properties of a run that its listeners need.
#pragma once

#include <string>

#include "host/base/rotation.h"
#include "host/events/event_options.h"
#include "host/source/source.h"

namespace lm::host::events {

// Holds references; the objects must outlive its users.
struct RunContext {
  const EventOptions& options;
  const source::SourceInfo& source;
  const std::string& document;  // the configuration
  base::Rotation rotation{};    // of files of live sources
};

}  // namespace lm::host::events
