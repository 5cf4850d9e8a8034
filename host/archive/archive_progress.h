// How far an archive run has come, on one line of the terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace lm::host {

struct ArchiveState {
  std::size_t files = 0;
  std::size_t done = 0;
  std::size_t failed = 0;        // of those done, not fine
  std::int64_t bytes_to_do = 0;  // of the files that had to be worked on
  std::int64_t bytes_done = 0;   // of those that are finished
  std::chrono::microseconds worked{0};
};

// "12 of 300 files  1 not fine  1:02:03 left". The time left is in proportion to the bytes; it is left out
// until the first file is finished.
std::string archive_progress_text(const ArchiveState& state);

// Draws on standard error, where that is a terminal.
class ArchiveProgress {
 public:
  explicit ArchiveProgress(bool wanted);
  ~ArchiveProgress() { clear(); }
  ArchiveProgress(const ArchiveProgress&) = delete;
  ArchiveProgress& operator=(const ArchiveProgress&) = delete;

  void show(const ArchiveState& state);
  void clear();

 private:
  bool on_;
  bool drawn_ = false;
};

}  // namespace lm::host
