#include "host/tune/sample.h"

#include <cmath>
#include <utility>

#include "host/failure.h"
#include "host/interrupt.h"

namespace lm::host::tune {
namespace {

using std::chrono::microseconds;

constexpr std::size_t kMostBytes = std::size_t{1} << 30;

}  // namespace

Sample::Sample(std::string name, const Reading& reading, microseconds length, const Look& each)
    : name_(std::move(name)), reading_(reading) {
  const std::unique_ptr<Source> source = open_source(name_, reading_);
  info_ = source->info();
  const microseconds interval(info_.rate > 0 ? std::llround(1e6 / info_.rate) : 0);
  Frame frame;
  bool more = source->next(frame);
  for (; more && frame.time < length; more = source->next(frame)) {
    each(frame);
    keep(frame);
    ++frames_;
    length_ = frame.time + interval;
  }
  if (interrupted() != 0) throw Failure(kTrouble, "interrupted before any setting was tried");
  if (!more) trouble_ = source->trouble();  // otherwise it was left before its end
  if (frames_ == 0) throw Failure(kTrouble, info_.name + ": contains no frames");
  info_.live = false;  // from now on a recording, with times of its own
}

void Sample::keep(const Frame& frame) {
  if (!kept_) return;
  bytes_ += frame.image.total() * frame.image.elemSize();
  if (bytes_ <= kMostBytes) {
    kept_->push_back(frame);
    kept_->back().image = frame.image.clone();
    return;
  }
  if (info_.live) {
    throw Failure(kRefused, info_.name + ": the frames exceed 1 GB after " +
                                std::to_string(frame.time.count() / 1'000'000) +
                                " s; reduce --seconds or --fps, or record to a file first");
  }
  kept_.reset();
}

void Sample::replay(const Look& look) const {
  if (kept_) {
    for (const Frame& frame : *kept_) look(frame);
    return;
  }
  const std::unique_ptr<Source> source = open_source(name_, reading_);
  Frame frame;
  for (std::int64_t i = 0; i < frames_ && source->next(frame); ++i) look(frame);
}

}  // namespace lm::host::tune
