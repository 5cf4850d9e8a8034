// Timestamps of frames for the plug-in.
#pragma once

#include <string>

#include "host/source/source.h"

namespace lm::host::source {

// Milliseconds: a file's own time counted from 1, because the plug-in takes 0 for "unknown"; otherwise the
// wall clock.
std::string timestamp(const SourceInfo& source, const Frame& frame);

}  // namespace lm::host::source
