// Whole runs: settings, regions, then frames of arbitrary pixels, times and channel counts, one run after
// another. After every frame, every field of the engine is compared with the plain model.
#include <utility>

#include "tests/fuzz/picture.h"
#include "tests/fuzz/target.h"
#include "tests/system/driver.h"

namespace {

using fuzz::Choices;

struct Setting {
  const char* key;
  int low, high;
  const char* ending;  // suffix of the number's text
  bool inDocument;     // allowed in a document
};
constexpr std::array<Setting, 12> settings = {{{"sensitivity", -1, 6, "", true},
                                               {"lcAdap", 0, 6, "", true},
                                               {"minBoxW", -1, 60, "e-2", true},
                                               {"minBoxH", -1, 60, "e-2", true},
                                               {"lifeStatic", -3, 1, "", true},
                                               {"MIN_MATCH_NUM", 0, 21, "", false},
                                               {"MIN_MATCH_DIST", 0, 60, "", false},
                                               {"THR_DIFF_HEURISTIC", -1, 60, "", false},
                                               {"NUM_SEGMENT_LOCK", 0, 21, "", false},
                                               {"NUM_PERIOD_LOCK", 0, 9, "", false},
                                               {"GHOST_SUPPRESSION", 0, 1, "", false},
                                               {"ILLUMINATION_CHANGE", 0, 1, "", false}}};

std::vector<std::string> entries(Choices& choices, ConfiguredBy by) {
  const std::uint16_t chosen = choices.number<std::uint16_t>();
  std::vector<std::string> list;
  for (std::size_t i = 0; i < settings.size(); ++i) {
    const Setting& setting = settings[i];
    if ((chosen >> i & 1) == 0 || (by == ConfiguredBy::document && !setting.inDocument)) continue;
    list.push_back(std::string(setting.key) + " " +
                   std::to_string(choices.between(setting.low, setting.high)) + setting.ending);
  }
  return list;
}

std::vector<plain::RegionText> regions(Choices& choices, int most) {
  std::vector<plain::RegionText> list;
  for (int left = choices.below(most + 1); left > 0; --left) {
    plain::RegionText region{"region", {}};
    for (int points = choices.between(2, 7); points > 0; --points) {
      const std::string x = std::to_string(choices.between(-20, 120)) + "e-2";
      const std::string y = std::to_string(choices.between(-20, 120)) + "e-2";
      region.points.emplace_back(x, y);
    }
    list.push_back(region);
  }
  return list;
}

// A picture whose channel count changes as well.
class AnyPicture : public fuzz::Picture {
 public:
  using fuzz::Picture::Picture;

  void change(Choices& choices) {
    const int how = choices.below(8);
    if (how == 7) return changeChannels(choices.of(std::array{3, 1, 4, 2, 5}));
    Picture::change(how, choices);
  }

  Frame taken(const std::string& timestamp) {
    if (isAccepted(channels_) && widest_ == 0) widest_ = channels_;
    return {pixels_, channels_, timestamp};
  }

 private:
  static bool isAccepted(int channels) { return channels == 1 || channels == 3 || channels == 4; }

  // An engine accepts no frame with more channels than its first accepted frame. That rule has its own tests
  // and is not part of the model.
  void changeChannels(int channels) {
    channels_ = isAccepted(channels) && widest_ != 0 ? std::min(channels, widest_) : channels;
    resize();
  }

  int widest_ = 0;  // channels of the first accepted frame
};

std::vector<timeval> clockTimes(Choices& choices) {
  timeval now{1700000000, 0};
  std::vector<timeval> times;
  for (int i = 0; i < 8; ++i) {
    now.tv_sec += choices.between(-2, 2);
    now.tv_usec = choices.between(0, 255) * 3900;
    times.push_back(now);
  }
  return times;
}

std::vector<Frame> frames(Choices& choices, int width, int height) {
  constexpr std::size_t most = 32;
  std::vector<Frame> list;
  AnyPicture picture(width, height, choices.of(std::array{3, 1, 4}));
  fuzz::Times times;
  do {
    picture.change(choices);
    for (int copies = choices.of(std::array{1, 1, 2, 1, 5, 1, 2, 9}); copies > 0; --copies) {
      list.push_back(picture.taken(times.next(choices)));
    }
  } while (!choices.over() && list.size() < most);
  return list;
}

// ---- changes by the host

template <class State>
void setCounters(State& state, std::int32_t timer, std::uint32_t count, float life) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(state.numPixel); ++i) {
    state.updTimer[i] = timer;
    state.refreshCount[i] = count;
    state.fgLife[i] = life;
  }
}

// Counters close to their limits, as after years; requires a sized engine.
std::function<void(int, kAMBLE*, plain::Model&)> ageing(Choices& choices) {
  if (choices.below(4) != 0) return {};
  const int at = choices.between(1, 12);
  const std::int32_t frameCount = choices.of(std::array{INT32_MAX, INT32_MAX - 2, -3, 599, 1});
  const std::int32_t timer = choices.of(std::array{INT32_MIN, INT32_MIN + 3, INT32_MAX, 1, 0});
  const std::uint32_t count = choices.of(std::array{UINT32_MAX, UINT32_MAX - 3, 15U, 0U, 1U << 31U});
  const float life = choices.of(std::array{3e9F, 16777214.0F, 160.0F, 0.0F, 1.0F});
  const std::int32_t limit = choices.of(std::array{160, INT32_MAX, INT32_MIN, 2, 0});
  return [=](int frame, kAMBLE* engine, plain::Model& model) {
    if (frame != at || model.fgLife.empty()) return;
    toBoth(engine, model, [&](auto& state) {
      state.frmCount = frameCount;
      state.lifeStaticFrm = limit;
      setCounters(state, timer, count, life);
    });
  };
}

bool hasOneChannelCount(const Sequence& sequence) {
  for (int k = 1; k < sequence.frames; ++k) {
    if (sequence.frame(k).channels != sequence.frame(0).channels) return false;
  }
  return true;
}

Sequence run(Choices& choices) {
  Sequence sequence{.name = "run",
                    .width = choices.between(1, 28),
                    .height = choices.between(1, 22),
                    .frames = 0,
                    .frame = {}};
  sequence.configuredBy = choices.flag() ? ConfiguredBy::document : ConfiguredBy::parameters;
  sequence.entries = entries(choices, sequence.configuredBy);
  if (choices.flag()) {
    sequence.include = regions(choices, 2);
    if (sequence.include.empty()) sequence.include = wholeFrame();
    sequence.exclude = regions(choices, 2);
  }
  sequence.before = ageing(choices);
  sequence.clock = [times = clockTimes(choices)](int k) {
    return times[static_cast<std::size_t>(k) % times.size()];
  };
  const auto list = frames(choices, sequence.width, sequence.height);
  sequence.frames = static_cast<int>(list.size());
  sequence.frame = [list](int k) { return list[static_cast<std::size_t>(k)]; };
  // When the frame counter wraps around to zero, the engine is sized again for the channels of that frame.
  if (!hasOneChannelCount(sequence)) sequence.before = {};
  return sequence;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Choices choices(data, size);
  do {
    const Sequence sequence = run(choices);
    fuzz::requireSame(compareOver(sequence));
    // Through the entry points, every frame has the document's channel count.
    if (sequence.configuredBy == ConfiguredBy::document && !sequence.before && hasOneChannelCount(sequence)) {
      fuzz::requireSame(compareTextsOver(sequence));
    }
  } while (!choices.over());
  return 0;
}
