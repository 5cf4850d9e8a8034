#include "tests/support/capture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdarg>
#include <stdexcept>

namespace lm::test {

Capture::Capture(std::FILE* stream) : stream_(stream) {
  std::fflush(stream_);
  original_ = dup(fileno(stream_));
  file_ = memfd_create("capture", 0);
  if (original_ < 0 || file_ < 0 || dup2(file_, fileno(stream_)) < 0) {
    throw std::runtime_error("cannot capture a standard stream");
  }
}

Capture::~Capture() {
  std::fflush(stream_);
  dup2(original_, fileno(stream_));
  close(original_);
  close(file_);
}

std::string Capture::text() {
  std::fflush(stream_);
  std::string all;
  std::array<char, 4096> part{};
  ssize_t length = 0;
  while ((length = pread(file_, part.data(), part.size(), static_cast<off_t>(all.size()))) > 0) {
    all.append(part.data(), static_cast<std::size_t>(length));
  }
  return all;
}

std::ostream& operator<<(std::ostream& stream, const Printed& printed) {
  return stream << "standard output \"" << printed.out << "\", standard error \"" << printed.err << '"';
}

std::ostream& operator<<(std::ostream& stream, const LogCall& call) {
  return stream << call.path << ' ' << call.level << " \"" << call.text << '"';
}

std::vector<LogCall>& hostLog() {
  static std::vector<LogCall> calls;
  return calls;
}

namespace {
bool logThrows = false;
}
ThrowingHostLog::ThrowingHostLog() { logThrows = true; }
ThrowingHostLog::~ThrowingHostLog() { logThrows = false; }

}  // namespace lm::test

// The host's side of config/host_log.h, which is not included here: its declaration would make this one weak.
extern "C" __attribute__((format(printf, 3, 4))) void log_File_Debug_s(const char* path, int level,
                                                                       const char* format, ...) {
  std::array<char, 1024> text{};
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  lm::test::hostLog().push_back({path, level, text.data()});
  if (lm::test::logThrows) throw std::runtime_error("the log is full");
}
