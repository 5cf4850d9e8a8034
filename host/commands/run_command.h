// `lightmotion run` on the command line.
#pragma once

#include <functional>
#include <string>

#include "host/commands/archive/archive_options.h"
#include "host/commands/run/run_options.h"

namespace CLI {
class App;
}

namespace lm::host::commands {

struct RunRequest {
  run::RunOptions run;              // for the only source, or for each of many
  archive::ArchiveOptions archive;  // many files when its folder is not empty
};

void add_run_request(CLI::App& command, RunRequest& request);

// Once the command line is parsed. Returns what is wrong with the options together; empty when nothing is.
std::string complete(const CLI::App& command, RunRequest& request);

// `chosen` becomes what there is to do when it was asked for.
void add_run_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host::commands
