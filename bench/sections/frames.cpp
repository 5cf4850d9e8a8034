#include <algorithm>
#include <cstdio>
#include <iterator>

#include "bench/sections/sections.h"
#include "bench/table.h"

namespace lm::bench {
namespace {

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
    if (lap.foreground == -1 || (lap.foreground > 0 && lap.foreground < 1)) continue;
    std::printf("  WRONG: %s has %g of the frame in its mask\n", lap.name.c_str(), lap.foreground);
    plausible = false;
  }
  return plausible;
}

void record(Records& records, const std::string& scene, const std::string& size, const Lap& lap) {
  const auto add = [&](const char* measure, double value) {
    records.add({"frames", scene, size, lap.name, measure, value});
  };
  if (lap.divided) add("mask_ms", lap.mask);
  add("whole_ms", lap.whole);
  add("mean_ms", lap.mean);
  if (lap.foreground >= 0) add("foreground", lap.foreground);
}

struct Column {
  const char* head;
  const char* candidate;
  const char* measure;
};
constexpr Column kColumns[] = {{"yardstick", kYardstick, "whole_ms"},
                               {"CNT mask", kCnt, "whole_ms"},
                               {"MOG2 mask", kMog2, "mask_ms"},
                               {"MOG2", kMog2, "whole_ms"}};

std::vector<std::string> heads() {
  std::vector<std::string> heads = {"scene", "size", "lightmotion"};
  for (const Column& column : kColumns) heads.emplace_back(column.head);
  for (const Column& column : kColumns) heads.push_back(std::string("/") + column.head);
  heads.emplace_back("/CNT, means");
  return heads;
}

struct Row {
  std::string scene, size;
  double ours = 0;
  double others[std::size(kColumns)] = {};
  double means = 0;  // against CNT
  double worst() const { return ours / others[1]; }
};

Row row_of(const Records& records, const std::string& scene, const std::string& size) {
  Row row{scene, size, records.value("frames", scene, size, kPlugin, "whole_ms")};
  std::ranges::transform(kColumns, row.others, [&](const Column& column) {
    return records.value("frames", scene, size, column.candidate, column.measure);
  });
  row.means = records.value("frames", scene, size, kPlugin, "mean_ms") /
              records.value("frames", scene, size, kCnt, "mean_ms");
  return row;
}

void print(std::vector<Row> rows) {
  std::ranges::stable_sort(rows, std::ranges::greater(), &Row::worst);
  const Table table(
      "Whole frames, worst first: milliseconds of every candidate, and lightmotion's against the others' "
      "(below "
      "1: lightmotion is faster)",
      heads(), 2);
  for (const Row& row : rows) {
    std::vector<std::string> cells = {row.scene, row.size, figure(row.ours)};
    for (const double other : row.others) cells.push_back(figure(other));
    for (const double other : row.others) cells.push_back(figure(row.ours / other));
    cells.push_back(figure(row.means));
    table.row(cells);
  }
}

}  // namespace

int timed_frames(const Plan& plan, const Scene& scene) {
  constexpr int to_the_end = 1'000'000;
  if (plan.frames > 0) return plan.frames;
  const bool large = scene.size().area() > kFullHd.area();
  if (scene.ends()) return large ? 200 : to_the_end;
  return large ? 16 : plan.brief ? 150 : 60;
}

bool measure_frames(const Plan& plan, Records& records) {
  const std::vector<Candidate> candidates = all_candidates(plan.libraries);
  bool right = true;
  std::size_t compared = 0;
  std::vector<Row> rows;
  for (const auto& [name, size] : plan.rows) {
    Scene scene = make_scene(name, size);
    const int timed = timed_frames(plan, scene);
    const bool partly_moving = scene.partly_moving();
    const std::vector<Lap> laps = race(candidates, std::move(scene), {.timed = timed});
    for (const Lap& lap : laps) record(records, name, text_of(size), lap);
    rows.push_back(row_of(records, name, text_of(size)));
    right &= agree(laps);
    if (partly_moving) right &= peers_see_motion(laps);
    compared += laps.front().documents.size();
  }
  print(rows);
  if (right && !plan.libraries.yardstick.empty()) {
    std::printf("\nlightmotion and the yardstick gave the same result on each of %zu frames.\n", compared);
  }
  return right;
}

}  // namespace lm::bench
