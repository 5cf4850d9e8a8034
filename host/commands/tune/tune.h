// `lightmotion tune`: from a sample of the user's footage to a configuration.
#pragma once

#include <optional>
#include <string>

#include "host/commands/tune/seen.h"
#include "host/source/live/live_options.h"

namespace lm::host::commands::tune {

// An empty text: not given.
struct TuneOptions {
  std::string source;  // as for run
  Marks marks;
  std::string config;   // document to start from; that of default_document if empty
  std::string output;   // file for the proposed document; standard output if empty
  std::string picture;  // .png
  std::string plugin;
  std::optional<double> seconds;  // of the source to analyse
  int jobs = 0;                   // settings tried in parallel; 0: one per processor
  bool json = false;
  source::live::LiveOptions live;
};

// Returns the program's exit status; throws Failure.
int tune(const TuneOptions& options);

}  // namespace lm::host::commands::tune
