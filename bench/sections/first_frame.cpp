// The first frame of a detector: of the first one in a process (cold), and of the second one (warm).
#include "bench/child.h"
#include "bench/sections/sections.h"
#include "bench/table.h"
#include "host/base/standard_streams.h"

namespace lm::bench {
namespace {

constexpr int kTimes = 7;

double first_frame(const Candidate& candidate, const cv::Mat& frame) {
  const auto peer = candidate.make(frame.size());
  return milliseconds_of([&] {
    peer->find_mask(frame, time_of(0));
    peer->find_objects();
  });
}

struct Medians {
  double cold, warm;
};

Medians measure(const Candidate& candidate, const cv::Mat& frame) {
  std::vector<double> cold, warm;
  for (int i = 0; i < kTimes; ++i) {
    const std::vector<double> both = in_child(2, [&] {
      const host::base::CapturedStream chatter(stderr);
      const double first = first_frame(candidate, frame);
      return std::vector{first, first_frame(candidate, frame)};
    });
    cold.push_back(both[0]);
    warm.push_back(both[1]);
  }
  return {median(cold), median(warm)};
}

}  // namespace

// Compared with MOG2's time for later frames.
void measure_first_frame(const Plan& plan, Records& records) {
  const std::string size = text_of(kFullHd);
  const cv::Mat frame = make_scene("quiet", kFullHd).next()->clone();
  const std::vector<Candidate> candidates = all_candidates(plan.libraries);
  const Table table(
      "The first frame, 1920x1080, of the first detector of a process (cold) and of the second (warm):\n"
      "milliseconds, and against a later frame's complete MOG2",
      {"candidate", "cold ms", "warm ms", "cold/MOG2", "warm/MOG2"}, 1);
  std::vector<Medians> medians;
  medians.reserve(candidates.size());
  for (const Candidate& candidate : candidates) medians.push_back(measure(candidate, frame));
  const double usual = race({named(candidates, kMog2)}, make_scene("quiet", kFullHd), {}).front().whole;

  for (std::size_t i = 0; i < candidates.size(); ++i) {
    const auto add = [&](const char* measure, double value) {
      records.add({"first_frame", "quiet", size, candidates[i].name, measure, value});
    };
    add("cold_ms", medians[i].cold);
    add("warm_ms", medians[i].warm);
    add("cold_per_mog2", medians[i].cold / usual);
    add("warm_per_mog2", medians[i].warm / usual);
    table.row({candidates[i].name, figure(medians[i].cold), figure(medians[i].warm),
               figure(medians[i].cold / usual), figure(medians[i].warm / usual)});
  }
}

}  // namespace lm::bench
