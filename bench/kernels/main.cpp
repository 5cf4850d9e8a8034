// bench_kernels: every version of every kernel that this processor can run. `--list` says instead which
// ones are in use; other arguments are Google Benchmark's.
#include <cstdio>

#include "bench/kernels/kernels.h"
#include "simd/kernels.h"

namespace {

void print_choice() {
  const int level = GetCpuInstructionSet();
  const lm::Kernels chosen = lm::kernelsFor(level);
  std::printf("level %d\n", level);
  const auto line = [](const char* kernel, const std::string& version) {
    std::printf("%-18s %s\n", kernel, version.c_str());
  };
  line("replace_if_u8", nameOf(chosen.replace, replaceVersions));
  line("genRdDiff", nameOf(chosen.genRdDiff, genRdDiffVersions));
  line("pruneFgByRoi", nameOf(chosen.prune, pruneVersions));
  line("isMatchVal_bgr24", nameOf(chosen.match, matchVersions));
  line("isTouch", nameOf(chosen.touch, touchVersions));
  std::printf("%-18s %s\n", "model kernels", level >= 8 ? "avx2" : "c");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == "--list") {
    print_choice();
    return 0;
  }
  lm::bench::add_copy();
  lm::bench::add_pixel_kernels();
  lm::bench::add_model_kernels();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
}
