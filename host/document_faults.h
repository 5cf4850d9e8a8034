// Why the plug-in refused a configuration document, where its own words ("stoi") do not tell.
#pragma once

#include <string>
#include <vector>

namespace lm::host {

// The first setting that the plug-in cannot convert, such as `"minBoxW" must be a number, not "wide"`; empty
// when all can be converted. `document`: a JSON object.
std::string faulty_setting(const std::string& document);

// The settings that the plug-in passes over because it reads texts only, such as a sensitivity of 5 for "5".
std::vector<std::string> ignored_settings(const std::string& document);

}  // namespace lm::host
