// Where the result lines go.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "host/base/pending_file.h"

namespace lm::host::base {

// Writes to standard output, where each line is out as soon as it is there, or to a file that takes its name
// at the end. Every operation throws Failure (kTrouble) when the system does not take the bytes.
class LineSink {
 public:
  // `file`: empty for standard output.
  explicit LineSink(const std::string& file);

  void write(const std::string& line);  // without its line feed
  void finish();                        // all bytes are out
  void commit();                        // the file has its name
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
