// Tries one setting on the sample.
#pragma once

#include <string>

#include "host/commands/tune/sample.h"
#include "host/commands/tune/seen.h"
#include "host/source/live/scale.h"

namespace lm::host::commands::tune {

// The results of `lightmotion run` with this document. `plugin`: see make_detector. Throws Failure.
Seen try_document(const std::string& plugin, const std::string& document, const source::live::Scale& scale,
                  const Sample& sample);

}  // namespace lm::host::commands::tune
