#include "host/plugin_log.h"

#include <cstdarg>
#include <cstdio>

namespace {

bool shown = false;

}  // namespace

namespace lm::host {

void show_plugin_log(bool on) { shown = on; }

}  // namespace lm::host

// Found by the plug-in by its name. The log file and its size limit are of no use to a program in a terminal.
extern "C" __attribute__((format(printf, 3, 4))) void log_File_Debug_s(const char* /*path*/,
                                                                       int /*size_limit*/, const char* format,
                                                                       ...) {
  if (!shown) return;
  std::fputs("lightmotion: plug-in: ", stderr);
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  std::fputc('\n', stderr);
}
