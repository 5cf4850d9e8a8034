#include "bench/kernels/kernels.h"

namespace lm::bench {
namespace {

constexpr MaskValues kValues{.set = 255, .relabel = 1, .cleared = 0};

void pack_row(benchmark::State& state, PackRowFn* function) {
  const Bytes row(static_cast<std::size_t>(state.range(0)), 0);
  std::vector<std::uint64_t> set(wordsFor(row.size())), cleared(set.size());
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(function(row.data(), row.size(), kValues, set.data(), cleared.data()));
    benchmark::ClobberMemory();
  }
  set_speed(state, row.size());
}

// Every pixel is set and kept, so that every byte is written.
void unpack_row(benchmark::State& state, UnpackRowFn* function) {
  Bytes row(static_cast<std::size_t>(state.range(0)), 255);
  const std::vector<std::uint64_t> kept(wordsFor(row.size()), ~std::uint64_t{0});
  while (state.KeepRunning()) {
    function(row.data(), row.size(), kValues, kept.data());
    benchmark::ClobberMemory();
  }
  set_speed(state, row.size());
}

}  // namespace

void add_mask_kernels() {
  add_versions(packRowVersions, pack_row);
  add_versions(unpackRowVersions, unpack_row);
}

}  // namespace lm::bench
