#include "simd/model_kernels.h"
#include "bench/kernels/kernels.h"
#include "simd/cpu_level.h"

namespace lm::bench {
namespace {

constexpr std::size_t kBlocks = 16;

// Planes of a scene in which nothing happens.
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
    return {roi.data(), change.data(), before.data(),           now.data(), absorbed.data(), life.data(),
            10,         true,          {160.0F, 161.0F, 20, 30}};
  }
  UpdatePlanes to_update() {
    return {
        roi.data(), change.data(), before.data(), now.data(), absorbed.data(), light.data(), timer.data(), 10,
        5,          true,          true};
  }

  Bytes frame, current, roi, change, light, before, now, absorbed;
  std::vector<float> life;
  std::vector<std::int32_t> timer;
};

void take_frame(benchmark::State& state, const ModelKernels& kernels) {
  const auto count = static_cast<std::size_t>(state.range(0));
  Planes planes(count);
  Bytes previous = filled(count * 3, 2);
  const Bytes background = filled(count * 3, 3);
  while (state.KeepRunning()) {
    kernels.takeFrame({planes.frame.data(), planes.current.data(), previous.data(), background.data(),
                       planes.change.data(), planes.light.data(), 3, 1, true},
                      0, count);
    benchmark::ClobberMemory();
  }
  set_speed(state, count * 3);
}

void find_busy(benchmark::State& state, const ModelKernels& kernels) {
  const auto count = static_cast<std::size_t>(state.range(0));
  Planes planes(count);
  const ClassifyPlanes looked_at = planes.to_classify();
  std::vector<BusyBlock> found(kBlocks);
  while (state.KeepRunning()) {
    std::size_t from = 0;
    benchmark::DoNotOptimize(kernels.findBusy(looked_at, from, count, found.data(), kBlocks));
  }
  set_speed(state, count);
}

void find_update_work(benchmark::State& state, const ModelKernels& kernels) {
  const auto count = static_cast<std::size_t>(state.range(0));
  Planes planes(count);
  const UpdatePlanes looked_at = planes.to_update();
  std::vector<UpdateBlock> found(kBlocks);
  std::int64_t examined = 0;
  while (state.KeepRunning()) {
    std::size_t from = 0;
    benchmark::DoNotOptimize(kernels.findUpdateWork(looked_at, from, count, found.data(), kBlocks, examined));
  }
  set_speed(state, count);
}

// Every pixel is foreground and gains life.
void settle(benchmark::State& state, const ModelKernels& kernels) {
  const auto count = static_cast<std::size_t>(state.range(0));
  Planes planes(count);
  const ClassifyPlanes written = planes.to_classify();
  const BusyPixels busy{0, 0, 0, ~0U};
  while (state.KeepRunning()) {
    for (std::size_t at = 0; at < count; at += blockPixels) kernels.settleBlock(written, at, count, busy, 0);
    benchmark::ClobberMemory();
  }
  set_speed(state, count);
}

// Foreground: all 20 samples are compared. As many bytes of samples as the others have pixels.
void match(benchmark::State& state, const ModelKernels& kernels) {
  constexpr std::size_t record = 4 * samplesPerPixel;
  const std::size_t blocks = static_cast<std::size_t>(state.range(0)) / (record * blockPixels);
  const Bytes samples(blocks * blockPixels * record, 200);
  const Bytes pixels(blockPixels * 3, 100);
  std::vector<std::uint32_t> distances(blockPixels);
  while (state.KeepRunning()) {
    for (std::size_t i = 0; i < blocks; ++i) {
      benchmark::DoNotOptimize(kernels.matchBlock({3, 20, 2}, &samples[i * blockPixels * record],
                                                  pixels.data(), ~0U, distances.data()));
    }
  }
  set_speed(state, samples.size());
}

void add_level(int level, const char* suffix) {
  if (level > GetCpuInstructionSet()) return;
  const ModelKernels kernels = modelKernelsFor(level);
  const auto add = [&](const char* name, void (*run)(benchmark::State&, const ModelKernels&)) {
    benchmark::RegisterBenchmark((std::string(name) + suffix).c_str(),
                                 [=](benchmark::State& state) { run(state, kernels); })
        ->Arg(kRow)
        ->Arg(kPicture);
  };
  add("takeFrame", take_frame);
  add("findBusy", find_busy);
  add("settleBlock", settle);
  add("matchBlock", match);
  add("findUpdateWork", find_update_work);
}

}  // namespace

void add_model_kernels() {
  add_level(0, "_c");
  add_level(8, "_avx2");
}

}  // namespace lm::bench
