// The output of result lines.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "host/base/journal.h"
#include "host/base/pending_file.h"
#include "host/base/rotation.h"

namespace lm::host::base {

// Writes to standard output, flushing each line, or to a file that gets its name on commit. Every operation
// throws Failure (kTrouble) when writing fails. For live sources files are a Journal instead, and pipes are
// flushed.
class LineSink {
 public:
  // `file`: empty for standard output.
  explicit LineSink(const std::string& file) : LineSink(file, false, {}) {}
  LineSink(const std::string& file, bool live, const Rotation& rotation);

  void write(const std::string& line);  // without its line feed
  void tick();                          // once per frame
  void finish();                        // flushes everything
  void commit();                        // gives the file its name
  std::int64_t lines() const { return lines_; }

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  [[noreturn]] void fail() const;

  std::optional<Journal> journal_;
  bool live_;
  std::optional<PendingFile> pending_;
  std::unique_ptr<std::FILE, Close> file_;
  std::FILE* out_ = stdout;
  std::int64_t lines_ = 0;
};

}  // namespace lm::host::base
