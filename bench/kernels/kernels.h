// Registers a benchmark for every version of a kernel, beside a copy of the same bytes.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tests/simd/versions.h"

namespace lm::bench {

// Elements: about a row of a large picture, and a large picture.
inline constexpr int kRow = 1 << 12;
inline constexpr int kPicture = 1 << 23;

using Bytes = std::vector<std::uint8_t>;
Bytes filled(std::size_t count, std::uint64_t seed);

inline void set_speed(benchmark::State& state, std::size_t bytes_each) {
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes_each) *
                          static_cast<std::int64_t>(state.iterations()));
}

// `run(state, function)` is the loop of one benchmark; state.range(0) is the count of elements. Versions
// above the processor's level are left out.
template <class Function, class Run>
void add_versions(const std::vector<Version<Function>>& versions, Run run) {
  for (const Version<Function>& version : versions) {
    if (!version.isRunnable()) continue;
    Function* const function = version.function;
    benchmark::RegisterBenchmark(version.name, [=](benchmark::State& state) { run(state, function); })
        ->Arg(kRow)
        ->Arg(kPicture);
  }
}

// One registration for each source; called by main.
void add_copy();
void add_pixel_kernels();
void add_model_kernels();

}  // namespace lm::bench
