// `lightmotion presets`.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace lm::host::commands {

void add_presets_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host::commands
