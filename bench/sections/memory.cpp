// Peak memory, each candidate in its own process.
#include <malloc.h>

#include <fstream>
#include <limits>

#include "bench/child.h"
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
double peak_growth(const Candidate& candidate, const std::vector<cv::Mat>& frames) {
  const host::base::CapturedStream chatter(stderr);
  malloc_trim(0);  // otherwise the candidate would reuse, uncounted, memory freed after making the frames
  const double idle = status_bytes("VmRSS");
  reset_peak();
  const auto peer = candidate.make(frames[0].size());
  for (std::size_t n = 0; n < frames.size(); ++n) {
    peer->find_mask(frames[n], time_of(static_cast<int>(n)));
    peer->find_objects();
  }
  return status_bytes("VmHWM") - idle;
}

std::vector<cv::Mat> first_frames(const char* name) {
  Scene scene = make_scene(name, kFullHd);
  std::vector<cv::Mat> frames(20);
  for (cv::Mat& frame : frames) frame = scene.next()->clone();
  return frames;
}

}  // namespace

void measure_memory(const Plan& plan, Records& records) {
  const Table table("Peak memory beyond an idle process, 1920x1080: bytes per pixel",
                    {"scene", "candidate", "bytes"}, 2);
  for (const char* const name : {"busy", "storm"}) {
    const std::vector<cv::Mat> frames = first_frames(name);
    for (const Candidate& candidate : all_candidates(plan.libraries)) {
      const double bytes =
          in_child(1, [&] { return std::vector{peak_growth(candidate, frames)}; }).front() / kFullHd.area();
      records.add({"memory", name, text_of(kFullHd), candidate.name, "bytes_per_pixel", bytes});
      table.row({name, candidate.name, figure(bytes)});
    }
  }
}

}  // namespace lm::bench
