#include "host/commands/run_command.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "host/base/notice.h"
#include "host/commands/archive/archive.h"
#include "host/commands/archive/archive_options.h"
#include "host/commands/run/run.h"
#include "host/commands/run/run_options.h"

namespace lm::host::commands {
namespace {

constexpr const char* kFooter = R"(Examples:
  lightmotion run street.mp4 --report street.html    a page with every event
  lightmotion run street.mp4 -o boxes.jsonl          one line per frame with boxes
  lightmotion run street.mp4 --annotate boxes.mp4    the video with boxes drawn
  lightmotion run street.mp4 --config night.json     your own settings and regions
  lightmotion run rtsp://192.168.1.20/main           a network camera, until Ctrl-C
  lightmotion run recordings --out results           every video in a folder

Exit status:
  0    success
  1    the source cannot be read to its end, or an output cannot be written
  2    invalid command line or configuration, or no usable plug-in
  130  stopped by Ctrl-C; the outputs are complete up to that point
)";

struct Asked {
  run::RunOptions run;              // of the only source, or of each
  archive::ArchiveOptions archive;  // many files when its folder is not empty
};

std::string complete(const CLI::App& command, Asked& asked) {
  const std::string fault = archive::complete_archive_options(command, asked.archive);
  if (!fault.empty()) return fault;
  const std::vector<std::string>& sources = asked.archive.sources;
  if (asked.archive.out.empty() && !sources.empty()) asked.run.source = sources.front();
  return run::conflict(asked.run);
}

int work(const Asked& asked) {
  base::show_plugin_log(asked.run.verbose);
  return asked.archive.out.empty() ? run::run(asked.run) : archive::run_archive(asked.run, asked.archive);
}

}  // namespace

void add_run_command(CLI::App& app, std::function<int()>& chosen) {
  CLI::App* command = app.add_subcommand("run", "Find motion in a video");
  const auto asked = std::make_shared<Asked>();
  run::add_run_options(*command, asked->run);
  archive::add_archive_options(*command, asked->archive);
  command->footer(kFooter);
  command->callback([command, asked, &chosen] {
    const std::string fault = complete(*command, *asked);
    if (!fault.empty()) throw CLI::ValidationError(fault);
    chosen = [asked] { return work(*asked); };
  });
}

}  // namespace lm::host::commands
