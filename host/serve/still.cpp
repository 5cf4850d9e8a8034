#include "host/serve/still.h"

#include "host/failure.h"

namespace lm::host {

Frame Still::at(std::chrono::microseconds time) {
  const std::scoped_lock lock(mutex_);
  if (!source_ || !source_->seek(time)) source_ = open_source(name_, reading_);
  Frame frame;
  bool any = false;
  for (Frame next; source_->next(next);) {
    frame = std::move(next);
    any = true;
    if (frame.time >= time) return frame;
  }
  if (any) return frame;
  source_.reset();
  throw Failure(kTrouble, "the source has no picture at this moment");
}

}  // namespace lm::host
