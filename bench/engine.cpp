#include "bench/engine.h"

#include <string>
#include <vector>

#include "bench/scene.h"

namespace lm::bench {

std::unique_ptr<kAMBLE> make_engine(cv::Size frame) {
  auto engine = std::make_unique<kAMBLE>();
  std::vector<std::string> settings = {"frmW " + std::to_string(frame.width),
                                       "frmH " + std::to_string(frame.height), "frmChn 3", "sensitivity 3"};
  const int w = frame.width;
  const int h = frame.height;
  std::vector<polygon> regions = {{"region", {{-w, -h}, {2 * w, -h}, {2 * w, 2 * h}, {-w, 2 * h}}}};
  std::vector<polygon> none;
  engine->setParam(settings, regions, none);
  return engine;
}

bool learn(kAMBLE& engine, const cv::Mat& frame, int number) {
  engine.setTimestamp(time_of(number).c_str());
  return engine.learnBg_ncv(frame.data, frame.cols, frame.rows, 3);
}

}  // namespace lm::bench
