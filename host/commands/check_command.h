// lightmotion check: checks how the plug-in will interpret a configuration.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace lm::host::commands {

void add_check_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host::commands
