#include "host/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <memory>

#include "host/check/check_command.h"
#include "host/presets/presets.h"
#include "host/presets/presets_command.h"
#include "host/serve/serve_command.h"
#include "host/shown_address.h"
#include "host/tune/tune_command.h"
#include "host/video_writer.h"

namespace lm::host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kExamples = R"(Examples:
  lightmotion run --annotate scene.mp4               the built-in scene, boxes drawn
  lightmotion run street.avi -o boxes.jsonl          one line per frame with boxes
  lightmotion run street.avi --config night.json     with settings and regions of your own
  lightmotion run rtsp://192.168.1.20/main           a network camera, until Ctrl-C
  lightmotion run recordings --out results           every video in a folder
)";

constexpr const char* kStatuses = R"(
Exit status: 0 fine; 1 the source could not be read to its end, or an output could
not be written; 2 wrong use, a configuration that does not fit, or no plug-in;
130 stopped by Ctrl-C, with the outputs complete up to there.
)";

// Whether or not the names end in a slash.
bool same_file(const std::string& a, const std::string& b) {
  std::error_code ignored;
  const auto plain = [&](const std::string& name) {
    return (fs::absolute(name, ignored) / "").lexically_normal();
  };
  return !a.empty() && !b.empty() && (plain(a) == plain(b) || fs::equivalent(a, b, ignored));
}

// The outputs take their names when they are complete, so a name used twice would silently lose a file. Names
// in the two folders have different endings.
std::string conflict(const Options& options) {
  const struct {
    const char* option;
    const std::string& name;
    bool folder = false;
  } outputs[] = {{"-o", options.results},
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

CLI::App* add_run(CLI::App& app, Options& options) {
  CLI::App* run = app.add_subcommand("run", "Find what moves in a video");
  const auto add = [run](const char* name, std::string& value, const char* kind, const char* help) {
    return run->add_option(name, value, help)->type_name(kind);
  };
  CLI::Option* config = add("-c,--config", options.config, "FILE", "Configuration document (JSON)");
  add("--preset", options.preset, "NAME", "A configuration for a common place (lightmotion presets)")
      ->check(is_preset)
      ->excludes(config);
  add("-o,--output", options.results, "FILE", "Result lines go here, not to standard output");
  add("-a,--annotate", options.annotate, "FILE", "Video with the boxes drawn (.mp4, .mkv or .mov)")
      ->check([](const std::string& file) {
        return video_format(file) ? "" : "must end in .mp4, .mkv or .mov, not " + file;
      });
  add("--plugin", options.plugin, "PATH", "The plug-in, when it is not in its usual place");
  add_event_options(*run, options.events);
  add_report_options(*run, options.report);
  add_mqtt_options(*run, options.mqtt);
  run->add_flag("-q,--quiet", options.quiet, "No progress bar and no summary");
  run->add_option_function<std::string>(
         "--progress", [&options](const std::string& mode) { options.progress = progress_mode(mode); },
         "bar (on a terminal), json (a line a second, for programs)\nor none")
      ->type_name("MODE")
      ->check([](const std::string& mode) {
        return progress_mode(mode) ? "" : "must be bar, json or none, not " + mode;
      });
  run->add_flag("-v,--verbose", options.verbose, "Show what the plug-in and the decoder log");
  add_live_options(*run, options.live);
  add_archive_options(*run, options.archive);
  run->footer(std::string(kExamples) + kStatuses);
  return run;
}

Command refusal(const std::string& text, const std::string& subcommand) {
  return {std::nullopt,
          {},
          kRefused,
          "lightmotion: " + text + " (lightmotion " + subcommand + " --help tells more)\n"};
}

// The one that was asked for, as far as it can be told before all is understood.
std::string asked_for(const CLI::App& app, const std::vector<std::string>& arguments) {
  const auto named = [&](const CLI::App* subcommand) {
    return !arguments.empty() && subcommand->get_name() == arguments.front();
  };
  return app.get_subcommands(named).empty() ? "run" : arguments.front();
}

}  // namespace

Command parse_command_line(const std::vector<std::string>& arguments) {
  Options options;
  CLI::App app("lightmotion: finds what moves in a video and draws boxes around it\n", "lightmotion");
  app.set_version_flag("--version", "lightmotion " LIGHTMOTION_VERSION);
  app.require_subcommand(1);
  app.get_formatter()->column_width(28);
  app.footer(kExamples);
  const CLI::App* run = add_run(app, options);
  const auto refuse = [&arguments](const std::string& text, const std::string& subcommand) {
    return refusal(with_shown_addresses(text, arguments), subcommand);
  };
  std::function<int()> work;
  add_check_command(app, work);
  add_presets_command(app, work);
  add_serve_command(app, work);
  add_tune_command(app, work);
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    return {std::nullopt, {}, kDone, app.help()};
  } catch (const CLI::CallForVersion& version) {
    return {std::nullopt, {}, kDone, std::string(version.what()) + "\n"};
  } catch (const CLI::ParseError& error) {
    return refuse(error.what(), asked_for(app, arguments));
  }
  if (work) return {std::nullopt, work};
  if (const std::string text = complete_archive_options(*run, options.archive); !text.empty())
    return refuse(text, "run");
  if (options.archive.out.empty() && !options.archive.sources.empty())
    options.source = options.archive.sources.front();
  if (const std::string text = conflict(options); !text.empty()) return refuse(text, "run");
  return {options};
}

}  // namespace lm::host
