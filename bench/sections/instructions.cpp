// Instructions per frame at the instruction-set levels whose kernels differ. Counted by Valgrind, which needs
// no privileges and no counters of the processor; the same on every machine with AVX2.
#include <array>
#include <cstdio>
#include <limits>
#include <memory>

#include "bench/beside_program.h"
#include "bench/sections/sections.h"
#include "bench/table.h"
#include "simd/cpu_level.h"

namespace lm::bench {
namespace {

struct Level {
  const char* name;
  int level;
};
constexpr std::array<Level, 3> kLevels = {
    {{"AVX2", simd::level::avx2}, {"SSE4.1", simd::level::sse41}, {"SSE2", simd::level::sse2}}};

// Callgrind ends its messages with "Collected : COUNT". NaN without Valgrind.
double instructions_of(int level, int frames) {
  const std::string command =
      "valgrind --tool=callgrind --callgrind-out-file=/dev/null --instr-atstart=no '" +
      beside_program("bench_level") + "' " + std::to_string(level) + " " + std::to_string(frames) + " " +
      text_of(kFullHd) + " 2>&1";
  const auto close = [](std::FILE* pipe) { pclose(pipe); };
  const std::unique_ptr<std::FILE, decltype(close)> output(popen(command.c_str(), "r"), close);
  double count = std::numeric_limits<double>::quiet_NaN();
  char line[512];
  while (output != nullptr && std::fgets(line, sizeof line, output.get()) != nullptr) {
    std::sscanf(line, "==%*d== Collected : %lf", &count);
  }
  return count;
}

}  // namespace

void measure_instructions(const Plan& plan, Records& records) {
  const int frames = plan.frames > 0 ? plan.frames : 40;
  const Table table(
      "Instructions per frame at the levels of processors, street, 1920x1080: millions, and against AVX2",
      {"level", "millions", "/AVX2"}, 1);
  if (simd::GetCpuInstructionSet() < simd::level::avx2) {
    table.row({"not measured: this processor has no AVX2"});
    return;
  }
  double avx2 = 0;
  for (const Level& level : kLevels) {
    if (plan.brief && level.level < simd::level::sse41) continue;
    const double millions = instructions_of(level.level, frames) / frames / 1e6;
    if (level.level == simd::level::avx2) avx2 = millions;
    records.add({"instructions", "street", text_of(kFullHd), level.name, "millions", millions});
    records.add({"instructions", "street", text_of(kFullHd), level.name, "per_avx2", millions / avx2});
    table.row({level.name, figure(millions), figure(millions / avx2)});
  }
}

}  // namespace lm::bench
