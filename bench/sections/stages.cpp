// How a frame's time is distributed: single operations compared with the same frame in one call.
#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

#include "bench/engine.h"
#include "bench/sections/sections.h"
#include "bench/table.h"
#include "host/base/standard_streams.h"

namespace lm::bench {
namespace {

constexpr int kWarm = 16;
constexpr int kTimed = 20;

enum Stage { kCopyIn, kDifferences, kClassification, kUpdate, kKeep, kFind, kStages };
constexpr std::array<const char*, kStages> kNames = {"copy",   "differences", "classification",
                                                     "update", "keep",        "objects"};

void keep(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes) {
  if (to != from) std::memcpy(to, from, bytes);
}

// The steps of learnBg_ncv for a frame after the first one.
void run_stages(kAMBLE& engine, const cv::Mat& frame, int number, std::array<double, kStages>& time) {
  const std::size_t pixels = frame.total();
  engine.setTimestamp(time_of(number).c_str());
  time[kCopyIn] = milliseconds_of([&] { engine.preprocess_ncv(frame.data, frame.cols, frame.rows, 3); });
  engine.estFrameRate();
  engine.updateLock();
  time[kDifferences] = milliseconds_of([&] { engine.heuristic_ncv(); });
  time[kClassification] = milliseconds_of([&] { engine.recogFg_ncv(); });
  time[kUpdate] = milliseconds_of([&] { engine.updateModel_ncv(); });
  time[kKeep] = milliseconds_of([&] {
    keep(engine.prevFgMask, engine.fgMask, pixels);
    keep(engine.prevFrame, engine.curFrame, pixels * 3);
  });
  ++engine.frmCount;
}

double find_objects(kAMBLE& engine, cv::Mat& scratch) {
  return milliseconds_of([&] {
    std::memcpy(scratch.data, engine.fgMask, scratch.total());
    engine.genFgObj_ncv(scratch.data);
  });
}

double foreground_of(const kAMBLE& engine) {
  const auto count = static_cast<std::size_t>(engine.numPixel);
  return static_cast<double>(std::count(engine.fgMask, engine.fgMask + count, 255)) /
         static_cast<double>(count);
}

struct Medians {
  std::array<double, kStages> stages{};
  double sum = 0;
  double whole = 0;
  double foreground = 0;  // mean share of the frame
};

Medians measure(const Scene& scene, int timed) {
  const host::base::CapturedStream chatter(stderr);
  const auto divided = make_engine(scene.opening.size());
  const auto whole = make_engine(scene.opening.size());
  cv::Mat scratch(scene.opening.size(), CV_8UC1);  // 64-byte aligned
  learn(*divided, scene.at(0), 0);
  learn(*whole, scene.at(0), 0);

  std::array<std::vector<double>, kStages> times;
  std::vector<double> sums, wholes, shares;
  for (int n = 1; n < kWarm + timed; ++n) {
    std::array<double, kStages> time{};
    run_stages(*divided, scene.at(n), n, time);
    time[kFind] = find_objects(*divided, scratch);
    double at_once = milliseconds_of([&] { learn(*whole, scene.at(n), n); });
    at_once += find_objects(*whole, scratch);
    if (n < kWarm) continue;
    double sum = 0;
    for (std::size_t i = 0; i < kStages; ++i) {
      times[i].push_back(time[i]);
      sum += time[i];
    }
    sums.push_back(sum);
    wholes.push_back(at_once);
    shares.push_back(foreground_of(*whole));
  }

  Medians medians;
  for (std::size_t i = 0; i < kStages; ++i) medians.stages[i] = median(times[i]);
  medians.sum = median(sums);
  medians.whole = median(wholes);
  medians.foreground =
      std::accumulate(shares.begin(), shares.end(), 0.0) / static_cast<double>(shares.size());
  return medians;
}

}  // namespace

void measure_stages(const Plan& plan, Records& records) {
  std::vector<std::string> heads = {"scene"};
  heads.insert(heads.end(), kNames.begin(), kNames.end());
  heads.insert(heads.end(), {"sum", "in one", "foreground"});
  const Table table(
      "Stages, 1920x1080: milliseconds of the operations called one by one, of all, and of the same frame in "
      "one call",
      heads, 1);
  for (const std::string& name : plan.scenes) {
    const Medians medians = measure(make_scene(name, kFullHd), plan.frames > 0 ? plan.frames : kTimed);
    std::vector<std::string> cells = {name};
    const auto add = [&](const char* measure, double value) {
      records.add({"stages", name, text_of(kFullHd), kPlugin, std::string(measure) + "_ms", value});
      cells.push_back(figure(value));
    };
    for (std::size_t i = 0; i < kStages; ++i) add(kNames[i], medians.stages[i]);
    add("sum", medians.sum);
    add("in_one", medians.whole);
    records.add({"stages", name, text_of(kFullHd), kPlugin, "foreground", medians.foreground});
    cells.push_back(figure(medians.foreground));
    table.row(cells);
  }
}

}  // namespace lm::bench
