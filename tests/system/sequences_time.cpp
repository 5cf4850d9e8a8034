// Timestamps of every kind and the wall clock.
#include "tests/system/sequence.h"

namespace {

scene::Scene parked() {
  return {.width = 24,
          .height = 20,
          .noise = 2,
          .things = {{.area = {3, 3, 12, 12}, .from = 2, .until = 50, .shade = 150, .flicker = 4}}};
}

Sequence at(const std::string& name, int frames, const std::function<std::string(int)>& timestamp) {
  const scene::Scene scene = parked();
  return {.name = name,
          .width = scene.width,
          .height = scene.height,
          .frames = frames,
          .frame = [scene, timestamp](int k) {
            return Frame{scene.draw(k), scene.channels, timestamp(k)};
          }};
}

// Timestamps from a list, repeated.
Sequence listed(const std::string& name, std::vector<std::string> timestamps, int frames) {
  return at(name, frames, [timestamps = std::move(timestamps)](int k) {
    return timestamps[static_cast<std::size_t>(k) % timestamps.size()];
  });
}

// Without timestamps; the clock advances by the listed microseconds.
Sequence clocked(const std::string& name, const std::vector<int>& steps) {
  Sequence sequence = at(name, 60, [](int k) { return std::string(k % 2 == 0 ? "0" : "-12"); });
  sequence.clock = [steps](int k) {
    std::int64_t microseconds = 999000;
    for (int i = 0; i < k; ++i) microseconds += steps[static_cast<std::size_t>(i) % steps.size()];
    return timeval{static_cast<time_t>(1700000000 + microseconds / 1000000),
                   static_cast<suseconds_t>(microseconds % 1000000)};
  };
  return sequence;
}

}  // namespace

std::vector<Sequence> timeSequences() {
  const auto every = [](int interval) {
    return [interval](int k) { return std::to_string(1 + static_cast<long>(k) * interval); };
  };
  std::vector<Sequence> list;
  for (const int interval : {10, 24, 25, 26, 40, 333, 334, 1000}) {
    list.push_back(at("every_" + std::to_string(interval) + "_ms", 40, every(interval)));
  }
  list.push_back(listed("times_equal", {"1000"}, 40));
  list.push_back(listed("times_back_and_forth", {"1000", "1200", "1100", "1300", "1300", "900"}, 40));
  list.push_back(listed("times_mixed_with_none",
                        {"1000", "0", "1200", "-1", "1400", "-9223372036854775808", "1600"}, 40));
  list.push_back(
      listed("times_with_jumps", {"1", "9223372036854775807", "200", "400", "9000000000000000", "600"}, 40));
  list.push_back(listed("times_oddly_written", {" 1000", "+1200", "1400ms", "0001600", "1800.9"}, 40));
  list.push_back(clocked("clock_usable", {200000}));
  list.push_back(clocked("clock_slow", {5000000, 400000}));
  list.push_back(clocked("clock_fast", {1000, 25000, 24999}));
  list.push_back(clocked("clock_stops_and_goes_back", {0, 200000, -100000, 300000}));
  list.push_back(clocked("clock_crosses_seconds", {333333, 333334, 1}));
  return list;
}
