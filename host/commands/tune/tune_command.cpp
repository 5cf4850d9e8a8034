#include "host/commands/tune/tune_command.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/base/number_option.h"
#include "host/commands/tune/tune.h"

namespace lm::host::commands::tune {
namespace {

constexpr const char* kFooter = R"(Examples:
  lightmotion tune hall.mp4 -o hall.json             settings for this camera
  lightmotion tune hall.mp4 --config old.json -o new.json
                                                     keep its regions
  lightmotion tune hall.mp4 --quiet 0-20 --motion 31-36 --picture hall.png
                                                     mark what the video shows

Exit status:
  0    success
  1    the source cannot be read to its end, or an output cannot be written
  2    invalid command line or configuration, or no usable plug-in
  130  stopped by Ctrl-C; nothing is written
)";

std::string not_a_span(const std::string& text) {
  const std::optional<events::TimeSpan> span = events::parse_span(text);
  return span && span->from < span->to ? "" : "must be two times in seconds, such as 0-12.5, not " + text;
}

void add_spans(CLI::App& command, const char* name, Spans& spans, const char* help) {
  command
      .add_option_function<std::vector<std::string>>(
          name,
          [&spans](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) spans.push_back(*events::parse_span(text));
          },
          help)
      ->type_name("FROM-TO")
      ->check(not_a_span)
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

}  // namespace

void add_tune_command(CLI::App& app, std::function<int()>& chosen) {
  CLI::App* command = app.add_subcommand("tune", "Find settings for your own footage");
  const auto options = std::make_shared<TuneOptions>();
  const auto add = [&](const char* name, std::string& value, const char* kind, const char* help) {
    return command->add_option(name, value, help)->type_name(kind);
  };
  add("SOURCE", options->source, "",
      "Video file, stream address or camera (/dev/video0); default: the built-in scene");
  add_spans(*command, "--quiet", options->marks.quiet,
            "Times in seconds between which nothing moves, such as 0-12.5; can be repeated");
  add_spans(*command, "--motion", options->marks.motion,
            "Times in seconds between which something moves; can be repeated");
  add("-c,--config", options->config, "FILE",
      "Configuration (JSON) to start from; its regions and other settings are kept (default: the preset "
      "auto)");
  add("-o,--output", options->output, "FILE",
      "Write the proposed configuration to this file instead of standard output");
  add("--picture", options->picture, "FILE", "Write a chart of what each setting found, and when (.png)")
      ->check([](const std::string& file) {
        return file.ends_with(".png") ? "" : "must end in .png, not " + file;
      });
  command->add_flag("--json", options->json, "Print one JSON object on standard output, for programs");
  base::add_number(
      *command,
      {"--seconds", "SECONDS", "How much of the source to analyse", {1, 86400, "s"}, "60; 30 of a camera"},
      [options](double seconds) { options->seconds = seconds; });
  base::add_number(
      *command, {"--jobs", "N", "Settings tried at the same time", {1, 4096, "", true}, "one per processor"},
      [options](double jobs) { options->jobs = static_cast<int>(jobs); });
  add("--plugin", options->plugin, "PATH", "Use this plug-in by its entry points instead of the library");
  source::live::add_live_options(*command, options->live);
  command->footer(kFooter);
  command->callback([options, &chosen] { chosen = [options] { return tune(*options); }; });
}

}  // namespace lm::host::commands::tune
