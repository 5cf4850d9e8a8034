// What `lightmotion run` is asked to do.
#pragma once

#include <optional>
#include <string>

#include "host/archive/archive_options.h"
#include "host/events/event_options.h"
#include "host/live/live_options.h"
#include "host/mqtt/mqtt_options.h"
#include "host/progress.h"
#include "host/report/report_options.h"

namespace CLI {
class App;
}

namespace lm::host {

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
  std::optional<ProgressMode> progress;  // the bar, unless quiet
  EventOptions events;
  MqttOptions mqtt;
  ReportOptions report;
  LiveOptions live;
  ArchiveOptions archive;  // many files at once when its folder is not empty
};

void add_run_options(CLI::App& run, RunOptions& options);

// Once the command line is parsed: fills in what follows from several options together. Returns what is wrong
// with them; empty when nothing is.
std::string complete_run_options(const CLI::App& run, RunOptions& options);

// Whether the result lines go to standard output. A terminal gets none when another output was asked for,
// unless they were asked for with `-o -`: they would bury everything else.
bool prints_lines(const RunOptions& options, bool to_terminal);

}  // namespace lm::host
