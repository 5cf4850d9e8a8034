// What the library prints on the standard streams, and its calls of the host's logging function.
#pragma once

#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

namespace lm::test {

// Captures what is written to a standard stream during its lifetime, by any means.
class Capture {
 public:
  explicit Capture(std::FILE* stream);
  ~Capture();
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  std::string text();  // so far

 private:
  std::FILE* stream_;
  int original_;
  int file_;
};

struct Printed {
  std::string out;
  std::string err;
  bool operator==(const Printed&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const Printed& printed);

// What `call` writes to the two streams.
template <typename Call>
Printed printedBy(Call&& call) {
  Capture out(stdout);
  Capture err(stderr);
  call();
  return {out.text(), err.text()};
}

struct LogCall {
  std::string path;
  int level;
  std::string text;  // formatted
  bool operator==(const LogCall&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const LogCall& call);

// The calls so far. A program that uses this list is a host with the logging function.
std::vector<LogCall>& hostLog();

// During its lifetime, the logging function throws std::runtime_error after recording its call.
class ThrowingHostLog {
 public:
  ThrowingHostLog();
  ~ThrowingHostLog();
  ThrowingHostLog(const ThrowingHostLog&) = delete;
  ThrowingHostLog& operator=(const ThrowingHostLog&) = delete;
};

}  // namespace lm::test
