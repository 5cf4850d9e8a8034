// The command line.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/archive/archive_options.h"
#include "host/events/event_options.h"
#include "host/failure.h"
#include "host/live/live_options.h"
#include "host/mqtt/mqtt_options.h"
#include "host/progress.h"
#include "host/report/report_options.h"

namespace lm::host {

// What `lightmotion run` was asked to do. An empty text: not given.
struct Options {
  std::string source;    // file, stream address or camera; the built-in scene when empty
  std::string config;    // file with the configuration document
  std::string preset;    // name of the preset to use instead
  std::string results;   // file for the result lines; standard output when empty
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

// Either options to run with, or what another subcommand has to do, or a text to print (help, version, an
// error) and the status to end with.
struct Command {
  std::optional<Options> options;
  std::function<int()> work{};  // returns the exit status; may throw Failure
  ExitStatus status = kDone;
  std::string text{};
};

// `arguments`: without the program's name.
Command parse_command_line(const std::vector<std::string>& arguments);

}  // namespace lm::host
