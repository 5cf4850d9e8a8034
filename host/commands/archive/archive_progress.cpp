#include "host/commands/archive/archive_progress.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "host/base/json_text.h"
#include "host/base/time_text.h"

namespace lm::host::commands::archive {

namespace {

std::optional<std::chrono::microseconds> time_left(const ArchiveState& state) {
  if (state.bytes_done <= 0 || state.bytes_done >= state.bytes_to_do) return std::nullopt;
  const auto left = static_cast<double>(state.bytes_to_do - state.bytes_done);
  const double ratio = left / static_cast<double>(state.bytes_done);
  return std::chrono::microseconds(std::llround(static_cast<double>(state.worked.count()) * ratio));
}

bool can_redraw_lines() {
  const char* terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) != 0 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

}  // namespace

std::string archive_progress_text(const ArchiveState& state) {
  std::string text = std::to_string(state.done) + " of " + std::to_string(state.files) + " files";
  if (state.failed > 0) text += "  " + std::to_string(state.failed) + " with problems";
  if (state.events > 0)
    text += "  " + std::to_string(state.events) + (state.events == 1 ? " event" : " events");
  if (const auto left = time_left(state)) text += "  " + base::clock_text(*left) + " left";
  return text;
}

std::string archive_progress_line(const ArchiveState& state) {
  Json::Value line;
  line["files"] = Json::UInt64(state.files);
  line["files_done"] = Json::UInt64(state.done);
  line["files_with_problems"] = Json::UInt64(state.failed);
  line["event_count"] = Json::Int64(state.events);
  if (const auto left = time_left(state)) line["eta"] = base::seconds_number(*left);
  return base::json_text(line);
}

ArchiveProgress::ArchiveProgress(outputs::ProgressMode mode) : mode_(mode) {
  if (mode_ == outputs::ProgressMode::kBar && !can_redraw_lines()) mode_ = outputs::ProgressMode::kNone;
}

void ArchiveProgress::show(const ArchiveState& state) {
  if (mode_ == outputs::ProgressMode::kBar) {
    std::fprintf(stderr, "\r%s\x1b[K", archive_progress_text(state).c_str());
    std::fflush(stderr);
    drawn_ = true;
  }
  if (mode_ == outputs::ProgressMode::kLines && state.done != reported_) {
    std::fprintf(stderr, "%s\n", archive_progress_line(state).c_str());
    reported_ = state.done;
  }
}

void ArchiveProgress::clear() {
  if (!drawn_) return;
  std::fputs("\r\x1b[K", stderr);
  std::fflush(stderr);
  drawn_ = false;
}

}  // namespace lm::host::commands::archive
