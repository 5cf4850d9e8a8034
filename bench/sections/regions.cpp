#include "bench/sections/sections.h"
#include "bench/table.h"

namespace lm::bench {
namespace {

constexpr int kPercents[] = {100, 50, 25, 10, 5};

std::vector<Candidate> shares(const std::string& library) {
  std::vector<Candidate> list;
  for (const int percent : kPercents) {
    list.push_back({std::to_string(percent) + "%", false, [=](cv::Size frame) {
                      return make_plugin(library, document_for(frame, percent / 100.0));
                    }});
  }
  return list;
}

}  // namespace

void measure_regions(const Plan& plan, Records& records) {
  if (plan.libraries.plugin.empty()) return;
  const Table table(
      "A region that covers a share of the frame, 1920x1080: milliseconds, and against the whole frame",
      {"scene", "region", "ms", "/whole"}, 2);
  for (const std::string name : {"quiet", "street"}) {
    const std::vector<Lap> laps = race(shares(plan.libraries.plugin), make_scene(name, kFullHd), Rounds{});
    for (const Lap& lap : laps) {
      const double ratio = lap.whole / laps.front().whole;
      records.add({"regions", name, text_of(kFullHd), lap.name, "whole_ms", lap.whole});
      records.add({"regions", name, text_of(kFullHd), lap.name, "per_whole_frame", ratio});
      table.row({name, lap.name, figure(lap.whole), figure(ratio)});
    }
  }
}

}  // namespace lm::bench
