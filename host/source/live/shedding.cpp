#include "host/source/live/shedding.h"

namespace lm::host::source::live {

std::string Shedding::count(bool dropped, Time now) {
  ++frames_;
  dropped_ += dropped ? 1 : 0;
  const auto passed = now - period_start_;
  if (passed < kPeriod) return "";
  std::string text = dropped_ == 0
                         ? ""
                         : std::to_string(dropped_) + " of " + std::to_string(frames_) +
                               " frames dropped in the last " +
                               std::to_string(std::chrono::round<std::chrono::seconds>(passed).count()) +
                               " s, because analysis is slower than the source";
  *this = Shedding(now);
  return text;
}

}  // namespace lm::host::source::live
