#include "host/commands/tune/trial.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <type_traits>

#include "host/base/failure.h"
#include "host/base/interrupt.h"
#include "host/base/standard_streams.h"
#include "host/detector/plugin.h"
#include "host/events/event_watch.h"
#include "host/outputs/result_line.h"
#include "host/source/timestamp.h"

namespace lm::host::commands::tune {
namespace {

class Recorder : public events::EventListener {
 public:
  explicit Recorder(Seen& seen) : seen_(seen) {}

  void frame(const source::Frame& frame, const events::Observation& seen) override {
    seen_.looks.push_back(
        {frame.time.count(), static_cast<std::int32_t>(seen.boxes.size()),
         static_cast<std::int32_t>(std::ranges::count(seen.boxes, true, &events::Box::by_light))});
  }
  void ended(const events::Event& event) override {
    seen_.happenings.push_back({event.start.count(), event.end.count(), event.kind});
  }

 private:
  Seen& seen_;
};

template <typename Item>
void append(std::string& bytes, const std::vector<Item>& items) {
  static_assert(std::is_trivially_copyable_v<Item>);
  const std::size_t count = items.size();
  bytes.append(reinterpret_cast<const char*>(&count), sizeof count);
  bytes.append(reinterpret_cast<const char*>(items.data()), count * sizeof(Item));
}

template <typename Item>
std::size_t extract(const std::string& bytes, std::size_t at, std::vector<Item>& items) {
  std::size_t count = 0;
  std::memcpy(&count, bytes.data() + at, sizeof count);
  items.resize(count);
  at += sizeof count;
  if (count > 0) std::memcpy(items.data(), bytes.data() + at, count * sizeof(Item));
  return at + count * sizeof(Item);
}

}  // namespace

Seen try_document(const std::string& path, const std::string& document, const source::live::Scale& scale,
                  const Sample& sample) {
  detector::Plugin plugin(path);
  if (const std::string refusal = plugin.start(document); !refusal.empty())
    throw base::Failure(base::kRefused, "the plug-in refuses " + document + ": " + refusal);
  Seen seen;
  const events::EventOptions options;
  events::EventWatch events({options, sample.info(), document});
  events.add(std::make_unique<Recorder>(seen));
  const cv::Size analysed = scale.of(sample.info().size);
  sample.replay([&](const source::Frame& frame) {
    if (base::interrupted() != 0) throw base::Failure(base::kTrouble, "stopped");
    // The plug-in prints its buffers' sizes on the first frame.
    std::optional<base::CapturedStream> chatter;
    if (seen.looks.empty() || frame.anew) chatter.emplace(stderr);
    if (frame.anew) plugin.restart(document);
    const cv::Mat image = source::live::scaled(frame.image, analysed);
    const std::string result = plugin.process(image.data, source::timestamp(sample.info(), frame));
    events.frame(frame, frame.number, outputs::boxes_of(result));
  });
  events.finish(false);
  return seen;
}

std::string to_bytes(const Seen& seen) {
  std::string bytes;
  append(bytes, seen.looks);
  append(bytes, seen.happenings);
  return bytes;
}

Seen from_bytes(const std::string& bytes) {
  Seen seen;
  extract(bytes, extract(bytes, 0, seen.looks), seen.happenings);
  return seen;
}

}  // namespace lm::host::commands::tune
