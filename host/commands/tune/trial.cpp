#include "host/commands/tune/trial.h"

#include <memory>
#include <utility>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/detector/adapt.h"
#include "host/detector/analysis_size.h"
#include "host/detector/detector.h"
#include "host/events/event_watch.h"
#include "host/source/timestamp.h"

namespace lm::host::commands::tune {
namespace {

class Recorder : public events::EventListener {
 public:
  explicit Recorder(Seen& seen) : seen_(seen) {}

  void frame(const source::Frame& frame, const events::Observation& seen) override {
    Look look;
    look.time = frame.time.count();
    for (const events::Box& box : seen.boxes) {
      if (box.by_light) {
        ++look.by_light;
      } else {
        look.boxes.push_back({box.area, box.id, box.others});
      }
    }
    seen_.looks.push_back(std::move(look));
  }
  void ended(const events::Event& event) override {
    seen_.happenings.push_back({event.start.count(), event.end.count(), event.kind});
  }

 private:
  Seen& seen_;
};

}  // namespace

Seen try_document(const std::string& plugin, const std::string& document, const source::live::Scale& scale,
                  const Sample& sample) {
  const cv::Size analysed = detector::analysed_size(document, sample.info().size, scale);
  const auto detector = detector::make_detector(plugin, {"", document}, analysed);
  Seen seen;
  const cv::Size size = sample.info().size;
  seen.aspect = static_cast<double>(size.width) * sample.info().pixel_aspect.width /
                (static_cast<double>(size.height) * sample.info().pixel_aspect.height);
  const events::EventOptions options;
  events::EventWatch events({options, sample.info(), document});
  events.add(std::make_unique<Recorder>(seen));
  sample.replay([&](const source::Frame& frame) {
    if (base::interrupted() != 0) throw base::Failure(base::kTrouble, "stopped");
    if (frame.anew) detector->restart();
    const cv::Mat image = detector::resized(frame.image, analysed);
    events.frame(frame, frame.number, detector->process(image, source::timestamp(sample.info(), frame)));
  });
  events.finish(false);
  return seen;
}

}  // namespace lm::host::commands::tune
