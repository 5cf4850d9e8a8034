// bench_level LEVEL FRAMES SIZE: passes a street to the compact engine with the kernels for an
// instruction-set level. Its instructions are counted by running it under Valgrind; see
// sections/instructions.cpp.
#include <cstdio>
#include <exception>
#include <string>

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

// The function whose instructions are counted.
extern "C" [[gnu::noinline]] std::size_t counted_frame(Detector& detector, const cv::Mat& frame, int number) {
  return detector.process(frame, number);
}

int run(int level, int frames, cv::Size size) {
  constexpr int warm = 16;
  Detector detector(level, size);
  Scene scene = make_scene("street", size);
  std::size_t boxes = 0;
  for (int n = 0; n < warm + frames; ++n) {
    const cv::Mat* const frame = scene.next();
    if (frame == nullptr) return 1;
    boxes += n < warm ? detector.process(*frame, n) : counted_frame(detector, *frame, n);
  }
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
