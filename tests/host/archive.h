// A small archive for the tests: videos, files that are none, and the results of runs over them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace archive {

// A video of 20 frames in which the fake plug-in finds boxes on 18.
std::string clip_bytes();

// A file that holds sound and no video.
std::string sound_bytes();

// The contents of all files in a folder at any depth, hidden ones too, by their paths below it.
std::map<std::string, std::string> tree(const std::string& folder);

// Looks again and again until it holds; false when it does not within half a minute.
bool eventually(const std::function<bool()>& holds);

// The arguments of a run with the fake plug-in.
std::vector<std::string> arguments(std::vector<std::string> rest);

}  // namespace archive
