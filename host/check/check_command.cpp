#include "host/check/check_command.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "host/check/check.h"
#include "host/check/text.h"
#include "host/failure.h"
#include "host/live/scale.h"
#include "host/source.h"
#include "host/whole_file.h"

namespace lm::host {
namespace {

struct CheckOptions {
  std::string config;
  std::optional<std::string> source;
  std::optional<cv::Size> size;
  bool json = false;
};

constexpr const char* kFooter = R"(Examples:
  lightmotion check night.json                       what the document says by itself
  lightmotion check night.json --size 1280x720       with its regions laid on such frames
  lightmotion check night.json --source street.avi   ... on frames of that video

Exit status: 0 nothing but notes; 1 warnings: something has another effect than it
seems; 2 errors: the plug-in refuses it or could never find anything, or a file
could not be read.
)";

enum CheckStatus { kFine = 0, kDoubtful = 1, kFaulty = 2 };

// A source that cannot be opened is no warning.
cv::Size size_of_source(const std::string& name) {
  try {
    return open_source(name)->info().size;
  } catch (const Failure& failure) {
    throw Failure(kRefused, failure.what());
  }
}

CheckStatus status_of(const check::Verdict& verdict) {
  CheckStatus status = kFine;
  for (const check::Finding& finding : verdict.findings) {
    if (finding.severity == check::Severity::kError) return kFaulty;
    if (finding.severity == check::Severity::kWarning) status = kDoubtful;
  }
  return status;
}

int check_config(const CheckOptions& options) {
  const std::string text = required_text(options.config);
  std::optional<cv::Size> size = options.size;
  if (options.source) size = size_of_source(*options.source);
  const check::Verdict verdict = check::check_document(text, size);
  const std::string report =
      options.json ? check::to_json(verdict) + '\n' : check::to_text(options.config, verdict);
  if (std::fputs(report.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
    throw Failure(kRefused, "standard output: " + std::generic_category().message(errno));
  }
  return status_of(verdict);
}

bool is_size(const std::string& text) {
  const std::optional<Scale> scale = parse_scale(text);
  return scale && !scale->size.empty();
}

}  // namespace

void add_check_command(CLI::App& app, std::function<int()>& chosen) {
  CLI::App* command = app.add_subcommand("check", "Say what the plug-in will make of a configuration");
  const auto options = std::make_shared<CheckOptions>();
  command->add_option("CONFIG", options->config, "Configuration document (JSON)")->type_name("")->required();
  CLI::Option* source =
      command->add_option("--source", options->source, "Video, address or camera to watch with it")
          ->type_name("SOURCE");
  command
      ->add_option_function<std::string>(
          "--size", [options](const std::string& text) { options->size = parse_scale(text)->size; },
          "Size of the frames, such as 1280x720")
      ->type_name("SIZE")
      ->excludes(source)
      ->check([](const std::string& text) {
        return is_size(text) ? "" : "must be a size such as 1280x720, not " + text;
      });
  command->add_flag("--json", options->json, "For programs: one JSON object");
  command->footer(kFooter);
  command->callback([options, &chosen] { chosen = [options] { return check_config(*options); }; });
}

}  // namespace lm::host
