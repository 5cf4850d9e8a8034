// `lightmotion tune` on the command line.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace lm::host {

void add_tune_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host
