#include "host/commands/serve/still.h"

#include <algorithm>
#include <utility>

#include "host/base/failure.h"

namespace lm::host::commands::serve {

namespace {

using namespace std::chrono_literals;

// A video's length is not the time of its last frame, which is slightly earlier.
constexpr std::chrono::microseconds kLastFrames = 2s;

}  // namespace

source::Frame Still::at(std::chrono::microseconds time) {
  const std::scoped_lock lock(mutex_);
  source::Frame frame;
  if (read_to(time, time, frame)) return frame;
  const std::chrono::microseconds end = source_->info().duration.value_or(time);
  if (read_to(std::max(0us, std::min(time, end) - kLastFrames), time, frame)) return frame;
  source_.reset();
  throw base::Failure(base::kTrouble, "the source has no picture at this time");
}

// Reads from `from` to the first frame not earlier than `time`, or to the last one. False if there is none.
bool Still::read_to(std::chrono::microseconds from, std::chrono::microseconds time, source::Frame& frame) {
  if (!source_ || !source_->seek(from)) source_ = source::open_source(name_, reading_);
  bool any = false;
  for (source::Frame next; source_->next(next) && (!any || frame.time < time);) {
    frame = std::move(next);
    any = true;
  }
  return any;
}

}  // namespace lm::host::commands::serve
