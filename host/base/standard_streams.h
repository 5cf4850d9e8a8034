// Protects standard input, output and error.
#pragma once

#include <cstdio>
#include <string>

namespace lm::host::base {

// Opens /dev/null for the standard streams that were closed at start. Otherwise the next file opened would
// take their descriptor, and results would be written into it.
void occupy_standard_streams();

// Captures what other code prints to a standard stream.
// During its lifetime, writes to `stream` (stdout or stderr) go to memory. If that cannot be set up, the
// stream is unchanged and the text empty.
class CapturedStream {
 public:
  explicit CapturedStream(std::FILE* stream);
  ~CapturedStream();
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  // Everything written so far.
  std::string text();

 private:
  std::FILE* stream_;
  int memory_ = -1;
  int original_ = -1;
};

}  // namespace lm::host::base
