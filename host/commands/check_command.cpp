#include "host/commands/check_command.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "host/base/failure.h"
#include "host/base/whole_file.h"
#include "host/detector/adapt.h"
#include "host/detector/check/check.h"
#include "host/detector/check/text.h"
#include "host/source/live/scale.h"
#include "host/source/source.h"

namespace lm::host::commands {
namespace {

struct CheckOptions {
  std::string config;
  std::optional<std::string> source;
  std::optional<cv::Size> size;
  bool json = false;
  bool entry_points = false;
};

constexpr const char* kCheckFooter = R"(Examples:
  lightmotion check night.json                       the configuration alone
  lightmotion check night.json --size 1280x720       with regions on such frames
  lightmotion check night.json --source street.mp4   with regions on this video

Exit status:
  0  no findings, or notes only
  1  warnings: a setting does not do what it appears to do
  2  errors: the configuration is refused or nothing could ever be found,
     or a file cannot be read
)";

enum CheckStatus { kFine = 0, kDoubtful = 1, kFaulty = 2 };

CheckStatus status_of(const detector::check::Verdict& verdict) {
  CheckStatus status = kFine;
  for (const detector::check::Finding& finding : verdict.findings) {
    if (finding.severity == detector::check::Severity::error) return kFaulty;
    if (finding.severity == detector::check::Severity::warning) status = kDoubtful;
  }
  return status;
}

int check_config(const CheckOptions& options) {
  const std::string text = base::required_text(options.config);
  std::optional<cv::Size> size = options.size;
  if (options.source) size = source::open_source(*options.source)->info().size;
  if (size && !options.entry_points) size = detector::analysed_size(text, *size, {});
  const auto reader =
      options.entry_points ? detector::check::Reader::plugin : detector::check::Reader::handle;
  const detector::check::Verdict verdict = detector::check::check_document(text, size, reader);
  const std::string report = options.json ? detector::check::to_json(verdict) + '\n'
                                          : detector::check::to_text(options.config, verdict);
  if (std::fputs(report.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
    throw base::Failure(base::kRefused, "standard output: " + std::generic_category().message(errno));
  }
  return status_of(verdict);
}

// Any failure is an error here: status 1 would mean a warning.
int check_or_fail(const CheckOptions& options) {
  try {
    return check_config(options);
  } catch (const std::exception& error) {
    throw base::Failure(base::kRefused, error.what());
  }
}

bool is_size(const std::string& text) {
  const std::optional<source::live::Scale> scale = source::live::parse_scale(text);
  return scale && !scale->size.empty();
}

}  // namespace

void add_check_command(CLI::App& app, std::function<int()>& chosen) {
  CLI::App* command = app.add_subcommand("check", "Check how a configuration will be interpreted");
  const auto options = std::make_shared<CheckOptions>();
  command->add_option("CONFIG", options->config, "Configuration (JSON)")->type_name("")->required();
  CLI::Option* source =
      command
          ->add_option("--source", options->source, "Take the frame size from this video, stream or camera")
          ->type_name("SOURCE");
  command
      ->add_option_function<std::string>(
          "--size",
          [options](const std::string& text) { options->size = source::live::parse_scale(text)->size; },
          "Frame size, such as 1280x720")
      ->type_name("SIZE")
      ->excludes(source)
      ->check([](const std::string& text) {
        return is_size(text) ? "" : "must be a size such as 1280x720, not " + text;
      });
  command->add_flag("--entry-points", options->entry_points,
                    "Check for hosts that use the plug-in by its four entry points");
  command->add_flag("--json", options->json, "Print one JSON object, for programs");
  command->footer(kCheckFooter);
  command->callback([options, &chosen] { chosen = [options] { return check_or_fail(*options); }; });
}

}  // namespace lm::host::commands
