// Messages on standard error during a run. For the analysing thread only.
#pragma once

#include <string>

namespace lm::host::base {

// Prints "lightmotion: warning: " and the text on one line.
void warn(const std::string& text);

// Whether to show the plug-in's log; off at the start.
void show_plugin_log(bool on);
bool shows_plugin_log();

// Redraws a line at the bottom of the terminal; it is cleared before other lines are printed.
void draw_bar(const std::string& line);
void clear_bar();

}  // namespace lm::host::base
