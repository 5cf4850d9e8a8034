// usage: bench_program FILE...
// What `lightmotion run` does with a frame beside its detector: scaling, adapting, removing light, tracking,
// events. Everything between decoding and output is timed. The library's analysis of each frame is the
// detector, with the sensitivity and peeling that the program has chosen by then; all else is beside it, also
// what the library is asked for in addition: foreground, background, learning anew. The detector alone, with
// the settings with which the program starts, is for comparison; its passes over each file and those of the
// program take turns. Processor time of the thread per frame; medians of the passes.
#include <dlfcn.h>
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
#include "lightmotion/lightmotion.h"

namespace lm::bench {
namespace {

using host::detector::Document;
using host::source::Frame;
using host::source::SourceInfo;

using Times = std::array<double, 5>;  // microseconds per frame, of each pass

double thread_seconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double analysis_seconds = 0;  // in lightmotion_process, since the pass began

struct Cost {
  double all;       // microseconds per frame
  double analysis;  // of them in lightmotion_process
};

// Calls `work` for every frame of the file, as the source gives it.
Cost pass(const std::string& file, const std::function<void(const SourceInfo&, const Frame&)>& work) {
  const auto source = host::source::open_source(file);
  Frame frame;
  double seconds = 0;
  int frames = 0;
  analysis_seconds = 0;
  for (; source->next(frame); ++frames) {
    const double begin = thread_seconds();
    work(source->info(), frame);
    seconds += thread_seconds() - begin;
  }
  const double scale = 1e6 / std::max(frames, 1);
  return {seconds * scale, analysis_seconds * scale};
}

// With the settings with which the program starts.
Cost detector_alone(const std::string& file, cv::Size analysed) {
  Json::Value settings = host::detector::completed({});
  settings.removeMember("adapt");
  const auto detector = host::detector::make_detector(
      "", {"settings", Json::writeString(Json::StreamWriterBuilder(), settings)}, analysed);
  return pass(file, [&](const SourceInfo& info, const Frame& frame) {
    const cv::Mat picture = host::detector::resized(frame.image, analysed);
    detector->process(picture, host::source::timestamp(info, frame));
  });
}

Cost whole_program(const std::string& file, const SourceInfo& source, cv::Size analysed) {
  const Document document = host::detector::default_document("");
  const auto detector = host::detector::make_detector("", document, analysed);
  const host::events::EventOptions options;
  host::events::EventWatch events({options, source, document.text});
  return pass(file, [&](const SourceInfo& info, const Frame& frame) {
    const cv::Mat picture = host::detector::resized(frame.image, analysed);
    events.frame(frame, frame.number, detector->process(picture, host::source::timestamp(info, frame)));
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
  Times within{};
  Times beside{};
  for (std::size_t i = 0; i < alone.size(); ++i) {
    alone[i] = detector_alone(file, analysed).analysis;
    const Cost cost = whole_program(file, source, analysed);
    within[i] = cost.analysis;
    beside[i] = cost.all - cost.analysis;
  }
  std::printf("%-24s %4dx%-4d in %4dx%-4d  detector %6.0f us (alone %6.0f us)  beside it %6.0f us  %.2f\n",
              file.substr(file.rfind('/') + 1).c_str(), source.size.width, source.size.height, analysed.width,
              analysed.height, median(within), median(alone), median(beside),
              median(beside) / median(within));
}

}  // namespace
}  // namespace lm::bench

// The host's calls come here, because a program's own functions go before those of its libraries.
extern "C" int lightmotion_process(lightmotion_detector* detector, const void* pixels, size_t stride,
                                   int64_t timestamp_ms, const lightmotion_box** boxes) {
  static const auto analyse =
      reinterpret_cast<decltype(&lightmotion_process)>(dlsym(RTLD_NEXT, "lightmotion_process"));
  const double begin = lm::bench::thread_seconds();
  const int count = analyse(detector, pixels, stride, timestamp_ms, boxes);
  lm::bench::analysis_seconds += lm::bench::thread_seconds() - begin;
  return count;
}

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
