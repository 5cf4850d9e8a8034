#include "host/source/timestamp.h"

namespace lm::host::source {

std::int64_t timestamp(const SourceInfo& source, const Frame& frame) {
  using namespace std::chrono;
  if (!source.live) return 1 + round<milliseconds>(frame.time).count();
  return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

}  // namespace lm::host::source
