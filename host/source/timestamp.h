// Timestamps of frames for the detector.
#pragma once

#include <cstdint>

#include "host/source/source.h"

namespace lm::host::source {

// Milliseconds: a file's own time counted from 1, because plug-ins take 0 for "unknown"; otherwise the
// wall clock when the frame was taken.
std::int64_t timestamp(const SourceInfo& source, const Frame& frame);

}  // namespace lm::host::source
