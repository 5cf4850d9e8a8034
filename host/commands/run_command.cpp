#include "host/commands/run_command.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "host/base/notice.h"
#include "host/commands/archive/archive.h"
#include "host/commands/run/run.h"

namespace lm::host::commands {
namespace {

constexpr const char* kRunFooter = R"(Examples:
  lightmotion run street.mp4 --report street.html    a page with every event
  lightmotion run street.mp4 -o boxes.jsonl          a line per frame with boxes
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

int work(const RunRequest& request) {
  base::show_plugin_log(request.run.verbose);
  return request.archive.out.empty() ? run::run(request.run)
                                     : archive::run_archive(request.run, request.archive);
}

}  // namespace

void add_run_request(CLI::App& command, RunRequest& request) {
  run::add_run_options(command, request.run);
  archive::add_archive_options(command, request.archive);
}

std::string complete(const CLI::App& command, RunRequest& request) {
  std::string fault = archive::complete_archive_options(command, request.archive);
  if (!fault.empty()) return fault;
  const std::vector<std::string>& sources = request.archive.sources;
  if (request.archive.out.empty() && !sources.empty()) request.run.source = sources.front();
  return run::conflict(request.run);
}

void add_run_command(CLI::App& app, std::function<int()>& chosen) {
  CLI::App* command = app.add_subcommand("run", "Find motion in a video");
  const auto request = std::make_shared<RunRequest>();
  add_run_request(*command, *request);
  command->footer(kRunFooter);
  command->callback([command, request, &chosen] {
    const std::string fault = complete(*command, *request);
    if (!fault.empty()) throw CLI::ValidationError(fault);
    chosen = [request] { return work(*request); };
  });
}

}  // namespace lm::host::commands
