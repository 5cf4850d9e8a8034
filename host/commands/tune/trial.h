// Tries one setting on the sample, with the plug-in.
#pragma once

#include <string>

#include "host/commands/tune/sample.h"
#include "host/commands/tune/seen.h"
#include "host/source/live/scale.h"

namespace lm::host::commands::tune {

// The results of `lightmotion run` with this document. Throws Failure.
Seen try_document(const std::string& plugin, const std::string& document, const source::live::Scale& scale,
                  const Sample& sample);

// Serialization for another process.
std::string to_bytes(const Seen& seen);
Seen from_bytes(const std::string& bytes);

}  // namespace lm::host::commands::tune
