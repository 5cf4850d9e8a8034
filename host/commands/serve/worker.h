// `lightmotion detect`: a detector in its own process, controlled over a socket.
#pragma once

#include <string>

namespace lm::host::commands::serve {

// Answers requests (wire.h) until the other side closes the socket, which is both standard input and standard
// output. Returns the exit status.
int work_as_detector(const std::string& plugin);

}  // namespace lm::host::commands::serve
