// Unusual actions of a host between frames: invalid frames, other channel counts, changed fields, counters
// about to overflow, single steps out of order.
#include <cstdint>
#include <limits>

#include "tests/system/sequence.h"

namespace {

constexpr std::int32_t intMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t intMin = std::numeric_limits<std::int32_t>::min();

scene::Scene street(int channels) {
  return {.width = 33,
          .height = 31,
          .channels = channels,
          .seed = 11,
          .noise = 6,
          .lights = {{{0, 0, 33, 31}, 12, 40, 9, 2}, {{4, 4, 9, 9}, 3, 50, 13, 5}},
          .things = {{.area = {-10, 9, 12, 12}, .from = 2, .until = 35, .dx = 2, .moves = 12},
                     {.area = {20, 2, 9, 10}, .from = 8, .until = 50, .shade = 150, .flicker = 12}}};
}

// Frames whose channel count depends on the frame number.
std::function<Frame(int)> channelsBy(const std::function<int(int)>& channels) {
  return [channels](int k) {
    const scene::Scene scene = street(channels(k));
    return Frame{scene.draw(k), scene.channels, std::to_string(1000 + 200 * k)};
  };
}

Sequence hosted(const std::string& name, const std::function<Frame(int)>& frame) {
  return {.name = "host_" + name, .width = 33, .height = 31, .frames = 60, .frame = frame};
}

Sequence changing(const std::string& name, int channels,
                  const std::function<void(int, kAMBLE*, plain::Model&)>& before) {
  Sequence sequence = hosted(name, framesOf(street(channels), 200));
  sequence.before = before;
  return sequence;
}

// The same change to both sides before one frame.
template <class Change>
Sequence changed(const std::string& name, int channels, int at, const Change& change) {
  return changing(name, channels, [at, change](int k, kAMBLE* engine, plain::Model& model) {
    if (k == at) toBoth(engine, model, change);
  });
}

std::vector<Sequence> otherChannels() {
  const auto named = [](const std::string& name, const std::function<int(int)>& channels) {
    return hosted(name, channelsBy(channels));
  };
  return {named("refused_first", [](int k) { return k < 2 ? 2 : 3; }),
          named("refused_first_smaller", [](int k) { return k < 1 ? 2 : 1; }),
          named("refused_between", [](int k) { return k % 5 == 3 ? 2 : 3; }),
          named("refused_larger_between", [](int k) { return k % 5 == 3 ? 5 : 1; }),
          named("refused_only", [](int) { return 2; }),
          named("fewer_channels_later", [](int k) { return k < 20   ? 4
                                                           : k < 40 ? 3
                                                                    : 1; }),
          named("channels_there_and_back", [](int k) { return k % 7 == 5   ? 1
                                                              : k % 7 == 6 ? 3
                                                                           : 4; })};
}

std::vector<Sequence> changedFields() {
  return {changed("match_number_zero_grey", 1, 0, [](auto& state) { state.minMatchNum = 0; }),
          changed("match_number_zero_colour", 3, 0, [](auto& state) { state.minMatchNum = 0; }),
          changed("match_radius_negative_grey", 1, 20,
                  [](auto& state) {
                    state.minMatchNum = 0;
                    state.thrMatch = -1;
                    state.illumChange = false;  // so that pixels reach the refresh
                  }),
          changed("match_radius_negative_colour", 3, 20, [](auto& state) { state.thrMatch = -1; }),
          changed("lock_off", 3, 0, [](auto& state) { state.numPeriodLock = 0; }),
          changed("lock_off_later", 3, 5, [](auto& state) { state.numPeriodLock = -4; }),
          changed("lock_wider_than_slots", 3, 0,
                  [](auto& state) {
                    state.numSegmentLock = 25;
                    state.numPeriodLock = 4;
                  }),
          changed("every_component_counts", 3, 0, [](auto& state) { state.thrCcPxl = state.thrCcPxl2 = 1; }),
          changed("region_mask_of_other_values", 3, 0,
                  [](auto& state) {
                    // Any value except 0 is inside for the model, only 1 for the pruning of objects.
                    for (std::size_t i = 0; i < 20; ++i) state.roiMask[i] = 2;
                  }),
          changing("switches_flip", 3, [](int k, kAMBLE* engine, plain::Model& model) {
            toBoth(engine, model, [k](auto& state) {
              state.illumChange = k % 11 < 6;
              state.ghostSuppression = k % 7 < 5;
              state.autoSensitivity = k % 13 < 6;
            });
          })};
}

template <class Engine>
void setAll(Engine& state, std::int32_t timer, std::uint32_t count) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(state.numPixel); ++i) {
    state.updTimer[i] = timer;
    state.refreshCount[i] = count;
  }
}

std::vector<Sequence> overflowing() {
  return {changed("timers_wrap", 3, 10, [](auto& state) { setAll(state, intMin, 0xFFFFFFFFU); }),
          changed("counters_reach_their_limits", 3, 10,
                  [](auto& state) {
                    setAll(state, intMin + 3, 0xFFFFFFFCU);
                    for (std::size_t i = 0; i < 33 * 31; ++i) state.fgLife[i] = 16777214.0F;
                    state.frmCount = intMax - 5;
                  }),
          // After 2^32 frames the engine treats the next one as its first.
          changed("frame_count_reaches_zero", 3, 10, [](auto& state) { state.frmCount = -3; }),
          changed("frame_count_reaches_zero_grey", 1, 10, [](auto& state) { state.frmCount = -1; }),
          changed("frame_count_wraps", 3, 10, [](auto& state) { state.frmCount = intMax; }),
          changed("life_limit_wraps", 3, 10,
                  [](auto& state) {
                    state.lifeStaticFrm = intMax;
                    for (std::size_t i = 0; i < 33 * 31; ++i) state.fgLife[i] = 3e9F;
                    state.prevTimestamp = 1000;  // the rate falls out of range and does not change the limit
                  }),
          changed("lock_sum_wraps", 3, 4,
                  [](auto& state) {
                    state.lockSegStart = 5;
                    state.numSegmentLock = intMax;
                    state.numPeriodLock = 2;
                  }),
          changed("life_product_too_large", 3, 4, [](auto& state) { state.lifeStatic = intMax; })};
}

// A pixel declared absorbed but not yet written: the host classifies a frame a second time, then disables
// ghost suppression until the pixel becomes background, then enables it again.
Sequence absorbedButNotWritten() {
  scene::Scene scene{
      .width = 20, .height = 16, .texture = 2, .things = {{.area = {4, 4, 10, 8}, .from = 2, .until = 12}}};
  Sequence sequence{.name = "host_absorbed_but_not_written",
                    .width = 20,
                    .height = 16,
                    .frames = 30,
                    .frame = framesOf(scene, 200)};
  sequence.before = [](int k, kAMBLE* engine, plain::Model& model) {
    if (k == 10) {
      toBoth(engine, model, [](auto& state) { state.lifeStaticFrm = 2; });
      model.classify();
      if (engine != nullptr) engine->recogFg_ncv();
      toBoth(engine, model, [](auto& state) { state.ghostSuppression = false; });
    }
    if (k == 16) toBoth(engine, model, [](auto& state) { state.ghostSuppression = true; });
  };
  return sequence;
}

}  // namespace

std::vector<Sequence> hostSequences() {
  std::vector<Sequence> list = otherChannels();
  append(list, changedFields());
  append(list, overflowing());
  list.push_back(absorbedButNotWritten());
  return list;
}
