#include "bench/kernels/kernels.h"

namespace lm::bench {
namespace {

constexpr std::size_t kBlocks = 16;

// Planes of an unchanging scene.
struct Planes {
  explicit Planes(std::size_t count)
      : frame(filled(count * 3, 1)),
        current(count * 3),
        roi(count, 1),
        change(count, 0),
        light(count, 0),
        before(count, 0),
        now(count, 0),
        absorbed(count, 0),
        life(count, 0.5F),
        timer(count, 0) {}

  ClassifyPlanes to_classify() {
    return {.roiMask = roi.data(),
            .rdDiff = change.data(),
            .prevFgMask = before.data(),
            .fgMask = now.data(),
            .absorbMask = absorbed.data(),
            .fgLife = life.data(),
            .unchanged = 10,
            .accountLife = true,
            .life = {.limit = 160.0F, .absorbed = 161.0F, .band2 = 20, .band3 = 30}};
  }
  UpdatePlanes to_update() {
    return {.roiMask = roi.data(),
            .rdDiff = change.data(),
            .prevFgMask = before.data(),
            .fgMask = now.data(),
            .absorbMask = absorbed.data(),
            .illumDiff = light.data(),
            .updTimer = timer.data(),
            .unchanged = 10,
            .sameLight = 5,
            .absorbing = true,
            .watchLight = true};
  }

  Bytes frame, current, roi, change, light, before, now, absorbed;
  std::vector<float> life;
  std::vector<std::int32_t> timer;
};

void take_frame(benchmark::State& state, TakeFrameFn* function) {
  const auto count = static_cast<std::size_t>(state.range(0));
  Planes planes(count);
  Bytes previous = filled(count * 3, 2);
  const Bytes background = filled(count * 3, 3);
  while (state.KeepRunning()) {
    function({.frame = planes.frame.data(),
              .curFrame = planes.current.data(),
              .prevFrame = previous.data(),
              .bgImg = background.data(),
              .rdDiff = planes.change.data(),
              .illumDiff = planes.light.data(),
              .channels = 3,
              .channel = 1,
              .keep = true},
             0, count);
    benchmark::ClobberMemory();
  }
  set_speed(state, count * 3);
}

void find_busy(benchmark::State& state, FindBusyFn* function) {
  const auto count = static_cast<std::size_t>(state.range(0));
  Planes planes(count);
  const ClassifyPlanes looked_at = planes.to_classify();
  std::vector<BusyBlock> found(kBlocks);
  while (state.KeepRunning()) {
    std::size_t from = 0;
    benchmark::DoNotOptimize(function(looked_at, from, count, found.data(), kBlocks));
  }
  set_speed(state, count);
}

void find_update_work(benchmark::State& state, FindUpdateWorkFn* function) {
  const auto count = static_cast<std::size_t>(state.range(0));
  Planes planes(count);
  const UpdatePlanes looked_at = planes.to_update();
  std::vector<UpdateBlock> found(kBlocks);
  std::int64_t examined = 0;
  while (state.KeepRunning()) {
    std::size_t from = 0;
    benchmark::DoNotOptimize(function(looked_at, from, count, found.data(), kBlocks, examined));
  }
  set_speed(state, count);
}

// Every pixel is foreground and gains life.
void settle(benchmark::State& state, SettleBlockFn* function) {
  const auto count = static_cast<std::size_t>(state.range(0));
  Planes planes(count);
  const ClassifyPlanes written = planes.to_classify();
  const BusyPixels busy{.outside = 0, .unchanged = 0, .absorbed = 0, .compared = ~0U};
  while (state.KeepRunning()) {
    for (std::size_t at = 0; at < count; at += blockPixels) function(written, at, count, busy, 0);
    benchmark::ClobberMemory();
  }
  set_speed(state, count);
}

// Foreground: all 20 samples are compared. The samples have as many bytes as the other inputs have pixels.
void match(benchmark::State& state, MatchBlockFn* function) {
  constexpr std::size_t record = 4 * samplesPerPixel;
  const std::size_t blocks = static_cast<std::size_t>(state.range(0)) / (record * blockPixels);
  const Bytes samples(blocks * blockPixels * record, 200);
  const Bytes pixels(blockPixels * 3, 100);
  std::vector<std::uint32_t> distances(blockPixels);
  while (state.KeepRunning()) {
    for (std::size_t i = 0; i < blocks; ++i) {
      benchmark::DoNotOptimize(function({.channels = 3, .radius = 20, .needed = 2},
                                        &samples[i * blockPixels * record], pixels.data(), ~0U,
                                        distances.data()));
    }
  }
  set_speed(state, samples.size());
}

}  // namespace

void add_model_kernels() {
  add_versions(takeFrameVersions, take_frame);
  add_versions(findBusyVersions, find_busy);
  add_versions(settleBlockVersions, settle);
  add_versions(matchBlockVersions, match);
  add_versions(findUpdateWorkVersions, find_update_work);
}

}  // namespace lm::bench
