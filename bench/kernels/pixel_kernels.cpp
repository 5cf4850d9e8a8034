#include "bench/kernels/kernels.h"
#include "bench/random.h"

namespace lm::bench {
namespace {

std::size_t count_of(const benchmark::State& state) { return static_cast<std::size_t>(state.range(0)); }

void replace(benchmark::State& state, simd::ReplaceFn* function) {
  Bytes mask = filled(count_of(state), 1);
  std::uint8_t from = 255;
  while (state.KeepRunning()) {
    function(mask.data(), mask.data() + mask.size(), from, static_cast<std::uint8_t>(from ^ 254));
    from ^= 254;  // alternates between 255 and 1, so that there is something to replace
    benchmark::ClobberMemory();
  }
  set_speed(state, mask.size());
}

// Three channels: one output byte for three bytes of each input.
void difference(benchmark::State& state, simd::GenRdDiffFn* function) {
  const std::size_t count = count_of(state);
  const Bytes a = filled(count * 3, 1);
  const Bytes b = filled(count * 3, 2);
  Bytes out(count);
  while (state.KeepRunning()) {
    function(a.data(), b.data(), out.data(), static_cast<int>(count), 1, 3, 1);
    benchmark::ClobberMemory();
  }
  set_speed(state, count * 3);
}

void prune(benchmark::State& state, simd::PruneFn* function) {
  Bytes mask = filled(count_of(state), 1);
  const Bytes region(mask.size(), 1);
  while (state.KeepRunning()) {
    function(mask.data(), region.data(), static_cast<int>(mask.size()));
    benchmark::ClobberMemory();
  }
  set_speed(state, mask.size());
}

// One pixel against each sample; the samples have as many bytes as the other inputs.
void match(benchmark::State& state, simd::MatchFn* function) {
  const std::size_t count = count_of(state) / 4;
  const Bytes samples = filled(count * 4, 1);
  const std::uint8_t pixel[4] = {100, 120, 140, 0};
  while (state.KeepRunning()) {
    int sum = 0;
    for (std::size_t i = 0; i < count; ++i) sum += function(pixel, &samples[i * 4], 13);
    benchmark::DoNotOptimize(sum);
  }
  set_speed(state, count * 4);
}

// Nothing touches, so that every row is read.
void touch(benchmark::State& state, simd::TouchFn* function) {
  constexpr int width = 1024;
  const int height = static_cast<int>(state.range(0)) / width;
  const Bytes first = filled(count_of(state), 1);
  const Bytes second(first.size(), 0);
  while (state.KeepRunning())
    benchmark::DoNotOptimize(function({0, 0, width, height}, first.data(), second.data(), width, height));
  set_speed(state, first.size());
}

void widen(benchmark::State& state, simd::WidenFn* function) {
  const Bytes from = filled(count_of(state), 1);
  std::vector<std::uint32_t> to(from.size());
  while (state.KeepRunning()) {
    function(from.data(), to.data(), from.size());
    benchmark::ClobberMemory();
  }
  set_speed(state, from.size());
}

void copy(benchmark::State& state) {
  const Bytes from = filled(count_of(state), 1);
  Bytes to(from.size());
  while (state.KeepRunning()) {
    std::memcpy(to.data(), from.data(), from.size());
    benchmark::ClobberMemory();
  }
  set_speed(state, from.size());
}

}  // namespace

Bytes filled(std::size_t count, std::uint64_t seed) {
  Random random(seed);
  Bytes bytes(count);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random.next() >> 56);
  return bytes;
}

void add_copy() { benchmark::RegisterBenchmark("memcpy", copy)->Arg(kRow)->Arg(kPicture); }

void add_pixel_kernels() {
  add_versions(lm::replaceVersions, replace);
  add_versions(lm::genRdDiffVersions, difference);
  add_versions(lm::pruneVersions, prune);
  add_versions(lm::matchVersions, match);
  add_versions(lm::touchVersions, touch);
  add_versions(lm::widenVersions, widen);
}

}  // namespace lm::bench
