// The run over one file of an archive: a process, and the folder in which its results are created.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "host/base/deadline.h"
#include "host/commands/archive/record.h"
#include "host/commands/archive/table.h"
#include "host/commands/archive/work_folder.h"

namespace lm::host::commands::archive {

// Common to all files of a run.
struct ArchiveSettings {
  std::string folder;                         // folder for the results of the whole archive
  std::vector<std::string> options;           // passed on to each process
  std::string digest;                         // of everything that affects the results
  std::chrono::microseconds file_timeout{0};  // 0: no time limit
};

// The digest of the options that affect the results, of the configuration's text and of the program's
// version.
std::string settings_digest(const std::vector<std::string>& options, const std::string& configuration);

// The row of a file whose results exist and match this source and these settings; otherwise none.
std::optional<TableRow> finished_row(const ArchiveSettings& settings, const std::string& path,
                                     const SourceState& source);

class FileRun {
 public:
  // Starts the process. Throws Failure (kTrouble).
  FileRun(const ArchiveSettings& settings, const std::string& path, const SourceState& source,
          WorkFolder folder);

  pid_t process() const { return process_; }
  std::int64_t bytes() const { return source_.size; }

  // Kills the process when it exceeds its time limit.
  void keep_time();

  // After the process has exited: publishes the results, if there are any. `status`: from waitpid.
  TableRow finish(int status);

 private:
  TableRow keep(TableRow row, int status);

  const ArchiveSettings& settings_;
  std::string path_;
  SourceState source_;
  WorkFolder folder_;
  pid_t process_;
  base::Deadline deadline_;
};

}  // namespace lm::host::commands::archive
