#include "bench/race.h"

#include <algorithm>
#include <chrono>
#include <numeric>

#include "host/base/standard_streams.h"

namespace lm::bench {
namespace {

struct Runner {
  Runner(const Candidate& candidate, cv::Size size) : peer(candidate.make(size)) {
    lap.name = candidate.name;
    lap.divided = candidate.divided;
    grey = candidate.grey;
  }

  void run(const cv::Mat& frame, const std::string& time, bool timed) {
    const double mask = milliseconds_of([&] { peer->find_mask(frame, time); });
    const double rest = milliseconds_of([&] { peer->find_objects(); });
    if (timed) {
      masks.push_back(mask);
      wholes.push_back(mask + rest);
      note_foreground();
    }
    lap.documents.push_back(peer->document());
  }

  void note_foreground() {
    const cv::Mat mask = peer->mask();
    if (!mask.empty()) shares.push_back(cv::countNonZero(mask) / static_cast<double>(mask.total()));
  }

  std::unique_ptr<Peer> peer;
  bool grey = false;
  Lap lap;
  std::vector<double> masks, wholes, shares;
};

double mean(const double* begin, std::size_t count) {
  return std::accumulate(begin, begin + count, 0.0) / static_cast<double>(count);
}

double median_of_cycles(const std::vector<double>& times, std::size_t cycle) {
  std::vector<double> means;
  for (std::size_t i = 0; i + cycle <= times.size(); i += cycle) means.push_back(mean(&times[i], cycle));
  return median(means);
}

}  // namespace

const Lap* find(const std::vector<Lap>& laps, const std::string& name) {
  const auto lap = std::ranges::find(laps, name, &Lap::name);
  return lap == laps.end() ? nullptr : &*lap;
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  const std::size_t half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

double milliseconds_of(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

std::vector<Lap> race(const std::vector<Candidate>& candidates, Scene scene, Rounds rounds) {
  const host::base::CapturedStream chatter(stderr);  // messages that libraries print on their first frame
  std::vector<Runner> runners;
  runners.reserve(candidates.size());
  for (const Candidate& candidate : candidates) runners.emplace_back(candidate, scene.size());

  const int cycles = (rounds.timed + scene.cycle() - 1) / scene.cycle();
  const int frames = rounds.warm + cycles * scene.cycle();
  const bool any_grey = std::ranges::any_of(candidates, &Candidate::grey);
  cv::Mat grey;
  for (int n = 0; n < frames; ++n) {
    const cv::Mat* const frame = scene.next();
    if (frame == nullptr) break;
    if (any_grey) cv::extractChannel(*frame, grey, 1);
    for (std::size_t i = 0; i < runners.size(); ++i) {
      Runner& runner = runners[(i + static_cast<std::size_t>(n)) % runners.size()];
      runner.run(runner.grey ? grey : *frame, time_of(n), n >= rounds.warm);
    }
  }

  const auto cycle = static_cast<std::size_t>(scene.cycle());
  std::vector<Lap> laps;
  for (Runner& runner : runners) {
    runner.lap.mask = median_of_cycles(runner.masks, cycle);
    runner.lap.whole = median_of_cycles(runner.wholes, cycle);
    runner.lap.mean = mean(runner.wholes.data(), runner.wholes.size());
    if (!runner.shares.empty()) runner.lap.foreground = mean(runner.shares.data(), runner.shares.size());
    laps.push_back(std::move(runner.lap));
  }
  return laps;
}

}  // namespace lm::bench
