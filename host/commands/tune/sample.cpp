#include "host/commands/tune/sample.h"

#include <cmath>
#include <utility>

#include "host/base/failure.h"
#include "host/base/interrupt.h"

namespace lm::host::commands::tune {
namespace {

using std::chrono::microseconds;

constexpr std::size_t kMostBytes = 1'000'000'000;

}  // namespace

Sample::Sample(std::string name, const source::Reading& reading, microseconds length, const Look& each)
    : name_(std::move(name)), reading_(reading) {
  const std::unique_ptr<source::Source> source = source::open_source(name_, reading_);
  info_ = source->info();
  const microseconds interval(info_.rate > 0 ? std::llround(1e6 / info_.rate) : 0);
  source::Frame frame;
  bool more = source->next(frame);
  for (; more && frame.time < length; more = source->next(frame)) {
    each(frame);
    keep(frame);
    ++frames_;
    length_ = frame.time + interval;
  }
  if (base::interrupted() != 0)
    throw base::Failure(base::kTrouble, "interrupted before any setting was tried");
  if (!more) trouble_ = source->trouble();  // otherwise reading stopped before the end
  if (frames_ == 0) throw base::Failure(base::kTrouble, info_.name + ": contains no frames");
  info_.live = false;  // from now on a recording with its own times
}

void Sample::keep(const source::Frame& frame) {
  if (!kept_) return;
  bytes_ += frame.image.total() * frame.image.elemSize();
  if (bytes_ <= kMostBytes) {
    kept_->push_back(frame);
    kept_->back().image = frame.image.clone();
    return;
  }
  if (info_.live) {
    throw base::Failure(base::kRefused, info_.name + ": the frames exceed 1 GB after " +
                                            std::to_string(frame.time.count() / 1'000'000) +
                                            " s; reduce --seconds or --fps, or record to a file first");
  }
  kept_.reset();
}

void Sample::replay(const Look& look) const {
  if (kept_) {
    for (const source::Frame& frame : *kept_) look(frame);
    return;
  }
  const std::unique_ptr<source::Source> source = source::open_source(name_, reading_);
  source::Frame frame;
  for (std::int64_t i = 0; i < frames_ && source->next(frame); ++i) look(frame);
}

}  // namespace lm::host::commands::tune
