// The logging function that the plug-in looks up in its host.
#include <cstdarg>
#include <cstdio>

#include "host/base/notice.h"

// The plug-in finds it by name. The log file and its size limit do not apply to a program in a terminal.
extern "C" __attribute__((format(printf, 3, 4))) void log_File_Debug_s(const char* /*path*/,
                                                                       int /*size_limit*/, const char* format,
                                                                       ...) {
  if (!lm::host::base::shows_plugin_log()) return;
  std::fputs("lightmotion: plug-in: ", stderr);
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  std::fputc('\n', stderr);
}
