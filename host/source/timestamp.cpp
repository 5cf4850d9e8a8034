#include "host/source/timestamp.h"

namespace lm::host::source {

std::int64_t timestamp(const SourceInfo& source, const Frame& frame) {
  using namespace std::chrono;
  if (!source.live || !source.start) return 1 + round<milliseconds>(frame.time).count();
  return floor<milliseconds>(*source.start + frame.time).time_since_epoch().count();
}

}  // namespace lm::host::source
