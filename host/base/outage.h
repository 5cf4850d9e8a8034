// Reports that an output cannot be written, without ending the run.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "host/base/deadline.h"
#include "host/base/failure.h"

namespace lm::host::base {

// Warns once when an output cannot be written, and once when it can be again; after that not for a minute, so
// that a disk that is almost full does not fill the log.
class Outage {
 public:
  // `name`: of the output, for messages.
  explicit Outage(std::string name, Deadline::Now now = Deadline::Clock::now)
      : name_(std::move(name)), now_(std::move(now)) {}

  void failed(const std::string& cause);
  void worked();
  void skip() { ++skipped_; }  // counts what was lost, for the message

  // Calls `write`; false if that throws Failure, which is reported as failed and counted as skipped.
  template <typename Write>
  bool attempt(const Write& write) {
    try {
      write();
    } catch (const Failure& failure) {
      skip();
      failed(failure.what());
      return false;
    }
    return true;
  }

 private:
  std::string name_;
  Deadline::Now now_;
  bool reported_ = false;
  std::optional<Deadline::Clock::time_point> quiet_until_;
  std::int64_t skipped_ = 0;
};

}  // namespace lm::host::base
