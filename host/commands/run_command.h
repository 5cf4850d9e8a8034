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
  run::RunOptions run;              // for a single source, or for each of many
  archive::ArchiveOptions archive;  // many files if its folder is not empty
};

void add_run_request(CLI::App& command, RunRequest& request);

// After parsing. Returns what is wrong with the options together; empty if nothing is.
std::string complete(const CLI::App& command, RunRequest& request);

// Sets `chosen` to the work of the command if it was requested.
void add_run_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host::commands
