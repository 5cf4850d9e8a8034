// Exit statuses and the exception that ends a run.
#pragma once

#include <stdexcept>
#include <string>

namespace lm::host::base {

// A run stopped by a signal exits with 128 plus the signal number instead.
enum ExitStatus {
  kDone = 0,
  kTrouble = 1,  // the source could not be read to its end, or an output could not be written
  kRefused = 2,  // wrong usage, an invalid configuration, or no usable plug-in
};

// `text` with each run of blanks and control characters replaced by one blank, and trimmed.
std::string one_line(const std::string& text);

// Ends the run with one line on standard error.
class Failure : public std::runtime_error {
 public:
  Failure(ExitStatus status, const std::string& text) : std::runtime_error(one_line(text)), status_(status) {}
  ExitStatus status() const { return status_; }

 private:
  ExitStatus status_;
};

}  // namespace lm::host::base
