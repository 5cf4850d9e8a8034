// Progress of an archive run, on one terminal line.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include "host/outputs/progress.h"

namespace lm::host::commands::archive {

struct ArchiveState {
  std::size_t files = 0;
  std::size_t done = 0;
  std::size_t failed = 0;        // of those done, incomplete or failed
  std::int64_t bytes_to_do = 0;  // of the files that need processing
  std::int64_t bytes_done = 0;   // of those that are finished
  std::int64_t events = 0;
  std::chrono::microseconds worked{0};
};

// "12 of 300 files  1 with problems  7 events  1:02:03 left". The time left is in proportion to the bytes; it
// is left out until the first file is finished.
std::string archive_progress_text(const ArchiveState& state);

// The same as JSON:
// {"files":300,"files_done":12,"files_with_problems":1,"eta":3723.000,"event_count":7}
std::string archive_progress_line(const ArchiveState& state);

// Reports progress on standard error: as a terminal line that is redrawn, or as a JSON line whenever a file
// is finished.
class ArchiveProgress {
 public:
  explicit ArchiveProgress(outputs::ProgressMode mode);
  ~ArchiveProgress() { clear(); }
  ArchiveProgress(const ArchiveProgress&) = delete;
  ArchiveProgress& operator=(const ArchiveProgress&) = delete;

  void show(const ArchiveState& state);
  void clear();

 private:
  outputs::ProgressMode mode_;
  bool drawn_ = false;
  std::size_t reported_ = 0;  // files finished when the last line was written
};

}  // namespace lm::host::commands::archive
