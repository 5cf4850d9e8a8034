#include "host/tune/tune_command.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/tune/tune.h"

namespace lm::host {
namespace {

constexpr const char* kFooter = R"(Examples:
  lightmotion tune hall.mp4 -o hall.json             settings for this camera
  lightmotion tune hall.mp4 --quiet 0-20 --motion 31-36 --picture hall.png
                                                     ... told what is in the sample
  lightmotion tune hall.mp4 --config old.json -o new.json
                                                     regions as they are in old.json

Exit status: 0 fine; 1 the source could not be read to its end, or an output could
not be written; 2 wrong use or a configuration that does not fit; 130 stopped by
Ctrl-C, with nothing written.
)";

std::string not_a_span(const std::string& text) {
  const std::optional<TimeSpan> span = parse_span(text);
  return span && span->from < span->to ? "" : "must be two times in seconds, such as 0-12.5, not " + text;
}

void add_spans(CLI::App& command, const char* name, tune::Spans& spans, const char* help) {
  command
      .add_option_function<std::vector<std::string>>(
          name,
          [&spans](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) spans.push_back(*parse_span(text));
          },
          help)
      ->type_name("FROM-TO")
      ->check(not_a_span)
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

}  // namespace

void add_tune_command(CLI::App& app, std::function<int()>& chosen) {
  CLI::App* command = app.add_subcommand("tune", "Find settings that suit your own footage");
  const auto options = std::make_shared<tune::TuneOptions>();
  const auto add = [&](const char* name, std::string& value, const char* kind, const char* help) {
    return command->add_option(name, value, help)->type_name(kind);
  };
  add("SOURCE", options->source, "", "As for run; the built-in scene when left out");
  add_spans(*command, "--quiet", options->marks.quiet,
            "Seconds in which nothing moves; may be given several\ntimes, like --motion");
  add_spans(*command, "--motion", options->marks.motion, "Seconds in which something does");
  add("-c,--config", options->config, "FILE", "Document to start from: its regions and everything else stay");
  add("-o,--output", options->output, "FILE", "The proposed document goes here, not to standard output");
  add("--picture", options->picture, "FILE", "What each setting found when (.png)")
      ->check([](const std::string& file) {
        return file.ends_with(".png") ? "" : "must end in .png, not " + file;
      });
  command->add_flag("--json", options->json, "For programs: one JSON object on standard output");
  command
      ->add_option("--seconds", options->seconds, "How much of the source is looked at (60; of a camera 30)")
      ->type_name("SECONDS")
      ->check(CLI::Range(1.0, 86400.0));
  command->add_option("--jobs", options->jobs, "Settings tried at a time (default: the processors)")
      ->type_name("N")
      ->check(CLI::Range(1, 4096).description(""));
  add("--plugin", options->plugin, "PATH", "The plug-in, when it is not in its usual place");
  add_live_options(*command, options->live);
  command->footer(kFooter);
  command->callback([options, &chosen] { chosen = [options] { return tune::tune(*options); }; });
}

}  // namespace lm::host
