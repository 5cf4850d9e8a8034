#include "host/archive/archive_progress.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "host/time_text.h"

namespace lm::host {

std::string archive_progress_text(const ArchiveState& state) {
  std::string text = std::to_string(state.done) + " of " + std::to_string(state.files) + " files";
  if (state.failed > 0) text += "  " + std::to_string(state.failed) + " not fine";
  if (state.bytes_done <= 0 || state.bytes_done >= state.bytes_to_do) return text;
  const auto left = static_cast<double>(state.bytes_to_do - state.bytes_done);
  const double seconds =
      static_cast<double>(state.worked.count()) / 1e6 * left / static_cast<double>(state.bytes_done);
  return text + "  " + clock_text(std::chrono::seconds(static_cast<std::int64_t>(seconds))) + " left";
}

ArchiveProgress::ArchiveProgress(bool wanted) {
  const char* terminal = std::getenv("TERM");
  on_ = wanted && isatty(STDERR_FILENO) != 0 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

void ArchiveProgress::show(const ArchiveState& state) {
  if (!on_) return;
  std::fprintf(stderr, "\r%s\x1b[K", archive_progress_text(state).c_str());
  std::fflush(stderr);
  drawn_ = true;
}

void ArchiveProgress::clear() {
  if (!drawn_) return;
  std::fputs("\r\x1b[K", stderr);
  std::fflush(stderr);
  drawn_ = false;
}

}  // namespace lm::host
