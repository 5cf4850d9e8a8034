// What code outside this program prints to a standard stream, kept from the terminal.
#pragma once

#include <cstdio>
#include <string>

namespace lm::host {

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

}  // namespace lm::host
