// bench_kernels: measures every version of every kernel that this processor can run. `--list` prints the
// versions in use instead; other arguments are Google Benchmark's.
#include <cstdio>

#include "bench/kernels/kernels.h"

namespace {

void print_choice() {
  const int level = GetCpuInstructionSet();
  std::printf("level %d\n", level);
  lm::forEachKernel([&](const char* kernel, const auto& versions) {
    std::printf("%-18s %s\n", kernel, lm::versionFor(level, versions).name);
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == "--list") {
    print_choice();
    return 0;
  }
  lm::bench::add_copy();
  lm::bench::add_pixel_kernels();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
}
