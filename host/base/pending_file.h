// A file that takes its name only when it is complete.
#pragma once

#include <string>

namespace lm::host::base {

// Throws Failure (kTrouble): the output `target` and the cause, which is `error` (errno) or, for 0, not
// known.
[[noreturn]] void cannot_write(const std::string& target, int error);

// Reserves a hidden temporary name beside `target`. Whoever writes there commits at the end; without that the
// destructor removes what was written, and a file that was at `target` before stays as it was.
// A target that exists and is no ordinary file (a pipe, /dev/null) is written to directly.
class PendingFile {
 public:
  // Throws Failure (kTrouble) when nothing can be written there.
  explicit PendingFile(const std::string& target);
  ~PendingFile();
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  const std::string& path() const { return path_; }      // where to write
  const std::string& target() const { return target_; }  // as the user wrote it; for messages

  // Gives the file its name. Throws Failure (kTrouble).
  void commit();

 private:
  std::string target_;
  std::string final_path_;  // with symbolic links followed, so that the link stays
  std::string path_;
  bool pending_ = false;
};

}  // namespace lm::host::base
