#include "host/commands/serve/pace.h"

namespace lm::host::commands::serve {

std::optional<Pace::Clock::time_point> Pace::due(Time frame, Clock::time_point now) {
  if (!origin_) origin_ = now - frame;
  const auto late = now - (*origin_ + frame);
  if (late > kLost) {
    origin_ = now - frame;
  } else if (late > kLate) {
    return std::nullopt;
  }
  return *origin_ + frame;
}

}  // namespace lm::host::commands::serve
