// `lightmotion serve`, and the hidden `lightmotion detect` that it starts.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace lm::host::commands::serve {

// Sets `chosen` to the work of the command if one of them was requested.
void add_serve_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host::commands::serve
