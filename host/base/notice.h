// Messages on standard error during a run. For the analysing thread only.
#pragma once

#include <string>

namespace lm::host::base {

// One line, "lightmotion: warning: " and the text.
void warn(const std::string& text);

// Whether the plug-in's log is shown; not at the start.
void show_plugin_log(bool on);
bool shows_plugin_log();

// A line at the bottom of the terminal that is drawn again and again. Taken away, it makes room for others.
void draw_bar(const std::string& line);
void clear_bar();

}  // namespace lm::host::base
