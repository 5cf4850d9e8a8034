// Registers a benchmark for every version of a kernel, and one for a copy of the same bytes.
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

// `run(state, function)` is the loop of one benchmark; state.range(0) is the number of elements. Versions
// above the processor's level are skipped.
template <class Function, std::size_t count, class Run>
void add_versions(const lm::Version<Function> (&versions)[count], Run run) {
  for (const lm::Version<Function>& version : versions) {
    if (!lm::isRunnable(version)) continue;
    Function* const function = version.function;
    benchmark::RegisterBenchmark(version.name, [=](benchmark::State& state) { run(state, function); })
        ->Arg(kRow)
        ->Arg(kPicture);
  }
}

// One function per source; called by main.
void add_copy();
void add_pixel_kernels();

}  // namespace lm::bench
