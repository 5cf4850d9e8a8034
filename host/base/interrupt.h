// SIGINT, SIGTERM and SIGHUP as a flag that the run polls between frames.
#pragma once

namespace lm::host::base {

// From now on the first SIGINT, SIGTERM or SIGHUP is recorded and a second one ends the program at once;
// signals ignored before (nohup) stay ignored. A closed pipe and a file size limit become write errors.
void watch_for_interrupts();

// From now on SIGHUP does not stop the program, except when its terminal is gone; hangups counts it instead.
// A SIGHUP ignored before (nohup) stays ignored.
void count_hangups();

// Number of SIGHUPs so far: requests to reopen the files that are appended to.
int hangups();

// The signal number of the request to stop, or 0.
int interrupted();

}  // namespace lm::host::base
