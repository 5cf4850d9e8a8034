// SIGINT, SIGTERM and SIGHUP as a flag that the run polls between frames.
#pragma once

namespace lm::host::base {

// From now on the first SIGINT, SIGTERM or SIGHUP is recorded and a second one ends the program at once;
// signals ignored before (nohup) stay ignored. A closed pipe and a file size limit become write errors.
void watch_for_interrupts();

// The signal number of the request to stop, or 0.
int interrupted();

}  // namespace lm::host::base
