#include "host/outputs/annotator.h"

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
    : pending_(file),
      video_(pending_.path(), video_format(file), {source.size, source.pixel_aspect, source.rate}, file) {}

void Annotator::write(source::Frame& frame, const events::Boxes& boxes) {
  draw_overlay(frame.image, boxes, caption(frame.time, boxes.size()));
  video_.write(frame.image, frame.time);
}

void Annotator::finish() { video_.finish(); }

void Annotator::commit() { pending_.commit(); }

}  // namespace lm::host::outputs
