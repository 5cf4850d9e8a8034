// Command-line options of sources.
#pragma once

#include "host/source/live/scale.h"
#include "host/source/source.h"

namespace CLI {
class App;
}

namespace lm::host::source::live {

struct LiveOptions {
  Reading reading;
  Scale scale;
};

void add_live_options(CLI::App& run, LiveOptions& options);

}  // namespace lm::host::source::live
