// lightmotion check: what the plug-in will make of a configuration document.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace lm::host {

void add_check_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host
