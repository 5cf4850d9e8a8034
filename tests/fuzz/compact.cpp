// Detectors one after another: settings, regions, then frames of arbitrary pixels and times, some of them
// refused. After every frame the compact engine is compared with the open one, at every level of the
// processor.
#include "tests/compact/pair.h"
#include "tests/fuzz/picture.h"
#include "tests/fuzz/target.h"
#include "tests/system/scripted_clock.h"

namespace {

using fuzz::Choices;
using lm::compact::Shape;

struct Setting {
  const char* key;
  int low, high;
  const char* ending;  // suffix of the number's text
};
constexpr std::array<Setting, 12> settings = {{{"sensitivity", -1, 5, ""},
                                               {"lcAdap", 1, 5, ""},
                                               {"minBoxW", 1, 60, "e-2"},
                                               {"minBoxH", 1, 60, "e-2"},
                                               {"lifeStatic", -3, 0, ""},
                                               {"MIN_MATCH_NUM", 1, 20, ""},
                                               {"MIN_MATCH_DIST", 1, 254, ""},
                                               {"THR_DIFF_HEURISTIC", 0, 255, ""},
                                               {"NUM_SEGMENT_LOCK", 1, 20, ""},
                                               {"NUM_PERIOD_LOCK", 1, 9, ""},
                                               {"GHOST_SUPPRESSION", 0, 1, ""},
                                               {"ILLUMINATION_CHANGE", 0, 1, ""}}};

std::vector<std::string> entries(const Shape& shape, Choices& choices) {
  std::vector<std::string> list = {"frmW " + std::to_string(shape.width),
                                   "frmH " + std::to_string(shape.height),
                                   "frmChn " + std::to_string(shape.channels)};
  const auto chosen = choices.number<std::uint16_t>();
  for (std::size_t i = 0; i < settings.size(); ++i) {
    const Setting& setting = settings[i];
    if ((chosen >> i & 1) == 0) continue;
    list.push_back(std::string(setting.key) + " " +
                   std::to_string(choices.between(setting.low, setting.high)) + setting.ending);
  }
  return list;
}

std::vector<polygon> regions(const Shape& shape, Choices& choices, int most) {
  std::vector<polygon> list;
  for (int left = choices.below(most + 1); left > 0; --left) {
    polygon region;
    for (int points = choices.between(3, 6); points > 0; --points) {
      const int x = choices.between(-1, shape.width);
      region.points.push_back({x, choices.between(-1, shape.height)});
    }
    list.push_back(region);
  }
  return list;
}

polygon wholeOf(const Shape& shape) {
  return {"", {{-1, -1}, {shape.width, -1}, {shape.width, shape.height}, {-1, shape.height}}, nullptr};
}

struct Frame {
  std::vector<std::uint8_t> pixels;  // none: a frame that is refused
  std::string timestamp;
  timeval clock;
};

std::vector<Frame> frames(const Shape& shape, Choices& choices) {
  constexpr std::size_t most = 24;
  std::vector<Frame> list;
  fuzz::Picture picture(shape.width, shape.height, shape.channels);
  fuzz::Times times;
  timeval clock{1700000000, 0};
  do {
    const int how = choices.below(8);
    picture.change(how, choices);
    for (int copies = choices.of(std::array{1, 1, 2, 1, 5, 1, 2, 9}); copies > 0; --copies) {
      clock.tv_sec += how % 2;
      list.push_back({how == 7 ? std::vector<std::uint8_t>{} : picture.pixels(), times.next(choices), clock});
    }
  } while (!choices.over() && list.size() < most);
  return list;
}

void run(Choices& choices) {
  const Shape shape{choices.between(1, 140), choices.between(1, 32), choices.of(std::array{3, 1, 4})};
  const std::vector<std::string> list = entries(shape, choices);
  std::vector<polygon> include = regions(shape, choices, 2);
  if (include.empty()) include.push_back(wholeOf(shape));
  const std::vector<polygon> exclude = regions(shape, choices, 1);
  const bool aged = choices.below(8) == 1;
  const std::vector<Frame> sequence = frames(shape, choices);
  for (const int level : levels()) {
    Pair pair(shape, list, include, exclude, level);
    fuzz::require(pair.suits(), "a configuration that the compact engine does not take");
    for (const Frame& frame : sequence) {
      if (aged && pair.frames() == 2) pair.setFrameCount(2147483645);
      setScriptedTime(frame.clock);
      fuzz::requireSame(pair.feed(frame.pixels, frame.timestamp));
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Choices choices(data, size);
  do run(choices);
  while (!choices.over());
  return 0;
}
