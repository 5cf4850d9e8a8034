// The log that the plug-in writes to when its host offers one.
#pragma once

namespace lm::host {

// Off at the start: what the plug-in logs is then dropped.
void show_plugin_log(bool on);

}  // namespace lm::host
