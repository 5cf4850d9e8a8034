#include "host/base/standard_streams.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>

namespace lm::host::base {

void occupy_standard_streams() {
  int file = 0;
  // Opened for reading, so that writing to them still fails.
  while (file >= 0 && file <= STDERR_FILENO) file = open("/dev/null", O_RDONLY);
  if (file >= 0) close(file);
}

CapturedStream::CapturedStream(std::FILE* stream) : stream_(stream) {
  std::fflush(stream_);
  original_ = dup(fileno(stream_));
  if (original_ < 0) return;
  memory_ = memfd_create("captured", MFD_CLOEXEC);
  if (memory_ >= 0) dup2(memory_, fileno(stream_));
}

CapturedStream::~CapturedStream() {
  std::fflush(stream_);
  if (memory_ >= 0) {
    dup2(original_, fileno(stream_));
    close(memory_);
  }
  if (original_ >= 0) close(original_);
}

std::string CapturedStream::text() {
  std::fflush(stream_);
  std::string text;
  std::array<char, 4096> piece{};
  for (;;) {
    const ssize_t length = pread(memory_, piece.data(), piece.size(), static_cast<off_t>(text.size()));
    if (length <= 0) return text;
    text.append(piece.data(), static_cast<std::size_t>(length));
  }
}

}  // namespace lm::host::base
