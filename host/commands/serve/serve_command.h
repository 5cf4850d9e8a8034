// `lightmotion serve`, and the hidden `lightmotion detect` that it starts.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace lm::host::commands::serve {

// `chosen` becomes what there is to do when one of them was asked for.
void add_serve_command(CLI::App& app, std::function<int()>& chosen);

}  // namespace lm::host::commands::serve
