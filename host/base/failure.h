// How the program ends.
#pragma once

#include <stdexcept>
#include <string>

namespace lm::host::base {

// A run stopped by a signal ends with 128 plus the signal's number instead.
enum ExitStatus {
  kDone = 0,
  kTrouble = 1,  // the source could not be read to its end, or an output could not be written
  kRefused = 2,  // wrong use, a configuration that does not fit, or no usable plug-in
};

// `text` with every run of blanks and control characters made one blank, and none at the ends.
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
