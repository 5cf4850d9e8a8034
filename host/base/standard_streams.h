// Care for standard input, output and error.
#pragma once

#include <cstdio>
#include <string>

namespace lm::host::base {

// Gives the ones that were closed when the program started to /dev/null. Otherwise the next file opened would
// take their place, and results would end up in it.
void occupy_standard_streams();

// What code outside this program prints to a standard stream, kept from the terminal.
// While it lives, what is written to `stream` (stdout or stderr) goes to memory. Where that cannot be
// arranged, the stream stays as it is and the text empty.
class CapturedStream {
 public:
  explicit CapturedStream(std::FILE* stream);
  ~CapturedStream();
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  // What was written so far.
  std::string text();

 private:
  std::FILE* stream_;
  int memory_ = -1;
  int original_ = -1;
};

}  // namespace lm::host::base
