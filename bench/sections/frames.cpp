#include <cstdio>

#include "bench/sections/sections.h"
#include "bench/table.h"

namespace lm::bench {
namespace {

Rounds rounds_for(cv::Size size, int frames) {
  if (frames == 0) frames = size.area() > kFullHd.area() ? 12 : 40;
  return {.warm = 16, .timed = frames};
}

const Lap* find(const std::vector<Lap>& laps, const std::string& name) {
  for (const Lap& lap : laps) {
    if (lap.name == name) return &lap;
  }
  return nullptr;
}

// All builds of the plug-in return the same document for every frame.
bool agree(const std::vector<Lap>& laps) {
  const Lap* const ours = find(laps, kPlugin);
  const Lap* const theirs = find(laps, kYardstick);
  if (ours == nullptr || theirs == nullptr) return true;
  for (std::size_t n = 0; n < ours->documents.size(); ++n) {
    if (ours->documents[n] == theirs->documents[n]) continue;
    std::printf("  WRONG: frame %zu gives %s, the yardstick's is %s\n", n, ours->documents[n].c_str(),
                theirs->documents[n].c_str());
    return false;
  }
  return true;
}

bool peers_see_motion(const std::vector<Lap>& laps) {
  bool plausible = true;
  for (const Lap& lap : laps) {
    if (!lap.divided || (lap.foreground > 0 && lap.foreground < 1)) continue;
    std::printf("  WRONG: %s has %g of the frame in its mask\n", lap.name.c_str(), lap.foreground);
    plausible = false;
  }
  return plausible;
}

void record(Records& records, const Scene& scene, const std::string& size, const std::vector<Lap>& laps) {
  const Lap* const copy = find(laps, kCopy);
  const auto add = [&](const Lap& lap, const std::string& part, double time) {
    records.add({"frames", scene.name, size, lap.name, part + "_ms", time});
    if (copy != nullptr)
      records.add({"frames", scene.name, size, lap.name, part + "_copies", time / copy->whole});
  };
  for (const Lap& lap : laps) {
    if (lap.divided) add(lap, "mask", lap.mask);
    add(lap, "whole", lap.whole);
    if (lap.foreground >= 0)
      records.add({"frames", scene.name, size, lap.name, "foreground", lap.foreground});
  }
}

struct Column {
  const char* head;
  const char* candidate;
  const char* measure;
};
constexpr Column kColumns[] = {
    {"copy ms", kCopy, "whole_ms"},       {"ms", kPlugin, "whole_ms"},
    {"copies", kPlugin, "whole_copies"},  {"yardstick", kYardstick, "whole_copies"},
    {"CNT mask", "CNT", "mask_copies"},   {"CNT", "CNT", "whole_copies"},
    {"MOG2 mask", "MOG2", "mask_copies"}, {"MOG2", "MOG2", "whole_copies"},
    {"KNN mask", "KNN", "mask_copies"},   {"KNN", "KNN", "whole_copies"},
};
// This build's total time compared with another build's.
constexpr Column kAgainst[] = {{"/yardstick", kYardstick, "whole_ms"},
                               {"/CNT mask", "CNT", "mask_ms"},
                               {"/MOG2 mask", "MOG2", "mask_ms"},
                               {"/MOG2", "MOG2", "whole_ms"}};

std::vector<std::string> heads() {
  std::vector<std::string> heads = {"scene", "size"};
  for (const Column& column : kColumns) heads.emplace_back(column.head);
  for (const Column& column : kAgainst) heads.emplace_back(column.head);
  return heads;
}

std::vector<std::string> cells(const Records& records, const std::string& scene, const std::string& size) {
  std::vector<std::string> cells = {scene, size};
  const auto value = [&](const Column& column) {
    return records.value("frames", scene, size, column.candidate, column.measure);
  };
  const double ours = records.value("frames", scene, size, kPlugin, "whole_ms");
  for (const Column& column : kColumns) cells.push_back(figure(value(column)));
  for (const Column& column : kAgainst) cells.push_back(figure(ours / value(column)));
  return cells;
}

}  // namespace

bool measure_frames(const Plan& plan, Records& records) {
  const std::vector<Candidate> candidates = all_candidates(plan.libraries);
  bool right = true;
  std::size_t compared = 0;
  const Table table(
      "Whole frames: milliseconds of one copy of the frame and of lightmotion's complete work; then every "
      "candidate in "
      "copies;\nthen lightmotion's complete work against others (below 1: lightmotion is faster)",
      heads(), 2);
  for (const std::string& name : plan.scenes) {
    for (const cv::Size& size : plan.sizes) {
      const Scene scene = make_scene(name, size);
      const std::vector<Lap> laps = race(candidates, scene, rounds_for(size, plan.frames));
      record(records, scene, text_of(size), laps);
      table.row(cells(records, name, text_of(size)));
      right &= agree(laps);
      if (scene.partly_moving) right &= peers_see_motion(laps);
      compared += laps.front().documents.size();
    }
  }
  if (right && !plan.libraries.yardstick.empty()) {
    std::printf("\nlightmotion and the yardstick gave the same result on each of %zu frames.\n", compared);
  }
  return right;
}

}  // namespace lm::bench
