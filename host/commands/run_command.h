// `lightmotion run` on the command line.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace lm::host::commands {

// `chosen` becomes what there is to do when it was asked for.
void add_run_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host::commands
