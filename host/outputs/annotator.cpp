#include "host/outputs/annotator.h"

#include "host/base/failure.h"
#include "host/base/notice.h"
#include "host/base/time_text.h"
#include "host/outputs/overlay.h"

namespace lm::host::outputs {
namespace {

std::string caption(std::chrono::microseconds time, std::size_t boxes) {
  using namespace std::chrono_literals;
  return base::clock_text(time) + "." + std::to_string(time / 100ms % 10) + "  " + std::to_string(boxes) +
         (boxes == 1 ? " box" : " boxes");
}

}  // namespace

Annotator::Annotator(const std::string& file, const source::SourceInfo& source)
    : live_(source.live),
      pending_(file),
      video_(pending_.path(), video_format(file),
             {source.size, source.pixel_aspect, source.rate, source.live}, file) {}

void Annotator::write(source::Frame& frame, const events::Boxes& boxes) {
  if (ended_) return;
  draw_overlay(frame.image, boxes, caption(frame.time, boxes.size()));
  attempt([&] { video_.write(frame.image, frame.time); });
}

void Annotator::finish() {
  if (!ended_) attempt([&] { video_.finish(); });
}

template <typename Write>
void Annotator::attempt(const Write& write) {
  try {
    write();
  } catch (const base::Failure& failure) {
    if (!live_) throw;
    base::warn(std::string(failure.what()) + "; the annotated video ends here");
    ended_ = true;
    pending_.commit();
  }
}

void Annotator::commit() { pending_.commit(); }

}  // namespace lm::host::outputs
