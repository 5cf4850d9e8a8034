#include "host/source/timestamp.h"

namespace lm::host::source {

std::string timestamp(const SourceInfo& source, const Frame& frame) {
  using namespace std::chrono;
  if (!source.live) return std::to_string(1 + round<milliseconds>(frame.time).count());
  return std::to_string(duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count());
}

}  // namespace lm::host::source
