#include "bench/sections/sections.h"
#include "bench/table.h"
#include "host/base/standard_streams.h"

namespace lm::bench {
namespace {

constexpr int kTimes = 5;

double first_frame(const Candidate& candidate, const Scene& scene) {
  std::vector<double> times;
  for (int i = 0; i < kTimes; ++i) {
    const host::base::CapturedStream chatter(stderr);
    const auto peer = candidate.make(scene.opening.size());
    times.push_back(milliseconds_of([&] {
      peer->find_mask(scene.opening, time_of(0));
      peer->find_objects();
    }));
  }
  return median(times);
}

}  // namespace

// Compared with MOG2's time for later frames.
void measure_first_frame(const Plan& plan, Records& records) {
  const std::string size = text_of(kFullHd);
  const Scene scene = make_scene("quiet", kFullHd);
  const std::vector<Candidate> candidates = all_candidates(plan.libraries);
  const double usual = race({named(candidates, "MOG2")}, scene, {.warm = 16, .timed = 20}).front().whole;

  const Table table(
      "The first frame, 1920x1080, each time from a fresh start: milliseconds, and against a later frame's "
      "complete MOG2",
      {"candidate", "ms", "/MOG2"}, 1);
  for (const Candidate& candidate : candidates) {
    if (candidate.name == kCopy) continue;
    const double time = first_frame(candidate, scene);
    records.add({"first_frame", "quiet", size, candidate.name, "whole_ms", time});
    records.add({"first_frame", "quiet", size, candidate.name, "per_mog2", time / usual});
    table.row({candidate.name, figure(time), figure(time / usual)});
  }
}

}  // namespace lm::bench
