// Output of the tools that read object files.
#pragma once

#include <string>
#include <vector>

// The lines that `command` writes to its standard output. Throws when it fails.
std::vector<std::string> linesOf(const std::string& command);

// The lines of a text file that are neither empty nor comments (#). Throws when it cannot be read.
std::vector<std::string> entriesOf(const std::string& path);
