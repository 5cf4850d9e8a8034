// The request of `lightmotion run`.
#pragma once

#include <optional>
#include <string>

#include "host/events/event_options.h"
#include "host/outputs/mqtt/mqtt_options.h"
#include "host/outputs/progress.h"
#include "host/outputs/report/report_options.h"
#include "host/outputs/storage_options.h"
#include "host/source/live/live_options.h"

namespace CLI {
class App;
}

namespace lm::host::commands::run {

// An empty text: not given.
struct RunOptions {
  std::string source;    // file, stream address or camera; the built-in scene when empty
  std::string config;    // file with the configuration
  std::string preset;    // name of the preset to use instead
  std::string results;   // file for the result lines, "-" for standard output; see prints_lines
  std::string annotate;  // video file to write with the boxes drawn
  std::string plugin;    // path of the plug-in; searched for when empty
  bool quiet = false;
  bool verbose = false;
  std::optional<outputs::ProgressMode> progress;  // the bar, unless quiet
  events::EventOptions events;
  outputs::mqtt::MqttOptions mqtt;
  outputs::report::ReportOptions report;
  source::live::LiveOptions live;
  outputs::StorageOptions storage;
  std::string figures;  // file for the figures of the run, read by the process that started it
};

void add_run_options(CLI::App& run, RunOptions& options);

// What is wrong with the options together, such as two outputs with one name; empty if nothing is.
std::string conflict(const RunOptions& options);

// Whether result lines go to standard output. Not to a terminal if another output was requested, because they
// would bury everything else; `-o -` overrides this.
bool prints_lines(const RunOptions& options, bool to_terminal);

}  // namespace lm::host::commands::run
