// Peak memory, each candidate in its own process.
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <limits>
#include <stdexcept>

#include "bench/sections/sections.h"
#include "bench/table.h"
#include "host/base/standard_streams.h"

namespace lm::bench {
namespace {

// From the process's status, in bytes: "VmRSS" now, "VmHWM" the maximum since the last reset.
double status_bytes(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == key + ":" && status >> kilobytes) return kilobytes * 1024;
  }
  return std::numeric_limits<double>::quiet_NaN();
}

void reset_peak() { std::ofstream("/proc/self/clear_refs") << "5"; }

// The candidate's memory in addition to what the process used when its frames were ready.
double peak_growth(const Candidate& candidate, const Scene& scene) {
  constexpr int frames = 20;
  const host::base::CapturedStream chatter(stderr);
  malloc_trim(0);  // otherwise the candidate would reuse, uncounted, memory freed after making the frames
  const double idle = status_bytes("VmRSS");
  reset_peak();
  const auto peer = candidate.make(scene.opening.size());
  for (int n = 0; n < frames; ++n) {
    peer->find_mask(scene.at(n), time_of(n));
    peer->find_objects();
  }
  return status_bytes("VmHWM") - idle;
}

double in_child(const std::function<double()>& measure) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no child process");
  if (child == 0) {
    const double value = measure();
    const bool sent = write(ends[1], &value, sizeof value) == sizeof value;
    _exit(sent ? 0 : 1);
  }
  close(ends[1]);
  double value = std::numeric_limits<double>::quiet_NaN();
  if (read(ends[0], &value, sizeof value) != sizeof value) value = std::numeric_limits<double>::quiet_NaN();
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return value;
}

}  // namespace

void measure_memory(const Plan& plan, Records& records) {
  const Scene scene = make_scene("busy", kFullHd);
  const Table table("Peak memory beyond an idle process, busy, 1920x1080: bytes per pixel",
                    {"candidate", "bytes"}, 1);
  for (const Candidate& candidate : all_candidates(plan.libraries)) {
    std::fflush(stdout);
    const double bytes = in_child([&] { return peak_growth(candidate, scene); }) / kFullHd.area();
    records.add({"memory", "busy", text_of(kFullHd), candidate.name, "bytes_per_pixel", bytes});
    table.row({candidate.name, figure(bytes)});
  }
}

}  // namespace lm::bench
