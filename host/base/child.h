// The program as a child of itself: the plug-in is one detector a process.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace lm::host::base {

// Starts this very program with these arguments. What it prints goes to `messages`, and it is killed when
// this process dies. Throws Failure (kTrouble) when it cannot be started.
pid_t start_child(const std::vector<std::string>& arguments, const std::string& messages);

// How it ended, from the status that waitpid gives: as a shell shows it.
int exit_status(int status);

// From a child's messages and exit status: why it failed, in a line; empty for status 0. The program's and
// the source's names are left out, since whoever reports it names them, and so are warnings.
std::string cause_of(const std::string& messages, int status, const std::string& source);

}  // namespace lm::host::base
