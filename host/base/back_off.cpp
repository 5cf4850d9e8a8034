#include "host/base/back_off.h"

#include <algorithm>
#include <memory>
#include <random>

namespace lm::host::base {

BackOff::Time BackOff::next() {
  const Time most = next_;
  next_ = std::min(2 * next_, kLongest);
  return std::chrono::round<Time>(most * (0.5 + 0.5 * chance_()));
}

BackOff::Chance real_chance() {
  const auto random = std::make_shared<std::minstd_rand>(std::random_device()());
  return [random] { return std::uniform_real_distribution<double>()(*random); };
}

}  // namespace lm::host::base
