// Ctrl-C and its relatives, as a flag that the run looks at between frames.
#pragma once

namespace lm::host {

// From now on the first SIGINT, SIGTERM or SIGHUP is remembered, and a second one ends the program at once. A
// closed pipe becomes a write error.
void watch_for_interrupts();

// The number of the signal that asked the program to stop, or 0.
int interrupted();

}  // namespace lm::host
