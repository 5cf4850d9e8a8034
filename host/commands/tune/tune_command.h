// `lightmotion tune` on the command line.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace lm::host::commands::tune {

void add_tune_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host::commands::tune
