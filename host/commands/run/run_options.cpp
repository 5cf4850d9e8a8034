#include "host/commands/run/run_options.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "host/detector/presets/presets.h"
#include "host/outputs/video_writer.h"

namespace lm::host::commands::run {
namespace {

namespace fs = std::filesystem;

constexpr const char* kStandardOutput = "-";

// A trailing slash makes no difference.
bool same_file(const std::string& a, const std::string& b) {
  std::error_code ignored;
  const auto plain = [&](const std::string& name) {
    return (fs::absolute(name, ignored) / "").lexically_normal();
  };
  return !a.empty() && !b.empty() && (plain(a) == plain(b) || fs::equivalent(a, b, ignored));
}

// Outputs other than the result lines.
bool has_other_outputs(const RunOptions& options) {
  const outputs::report::ReportOptions& report = options.report;
  for (const std::string* output :
       {&options.annotate, &options.events.file, &options.events.explain, &options.mqtt.address, &report.page,
        &report.heatmap, &report.snapshots, &report.clips}) {
    if (!output->empty()) return true;
  }
  return false;
}

void add_progress(CLI::App& run, RunOptions& options) {
  run.add_option_function<std::string>(
         "--progress",
         [&options](const std::string& mode) { options.progress = outputs::progress_mode(mode); },
         "bar (only on a terminal; the default), json (one line per second, for programs) or none")
      ->type_name("MODE")
      ->check([](const std::string& mode) {
        return outputs::progress_mode(mode) ? "" : "must be bar, json or none, not " + mode;
      });
}

}  // namespace

void add_run_options(CLI::App& run, RunOptions& options) {
  const auto add = [&run](const char* name, std::string& value, const char* kind, const char* help) {
    return run.add_option(name, value, help)->type_name(kind);
  };
  CLI::Option* config = add("-c,--config", options.config, "FILE", "Configuration (JSON)");
  add("--preset", options.preset, "NAME",
      "Use this preset instead of --config (lightmotion presets lists them)")
      ->check(detector::presets::is_preset)
      ->excludes(config);
  add("-o,--output", options.results, "FILE",
      "Write the result lines to this file; - is standard output, the default except on a terminal with "
      "other outputs");
  add("-a,--annotate", options.annotate, "FILE", "Write the video with the boxes drawn (.mp4, .mkv or .mov)")
      ->check([](const std::string& file) {
        return outputs::video_format(file) ? "" : "must end in .mp4, .mkv or .mov, not " + file;
      });
  add("--plugin", options.plugin, "PATH", "Use this plug-in by its entry points instead of the library");
  run.add_flag("-q,--quiet", options.quiet, "No progress bar and no summary");
  add_progress(run, options);
  run.add_flag("-v,--verbose", options.verbose,
               "Show the log of the decoder, and of the plug-in of --plugin");
  events::add_event_options(run, options.events);
  outputs::report::add_report_options(run, options.report);
  outputs::mqtt::add_mqtt_options(run, options.mqtt);
  source::live::add_live_options(run, options.live);
  outputs::add_storage_options(run, options.storage);
  run.add_option("--figures", options.figures)->group("");
}

// Outputs get their names when complete, so a name used twice would silently lose a file. The files in the
// two folders have different extensions.
std::string conflict(const RunOptions& options) {
  const bool rotates = options.storage.rotation.daily || options.storage.rotation.bytes > 0;
  const bool appends =
      (!options.results.empty() && options.results != kStandardOutput) || !options.events.file.empty();
  if (rotates && !appends) return "--rotate needs result lines (-o FILE) or --events FILE";
  const bool leaves = rotates || !options.report.clips.empty() || !options.report.snapshots.empty();
  if (options.storage.removes() && !leaves)
    return "--keep and --keep-size need --clips, --snapshots or --rotate";
  const std::string nowhere;
  const struct {
    const char* option;
    const std::string& name;
    bool folder = false;
  } outputs[] = {{"-o", options.results == kStandardOutput ? nowhere : options.results},
                 {"--annotate", options.annotate},
                 {"--events", options.events.file},
                 {"--report", options.report.page},
                 {"--heatmap", options.report.heatmap},
                 {"--snapshots", options.report.snapshots, true},
                 {"--clips", options.report.clips, true}};
  for (const auto& output : outputs) {
    const std::string clash =
        std::string(output.option) + (output.folder ? " needs a folder, not " : " would overwrite ");
    if (same_file(output.name, options.source)) return clash + "the source";
    if (same_file(output.name, options.config)) return clash + "the configuration";
    for (const auto* other = outputs; other != &output; ++other) {
      if (same_file(output.name, other->name) && !(output.folder && other->folder)) {
        return std::string(other->option) + " and " + output.option + " name the same file";
      }
    }
  }
  return "";
}

bool prints_lines(const RunOptions& options, bool to_terminal) {
  if (!options.results.empty()) return options.results == kStandardOutput;
  return !to_terminal || !has_other_outputs(options);
}

}  // namespace lm::host::commands::run
