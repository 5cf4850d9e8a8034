// One setting tried on the sample, through the plug-in.
#pragma once

#include <string>

#include "host/live/scale.h"
#include "host/tune/sample.h"
#include "host/tune/seen.h"

namespace lm::host::tune {

// What `lightmotion run` would find with this document. Throws Failure.
Seen try_document(const std::string& plugin, const std::string& document, const Scale& scale,
                  const Sample& sample);

// To bytes and back, for another process.
std::string to_bytes(const Seen& seen);
Seen from_bytes(const std::string& bytes);

}  // namespace lm::host::tune
