#include "host/base/notice.h"

#include <cstdio>

#include "host/base/failure.h"

namespace lm::host::base {
namespace {

bool drawn = false;
bool log_shown = false;

}  // namespace

void warn(const std::string& text) {
  clear_bar();
  std::fprintf(stderr, "lightmotion: warning: %s\n", one_line(text).c_str());
}

void show_plugin_log(bool on) { log_shown = on; }

bool shows_plugin_log() { return log_shown; }

void draw_bar(const std::string& line) {
  std::fprintf(stderr, "\r%s\x1b[K", line.c_str());
  std::fflush(stderr);
  drawn = true;
}

void clear_bar() {
  if (!drawn) return;
  std::fputs("\r\x1b[K", stderr);
  std::fflush(stderr);
  drawn = false;
}

}  // namespace lm::host::base
