#include "tests/system/sequence.h"

#include <memory>

std::vector<plain::RegionText> wholeFrame() {
  return {{"all", {{"-1", "-1"}, {"2", "-1"}, {"2", "2"}, {"-1", "2"}}}};
}

std::function<Frame(int)> framesOf(const scene::Scene& scene, int interval) {
  return [scene, interval](int k) {
    return Frame{scene.draw(k), scene.channels, std::to_string(1000 + k * interval)};
  };
}

std::vector<Sequence> allSequences() {
  std::vector<Sequence> all;
  for (const auto& part : {sizeSequences, settingSequences, modelSequences, timeSequences, regionSequences,
                           objectSequences, speckleSequences, hostSequences, mixedSequences}) {
    append(all, part());
  }
  return all;
}
