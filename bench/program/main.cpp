// usage: bench_program FILE...
// What `lightmotion run` does with a frame beside its detector: scaling, adapting, removing light, tracking,
// events. Passes over each file take turns: the detector alone, on frames that have been scaled, and
// everything between decoding and output. Processor time of the thread per frame; medians of the passes.
#include <json/json.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <exception>
#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <string>

#include "host/detector/adapt.h"
#include "host/detector/analysis_size.h"
#include "host/detector/detector.h"
#include "host/events/event_watch.h"
#include "host/source/source.h"
#include "host/source/timestamp.h"

namespace lm::bench {
namespace {

using host::detector::Document;
using host::source::Frame;
using host::source::SourceInfo;

using Times = std::array<double, 5>;

double thread_seconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Calls `work`, which returns the seconds that count, for every frame. Microseconds per frame.
double pass(const std::string& file, const std::function<double(const SourceInfo&, const Frame&)>& work) {
  const auto source = host::source::open_source(file);
  Frame frame;
  double seconds = 0;
  int frames = 0;
  for (; source->next(frame); ++frames) seconds += work(source->info(), frame);
  return frames == 0 ? 0 : seconds / frames * 1e6;
}

template <typename Act>
double timed(const Act& act) {
  const double begin = thread_seconds();
  act();
  return thread_seconds() - begin;
}

// With the settings with which the program starts.
double detector_alone(const std::string& file, cv::Size analysed) {
  Json::Value settings = host::detector::completed({});
  settings.removeMember("adapt");
  const auto detector = host::detector::make_detector(
      "", {"settings", Json::writeString(Json::StreamWriterBuilder(), settings)}, analysed);
  return pass(file, [&](const SourceInfo& info, const Frame& frame) {
    const cv::Mat picture = host::detector::resized(frame.image, analysed);
    return timed([&] { detector->process(picture, host::source::timestamp(info, frame)); });
  });
}

double whole_program(const std::string& file, const SourceInfo& source, cv::Size analysed) {
  const Document document = host::detector::default_document("");
  const auto detector = host::detector::make_detector("", document, analysed);
  const host::events::EventOptions options;
  host::events::EventWatch events({options, source, document.text});
  return pass(file, [&](const SourceInfo& info, const Frame& frame) {
    return timed([&] {
      const cv::Mat picture = host::detector::resized(frame.image, analysed);
      events.frame(frame, frame.number, detector->process(picture, host::source::timestamp(info, frame)));
    });
  });
}

double median(Times times) {
  std::ranges::nth_element(times, times.begin() + times.size() / 2);
  return times[times.size() / 2];
}

void measure(const std::string& file) {
  const SourceInfo source = host::source::open_source(file)->info();
  const cv::Size analysed = host::detector::analysis_size(source.size);
  Times alone{};
  Times whole{};
  for (std::size_t i = 0; i < alone.size(); ++i) {
    alone[i] = detector_alone(file, analysed);
    whole[i] = whole_program(file, source, analysed);
  }
  const double beside = median(whole) - median(alone);
  std::printf("%-24s %4dx%-4d in %4dx%-4d  detector %6.0f us  beside it %6.0f us  %.2f\n",
              file.substr(file.rfind('/') + 1).c_str(), source.size.width, source.size.height, analysed.width,
              analysed.height, median(alone), beside, beside / median(alone));
}

}  // namespace
}  // namespace lm::bench

int main(int count, char** arguments) {
  cv::setNumThreads(1);
  try {
    for (int i = 1; i < count; ++i) lm::bench::measure(arguments[i]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_program: %s\n", error.what());
    return 1;
  }
  return 0;
}
