#include "host/run_command.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/archive/archive.h"
#include "host/notice.h"
#include "host/run.h"
#include "host/run_options.h"

namespace lm::host {
namespace {

constexpr const char* kFooter = R"(Examples:
  lightmotion run street.mp4 --report street.html    a page with every event
  lightmotion run street.mp4 -o boxes.jsonl          one line per frame
  lightmotion run street.mp4 --annotate boxes.mp4    the video with boxes drawn
  lightmotion run street.mp4 --config night.json     your settings and regions
  lightmotion run rtsp://192.168.1.20/main           a camera, until Ctrl-C
  lightmotion run recordings --out results           every video in a folder

Exit status:
  0    success
  1    the source cannot be read to its end, or an output cannot be written
  2    invalid command line or configuration, or no usable plug-in
  130  stopped by Ctrl-C; the outputs are complete up to that point
)";

int work(const RunOptions& options) {
  show_plugin_log(options.verbose);
  return options.archive.out.empty() ? run(options) : run_archive(options);
}

}  // namespace

void add_run_command(CLI::App& app, std::function<int()>& chosen) {
  CLI::App* command = app.add_subcommand("run", "Find motion in a video");
  const auto options = std::make_shared<RunOptions>();
  add_run_options(*command, *options);
  command->footer(kFooter);
  command->callback([command, options, &chosen] {
    const std::string fault = complete_run_options(*command, *options);
    if (!fault.empty()) throw CLI::ValidationError(fault);
    chosen = [options] { return work(*options); };
  });
}

}  // namespace lm::host
