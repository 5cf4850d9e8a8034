#include "bench/header.h"

#include <cstdio>
#include <fstream>

#include "bench/peers/peer.h"
#include "bench/scene.h"
#include "simd/cpu_level.h"

namespace lm::bench {

std::string processor() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown processor";
}

void print_header(const std::string& commit, const std::string& yardstick_commit) {
  const auto line = [](const char* what, const std::string& text) {
    std::printf("%-10s %s\n", what, text.c_str());
  };
  line("processor", processor() + ", kernels of level " + std::to_string(GetCpuInstructionSet()));
  line("compiler", LIGHTMOTION_COMPILER);
  line("commit", commit + ", yardstick " + yardstick_commit);
  line("input",
       "3 channels, 25 frames per second, Gaussian noise of sigma 1.5 (noisy: 2.5, storm: none); street: " +
           street_origin());
  line("settings", "sensitivity 3, the whole frame in the region");
  line("peers", peer_settings());
  line("method",
       "one thread; candidates take turns frame by frame in one process, in rotating order; medians after "
       "16 frames of warm-up");
}

}  // namespace lm::bench
