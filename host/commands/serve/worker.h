// `lightmotion detect`: the plug-in in a process of its own, asked over standard input.
#pragma once

#include <string>

namespace lm::host::commands::serve {

// Answers the requests of host/serve/wire.h until the other side closes the socket, which is standard input
// and output at once. Returns the exit status.
int work_as_detector(const std::string& plugin);

}  // namespace lm::host::commands::serve
