// A file that gets its name only when it is complete.
#pragma once

#include <string>

namespace lm::host::base {

// Throws Failure (kTrouble) with the output `target` and the cause: `error` (errno), or 0 if unknown.
[[noreturn]] void cannot_write(const std::string& target, int error);

// Reserves a hidden temporary name beside `target`. Without a commit the destructor removes the temporary
// file, and an existing file at `target` stays as it was.
// An existing target that is not a regular file (a pipe, /dev/null) is written to directly.
class PendingFile {
 public:
  // Throws Failure (kTrouble) if the target is not writable.
  explicit PendingFile(const std::string& target);
  ~PendingFile();
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  const std::string& path() const { return path_; }      // where to write
  const std::string& target() const { return target_; }  // as the user wrote it, for messages

  // Gives the file its name. Throws Failure (kTrouble).
  void commit();

 private:
  std::string target_;
  std::string final_path_;  // with symbolic links resolved, so that the link is kept
  std::string path_;
  bool pending_ = false;
};

}  // namespace lm::host::base
