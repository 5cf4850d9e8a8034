// Runs the program as its own child process: the plug-in supports one detector per process.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace lm::host::base {

// Starts this program with these arguments. Its output goes to the file `messages`, and it is killed when
// this process exits. Throws Failure (kTrouble) when it cannot be started.
pid_t start_child(const std::vector<std::string>& arguments, const std::string& messages);

// The exit status as a shell reports it, from the status of waitpid.
int exit_status(int status);

// The cause of a child's failure in one line, from its messages and exit status; empty for status 0. Without
// warnings and without the names of the program and the source, which the caller reports.
std::string cause_of(const std::string& messages, int status, const std::string& source);

}  // namespace lm::host::base
