// A wall clock under the test's control: during the lifetime of a ScriptedClock, gettimeofday returns its
// times in order, then repeats the last one.
#pragma once

#include <sys/time.h>

#include <cstddef>
#include <vector>

namespace lm::test {

class ScriptedClock {
 public:
  explicit ScriptedClock(std::vector<timeval> times);
  ~ScriptedClock();
  ScriptedClock(const ScriptedClock&) = delete;
  ScriptedClock& operator=(const ScriptedClock&) = delete;

  timeval next();

 private:
  std::vector<timeval> times_;
  std::size_t taken_ = 0;
};

}  // namespace lm::test
