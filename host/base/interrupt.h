// Ctrl-C and its relatives, as a flag that the run looks at between frames.
#pragma once

namespace lm::host::base {

// From now on the first SIGINT, SIGTERM or SIGHUP is remembered, and a second one ends the program at once;
// those that were ignored before (nohup) stay so. A closed pipe and a file that may not grow further become
// write errors.
void watch_for_interrupts();

// The number of the signal that asked the program to stop, or 0.
int interrupted();

}  // namespace lm::host::base
