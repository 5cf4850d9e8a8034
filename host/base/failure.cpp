#include "host/base/failure.h"

namespace lm::host::base {

std::string one_line(const std::string& text) {
  std::string line;
  bool gap = false;
  for (const char c : text) {
    if (static_cast<unsigned char>(c) <= ' ' || c == '\x7f') {
      gap = true;
      continue;
    }
    if (gap && !line.empty()) line += ' ';
    gap = false;
    line += c;
  }
  return line;
}

}  // namespace lm::host::base
