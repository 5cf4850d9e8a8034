// The output of result lines.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "host/base/pending_file.h"

namespace lm::host::base {

// Writes to standard output, flushing each line, or to a file that gets its name on commit. Every operation
// throws Failure (kTrouble) when writing fails.
class LineSink {
 public:
  // `file`: empty for standard output.
  explicit LineSink(const std::string& file);

  void write(const std::string& line);  // without its line feed
  void finish();                        // flushes everything
  void commit();                        // gives the file its name
  std::int64_t lines() const { return lines_; }

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  [[noreturn]] void fail() const;

  std::optional<PendingFile> pending_;
  std::unique_ptr<std::FILE, Close> file_;
  std::FILE* out_ = stdout;
  std::int64_t lines_ = 0;
};

}  // namespace lm::host::base
