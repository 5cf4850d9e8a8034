// A small archive for tests: videos, files that are not videos, and results of runs over them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/host/program.h"

namespace archive {

// A video of 20 frames in which the fake plug-in finds boxes on 18.
std::string clip_bytes();

// A file with sound but no video.
std::string sound_bytes();

// The contents of all files in a folder and its subfolders, including hidden ones, by relative path.
std::map<std::string, std::string> tree(const std::string& folder);

// Polls until it holds; false after half a minute.
bool eventually(const std::function<bool()>& holds);

// The arguments of a run with the fake plug-in.
std::vector<std::string> arguments(std::vector<std::string> rest);

}  // namespace archive
