// bench_level LEVEL FRAMES SIZE: passes a street to the compact engine with the kernels for an
// instruction-set level. Its instructions are counted by running it under Valgrind; see
// sections/instructions.cpp.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/peers/peer.h"
#include "bench/records.h"
#include "bench/scene.h"
#include "compact/engine.h"
#include "config/document.h"
#include "engine/kamble.h"

namespace {

using namespace lm::bench;

class Detector {
 public:
  Detector(int level, cv::Size size) : engine_(level), shape_{size.width, size.height, 3} {
    lm::FrameSize frame;
    lm::Configuration configuration;
    lm::readConfiguration(document_for(size).c_str(), frame, configuration);
    settings_.setParam(configuration.parameters, configuration.include, configuration.exclude);
  }

  std::size_t process(const cv::Mat& frame, int number) {
    settings_.setTimestamp(time_of(number).c_str());
    engine_.learn(settings_, frame.data, shape_);
    return engine_.boxes(settings_).size();
  }

 private:
  kAMBLE settings_;
  lm::compact::Engine engine_;
  lm::compact::Shape shape_;
};

std::size_t process_all(Detector& detector, const std::vector<cv::Mat>& frames, int number) {
  std::size_t boxes = 0;
  for (const cv::Mat& frame : frames) boxes += detector.process(frame, number++);
  return boxes;
}

std::vector<cv::Mat> next_frames(Scene& scene, int count) {
  std::vector<cv::Mat> frames;
  for (int n = 0; n < count; ++n) {
    const cv::Mat* const frame = scene.next();
    if (frame == nullptr) throw std::runtime_error("the street is too short");
    frames.push_back(frame->clone());
  }
  return frames;
}

int run(int level, int frames, cv::Size size) {
  constexpr int warm = 80;  // people are walking by then
  Scene scene = make_scene("street", size);
  Detector detector(level, size);
  for (int n = 0; n < warm; ++n) process_all(detector, next_frames(scene, 1), n);

  const std::vector<cv::Mat> counted = next_frames(scene, frames);
  CALLGRIND_START_INSTRUMENTATION;
  const std::size_t boxes = process_all(detector, counted, warm);
  CALLGRIND_STOP_INSTRUMENTATION;
  std::printf("%zu boxes\n", boxes);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  try {
    cv::setNumThreads(1);
    return run(std::stoi(argv[1]), std::stoi(argv[2]), size_of(argv[3]));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_level: %s\n", error.what());
    return 2;
  }
}
